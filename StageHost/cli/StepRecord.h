#pragma once

#include <vector>

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace stagehost {

/// How one step of a show came out.
struct StepRecord {
    enum class Standing { NotPlayed, Well, Failed };

    QString headline;
    QString does; ///< the device and its command, or the action
    Standing standing = Standing::NotPlayed;
    QString failure; ///< of a step that failed
    QString result;  ///< what the command gave
    double milliseconds = 0;
    QStringList traffic{}; ///< of a step that failed: the last lines of its peers
};

/// How a show came out, as the reports for other programs tell it.
struct ShowRecord {
    QString name;
    QDateTime begin;
    double milliseconds = 0;
    std::vector<StepRecord> steps;
    QString failure; ///< what ended or failed the show beside its steps; empty when nothing did
};

/// The record in the JUnit XML form that CI servers read: what Apache Ant's task "junitreport" writes and the schema
/// "junit-10.xsd" of the Jenkins xUnit plug-in describes. UTF-8.   [any]
QByteArray JUnitText(const ShowRecord& record);

/// Text without the characters that XML 1.0 cannot carry (section 2.2 of the recommendation); each becomes
/// U+FFFD.   [any]
QString ForXml(const QString& text);

/// The lines of the Test Anything Protocol, version 14 of 2022 (testanything.org).   [any]
QString TapBegin(std::size_t stepCount);
QString TapLine(int number, const StepRecord& step);
/// Behind the last step: the steps that were not played, and why the show itself failed.
QString TapEnd(const ShowRecord& record);

} // namespace stagehost

#pragma once

#include <map>

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

/// Holds what "watch --json" tells of a driver behind a line that misbehaves against what has to be so on any line:
/// each command ends, nothing is told twice, and what the last line of the input waits for comes.
inline void ExpectAllEndedNothingTwiceAndBack(const QString& output, int commands) {
    int ended = 0;
    bool isBack = false;
    std::map<QString, QString> last;
    for (const QString& text : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QJsonObject told = QJsonDocument::fromJson(text.toUtf8()).object();
        const auto value = [&told](const char* key) { return told.value(QLatin1String(key)).toVariant().toString(); };
        if (value("line").startsWith(QLatin1String("send"))) {
            ++ended;
            EXPECT_NE(told.value(QLatin1String("exitCode")).toInt(), 3)
                << "no answer to " << value("line").toStdString();
        }
        isBack =
            isBack || (value("line").startsWith(QLatin1String("wait")) && told.value(QLatin1String("ok")).toBool());
        if (value("property") != QLatin1String("Value"))
            continue;
        const auto before = last.find(value("object"));
        EXPECT_TRUE(before == last.end() || before->second != value("value"))
            << value("object").toStdString() << " is told twice: " << value("value").toStdString();
        last[value("object")] = value("value");
    }
    EXPECT_EQ(ended, commands) << output.toStdString();
    EXPECT_TRUE(isBack) << output.toStdString();
    EXPECT_FALSE(last.empty());
}

/// How many seeds are played: two, or as many as BAD_LINES says.
inline int BadLineSeeds() {
    return qEnvironmentVariableIsSet("BAD_LINES") ? qEnvironmentVariableIntValue("BAD_LINES") : 2;
}

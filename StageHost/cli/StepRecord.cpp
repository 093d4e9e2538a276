#include "StepRecord.h"

#include <algorithm>

#include <QXmlStreamWriter>

#include "StepTraffic.h"

namespace stagehost {

namespace {

using Standing = StepRecord::Standing;

QString Seconds(double milliseconds) {
    return QString::number(milliseconds / 1000, 'f', 3);
}

int CountOf(const ShowRecord& record, Standing standing) {
    return static_cast<int>(std::count_if(record.steps.begin(), record.steps.end(),
                                          [&](const StepRecord& step) { return step.standing == standing; }));
}

void WriteCounts(QXmlStreamWriter& xml, const ShowRecord& record) {
    const int errors = record.failure.isEmpty() ? 0 : 1;
    xml.writeAttribute(QStringLiteral("tests"), QString::number(static_cast<int>(record.steps.size()) + errors));
    xml.writeAttribute(QStringLiteral("failures"), QString::number(CountOf(record, Standing::Failed)));
    xml.writeAttribute(QStringLiteral("errors"), QString::number(errors));
    xml.writeAttribute(QStringLiteral("skipped"), QString::number(CountOf(record, Standing::NotPlayed)));
    xml.writeAttribute(QStringLiteral("time"), Seconds(record.milliseconds));
}

void WriteCase(QXmlStreamWriter& xml, const ShowRecord& record, const QString& name, double milliseconds) {
    xml.writeStartElement(QStringLiteral("testcase"));
    xml.writeAttribute(QStringLiteral("name"), ForXml(name));
    xml.writeAttribute(QStringLiteral("classname"), ForXml(record.name));
    xml.writeAttribute(QStringLiteral("time"), Seconds(milliseconds));
}

/// @param more stands behind the text, where there is room for it.
void WriteProblem(QXmlStreamWriter& xml, const char* element, const QString& text, const QStringList& more) {
    xml.writeStartElement(QLatin1String(element));
    xml.writeAttribute(QStringLiteral("message"), ForXml(text));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("stagehost"));
    xml.writeCharacters(ForXml((QStringList(text) + more).join(QLatin1Char('\n'))));
    xml.writeEndElement();
}

void WriteStep(QXmlStreamWriter& xml, const ShowRecord& record, int number, const StepRecord& step) {
    WriteCase(xml, record, QStringLiteral("%1. ").arg(number) + step.headline, step.milliseconds);
    if (step.standing == Standing::Failed)
        WriteProblem(xml, "failure", step.failure, TrafficForPeople(step.traffic));
    else if (step.standing == Standing::NotPlayed)
        xml.writeEmptyElement(QStringLiteral("skipped"));
    if (!step.result.isEmpty())
        xml.writeTextElement(QStringLiteral("system-out"), ForXml(step.result));
    xml.writeEndElement();
}

/// In a description a "#" would begin a directive (TAP 14, "Escaping"); control characters are shown as \x1b.
QString ForTap(const QString& text) {
    QString line;
    for (const QChar c : text.simplified()) {
        if (c == QLatin1Char('\\') || c == QLatin1Char('#'))
            line += QLatin1Char('\\');
        if (c.category() == QChar::Other_Control)
            line += QStringLiteral("\\\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += c;
    }
    return line;
}

/// A text in double quotes as YAML has it.
QString ForYaml(const QString& text) {
    QString quoted;
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            quoted += QLatin1Char('\\') + QString(c);
        else if (c == QLatin1Char('\n'))
            quoted += QStringLiteral("\\n");
        else if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            quoted += QStringLiteral("\\x%1").arg(uint(c.unicode()), 2, 16, QLatin1Char('0'));
        else
            quoted += c;
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace

QString ForXml(const QString& text) {
    QString clean = text;
    for (QChar& c : clean) {
        const ushort code = c.unicode();
        const bool isControl = code < 0x20 && code != '\t' && code != '\n' && code != '\r';
        if (isControl || code == 0xFFFE || code == 0xFFFF || (c.isSurrogate() && !text.isValidUtf16()))
            c = QChar(0xFFFD);
    }
    return clean;
}

QByteArray JUnitText(const ShowRecord& record) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuites"));
    WriteCounts(xml, record);
    xml.writeStartElement(QStringLiteral("testsuite"));
    xml.writeAttribute(QStringLiteral("name"), ForXml(record.name));
    WriteCounts(xml, record);
    xml.writeAttribute(QStringLiteral("timestamp"),
                       record.begin.toUTC().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")));
    int number = 0;
    for (const StepRecord& step : record.steps)
        WriteStep(xml, record, ++number, step);
    if (!record.failure.isEmpty()) {
        WriteCase(xml, record, QStringLiteral("the show"), 0);
        WriteProblem(xml, "error", record.failure, {});
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return text;
}

QString TapBegin(std::size_t stepCount) {
    return QStringLiteral("TAP version 14\n1..%1\n").arg(stepCount);
}

QString TapLine(int number, const StepRecord& step) {
    const bool failed = step.standing == Standing::Failed;
    QString text =
        QStringLiteral("%1 %2 - ").arg(QLatin1String(failed ? "not ok" : "ok")).arg(number) + ForTap(step.headline);
    if (step.standing == Standing::NotPlayed)
        return text + QStringLiteral(" # SKIP not played\n");
    text += QStringLiteral("\n  ---\n  duration_ms: %1\n").arg(step.milliseconds, 0, 'f', 3);
    if (failed)
        text += QStringLiteral("  message: %1\n").arg(ForYaml(step.failure));
    if (!step.traffic.isEmpty())
        text += QStringLiteral("  traffic:\n");
    for (const QString& line : step.traffic)
        text += QStringLiteral("    - %1\n").arg(ForYaml(line));
    return text + QStringLiteral("  ...\n");
}

QString TapEnd(const ShowRecord& record) {
    QString text;
    if (!record.failure.isEmpty())
        return QStringLiteral("Bail out! ") + ForTap(record.failure) + QLatin1Char('\n');
    for (std::size_t i = 0; i < record.steps.size(); ++i)
        if (record.steps[i].standing == Standing::NotPlayed)
            text += TapLine(static_cast<int>(i) + 1, record.steps[i]);
    return text;
}

} // namespace stagehost

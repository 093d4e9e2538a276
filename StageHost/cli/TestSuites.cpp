#include "TestSuites.h"

#include <QMap>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "StepRecord.h"

namespace stagehost {

namespace {

const char* const kCounts[] = {"tests", "failures", "errors", "skipped", "time"};

bool IsSuite(const QXmlStreamReader& xml) {
    return xml.name() == QLatin1String("testsuite");
}

/// Goes to the suite in a text of one. @return whether there is one.
bool FindSuite(QXmlStreamReader& xml) {
    while (!xml.atEnd() && !(xml.isStartElement() && IsSuite(xml)))
        xml.readNext();
    return !xml.atEnd();
}

QMap<QString, double> Sums(const std::vector<TestSuite>& suites) {
    QMap<QString, double> sums;
    for (const TestSuite& suite : suites) {
        QXmlStreamReader xml(suite.steps);
        const bool found = FindSuite(xml);
        for (const char* name : kCounts)
            sums[QLatin1String(name)] += found ? xml.attributes().value(QLatin1String(name)).toDouble() : 0;
    }
    return sums;
}

void CopySuite(QXmlStreamWriter& out, const TestSuite& suite) {
    QXmlStreamReader xml(suite.steps);
    if (!FindSuite(xml))
        return;
    for (; !xml.atEnd() && !(xml.isEndElement() && IsSuite(xml)); xml.readNext())
        if (!xml.isWhitespace())
            out.writeCurrentToken(xml);
    if (!suite.told.isEmpty())
        out.writeTextElement(QStringLiteral("system-err"), ForXml(suite.told));
    out.writeEndElement();
}

} // namespace

QByteArray JUnitOf(const std::vector<TestSuite>& suites) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuites"));
    const auto sums = Sums(suites);
    for (const char* name : kCounts) {
        const bool isTime = QLatin1String(name) == QLatin1String("time");
        xml.writeAttribute(QLatin1String(name), QString::number(sums.value(QLatin1String(name)), 'f', isTime ? 3 : 0));
    }
    for (const TestSuite& suite : suites)
        CopySuite(xml, suite);
    xml.writeEndDocument();
    return text;
}

} // namespace stagehost

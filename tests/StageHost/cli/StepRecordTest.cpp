#include "StepRecord.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

namespace stagehost {
namespace {

using Standing = StepRecord::Standing;

QString Utf8(const char* text) {
    return QString::fromUtf8(text);
}

ShowRecord Record() {
    ShowRecord record;
    record.name = Utf8("A <show> & \"more\"");
    record.begin = QDateTime(QDate(2026, 11, 22), QTime(10, 0), Qt::UTC);
    record.milliseconds = 1500;
    record.steps = {{Utf8("one # two\\three"), {}, Standing::Well, {}, Utf8("4 < 5"), 250},
                    {Utf8("bad"), {}, Standing::Failed, Utf8("said \"no\" & \x01\nthen ]]> stopped"), {}, 1000},
                    {Utf8("left"), {}, Standing::NotPlayed, {}, {}, 0}};
    return record;
}

TEST(JUnitText, HasACaseForEachStepWithWhatItFailedWith) {
    EXPECT_EQ(JUnitText(Record()).toStdString(),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites tests="3" failures="1" errors="0" skipped="1" time="1.500">
    <testsuite name="A &lt;show&gt; &amp; &quot;more&quot;" tests="3" failures="1" errors="0" skipped="1" time="1.500" timestamp="2026-11-22T10:00:00">
        <testcase name="1. one # two\three" classname="A &lt;show&gt; &amp; &quot;more&quot;" time="0.250">
            <system-out>4 &lt; 5</system-out>
        </testcase>
        <testcase name="2. bad" classname="A &lt;show&gt; &amp; &quot;more&quot;" time="1.000">
            <failure message="said &quot;no&quot; &amp; )"
              "\xEF\xBF\xBD"
              R"(&#10;then ]]&gt; stopped" type="stagehost">said &quot;no&quot; &amp; )"
              "\xEF\xBF\xBD"
              R"(
then ]]&gt; stopped</failure>
        </testcase>
        <testcase name="3. left" classname="A &lt;show&gt; &amp; &quot;more&quot;" time="0.000">
            <skipped/>
        </testcase>
    </testsuite>
</testsuites>
)");
}

TEST(JUnitText, HasTheTrafficBelowWhatFailed) {
    ShowRecord record = Record();
    record.steps[1].traffic = QStringList{Utf8("peer fake: said \"no\"")};
    EXPECT_TRUE(JUnitText(record).contains(
        "stopped\nthe last lines of the traffic:\n  peer fake: said &quot;no&quot;</failure>"))
        << JUnitText(record).toStdString();
}

TEST(TapLine, HasTheTrafficAsAList) {
    StepRecord step = Record().steps[1];
    step.traffic = QStringList{Utf8("peer fake: received \"a\\r\""), Utf8("peer fake: said \"no\"")};
    const QString text = TapLine(2, step);
    EXPECT_TRUE(text.contains(Utf8("\n  traffic:\n    - \"peer fake: received \\\"a\\\\r\\\"\"\n"
                                   "    - \"peer fake: said \\\"no\\\"\"\n  ...\n")))
        << text.toStdString();
}

TEST(JUnitText, OfAShowThatDidNotStartHasAnErrorBesideTheStepsThatWereNotPlayed) {
    ShowRecord record = Record();
    record.steps.erase(record.steps.begin(), record.steps.begin() + 2);
    record.failure = Utf8("lamp: has not started");
    const QByteArray text = JUnitText(record);
    EXPECT_TRUE(text.contains("<testsuites tests=\"2\" failures=\"0\" errors=\"1\" skipped=\"1\""))
        << text.toStdString();
    EXPECT_TRUE(text.contains("<error message=\"lamp: has not started\"")) << text.toStdString();
    QXmlStreamReader reader(text);
    while (!reader.atEnd())
        reader.readNext();
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
}

TEST(Tap, HasALineForEachStepWithWhatItFailedWith) {
    const ShowRecord record = Record();
    EXPECT_EQ(TapBegin(3).toStdString(), "TAP version 14\n1..3\n");
    EXPECT_EQ(TapLine(1, record.steps[0]).toStdString(),
              "ok 1 - one \\# two\\\\three\n  ---\n  duration_ms: 250.000\n  ...\n");
    EXPECT_EQ(TapLine(2, record.steps[1]).toStdString(),
              "not ok 2 - bad\n  ---\n  duration_ms: 1000.000\n"
              "  message: \"said \\\"no\\\" & \\x01\\nthen ]]> stopped\"\n  ...\n");
}

TEST(Tap, TellsTheStepsThatWereNotPlayedOrWhyTheShowEndedEarly) {
    ShowRecord record = Record();
    EXPECT_EQ(TapEnd(record).toStdString(), "ok 3 - left # SKIP not played\n");
    record.failure = Utf8("lamp: has not\nstarted");
    EXPECT_EQ(TapEnd(record).toStdString(), "Bail out! lamp: has not started\n");
}

} // namespace
} // namespace stagehost

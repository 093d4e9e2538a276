#include "MScriptCommonEvent.h"

#include <future>

#include "ScriptFixture.h"

namespace {

class Source : public MScriptCommonEvent {
public:
    explicit Source(ScriptObjectType kind = ScriptObjectType::Udp) { m_type = kind; }
};

class Listeners : public ScriptFixture {
protected:
    QScriptValue Function(const std::string& text) { return engine.evaluate(QString::fromStdString("(" + text + ")")); }
    static QString Name(std::string_view name) {
        return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
    }
    std::string Heard(std::string_view event) {
        return source.GetListener(Name(event)).call().toString().toStdString();
    }

    Source source;
};

TEST_F(Listeners, AreKeptUnderEachOfTheFourteenNames) {
    ASSERT_EQ(kEventNames.size(), 14u);
    for (const std::string_view name : kEventNames)
        source.SetListener(Name(name), Function("function () { return '" + std::string(name) + "' }"));
    for (const std::string_view name : kEventNames)
        EXPECT_EQ(Heard(name), name);
}

TEST_F(Listeners, HaveExactlyTheseNames) {
    const std::vector<std::string> names = {
        "open",     "connect", "close", "error", "data",     "message",           "listening",
        "tx_empty", "break",   "cts",   "dsr",   "response", "download_progress", "upload_progress"};
    EXPECT_EQ(std::vector<std::string>(kEventNames.begin(), kEventNames.end()), names);
}

TEST_F(Listeners, IgnoreNamesThatDifferInAnything) {
    for (const char* name : {"Data", "DATA", "data ", "", "datas", "dat", "onData"}) {
        source.SetListener(QString::fromLatin1(name), Function("function () {}"));
        EXPECT_FALSE(source.GetListener(QString::fromLatin1(name)).isValid()) << name;
    }
    EXPECT_FALSE(source.GetListener(QStringLiteral("data")).isValid());
}

TEST_F(Listeners, StayWhenSomethingElseThanAFunctionIsGiven) {
    source.SetListener(QStringLiteral("data"), Function("function () { return 'first' }"));
    for (const char* other : {"5", "'f'", "null", "undefined", "({})", "[function () {}]", "true"})
        source.SetListener(QStringLiteral("data"), Function(other));
    source.SetListener(QStringLiteral("data"), QScriptValue());
    EXPECT_EQ(Heard("data"), "first");
}

TEST_F(Listeners, AreReplacedAndNeverChained) {
    source.SetListener(QStringLiteral("data"), Function("function () { return 'first' }"));
    source.SetListener(QStringLiteral("data"), Function("function () { return 'second' }"));
    EXPECT_EQ(Heard("data"), "second");
}

TEST_F(Listeners, SurviveACollection) {
    source.SetListener(QStringLiteral("message"), Function("function () { return 'still here' }"));
    engine.collectGarbage();
    engine.collectGarbage();
    EXPECT_EQ(Heard("message"), "still here");
}

TEST_F(Listeners, AreForgottenAllAtOnce) {
    for (const std::string_view name : kEventNames)
        source.SetListener(Name(name), Function("function () {}"));
    source.ClearListeners();
    for (const std::string_view name : kEventNames)
        EXPECT_FALSE(source.GetListener(Name(name)).isValid()) << name;
}

TEST_F(Listeners, MayBeSetByTheThreadThatHoldsTheLock) {
    source.Lock();
    source.SetListener(QStringLiteral("data"), Function("function () { return 'inside' }"));
    source.Unlock();
    EXPECT_EQ(Heard("data"), "inside");
}

TEST(ScriptObjectKinds, HaveTheStatedNumbers) {
    EXPECT_EQ(int(ScriptObjectType::None), 0);
    EXPECT_EQ(int(ScriptObjectType::TcpClient), 1);
    EXPECT_EQ(int(ScriptObjectType::Udp), 2);
    EXPECT_EQ(int(ScriptObjectType::Serial), 3);
    EXPECT_EQ(int(ScriptObjectType::DmxIn), 4);
    EXPECT_EQ(int(ScriptObjectType::DmxOut), 5);
    EXPECT_EQ(int(ScriptObjectType::DigitalIn), 6);
    EXPECT_EQ(int(ScriptObjectType::DigitalOut), 7);
    EXPECT_EQ(int(ScriptObjectType::AnalogIn), 8);
    EXPECT_EQ(int(ScriptObjectType::AnalogOut), 9);
    EXPECT_EQ(int(ScriptObjectType::HttpClient), 10);
    EXPECT_EQ(Source(ScriptObjectType::DmxOut).GetObjectType(), ScriptObjectType::DmxOut);
}

} // namespace

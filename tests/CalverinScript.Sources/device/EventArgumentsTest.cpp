#include "EventArguments.h"

#include <gtest/gtest.h>

#include <QScriptEngine>
#include <QScriptValueIterator>
#include <QVariant>

#include "BufferConversion.h"
#include "EventRecords.h"
#include "EventSource.h"
#include "MScriptParamList.h"
#include "ScriptClasses.h"

namespace {

class EventArgumentList : public testing::Test {
protected:
    QScriptValueList Arguments() { return EventArguments(engine).Of(params); }

    QScriptEngine engine;
    MScriptParamList params;
};

TEST_F(EventArgumentList, IsEmptyForAnEventWithoutValues) {
    EXPECT_TRUE(Arguments().isEmpty());
}

TEST_F(EventArgumentList, HandsABooleanOn) {
    params.Add(true);
    params.Add(false);
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 2);
    EXPECT_TRUE(arguments[0].isBool() && arguments[0].toBool());
    EXPECT_TRUE(arguments[1].isBool() && !arguments[1].toBool());
}

TEST_F(EventArgumentList, TurnsAWholeNumberIntoABooleanAsIsMeant) {
    for (const int number : {0, 1, -1, 42}) {
        params = MScriptParamList();
        params.Add(number);
        const QScriptValueList arguments = Arguments();
        ASSERT_EQ(arguments.size(), 1);
        EXPECT_TRUE(arguments[0].isBool());
        EXPECT_EQ(arguments[0].toBool(), number != 0) << number;
    }
}

TEST_F(EventArgumentList, MakesAnObjectOfAnAddress) {
    params.Add(QVariant::fromValue(IPInfo(5000, QStringLiteral("127.0.0.1"))));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_EQ(arguments[0].property(QStringLiteral("port")).toInt32(), 5000);
    EXPECT_TRUE(arguments[0].property(QStringLiteral("port")).isNumber());
    EXPECT_EQ(arguments[0].property(QStringLiteral("address")).toString(), QStringLiteral("127.0.0.1"));
}

TEST_F(EventArgumentList, MakesAnObjectOfASocketError) {
    params.Add(QVariant::fromValue(SocketErrorInfo(-4, QStringLiteral("refused"))));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_EQ(arguments[0].property(QStringLiteral("errorCode")).toInt32(), -4);
    EXPECT_EQ(arguments[0].property(QStringLiteral("errorText")).toString(), QStringLiteral("refused"));
}

TEST_F(EventArgumentList, MakesABufferOfBytes) {
    InstallScriptClasses(engine);
    params.Add(QByteArray("a\0b", 3));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_TRUE(IsBuffer(arguments[0]));
    EXPECT_EQ(BytesFromBuffer(arguments[0]), QByteArray("a\0b", 3));
}

TEST_F(EventArgumentList, MakesAPlainVariantOfBytesWhenTheScriptReplacedTheGlobal) {
    InstallScriptClasses(engine);
    engine.evaluate(QStringLiteral("Buffer = null"));
    params.Add(QByteArray("abc"));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_TRUE(arguments[0].isVariant());
}

TEST_F(EventArgumentList, FollowsTheGlobalBufferAsAScriptReplacesItAndPutsItBack) {
    InstallScriptClasses(engine);
    EventArguments kept(engine);
    params.Add(QByteArray("abc"));
    EXPECT_TRUE(IsBuffer(kept.Of(params).first()));
    engine.evaluate(QStringLiteral("var own = Buffer; Buffer = function () {}"));
    EXPECT_TRUE(kept.Of(params).first().isVariant());
    engine.evaluate(QStringLiteral("Buffer = own"));
    EXPECT_TRUE(IsBuffer(kept.Of(params).first()));
}

TEST_F(EventArgumentList, TellsAddressesThatTakeTurnsApart) {
    EventArguments kept(engine);
    for (const char* text : {"10.0.0.1", "10.0.0.2", "10.0.0.2", "", "10.0.0.1"}) {
        params = MScriptParamList();
        params.Add(QVariant::fromValue(IPInfo(1, QString::fromLatin1(text))));
        const QScriptValue address = kept.Of(params).first().property(QStringLiteral("address"));
        EXPECT_TRUE(address.isString());
        EXPECT_EQ(address.toString(), QString::fromLatin1(text));
    }
}

TEST_F(EventArgumentList, MakesAnObjectOfAResponseWithABuffer) {
    InstallScriptClasses(engine);
    params.Add(QVariant::fromValue(HTTPResponse("body", 200, QStringLiteral("A: b"))));
    params.Add(QVariant::fromValue(SocketErrorInfo(0, QString())));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 2);
    EXPECT_EQ(BytesFromBuffer(arguments[0].property(QStringLiteral("data"))), QByteArray("body"));
    EXPECT_TRUE(arguments[0].property(QStringLiteral("statusCode")).isNumber());
    EXPECT_EQ(arguments[0].property(QStringLiteral("statusCode")).toInt32(), 200);
    EXPECT_EQ(arguments[0].property(QStringLiteral("headers")).toString(), QStringLiteral("A: b"));
}

std::string NamesOf(const QScriptValue& object) {
    std::string names;
    QScriptValueIterator member(object);
    while (member.hasNext()) {
        member.next();
        names += member.name().toStdString() + " ";
    }
    return names;
}

TEST_F(EventArgumentList, SetsTheMembersOfRecordsInTheirOrder) {
    params.Add(QVariant::fromValue(IPInfo()));
    params.Add(QVariant::fromValue(SocketErrorInfo()));
    params.Add(QVariant::fromValue(HTTPResponse()));
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 3);
    EXPECT_EQ(NamesOf(arguments[0]), "port address ");
    EXPECT_EQ(NamesOf(arguments[1]), "errorCode errorText ");
    EXPECT_EQ(NamesOf(arguments[2]), "data statusCode headers ");
}

TEST_F(EventArgumentList, ShowsTheObjectThatRaisedTheEventWithoutOwningIt) {
    EventSource source(nullptr, ScriptObjectType::Udp);
    params.SetSource(&source);
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_EQ(arguments[0].toQObject(), &source);
    EXPECT_TRUE(arguments[0].strictlyEquals(Arguments().first())) << "the same view each time";
    EXPECT_FALSE(arguments[0].property(QStringLiteral("deleteLater")).isValid());
    EXPECT_TRUE(arguments[0].property(QStringLiteral("on")).isFunction());
}

TEST_F(EventArgumentList, LeavesOutValuesOfOtherKindsSoThatLaterOnesMoveUp) {
    params.Add(QStringLiteral("a text"));
    params.Add(1.5);
    params.Add(QVariant());
    params.Add(7u);
    params.Add(true);
    const QScriptValueList arguments = Arguments();
    ASSERT_EQ(arguments.size(), 1);
    EXPECT_TRUE(arguments[0].isBool());
}

} // namespace

#include "EventArguments.h"

#include <gtest/gtest.h>

#include <QScriptEngine>
#include <QVariant>

#include "EventRecords.h"
#include "MScriptParamList.h"

namespace {

class EventArgumentList : public testing::Test {
protected:
    QScriptValueList Arguments() { return EventArguments(engine, params); }

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

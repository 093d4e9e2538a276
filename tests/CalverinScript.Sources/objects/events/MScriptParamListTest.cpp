#include "MScriptParamList.h"

#include <utility>

#include <gtest/gtest.h>

#include "EventRecords.h"

namespace {

TEST(ParamList, GivesItsValuesInOrderAndAnInvalidOnePastTheEnds) {
    MScriptParamList list;
    EXPECT_EQ(list.Count(), 0);
    list.Add(QByteArray("abc"));
    list.Add(true);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.At(0).toByteArray(), QByteArray("abc"));
    EXPECT_TRUE(list.At(1).toBool());
    EXPECT_FALSE(list.At(2).isValid());
    EXPECT_FALSE(list.At(-1).isValid());
}

TEST(ParamList, IsCopiedDeeply) {
    MScriptParamList list;
    list.Add(1);
    MScriptParamList copy(list);
    copy.Add(2);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(copy.Count(), 2);
    list = copy;
    EXPECT_EQ(list.Count(), 2);
    const MScriptParamList& same = list;
    list = same;
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.At(1).toInt(), 2);
}

TEST(ParamList, TakesItsSourceAlongWhenItIsMoved) {
    auto* const source = reinterpret_cast<MScriptCommonEvent*>(0x10); // which is only compared
    MScriptParamList list;
    list.Add(QByteArray("abc"));
    list.SetSource(source);
    MScriptParamList moved(std::move(list));
    EXPECT_EQ(moved.At(0).toByteArray(), QByteArray("abc"));
    EXPECT_EQ(moved.GetSource(), source);
    MScriptParamList other;
    other.Add(1);
    other = std::move(moved);
    EXPECT_EQ(other.Count(), 1);
    EXPECT_EQ(other.At(0).toByteArray(), QByteArray("abc"));
}

TEST(EventRecords, ASenderIsSharedByItsCopiesAndOutlivesThem) {
    IPInfo sender(80, QStringLiteral("10.0.0.1"));
    const QVariant value = QVariant::fromValue(sender);
    sender = IPInfo(81, QStringLiteral("10.0.0.2"));
    EXPECT_EQ(value.value<IPInfo>().GetPort(), 80);
    EXPECT_EQ(value.value<IPInfo>().GetAddress(), QStringLiteral("10.0.0.1"));
    EXPECT_EQ(sender.GetPort(), 81);
    EXPECT_EQ(IPInfo().GetPort(), 0);
    EXPECT_EQ(IPInfo().GetAddress(), QString());
}

TEST(ParamList, TravelsUnderItsNameAndSoDoTheRecords) {
    EXPECT_STREQ(QVariant::fromValue(MScriptParamList()).typeName(), "MScriptParamList");
    EXPECT_STREQ(QVariant::fromValue(IPInfo()).typeName(), "IPInfo");
    EXPECT_STREQ(QVariant::fromValue(SocketErrorInfo()).typeName(), "SocketErrorInfo");
    EXPECT_STREQ(QVariant::fromValue(HTTPResponse()).typeName(), "HTTPResponse");
}

TEST(EventRecords, KeepWhatTheyWereGiven) {
    const HTTPResponse response("body", 404, QStringLiteral("A: b"));
    EXPECT_EQ(response.GetData(), QByteArray("body"));
    EXPECT_EQ(response.GetStatusCode(), 404);
    EXPECT_EQ(response.GetHeaders(), QStringLiteral("A: b"));
    EXPECT_EQ(HTTPResponse().GetStatusCode(), 0);
    EXPECT_EQ(IPInfo(7, QStringLiteral("127.0.0.1")).GetPort(), 7);
    EXPECT_EQ(SocketErrorInfo(-3, QStringLiteral("x")).GetErrorCode(), -3);
}

} // namespace

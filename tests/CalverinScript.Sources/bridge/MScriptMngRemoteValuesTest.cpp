#include <limits>

#include <gtest/gtest.h>

#include "FakeRemotes.h"
#include "FakeScriptDevice.h"
#include "FakeVariables.h"
#include "MScriptMngRemote.h"

namespace {

const QString kV = QStringLiteral("v");

class Values : public testing::Test {
protected:
    FakeScriptDevice device;
    FakeVariables host;
    FakeVariable& v = host.variables["v"];
    MScriptMngRemote remote{&device, nullptr, nullptr, &host, nullptr};
    MScriptMngRemote without{&device, nullptr, nullptr, nullptr, nullptr};
};

TEST_F(Values, WriteTextsWithTwoZeros) {
    EXPECT_EQ(remote.SetValue(kV, QStringLiteral("on")), KXP_OK);
    EXPECT_EQ(v.written, "text|on|0|0");
    EXPECT_EQ(remote.SetValue(kV), KXP_OK);
    EXPECT_EQ(v.written, "text||0|0");
}

TEST_F(Values, OfUnknownNamesGiveFortyEightOrNothing) {
    const QString name = QStringLiteral("nobody");
    EXPECT_EQ(remote.SetValue(name, QStringLiteral("1")), 48u);
    EXPECT_EQ(remote.SetValueAsInteger(name, QStringLiteral("1")), 48u);
    EXPECT_EQ(remote.GetValueAsInteger(name), 0);
    EXPECT_EQ(remote.GetValueAsReal(name), 0.0);
    EXPECT_EQ(remote.GetValueAsString(name), QString());
    EXPECT_EQ(host.asked, "nobody;nobody;nobody;nobody;nobody;");
    EXPECT_EQ(v.written, "");
}

TEST_F(Values, WithoutAVariableManagerGiveNineteenOrNothing) {
    EXPECT_EQ(without.SetValue(kV, QStringLiteral("1")), 19u);
    EXPECT_EQ(without.SetValueAsInteger(kV, QStringLiteral("1")), 19u);
    EXPECT_EQ(without.GetValueAsInteger(kV), 0);
    EXPECT_EQ(without.GetValueAsReal(kV), 0.0);
    EXPECT_EQ(without.GetValueAsString(kV), QString());
}

TEST_F(Values, WithoutArgumentsLookUpTheEmptyName) {
    EXPECT_EQ(remote.SetValue(), 48u);
    EXPECT_EQ(remote.SetValueAsInteger(), 48u);
    EXPECT_EQ(remote.GetValueAsInteger(), 0);
    EXPECT_EQ(remote.GetValueAsReal(), 0.0);
    EXPECT_EQ(remote.GetValueAsString(), QString());
    EXPECT_EQ(host.asked, ";;;;;");
    host.variables[""].integer = 8;
    EXPECT_EQ(remote.GetValueAsInteger(), 8);
}

TEST_F(Values, TakeOnlyAWholeTextAsANumber) {
    const std::pair<const char*, const char*> rows[] = {
        {"12", "12"},
        {"-12", "-12"},
        {"+7", "7"},
        {" 12 ", "12"},
        {"12abc", "0"},
        {"abc", "0"},
        {"", "0"},
        {"1.5", "0"},
        {"0x10", "0"},
        {"010", "10"},
        {"2147483647", "2147483647"},
        {"-2147483648", "-2147483648"},
        {"1e3", "0"},
        {"1 2", "0"},
        {"2147483648", "0"},
        {"-2147483649", "0"},
    };
    for (const auto& [text, number] : rows) {
        v.written.clear();
        EXPECT_EQ(remote.SetValueAsInteger(kV, QLatin1String(text)), KXP_OK) << text;
        EXPECT_EQ(v.written, std::string("int|") + number + "|0|0") << text;
    }
}

TEST_F(Values, AreReadInThreeForms) {
    v.integer = std::numeric_limits<std::int32_t>::min();
    v.real = 1.25;
    v.text = "text";
    EXPECT_EQ(remote.GetValueAsInteger(kV), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(remote.GetValueAsReal(kV), 1.25);
    EXPECT_EQ(remote.GetValueAsString(kV), QStringLiteral("text"));
    EXPECT_EQ(v.written, "");
}

TEST_F(Values, GiveEachTextBackToItsVariable) {
    v.text = "text";
    remote.GetValueAsString(kV);
    remote.GetValueAsString(kV);
    v.text = "";
    EXPECT_EQ(remote.GetValueAsString(kV), QString());
    EXPECT_EQ(v.textsOut, 0);
}

TEST_F(Values, WithoutATextGiveTheEmptyTextAndNotTheLastOne) {
    v.text = "text";
    ASSERT_EQ(remote.GetValueAsString(kV), QStringLiteral("text"));
    v.text = nullptr;
    EXPECT_EQ(remote.GetValueAsString(kV), QString());
    EXPECT_EQ(v.textsOut, 0);
    v.text = "again";
    remote.GetValueAsString(kV);
    EXPECT_EQ(remote.GetValueAsString(QStringLiteral("nobody")), QString());
}

TEST_F(Values, TravelAsLatinOneWithQuestionMarksBeyond) {
    host.variables["\xe9?"].text = "\xe8";
    EXPECT_EQ(remote.GetValueAsString(QString::fromUtf8("\u00e9\u20ac")), QString(QChar(0xe8)));
    EXPECT_EQ(remote.SetValue(kV, QString::fromUtf8("\u00e9\u20ac")), KXP_OK);
    EXPECT_EQ(v.written, "text|\xe9?|0|0");
}

TEST_F(Values, OfAnEndingDeviceNeverReachTheHost) {
    device.ending = true;
    v.integer = 5;
    v.real = 5.5;
    v.text = "text";
    remote.SetValue(kV, QStringLiteral("1"));
    remote.SetValueAsInteger(kV, QStringLiteral("1"));
    EXPECT_EQ(remote.GetValueAsInteger(kV), 0);
    EXPECT_EQ(remote.GetValueAsReal(kV), 0.0);
    EXPECT_EQ(remote.GetValueAsString(kV), QString());
    EXPECT_EQ(host.asked, "");
    EXPECT_EQ(v.written, "");
}

TEST_F(Values, ThatChangeReachAFunctionOnlyWithTheNewerLink) {
    FakeRemote older;
    FakeRemote2 newer;
    device.callbackCode = 77;
    const QScriptValue function;
    EXPECT_EQ(MScriptMngRemote(&device, &older, &newer, nullptr, nullptr).OnVariableChange(function), 77u);
    EXPECT_EQ(MScriptMngRemote(&device, &older, nullptr, nullptr, nullptr).OnVariableChange(function), 19u);
    EXPECT_EQ(MScriptMngRemote(nullptr, &older, &newer, nullptr, nullptr).OnVariableChange(function), 19u);
    EXPECT_TRUE(newer.calls.empty());
    EXPECT_TRUE(older.calls.empty());
}

} // namespace

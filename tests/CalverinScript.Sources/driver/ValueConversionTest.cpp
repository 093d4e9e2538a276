#include <gtest/gtest.h>

#include "TypedValue.h"
#include "ValueConversion.h"

namespace {

struct HostRow {
    const char* value;
    const char* type;
    const char* valueType;
    const char* expected;
    int timeCodeType;
};

class ConversionForTheHost : public testing::TestWithParam<HostRow> {};

TEST_P(ConversionForTheHost, Holds) {
    const HostRow& row = GetParam();
    ScriptProperties properties;
    if (row.timeCodeType >= 0)
        properties.append({QStringLiteral("TimeCodeType"), QString::number(row.timeCodeType)});
    EXPECT_EQ(ConvertForHost(QString::fromLatin1(row.value), QString::fromLatin1(row.type),
                             QString::fromLatin1(row.valueType), properties,
                             {QStringLiteral("calm"), QStringLiteral("storm")})
                  .toStdString(),
              row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ConversionForTheHost,
    testing::Values(
        HostRow{"50", "TimeData", "Integer", "00:00:02/00", 1}, HostRow{"50", "TimeData", "Integer", "00:00:00/50", -1},
        HostRow{"99.6", "TimeData", "Real", "00:00:01/00", -1}, HostRow{"1:2", "TimeData", "String", "1:2", -1},
        HostRow{"31", "DateData", "Integer", "01/02/1900", -1}, HostRow{"30.6", "DateData", "Real", "01/02/1900", -1},
        HostRow{"24/12/2020", "DateData", "String", "24/12/2020", -1},
        HostRow{"", "DateData", "String", "01/01/1900", -1}, HostRow{"storm", "EnumData", "String", "1", -1},
        HostRow{"hail", "EnumData", "String", "0", -1}, HostRow{"-4", "EnumData", "Integer", "0", -1},
        HostRow{"3", "EnumData", "Integer", "3", -1}, HostRow{"1.6", "EnumData", "Real", "2", -1},
        HostRow{"-1.6", "EnumData", "Real", "0", -1}, HostRow{"1.5", "IntegerData", "Real", "1.5", -1},
        HostRow{"x", "StringData", "String", "x", -1}));

TEST(ConversionForTheHost, TakesTheScriptsValueOrTheUsers) {
    MScriptVariable variable;
    variable.type = QStringLiteral("StringData");
    variable.value = QStringLiteral("user");
    variable.defaultScriptValue = QStringLiteral("script");
    EXPECT_EQ(ConvertForHost(variable), QStringLiteral("script"));
    variable.useDefaultScriptValue = false;
    EXPECT_EQ(ConvertForHost(variable), QStringLiteral("user"));
}

/// The text that a parameter of a type with properties gets from a value; "-" when it does not convert.
std::string ParamText(const char* type, const ScriptProperties& properties, IData& data) {
    MScriptCommandParam param;
    param.type = QString::fromLatin1(type);
    param.properties = properties;
    QString text;
    return ParamToText(param, data, text) ? text.toStdString() : "-";
}

const ScriptProperties kPercent = {{QStringLiteral("MinValue"), QStringLiteral("0")},
                                   {QStringLiteral("MaxValue"), QStringLiteral("100")}};

TEST(ParameterTexts, ClampNumbersToTheScriptsLimits) {
    TypedValue low("p", KXP_INTEGER_DATA, "-5");
    TypedValue high("p", KXP_INTEGER_DATA, "500");
    TypedValue real("p", KXP_REAL_DATA, "100.25");
    EXPECT_EQ(ParamText("IntegerData", kPercent, low), "0");
    EXPECT_EQ(ParamText("IntegerData", kPercent, high), "100");
    EXPECT_EQ(ParamText("IntegerData", {}, high), "500");
    EXPECT_EQ(ParamText("RealData", kPercent, real), "100");
    EXPECT_EQ(ParamText("RealData", {}, real), "100.25");
}

TEST(ParameterTexts, ReadNumbersOutOfTextsAndGiveUpOnOthers) {
    TypedValue text("p", KXP_STRING_DATA, "150");
    TypedValue word("p", KXP_STRING_DATA, "loud");
    EXPECT_EQ(ParamText("IntegerData", kPercent, text), "100");
    EXPECT_EQ(ParamText("IntegerData", kPercent, word), "-");
    EXPECT_EQ(ParamText("RealData", {}, word), "-");
}

TEST(ParameterTexts, ConvertTimesToTheTargetTimeCode) {
    TypedValue time("p", KXP_TIME_DATA, "00:00:01/12");
    time.timeCodeType = 1;
    EXPECT_EQ(ParamText("TimeData", {}, time), "00:00:01/48");
    EXPECT_EQ(ParamText("TimeData", {{QStringLiteral("ToTimeCodeType"), QStringLiteral("1")}}, time), "00:00:01/12");
    TypedValue wrong("p", KXP_TIME_DATA, "soon");
    EXPECT_EQ(ParamText("TimeData", {}, wrong), "-");
}

TEST(ParameterTexts, GiveAnEnumerationsIndexForWholeNumbersAndItsOwnTextOtherwise) {
    TypedValue index("p", KXP_INTEGER_DATA, "2");
    TypedValue item("p", KXP_STRING_DATA, "storm");
    EXPECT_EQ(ParamText("EnumData", {}, index), "2");
    EXPECT_EQ(ParamText("EnumData", {}, item), "-");
    EXPECT_EQ(ParamText("StringData", {}, item), "-");
    EXPECT_EQ(ParamText("DateData", {}, item), "-");
}

} // namespace

#include "VariableCheck.h"

#include <gtest/gtest.h>

#include "ScriptRecords.h"

namespace {

MScriptVariable Of(const char* type, const char* valueType = "String") {
    MScriptVariable variable;
    variable.type = QLatin1String(type);
    variable.valueType = QLatin1String(valueType);
    return variable;
}

void Expect(const MScriptVariable& variable, const char* value, const char* refusal) {
    EXPECT_EQ(RefusalOf(QLatin1String(value), variable).toStdString(), refusal)
        << value << " as " << variable.type.toStdString();
}

TEST(AValueOfAVariable, ThatIsEmptyOrATextFitsAlways) {
    for (const char* type : {"StringData", "IntegerData", "RealData", "EnumData", "TimeData", "DateData", "", "Other"})
        Expect(Of(type), "", "");
    Expect(Of("StringData"), "abc", "");
}

TEST(AValueOfAVariable, IsAWholeNumberOf32BitsForAnInteger) {
    for (const char* value : {"0", "-2147483648", "2147483647"})
        Expect(Of("IntegerData", "Integer"), value, "");
    for (const char* value : {"abc", "1.5", "2147483648", "1e3"})
        Expect(Of("IntegerData", "Integer"), value,
               ("\"" + std::string(value) + "\" is not a whole number of 32 bits.").c_str());
}

TEST(AValueOfAVariable, IsAFiniteNumberForAReal) {
    for (const char* value : {"3.14159265", "-1e-7", "5"})
        Expect(Of("RealData", "Real"), value, "");
    for (const char* value : {"abc", "1,5", "inf", "nan"})
        Expect(Of("RealData", "Real"), value, ("\"" + std::string(value) + "\" is not a number.").c_str());
}

TEST(AValueOfAVariable, IsATimeOrADateAsTheHostReadsThemOrACountAsTheScriptHasIt) {
    for (const char* value : {"01:02:03/04", "1.5", "12:", "-00:00:01/00"})
        Expect(Of("TimeData"), value, "");
    Expect(Of("TimeData"), "soon", "\"soon\" is not a time such as 01:30:00/00.");
    Expect(Of("TimeData", "Integer"), "250", "");
    Expect(Of("TimeData", "Integer"), "01:02:03/04", "\"01:02:03/04\" is not a number, as the script's own value is.");
    Expect(Of("DateData"), "24/12/2026", "");
    for (const char* value : {"soon", "31/02/2026", "2026-12-24", "24/12/26"})
        Expect(Of("DateData"), value, ("\"" + std::string(value) + "\" is not a date such as 24/12/2026.").c_str());
    Expect(Of("DateData", "Integer"), "366", "");
}

TEST(AValueOfAVariable, IsOneOfTheItemsOrTheNumberOfOne) {
    MScriptVariable byText = Of("EnumData");
    Expect(byText, "3", "");
    Expect(byText, "on", "\"on\" is not the number of an item.");
    byText.enumItems = QStringList{QStringLiteral("off"), QStringLiteral("on")};
    Expect(byText, "on", "");
    Expect(byText, "77", "\"77\" is none of the items: off, on.");
    MScriptVariable byNumber = Of("EnumData", "Integer");
    byNumber.enumItems = byText.enumItems;
    Expect(byNumber, "1", "");
    for (const char* value : {"2", "-1", "on"})
        Expect(byNumber, value, ("\"" + std::string(value) + "\" is not the number of an item, from 0 to 1.").c_str());
}

TEST(AValueOfAVariable, OfATimeCodeThatIsNoneIsReadInHundredths) {
    MScriptVariable time = Of("TimeData");
    time.properties.append({QStringLiteral("TimeCodeType"), QStringLiteral("99")});
    Expect(time, "00:00:01/50", "");
}

} // namespace

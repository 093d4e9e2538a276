#include <gtest/gtest.h>

#include "DriverTables.h"
#include "ScanFixture.h"
#include "StoredCommand.h"
#include "XmlLines.h"

namespace {

/// A parameter as a show stores it; attributes and content go into the value's element.
std::string Param(const std::string& type, const std::string& name, const std::string& link,
                  const std::string& attributes, const std::string& content = "") {
    const std::string property =
        link.empty() ? "" : "<Property Name='KXPProp::ScriptUserCommandParamName' Value='" + link + "'/>";
    return "<ObjectParam ID='9' VarType='2' ClassName='I" + type + "' Comment='kept'><" + type + " Name='" + name +
           "' ID='9' " + attributes + ">" + content + "<Properties>" + property +
           "<Property Name='Host::Mark' Value='m'/></Properties></" + type + "><Binding Variable='v'/></ObjectParam>";
}

std::string Stored(const std::string& params) {
    return "<Line Name='Desk'><Command ID='4' Name='Fade' Label='mine'><ObjectParams ID='4' ParamsCount='1'>" + params +
           "<Properties><Property Name='KXPProp::ScriptUserCommandName' "
           "Value='Fade'/></Properties></ObjectParams></Command>"
           "</Line>";
}

/// "Fade" with number 7; each word is "name:Type".
MScriptCommand Fade(const QStringList& params) {
    MScriptCommand command = CommandFromFunction(QStringLiteral("Fade"), QStringLiteral("()"));
    command.params.clear();
    for (const QString& word : params) {
        MScriptCommandParam param;
        param.name = word.section(QLatin1Char(':'), 0, 0);
        param.type = word.section(QLatin1Char(':'), 1) + QStringLiteral("Data");
        if (param.type == QLatin1String("EnumData"))
            param.items = QStringList{QStringLiteral("calm"), QStringLiteral("storm")};
        command.params.append(param);
    }
    command.id = 7;
    return command;
}

Lines Rewritten(const std::string& params, const QStringList& now) {
    StoredCommand stored;
    EXPECT_TRUE(stored.Parse(Stored(params).c_str()));
    return XmlLines(stored.Rewrite(Fade(now)));
}

TEST(StoredCommands, TellTheirOwnerAndTheirFunction) {
    StoredCommand stored;
    ASSERT_TRUE(stored.Parse(Stored("").c_str()));
    EXPECT_EQ(stored.OwnerName(), QStringLiteral("Desk"));
    EXPECT_EQ(stored.FunctionName(), QStringLiteral("Fade"));
    ASSERT_TRUE(stored.Parse("<Line/>"));
    EXPECT_TRUE(stored.OwnerName().isNull());
    EXPECT_TRUE(stored.FunctionName().isEmpty());
    for (const char* bad : {"", "x", "<a", "<a><b></a>"})
        EXPECT_FALSE(stored.Parse(bad)) << bad;
    EXPECT_FALSE(stored.Parse(nullptr));
}

TEST(StoredCommands, KeepWhatTheUserEnteredOverAnEditedScript) {
    const Lines lines = Rewritten(Param("StringData", "level", "level", "String='50' Unit='%'", "<Note>n</Note>"),
                                  {QStringLiteral("time:Time"), QStringLiteral("level:String")});
    const Lines expected = {
        "Line Name=Desk",
        ".Command ID=7 Name=Fade Label=mine",
        "..ObjectParams ID=7 ParamsCount=2",
        "...ObjectParam ID=0 VarType=3 ClassName=ITimeData",
        "....TimeData Name=time ID=0",
        ".....Properties",
        "......Property Name=DataDescriptor::AcceptVariable Value=true",
        "......Property Name=DataDescriptor::VarDirection Value=mddIn",
        "......Property Name=KXPProp::ScriptUserCommandParamName Value=time",
        "...ObjectParam ID=1 VarType=2 ClassName=IStringData Comment=kept",
        "....StringData Name=level ID=1 String=50 Unit=%",
        ".....Properties",
        "......Property Name=DataDescriptor::AcceptVariable Value=true",
        "......Property Name=DataDescriptor::VarDirection Value=mddIn",
        "......Property Name=KXPProp::ScriptUserCommandParamName Value=level",
        "......Property Name=Host::Mark Value=m",
        ".....Note | n",
        "....Binding Variable=v",
        "...Properties",
        "....Property Name=KXPProp::ScriptUserCommandName Value=Fade",
    };
    EXPECT_EQ(lines, expected);
}

TEST(StoredCommands, FindAParameterThatTheUserRenamedByItsLinkFirst) {
    const Lines lines = Rewritten(Param("StringData", "level", "other", "String='wrong'") +
                                      Param("StringData", "Brightness", "level", "String='right'"),
                                  {QStringLiteral("level:String")});
    EXPECT_EQ(lines.at(4), "....StringData Name=level ID=0 String=right");
}

TEST(StoredCommands, FindAParameterWithoutALinkByItsName) {
    EXPECT_EQ(Rewritten(Param("StringData", "level", "", "String='5'"), {QStringLiteral("level:String")}).at(4),
              "....StringData Name=level ID=0 String=5");
}

TEST(StoredCommands, TakeTheirLimitsFromTheScriptOfToday) {
    EXPECT_EQ(
        Rewritten(Param("IntegerData", "p", "p", "Value='5' MinValue='1' MaxValue='9'"), {QStringLiteral("p:Integer")})
            .at(4),
        "....IntegerData Name=p ID=0 Value=5");
}

struct TypeChange {
    const char* oldType;
    const char* oldValue; ///< attribute and text
    const char* newParam;
    const char* expected; ///< behind the number
};

TEST(StoredCommands, CarryAValueIntoAnotherTypeWhereThatCanHoldIt) {
    const TypeChange rows[] = {
        {"StringData", "String='12.6'", "p:Integer", " Value=13"},
        {"StringData", "String='loud'", "p:Integer", ""},
        {"StringData", "String='1.5'", "p:Real", " Value=1.5"},
        {"StringData", "String='loud'", "p:Real", ""},
        {"StringData", "String='storm'", "p:Enum", " Current=1"},
        {"StringData", "String='hail'", "p:Enum", ""},
        {"StringData", "String='1:00'", "p:Time", " Time=1:00"},
        {"IntegerData", "Value='5'", "p:String", " String=5"},
        {"IntegerData", "Value='5'", "p:Real", " Value=5"},
        {"IntegerData", "Value='5'", "p:Time", ""},
        {"RealData", "Value='2.5'", "p:Integer", " Value=3"},
        {"TimeData", "Time='1:00'", "p:String", " String=1:00"},
        {"StringData", "String='nan'", "p:Real", ""},
    };
    for (const TypeChange& row : rows)
        EXPECT_EQ(Rewritten(Param(row.oldType, "p", "p", row.oldValue), {QString::fromLatin1(row.newParam)}).at(4),
                  "...." + QString::fromLatin1(row.newParam).section(QLatin1Char(':'), 1).toStdString() +
                      "Data Name=p ID=0" + row.expected)
            << row.oldType << " " << row.oldValue << " " << row.newParam;
}

TEST(StoredCommands, TurnAnEnumerationIntoTheTextOfItsItem) {
    EXPECT_EQ(
        Rewritten(Param("EnumData", "p", "p", "Current='1'",
                        "<EnumStrings><EnumString Name='x' Value='0'/><EnumString Name='y' Value='1'/></EnumStrings>"),
                  {QStringLiteral("p:String")})
            .at(4),
        "....StringData Name=p ID=0 String=y");
}

TEST(StoredCommands, KeepValuesThatLookLikeMarkup) {
    EXPECT_EQ(Rewritten(Param("StringData", "p", "p", "String='&amp;#x41; &lt;b&gt; &quot;q&quot; &amp;#x'"),
                        {QStringLiteral("p:String")})
                  .at(4),
              "....StringData Name=p ID=0 String=&#x41; <b> \"q\" &#x");
}

TEST(StoredCommands, OfAnEightBitHostStaySo) {
    StoredCommand stored;
    ASSERT_TRUE(stored.Parse(Stored(Param("StringData", "p", "p", "String='\xE9'")).c_str()));
    const std::string text = stored.Rewrite(Fade({QStringLiteral("p:String")}));
    EXPECT_NE(text.find("\"\xE9\""), std::string::npos) << text;
}

/// The parameters of a stored command as a host hands them over.
class StoredParams : public plain::Params {
public:
    TypedValue& Add(const std::string& name, std::uint32_t type, const char* direction = "mddIn") {
        m_values.push_back(std::make_unique<TypedValue>(name, type));
        m_values.back()->SetProperty(kParamNameProperty, name.c_str(), 0, 0);
        m_values.back()->SetProperty(kDirectionProperty, direction, 0, 0);
        return *m_values.back();
    }
    IObjectParam* GetParam(std::uint32_t index) override {
        return index < m_values.size() ? m_values[index].get() : nullptr;
    }
    std::uint32_t GetParamCount() override { return static_cast<std::uint32_t>(m_values.size()); }

private:
    std::vector<std::unique_ptr<TypedValue>> m_values;
};

MScriptCommand Limited() {
    MScriptCommand command = Fade({QStringLiteral("n:Integer")});
    command.params[0].properties = {{QStringLiteral("MinValue"), QStringLiteral("0")},
                                    {QStringLiteral("MaxValue"), QStringLiteral("1e2")}};
    return command;
}

TEST(StoredParameters, MatchByCountNameDirectionAndType) {
    const MScriptCommand command = Fade({QStringLiteral("a:String"), QStringLiteral("b:Real")});
    StoredParams same;
    same.Add("a", KXP_STRING_DATA);
    EXPECT_FALSE(MatchesStoredParams(command, same));
    same.Add("b", KXP_REAL_DATA);
    EXPECT_TRUE(MatchesStoredParams(command, same));
    same.Add("c", KXP_REAL_DATA);
    EXPECT_FALSE(MatchesStoredParams(command, same));
    StoredParams name;
    name.Add("b", KXP_REAL_DATA);
    name.Add("a", KXP_STRING_DATA);
    EXPECT_FALSE(MatchesStoredParams(command, name));
    StoredParams direction;
    direction.Add("a", KXP_STRING_DATA, "mddOut");
    direction.Add("b", KXP_REAL_DATA);
    EXPECT_FALSE(MatchesStoredParams(command, direction));
    StoredParams type;
    type.Add("a", KXP_STRING_DATA);
    type.Add("b", KXP_INTEGER_DATA);
    EXPECT_FALSE(MatchesStoredParams(command, type));
}

TEST(StoredParameters, MatchByTheLinkWhenTheUserHasRenamedOne) {
    const MScriptCommand command = Fade({QStringLiteral("a:String")});
    StoredParams params;
    params.Add("Brightness", KXP_STRING_DATA).SetProperty(kParamNameProperty, "a", 0, 0);
    EXPECT_TRUE(MatchesStoredParams(command, params));
}

TEST(StoredParameters, CompareLimitsAsNumbersWhereBothSidesHaveThem) {
    StoredParams params;
    TypedValue& value = params.Add("n", KXP_INTEGER_DATA);
    EXPECT_TRUE(MatchesStoredParams(Limited(), params)) << "a stored value without limits";
    value.minimum = 0;
    value.maximum = 100;
    EXPECT_TRUE(MatchesStoredParams(Limited(), params));
    EXPECT_TRUE(MatchesStoredParams(Fade({QStringLiteral("n:Integer")}), params)) << "a script without limits";
    value.maximum = 99;
    EXPECT_FALSE(MatchesStoredParams(Limited(), params));
}

TEST(StoredParameters, CompareLengthPrecisionAndTimeCode) {
    const struct {
        const char* type;
        const char* property;
        std::uint32_t code;
        std::int32_t TypedValue::*field;
    } rows[] = {{"s:String", "MaxLength", KXP_STRING_DATA, &TypedValue::maxLength},
                {"r:Real", "Precision", KXP_REAL_DATA, &TypedValue::precision},
                {"t:Time", "TimeCodeType", KXP_TIME_DATA, &TypedValue::timeCodeType}};
    for (const auto& row : rows) {
        MScriptCommand command = Fade({QString::fromLatin1(row.type)});
        command.params[0].properties = {{QString::fromLatin1(row.property), QStringLiteral("3")}};
        StoredParams params;
        TypedValue& value = params.Add(std::string(1, row.type[0]), row.code);
        value.*row.field = 3;
        EXPECT_TRUE(MatchesStoredParams(command, params)) << row.type;
        value.*row.field = 2;
        EXPECT_FALSE(MatchesStoredParams(command, params)) << row.type;
    }
}

} // namespace

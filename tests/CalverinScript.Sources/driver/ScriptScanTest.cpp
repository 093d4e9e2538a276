#include "ScanFixture.h"

namespace {

class Scanning : public ScanFixture {};

TEST_F(Scanning, MakesCommandsOfFunctionsButForThoseThatBeginWithAnUnderscore) {
    EXPECT_EQ(Told(Analyse("({ f: function(a, b) {}, _helper: function() {}, g: function() {} })").functions),
              "f(out Result, in a, in b) g(out Result)");
}

TEST_F(Scanning, OfAFunctionWithoutParametersGivesTheOneParameterResult) {
    const ScanResult result = Analyse("({ f: function() {} })");
    ASSERT_EQ(result.functions.at(0).params.size(), 1);
    EXPECT_EQ(result.functions[0].params[0].name, QStringLiteral("Result"));
    EXPECT_EQ(result.functions[0].params[0].direction, ParamDirection::Out);
    EXPECT_EQ(result.functions[0].params[0].type, QStringLiteral("StringData"));
}

TEST_F(Scanning, ReadsParametersOverLinesAndPastComments) {
    EXPECT_EQ(Told(Analyse("({ f: function(a, // first)\n   b /* (last */ ) {} })").functions),
              "f(out Result, in a, in b)");
}

TEST_F(Scanning, KnowsTheFourGroupsOfTheDeviceAndTreatsThemAlike) {
    EXPECT_EQ(
        Told(Analyse("({ Device: { a: 1 }, DeviceR: { b: 2 }, DeviceW: { c: 3 }, DeviceRW: { d: 4 } })").variables),
        "a:IntegerData=1 b:IntegerData=2 c:IntegerData=3 d:IntegerData=4");
}

TEST_F(Scanning, TakesTheTypeOfAVariableFromItsValue) {
    const ScanResult result =
        Analyse("({ Device: { i: 5, n: -3, r: 1.5, s: 'text', e: '', big: 4294967296, edge: 2147483647,"
                " third: 1 / 3, zero: -0 } })");
    EXPECT_EQ(Told(result.variables), "i:IntegerData=5 n:IntegerData=-3 r:RealData=1.5 s:StringData=text e:StringData= "
                                      "big:RealData=4294967296 edge:IntegerData=2147483647 "
                                      "third:RealData=0.333333333333333 zero:IntegerData=0");
    EXPECT_EQ(result.variables[0].valueType, QStringLiteral("Integer"));
    EXPECT_EQ(result.variables[2].valueType, QStringLiteral("Real"));
    EXPECT_EQ(result.variables[3].valueType, QStringLiteral("String"));
    EXPECT_EQ(result.variables[0].defaultScriptValue, QStringLiteral("5"));
    EXPECT_TRUE(result.variables[0].useDefaultScriptValue);
    EXPECT_EQ(result.variables[0].data, nullptr);
}

TEST_F(Scanning, DropsValuesWithoutAType) {
    EXPECT_EQ(
        Told(Analyse("({ Device: { b: true, n: null, u: undefined, x: 0 / 0, y: 1 / 0, f: function() {}, o: {} } })")
                 .variables),
        "");
}

TEST_F(Scanning, LeavesOutNamesThatTheHostRefusesOrGivesToEveryDevice) {
    refusedNames = {"Bad"};
    EXPECT_EQ(Told(Analyse("({ Device: { Bad: 1, Activity: 1, Timerail: 1, 'x\\u0394': 1, Good: 1 } })").variables),
              "Good:IntegerData=1");
}

TEST_F(Scanning, KeepsTheDefaultVariablesFromBeingPublishedWhileTheyAreThere) {
    const std::string script = "({ Device: { Status: 1, Error: 1, CurrentScriptFileName: 1, CurrentScriptText: 1,"
                               " ScriptFunctions: 1, Own: 1 } })";
    EXPECT_EQ(Told(Analyse(script).variables), "Own:IntegerData=1");
    removeDefaults = true;
    EXPECT_EQ(Analyse(script).variables.size(), 6u);
}

TEST_F(Scanning, LetsTheScriptsOwnOptionDecideOverTheSetup) {
    const std::string with = "({ Info: { Options: { RemoveDefaultCommandsAndVariables: ";
    const std::string behind = " } }, Device: { Status: 1 } })";
    EXPECT_EQ(Analyse(with + "true" + behind).variables.size(), 1u);
    EXPECT_EQ(Analyse(with + "true" + behind).removeDefaults, true);
    removeDefaults = true;
    EXPECT_EQ(Analyse(with + "false" + behind).variables.size(), 0u);
    for (const char* other : {"1", "'true'", "null", "{}", "new Boolean(true)"})
        EXPECT_EQ(Analyse(with + other + behind).removeDefaults, std::nullopt) << other;
}

TEST_F(Scanning, CountsTheFirstOfANameInTwoGroups) {
    EXPECT_EQ(Told(Analyse("({ Device: { a: 1 }, DeviceR: { a: 'two' } })").variables), "a:IntegerData=1");
}

TEST_F(Scanning, MakesSettingsOfTheSetupWithTheFieldOfTheirType) {
    const ScanResult result =
        Analyse("({ Setup: { s: 'x', i: 2, r: 2.5, b: true, o: {}, n: null, f: function() {} } })");
    EXPECT_EQ(Told(result.settings), "s:StringData=x i:IntegerData=2 r:RealData=2.5");
    EXPECT_EQ(result.settings[0].widget, 0);
    EXPECT_EQ(result.settings[1].widget, 2);
    EXPECT_EQ(result.settings[2].widget, 3);
}

TEST_F(Scanning, NotesVariablesOfTheHostThatAreThere) {
    GivenHostVariable("Level", KXP_INTEGER_DATA, "7");
    GivenHostVariable("Lamp.Hours", KXP_REAL_DATA, "1.5");
    const ScanResult result =
        Analyse("({ Calverin: { Level: 0, Gone: 0 }, CalverinR: { Level: 0 }, CalverinW: { Lamp: { Hours: 0, Other: 1,"
                " f: function() {}, none: null } }, CalverinRW: {} })");
    EXPECT_EQ(Told(result.monitors), "Level:IntegerData=7 Lamp.Hours:RealData=1.5");
    EXPECT_EQ(result.monitors[0].defaultScriptValue, QStringLiteral("7"));
    EXPECT_TRUE(result.variables.empty());
}

TEST_F(Scanning, FindsObjectsOfTheHostInTheDeviceGroupToo) {
    GivenHostVariable("Lamp.Hours", KXP_REAL_DATA, "1.5");
    EXPECT_EQ(Told(Analyse("({ Device: { Lamp: { Hours: 0 } } })").monitors), "Lamp.Hours:RealData=1.5");
}

TEST_F(Scanning, NotesAVariableThatTheDeviceHasAlreadyAndPublishesItAgain) {
    GivenDeviceVariable("Level", KXP_INTEGER_DATA, "9").instanceId = 77;
    const ScanResult result = Analyse("({ Device: { Level: 1 } })");
    EXPECT_EQ(Told(result.variables), "Level:IntegerData=1");
    EXPECT_EQ(Told(result.monitors), "Desk.Level:IntegerData=9");
    EXPECT_EQ(result.monitors[0].instanceId, 77u);
}

TEST_F(Scanning, BindsNothingInAnAnalysis) {
    GivenHostVariable("Level", KXP_INTEGER_DATA, "7");
    Analyse("({ Calverin: { Level: 0 } })");
    EXPECT_EQ(Evaluate("published.Calverin.Level"), "0");
}

TEST_F(Scanning, AddsTypesRangesAndItemsFromInfo) {
    const ScanResult result =
        Analyse("({ Info: { Variables: { l: { MinValue: 0, Type: 'Real', MaxValue: '9.5', Precision: 2, MaxLength: 3,"
                " Hint: 'x', n: null, f: function() {}, o: {} },"
                " m: { Type: 'Enum', Items: ['a', 2, 'c'] }, d: { Type: 'Date' }, t: { Type: 'Time', TimeCodeType: 1 },"
                " s: { MaxLength: 8 }, i: { Type: 'Nothing', MinValue: -1 }, gone: { MinValue: 1 } } },"
                " Device: { l: 1, m: 'a', d: '', t: '', s: '', i: 1 } })");
    EXPECT_EQ(Told(result.variables),
              "l:RealData=1 m:EnumData=a d:DateData= t:TimeData= s:StringData= i:IntegerData=1");
    EXPECT_EQ(Told(result.variables[0].properties), "MinValue=0 MaxValue=9.5 Precision=2");
    EXPECT_EQ(result.variables[1].enumItems,
              (QStringList{QStringLiteral("a"), QStringLiteral("2"), QStringLiteral("c")}));
    EXPECT_EQ(Told(result.variables[3].properties), "TimeCodeType=1");
    EXPECT_EQ(Told(result.variables[4].properties), "MaxLength=8");
    EXPECT_EQ(Told(result.variables[5].properties), "MinValue=-1");
}

TEST_F(Scanning, TakesItemsForEnumerationsAlone) {
    const ScanResult result = Analyse("({ Info: { Variables: { i: { Items: ['a'] } }, Setup: { s: { Items: ['a'] } },"
                                      "           Commands: { f: { Params: { p: { Items: ['a'] } } } } },"
                                      "   Device: { i: 1 }, Setup: { s: 1 }, f: function(p) {} })");
    EXPECT_TRUE(result.variables.at(0).enumItems.isEmpty());
    EXPECT_TRUE(result.settings.at(0).items.isEmpty());
    EXPECT_TRUE(result.functions.at(0).params.at(1).items.isEmpty());
}

TEST_F(Scanning, DropsLimitsThatAreNoNumbers) {
    const ScanResult result =
        Analyse("({ Info: { Variables: { i: { MinValue: 'low', MaxValue: NaN }, r: { Precision: 1.5 },"
                " s: { MaxLength: true } } }, Device: { i: 1, r: 1.5, s: '' } })");
    for (const MScriptVariable& variable : result.variables)
        EXPECT_EQ(Told(variable.properties), "") << variable.name.toStdString();
}

TEST_F(Scanning, ReadsInfoInAnAnalysisAlone) {
    EXPECT_EQ(Told(Run("({ Info: { Variables: { l: { Type: 'Real' } } }, Device: { l: 1 } })").variables),
              "l:IntegerData=1");
}

TEST_F(Scanning, GivesSettingsTheFieldThatInfoNames) {
    const ScanResult result =
        Analyse("({ Info: { Setup: { p: { Widget: 'Serial', Hint: 'port', Width: 80 },"
                " c: { Widget: 'CheckBox' }, e: { Type: 'Enum', Items: ['x'] }, u: { Widget: 'No' } } },"
                " Setup: { p: '', c: 1, e: 0, u: 1 } })");
    EXPECT_EQ(result.settings[0].widget, 14);
    EXPECT_EQ(Told(result.settings[0].properties), "Widget=Serial Hint=port Width=80");
    EXPECT_EQ(result.settings[1].widget, 8);
    EXPECT_EQ(result.settings[2].widget, 4);
    EXPECT_EQ(result.settings[2].items, QStringList{QStringLiteral("x")});
    EXPECT_EQ(result.settings[3].widget, 2);
}

TEST_F(Scanning, GivesCommandsNamesGroupsAndTypedParameters) {
    const ScanResult result = Analyse(
        "({ Info: { Commands: { f: { Name: 'Fade to', GroupName: 'Light', GroupOrder: 3, ID: 9, Hint: 'x',"
        " Params: { a: { Type: 'Integer', MinValue: 0, MaxValue: 100 }, b: { Type: 'Enum', Items: ['x', 'y'] },"
        " Result: { Type: 'Real' }, c: { MinValue: 1 } } }, gone: { Name: 'Gone' } } }, f: function(a, b) {} })");
    const MScriptCommand& f = result.functions.at(0);
    EXPECT_EQ(Told(f.properties), "Name=Fade to GroupName=Light GroupOrder=3");
    EXPECT_EQ(f.params[0].type, QStringLiteral("RealData"));
    EXPECT_EQ(f.params[1].type, QStringLiteral("IntegerData"));
    EXPECT_EQ(Told(f.params[1].properties), "MinValue=0 MaxValue=100");
    EXPECT_EQ(f.params[2].items.size(), 2);
}

TEST_F(Scanning, IgnoresACommandNameThatIsABuiltInOnes) {
    for (const char* name : {"Load From File", "Load From Text", "Execute Function", "Execute Function With Params"})
        EXPECT_EQ(
            Told(Analyse(std::string("({ Info: { Commands: { f: { Name: '") + name + "' } } }, f: function() {} })")
                     .functions.at(0)
                     .properties),
            "")
            << name;
}

TEST_F(Scanning, TakesInfoForWhatItIsAndSurvivesWhatItIsNot) {
    for (const char* info :
         {"5", "null", "[]", "'text'", "function() {}", "{ Variables: 5, Setup: [], Commands: 'x', Options: 1 }",
          "{ Variables: { a: 5 }, Commands: { f: null } }", "{ Variables: { a: { Items: 4, Type: {} } } }"})
        EXPECT_EQ(Told(Analyse(std::string("({ Info: ") + info + ", Device: { a: 1 }, f: function() {} })").variables),
                  "a:IntegerData=1")
            << info;
}

TEST_F(Scanning, ReadsNoMoreItemsThanAnEnumerationCanHave) {
    const ScanResult result =
        Analyse("({ Info: { Variables: { a: { Type: 'Enum', Items: new Array(4000000000) } } }, Device: { a: 1 } })");
    EXPECT_EQ(result.variables.at(0).enumItems.size(), 65536);
}

TEST_F(Scanning, GoesOnBehindAGetterThatThrows) {
    const ScanResult result = Analyse("({ Device: { get bad() { throw new Error('no') }, good: 1 } })");
    EXPECT_EQ(Told(result.variables), "good:IntegerData=1");
    EXPECT_FALSE(engine.hasUncaughtException());
}

TEST_F(Scanning, LeavesOutWhatCannotBeReadWhateverIsThrown) {
    const ScanResult result = Analyse(
        "({ get Device() { throw new Error('no') }, get DeviceR() { throw { x: 1 } },"
        " get f() { throw function(a) {} }, DeviceW: { get a() { throw 5 }, b: 1 },"
        " Setup: { get a() { throw 5 }, b: 2 }, get Info() { throw { Variables: { b: { Type: 'Real' } } } } })");
    EXPECT_EQ(Told(result.variables), "b:IntegerData=1");
    EXPECT_EQ(Told(result.settings), "b:IntegerData=2");
    EXPECT_EQ(Told(result.functions), "");
    EXPECT_FALSE(engine.hasUncaughtException());
}

TEST_F(Scanning, TakesNothingOutOfTheErrorOfATextThatIsRefused) {
    const ScanResult result =
        Analyse("function refuse() { throw new Error('no (x, y)') }"
                "var f = function(a) {}; f.toString = refuse;"
                "({ Info: { Variables: { m: { Type: 'Enum', Items: ['a', { toString: refuse }, 'c'] } } },"
                "   Device: { m: 0 }, f: f })");
    EXPECT_EQ(Told(result.functions), "f(out Result)");
    EXPECT_EQ(result.variables.at(0).enumItems, (QStringList{QStringLiteral("a"), QString(), QStringLiteral("c")}));
}

TEST_F(Scanning, LeavesOutNamesThatNoHostCanCarry) {
    const ScanResult result =
        Analyse("({ '': function() {}, 'x\\u0394': function() {}, 'a\\nb': function() {}, 'a\\u0000b': function() {},"
                " 'Gr\\u00f6\\u00dfe of': function() {}, Device: { '': 1, 'a\\nb': 1, 'a\\u0000b': 1, 'a b': 1 },"
                " Setup: { '': 1, '\\u0394': 2 } })");
    EXPECT_EQ(Told(result.functions), "Gr\u00f6\u00dfe of(out Result)");
    EXPECT_EQ(Told(result.variables), "a b:IntegerData=1");
    EXPECT_EQ(Told(result.settings), "\u0394:IntegerData=2") << "settings do not leave the setup";
}

TEST_F(Scanning, KeepsACommandsNameAndStatusWhenInfoHasEmptyOnes) {
    const ScanResult result =
        Analyse("({ Info: { Commands: { f: { Name: '', Status: '', GroupName: '' } } }, f: function() {} })");
    EXPECT_EQ(Told(result.functions.at(0).properties), "GroupName=");
}

TEST_F(Scanning, TakesUndefinedInInfoAsTextAsIsMeant) {
    const ScanResult result =
        Analyse("({ Info: { Setup: { s: { Hint: undefined, Prefix: null } } }, Setup: { s: 1 } })");
    EXPECT_EQ(Told(result.settings.at(0).properties), "Hint=undefined");
}

TEST_F(Scanning, TakesNoMembersOfPrototypesWhateverTheirNames) {
    const ScanResult result =
        Analyse("({ __proto__: { f: function() {}, Device: { a: 1 } }, constructor: function(c) {},"
                " Device: { __proto__: { b: 1 }, hasOwnProperty: 2, toString: 'x' } })");
    EXPECT_EQ(Told(result.functions), "constructor(out Result, in c)");
    EXPECT_EQ(Told(result.variables), "hasOwnProperty:IntegerData=2 toString:StringData=x");
}

TEST_F(Scanning, ReadsObjectsThatHoldThemselves) {
    const ScanResult result =
        Analyse("var o = { f: function() {} }; o.Device = o.Calverin = o.Info = o.Setup = o; o.a = 1; o");
    EXPECT_EQ(Told(result.variables), "a:IntegerData=1");
    EXPECT_EQ(Told(result.settings), "a:IntegerData=1");
}

TEST_F(Scanning, ReadsObjectsThatChangeWhileTheyAreRead) {
    const ScanResult result =
        Analyse("var d = { get a() { delete d.b; for (var i = 0; i < 9; ++i) d['x' + i] = i; return 1 }, b: 2 };"
                "({ Device: d })");
    EXPECT_EQ(Told(result.variables), "a:IntegerData=1");
}

TEST_F(Scanning, OfAValueThatIsNoObjectFindsNothing) {
    for (const char* script : {"5", "'text'", "null", "undefined", "true", ""})
        EXPECT_TRUE(Analyse(script).functions.empty()) << script;
}

TEST_F(Scanning, IgnoresMembersOutsideTheNineObjects) {
    const ScanResult result =
        Analyse("({ Devices: { a: 1 }, device: { b: 1 }, Other: { c: 1 }, Device: 5, Setup: [] })");
    EXPECT_TRUE(result.variables.empty());
    EXPECT_TRUE(result.settings.empty());
}

} // namespace

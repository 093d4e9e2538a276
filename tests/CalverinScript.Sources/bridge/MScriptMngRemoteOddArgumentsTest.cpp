#include "InAScript.h"

namespace {

/// A call with arguments that nobody should give, and what comes of it. Nothing throws: what has the wrong type is converted
/// as the script language converts, and goes to the host like that.
struct OddCall {
    const char* call;
    const char* onNewer; ///< the result as text
    const char* onOlder;
    const char* onNone; ///< without links and variables
    const char* asked;  ///< what the newer link or the variable sees; "" for nothing
};

// clang-format off
const OddCall kOddCalls[] = {
    {"OpenUserScreen(undefined)", "0", "0", "19", "OpenUserScreen||0|0|0"},
    {"OpenUserScreen(null, '1')", "0", "0", "19", "OpenUserScreen||1|0|0"},
    {"OpenUserScreen('S', {}, NaN, 1e300)", "0", "0", "19", "OpenUserScreen|S|0|0|0"},
    {"OpenUserScreen('S', 'x', true, -1.9)", "0", "0", "19", "OpenUserScreen|S|0|1|-1"},
    {"OpenUserScreen('S', 2)", "19", "19", "19", ""},
    {"OpenUserScreen('S', -1)", "19", "19", "19", ""},
    {"OpenUserScreen('S', 1, 2, 3, 4)", "0", "0", "19", "OpenUserScreen|S|1|2|3"},
    {"CloseUserScreen({})", "0", "0", "19", "CloseUserScreen|[object Object]"},
    {"CloseUserScreen([1, 2])", "0", "0", "19", "CloseUserScreen|1,2"},
    {"GotoPage(5, 'x')", "0", "0", "19", "GotoPage|5|0"},
    {"GotoPage('S', 4294967296)", "0", "0", "19", "GotoPage|S|0"},
    {"GotoPage('S', 2147483648)", "0", "0", "19", "GotoPage|S|-2147483648"},
    {"GotoPage('S', Infinity)", "0", "0", "19", "GotoPage|S|0"},
    {"StartTask(undefined)", "0", "0", "19", "StartTask|"},
    {"StartTask(null)", "0", "0", "19", "StartTask|"},
    {"StartTask(true)", "0", "0", "19", "StartTask|true"},
    {"StartTask(function f() {})", "0", "0", "19", "StartTask|function f() {}"},
    {"StartTask('a\\0b')", "0", "0", "19", "StartTask|a"},
    {"StartTask('\\u20ac')", "0", "0", "19", "StartTask|?"},
    {"PauseTask(NaN)", "0", "0", "19", "PauseTask|NaN"},
    {"StopTask('T', 'now')", "0", "0", "19", "StopTask|T|0"},
    {"StopTask('T', undefined)", "0", "0", "19", "StopTask|T|0"},
    {"GotoLabel('T', 7)", "0", "0", "19", "GotoLabel|T|7"},
    {"GotoLabel('T', null)", "0", "0", "19", "GotoLabel|T|"},
    {"GotoLine('T', null)", "0", "0", "19", "GotoLine|T|0"},
    {"GotoLine('T', '12')", "0", "0", "19", "GotoLine|T|12"},
    {"GotoLine('T', '12abc')", "0", "0", "19", "GotoLine|T|0"},
    {"GotoTime('T', 1.9)", "0", "0", "19", "GotoTime|T|1"},
    {"GotoTime('T', -1.9)", "0", "0", "19", "GotoTime|T|-1"},
    {"GotoTime('T', [5])", "0", "0", "19", "GotoTime|T|5"},
    {"LoadShow({ toString: function () { return 'x' } }, '7')", "0", "0", "19", "LoadShow|x|7"},
    {"RegisterGroup('G', 'false')", "0", "0", "19", "SetHandler;RegisterGroup|G|<Options><Option name=\"acceptevents\" value=\"true\" /></Options>"},
    {"RegisterGroup('G', 0)", "0", "0", "19", "SetHandler;RegisterGroup|G|"},
    {"RegisterGroup('G', NaN)", "0", "0", "19", "SetHandler;RegisterGroup|G|"},
    {"RegisterGroup(7, {})", "0", "0", "19", "SetHandler;RegisterGroup|7|<Options><Option name=\"acceptevents\" value=\"true\" /></Options>"},
    {"UnregisterGroup(null)", "0", "0", "19", "UnregisterGroup|"},
    {"GetObjectList('', -1)", "", "", "", ""},
    {"GetObjectList('', 31)", "", "", "", ""},
    {"GetObjectList('', 4294967326)", "", "", "", "GetObjectList||30"},
    {"GetObjectList('', 'x')", "", "", "", "GetObjectList||0"},
    {"GetObjectList(null, 1000.9)", "", "", "", "GetObjectList||1000"},
    {"GetObject('O', -1)", "", "", "", "GetObject|O|65535"},
    {"GetObject('O', 65536)", "", "", "", "GetObject|O|0"},
    {"GetObject('O', 'deep')", "", "", "", "GetObject|O|0"},
    {"SetProperty('O', 'P', 5)", "0", "0", "19", "SetProperty|O|P|5"},
    {"SetProperty('O', 'P', null)", "0", "0", "19", "SetProperty|O|P|"},
    {"SetProperty('O', 'P', [1, 2])", "0", "0", "19", "SetProperty|O|P|1,2"},
    {"SetPropertyAsInt('O', 'P', 'x')", "0", "0", "19", "SetPropertyAsInt|O|P|0"},
    {"SetPropertyAsInt('O', 'P', 1e10)", "0", "0", "19", "SetPropertyAsInt|O|P|1410065408"},
    {"GetProperty(1, 2)", "", "", "", "GetProperty|1|2"},
    {"GetPropertyAsInt(1, 2)", "0", "0", "0", "GetProperty|1|2"},
    {"Perform({}, [], null)", "", "", "", "Perform|[object Object]||<parameters />\n"},
    {"Perform('O', 'A', 'XML', 5)", "", "", "", "Perform|O|A|5"},
    {"Perform('O', 'A', 'L', 'a=\\u20ac')", "", "", "", "Perform|O|A|<parameters>\n\t<parameter name=\"a\" value=\"?\" />\n</parameters>\n"},
    {"Perform('O', 'A', 'L', 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11)", "", "", "", "Perform|O|A|<parameters />\n"},
    {"PerformAsync(undefined, 'O')", "19", "16", "16", ""},
    {"PerformAsync('f')", "19", "16", "16", ""},
    {"PerformAsync({})", "19", "16", "16", ""},
    {"SetValue(undefined, undefined)", "48", "48", "19", ""},
    {"SetValue('v', null)", "0", "0", "19", "text||0|0"},
    {"SetValue('v', {})", "0", "0", "19", "text|[object Object]|0|0"},
    {"SetValue('v', 1.5)", "0", "0", "19", "text|1.5|0|0"},
    {"SetValueAsInteger('v', {})", "0", "0", "19", "int|0|0|0"},
    {"SetValueAsInteger('v', 99999999999)", "0", "0", "19", "int|0|0|0"},
    {"SetValueAsInteger('v', null)", "0", "0", "19", "int|0|0|0"},
    {"SetValueAsInteger('v', true)", "0", "0", "19", "int|0|0|0"},
    {"GetValueAsInteger(5)", "0", "0", "0", ""},
    {"GetValueAsReal({})", "0", "0", "0", ""},
    {"GetValueAsString(null)", "", "", "", ""},
    {"GetValueAsString('v', 1, 2)", "held", "held", "", ""},
    {"ClearInterval('x')", "undefined", "undefined", "undefined", ""},
    {"ClearTimeout(null)", "undefined", "undefined", "undefined", ""},
    {"TraceMessage({}, [])", "undefined", "undefined", "undefined", ""},
    {"TraceMessage(undefined, 4)", "undefined", "undefined", "undefined", ""},
    {"EnumStringToIndex(null, 'a')", "-1", "-1", "-1", ""},
    {"EnumStringToIndex(undefined)", "-1", "-1", "-1", ""},
    {"EnumStringToIndex(['a', null, undefined], null)", "-1", "-1", "-1", ""},
    {"EnumStringToIndex(['a', 5], 5)", "1", "1", "1", ""},
    {"DateStringToDay(5)", "5", "5", "5", ""},
    {"DateStringToMonth({})", "1", "1", "1", ""},
    {"DateStringToYear(null)", "1900", "1900", "1900", ""},
    {"DateStringToDayOfWeekAsNumber([])", "2", "2", "2", ""},
    {"TimeStringToHours(5)", "0", "0", "0", ""},
    {"TimeStringToMinutes(null, 99)", "0", "0", "0", ""},
    {"TimeStringToSeconds('01:02:03/04', -1)", "3", "3", "3", ""},
    {"TimeStringToFrames('01:02:03/04', 'x')", "4", "4", "4", ""},
    {"PostponeResult(1, 2)", "0", "0", "0", ""},
    {"SetResult('x', 'y')", "undefined", "undefined", "undefined", ""},
    {"SetResult(-1)", "undefined", "undefined", "undefined", ""},
    {"SetResult(99999999999, {})", "undefined", "undefined", "undefined", ""},
};
// clang-format on

TEST_F(InAScript, OddArgumentsAreConvertedAndNeverThrow) {
    FakeVariable& variable = host.variables["v"];
    variable.text = "held";
    for (const OddCall& row : kOddCalls) {
        const std::string call = std::string("QCalverin.") + row.call;
        variable.written.clear();
        newer.calls.clear();
        Offer(remote);
        EXPECT_EQ(Run(call), row.onNewer) << call;
        std::string asked = variable.written;
        for (const std::string& seen : newer.calls)
            asked += (asked.empty() ? "" : ";") + seen;
        EXPECT_EQ(asked, row.asked) << call;
        Offer(onOlder);
        EXPECT_EQ(Run(call), row.onOlder) << call << " on the older link";
        Offer(onNone);
        EXPECT_EQ(Run(call), row.onNone) << call << " without a host";
    }
}

} // namespace

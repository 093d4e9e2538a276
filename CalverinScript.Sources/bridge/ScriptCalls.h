#pragma once

/// @file
/// The calls of `QCalverin` as a script's author is offered them, in the order in which they are shown. Completion, notes on scripts
/// and the reference read this table; a test holds it against the methods of MScriptMngRemote. Gaps and trailing blanks of the
/// inserted texts are places for the caret and for what is typed next. Pure data, without threads.

/// One call.
struct ScriptCall {
    const char* name;      ///< with `QCalverin.` before it
    const char* insertion; ///< what is put into a script
    const char* signature; ///< result, name and parameters, for people
};

inline constexpr ScriptCall kScriptCalls[] = {
    {"QCalverin.SetValue", "QCalverin.SetValue( \"\", \"\" );",
     "MERR_XXX QCalverin.SetValue(string variableName, string value)"},
    {"QCalverin.SetValueAsInteger", "QCalverin.SetValueAsInteger( \"\", \"\" );",
     "MERR_XXX QCalverin.SetValueAsInteger(string variableName, string value)"},
    {"QCalverin.GetValueAsString", "QCalverin.GetValueAsString( \"\" );",
     "string QCalverin.GetValueAsString(string variableName)"},
    {"QCalverin.GetValueAsInteger", "QCalverin.GetValueAsInteger( \"\" );",
     "integer QCalverin.GetValueAsInteger(string variableName)"},
    {"QCalverin.GetValueAsReal", "QCalverin.GetValueAsReal( \"\" );",
     "real QCalverin.GetValueAsReal(string variableName)"},
    {"QCalverin.RegisterGroup", "QCalverin.RegisterGroup( \"\" );",
     "MERR_XXX QCalverin.RegisterGroup(string groupName)"},
    {"QCalverin.UnregisterGroup", "QCalverin.UnregisterGroup();", "MERR_XXX QCalverin.UnregisterGroup()"},
    {"QCalverin.Perform", "QCalverin.Perform( \"\", \"\", \"XML\", \"<parameters>  </parameters>\" );",
     "string QCalverin.Perform(string objectName, string action, string parameterType, string param1, ..., string "
     "param10)"},
    {"QCalverin.PerformAsync", "QCalverin.PerformAsync(  , \"\", \"\", \"XML\", \"<parameters>  </parameters>\" );",
     "MERR_XXX QCalverin.PerformAsync(function function, string objectName, string action, string parameterType, "
     "string param1, ..., string param10)"},
    {"QCalverin.PostponeResult", "QCalverin.PostponeResult();", "integer QCalverin.PostponeResult()"},
    {"QCalverin.SetResult", "QCalverin.SetResult(  ,  );", "QCalverin.SetResult( integer resultID, string result )"},
    {"QCalverin.StartTask", "QCalverin.StartTask( \"\" );", "MERR_XXX QCalverin.StartTask(string taskName)"},
    {"QCalverin.PauseTask", "QCalverin.PauseTask( \"\" );", "MERR_XXX QCalverin.PauseTask(string taskName)"},
    {"QCalverin.StopTask", "QCalverin.StopTask( \"\" );", "MERR_XXX QCalverin.StopTask(string taskName)"},
    {"QCalverin.GotoLabel", "QCalverin.GotoLabel( \"\", \"\" );",
     "MERR_XXX QCalverin.GotoLabel(string taskName, string label)"},
    {"QCalverin.GotoLine", "QCalverin.GotoLine( \"\", 0 );",
     "MERR_XXX QCalverin.GotoLine(string taskName, integer lineNumber)"},
    {"QCalverin.GotoTime", "QCalverin.GotoTime( \"\", 0 );",
     "MERR_XXX QCalverin.GotoTime(string taskName, integer time)"},
    {"QCalverin.OpenUserScreen", "QCalverin.OpenUserScreen( \"\", 0, 0, 0 );",
     "MERR_XXX QCalverin.OpenUserScreen(string userScreenName, integer positionType, integer left, integer top)"},
    {"QCalverin.CloseUserScreen", "QCalverin.CloseUserScreen( \"\" );",
     "MERR_XXX QCalverin.CloseUserScreen(string userScreenName)"},
    {"QCalverin.GotoPage", "QCalverin.GotoPage( \"\", 0 );",
     "MERR_XXX QCalverin.GotoPage(string userScreenName, integer pageNumber)"},
    {"QCalverin.GetObjectList", "QCalverin.GetObjectList( \"\", 0 );",
     "string QCalverin.GetObjectList(string objectName, integer objectType)"},
    {"QCalverin.GetObject", "QCalverin.GetObject( \"\", 0 );",
     "string QCalverin.GetObject(string objectName, integer objectType)"},
    {"QCalverin.SetInterval", "QCalverin.SetInterval(  , 1000 );",
     "integer QCalverin.SetInterval(function function, integer interval)"},
    {"QCalverin.SetTimeout", "QCalverin.SetTimeout(  , 1000 );",
     "integer QCalverin.SetTimeout(function function, integer timeout)"},
    {"QCalverin.ClearInterval", "QCalverin.ClearInterval( 0 );", "void QCalverin.ClearInterval(integer intervalID)"},
    {"QCalverin.ClearTimeout", "QCalverin.ClearTimeout( 0 );", "void QCalverin.ClearTimeout(integer timeoutID)"},
    {"QCalverin.TraceMessage", "QCalverin.TraceMessage( \"\", \"DEBUG\" );",
     "void QCalverin.TraceMessage(string message, string/integer messageType)"},
    {"QCalverin.EnumStringToIndex", "QCalverin.EnumStringToIndex( , \"\" );",
     "integer QCalverin.EnumStringToIndex(array items, string itemName)"},
    {"QCalverin.DateStringToDay", "QCalverin.DateStringToDay( \"\" );",
     "integer QCalverin.DateStringToDay(string date)"},
    {"QCalverin.DateStringToMonth", "QCalverin.DateStringToMonth( \"\" );",
     "integer QCalverin.DateStringToMonth(string date)"},
    {"QCalverin.DateStringToYear", "QCalverin.DateStringToYear( \"\" );",
     "integer QCalverin.DateStringToYear(string date)"},
    {"QCalverin.DateStringToDayOfWeekAsNumber", "QCalverin.DateStringToDayOfWeekAsNumber( \"\" );",
     "integer QCalverin.DateStringToDayOfWeekAsNumber(string date)"},
    {"QCalverin.TimeStringToHours", "QCalverin.TimeStringToHours( \"\", 4 );",
     "integer QCalverin.TimeStringToHours(string time, integer timeCodeType )"},
    {"QCalverin.TimeStringToMinutes", "QCalverin.TimeStringToMinutes( \"\", 4 );",
     "integer QCalverin.TimeStringToMinutes(string time, integer timeCodeType )"},
    {"QCalverin.TimeStringToSeconds", "QCalverin.TimeStringToSeconds( \"\", 4 );",
     "integer QCalverin.TimeStringToSeconds(string time, integer timeCodeType )"},
    {"QCalverin.TimeStringToFrames", "QCalverin.TimeStringToFrames( \"\", 4 );",
     "integer QCalverin.TimeStringToFrames(string time, integer timeCodeType )"},
    {"QCalverin.CreateSocket", "QCalverin.CreateSocket();", "TCPClient QCalverin.CreateSocket()"},
    {"QCalverin.GetResource", "QCalverin.GetResource( \"\" );", "Resource QCalverin.GetResource( string signature )"},
    {"QCalverin.CreateHTTPClient", "QCalverin.CreateHTTPClient();", "HTTPClient QCalverin.CreateHTTPClient()"},
};

/// Calls that exist as well and are not offered.
inline constexpr const char* kUnofferedCalls[] = {
    "QCalverin.GetProperty",      "QCalverin.GetPropertyAsInt", "QCalverin.LoadShow",
    "QCalverin.OnVariableChange", "QCalverin.SetProperty",      "QCalverin.SetPropertyAsInt",
};

static_assert(sizeof(kScriptCalls) / sizeof(kScriptCalls[0]) == 39, "the calls that are offered");

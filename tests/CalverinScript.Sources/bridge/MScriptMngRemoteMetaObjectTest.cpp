#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QMetaMethod>

#include "MScriptMngRemote.h"

namespace {

struct ScriptMethod {
    const char* name;
    const char* result;
    const char* types;
    const char* parameters;
    int clones; ///< shorter entries, one for each default argument
};

constexpr const char* kPerformTypes = "QString,QString,QString,QString,QString,QString,QString,QString,QString,"
                                      "QString,QString,QString,QString";
constexpr const char* kPerformNames = "sObject,sAction,sParamsType,sParam1,sParam2,sParam3,sParam4,sParam5,sParam6,"
                                      "sParam7,sParam8,sParam9,sParam10";
constexpr const char* kAsyncTypes = "QScriptValue,QString,QString,QString,QString,QString,QString,QString,QString,"
                                    "QString,QString,QString,QString,QString";
constexpr const char* kAsyncNames = "expression,sObject,sAction,sParamsType,sParam1,sParam2,sParam3,sParam4,sParam5,"
                                    "sParam6,sParam7,sParam8,sParam9,sParam10";

constexpr ScriptMethod kMethods[] = {
    {"OpenUserScreen", "uint", "QString,int,int,int", "sUSName,iPosition,iLeft,iTop", 4},
    {"CloseUserScreen", "uint", "QString", "sUSName", 1},
    {"GotoPage", "uint", "QString,int", "sUSName,iPageNumber", 2},
    {"StartTask", "uint", "QString", "sTaskName", 1},
    {"PauseTask", "uint", "QString", "sTaskName", 1},
    {"StopTask", "uint", "QString,int", "sTaskName,iMode", 2},
    {"GotoLabel", "uint", "QString,QString", "sTaskName,sLabel", 2},
    {"GotoLine", "uint", "QString,int", "sTaskName,iLineNumber", 2},
    {"GotoTime", "uint", "QString,int", "sTaskName,iTime", 2},
    {"LoadShow", "uint", "QString,int", "sShowName,iTime", 2},
    {"RegisterGroup", "uint", "QString,bool", "sParentObject,bAcceptEvent", 2},
    {"UnregisterGroup", "uint", "QString", "sParentObject", 1},
    {"OnVariableChange", "uint", "QScriptValue", "expression", 0},
    {"GetObjectList", "QString", "QString,uint", "sParentObject,uiObjectType", 2},
    {"GetObject", "QString", "QString,ushort", "sObject,unDepth", 2},
    {"SetProperty", "uint", "QString,QString,QString", "sObject,sProperty,sValue", 3},
    {"SetPropertyAsInt", "uint", "QString,QString,int", "sObject,sProperty,iValue", 3},
    {"GetProperty", "QString", "QString,QString", "sObject,sProperty", 2},
    {"GetPropertyAsInt", "int", "QString,QString", "sObject,sProperty", 2},
    {"Perform", "QString", kPerformTypes, kPerformNames, 13},
    {"PerformAsync", "uint", kAsyncTypes, kAsyncNames, 13},
    {"SetValue", "uint", "QString,QString", "sVariable,sValue", 2},
    {"SetValueAsInteger", "uint", "QString,QString", "sVariable,sValue", 2},
    {"GetValueAsInteger", "int", "QString", "sVariable", 1},
    {"GetValueAsReal", "double", "QString", "sVariable", 1},
    {"GetValueAsString", "QString", "QString", "sVariable", 1},
    {"SetInterval", "int", "QScriptValue,int", "expression,delay", 0},
    {"ClearInterval", "void", "int", "timerId", 0},
    {"SetTimeout", "int", "QScriptValue,int", "expression,delay", 0},
    {"ClearTimeout", "void", "int", "timerId", 0},
    {"TraceMessage", "void", "QString,QString", "sMessage,sMessageType", 2},
    {"EnumStringToIndex", "int", "QScriptValue,QString", "Items,sItem", 1},
    {"DateStringToDay", "int", "QString", "sDate", 1},
    {"DateStringToMonth", "int", "QString", "sDate", 1},
    {"DateStringToYear", "int", "QString", "sDate", 1},
    {"DateStringToDayOfWeekAsNumber", "int", "QString", "sDate", 1},
    {"TimeStringToHours", "int", "QString,int", "sTime,iTimeCodeType", 2},
    {"TimeStringToMinutes", "int", "QString,int", "sTime,iTimeCodeType", 2},
    {"TimeStringToSeconds", "int", "QString,int", "sTime,iTimeCodeType", 2},
    {"TimeStringToFrames", "int", "QString,int", "sTime,iTimeCodeType", 2},
    {"CreateSocket", "QScriptValue", "QString", "sType", 1},
    {"CreateHTTPClient", "QScriptValue", "", "", 0},
    {"GetResource", "QScriptValue", "QScriptValue", "svSignature", 0},
    {"PostponeResult", "int", "", "", 0},
    {"SetResult", "void", "int,QString", "iID,sResult", 1},
};
constexpr int kEntries = 131;

static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 45, "the names that scripts see");

/// The first count of the list, which is joined with commas.
QByteArray First(const char* list, int count) {
    return QByteArray(list).split(',').mid(0, count).join(',');
}

std::vector<QMetaMethod> OwnEntries() {
    const QMetaObject& meta = MScriptMngRemote::staticMetaObject;
    std::vector<QMetaMethod> entries;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        entries.push_back(meta.method(i));
    return entries;
}

TEST(ScriptInterface, HasFortyFiveNamesInTheirOrder) {
    std::vector<std::string> expected;
    for (const ScriptMethod& method : kMethods)
        expected.emplace_back(method.name);
    std::vector<std::string> names;
    for (const QMetaMethod& entry : OwnEntries())
        if (names.empty() || names.back() != entry.name().toStdString())
            names.push_back(entry.name().toStdString());
    EXPECT_EQ(names, expected);
}

TEST(ScriptInterface, HasOneHundredAndThirtyOneEntries) {
    EXPECT_EQ(OwnEntries().size(), std::size_t{kEntries});
}

TEST(ScriptInterface, HasAnEntryForEachLengthOfAMethodFromTheLongestDown) {
    const std::vector<QMetaMethod> entries = OwnEntries();
    std::size_t next = 0;
    for (const ScriptMethod& method : kMethods) {
        const int longest = *method.types != '\0' ? QByteArray(method.types).count(',') + 1 : 0;
        for (int length = longest; length >= longest - method.clones; --length, ++next) {
            ASSERT_LT(next, entries.size());
            const QMetaMethod& entry = entries[next];
            EXPECT_EQ(entry.methodSignature(), QByteArray(method.name) + "(" + First(method.types, length) + ")");
            EXPECT_EQ(entry.parameterNames().join(','), First(method.parameters, length)) << method.name;
            EXPECT_STREQ(entry.typeName(), method.result) << method.name;
            EXPECT_EQ((entry.attributes() & QMetaMethod::Cloned) != 0, length < longest) << method.name;
        }
    }
    EXPECT_EQ(next, entries.size());
}

TEST(ScriptInterface, IsAllInvokableAndPublicAndNothingElse) {
    for (const QMetaMethod& entry : OwnEntries()) {
        EXPECT_EQ(entry.methodType(), QMetaMethod::Method) << entry.methodSignature().constData();
        EXPECT_EQ(entry.access(), QMetaMethod::Public) << entry.methodSignature().constData();
    }
    const QMetaObject& meta = MScriptMngRemote::staticMetaObject;
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
}

} // namespace

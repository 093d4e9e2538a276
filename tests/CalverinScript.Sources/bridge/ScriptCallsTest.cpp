#include "ScriptCalls.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QMetaMethod>

#include "MScriptMngRemote.h"

namespace {

constexpr const char* kObject = "QCalverin.";

/// A method of the bridge with all its entries.
struct BridgeMethod {
    int fewest = 99;
    int most = 0;
    std::string result;
};

std::map<std::string, BridgeMethod> BridgeMethods() {
    const QMetaObject& meta = MScriptMngRemote::staticMetaObject;
    std::map<std::string, BridgeMethod> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        BridgeMethod& method = methods[meta.method(i).name().toStdString()];
        method.fewest = std::min(method.fewest, meta.method(i).parameterCount());
        method.most = std::max(method.most, meta.method(i).parameterCount());
        method.result = meta.method(i).typeName();
    }
    return methods;
}

std::string MethodOf(const ScriptCall& call) {
    return std::string(call.name).substr(std::string(kObject).size());
}

/// What stands between the outer brackets of a call, divided at the commas that stand in no quotes.
std::vector<std::string> ArgumentsIn(const std::string& call) {
    const std::size_t begin = call.find('(') + 1;
    const std::string inner = call.substr(begin, call.rfind(')') - begin);
    if (inner.find_first_not_of(' ') == std::string::npos)
        return {};
    std::vector<std::string> arguments(1);
    bool isQuoted = false;
    for (const char character : inner) {
        isQuoted = isQuoted != (character == '"');
        if (character == ',' && !isQuoted)
            arguments.emplace_back();
        else
            arguments.back() += character;
    }
    return arguments;
}

/// The rows of the reference's table, as they stand there.
std::vector<std::string> RowsOfReference() {
    std::vector<std::string> rows;
    std::ifstream page(CALVERIN_PAGE_OF_CALLS);
    for (std::string line; std::getline(page, line);)
        if (line.rfind("| `", 0) == 0)
            rows.push_back(line);
    return rows;
}

TEST(ScriptCalls, AreShownInsertedAndExplainedAsTheReferenceHasThem) {
    const std::vector<std::string> rows = RowsOfReference();
    ASSERT_EQ(rows.size(), std::size(kScriptCalls));
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const ScriptCall& call = kScriptCalls[row];
        EXPECT_EQ("| `" + std::string(call.name) + "` | `" + call.insertion + "` | `" + call.signature + "` |",
                  rows[row]);
    }
}

TEST(ScriptCalls, AreMethodsOfTheBridgeEachOnce) {
    const auto methods = BridgeMethods();
    std::set<std::string> seen;
    for (const ScriptCall& call : kScriptCalls) {
        EXPECT_EQ(std::string(call.name).rfind(kObject, 0), 0u) << call.name;
        EXPECT_EQ(methods.count(MethodOf(call)), 1u) << call.name;
        EXPECT_TRUE(seen.insert(call.name).second) << call.name;
    }
}

TEST(ScriptCalls, LeaveOutSixMethodsOfTheBridgeAsMeant) {
    std::set<std::string> meant;
    for (const char* call : kUnofferedCalls)
        meant.insert(std::string(call).substr(std::string(kObject).size()));
    EXPECT_EQ(meant.size(), 6u);
    std::set<std::string> leftOut;
    for (const auto& method : BridgeMethods())
        leftOut.insert(method.first);
    for (const ScriptCall& call : kScriptCalls)
        leftOut.erase(MethodOf(call));
    EXPECT_EQ(leftOut, meant);
}

TEST(ScriptCalls, InsertTheirOwnNameWithAsManyArgumentsAsTheMethodTakes) {
    const auto methods = BridgeMethods();
    for (const ScriptCall& call : kScriptCalls) {
        const std::string insertion = call.insertion;
        const BridgeMethod& method = methods.at(MethodOf(call));
        const int count = static_cast<int>(ArgumentsIn(insertion).size());
        EXPECT_EQ(insertion.rfind(std::string(call.name) + '(', 0), 0u) << insertion;
        EXPECT_EQ(insertion.substr(insertion.size() - 2), ");");
        EXPECT_GE(count, method.fewest) << insertion;
        EXPECT_LE(count, method.most) << insertion;
    }
}

TEST(ScriptCalls, AreExplainedWithParametersThatTheMethodHas) {
    const auto methods = BridgeMethods();
    for (const ScriptCall& call : kScriptCalls) {
        const int count = static_cast<int>(ArgumentsIn(call.signature).size());
        EXPECT_NE(std::string(call.signature).find(std::string(call.name) + '('), std::string::npos) << call.signature;
        EXPECT_GE(count, methods.at(MethodOf(call)).fewest) << call.signature;
        EXPECT_LE(count, methods.at(MethodOf(call)).most) << call.signature;
    }
}

TEST(ScriptCalls, AreExplainedWithTheResultOfTheMethodButForSetResultAsMeant) {
    const std::map<std::string, std::string> types = {{"MERR_XXX", "uint"},
                                                      {"string", "QString"},
                                                      {"integer", "int"},
                                                      {"real", "double"},
                                                      {"void", "void"},
                                                      {"TCPClient", "QScriptValue"},
                                                      {"Resource", "QScriptValue"},
                                                      {"HTTPClient", "QScriptValue"}};
    const auto methods = BridgeMethods();
    for (const ScriptCall& call : kScriptCalls) {
        std::string word;
        std::istringstream(call.signature) >> word;
        const auto type = types.find(word);
        if (MethodOf(call) == "SetResult")
            EXPECT_EQ(type, types.end());
        else if (type == types.end())
            ADD_FAILURE() << call.signature;
        else
            EXPECT_EQ(methods.at(MethodOf(call)).result, type->second) << call.signature;
    }
}

} // namespace

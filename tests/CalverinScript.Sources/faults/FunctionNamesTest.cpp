#include "FunctionNames.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

/// The function of each line, "-" where there is none.
std::string NamesOf(const char* script) {
    const QString text = QString::fromLatin1(script);
    const FunctionNames names(text);
    QStringList found;
    for (int line = 1; line <= text.count(QLatin1Char('\n')) + 1; ++line) {
        const QString name = names.OnLine(line);
        found += name.isEmpty() ? QStringLiteral("-") : name;
    }
    return found.join(QLatin1Char('|')).toStdString();
}

} // namespace

TEST(FunctionNames, AreThoseOfMembersVariablesAndDeclarations) {
    EXPECT_EQ(NamesOf("({\nFade: function (a) {\n a;\n},\n'Go on': function () {\n}\n})"),
              "-|Fade|Fade|Fade|Go on|Go on|-");
    EXPECT_EQ(NamesOf("function Driver() {\n this.Out = function () {\n 1;\n };\n}\nnew Driver()"),
              "Driver|Out|Out|Out|Driver|-");
    EXPECT_EQ(NamesOf("var go = function () {\n};\nx = function inner() {\n};"), "go|go|inner|inner");
}

TEST(FunctionNames, OfAnArgumentIsThatOfTheCall) {
    EXPECT_EQ(NamesOf("function f() {\n QCalverin.SetTimeout(function () {\n  1;\n }, 5);\n}"),
              "f|SetTimeout's function|SetTimeout's function|SetTimeout's function|f");
    EXPECT_EQ(NamesOf("list.reduce(1, function (a) {\n});"), "reduce's function|reduce's function");
    EXPECT_EQ(NamesOf("(function () {\n})();"), "-|-");
}

TEST(FunctionNames, OfOneLineAreToldApartByThePlaceAlone) {
    const QString text = QStringLiteral("({ a: function () { 1; }, b: function () { 2; } })");
    const FunctionNames names(text);
    EXPECT_EQ(names.OnLine(1), QString());
    EXPECT_EQ(names.OnLine(1, text.indexOf(QLatin1Char('1'))), QStringLiteral("a"));
    EXPECT_EQ(names.OnLine(1, text.indexOf(QLatin1Char('2'))), QStringLiteral("b"));
    EXPECT_EQ(names.OnLine(1, 0), QString());
}

TEST(FunctionNames, AreNotMistakenByBracketsInTextsCommentsAndPatterns) {
    EXPECT_EQ(
        NamesOf(
            "({ a: function () {\n '}'; // }\n /* } */ /[}]/.test('\\'}');\n 4 / 2 / 1;\n}, b: function () {\n} })"),
        "a|a|a|a|b|b");
}

TEST(FunctionNames, OfATextThatIsNoScriptAreThere) {
    EXPECT_EQ(NamesOf("function"), "-");
    EXPECT_EQ(NamesOf("))}}]] a: function ( {\n"), "a|a");
    EXPECT_EQ(NamesOf("\"open\n'open\n`open\n/*open"), "-|-|-|-");
    EXPECT_EQ(NamesOf(""), "-");
}

#include "SyntaxAdvice.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <QRegularExpression>
#include <QScriptEngine>
#include <QStringList>

#include "SourceTokens.h"

namespace {

using Kind = SourceToken::Kind;

constexpr const char* kEdition = "this engine speaks ECMAScript 5.1, which has no ";

/// A word or sign of a newer edition, as a script is found to break off at it or right behind it.
struct NewerWord {
    const char* word;
    const char* has; ///< what there is not
    const char* instead;
    bool behindToo; ///< told as well where the word is the one before the place
};

constexpr NewerWord kNewerWords[] = {
    {"let", "\"let\"", "write \"var\"", true},
    {"=>", "arrow functions", "write \"function (a) { return a + 1; }\"", false},
    {"class", "classes", "write a function that sets members of \"this\", and call it with \"new\"", true},
    {"of", "\"for ... of\"", "count with \"for (var i = 0; i < list.length; ++i)\", or call \"list.forEach\"", false},
    {"...", "\"...\"", "use \"apply\", \"concat\" or \"arguments\"", false},
    {"async", "\"async\"", "give a function that is called later, as to \"QCalverin.PerformAsync\"", true},
    {"await", "\"await\"", "give a function that is called later, as to \"QCalverin.PerformAsync\"", true},
    {"yield", "generators", "give a function that is called later", true},
    {"import", "modules", "a driver is one text", true},
    {"export", "modules", "a script publishes the object that it ends with: \"({ ... })\"", true},
    {"?.", "\"?.\"", "write \"a && a.b\"", false},
    {"??", "\"\?\?\"", "write \"a !== undefined ? a : b\"", false},
    {"**", "\"**\"", "write \"Math.pow(a, b)\"", false},
};

/// What the syntax check says, and where in the tokens that is.
class Finding {
public:
    Finding(const QString& text, int engineLine)
        : m_text(text)
        , m_tokens(TokensOf(text))
        , m_check(QScriptEngine::checkSyntax(text)) {
        const bool hasPlace = m_check.state() != QScriptSyntaxCheckResult::Valid && m_check.errorLineNumber() > 0;
        advice.line = hasPlace ? m_check.errorLineNumber() : engineLine;
        advice.column = hasPlace ? m_check.errorColumnNumber() : 0;
        const int offset = StartOfLine(text, advice.line) + advice.column - 1;
        if (hasPlace)
            m_place = static_cast<std::size_t>(std::find_if(m_tokens.begin(), m_tokens.end(),
                                                            [&](const auto& token) { return token.End() > offset; }) -
                                               m_tokens.begin());
        else
            m_place = m_tokens.size();
    }

    void Advise() {
        advice.what = What();
        if (!AdviseOnOpenBracket() && !AdviseOnNewerWord())
            AdviseOnNewerForm();
    }

    SyntaxAdvice advice;

private:
    bool Is(std::size_t place, const char* what) const {
        return place < m_tokens.size() && m_tokens[place].Is(m_text, what);
    }
    bool IsBefore(const char* what) const { return m_place > 0 && Is(m_place - 1, what); }
    bool IsWord(std::size_t place) const { return place < m_tokens.size() && m_tokens[place].kind == Kind::Word; }

    QString Here() const {
        if (m_place >= m_tokens.size())
            return advice.column > 0 ? QStringLiteral("the end of the script") : QString();
        QString here = m_tokens[m_place].In(m_text).toString().section(QLatin1Char('\n'), 0, 0);
        constexpr int kLongest = 24;
        if (here.size() > kLongest)
            here = here.left(kLongest) + QStringLiteral("...");
        return m_tokens[m_place].kind == Kind::Text ? here : QLatin1Char('"') + here + QLatin1Char('"');
    }

    /// What was expected, as the check names it between ` and '.
    QStringList Expected() const {
        QStringList expected;
        static const QRegularExpression kQuoted(QStringLiteral("`([^']+)'"));
        for (auto match = kQuoted.globalMatch(m_check.errorMessage()); match.hasNext();) {
            const QString name = match.next().captured(1);
            const QString shown = name == QLatin1String("identifier")    ? QStringLiteral("a name")
                                  : name == QLatin1String("end of file") ? QString()
                                                                         : QLatin1Char('"') + name + QLatin1Char('"');
            if (!shown.isEmpty() && !expected.contains(shown))
                expected += shown;
        }
        return expected;
    }

    QString What() const {
        const QString message = m_check.errorMessage();
        if (message.startsWith(QLatin1String("Unclosed string")))
            return QStringLiteral("the text in quotes is not closed on its line");
        if (message.startsWith(QLatin1String("Unclosed comment")))
            return QStringLiteral("the comment is never closed");
        const QString here = Here();
        if (here.isEmpty())
            return QStringLiteral("the engine cannot read this line");
        const QStringList expected = Expected();
        if (expected.isEmpty() || expected.size() > 3)
            return QStringLiteral("unexpected ") + here;
        return QStringLiteral("expected %1 before %2").arg(expected.join(QStringLiteral(" or ")), here);
    }

    /// The brackets that are open before a token, the innermost last.
    std::vector<const SourceToken*> OpenBefore(std::size_t place) const {
        std::vector<const SourceToken*> open;
        for (std::size_t i = 0; i < std::min(place, m_tokens.size()); ++i) {
            if (Is(i, "(") || Is(i, "{") || Is(i, "["))
                open.push_back(&m_tokens[i]);
            else if (!open.empty() && (Is(i, ")") || Is(i, "}") || Is(i, "]")))
                open.pop_back();
        }
        return open;
    }

    /// A script that ends too early has a bracket that nobody closes: the innermost one is where to look.
    bool AdviseOnOpenBracket() {
        const bool endsEarly = m_check.state() == QScriptSyntaxCheckResult::Intermediate;
        const auto open = OpenBefore(endsEarly ? m_tokens.size() : m_place);
        if (open.empty())
            return false;
        const QString bracket = open.back()->In(m_text).toString();
        const int start = open.back()->start;
        const int line = LineOf(m_text, start);
        if (!endsEarly) {
            const bool isAwaited = Expected() == QStringList(QStringLiteral("\"}\"")) && bracket == QLatin1String("{");
            if (isAwaited && line != advice.line)
                advice.note = QStringLiteral("the \"{\" of line %1 is still open here").arg(line);
            return isAwaited && line != advice.line;
        }
        advice.line = line;
        advice.column = start - StartOfLine(m_text, line) + 1;
        advice.what = QStringLiteral("this \"%1\" is never closed").arg(bracket);
        return true;
    }

    bool AdviseOnNewerWord() {
        const auto* found = std::find_if(std::begin(kNewerWords), std::end(kNewerWords), [&](const NewerWord& row) {
            return Is(m_place, row.word) || (row.behindToo && IsBefore(row.word));
        });
        const bool isTemplate = m_place < m_tokens.size() && m_tokens[m_place].kind == Kind::Template;
        if (isTemplate)
            Note("template strings", "write \"'a ' + b\"");
        else if (found != std::end(kNewerWords))
            Note(found->has, found->instead);
        else
            return false;
        return true;
    }

    /// Forms that newer editions have without a word of their own.
    void AdviseOnNewerForm() {
        const QStringList expected = Expected();
        const bool wantsColon = expected.contains(QStringLiteral("\":\""));
        if (wantsColon && Is(m_place, "(") && IsWord(m_place - 1))
            Note("short methods", "write \"name: function () { ... }\"");
        else if (wantsColon && (Is(m_place, ",") || Is(m_place, "}")))
            Note("short members", "write \"name: name\"");
        else if (Is(m_place, "=") && expected.contains(QStringLiteral("\")\"")))
            Note("defaults of parameters", "test for \"undefined\" in the function");
        else if ((Is(m_place, "{") || Is(m_place, "[")) && (IsBefore("var") || IsBefore("const")))
            Note("destructuring", "take the members one by one");
    }

    void Note(const char* what, const char* instead) {
        advice.note = QLatin1String(kEdition) + QLatin1String(what) + QStringLiteral(": ") + QLatin1String(instead);
    }

    const QString& m_text;
    const std::vector<SourceToken> m_tokens;
    const QScriptSyntaxCheckResult m_check;
    std::size_t m_place = 0; ///< the token at which the check has stopped
};

} // namespace

SyntaxAdvice AdviceOn(const QString& text, int engineLine) {
    Finding finding(text, engineLine);
    finding.Advise();
    return finding.advice;
}

#include "SyntaxAdvice.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <QStringList>

#include "SourceTokens.h"
#include "SyntaxReader.h"

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

/// What the grammar says, and where in the tokens that is.
class Finding {
public:
    Finding(const QString& text, int engineLine)
        : m_text(text)
        , m_tokens(TokensOf(text))
        , m_break(ReadSyntax(text))
        , m_hasPlace(m_break.kind != SyntaxBreak::Kind::None) {
        advice.line = m_hasPlace ? LineOf(text, m_break.offset) : engineLine;
        advice.column = m_hasPlace ? m_break.offset - StartOfLine(text, advice.line) + 1 : 0;
        const auto isThere = [&](const SourceToken& token) { return token.End() > m_break.offset; };
        const auto found = m_hasPlace ? std::find_if(m_tokens.begin(), m_tokens.end(), isThere) : m_tokens.end();
        m_place = static_cast<std::size_t>(found - m_tokens.begin());
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
            return QStringLiteral("the end of the script");
        QString here = m_tokens[m_place].In(m_text).toString().section(QLatin1Char('\n'), 0, 0);
        constexpr int kLongest = 24;
        if (here.size() > kLongest)
            here = here.left(kLongest) + QStringLiteral("...");
        return m_tokens[m_place].kind == Kind::Text ? here : QLatin1Char('"') + here + QLatin1Char('"');
    }

    bool Expects(const char* what) const { return m_break.expected.contains(QLatin1String(what)); }

    QString What() const {
        switch (m_break.kind) {
        case SyntaxBreak::Kind::OpenText:
            return QStringLiteral("the text in quotes is not closed on its line");
        case SyntaxBreak::Kind::OpenComment:
            return QStringLiteral("the comment is never closed");
        case SyntaxBreak::Kind::OpenPattern:
            return QStringLiteral("the regular expression is not closed on its line");
        case SyntaxBreak::Kind::None:
            return QStringLiteral("the engine cannot read this line");
        case SyntaxBreak::Kind::Unexpected:
            break;
        }
        QStringList expected;
        for (const QString& one : m_break.expected)
            expected += one.contains(QLatin1Char(' ')) ? one : QLatin1Char('"') + one + QLatin1Char('"');
        if (expected.isEmpty())
            return QStringLiteral("unexpected ") + Here();
        return QStringLiteral("expected %1 before %2").arg(expected.join(QStringLiteral(" or ")), Here());
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
        const bool endsEarly = m_break.kind == SyntaxBreak::Kind::Unexpected && m_break.offset >= m_text.size();
        const auto open = OpenBefore(endsEarly ? m_tokens.size() : m_place);
        if (open.empty())
            return false;
        const QString bracket = open.back()->In(m_text).toString();
        const int start = open.back()->start;
        const int line = LineOf(m_text, start);
        if (!endsEarly) {
            const bool isAwaited =
                m_break.expected == QStringList(QStringLiteral("}")) && bracket == QLatin1String("{");
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
        const bool wantsColon = Expects(":");
        if (wantsColon && Is(m_place, "(") && IsWord(m_place - 1))
            Note("short methods", "write \"name: function () { ... }\"");
        else if (wantsColon && (Is(m_place, ",") || Is(m_place, "}")))
            Note("short members", "write \"name: name\"");
        else if (Is(m_place, "=") && Expects(")"))
            Note("defaults of parameters", "test for \"undefined\" in the function");
        else if ((Is(m_place, "{") || Is(m_place, "[")) && (IsBefore("var") || IsBefore("const")))
            Note("destructuring", "take the members one by one");
        else if (Expects("a name") && IsWord(m_place) && (IsBefore(".") || IsBefore("{") || IsBefore(",")))
            advice.note = QStringLiteral("words of the language name members in quotes alone: a[\"%1\"], { \"%1\": 1 }")
                              .arg(m_tokens[m_place].In(m_text).toString());
    }

    void Note(const char* what, const char* instead) {
        advice.note = QLatin1String(kEdition) + QLatin1String(what) + QStringLiteral(": ") + QLatin1String(instead);
    }

    const QString& m_text;
    const std::vector<SourceToken> m_tokens;
    const SyntaxBreak m_break;
    const bool m_hasPlace;
    std::size_t m_place = 0; ///< the token that cannot stand where it stands
};

} // namespace

SyntaxAdvice AdviceOn(const QString& text, int engineLine) {
    Finding finding(text, engineLine);
    finding.Advise();
    return finding.advice;
}

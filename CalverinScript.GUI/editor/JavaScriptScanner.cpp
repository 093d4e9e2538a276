#include "JavaScriptScanner.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int kStateBits = 4;
constexpr int kStateMask = (1 << kStateBits) - 1;

constexpr const char* kKeywords[] = {
    "break",    "case", "catch", "continue",   "default", "delete", "do",     "else", "finally", "for",
    "function", "if",   "in",    "instanceof", "new",     "return", "switch", "this", "throw",   "try",
    "typeof",   "var",  "void",  "while",      "with",    "true",   "false",  "null",
};
static_assert(std::size(kKeywords) == 28, "the language reserves 28 words");

bool IsBracket(QChar ch) {
    static const QString brackets = QStringLiteral("(){}[]");
    return brackets.contains(ch);
}

bool IsWordCharacter(QChar ch) {
    return ch.isDigit() || ch.isLetter() || ch == QLatin1Char('_');
}

/// The walk over one line, with its place, its state and what it has found so far.
class LineScan {
public:
    LineScan(const QString& text, int previousState, const ScriptWords& words)
        : m_text(text)
        , m_words(words) {
        if (previousState >= 0) {
            m_state = static_cast<ScanState>(previousState & kStateMask);
            m_depth = previousState >> kStateBits;
        }
    }

    ScannedLine Run() {
        // One step past the last character: the null character there closes a number or a word.
        while (m_at <= m_text.length())
            Step();
        if (m_state == ScanState::Comment)
            AddToken(m_start, m_text.length(), ScriptColor::Comment);
        else
            m_state = ScanState::Start;
        m_line.state = PackLineState(m_state, m_depth);
        return std::move(m_line);
    }

private:
    void Step() {
        switch (m_state) {
        case ScanState::Start:
            return StepStart();
        case ScanState::Number:
            return StepNumber();
        case ScanState::Identifier:
            return StepIdentifier();
        case ScanState::String:
        case ScanState::Regex:
            return StepQuoted();
        case ScanState::Comment:
            return StepComment();
        }
        m_state = ScanState::Start; // the line's state was set by something else, to a number that is none
    }

    void StepStart() {
        m_start = m_at;
        const QChar ch = Current();
        if (ch.isSpace())
            ++m_at;
        else if (ch.isDigit())
            Enter(ScanState::Number, 1);
        else if (ch.isLetter() || ch == QLatin1Char('_'))
            Enter(ScanState::Identifier, 1);
        else if (ch == QLatin1Char('\'') || ch == QLatin1Char('"'))
            Enter(ScanState::String, 1);
        else if (ch == QLatin1Char('/'))
            StepSlash();
        else
            StepSign(ch);
    }

    void StepSlash() {
        if (Next() == QLatin1Char('*'))
            return Enter(ScanState::Comment, 2);
        if (Next() != QLatin1Char('/'))
            return Enter(ScanState::Regex, 1);
        m_at = m_text.length();
        AddToken(m_start, m_text.length(), ScriptColor::Comment);
    }

    void StepSign(QChar ch) {
        if (!IsBracket(ch))
            AddToken(m_start, 1, ScriptColor::Operator);
        if (ch == QLatin1Char('{') || ch == QLatin1Char('}')) {
            m_line.brackets.append(m_at);
            m_depth += ch == QLatin1Char('{') ? 1 : -1;
        }
        ++m_at;
    }

    /// Digits alone: a point, an exponent or a prefix is none of a number's business.
    void StepNumber() {
        if (Current().isDigit()) {
            ++m_at;
            return;
        }
        Close(ScriptColor::Number);
    }

    void StepIdentifier() {
        if (IsWordCharacter(Current())) {
            ++m_at;
            return;
        }
        const QString word = QString::fromRawData(m_text.constData() + m_start, m_at - m_start);
        if (m_words.keywords.contains(word))
            Close(ScriptColor::Keyword);
        else if (m_words.knownIdentifiers.contains(word))
            Close(ScriptColor::BuiltIn);
        m_state = ScanState::Start;
    }

    /// A text or a regular expression. Only the one character before the closing one is looked at, so a doubled
    /// backslash still escapes it.
    void StepQuoted() {
        const QChar closing = m_state == ScanState::Regex ? QChar(QLatin1Char('/')) : At(m_start);
        const bool closes = Current() == closing && (m_at == 0 || At(m_at - 1) != QLatin1Char('\\'));
        ++m_at;
        if (closes)
            Close(ScriptColor::String);
    }

    void StepComment() {
        if (Current() != QLatin1Char('*') || Next() != QLatin1Char('/')) {
            ++m_at;
            return;
        }
        m_at += 2;
        Close(ScriptColor::Comment);
    }

    QChar At(int column) const { return column < m_text.length() ? m_text.at(column) : QChar(); }
    QChar Current() const { return At(m_at); }
    QChar Next() const { return At(m_at + 1); }

    void Enter(ScanState state, int step) {
        m_state = state;
        m_at += step;
    }

    void Close(ScriptColor role) {
        AddToken(m_start, m_at - m_start, role);
        m_state = ScanState::Start;
    }

    /// Keeps a token inside its line: the null character behind the end and lengths "to the end" reach beyond it.
    void AddToken(int start, int length, ScriptColor role) {
        const int inside = std::min(length, m_text.length() - start);
        if (inside > 0)
            m_line.tokens.push_back({start, inside, role});
    }

    const QString& m_text;
    const ScriptWords& m_words;
    ScannedLine m_line;
    ScanState m_state = ScanState::Start;
    int m_depth = 0;
    int m_start = 0;
    int m_at = 0;
};

} // namespace

QStringList DefaultKeywords() {
    QStringList words;
    for (const char* keyword : kKeywords)
        words.append(QString::fromLatin1(keyword));
    return words;
}

int PackLineState(ScanState state, int depth) {
    const unsigned bits = static_cast<unsigned>(depth) << kStateBits;
    return static_cast<int>(bits | (static_cast<unsigned>(state) & kStateMask));
}

ScannedLine ScanLine(const QString& text, int previousState, const ScriptWords& words) {
    return LineScan(text, previousState, words).Run();
}

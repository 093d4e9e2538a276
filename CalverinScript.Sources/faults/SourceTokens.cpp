#include "SourceTokens.h"

#include <algorithm>
#include <iterator>

namespace {

using Kind = SourceToken::Kind;

/// Signs of several characters that newer editions have and that would say nothing as single ones.
constexpr const char* kLongSigns[] = {"...", "=>", "?.", "??", "**"};

/// Words behind which a slash begins a regular expression.
constexpr const char* kBeforePatterns[] = {"return", "typeof", "case", "in",   "delete",
                                           "void",   "throw",  "new",  "else", "do"};

bool IsLineEnd(QChar c) {
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar(0x2028) || c == QChar(0x2029);
}

bool BeginsWord(QChar c) {
    return c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char('$');
}

class Tokenizer {
public:
    explicit Tokenizer(const QString& text)
        : m_text(text) {}

    std::vector<SourceToken> All() {
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at];
            if (c.isSpace() || c == QChar(0xFEFF))
                ++m_at;
            else if (!SkipComment())
                Take(c);
        }
        return std::move(m_tokens);
    }

private:
    QChar Next() const { return m_at + 1 < m_text.size() ? m_text[m_at + 1] : QChar(); }

    bool SkipComment() {
        if (m_text[m_at] != QLatin1Char('/'))
            return false;
        if (Next() == QLatin1Char('/')) {
            while (m_at < m_text.size() && !IsLineEnd(m_text[m_at]))
                ++m_at;
            return true;
        }
        if (Next() != QLatin1Char('*'))
            return false;
        const int end = m_text.indexOf(QLatin1String("*/"), m_at + 2);
        m_at = end < 0 ? m_text.size() : end + 2;
        return true;
    }

    void Take(QChar c) {
        if (BeginsWord(c))
            Add(Kind::Word, EndOf([](QChar part) { return part.isLetterOrNumber() || BeginsWord(part); }));
        else if (c.isDigit() || (c == QLatin1Char('.') && Next().isDigit()))
            Add(Kind::Number, EndOf([](QChar part) { return part.isLetterOrNumber() || part == QLatin1Char('.'); }));
        else if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            Add(Kind::Text, EndOfQuoted(c, false));
        else if (c == QLatin1Char('`'))
            Add(Kind::Template, EndOfQuoted(c, true));
        else if (c == QLatin1Char('/') && MayBeginPattern())
            Add(Kind::Pattern, EndOfPattern());
        else
            Add(Kind::Sign, m_at + LengthOfSign());
    }

    void Add(Kind kind, int end) {
        m_tokens.push_back({kind, m_at, end - m_at});
        m_at = end;
    }

    template <typename Belongs>
    int EndOf(Belongs belongs) const {
        int end = m_at + 1;
        while (end < m_text.size() && belongs(m_text[end]))
            ++end;
        return end;
    }

    int EndOfQuoted(QChar quote, bool crossesLines) const {
        for (int at = m_at + 1; at < m_text.size(); ++at) {
            if (m_text[at] == QLatin1Char('\\'))
                ++at;
            else if (m_text[at] == quote)
                return at + 1;
            else if (!crossesLines && IsLineEnd(m_text[at]))
                return at;
        }
        return m_text.size();
    }

    int EndOfPattern() const {
        bool inClass = false;
        for (int at = m_at + 1; at < m_text.size() && !IsLineEnd(m_text[at]); ++at) {
            const QChar c = m_text[at];
            if (c == QLatin1Char('\\'))
                ++at;
            else if (c == QLatin1Char('['))
                inClass = true;
            else if (c == QLatin1Char(']'))
                inClass = false;
            else if (c == QLatin1Char('/') && !inClass)
                return at + 1;
        }
        return m_at + 1; // never closed: a division, or a mistake of its own
    }

    /// A value cannot stand before a regular expression.
    bool MayBeginPattern() const {
        if (m_tokens.empty())
            return true;
        const SourceToken& last = m_tokens.back();
        if (last.kind == Kind::Sign)
            return !last.Is(m_text, ")") && !last.Is(m_text, "]") && !last.Is(m_text, "}");
        return last.kind == Kind::Word && std::any_of(std::begin(kBeforePatterns), std::end(kBeforePatterns),
                                                      [&](const char* word) { return last.Is(m_text, word); });
    }

    int LengthOfSign() const {
        for (const char* sign : kLongSigns) {
            const QLatin1String known(sign);
            if (m_text.midRef(m_at, known.size()) == known)
                return known.size();
        }
        return 1;
    }

    const QString& m_text;
    int m_at = 0;
    std::vector<SourceToken> m_tokens;
};

} // namespace

std::vector<SourceToken> TokensOf(const QString& text) {
    return Tokenizer(text).All();
}

int StartOfLine(const QString& text, int line) {
    int start = 0;
    for (int current = 1; current < line; ++current) {
        const int end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            return text.size();
        start = end + 1;
    }
    return start;
}

int LineOf(const QString& text, int offset) {
    return text.leftRef(offset).count(QLatin1Char('\n')) + 1;
}

QString TextOfLine(const QString& text, int line) {
    const int start = StartOfLine(text, line);
    const int end = text.indexOf(QLatin1Char('\n'), start);
    QString found = text.mid(start, end < 0 ? -1 : end - start);
    if (found.endsWith(QLatin1Char('\r')))
        found.chop(1);
    return found;
}

#include "SyntaxScanner.h"

#include <algorithm>
#include <iterator>

namespace {

using SymbolKind = SyntaxSymbol::Kind;

/// Longer ones first.
constexpr const char* kSigns[] = {">>>=", "...", "===", "!==", ">>>", "<<=", ">>=", "=>", "?.", "??",
                                  "**",   "==",  "!=",  "<=",  ">=",  "&&",  "||",  "++", "--", "+=",
                                  "-=",   "*=",  "%=",  "&=",  "|=",  "^=",  "/=",  "<<", ">>"};

constexpr const char* kNewerSigns[] = {"...", "=>", "?.", "??", "**"};

constexpr const char* kReserved[] = {
    "break", "case",   "catch", "class",      "const",   "continue", "debugger", "default", "delete",
    "do",    "else",   "enum",  "export",     "extends", "false",    "finally",  "for",     "function",
    "if",    "import", "in",    "instanceof", "new",     "null",     "return",   "super",   "switch",
    "this",  "throw",  "true",  "try",        "typeof",  "var",      "void",     "while",   "with"};

bool EndsLine(QChar c) {
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar(0x2028) || c == QChar(0x2029);
}

bool IsWordStart(QChar c) {
    return c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char('$') || c == QLatin1Char('\\');
}

bool IsDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool IsHexDigit(QChar c) {
    const QChar lower = c.toLower();
    return IsDigit(c) || (lower >= QLatin1Char('a') && lower <= QLatin1Char('f'));
}

template <typename Words>
bool HasWord(const Words& words, const QStringRef& text) {
    return std::any_of(std::begin(words), std::end(words), [&](const char* one) { return text == QLatin1String(one); });
}

} // namespace

void SyntaxScanner::Blame(SyntaxBreak::Kind kind, int offset) {
    if (m_fault.kind == SyntaxBreak::Kind::None)
        m_fault = {kind, offset, {}};
}

bool SyntaxScanner::Is(const SyntaxSymbol& symbol, const char* what) const {
    return (symbol.kind == SymbolKind::Sign || symbol.kind == SymbolKind::Name ||
            symbol.kind == SymbolKind::Reserved) &&
           m_text.midRef(symbol.start, symbol.end - symbol.start) == QLatin1String(what);
}

bool SyntaxScanner::IsOfNewerEdition(const SyntaxSymbol& symbol) const {
    return symbol.kind == SymbolKind::Sign &&
           HasWord(kNewerSigns, m_text.midRef(symbol.start, symbol.end - symbol.start));
}

SyntaxSymbol SyntaxScanner::Next() {
    SyntaxSymbol symbol;
    symbol.isFirstOfLine = SkipBlanks();
    symbol.start = m_at;
    const QChar c = At(m_at);
    if (m_at >= m_text.size()) {
        symbol.kind = SymbolKind::End;
    } else if (IsWordStart(c)) {
        m_at = EndOfWord(m_at);
        const bool isReserved = HasWord(kReserved, m_text.midRef(symbol.start, m_at - symbol.start));
        symbol.kind = isReserved ? SymbolKind::Reserved : SymbolKind::Name;
    } else if (IsDigit(c) || (c == QLatin1Char('.') && IsDigit(At(m_at + 1)))) {
        symbol.kind = SymbolKind::Number;
        m_at = EndOfNumber(m_at);
    } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
        symbol.kind = SymbolKind::Text;
        m_at = EndOfText(m_at);
    } else if (c == QLatin1Char('`')) {
        symbol.kind = SymbolKind::Template;
        m_at = EndOfTemplate(m_at);
    } else {
        symbol.kind = SymbolKind::Sign;
        m_at = EndOfSign(m_at);
    }
    symbol.end = m_at;
    return symbol;
}

/// Blanks, ends of lines and comments. @return whether a line has ended outside of the comments: those that reach over
/// lines are blanks to the engine.
bool SyntaxScanner::SkipBlanks() {
    bool lineEnded = false;
    while (m_at < m_text.size()) {
        const QChar c = m_text[m_at];
        lineEnded = lineEnded || EndsLine(c);
        if (c.isSpace() || c == QChar(0xFEFF))
            ++m_at;
        else if (c == QLatin1Char('/') && (At(m_at + 1) == QLatin1Char('/') || At(m_at + 1) == QLatin1Char('*')))
            SkipComment();
        else
            break;
    }
    return lineEnded;
}

void SyntaxScanner::SkipComment() {
    if (At(m_at + 1) == QLatin1Char('/')) {
        SkipLine();
        return;
    }
    const int end = m_text.indexOf(QLatin1String("*/"), m_at + 2);
    if (end < 0)
        Blame(SyntaxBreak::Kind::OpenComment, m_at);
    m_at = end < 0 ? m_text.size() : end + 2;
}

void SyntaxScanner::SkipLine() {
    while (m_at < m_text.size() && !EndsLine(m_text[m_at]))
        ++m_at;
}

int SyntaxScanner::EndOfWord(int at) const {
    while (at < m_text.size() && (IsWordStart(m_text[at]) || m_text[at].isLetterOrNumber() || m_text[at].isMark()))
        ++at;
    return at;
}

int SyntaxScanner::EndOfNumber(int at) {
    const auto skipDigits = [&] {
        while (IsDigit(At(at)))
            ++at;
    };
    if (At(at) == QLatin1Char('0') && At(at + 1).toLower() == QLatin1Char('x')) {
        at += 2;
        while (IsHexDigit(At(at)))
            ++at;
    } else {
        skipDigits();
        if (At(at) == QLatin1Char('.')) {
            ++at;
            skipDigits();
        }
        if (At(at).toLower() == QLatin1Char('e')) {
            ++at;
            if (At(at) == QLatin1Char('+') || At(at) == QLatin1Char('-'))
                ++at;
            skipDigits();
        }
    }
    if (IsWordStart(At(at)))
        Blame(SyntaxBreak::Kind::Unexpected, at);
    return at;
}

int SyntaxScanner::EndOfText(int at) {
    const QChar quote = m_text[at];
    for (int end = at + 1; end < m_text.size() && !EndsLine(m_text[end]); ++end) {
        if (m_text[end] == quote)
            return end + 1;
        if (m_text[end] != QLatin1Char('\\'))
            continue;
        ++end; // what follows a backslash belongs to the text, also the end of a line of two characters
        if (At(end) == QLatin1Char('\r') && At(end + 1) == QLatin1Char('\n'))
            ++end;
    }
    Blame(SyntaxBreak::Kind::OpenText, at);
    return m_text.size();
}

int SyntaxScanner::EndOfTemplate(int at) const {
    const int end = m_text.indexOf(QLatin1Char('`'), at + 1);
    return end < 0 ? m_text.size() : end + 1;
}

int SyntaxScanner::EndOfSign(int at) const {
    for (const char* sign : kSigns) {
        const QLatin1String known(sign);
        const bool isChoice = known == QLatin1String("?.") && IsDigit(At(at + 2)); // as in "a?.5:1"
        if (!isChoice && m_text.midRef(at, known.size()) == known)
            return at + known.size();
    }
    return at + 1;
}

SyntaxSymbol SyntaxScanner::ReadPattern(const SyntaxSymbol& slash) {
    SyntaxSymbol pattern = slash;
    pattern.kind = SymbolKind::Pattern;
    bool inClass = false;
    m_at = slash.start + 1;
    while (m_at < m_text.size() && !EndsLine(m_text[m_at]) && (inClass || m_text[m_at] != QLatin1Char('/'))) {
        const QChar c = m_text[m_at];
        inClass = c == QLatin1Char('[') || (inClass && c != QLatin1Char(']'));
        m_at += c == QLatin1Char('\\') ? 2 : 1;
    }
    if (At(m_at) != QLatin1Char('/'))
        Blame(SyntaxBreak::Kind::OpenPattern, slash.start);
    m_at = std::min(EndOfWord(m_at + 1), m_text.size());
    pattern.end = m_at;
    return pattern;
}

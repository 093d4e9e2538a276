#include "SourceReader.h"

#include <algorithm>
#include <iterator>

namespace {

/// Signs of more than one character, longer ones before what they begin with.
constexpr const char* kLongSigns[] = {">>>=", "===", "!==", ">>>", "<<=", ">>=", "==", "!=", "<=", ">=", "&&", "||",
                                      "++",   "--",  "+=",  "-=",  "*=",  "%=",  "&=", "|=", "^=", "<<", ">>", "/="};

/// Words behind which a value begins, so that "/" begins a regular expression.
constexpr const char* kBeforeValue[] = {"return", "typeof", "case", "in",         "of",   "delete",
                                        "void",   "throw",  "new",  "instanceof", "else", "do"};

/// Words whose bracket is followed by a statement, not by an operator.
constexpr const char* kBeforeCondition[] = {"if", "while", "for", "with"};

template <std::size_t N>
bool IsOneOf(const QString& text, const char* const (&words)[N]) {
    return std::any_of(std::begin(words), std::end(words),
                       [&](const char* word) { return text == QLatin1String(word); });
}

bool IsLineEnd(QChar c) {
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar(0x2028) || c == QChar(0x2029);
}

bool IsNameStart(QChar c) {
    return c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char('$') || c == QLatin1Char('\\');
}

bool IsNamePart(QChar c) {
    return IsNameStart(c) || c.isDigit() || c.isMark();
}

/// The walk over a script.
class SourceReader {
public:
    explicit SourceReader(const QString& script)
        : m_script(script) {}

    std::vector<SourceWord> Read() {
        while (m_at < m_script.size())
            Step();
        return std::move(m_words);
    }

private:
    void Step() {
        const QChar c = At(m_at);
        if (IsLineEnd(c))
            StepLine();
        else if (c.isSpace() || c == QChar(0xFEFF))
            ++m_at;
        else if (c == QLatin1Char('/') && At(m_at + 1) == QLatin1Char('/'))
            SkipLineComment();
        else if (c == QLatin1Char('/') && At(m_at + 1) == QLatin1Char('*'))
            SkipBlockComment();
        else if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            ReadText(c);
        else if (c.isDigit() || (c == QLatin1Char('.') && At(m_at + 1).isDigit()))
            ReadNumber();
        else if (IsNameStart(c))
            ReadRun(WordKind::Name);
        else if (c == QLatin1Char('/') && BeginsPattern())
            ReadPattern();
        else
            ReadSign();
    }

    /// A carriage return and a line feed are one end.
    void StepLine() {
        m_at += At(m_at) == QLatin1Char('\r') && At(m_at + 1) == QLatin1Char('\n') ? 2 : 1;
        ++m_line;
    }

    void SkipLineComment() {
        while (m_at < m_script.size() && !IsLineEnd(At(m_at)))
            ++m_at;
    }

    void SkipBlockComment() {
        m_at += 2;
        while (m_at < m_script.size() && !(At(m_at) == QLatin1Char('*') && At(m_at + 1) == QLatin1Char('/')))
            StepInside();
        m_at += 2;
    }

    void ReadText(QChar quote) {
        const int line = m_line;
        QString value;
        ++m_at;
        while (m_at < m_script.size() && At(m_at) != quote && !IsLineEnd(At(m_at)))
            value += ReadTextCharacter();
        ++m_at;
        m_words.push_back({WordKind::Text, value, line});
    }

    QString ReadTextCharacter() {
        if (At(m_at) != QLatin1Char('\\'))
            return At(m_at++);
        ++m_at;
        const QChar escaped = At(m_at);
        if (IsLineEnd(escaped)) {
            StepLine();
            return QString();
        }
        ++m_at;
        if (escaped == QLatin1Char('x'))
            return ReadCode(2);
        if (escaped == QLatin1Char('u'))
            return ReadCode(4);
        static const QString letters = QStringLiteral("nrtbfv0");
        static const QString meant = QStringLiteral("\n\r\t\b\f\v") + QChar();
        const int known = letters.indexOf(escaped);
        return known < 0 ? escaped : meant.at(known);
    }

    QString ReadCode(int digits) {
        bool isNumber = false;
        const ushort code = m_script.midRef(m_at, digits).toUShort(&isNumber, 16);
        if (!isNumber)
            return QString();
        m_at += digits;
        return QChar(code);
    }

    /// A point belongs to the number, and so does the sign of an exponent.
    void ReadNumber() {
        const int start = m_at;
        const bool isHex = At(m_at) == QLatin1Char('0') && At(m_at + 1).toLower() == QLatin1Char('x');
        while (m_at < m_script.size() &&
               (IsNamePart(At(m_at)) || At(m_at) == QLatin1Char('.') || (!isHex && IsSignOfExponent(m_at))))
            ++m_at;
        m_words.push_back({WordKind::Number, m_script.mid(start, m_at - start), m_line});
    }

    bool IsSignOfExponent(int at) const {
        const bool isSign = At(at) == QLatin1Char('+') || At(at) == QLatin1Char('-');
        return isSign && At(at - 1).toLower() == QLatin1Char('e');
    }

    void ReadRun(WordKind kind) {
        const int start = m_at;
        while (m_at < m_script.size() && IsNamePart(At(m_at)))
            ++m_at;
        m_words.push_back({kind, m_script.mid(start, m_at - start), m_line});
    }

    /// Up to the closing slash, which counts for nothing in square brackets, with the letters behind it.
    void ReadPattern() {
        const int start = m_at++;
        bool isClass = false;
        while (m_at < m_script.size() && !IsLineEnd(At(m_at)) && (isClass || At(m_at) != QLatin1Char('/'))) {
            if (At(m_at) == QLatin1Char('\\'))
                ++m_at;
            else if (At(m_at) == QLatin1Char('[') || At(m_at) == QLatin1Char(']'))
                isClass = At(m_at) == QLatin1Char('[');
            ++m_at;
        }
        ++m_at;
        while (m_at < m_script.size() && IsNamePart(At(m_at)))
            ++m_at;
        m_words.push_back({WordKind::Pattern, m_script.mid(start, m_at - start), m_line});
    }

    /// Whether a slash begins a regular expression: it does where a value is expected.
    bool BeginsPattern() const {
        if (m_words.empty())
            return true;
        const SourceWord& last = m_words.back();
        if (last.kind == WordKind::Name)
            return IsOneOf(last.text, kBeforeValue) && !IsMember(static_cast<int>(m_words.size()) - 1);
        if (last.kind != WordKind::Sign)
            return false;
        if (last.text == QLatin1String(")"))
            return ClosesCondition();
        return last.text != QLatin1String("]") && last.text != QLatin1String("++") && last.text != QLatin1String("--");
    }

    bool IsMember(int place) const {
        return place > 0 && m_words[static_cast<std::size_t>(place) - 1].kind == WordKind::Sign &&
               m_words[static_cast<std::size_t>(place) - 1].text == QLatin1String(".");
    }

    bool ClosesCondition() const {
        int open = 0;
        for (int place = static_cast<int>(m_words.size()) - 1; place >= 0; --place) {
            const SourceWord& word = m_words[static_cast<std::size_t>(place)];
            if (word.kind != WordKind::Sign)
                continue;
            if (word.text == QLatin1String(")"))
                ++open;
            else if (word.text == QLatin1String("(") && --open == 0)
                return place > 0 && IsOneOf(m_words[static_cast<std::size_t>(place) - 1].text, kBeforeCondition) &&
                       !IsMember(place - 1);
        }
        return false;
    }

    void ReadSign() {
        for (const char* sign : kLongSigns) {
            const QLatin1String text(sign);
            if (m_script.midRef(m_at, text.size()) == text) {
                m_words.push_back({WordKind::Sign, text, m_line});
                m_at += text.size();
                return;
            }
        }
        m_words.push_back({WordKind::Sign, QString(At(m_at++)), m_line});
    }

    void StepInside() {
        if (IsLineEnd(At(m_at)))
            StepLine();
        else
            ++m_at;
    }

    QChar At(int place) const { return place >= 0 && place < m_script.size() ? m_script.at(place) : QChar(); }

    const QString& m_script;
    std::vector<SourceWord> m_words;
    int m_at = 0;
    int m_line = 1;
};

} // namespace

std::vector<SourceWord> ReadSourceWords(const QString& script) {
    return SourceReader(script).Read();
}

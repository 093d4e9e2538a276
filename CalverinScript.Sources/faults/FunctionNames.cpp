#include "FunctionNames.h"

#include <utility>

#include "SourceTokens.h"

namespace {

using Kind = SourceToken::Kind;

/// Goes through the tokens of a script and keeps what brackets are open.
class FunctionFinder {
public:
    explicit FunctionFinder(const QString& text)
        : m_text(text)
        , m_tokens(TokensOf(text)) {}

    struct Found {
        QString name;
        int start;
        int end;
    };

    std::vector<Found> All() {
        for (m_place = 0; m_place < m_tokens.size(); ++m_place) {
            if (Is(m_place, "function"))
                Begin();
            else if (Is(m_place, "(") || Is(m_place, "{") || Is(m_place, "["))
                Open();
            else if (Is(m_place, ")") || Is(m_place, "}") || Is(m_place, "]"))
                Close();
        }
        return std::move(m_found);
    }

private:
    struct Bracket {
        std::size_t place;
        int function; ///< whose body this is; -1 for none
    };

    bool Is(std::size_t place, const char* what) const {
        return place < m_tokens.size() && m_tokens[place].Is(m_text, what);
    }

    QString NameAt(std::size_t place) const {
        const SourceToken& token = m_tokens[place];
        QString name = token.In(m_text).toString();
        if (token.kind == Kind::Text)
            name = name.mid(1, name.size() - 2);
        return token.kind == Kind::Word || token.kind == Kind::Text ? name : QString();
    }

    void Begin() {
        const bool hasName = m_place + 1 < m_tokens.size() && m_tokens[m_place + 1].kind == Kind::Word;
        const int start = m_tokens[m_place].start;
        m_found.push_back({hasName ? NameAt(m_place + 1) : NameFromBefore(), start, m_text.size()});
        m_awaited = static_cast<int>(m_found.size()) - 1;
    }

    QString NameFromBefore() const {
        if (m_place < 2)
            return {};
        if (Is(m_place - 1, ":") || Is(m_place - 1, "="))
            return NameAt(m_place - 2);
        const bool isArgument = (Is(m_place - 1, "(") || Is(m_place - 1, ",")) && !m_open.empty();
        const std::size_t bracket = isArgument ? m_open.back().place : 0;
        if (bracket == 0 || !Is(bracket, "(") || m_tokens[bracket - 1].kind != Kind::Word)
            return {};
        return NameAt(bracket - 1) + QStringLiteral("'s function");
    }

    /// The first curly bracket behind the parameters is the body.
    void Open() {
        const bool isBody = Is(m_place, "{") && m_awaited >= 0;
        m_open.push_back({m_place, isBody ? std::exchange(m_awaited, -1) : -1});
    }

    void Close() {
        if (m_open.empty())
            return;
        const int function = m_open.back().function;
        if (function >= 0)
            m_found[static_cast<std::size_t>(function)].end = m_tokens[m_place].End();
        m_open.pop_back();
    }

    const QString& m_text;
    const std::vector<SourceToken> m_tokens;
    std::size_t m_place = 0;
    std::vector<Bracket> m_open;
    std::vector<Found> m_found;
    int m_awaited = -1; ///< the function whose body comes next
};

} // namespace

FunctionNames::FunctionNames(const QString& text) {
    int line = 1;
    int counted = 0;
    for (const auto& found : FunctionFinder(text).All()) {
        line += text.midRef(counted, found.start - counted).count(QLatin1Char('\n'));
        counted = found.start;
        const int lines = text.midRef(found.start, found.end - found.start).count(QLatin1Char('\n'));
        m_functions.push_back({found.name, found.start, found.end, line, line + lines});
    }
}

QString FunctionNames::OnLine(int line, int offset) const {
    const Range* innermost = nullptr;
    int beginHere = 0;
    for (const Range& function : m_functions) {
        const bool holds = offset >= 0 ? function.start <= offset && offset < function.end
                                       : function.firstLine <= line && line <= function.lastLine;
        if (!holds)
            continue;
        innermost = &function;
        beginHere += function.firstLine == line ? 1 : 0;
    }
    const bool isClear = innermost != nullptr && (offset >= 0 || beginHere < 2);
    return isClear ? innermost->name : QString();
}

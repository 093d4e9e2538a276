#include "MStringParser.h"

void MStringParser::SetQuotes(char open, char close) {
    m_openQuote = open;
    m_closeQuote = close;
}

const MStringParser::Parts* MStringParser::Split(char separator) {
    m_parts.reset();
    if (!m_text.IsNotEmpty())
        return nullptr;
    m_parts = std::make_unique<Parts>();
    bool quoted = false;
    std::string part;
    const auto endPart = [&] {
        if (!part.empty())
            m_parts->push_back(std::move(part));
        part.clear();
    };
    for (const char* next = m_text.c_str(); *next; ++next) {
        if (!quoted && m_openQuote && *next == m_openQuote)
            quoted = true;
        else if (quoted && m_closeQuote && *next == m_closeQuote)
            quoted = false;
        if (*next == separator && !quoted)
            endPart();
        else
            part += *next;
    }
    endPart();
    return m_parts.get();
}

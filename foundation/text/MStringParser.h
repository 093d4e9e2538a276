#pragma once

#include <memory>
#include <string>
#include <vector>

#include "MString.h"

/// Splits a text at one separator character, except within quotes. Belongs to one thread at a time.
class MStringParser {
public:
    using Parts = std::vector<std::string>;

    MStringParser() = default;
    explicit MStringParser(const char* text)
        : m_text(text) {}
    virtual ~MStringParser() = default;
    MStringParser(const MStringParser&) = delete;
    MStringParser& operator=(const MStringParser&) = delete;

    /// The text to split; copied.
    void SetText(const char* text) { m_text = text; }

    /// The characters between which a separator is an ordinary character; they may be the same one, and they stay in
    /// the parts. 0 switches one off; both are off at first. A quote that is never closed reaches to the end.
    void SetQuotes(char open, char close);

    /// The parts in their order, without the empty ones. Owned by the parser until the next Split.
    /// @return null for an empty text.
    const Parts* Split(char separator);

private:
    MString m_text;
    std::unique_ptr<Parts> m_parts;
    char m_openQuote = '\0';
    char m_closeQuote = '\0';
};

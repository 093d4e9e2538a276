#include "GuardedXml.h"

#include <cctype>
#include <cstring>

#include <tinyxml.h>

namespace {

/// Length of the UTF-8 sequence that starts with this byte, 0 for a byte that starts none.
int SequenceLength(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool IsCompleteUtf8(const char* text, std::size_t length) {
    for (std::size_t at = 0; at < length;) {
        const int size = SequenceLength(static_cast<unsigned char>(text[at]));
        if (size == 0 || at + static_cast<std::size_t>(size) > length)
            return false;
        for (int i = 1; i < size; ++i)
            if ((static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]) & 0xC0) != 0x80)
                return false;
        at += static_cast<std::size_t>(size);
    }
    return true;
}

/// Walks the markup without building anything and counts what the parser would recurse or iterate over.
class MarkupScan {
public:
    MarkupScan(const char* text, std::size_t length)
        : m_at(text)
        , m_end(text + length) {}

    bool WithinLimits(const XmlLimits& limits) {
        while (const char* open = Find('<')) {
            m_at = open + 1;
            if (SkipSection("!--", "-->") || SkipSection("![CDATA[", "]]>"))
                continue;
            const bool ok = StartsEndTag() ? SkipEndTag() : StartsName() ? WalkStartTag(limits) : SkipToEnd();
            if (!ok)
                return false;
        }
        return true;
    }

private:
    const char* Find(char c) const {
        return static_cast<const char*>(std::memchr(m_at, c, static_cast<std::size_t>(m_end - m_at)));
    }

    /// Skips a section that starts here and whose content is not markup; an unfinished one reaches to the end.
    bool SkipSection(const char* start, const char* finish) {
        const std::size_t length = std::strlen(start);
        if (static_cast<std::size_t>(m_end - m_at) < length || std::strncmp(m_at, start, length) != 0)
            return false;
        const char* found = std::strstr(m_at + length, finish);
        m_at = found != nullptr ? found + std::strlen(finish) : m_end;
        return true;
    }

    bool StartsEndTag() const { return m_at < m_end && *m_at == '/'; }

    /// Whether the parser would take what starts here for an element.
    bool StartsName() const {
        const unsigned char c = m_at < m_end ? static_cast<unsigned char>(*m_at) : '\0';
        return c == '_' || c >= 127 || std::isalpha(c) != 0;
    }

    /// End tags, declarations and what the parser calls unknown end at the first ">". Quotes around such a ">" are read
    /// by the parser in some of them and not in others, so a text that depends on that is refused. An end tag without
    /// an element to end is unknown to the parser too.
    bool SkipToEnd() {
        char quote = 0;
        for (; m_at < m_end; ++m_at) {
            const char c = *m_at;
            if (c == '>')
                return quote == 0;
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
        }
        return true;
    }

    bool SkipEndTag() {
        m_depth -= m_depth > 0 ? 1 : 0;
        return SkipToEnd();
    }

    /// Walks one start tag up to its ">" outside quotes; every "=" outside quotes stands for an attribute.
    bool WalkStartTag(const XmlLimits& limits) {
        int attributes = 0;
        char quote = 0;
        char last = 0;
        for (; m_at < m_end; ++m_at) {
            const char c = *m_at;
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '>')
                break;
            else if (c == '=' && ++attributes > limits.attributesOfOneElement)
                return false;
            last = c;
        }
        if (last != '/')
            ++m_depth;
        return m_depth <= limits.depth;
    }

    const char* m_at;
    const char* m_end;
    int m_depth = 0;
};

} // namespace

bool IsXmlWithinLimits(const char* text, std::size_t length, bool utf8, const XmlLimits& limits) {
    if (text == nullptr || length > limits.bytes || std::memchr(text, 0, length) != nullptr)
        return false;
    if (utf8 && !IsCompleteUtf8(text, length))
        return false;
    return MarkupScan(text, length).WithinLimits(limits);
}

bool ParseXml(TiXmlDocument& document, const char* text) {
    if (text == nullptr || !IsXmlWithinLimits(text, std::strlen(text), true))
        return false;
    document.Parse(text, nullptr, TIXML_ENCODING_UTF8);
    return !document.Error() && document.RootElement() != nullptr;
}

std::string PrintXml(const TiXmlDocument& document) {
    TiXmlPrinter printer;
    printer.SetIndent("\t");
    document.Accept(&printer);
    return printer.CStr();
}

std::string PrintXml(const TiXmlElement& element) {
    TiXmlPrinter printer;
    printer.SetIndent("\t");
    element.Accept(&printer);
    return printer.CStr();
}

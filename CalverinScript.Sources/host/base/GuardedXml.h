#pragma once

#include <cstddef>
#include <string>

class TiXmlDocument;
class TiXmlElement;

/// @file
/// The one place where text becomes an XML document and a document becomes text.
///
/// The parser recurses for each level of nesting, reads past a text that is cut inside a UTF-8 character, and takes
/// quadratic time for the attributes of one element. So text is looked over before it is parsed, and refusal looks like
/// a parse error. Pure functions, callable on any thread.

/// What a text may hold to be handed to the parser.
struct XmlLimits {
    std::size_t bytes = 64u << 20;     ///< length of the text
    int depth = 256;                   ///< nested elements
    int attributesOfOneElement = 1000; ///< attributes of one start tag
};

/// Whether the text is within the limits, holds no NUL and is complete UTF-8 (or plain 8-bit text when utf8 is false).
bool IsXmlWithinLimits(const char* text, std::size_t length, bool utf8, const XmlLimits& limits = XmlLimits());

/// Parses a NUL-terminated text as UTF-8 into the (empty) document.
/// @return false for a null text, a text outside the limits and
/// any parse error; the document's content is then undefined.
bool ParseXml(TiXmlDocument& document, const char* text);

/// Prints a node and all below it with one tab for each level.
std::string PrintXml(const TiXmlDocument& document);
std::string PrintXml(const TiXmlElement& element);

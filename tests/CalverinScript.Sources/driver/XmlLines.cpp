#include "XmlLines.h"

#include <tinyxml.h>

#include "GuardedXml.h"

namespace {

void Flatten(const TiXmlElement& element, const std::string& indent, Lines& lines) {
    std::string line = indent + element.Value();
    for (const TiXmlAttribute* a = element.FirstAttribute(); a != nullptr; a = a->Next())
        line += std::string(" ") + a->Name() + "=" + a->Value();
    if (element.GetText() != nullptr)
        line += std::string(" | ") + element.GetText();
    lines.push_back(line);
    for (const TiXmlElement* child = element.FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        Flatten(*child, indent + ".", lines);
}

} // namespace

Lines XmlLines(const TiXmlElement& element) {
    Lines lines;
    Flatten(element, "", lines);
    return lines;
}

Lines XmlLines(const std::string& xml) {
    TiXmlDocument document;
    return ParseXml(document, xml.c_str()) ? XmlLines(*document.RootElement()) : Lines();
}

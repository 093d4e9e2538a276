#include "XmlElement.h"

#include <algorithm>

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace stagehost {

namespace {

/// Deeper texts are refused before they use up the stack.
constexpr int kDeepest = 200;

XmlElement ReadElement(QXmlStreamReader& reader, int depth) {
    XmlElement element;
    element.name = reader.name().toString();
    for (const auto& attribute : reader.attributes())
        element.attributes.emplace_back(attribute.name().toString(), attribute.value().toString());
    if (depth >= kDeepest)
        reader.raiseError(QStringLiteral("too deeply nested"));
    while (!reader.hasError() && reader.readNext() != QXmlStreamReader::EndElement) {
        if (reader.isStartElement())
            element.children.push_back(ReadElement(reader, depth + 1));
        else if (reader.isCharacters() && !reader.isWhitespace())
            element.text += reader.text();
    }
    return element;
}

void Write(QXmlStreamWriter& writer, const XmlElement& element) {
    writer.writeStartElement(element.name);
    for (const auto& [name, value] : element.attributes)
        writer.writeAttribute(name, value);
    if (!element.text.isEmpty())
        writer.writeCharacters(element.text);
    for (const auto& child : element.children)
        Write(writer, child);
    writer.writeEndElement();
}

template <typename Elements>
auto* FindChild(Elements& children, const char* name) {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const auto& child) { return child.name == QLatin1String(name); });
    return found == children.end() ? nullptr : &*found;
}

} // namespace

QString XmlElement::Attribute(const char* attribute) const {
    for (const auto& [known, value] : attributes) {
        if (known == QLatin1String(attribute))
            return value;
    }
    return {};
}

XmlElement& XmlElement::Set(const char* attribute, const QString& value) {
    for (auto& [known, old] : attributes) {
        if (known == QLatin1String(attribute)) {
            old = value;
            return *this;
        }
    }
    attributes.emplace_back(QLatin1String(attribute), value);
    return *this;
}

void XmlElement::Remove(const char* attribute) {
    attributes.erase(std::remove_if(attributes.begin(), attributes.end(),
                                    [&](const auto& known) { return known.first == QLatin1String(attribute); }),
                     attributes.end());
}

XmlElement* XmlElement::Child(const char* child) {
    return FindChild(children, child);
}

const XmlElement* XmlElement::Child(const char* child) const {
    return FindChild(children, child);
}

XmlElement& XmlElement::Need(const char* child) {
    XmlElement* found = Child(child);
    return found == nullptr ? Add(child) : *found;
}

XmlElement& XmlElement::Add(const char* child) {
    children.emplace_back();
    children.back().name = QLatin1String(child);
    return children.back();
}

const XmlElement* XmlElement::ChildWith(const char* attribute, const QString& value) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const auto& child) { return child.Attribute(attribute) == value; });
    return found == children.end() ? nullptr : &*found;
}

QString XmlElement::Print() const {
    QString xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(-1);
    Write(writer, *this);
    return xml;
}

std::optional<XmlElement> XmlElement::Parse(const QString& xml, QString* problem) {
    QXmlStreamReader reader(xml);
    std::optional<XmlElement> root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement())
            root = ReadElement(reader, 0);
    }
    if (!reader.hasError() && root)
        return root;
    *problem =
        QStringLiteral("%1:%2: %3").arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString());
    return std::nullopt;
}

} // namespace stagehost

#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QString>

namespace stagehost {

/// An element of an XML text with all that it holds, in order, for texts of which a host changes a place and keeps the
/// rest. Comments and blanks between elements are not kept.   [any]
struct XmlElement {
    QString name;
    std::vector<std::pair<QString, QString>> attributes;
    std::vector<XmlElement> children;
    QString text;

    /// The value of an attribute; empty when there is none.
    QString Attribute(const char* attribute) const;
    /// Changes an attribute, or adds it behind the others.
    XmlElement& Set(const char* attribute, const QString& value);
    void Remove(const char* attribute);

    /// The first child of that name, or null.
    XmlElement* Child(const char* child);
    const XmlElement* Child(const char* child) const;
    /// The first child of that name, added when there is none.
    XmlElement& Need(const char* child);
    /// Adds a child behind the others.
    XmlElement& Add(const char* child);
    /// Whether there is a child that has that value in an attribute, and which.
    const XmlElement* ChildWith(const char* attribute, const QString& value) const;

    /// The text of the element, indented by tabs.
    QString Print() const;

    /// @param problem receives line, column and what is wrong when there is nothing to give.
    static std::optional<XmlElement> Parse(const QString& xml, QString* problem);
};

} // namespace stagehost

#include "ObjectText.h"

#include <algorithm>
#include <iterator>

namespace stagehost {

namespace {

constexpr const char* kAllGroups = "User Groups";

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        const bool plain = code >= 0x20 && code < 0x7F && character != '"' && character != '&' && character != '<' &&
                           character != '>' && character != '\'';
        if (plain)
            quoted += character;
        else
            quoted += "&#" + std::to_string(code) + ";";
    }
    return quoted + '"';
}

std::string Attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=" + Quoted(value);
}

std::string Element(const char* name, const std::string& attributes, const std::string& content) {
    const std::string begin = std::string("<") + name + attributes;
    return content.empty() ? begin + "/>" : begin + ">" + content + "</" + name + ">";
}

std::string ObjectElement(const std::string& name, ObjectKind kind, const std::string& value,
                          const std::string& content) {
    return Element("Object", Attribute("Name", name) + Attribute("Type", RowOf(kind).name) + Attribute("Value", value),
                   content);
}

bool IsNested(ObjectKind kind) {
    return kind == ObjectKind::UserGroup || kind == ObjectKind::Object;
}

/// The element of an object in a list; groups and objects with those of their kind below them.
std::string ListElement(const ShowModel& model, const ShowObject& object) {
    std::string content;
    if (IsNested(object.Kind())) {
        for (const auto& below : model.Below(object)) {
            if (below->Kind() == object.Kind())
                content += ListElement(model, *below);
        }
    }
    return ObjectElement(object.Name(), object.Kind(), object.ValueText(), content);
}

std::string ListElements(const ShowModel& model, const std::vector<ShowObjectPtr>& objects, std::uint32_t type) {
    std::string elements;
    for (const auto& object : objects) {
        if (type == kEveryType || type == RowOf(object->Kind()).type)
            elements += ListElement(model, *object);
    }
    return elements;
}

std::string WholeShow(const ShowModel& model, std::uint32_t type) {
    std::string elements;
    for (const auto& row : kObjectKinds) {
        if (type != kEveryType && type != row.type)
            continue;
        std::string ofKind = ListElements(model, model.Top(row.kind), row.type);
        if (row.kind == ObjectKind::UserGroup)
            ofKind = ObjectElement(kAllGroups, row.kind, {}, ofKind);
        elements += ofKind;
    }
    return elements;
}

bool IsWholeShow(const std::string& name) {
    return name.empty() || name == kGrantedGroup;
}

std::string Properties(const ShowObject& object) {
    std::string rows;
    for (const auto& property : object.Properties())
        rows += Element("Property", Attribute("Name", property.name) + Attribute("Value", property.value), {});
    return Element("Properties", {}, rows);
}

std::string Description(const ShowModel& model, const ShowObject& object, std::uint32_t depth) {
    std::string content = Properties(object);
    if (depth > 0) {
        for (const auto& below : model.Below(object))
            content += Description(model, *below, depth - 1);
    }
    return ObjectElement(object.Name(), object.Kind(), object.ValueText(), content);
}

} // namespace

std::optional<std::string> ObjectListText(const ShowModel& model, const std::string& parent, std::uint32_t type) {
    std::string elements;
    if (IsWholeShow(parent)) {
        elements = WholeShow(model, type);
    } else {
        const auto object = model.FindAny(parent);
        if (!object)
            return std::nullopt;
        elements = ListElements(model, model.Below(*object), type);
    }
    return Element("Objects", Attribute("Parent", parent) + Attribute("Type", std::to_string(type)), elements);
}

std::optional<std::string> ObjectDescription(const ShowModel& model, const std::string& name, std::uint32_t depth) {
    if (!IsWholeShow(name)) {
        const auto object = model.FindAny(name);
        if (!object)
            return std::nullopt;
        const auto own = object->OwnText();
        return own ? own : Description(model, *object, depth);
    }
    std::string content;
    for (const auto& row : kObjectKinds) {
        for (const auto& object : depth > 0 ? model.Top(row.kind) : std::vector<ShowObjectPtr>())
            content += Description(model, *object, depth - 1);
    }
    return ObjectElement(kGrantedGroup, ObjectKind::UserGroup, {}, content);
}

} // namespace stagehost

#include "ParameterText.h"

#include <algorithm>

#include <QXmlStreamReader>

#include "BorderText.h"
#include "WholeNumber.h"

namespace stagehost {

bool Parameters::AreAmong(std::initializer_list<const char*> names) const {
    return std::all_of(m_list.begin(), m_list.end(), [&](const auto& parameter) {
        return std::any_of(names.begin(), names.end(), [&](const char* name) { return parameter.name == name; });
    });
}

std::optional<std::string> Parameters::Text(const std::string& name) const {
    const auto found =
        std::find_if(m_list.rbegin(), m_list.rend(), [&](const auto& parameter) { return parameter.name == name; });
    return found == m_list.rend() ? std::nullopt : std::optional(found->text);
}

std::optional<std::int32_t> Parameters::WholeOr(const std::string& name, std::int32_t missing) const {
    const auto text = Text(name);
    return text ? ParseWholeNumber(*text) : std::optional(missing);
}

namespace {

bool ReadList(QXmlStreamReader& xml, std::vector<ActionParameter>& list) {
    while (xml.readNextStartElement()) {
        const auto attributes = xml.attributes();
        const QString name = attributes.value(QLatin1String("name")).toString();
        if (xml.name() != QLatin1String("parameter") || name.isEmpty())
            return false;
        list.push_back({ToBorderText(name), ToBorderText(attributes.value(QLatin1String("value")).toString()), false});
        xml.skipCurrentElement();
    }
    return true;
}

} // namespace

std::optional<Parameters> ReadParameters(const std::string& text) {
    const QString content = FromBorderText(text).trimmed();
    if (content.isEmpty())
        return Parameters();
    QXmlStreamReader xml(content);
    std::vector<ActionParameter> list;
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("parameters") || !ReadList(xml, list))
        return std::nullopt;
    while (!xml.atEnd())
        xml.readNext();
    return xml.hasError() ? std::nullopt : std::optional(Parameters(std::move(list)));
}

} // namespace stagehost

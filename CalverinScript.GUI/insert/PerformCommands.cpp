#include "PerformCommands.h"

#include <algorithm>
#include <iterator>

#include <tinyxml.h>

#include "GuardedXml.h"
#include "HostXml.h"

namespace {

constexpr const char* kWayProperty = "DataDescriptor::VarDirection";

struct WayName {
    const char* name;
    ParamWay way;
};

constexpr WayName kWays[] = {{"mddIn", ParamWay::In}, {"mddOut", ParamWay::Out}, {"mddInOut", ParamWay::InOut}};

/// Calls for each child of that tag.
template <typename Take>
void ForEach(const TiXmlElement* parent, const char* tag, Take take) {
    for (const TiXmlElement* child = parent != nullptr ? parent->FirstChildElement(tag) : nullptr; child != nullptr;
         child = child->NextSiblingElement(tag))
        take(*child);
}

/// Name and properties stand at the data of a parameter; some hosts write them at the parameter itself.
QString NameOf(const TiXmlElement& param, const TiXmlElement& data) {
    const QString name = XmlText(data, "Name");
    return name.isNull() ? XmlText(param, "Name") : name;
}

ParamWay WayOf(const TiXmlElement& param, const TiXmlElement& data) {
    QString text = FindXmlProperty(data, kWayProperty);
    if (text.isNull())
        text = FindXmlProperty(param, kWayProperty);
    const auto* row = std::find_if(std::begin(kWays), std::end(kWays),
                                   [&](const WayName& candidate) { return text == QLatin1String(candidate.name); });
    return row != std::end(kWays) ? row->way : ParamWay::In;
}

void ReadItems(const TiXmlElement& data, OfferedParam& param) {
    ForEach(data.FirstChildElement("EnumStrings"), "EnumString", [&](const TiXmlElement& item) {
        int place = 0;
        const QString name = XmlText(item, "Name");
        if (!name.isNull() && item.QueryIntAttribute("Value", &place) == TIXML_SUCCESS)
            param.items.emplace_back(place, name);
    });
    param.current = XmlNumber(data, "Current", 0);
}

OfferedParam ReadParam(const TiXmlElement& param, const TiXmlElement& data) {
    OfferedParam offered;
    offered.type = QString::fromUtf8(data.Value());
    offered.name = NameOf(param, data);
    offered.way = WayOf(param, data);
    offered.value = XmlText(data, offered.type == QLatin1String("StringData") ? "String" : "Value");
    ReadItems(data, offered);
    return offered;
}

} // namespace

std::vector<OfferedCommand> ReadCommands(const char* objectText) {
    std::vector<OfferedCommand> commands;
    TiXmlDocument document;
    if (!ParseHostXml(document, objectText) || document.RootElement() == nullptr)
        return commands;
    ForEach(document.RootElement()->FirstChildElement("Commands"), "Command", [&](const TiXmlElement& command) {
        const QString name = XmlText(command, "Name");
        if (!name.isNull())
            commands.push_back({name, QString::fromStdString(PrintXml(command))});
    });
    return commands;
}

std::vector<OfferedParam> ReadParams(const QString& commandText) {
    std::vector<OfferedParam> params;
    TiXmlDocument document;
    if (!ParseXml(document, commandText.toUtf8().constData()) || document.RootElement() == nullptr)
        return params;
    ForEach(document.RootElement()->FirstChildElement("ObjectParams"), "ObjectParam", [&](const TiXmlElement& param) {
        const TiXmlElement* const data = param.FirstChildElement();
        if (data != nullptr && !NameOf(param, *data).isNull())
            params.push_back(ReadParam(param, *data));
    });
    return params;
}

QString PerformText(bool isAsync, const QString& device, const QString& command,
                    const std::vector<GivenParam>& params) {
    QString text = QStringLiteral("QCalverin.") + QLatin1String(isAsync ? "PerformAsync( " : "Perform( ");
    text += QLatin1Char('"') + device + QStringLiteral("\", \"") + command + QStringLiteral("\", \"XML\", ");
    text += QStringLiteral("\"<parameters> ");
    for (const GivenParam& param : params)
        text += QStringLiteral("<parameter name='") + param.name + QStringLiteral("' value='") + param.value +
                QStringLiteral("'/> ");
    return text + QStringLiteral("</parameters>\" );");
}

#include "StoredCommand.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include <QSet>

#include <tinyxml.h>

#include "CommandXml.h"
#include "DriverTables.h"
#include "GuardedXml.h"
#include "HostXml.h"
#include "ValueConversion.h"

namespace {

/// Attributes of a value's element that the module writes itself, so that older ones are not taken over.
constexpr const char* kOwnDataAttributes[] = {"Name",      "ID",        "MinValue",     "MaxValue",
                                              "MaxLength", "Precision", "TimeCodeType", "ToTimeCodeType"};
constexpr const char* kOwnParamAttributes[] = {"ID", "VarType", "ClassName"};
constexpr const char* kOwnProperties[] = {kAcceptVariableProperty, kDirectionProperty, kParamNameProperty};

template <std::size_t N>
bool IsOneOf(const char* const (&names)[N], const std::string& name) {
    return std::any_of(std::begin(names), std::end(names), [&](const char* known) { return name == known; });
}

/// The first element of that name, the root included, depth first.
TiXmlElement* FindElement(TiXmlElement* from, const char* name) {
    if (from == nullptr || from->ValueStr() == name)
        return from;
    for (TiXmlElement* child = from->FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        if (TiXmlElement* found = FindElement(child, name))
            return found;
    return nullptr;
}

bool IsValueAttribute(const TiXmlElement& data, const std::string& name) {
    const DataKind* kind = FindDataKind(QString::fromStdString(data.ValueStr()));
    return kind != nullptr && name == kind->valueAttribute;
}

bool IsFiniteNumber(const QString& text) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number);
}

/// The text of a stored value for a parameter that may have another type by now; null when the type cannot hold it.
QString CarriedValue(const TiXmlElement& oldData, const MScriptCommandParam& param) {
    const DataKind* oldKind = FindDataKind(QString::fromStdString(oldData.ValueStr()));
    const DataKind* kind = FindDataKind(param.type);
    QString text = XmlText(oldData, oldKind->valueAttribute);
    if (text.isNull() || kind == nullptr || oldKind == kind)
        return text;
    switch (kind->code) {
    case KXP_INTEGER_DATA:
        return IsFiniteNumber(text) ? QString::number(RoundToInt32(text.toDouble())) : QString();
    case KXP_REAL_DATA:
        return IsFiniteNumber(text) ? text : QString();
    case KXP_ENUM_DATA: {
        const int index = param.items.indexOf(text);
        return index >= 0 ? QString::number(index) : IsFiniteNumber(text) ? text : QString();
    }
    case KXP_STRING_DATA: {
        const QStringList items = ReadEnumStrings(oldData);
        return oldKind->code == KXP_ENUM_DATA ? items.value(text.toInt(), text) : text;
    }
    default:
        return oldKind->code == KXP_STRING_DATA ? text : QString();
    }
}

void CarryProperties(const TiXmlElement& oldData, TiXmlElement& data) {
    const TiXmlElement* oldProperties = oldData.FirstChildElement("Properties");
    const TiXmlElement* property = oldProperties != nullptr ? oldProperties->FirstChildElement("Property") : nullptr;
    TiXmlElement* properties = data.FirstChildElement("Properties");
    for (; property != nullptr && properties != nullptr; property = property->NextSiblingElement("Property")) {
        const std::string name = XmlText(*property, "Name").toStdString();
        if (!IsOneOf(kOwnProperties, name))
            properties->InsertEndChild(*property);
    }
}

/// Takes over what the host and the user put beside the module's own.
void CarryData(const TiXmlElement& oldData, const MScriptCommandParam& param, TiXmlElement& data) {
    const bool sameType = oldData.ValueStr() == data.ValueStr();
    for (const TiXmlAttribute* a = oldData.FirstAttribute(); a != nullptr; a = a->Next()) {
        const std::string name = a->Name();
        const bool isOldsOwn = IsValueAttribute(oldData, name) && !sameType;
        if (!IsOneOf(kOwnDataAttributes, name) && !isOldsOwn)
            data.SetAttribute(name, a->ValueStr());
    }
    const QString value = CarriedValue(oldData, param);
    const DataKind* kind = FindDataKind(param.type);
    if (!value.isNull() && kind != nullptr)
        SetXmlText(data, kind->valueAttribute, value);
    CarryProperties(oldData, data);
    for (const TiXmlElement* child = oldData.FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        if (child->ValueStr() != "Properties" && child->ValueStr() != "EnumStrings")
            data.InsertEndChild(*child);
}

void CarryParam(const TiXmlElement& old, const MScriptCommandParam& param, TiXmlElement& fresh) {
    for (const TiXmlAttribute* a = old.FirstAttribute(); a != nullptr; a = a->Next())
        if (!IsOneOf(kOwnParamAttributes, a->Name()))
            fresh.SetAttribute(std::string(a->Name()), a->ValueStr());
    const TiXmlElement* oldData = FindDataElement(old);
    auto* data = const_cast<TiXmlElement*>(FindDataElement(fresh));
    if (oldData != nullptr && data != nullptr)
        CarryData(*oldData, param, *data);
    for (const TiXmlElement* child = old.FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        if (child != oldData)
            fresh.InsertEndChild(*child);
}

/// The parameters that were stored, each to be taken once.
class OldParams {
public:
    explicit OldParams(const TiXmlElement& params) {
        for (const TiXmlElement* param = params.FirstChildElement("ObjectParam"); param != nullptr;
             param = param->NextSiblingElement("ObjectParam"))
            m_params.push_back(param);
    }

    const TiXmlElement* Take(const QString& paramName) {
        const auto byLink = [&](const TiXmlElement& data) { return FindXmlProperty(data, kParamNameProperty); };
        const auto byName = [&](const TiXmlElement& data) { return XmlText(data, "Name"); };
        const TiXmlElement* found = TakeWhere(paramName, byLink);
        return found != nullptr ? found : TakeWhere(paramName, byName);
    }

private:
    template <typename NameOf>
    const TiXmlElement* TakeWhere(const QString& name, NameOf nameOf) {
        const auto found = std::find_if(m_params.begin(), m_params.end(), [&](const TiXmlElement* param) {
            const TiXmlElement* data = FindDataElement(*param);
            return data != nullptr && nameOf(*data) == name;
        });
        if (found == m_params.end())
            return nullptr;
        const TiXmlElement* taken = *found;
        m_params.erase(found);
        return taken;
    }

    std::vector<const TiXmlElement*> m_params;
};

using Elements = std::vector<std::unique_ptr<TiXmlElement>>;

Elements MakeParams(const TiXmlElement& oldParams, const MScriptCommand& command) {
    Elements made;
    OldParams old(oldParams);
    for (int id = 0; id < command.params.size(); ++id) {
        const MScriptCommandParam& param = command.params[id];
        made.push_back(MakeParamElement(param, id));
        if (const TiXmlElement* stored = old.Take(param.name))
            CarryParam(*stored, param, *made.back());
    }
    return made;
}

} // namespace

StoredCommand::StoredCommand() = default;
StoredCommand::~StoredCommand() = default;

bool StoredCommand::Parse(const char* xml) {
    m_document = std::make_unique<TiXmlDocument>();
    return ParseHostXml(*m_document, xml, &m_plain8Bit);
}

QString StoredCommand::OwnerName() const {
    return XmlText(*m_document->RootElement(), "Name");
}

QString StoredCommand::FunctionName() const {
    const TiXmlElement* params = FindElement(m_document->RootElement(), "ObjectParams");
    return params != nullptr ? FindXmlProperty(*params, kCommandNameProperty) : QString();
}

std::string StoredCommand::Rewrite(const MScriptCommand& command) {
    TiXmlElement* root = m_document->RootElement();
    if (TiXmlElement* element = FindElement(root, "Command"))
        SetXmlNumber(*element, "ID", command.id);
    TiXmlElement* params = FindElement(root, "ObjectParams");
    const Elements fresh = MakeParams(*params, command);
    while (TiXmlElement* old = params->FirstChildElement("ObjectParam"))
        params->RemoveChild(old);
    SetXmlNumber(*params, "ID", command.id);
    SetXmlNumber(*params, "ParamsCount", command.params.size());
    TiXmlNode* behind = params->FirstChild();
    for (const auto& param : fresh) {
        if (behind != nullptr)
            params->InsertBeforeChild(behind, *param);
        else
            params->InsertEndChild(*param);
    }
    const std::string text = PrintXml(*m_document);
    return m_plain8Bit ? QString::fromStdString(text).toLatin1().toStdString() : text;
}

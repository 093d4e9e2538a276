#include "SetupText.h"

#include <QJsonArray>

#include "BorderText.h"
#include "DataTypes.h"
#include "NearNames.h"
#include "PlainNumbers.h"
#include "ValueFactory.h"
#include "XmlElement.h"

namespace stagehost {

namespace {

constexpr const char* kUserData = "$CURRENTPRJ_USERDATA\\";

QString TextOf(const QJsonObject& object, const char* name) {
    return object.value(QLatin1String(name)).toVariant().toString();
}

QStringList ItemsOf(const QJsonObject& record) {
    QStringList items;
    for (const auto& item : record.value(QLatin1String("items")).toArray())
        items += item.toString();
    return items;
}

bool IsEnum(const QString& type) {
    return type == QLatin1String("EnumData");
}

/// Whether the script gave a number or a text; an item of an enumeration may look like a number.
QString ValueTypeOf(const QJsonObject& variable) {
    const QString type = TextOf(variable, "type");
    const QString value = TextOf(variable, "value");
    bool whole = false;
    bool number = false;
    value.toInt(&whole);
    value.toDouble(&number);
    if (type == QLatin1String("StringData") || ItemsOf(variable).contains(value) || !number)
        return QStringLiteral("String");
    return whole ? QStringLiteral("Integer") : QStringLiteral("Real");
}

void AddProperties(XmlElement& element, const QJsonObject& record) {
    const QJsonObject properties = record.value(QLatin1String("properties")).toObject();
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        const QByteArray name = property.key().toLatin1();
        if (element.Attribute(name.constData()).isNull())
            element.Set(name.constData(), property.value().toString());
    }
    if (!IsEnum(TextOf(record, "type")))
        return;
    XmlElement& strings = element.Add("EnumStrings");
    const QStringList items = ItemsOf(record);
    strings.Set("EnumCount", QString::number(items.size()));
    for (int index = 0; index < items.size(); ++index)
        strings.Add("EnumString").Set("Name", items.at(index)).Set("Value", QString::number(index));
}

/// The entry of before that means the same as a record of now: of the same name and type.
const XmlElement* Former(const XmlElement& list, const QJsonObject& record) {
    const XmlElement* former = list.ChildWith("Name", TextOf(record, "name"));
    return former != nullptr && former->Attribute("Type") == TextOf(record, "type") ? former : nullptr;
}

/// The first value of an enumeration's setting, which the script may give as text.
QString SettingValue(const QJsonObject& record) {
    const QString value = TextOf(record, "value");
    const int item = ItemsOf(record).indexOf(value);
    return IsEnum(TextOf(record, "type")) && item >= 0 ? QString::number(item) : value;
}

ValueSpec SpecOfSetting(const XmlElement& setting) {
    const DataType* type = FindDataTypeOfElement(setting.Attribute("Type").toStdString());
    ValueSpec spec;
    spec.type = type == nullptr ? KXP_STRING_DATA : type->code;
    spec.name = ToBorderText(setting.Attribute("Name"));
    spec.minimum = ParseNumber(ToBorderText(setting.Attribute("MinValue")));
    spec.maximum = ParseNumber(ToBorderText(setting.Attribute("MaxValue")));
    if (const XmlElement* strings = setting.Child("EnumStrings")) {
        for (const auto& item : strings->children)
            spec.items.push_back(ToBorderText(item.Attribute("Name")));
    }
    return spec;
}

/// What the user entered, unless the limits of now do not allow it any more.
QString KeptSetting(const XmlElement* former, const XmlElement& setting, const QString& fresh) {
    if (former == nullptr)
        return fresh;
    const QString kept = former->Attribute("Value");
    const ValueSpec spec = SpecOfSetting(setting);
    return MakeValue(spec)->SetText(ToBorderText(kept)) && ComplaintAbout(spec, ToBorderText(kept)).empty() ? kept
                                                                                                            : fresh;
}

void WriteSettings(XmlElement& setup, const QJsonArray& records) {
    XmlElement& list = setup.Need("Settings");
    const XmlElement before = list;
    list.children.clear();
    for (const auto& value : records) {
        const QJsonObject record = value.toObject();
        XmlElement& setting = list.Add("Setting");
        setting.Set("Name", TextOf(record, "name")).Set("Type", TextOf(record, "type")).Set("Value", QString());
        setting.Set("Widget", TextOf(record, "widget"));
        AddProperties(setting, record);
        setting.Set("Value", KeptSetting(Former(before, record), setting, SettingValue(record)));
    }
}

void WriteMonitors(XmlElement& setup, const QJsonArray& records) {
    XmlElement& list = setup.Need("Monitors");
    const XmlElement before = list;
    list.children.clear();
    for (const auto& value : records) {
        const QJsonObject record = value.toObject();
        const XmlElement* former = Former(before, record);
        const bool own = former != nullptr && former->Attribute("UseDefaultScriptValue") == QLatin1String("0");
        XmlElement& monitor = list.Add("Monitor");
        monitor.Set("Name", TextOf(record, "name")).Set("Type", TextOf(record, "type"));
        monitor.Set("Value", own ? former->Attribute("Value") : TextOf(record, "value"));
        monitor.Set("ValueType", own ? former->Attribute("ValueType") : ValueTypeOf(record));
        monitor.Set("DefaultScriptValue", TextOf(record, "value"));
        monitor.Set("UseDefaultScriptValue", own ? QStringLiteral("0") : QStringLiteral("1"));
        AddProperties(monitor, record);
    }
}

void WriteScript(XmlElement& setup, const DriverEdition& edition) {
    XmlElement& script = setup.Need("Script");
    script.Remove("ScriptFileName");
    if (!edition.linkedFile.isEmpty())
        script.Set("ScriptFileName", QLatin1String(kUserData) + edition.linkedFile);
    script.Set("EncodedBase64", QStringLiteral("1"));
    script.text = QString::fromLatin1(QByteArray::fromStdString(ToBorderText(edition.text)).toBase64());
}

std::optional<XmlElement> ParseSetup(const QString& text) {
    QString problem;
    auto root = XmlElement::Parse(text, &problem);
    return root && root->name == QLatin1String("DeviceData") ? root : std::nullopt;
}

XmlElement EmptySetup() {
    XmlElement root;
    root.name = QStringLiteral("DeviceData");
    root.Set("Version", QStringLiteral("1000"));
    return root;
}

/// The names of the settings that a setup has.
QStringList SettingNames(const XmlElement& settings) {
    QStringList names;
    for (const auto& setting : settings.children)
        names += setting.Attribute("Name");
    return names;
}

} // namespace

std::optional<QString> MakeSetupText(const QString& before, const DriverEdition& edition) {
    auto root = before.isEmpty() ? EmptySetup() : ParseSetup(before);
    if (!root)
        return std::nullopt;
    XmlElement& setup = root->Need("Setup");
    WriteSettings(setup, edition.report.value(QLatin1String("settings")).toArray());
    WriteMonitors(setup, edition.report.value(QLatin1String("variables")).toArray());
    WriteScript(setup, edition);
    return root->Print();
}

QString ScriptOfSetup(const QString& setup) {
    const auto root = ParseSetup(setup);
    const XmlElement* inner = root ? root->Child("Setup") : nullptr;
    const XmlElement* script = inner != nullptr ? inner->Child("Script") : nullptr;
    if (script == nullptr)
        return {};
    if (script->Attribute("EncodedBase64").toInt() == 0)
        return script->text;
    return QString::fromLatin1(QByteArray::fromBase64(script->text.toLatin1()));
}

QString ChangeSettings(QString& setup, const QStringList& words) {
    auto root = ParseSetup(setup);
    if (!root)
        return QStringLiteral("there is no setup");
    XmlElement& settings = root->Need("Setup").Need("Settings");
    for (const QString& word : words) {
        const QString name = word.section(QLatin1Char('='), 0, 0);
        auto* setting = const_cast<XmlElement*>(settings.ChildWith("Name", name));
        if (!word.contains(QLatin1Char('=')) || setting == nullptr)
            return QStringLiteral("expected SETTING=VALUE with a setting of the driver, not \"%1\"").arg(word) +
                   NamesInstead(name, SettingNames(settings));
        const ValueSpec spec = SpecOfSetting(*setting);
        const std::string text = ToBorderText(word.section(QLatin1Char('='), 1));
        const std::string complaint = ComplaintAbout(spec, text);
        if (!complaint.empty())
            return QStringLiteral("the setting \"%1\" %2").arg(name, FromBorderText(complaint));
        const auto value = MakeValue(spec);
        value->SetText(text);
        setting->Set("Value", spec.type == KXP_ENUM_DATA ? QString::number(value->Int()) : FromBorderText(text));
    }
    setup = root->Print();
    return {};
}

} // namespace stagehost

#include "SetupText.h"

#include <QJsonArray>

#include "BorderText.h"
#include "NearNames.h"
#include "SettingRule.h"
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

/// What the user entered, unless the limits of now do not allow it any more.
QString KeptSetting(const XmlElement* former, const XmlElement& setting, const QString& fresh) {
    if (former == nullptr)
        return fresh;
    const QString kept = former->Attribute("Value");
    const SettingRule rule(setting);
    return rule.ComplaintAbout(rule.Shown(kept)).isEmpty() ? kept : fresh;
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

XmlElement* SettingOf(XmlElement& settings, const QString& name) {
    return const_cast<XmlElement*>(settings.ChildWith("Name", name));
}

QString NoSuchSetting(const QString& name, const XmlElement& settings) {
    QStringList names;
    QStringList words;
    for (const auto& setting : settings.children) {
        names += setting.Attribute("Name");
        words += SettingRule(setting).Words();
    }
    const QString text = QStringLiteral("there is no setting \"%1\"").arg(name);
    if (names.isEmpty())
        return text + QStringLiteral("; the script has none");
    const QString near = NearestName(name, names);
    const QString meant = near.isNull() ? QStringLiteral("; there are: ")
                                        : QStringLiteral("; did you mean \"%1\"? There are: ").arg(near);
    return text + meant + words.join(QStringLiteral(", "));
}

XmlElement EmptySetup() {
    XmlElement root;
    root.name = QStringLiteral("DeviceData");
    root.Set("Version", QStringLiteral("1000"));
    return root;
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

DriverEdition SettingsAlone(const DriverEdition& edition) {
    const QString settings = QStringLiteral("settings");
    return {{}, {}, {{settings, edition.report.value(settings)}}};
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

QStringList GiveSettings(QString& setup, const std::vector<GivenSetting>& given) {
    auto root = ParseSetup(setup);
    if (!root || given.empty())
        return {};
    QStringList complaints;
    XmlElement& settings = root->Need("Setup").Need("Settings");
    for (const auto& one : given) {
        XmlElement* setting = SettingOf(settings, one.name);
        const QString complaint =
            setting == nullptr ? NoSuchSetting(one.name, settings) : SettingRule(*setting).ComplaintAbout(one.text);
        if (!complaint.isEmpty())
            complaints += one.place + QStringLiteral(": ") + complaint;
        else
            setting->Set("Value", SettingRule(*setting).Stored(one.text));
    }
    if (complaints.isEmpty())
        setup = root->Print();
    return complaints;
}

QString WithSettingsOf(const QString& setup, const QString& other, const QStringList& names) {
    auto root = ParseSetup(setup);
    auto source = ParseSetup(other);
    if (!root || !source || names.isEmpty())
        return setup;
    for (const QString& name : names) {
        const XmlElement* from = SettingOf(source->Need("Setup").Need("Settings"), name);
        XmlElement* to = SettingOf(root->Need("Setup").Need("Settings"), name);
        if (from != nullptr && to != nullptr)
            to->Set("Value", from->Attribute("Value"));
    }
    return root->Print();
}

std::optional<QString> SettingOfSetup(const QString& setup, const QString& name) {
    auto root = ParseSetup(setup);
    const XmlElement* setting = root ? SettingOf(root->Need("Setup").Need("Settings"), name) : nullptr;
    if (setting == nullptr)
        return std::nullopt;
    return SettingRule(*setting).Shown(setting->Attribute("Value"));
}

} // namespace stagehost

#include "SetupFormat.h"

#include <QDir>
#include <QFileInfo>

#include <tinyxml.h>

#include "CommandXml.h"
#include "GuardedXml.h"
#include "HostText.h"
#include "HostXml.h"
#include "VariableXml.h"

namespace {

constexpr int kSetupVersion = 1000;
constexpr int kInternalVersion = 1;

/// Adds a list of elements below one that is there even when the list is empty.
template <typename Records, typename Make>
void AddList(TiXmlElement& setup, const char* name, const Records& records, Make make) {
    TiXmlElement& list = AddXmlElement(setup, name);
    for (const auto& record : records)
        list.LinkEndChild(make(record).release());
}

template <typename Record, typename Read>
std::vector<Record> ReadList(const TiXmlElement& setup, const char* name, const char* entryName, Read read) {
    std::vector<Record> records;
    const TiXmlElement* list = setup.FirstChildElement(name);
    const TiXmlElement* entry = list != nullptr ? list->FirstChildElement(entryName) : nullptr;
    for (; entry != nullptr; entry = entry->NextSiblingElement(entryName)) {
        Record record;
        if (read(*entry, record))
            records.push_back(std::move(record));
    }
    return records;
}

void AddPanel(TiXmlElement& setup, const DeviceSetup& content) {
    TiXmlElement& panel = AddXmlElement(setup, "ControlPanel");
    SetXmlNumber(AddXmlElement(panel, "UserMode"), "Visibility", content.userModeVisible.value_or(true) ? 1 : 0);
    SetXmlNumber(AddXmlElement(panel, "RunMode"), "Visibility", content.runModeVisible.value_or(true) ? 1 : 0);
}

void AddScript(TiXmlElement& setup, const SetupScript& script) {
    TiXmlElement& element = AddXmlElement(setup, "Script");
    if (!script.storedFileName.isEmpty())
        SetXmlText(element, "ScriptFileName", script.storedFileName);
    SetXmlNumber(element, "EncodedBase64", 1);
    SetXmlNumber(element, "RegisterAllUserGroups", script.registerAllUserGroups ? 1 : 0);
    SetXmlNumber(element, "RemoveDefaultCommandsAndVariables", script.removeDefaults ? 1 : 0);
    SetXmlNumber(element, "ProgrammingMode", script.programmingMode ? 1 : 0);
    SetXmlNumber(element, "AutoCompletion", script.autoCompletion ? 1 : 0);
    auto* text = new TiXmlText(ToHostText(script.text).toBase64().constData());
    text->SetCDATA(true);
    element.LinkEndChild(text);
}

std::optional<bool> ReadVisibility(const TiXmlElement& setup, const char* mode) {
    const TiXmlElement* panel = setup.FirstChildElement("ControlPanel");
    const TiXmlElement* element = panel != nullptr ? panel->FirstChildElement(mode) : nullptr;
    if (element == nullptr || XmlText(*element, "Visibility").isNull())
        return std::nullopt;
    return XmlNumber(*element, "Visibility", 0) != 0;
}

/// Text that is stored plainly is UTF-8, as the document.
QString ReadScriptText(const TiXmlElement& element) {
    const char* content = nullptr;
    for (const TiXmlNode* child = element.FirstChild(); child != nullptr && content == nullptr;
         child = child->NextSibling())
        if (const TiXmlText* text = child->ToText())
            content = text->Value();
    if (content == nullptr)
        return QStringLiteral("");
    if (XmlNumber(element, "EncodedBase64", 0) == 0)
        return QString::fromUtf8(content);
    const QByteArray bytes = QByteArray::fromBase64(content);
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

std::optional<SetupScript> ReadScript(const TiXmlElement& setup) {
    const TiXmlElement* element = setup.FirstChildElement("Script");
    if (element == nullptr)
        return std::nullopt;
    const auto flag = [&](const char* name, bool missing) { return XmlNumber(*element, name, missing ? 1 : 0) != 0; };
    SetupScript script;
    script.storedFileName = XmlText(*element, "ScriptFileName");
    script.text = ReadScriptText(*element);
    script.registerAllUserGroups = flag("RegisterAllUserGroups", false);
    script.removeDefaults = flag("RemoveDefaultCommandsAndVariables", false);
    script.programmingMode = flag("ProgrammingMode", false);
    script.autoCompletion = flag("AutoCompletion", true);
    return script;
}

/// @return null without a root `DeviceData` that has a version.
const TiXmlElement* FindRoot(const TiXmlDocument& document) {
    const TiXmlElement* root = document.RootElement();
    int version = 0;
    const bool isSetup = root != nullptr && root->ValueStr() == "DeviceData" &&
                         root->QueryIntAttribute("Version", &version) == TIXML_SUCCESS;
    return isSetup ? root : nullptr;
}

} // namespace

std::string PrintSetup(const DeviceSetup& content) {
    TiXmlDocument document;
    TiXmlElement& root = *document.LinkEndChild(new TiXmlElement("DeviceData"))->ToElement();
    SetXmlNumber(root, "Version", kSetupVersion);
    SetXmlText(root, "Name", content.name);
    SetXmlNumber(root, "DeviceInternalVersion", kInternalVersion);
    TiXmlElement& setup = AddXmlElement(root, "Setup");
    AddPanel(setup, content);
    AddList(setup, "Settings", content.settings, &MakeSettingElement);
    AddList(setup, "Monitors", content.monitors, &MakeMonitorElement);
    if (content.moduleCommands)
        AddList(setup, "ModuleCommands", *content.moduleCommands, &MakeCommandElement);
    AddList(setup, "Commands", content.commands, &MakeCommandElement);
    if (content.script)
        AddScript(setup, *content.script);
    return PrintXml(document);
}

bool IsStorable(const std::string& setupText) {
    return setupText.size() <= XmlLimits().bytes;
}

KXPCode ReadSetup(const char* text, DeviceSetup& content) {
    TiXmlDocument document;
    if (text == nullptr || *text == '\0' || !ParseHostXml(document, text))
        return KXP_NULL_ARGUMENT;
    const TiXmlElement* root = FindRoot(document);
    if (root == nullptr)
        return KXP_BAD_SETUP;
    content.name = XmlText(*root, "Name");
    if (content.name.isNull())
        content.name = QStringLiteral("");
    const TiXmlElement* setup = root->FirstChildElement("Setup");
    if (setup == nullptr)
        return KXP_NULL_ARGUMENT;
    content.userModeVisible = ReadVisibility(*setup, "UserMode");
    content.runModeVisible = ReadVisibility(*setup, "RunMode");
    content.settings = ReadList<MScriptSetting>(*setup, "Settings", "Setting", &ReadSettingElement);
    content.monitors = ReadList<MScriptVariable>(*setup, "Monitors", "Monitor", &ReadMonitorElement);
    content.moduleCommands.reset();
    if (setup->FirstChildElement("ModuleCommands") != nullptr)
        content.moduleCommands.emplace(
            ReadList<MScriptCommand>(*setup, "ModuleCommands", "Command", &ReadCommandElement));
    content.commands = ReadList<MScriptCommand>(*setup, "Commands", "Command", &ReadCommandElement);
    content.script = ReadScript(*setup);
    return KXP_OK;
}

QString ResolveStoredFileName(const QString& storedFileName, const QString& userDataFolder) {
    const QString token = QLatin1String(kUserDataToken);
    const int at = storedFileName.indexOf(token);
    if (at < 0 || userDataFolder.isEmpty())
        return QString();
    const QString rest = storedFileName.mid(at + token.size() + 1).replace(QLatin1Char('\\'), QLatin1Char('/'));
    return rest.isEmpty() ? QString() : QDir(userDataFolder).filePath(rest);
}

QString MakeStoredFileName(const QString& path) {
    return QLatin1String(kUserDataToken) + QLatin1Char('\\') + QFileInfo(path).fileName();
}

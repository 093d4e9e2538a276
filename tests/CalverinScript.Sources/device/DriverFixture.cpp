#include "DriverFixture.h"

#include <tinyxml.h>

#include "DriverTables.h"
#include "GuardedXml.h"
#include "HostText.h"
#include "HostXml.h"
#include "ModuleResources.h"
#include "ScriptAnalysis.h"
#include "SetupDesk.h"

namespace {

/// Parameters that a test has made: the result first.
class GivenParams : public plain::Params {
public:
    GivenParams(IObjectParam* result, std::vector<IObjectParam*> inputs)
        : m_params(std::move(inputs)) {
        m_params.insert(m_params.begin(), result);
    }
    IObjectParam* GetParam(std::uint32_t index) override { return index < m_params.size() ? m_params[index] : nullptr; }
    std::uint32_t GetParamCount() override { return static_cast<std::uint32_t>(m_params.size()); }

private:
    std::vector<IObjectParam*> m_params;
};

} // namespace

IData* DefinedVariables::GetVariable(const char* name) {
    const auto found = m_own.find(name);
    IData* const data = found != m_own.end() ? found->second.get() : plain::Variables::GetVariable(name);
    if (onGet)
        onGet();
    return data;
}

std::uint32_t DefinedVariables::SetDefinition(const char* xml) {
    if (onDefinition)
        onDefinition();
    TiXmlDocument document;
    if (refuses || !ParseXml(document, xml))
        return 0;
    definition = xml;
    std::map<std::string, std::unique_ptr<TypedValue>> before;
    before.swap(m_own);
    const TiXmlElement* element =
        TiXmlHandle(&document).FirstChild("Device").FirstChild("Variables").FirstChild().ToElement();
    for (; element != nullptr; element = element->NextSiblingElement()) {
        const std::string name = ToHostText(XmlText(*element, "Name")).toStdString();
        const DataKind* kind = FindDataKind(QString::fromStdString(element->ValueStr()));
        if (kind == nullptr || plain::Variables::GetVariable(name.c_str()) != nullptr)
            continue;
        auto& place = m_own[name];
        if (before.count(name) > 0 && before[name]->GetDataType() == kind->code)
            place = std::move(before[name]);
        else
            place = std::make_unique<TypedValue>("Desk." + name, kind->code,
                                                 ToHostText(XmlText(*element, kind->valueAttribute)).toStdString());
        const std::int32_t known = XmlNumber(*element, "InstanceID", 0);
        place->instanceId = known != 0 ? static_cast<std::uint32_t>(known) : ++m_lastId;
    }
    return 1;
}

DriverModule::DriverModule()
    : m_definition(FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString()) {
    definition = m_definition.c_str();
}

DriverFixture::DriverFixture() {
    host.offerRemoteManager2 = true;
    host.remote2 = &remote;
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = ToHostText(folder.path()).toStdString();
    module.host = host.Root();
}

void DriverFixture::TearDown() {
    for (const auto& driver : drivers) {
        if (driver->device == nullptr)
            continue;
        driver->device->Stop();
        driver->device->Release();
    }
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    EXPECT_EQ(plain::Value::OutstandingTexts(), 0);
}

DriverDevice& DriverFixture::MakeDevice(const char* name) {
    drivers.push_back(std::make_unique<DriverDevice>());
    DriverDevice& driver = *drivers.back();
    driver.device = new MCalverinScript_Device(&module, nullptr, name);
    module.devices.Add(driver.device);
    driver.device->SetDeviceVariables(&driver.variables);
    EXPECT_TRUE(driver.device->IsUsable());
    return driver;
}

KXPCode DriverFixture::Accept(DriverDevice& driver, const std::string& script) {
    MCalverinScript_Device& device = *driver.device;
    device.GetSetupDesk().Begin();
    QScriptEngine engine;
    device.EvaluateScript(QString::fromStdString(script), &engine);
    DeviceSetup setup = device.GetSetupDesk().Describe();
    setup.script->text = QString::fromStdString(script);
    setup.monitors = device.GetAnalysis().GetSet().variables.Snapshot();
    setup.settings = device.GetAnalysis().GetSet().settings.Snapshot();
    return device.GetSetupDesk().Accept(setup, QString());
}

std::string DriverFixture::Setup(DriverDevice& driver) {
    char* text = nullptr;
    EXPECT_EQ(driver.device->GetSetup(&text), KXP_OK);
    const std::string copy = text;
    EXPECT_EQ(driver.device->ReleaseString(&text), KXP_OK);
    return copy;
}

std::string DriverFixture::Send(DriverDevice& driver, std::int32_t id, std::vector<IObjectParam*> inputs) {
    plain::Value result("Result");
    GivenParams params(&result, std::move(inputs));
    plain::Context context;
    const KXPCode code = driver.device->ExecuteCommand(id, &params, &context);
    if (code != KXP_OK)
        return "(code " + std::to_string(code) + ")";
    return context.WaitForEnd() ? result.Text() : "(no end)";
}

std::string DriverFixture::Commands(const DriverDevice& driver) {
    std::string text;
    for (const MScriptCommand& command : driver.device->GetCommands())
        text += (text.empty() ? "" : " ") + command.name.toStdString() + ":" + std::to_string(command.id);
    return text;
}

std::int32_t DriverFixture::IdOf(const DriverDevice& driver, const std::string& name) {
    for (const MScriptCommand& command : driver.device->GetCommands())
        if (command.name.toStdString() == name)
            return command.id;
    return -1;
}

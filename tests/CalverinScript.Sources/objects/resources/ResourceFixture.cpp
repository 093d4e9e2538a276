#include "ResourceFixture.h"

#include <QScriptEngine>

#include "DriverTables.h"
#include "HostText.h"
#include "SetupFormat.h"

ResourceFixture::ResourceFixture() {
    provider.resources[{1, 3, 3}] = serial.Root();
    provider.resources[{2, 1, 1}] = in.Root();
    provider.resources[{2, 2, 2}] = out.Root();
    provider.resources[{5, 4, 3}] = io.Root();
    for (const auto type : {KXP_DIGITAL_OUTPUT, KXP_DIGITAL_INPUT, KXP_ANALOG_OUTPUT, KXP_ANALOG_INPUT})
        for (const int index : {0, 1})
            io.Channel(type, index);
    host.resourceProvider = &provider;
}

ScriptSettings ResourceFixture::SettingsOf(const std::vector<std::pair<const char*, std::string>>& settings) {
    ScriptSettings all;
    for (const auto& [widget, signature] : settings) {
        MScriptSetting setting;
        setting.name = QStringLiteral("s%1").arg(all.size());
        setting.type = QStringLiteral("StringData");
        setting.widget = WidgetKindOf(QLatin1String(widget));
        setting.value = QString::fromStdString(signature);
        all.push_back(setting);
    }
    return all;
}

std::vector<std::pair<const char*, std::string>> ResourceFixture::AllSettings() {
    std::vector<std::pair<const char*, std::string>> all = {
        {"Serial", R"({ "Type":"Serial", "ResourceID":3 })"},
        {"DMXIn", R"({ "Type":"DMXIn", "ResourceID":1 })"},
        {"DMXOut", R"({ "Type":"DMXOut", "ResourceID":2 })"},
    };
    for (const char* type : {"DigitalIn", "DigitalOut", "AnalogIn", "AnalogOut"})
        for (const char* channel : {"0", "1"})
            all.emplace_back(type, std::string(R"({ "Type":")") + type + R"(", "ResourceID":4, "ChannelIndex":)" +
                                       channel + " }");
    return all;
}

std::string ResourceFixture::SetupText(const ScriptSettings& settings, const std::string& script) {
    DeviceSetup setup;
    setup.name = QStringLiteral("Desk");
    setup.settings = settings;
    setup.script = SetupScript();
    setup.script->text = QString::fromStdString(script);
    return PrintSetup(setup);
}

void ResourceFixture::GivenSettings(std::initializer_list<std::pair<const char*, std::string>> settings) {
    ASSERT_EQ(device->SetSetup(SetupText(SettingsOf(settings)).c_str()), KXP_OK);
}

void ResourceFixture::GivenAllResources() {
    ASSERT_EQ(device->SetSetup(SetupText(SettingsOf(AllSettings())).c_str()), KXP_OK);
    OnScriptThread([this] {
        QScriptEngine* engine = device->GetEngine();
        const auto give = [engine](const char* name, const char* function) {
            engine->globalObject().setProperty(QLatin1String(name), engine->evaluate(QLatin1String(function)));
        };
        give("get", "(function (type, id, channel) {"
                    "  return QCalverin.GetResource({ Type: type, ResourceID: id, ChannelIndex: channel }); })");
        give("hearing", "(function (name) { return function (value) {"
                        "  hear(name + (arguments.length > 1 ? ':' + value : '')); }; })");
    });
}

std::string ResourceFixture::Run(const std::string& script) {
    std::string text;
    OnScriptThread([&] {
        QScriptEngine* engine = device->GetEngine();
        const QScriptValue value = engine->evaluate(QString::fromStdString(script));
        text = (engine->hasUncaughtException() ? "threw " : "") + value.toString().toStdString();
        engine->clearExceptions();
    });
    return text;
}

void ResourceFixture::CheckCalls(plain::CallBook& book, std::initializer_list<HostCallCase> cases) {
    for (const HostCallCase& row : cases) {
        book.Take();
        const std::string value = Run(row.script);
        EXPECT_EQ(book.Take(), row.calls) << row.sentence << "\n" << row.script << "\n" << value;
    }
}

void ResourceFixture::CheckValues(std::initializer_list<ValueCase> cases) {
    for (const ValueCase& row : cases)
        EXPECT_EQ(Run(row.script), row.value) << row.sentence << "\n" << row.script;
}

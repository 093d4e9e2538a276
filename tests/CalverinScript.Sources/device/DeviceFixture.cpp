#include "DeviceFixture.h"

#include <cstring>
#include <future>

#include <QFile>
#include <QScriptEngine>
#include <QThread>

#include "Deadline.h"
#include "HostText.h"
#include "ThreadPromise.h"

void TestModule::GetConfigFilePath(char* buffer) {
    std::strncpy(buffer, configPath.c_str(), 1023);
}

void DeviceFixture::MakeDevice() {
    NoteHostMainThread();
    module.host = host.Root();
    device = new MCalverinScript_Device(&module, nullptr, "Desk");
    device->SetDeviceVariables(&variables);
    ASSERT_TRUE(device->IsUsable());
}

void DeviceFixture::EndDevice() {
    device->Stop();
    device->Release();
    device = nullptr;
}

void DeviceFixture::TearDown() {
    if (device != nullptr)
        EndDevice();
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    EXPECT_EQ(plain::Value::OutstandingTexts(), 0);
}

void DeviceFixture::GivenScript(const std::string& text) {
    device->GetStoredSetup().SetScript(QString(), QString::fromStdString(text));
    device->Start();
}

namespace {

/// A command without a context is over when "Status" is ready again.
void WaitForReady(plain::Variables& variables, std::size_t statusChangesBefore) {
    ASSERT_TRUE(variables.status.Plain().WaitForHistory(statusChangesBefore + 2));
    ASSERT_TRUE(variables.status.Plain().WaitFor("0"));
}

} // namespace

void DeviceFixture::WhenTextIsLoaded(const std::string& text) {
    const std::size_t before = variables.status.Plain().History().size();
    plain::Params params({text});
    ASSERT_EQ(Send(1, params), KXP_OK);
    WaitForReady(variables, before);
}

void DeviceFixture::WhenFileIsLoaded(const std::string& path) {
    const std::size_t before = variables.status.Plain().History().size();
    plain::Params params({path});
    ASSERT_EQ(Send(0, params), KXP_OK);
    WaitForReady(variables, before);
}

std::string DeviceFixture::Call(const std::string& function, const std::vector<std::string>& arguments) {
    auto params = plain::Params::ForFunction(function, arguments);
    plain::Context context;
    const KXPCode code = Send(3, *params, &context);
    if (code != KXP_OK)
        return "(code " + std::to_string(code) + ")";
    return context.WaitForEnd() ? params->At(1).Text() : "(no end)";
}

bool DeviceFixture::NothingIsPending() const {
    return Eventually([this] { return device->GetStackCount() == 0; });
}

void DeviceFixture::TellWhenInside(plain::Value& inside) {
    OnScriptThread([&] {
        QScriptEngine* engine = device->GetEngine();
        engine->setProperty("inside", QVariant::fromValue(static_cast<void*>(&inside)));
        const auto tell = [](QScriptContext*, QScriptEngine* e) {
            static_cast<plain::Value*>(e->property("inside").value<void*>())->SetValueFromString("yes", 0, 0);
            return QScriptValue();
        };
        engine->globalObject().setProperty(QStringLiteral("inside"), engine->newFunction(tell));
    });
}

void DeviceFixture::OnScriptThread(const std::function<void()>& work) {
    if (device->thread() == QThread::currentThread()) {
        work();
        return;
    }
    std::promise<void> done;
    ASSERT_TRUE(device->PostTask([&] {
        work();
        done.set_value();
    }));
    ASSERT_EQ(done.get_future().wait_for(std::chrono::milliseconds(kDeadlineMs)), std::future_status::ready);
}

std::string DeviceFixture::WriteFile(const std::string& name, const std::string& content) {
    QFile file(folder.filePath(QString::fromStdString(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content.data(), static_cast<qint64>(content.size()));
    return ToHostText(file.fileName()).toStdString();
}

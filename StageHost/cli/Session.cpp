#include "Session.h"

#include <QDir>
#include <QFileInfo>

#include "BorderText.h"
#include "ExitCodes.h"
#include "ExitGuard.h"
#include "MainWait.h"
#include "Output.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kModuleCall(5000); // for calls of the contract that run no script of a show
constexpr std::chrono::milliseconds kStop(3000);       // the module waits 25 ms for a script's own stop function
constexpr std::chrono::milliseconds kEnd(8000);        // for stop and release of one device together

QString DeviceText(const Device& device, const QString& text) {
    return QStringLiteral("%1: %2").arg(FromBorderText(device.Name()), text);
}

} // namespace

Session::Session(const Options& options)
    : options_(options) {}

Session::~Session() {
    Close(kExitOk);
}

MaybeFailure Session::Open(const Show& show) {
    show_ = show;
    HostSettings settings = show.host;
    settings.link = options_.link;
    if (auto failure = PrepareLog(settings))
        return failure;
    host_ = std::make_unique<Host>(settings, show.objects);
    for (const auto& variable : show.variables)
        host_->Variables().Add(MakeValue(variable));
    if (auto failure = LoadModule())
        return failure;
    for (const auto& device : show.devices) {
        if (auto failure = MakeDevice(device))
            return failure;
    }
    return std::nullopt;
}

MaybeFailure Session::PrepareLog(HostSettings& settings) {
    QString path = options_.logFile;
    if (path.isEmpty() && options_.log) {
        logFolder_ = std::make_unique<QTemporaryDir>();
        path = logFolder_->filePath(QStringLiteral("stagehost.log"));
    }
    if (path.isEmpty())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return Failure{kExitBadUse, QStringLiteral("cannot write the log %1: %2").arg(path, file.errorString())};
    if (options_.log)
        follower_ = std::make_unique<LogFollower>(path);
    return PathForBorder(path, settings.log.path);
}

MaybeFailure Session::LoadModule() {
    const QString path = options_.module.isEmpty() ? DefaultModulePath() : options_.module;
    module_ = std::make_unique<ModuleFile>(*host_);
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from being loaded");
    const QString problem = module_->Load(path);
    if (problem.isEmpty())
        return std::nullopt;
    return Failure{kExitNoModule, problem};
}

MaybeFailure Session::MakeDevice(const ShowDevice& described) {
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from making a device");
    devices_.push_back(std::make_unique<Device>(*module_, ToBorderText(described.name), described.conduct));
    const auto problem = devices_.back()->Create(ToBorderText(described.setup));
    if (!problem)
        return std::nullopt;
    return Failure{problem->badSetup ? kExitBadUse : kExitNoModule, DeviceText(*devices_.back(), problem->text)};
}

MaybeFailure Session::Start() {
    for (const auto& device : devices_) {
        if (auto failure = StartDevice(*device))
            return failure;
    }
    for (const auto& device : devices_) {
        if (auto failure = LoadScript(*device, *show_.FindDevice(FromBorderText(device->Name()))))
            return failure;
    }
    return std::nullopt;
}

MaybeFailure Session::StartDevice(Device& device) {
    if (device.Start(options_.timeout))
        return std::nullopt;
    return Failure{kExitNoAnswer,
                   DeviceText(device, QStringLiteral("has not started within %1 ms").arg(options_.timeout.count()))};
}

MaybeFailure Session::LoadScript(Device& device, const ShowDevice& described) {
    if (!described.scriptFile.isEmpty())
        return LoadFile(device, show_.Path(described.scriptFile));
    if (described.scriptText.isEmpty())
        return std::nullopt;
    CommandOutcome outcome;
    return Send(device, QStringLiteral("Load From Text"), {{"Script Text", ToBorderText(described.scriptText), {}}},
                &outcome);
}

MaybeFailure Session::LoadFile(Device& device, const QString& path) {
    ParameterInput file{"Script File Name", {}, {}};
    if (auto failure = PathForBorder(path, file.text))
        return failure;
    CommandOutcome outcome;
    return Send(device, QStringLiteral("Load From File"), {file}, &outcome);
}

MaybeFailure Session::Send(Device& device, const QString& command, const std::vector<ParameterInput>& inputs,
                           CommandOutcome* outcome) {
    const auto definition = device.Variables().Definition();
    const CommandDefinition* found = definition->FindCommand(ToBorderText(command));
    if (found == nullptr)
        return Failure{kExitBadUse, DeviceText(device, QStringLiteral("has no command \"%1\"").arg(command))};
    const QString problem = CheckInputs(*found, inputs);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, DeviceText(device, problem)};
    if (device.MayHold())
        PrintProblem(DeviceText(device, QStringLiteral("waiting until the device gives up the command that failed")));
    *outcome = device.Send(*found, inputs, options_.timeout);
    const int exitCode = ExitCodeOf(*outcome);
    if (exitCode == kExitOk)
        return std::nullopt;
    return Failure{exitCode, FailureText(*outcome, command, options_.timeout)};
}

MaybeFailure Session::WaitFor(const ShowWait& wait) {
    const auto variable = host_->Variables().Find(ToBorderText(wait.variable));
    if (!variable)
        return Failure{kExitBadUse, QStringLiteral("there is no variable \"%1\"").arg(wait.variable)};
    const std::string value = ToBorderText(wait.value);
    const auto limit = wait.within ? std::chrono::milliseconds(*wait.within) : options_.timeout;
    const Observation observation = variable->Observe([] { MainWait::Wake(); });
    if (MainWait::Until([&] { return variable->Text() == value; }, limit))
        return std::nullopt;
    return Failure{kExitNoAnswer, QStringLiteral("\"%1\" is \"%2\", not \"%3\", after %4 ms")
                                      .arg(wait.variable, FromBorderText(variable->Text()), wait.value)
                                      .arg(limit.count())};
}

Device* Session::FindDevice(const QString& name) {
    const std::string border = ToBorderText(name);
    for (const auto& device : devices_) {
        if (device->Name() == border)
            return device.get();
    }
    return nullptr;
}

int Session::Close(int exitCode) {
    if (!host_)
        return exitCode;
    const int lateCode = exitCode == kExitOk ? kExitNoAnswer : exitCode;
    host_->Model().EndTasks();
    for (const auto& device : devices_) {
        const ExitGuard guard(kEnd, lateCode, "a device does not come back from its release");
        if (!device->Shutdown(kStop))
            LeaveAtOnce(lateCode, "a call into the module does not come back");
    }
    devices_.clear();
    {
        const ExitGuard guard(kModuleCall, lateCode, "the module does not come back from its end");
        if (!host_->Pool().Close(kStop))
            LeaveAtOnce(lateCode, "a call into the module does not come back");
        module_.reset();
    }
    host_.reset();
    follower_.reset();
    return exitCode;
}

MaybeFailure PathForBorder(const QString& path, std::string& border) {
    bool lost = false;
    border = ToBorderText(QFileInfo(path).absoluteFilePath(), &lost);
    if (!lost)
        return std::nullopt;
    lost = false;
    border = ToBorderText(QDir::current().relativeFilePath(path), &lost);
    if (!lost)
        return std::nullopt;
    return Failure{kExitBadUse,
                   QStringLiteral("%1: the name has characters beyond Latin-1, which a host cannot carry").arg(path)};
}

} // namespace stagehost

#include "Session.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

#include "BorderText.h"
#include "DriverSetup.h"
#include "ExitCodes.h"
#include "ExitGuard.h"
#include "MainWait.h"
#include "Output.h"
#include "TextFile.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kModuleCall(5000); // for calls of the contract that run no script of a show
constexpr std::chrono::milliseconds kStop(3000);       // the module waits 25 ms for a script's own stop function
constexpr std::chrono::milliseconds kEnd(8000);        // for stop and release of one device together

QString DeviceText(const Device& device, const QString& text) {
    return QStringLiteral("%1: %2").arg(FromBorderText(device.Name()), text);
}

/// What is said to somebody who names a function of the script where a command is wanted.
QString NoCommandText(Device& device, const DeviceDefinition& definition, const QString& name) {
    QString text = QStringLiteral("has no command \"%1\"").arg(name);
    for (const auto& command : definition.commands) {
        if (command.FunctionName() == ToBorderText(name))
            return text + QStringLiteral("; the function of that name is its command \"%1\"")
                              .arg(FromBorderText(command.name));
    }
    const auto functions = device.Variables().Find("ScriptFunctions");
    const QStringList names = FromBorderText(functions ? functions->Text() : std::string()).split(QLatin1Char('\n'));
    if (!names.contains(name))
        return text;
    return text + QStringLiteral("; it is a function of the script: \"Execute Function With Params\" with \"Script "
                                 "Function Name=%1\" runs it")
                      .arg(name);
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
    for (std::size_t index = 0; index < show_.devices.size(); ++index) {
        if (auto failure = MakeDevice(index))
            return failure;
    }
    CheckStored();
    return std::nullopt;
}

MaybeFailure Session::PrepareLog(HostSettings& settings) {
    QString path = options_.logFile;
    const bool hasDrivers = std::any_of(show_.devices.begin(), show_.devices.end(), [](const auto& device) {
        return !device.driverFile.isEmpty() || !device.setup.isEmpty();
    });
    if (path.isEmpty() && (options_.log || hasDrivers)) {
        logFolder_ = std::make_unique<QTemporaryDir>();
        path = logFolder_->filePath(QStringLiteral("stagehost.log"));
    }
    if (path.isEmpty())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return Failure{kExitBadUse, QStringLiteral("cannot write the log %1: %2").arg(path, file.errorString())};
    follower_ = std::make_unique<LogFollower>(path, logFolder_ ? LogFollower::Keep::Little : LogFollower::Keep::All,
                                              [this](const QString& line) {
                                                  if (options_.log)
                                                      PrintProblem(line);
                                                  silent_.Take(line);
                                              });
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

/// A setup that the device does not take is told, and the device begins with a new one.
MaybeFailure Session::MakeDevice(std::size_t index) {
    const ShowDevice& described = show_.devices.at(index);
    std::string setup = ToBorderText(described.setup);
    if (setup.empty()) {
        if (auto failure = FirstSetup(described, setup))
            return failure;
    } else if (!quiet_) {
        TellOtherEdition(described);
    }
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from making a device");
    devices_.push_back(std::make_unique<Device>(*module_, ToBorderText(described.name), described.conduct));
    auto problem = devices_.back()->Create(setup);
    if (problem && problem->badSetup && !described.setup.isEmpty()) {
        PrintProblem(QStringLiteral("%1: devices[%2].setup: %3 and begins with a new one")
                         .arg(show_.file)
                         .arg(index)
                         .arg(problem->text));
        refusedSetups_ += described.name;
        if (auto failure = FirstSetup(described, setup))
            return failure;
        problem = devices_.back()->TakeSetup(setup);
    }
    if (!problem && devices_.back()->IsSilent())
        silent_.Add(described.name);
    if (!problem)
        return std::nullopt;
    return Failure{problem->badSetup ? kExitBadUse : kExitNoModule, DeviceText(*devices_.back(), problem->text)};
}

/// The setup of a device that has none yet: made of its driver, or empty.
MaybeFailure Session::FirstSetup(const ShowDevice& described, std::string& setup) const {
    setup.clear();
    if (described.driverFile.isEmpty())
        return std::nullopt;
    DriverEdition edition;
    if (auto failure = ReadDriver(show_, show_.Path(described.driverFile), options_.timeout, edition))
        return failure;
    setup = ToBorderText(MakeSetupText({}, edition).value_or(QString()));
    return std::nullopt;
}

void Session::TellOtherEdition(const ShowDevice& described) const {
    QString problem;
    const auto text =
        described.driverFile.isEmpty() ? std::nullopt : ReadText(show_.Path(described.driverFile), &problem);
    if (text && FromBorderText(ToBorderText(*text)) != ScriptOfSetup(described.setup))
        PrintProblem(
            QStringLiteral("%1: the setup in the show holds another edition of %2; \"stagehost setup %3\" takes "
                           "over the file")
                .arg(described.name, described.driverFile, show_.file));
}

void Session::CheckStored() {
    stored_ = CheckStoredCommands(show_, [this](const QString& name) { return FindDevice(name); });
    for (const auto& command : stored_) {
        const QString text = StandingText(command, show_.file);
        if (!text.isEmpty() && !quiet_)
            PrintProblem(text);
        if (const StoredCommand* inForce = command.InForce())
            host_->Model().SetStoredCommand(ToBorderText(command.name), inForce->Action());
    }
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

QString Session::HearFailure(const Device& device, const std::function<void()>& work) {
    silent_.Begin(FromBorderText(device.Name()));
    work();
    if (follower_)
        follower_->Look();
    return silent_.End();
}

/// A driver runs from the start on, so what it throws there is told at once.
MaybeFailure Session::StartDevice(Device& device) {
    bool started = false;
    const QString failure = HearFailure(device, [&] { started = device.Start(options_.timeout); });
    if (!started)
        return Failure{
            kExitNoAnswer,
            DeviceText(device, Interrupt::HasCome()
                                   ? QStringLiteral("interrupted while it starts")
                                   : QStringLiteral("has not started within %1 ms").arg(options_.timeout.count()))};
    const ShowDevice& described = *show_.FindDevice(FromBorderText(device.Name()));
    const QString error = failure.isEmpty() ? FromBorderText(device.ErrorText()) : failure;
    if (error.isEmpty() || (described.driverFile.isEmpty() && described.setup.isEmpty()))
        return std::nullopt;
    return Failure{kExitScriptFailed, DeviceText(device, error)};
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
        return Failure{kExitBadUse, DeviceText(device, NoCommandText(device, *definition, command))};
    const QString problem = CheckInputs(*found, inputs);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, DeviceText(device, problem)};
    if (device.MayHold())
        PrintProblem(DeviceText(device, QStringLiteral("waiting until the device gives up the command that failed")));
    const QString thrown = HearFailure(device, [&] { *outcome = device.Send(*found, inputs, options_.timeout); });
    if (!thrown.isEmpty() && outcome->kind == CommandOutcome::Kind::Done) {
        outcome->kind = CommandOutcome::Kind::ScriptFailed;
        outcome->error = ToBorderText(thrown);
    }
    const int exitCode = ExitCodeOf(*outcome);
    if (exitCode == kExitOk)
        return std::nullopt;
    return Failure{exitCode, FailureText(*outcome, command, options_.timeout)};
}

MaybeFailure Session::SendStored(const QString& name, CommandOutcome* outcome) {
    const auto found =
        std::find_if(stored_.begin(), stored_.end(), [&](const auto& command) { return command.name == name; });
    if (found == stored_.end())
        return Failure{kExitBadUse, QStringLiteral("the show has no stored command \"%1\"").arg(name)};
    if (found->InForce() == nullptr)
        return Failure{kExitScriptFailed, StandingText(*found, show_.file)};
    const ActionSpec action = found->InForce()->Action();
    std::vector<ParameterInput> inputs;
    for (const auto& parameter : action.parameters) {
        inputs.push_back({parameter.name, parameter.text, {}});
        inputs.back().variable = parameter.isVariable ? host_->Variables().Find(parameter.text) : nullptr;
        if (parameter.isVariable && !inputs.back().variable)
            return Failure{kExitBadUse,
                           QStringLiteral("there is no variable \"%1\"").arg(FromBorderText(parameter.text))};
    }
    return Send(*FindDevice(FromBorderText(action.device)), FromBorderText(action.command), inputs, outcome);
}

MaybeFailure Session::WaitFor(const ShowWait& wait) {
    const auto variable = host_->Variables().Find(ToBorderText(wait.variable));
    if (!variable)
        return Failure{kExitBadUse, QStringLiteral("there is no variable \"%1\"").arg(wait.variable)};
    const std::string value = ToBorderText(wait.value);
    const auto limit = wait.within ? std::chrono::milliseconds(*wait.within) : options_.timeout;
    const Observation observation = variable->Observe([] { MainWait::Wake(); });
    if (MainWait::UntilInterrupted([&] { return variable->Text() == value; }, limit))
        return std::nullopt;
    if (Interrupt::HasCome())
        return Failure{kExitNoAnswer, QStringLiteral("interrupted while \"%1\" is \"%2\", not \"%3\"")
                                          .arg(wait.variable, FromBorderText(variable->Text()), wait.value)};
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

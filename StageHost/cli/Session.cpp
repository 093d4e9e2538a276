#include "Session.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

#include "BorderText.h"
#include "DriverSetup.h"
#include "ExitCodes.h"
#include "ExitGuard.h"
#include "JsonNode.h"
#include "MainWait.h"
#include "NearNames.h"
#include "Output.h"
#include "ScriptPlaces.h"
#include "ShowClock.h"
#include "TextFile.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kModuleCall(5000); // for calls of the contract that run no script of a show
constexpr std::chrono::milliseconds kStop(3000);       // the module waits 25 ms for a script's own stop function
constexpr std::chrono::milliseconds kStopped(3000);    // for a script that is stopped to say where it was
constexpr std::chrono::milliseconds kLookForStop(20);
constexpr std::chrono::milliseconds kRestOfPlace(200); // between the lines of that, which the log gets one by one
constexpr std::chrono::milliseconds kLookAtLog(100);
constexpr std::chrono::milliseconds kEnd(8000); // for stop and release of one device together

QString DeviceText(const Device& device, const QString& text) {
    return QStringLiteral("%1: %2").arg(FromBorderText(device.Name()), text);
}

QStringList CommandNames(const DeviceDefinition& definition) {
    QStringList names;
    for (const auto& command : definition.commands)
        names += FromBorderText(command.name);
    return names;
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
        return text + NamesInstead(name, CommandNames(definition));
    return text + QStringLiteral("; it is a function of the script: \"Execute Function With Params\" with \"Script "
                                 "Function Name=%1\" runs it")
                      .arg(name);
}

QStringList StoredNames(const std::vector<CheckedCommand>& stored) {
    QStringList names;
    for (const auto& command : stored)
        names += command.name;
    return names;
}

/// Why the device, as it is defined, does not take such a command; empty when it does.
QString Complaint(Device& device, const DeviceDefinition& definition, const QString& command,
                  const std::vector<ParameterInput>& inputs) {
    const CommandDefinition* found = definition.FindCommand(ToBorderText(command));
    const QString problem = found == nullptr ? NoCommandText(device, definition, command) : CheckInputs(*found, inputs);
    return problem.isEmpty() ? QString() : DeviceText(device, problem);
}

/// A script that answers late cannot throw any more: it says by its result that the command has failed.
void JudgeResult(CommandOutcome& outcome) {
    const std::string_view mark = kFailureMark;
    if (outcome.kind != CommandOutcome::Kind::Done || outcome.result.compare(0, mark.size(), mark) != 0)
        return;
    outcome.kind = CommandOutcome::Kind::ScriptFailed;
    outcome.error = outcome.result.substr(mark.size());
}

} // namespace

Session::Session(const Options& options)
    : m_options(options)
    , m_thrown([this](const QString& device, const QStringList& place) { return UsersPlace(device, place); })
    , m_screen(options)
    , m_peers(&PrintProblem) {}

Session::~Session() {
    Close(kExitOk);
}

MaybeFailure Session::Open(const Show& show) {
    m_show = show;
    HostSettings settings = show.host;
    settings.link = m_options.link;
    settings.mainWindow = m_mainWindow;
    settings.dialogs = m_dialogs;
    if (auto failure = PrepareLog(settings))
        return failure;
    for (const auto& device : show.devices)
        m_logNames += device.name;
    for (const QString& name : m_options.logDevices) {
        if (!m_logNames.contains(name))
            return NoDevice(name);
    }
    m_screen.SetDevices(m_logNames);
    m_host = std::make_unique<Host>(settings, show.objects, show.resources,
                                    [](const std::string& text) { PrintProblem(FromBorderText(text)); });
    for (const auto& variable : show.variables)
        m_host->Variables().Add(MakeValue(variable));
    const QString problem = m_settings.Take(show, m_options.sets);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, problem};
    if (auto failure = LoadModule())
        return failure;
    for (std::size_t index = 0; index < m_show.devices.size(); ++index) {
        if (auto failure = MakeDevice(index))
            return failure;
    }
    CheckStored();
    return std::nullopt;
}

/// There is always a log: it is how a script tells what its timers and events throw.
MaybeFailure Session::PrepareLog(HostSettings& settings) {
    QString path = m_options.logFile;
    if (path.isEmpty()) {
        m_logFolder = std::make_unique<PassingFolder>();
        if (!m_logFolder->Problem().isEmpty())
            return Failure{kExitBadUse, QStringLiteral("cannot make a folder for the log: ") + m_logFolder->Problem()};
        path = m_logFolder->FilePath(QStringLiteral("stagehost.log"));
    }
    const QString problem = WhyNotAppendable(path);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, QStringLiteral("cannot write the log %1: %2").arg(path, problem)};
    m_follower = std::make_unique<LogFollower>(
        path, m_logFolder ? LogFollower::Keep::Little : LogFollower::Keep::All,
        [this](const QString& line) { TakeLine(line); },
        [this](const QByteArray& line) { return m_screen.LeavesOut(line, LogScreen::Clock::now()); });
    QObject::connect(&m_teller, &QTimer::timeout, &m_teller, [this] {
        LookAtLog();
        KeepPace(m_teller, kLookAtLog);
    });
    m_teller.start(kLookAtLog);
    return PathForBorder(path, settings.log.path);
}

void Session::TakeLine(const QString& line) {
    const LogLine read = ReadLogLine(line, m_logNames);
    m_screen.Show(read, LogScreen::Clock::now());
    m_thrown.Take(read, ThrownTexts::Clock::now());
}

QStringList Session::UsersPlace(const QString& device, const QStringList& place) const {
    return UsersPlaces(m_show, m_show.FindDevice(device), place);
}

MaybeFailure Session::LoadModule() {
    const QString path = m_options.module.isEmpty() ? DefaultModulePath() : m_options.module;
    m_module = std::make_unique<HostedModule>(*m_host);
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from being loaded");
    const QString problem = m_module->Load(path);
    if (problem.isEmpty())
        return std::nullopt;
    return Failure{kExitNoModule, problem};
}

/// A setup that the device does not take is told, and the device begins with a new one.
MaybeFailure Session::MakeDevice(std::size_t index) {
    const ShowDevice& described = m_show.devices.at(index);
    std::string setup;
    if (auto failure = SetupToGive(described, described.setup, setup))
        return failure;
    if (!described.setup.isEmpty() && !m_quiet)
        TellOtherEdition(described);
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from making a device");
    m_devices.push_back(std::make_unique<Device>(*m_module, ToBorderText(described.name), described.conduct));
    auto problem = m_devices.back()->Create(setup);
    if (problem && problem->badSetup && !described.setup.isEmpty()) {
        PrintProblem(QStringLiteral("%1: devices[%2].setup: %3 and begins with a new one")
                         .arg(m_show.file)
                         .arg(index)
                         .arg(problem->text));
        m_refusedSetups += described.name;
        if (auto failure = SetupToGive(described, {}, setup))
            return failure;
        problem = m_devices.back()->TakeSetup(setup);
    }
    if (!problem)
        return std::nullopt;
    return Failure{problem->badSetup ? kExitBadUse : kExitNoModule, DeviceText(*m_devices.back(), problem->text)};
}

/// The setup that a device begins with: the stored one or its first, with what stands over it.
MaybeFailure Session::SetupToGive(const ShowDevice& described, const QString& stored, std::string& setup) {
    QString text = stored;
    if (text.isEmpty()) {
        if (auto failure = FirstSetup(described, text))
            return failure;
    }
    const QString problem = m_settings.PutInto(described.name, text);
    setup = ToBorderText(text);
    return problem.isEmpty() ? std::nullopt : MaybeFailure(Failure{kExitBadUse, problem});
}

/// The setup of a device that has none yet: made of its driver, or empty. A script that is loaded later finds the
/// settings that it is given there.
MaybeFailure Session::FirstSetup(const ShowDevice& described, QString& setup) const {
    setup.clear();
    if (described.driverFile.isEmpty() && !m_settings.HasAny(described.name))
        return std::nullopt;
    DriverEdition edition;
    if (auto failure = ReadScriptOf(described, m_show, m_options.timeout, edition))
        return failure;
    if (described.driverFile.isEmpty())
        edition = SettingsAlone(edition);
    setup = MakeSetupText({}, edition).value_or(QString());
    return std::nullopt;
}

MaybeFailure Session::SetupToKeep(const Device& device, QString& setup) const {
    if (auto failure = SetupOfDevice(device, setup))
        return failure;
    setup = m_settings.TakeOutOf(FromBorderText(device.Name()), setup);
    return std::nullopt;
}

void Session::TellOtherEdition(const ShowDevice& described) const {
    WholeScript script;
    if (described.driverFile.isEmpty() || ReadWhole(m_show.Path(described.driverFile), m_options.timeout, script))
        return;
    if (FromBorderText(ToBorderText(script.text)) != ScriptOfSetup(described.setup))
        PrintProblem(
            QStringLiteral("%1: the setup in the show holds another edition of %2; \"stagehost setup %3\" takes "
                           "over the file")
                .arg(described.name, described.driverFile, m_show.file));
}

void Session::CheckStored() {
    m_stored = CheckStoredCommands(m_show, [this](const QString& name) { return FindDevice(name); });
    for (const auto& command : m_stored) {
        const QString text = StandingText(command, m_show.file);
        if (!text.isEmpty() && !m_quiet)
            PrintProblem(text);
        if (const StoredCommandXml* inForce = command.InForce())
            m_host->Model().SetStoredCommand(ToBorderText(command.name), inForce->Action());
    }
}

MaybeFailure Session::OpenWithPeers(const Show& show) {
    Show reached = show;
    const QString problem = m_peers.Start(reached);
    if (!problem.isEmpty())
        return Failure{Interrupt::HasCome() ? kExitNoAnswer : kExitBadUse, problem};
    return Open(reached);
}

MaybeFailure Session::Start() {
    for (const auto& device : m_devices) {
        if (auto failure = StartDevice(*device))
            return failure;
    }
    for (const auto& device : m_devices) {
        if (auto failure = LoadScript(*device, *m_show.FindDevice(FromBorderText(device->Name()))))
            return failure;
    }
    return std::nullopt;
}

void Session::LookAtLog() {
    if (!m_host)
        return;
    m_follower->Look();
    const auto now = ThrownTexts::Clock::now();
    m_thrown.Answered(m_host->Commands().TakeFailures(), now);
    m_thrown.Tell(now);
    m_screen.Tell(now);
}

std::vector<ThrownText> Session::HearThrown(const Device& device, const std::function<void()>& work) {
    m_thrown.Begin(FromBorderText(device.Name()));
    ++m_calls;
    work();
    --m_calls;
    m_follower->Look();
    return m_thrown.End();
}

/// One of the texts is what the command itself has thrown: it is the failure that the device shows, or stands for it
/// where the driver has removed the variable for that. Timers and events have thrown the others.
/// @return where the command's own failure was thrown.
QStringList Session::JudgeThrown(const Device& device, std::vector<ThrownText> thrown, CommandOutcome& outcome) {
    using Kind = CommandOutcome::Kind;
    auto own = thrown.end();
    if (outcome.kind == Kind::ScriptFailed) {
        const QString failure = FromBorderText(outcome.error);
        own = std::find_if(thrown.begin(), thrown.end(),
                           [&](const ThrownText& text) { return ThrownTexts::IsOf(text.text, failure); });
    } else if (outcome.kind == Kind::Done && !outcome.answered && device.IsSilent() && !thrown.empty()) {
        own = thrown.begin();
        outcome.kind = Kind::ScriptFailed;
        outcome.error = ToBorderText(own->text);
    }
    QStringList place;
    if (own != thrown.end()) {
        place = UsersPlace(FromBorderText(device.Name()), own->place);
        thrown.erase(own);
    }
    const auto now = ThrownTexts::Clock::now();
    m_thrown.TellBeside(FromBorderText(device.Name()), thrown, now);
    if (device.MayHold()) // it will be run once more, and throw the same
        m_thrown.Answered({outcome.error}, now);
    return place;
}

MaybeFailure Session::TellThrown() {
    if (!m_host) // it has come to nothing before any script ran
        return std::nullopt;
    m_follower->Look();
    m_thrown.Answered(m_host->Commands().TakeFailures(), ThrownTexts::Clock::now());
    m_thrown.Tell(ThrownTexts::Clock::time_point::max());
    const ThrownText& first = m_thrown.FirstTold();
    if (first.text.isEmpty())
        return std::nullopt;
    return Failure{kExitScriptFailed, first.text, first.place};
}

QJsonObject Session::OutcomeJson(const CommandOutcome& outcome, const MaybeFailure& failure) {
    const MaybeFailure thrown = TellThrown();
    const MaybeFailure& first = failure ? failure : thrown;
    QJsonObject json = ToJson(outcome);
    json.insert(QStringLiteral("ok"), !first);
    json.insert(QStringLiteral("error"), first ? first->text : QString());
    json.insert(QStringLiteral("exitCode"), first ? first->exitCode : kExitOk);
    AddPlace(json, first ? first->place : QStringList());
    return json;
}

/// A driver runs from the start on, so what it throws there is told at once.
MaybeFailure Session::StartDevice(Device& device) {
    bool started = false;
    auto thrown = HearThrown(device, [&] { started = device.Start(m_options.timeout); });
    if (!started)
        return Failure{
            kExitNoAnswer,
            DeviceText(device, Interrupt::HasCome()
                                   ? QStringLiteral("interrupted while it starts")
                                   : QStringLiteral("has not started within %1 ms").arg(m_options.timeout.count()))};
    const ShowDevice& described = *m_show.FindDevice(FromBorderText(device.Name()));
    const QString first = thrown.empty() ? QString() : thrown.front().text;
    const QString error = device.IsSilent() ? first : FromBorderText(device.ErrorText());
    if (error.isEmpty() || (described.driverFile.isEmpty() && described.setup.isEmpty())) {
        m_thrown.TellBeside(described.name, thrown, ThrownTexts::Clock::now());
        return std::nullopt;
    }
    const auto own = std::find_if(thrown.begin(), thrown.end(),
                                  [&](const ThrownText& text) { return ThrownTexts::IsOf(text.text, error); });
    return Failure{kExitScriptFailed, DeviceText(device, error),
                   own == thrown.end() ? QStringList() : UsersPlace(described.name, own->place)};
}

MaybeFailure Session::Restart(const QString& name, const std::string& setup) {
    const ShowRest rest; // the module measures a stop by the clock
    Device* device = FindDevice(name);
    auto& values = m_unstarted[name];
    for (auto& [variable, text] : device->Variables().Kept())
        values[variable] = text;
    const bool hasStopped = !device->IsBlocked() && device->Stop(kStop);
    if (hasStopped) {
        if (const auto refused = device->TakeSetup(setup))
            return Failure{kExitNoModule, DeviceText(*device, refused->text)};
    } else if (Interrupt::HasCome()) {
        return Failure{kExitNoAnswer, DeviceText(*device, QStringLiteral("interrupted while it stops"))};
    } else if (auto failure = MakeAnew(name, setup)) {
        return failure;
    }
    const auto start = [&] {
        Device& made = *FindDevice(name);
        made.Variables().GiveBack(values);
        if (const auto error = made.Variables().FindState("Error"))
            error->SetText(""); // of the edition before
        auto failed = StartDevice(made);
        if (!failed)
            m_unstarted.erase(name);
        return failed;
    };
    auto failure = start();
    if (!hasStopped || !failure || !FindDevice(name)->IsBlocked() || Interrupt::HasCome())
        return failure;
    // The module waits for a stop function for a moment only: that it has never returned shows now.
    PrintProblem(DeviceText(*FindDevice(name), QStringLiteral("its script has not come back from its stop, or does not "
                                                              "from its start; a new device takes its place")));
    if (auto lost = MakeAnew(name, setup))
        return lost;
    return start();
}

/// A script that never ends is left behind with its device.
MaybeFailure Session::MakeAnew(const QString& name, const std::string& setup) {
    const auto place = std::find_if(m_devices.begin(), m_devices.end(),
                                    [&](const auto& device) { return device->Name() == ToBorderText(name); });
    if (!(*place)->Shutdown(kStop))
        return Failure{kExitNoAnswer, DeviceText(**place, QStringLiteral("does not come back from its stop"))};
    const ExitGuard guard(kModuleCall, kExitNoModule, "the module does not come back from making a device");
    *place = std::make_unique<Device>(*m_module, ToBorderText(name), m_show.FindDevice(name)->conduct);
    const auto problem = (*place)->Create(setup);
    return problem ? MaybeFailure(Failure{kExitNoModule, DeviceText(**place, problem->text)}) : std::nullopt;
}

MaybeFailure Session::LoadScript(Device& device, const ShowDevice& described) {
    if (!described.scriptFile.isEmpty())
        return LoadFile(device, m_show.Path(described.scriptFile));
    return described.scriptText.isEmpty() ? std::nullopt : LoadText(device, described.scriptText);
}

MaybeFailure Session::LoadText(Device& device, const QString& text) {
    CommandOutcome outcome;
    return Send(device, QStringLiteral("Load From Text"), {{"Script Text", ToBorderText(text), {}}}, &outcome);
}

MaybeFailure Session::LoadFile(Device& device, const QString& path) {
    WholeScript script;
    if (auto failure = ReadWhole(path, m_options.timeout, script))
        return failure;
    if (!script.isOneFile)
        return LoadText(device, script.text);
    ParameterInput file{"Script File Name", {}, {}};
    if (auto failure = PathForBorder(path, file.text))
        return failure;
    CommandOutcome outcome;
    return Send(device, QStringLiteral("Load From File"), {file}, &outcome);
}

MaybeFailure Session::Send(Device& device, const QString& command, const std::vector<ParameterInput>& inputs,
                           CommandOutcome* outcome) {
    const auto definition = device.Variables().Definition();
    const QString problem = Complaint(device, *definition, command, inputs);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, problem};
    const CommandDefinition* found = definition->FindCommand(ToBorderText(command));
    if (device.MayHold())
        PrintProblem(DeviceText(device, QStringLiteral("waiting until the device gives up the command that failed")));
    const auto thrown =
        HearThrown(device, [&] { *outcome = device.Send(*found, inputs, AnswerTime(m_options.timeout)); });
    const QStringList place = JudgeThrown(device, thrown, *outcome);
    JudgeResult(*outcome);
    const int exitCode = ExitCodeOf(*outcome);
    if (exitCode == kExitOk)
        return std::nullopt;
    return Failure{exitCode, FailureText(*outcome, command, m_options.timeout), place};
}

QString Session::WhyNotSent(Device& device, const QString& command, const std::vector<ParameterInput>& inputs) {
    const auto definition = device.Variables().Definition();
    return Complaint(device, *definition, command, inputs);
}

MaybeFailure Session::SendStored(const QString& name, CommandOutcome* outcome) {
    const auto found =
        std::find_if(m_stored.begin(), m_stored.end(), [&](const auto& command) { return command.name == name; });
    if (found == m_stored.end())
        return Failure{kExitBadUse, QStringLiteral("the show has no stored command \"%1\"").arg(name) +
                                        NamesInstead(name, StoredNames(m_stored))};
    if (found->InForce() == nullptr)
        return Failure{kExitScriptFailed, StandingText(*found, m_show.file)};
    const ActionSpec action = found->InForce()->Action();
    std::vector<ParameterInput> inputs;
    for (const auto& parameter : action.parameters) {
        inputs.push_back({parameter.name, parameter.text, {}});
        inputs.back().variable = parameter.isVariable ? m_host->Variables().Find(parameter.text) : nullptr;
        if (parameter.isVariable && !inputs.back().variable)
            return NoVariable(FromBorderText(parameter.text));
    }
    return Send(*FindDevice(FromBorderText(action.device)), FromBorderText(action.command), inputs, outcome);
}

void Session::EndDevices(int lateCode) {
    const bool again = std::exchange(m_haveDevicesEnded, true);
    const auto hang =
        std::count_if(m_devices.begin(), m_devices.end(), [](const auto& device) { return device->IsBlocked(); });
    ++m_calls; // for good: a device that is released is not reloaded any more
    ShowClock::Rest();
    m_host->Model().EndTasks();
    for (const auto& device : m_devices) {
        const ExitGuard guard(kEnd, lateCode, "a device does not come back from its release");
        if (!device->Shutdown(kStop))
            LeaveAtOnce(lateCode, "a call into the module does not come back");
    }
    if (!again)
        AwaitStopped(hang);
}

/// A script that is stopped writes that into the log as it leaves its thread, shortly after its device is gone.
/// @param scripts how many are waited for.
void Session::AwaitStopped(std::ptrdiff_t scripts) {
    const auto told = [&] {
        m_follower->Look();
        return m_thrown.Stopped(ThrownTexts::Clock::now() - kRestOfPlace) >= scripts;
    };
    const auto deadline = ThrownTexts::Clock::now() + kStopped;
    while (!told() && ThrownTexts::Clock::now() < deadline)
        MainWait::Until([] { return false; }, kLookForStop);
}

void Session::TellWhereItHangs(Failure& failure) {
    if (!m_host || failure.exitCode != kExitNoAnswer)
        return;
    EndDevices(failure.exitCode);
    failure.place = m_thrown.TakeStopped();
}

/// Where scripts were that did not come back as their devices ended, and nobody waited for.
void Session::TellStopped() {
    for (QStringList place = m_thrown.TakeStopped(); !place.isEmpty(); place = m_thrown.TakeStopped()) {
        PrintProblem(place.takeFirst());
        PrintPlace(place);
    }
}

int Session::Close(int exitCode) {
    if (!m_host) {
        m_peers.End();
        return exitCode;
    }
    const int lateCode = exitCode == kExitOk ? kExitNoAnswer : exitCode;
    EndDevices(lateCode);
    m_devices.clear();
    m_peers.End();
    {
        const ExitGuard guard(kModuleCall, lateCode, "the module does not come back from its end");
        if (!m_host->Pool().Close(kStop))
            LeaveAtOnce(lateCode, "a call into the module does not come back");
        m_module.reset();
    }
    const auto thrown = TellThrown();
    TellStopped();
    m_screen.Tell(LogScreen::Clock::time_point::max());
    m_teller.stop();
    m_host.reset();
    m_follower.reset();
    return thrown && exitCode == kExitOk ? thrown->exitCode : exitCode;
}

MaybeFailure SetupOfDevice(const Device& device, QString& setup) {
    const auto given = device.Setup();
    if (!given)
        return Failure{kExitNoModule, QStringLiteral("%1: the module does not give the setup, so it is left as it was")
                                          .arg(FromBorderText(device.Name()))};
    setup = FromBorderText(*given);
    return std::nullopt;
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

#include <algorithm>
#include <memory>

#include <QFileInfo>
#include <QJsonArray>

#include "BorderText.h"
#include "Commands.h"
#include "DriverSetup.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "LiveShow.h"
#include "NameTools.h"
#include "Output.h"
#include "PanelWindow.h"
#include "SetupWindow.h"
#include "ShowFile.h"
#include "WindowDialogs.h"

/// The commands that write show files.

namespace stagehost {

namespace {

/// What a command has done, for people and for programs, told once the file is written.
class KeepReport {
public:
    explicit KeepReport(bool json)
        : m_json(json) {}

    void Add(const QString& line, const QJsonObject& object) {
        m_lines += line;
        m_list.append(object);
    }

    int End(ShowFile& file, int exitCode) {
        bool written = false;
        if (auto failure = file.Save(&written))
            return Fail(m_json, failure->exitCode, failure->text);
        if (m_json)
            PrintJson({{QStringLiteral("ok"), exitCode == kExitOk},
                       {QStringLiteral("exitCode"), exitCode},
                       {QStringLiteral("written"), written},
                       {QStringLiteral("entries"), m_list}});
        m_lines += written ? QStringLiteral("The show file is written.") : QStringLiteral("There is nothing to write.");
        if (!m_json)
            PrintLine(m_lines.join(QLatin1Char('\n')));
        return exitCode;
    }

private:
    const bool m_json;
    QStringList m_lines;
    QJsonArray m_list;
};

/// What the session of a command is for.
enum class Keeping {
    Setups,   ///< the command tells by itself what is not as it was
    Commands, ///< as they are stored
    Running   ///< the devices run, and their peers
};

MaybeFailure Open(Session& session, ShowFile& file, const Options& options, Keeping keeping) {
    if (auto failure = file.Open(options.arguments.first()))
        return failure;
    return keeping == Keeping::Running ? session.OpenWithPeers(file.Content()) : session.Open(file.Content());
}

QString RefusedSetupText() {
    return QStringLiteral("the setup in the show file is left as it is; remove it to begin with a new one");
}

/// Words of the form SETTING=VALUE.
MaybeFailure ReadSettings(const QString& device, const QStringList& words, std::vector<GivenSetting>& given) {
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1)
            return Failure{kExitBadUse, QStringLiteral("%1: expected SETTING=VALUE, not \"%2\"").arg(device, word)};
        given.push_back({word.left(equals), word.mid(equals + 1), QStringLiteral("%1: %2").arg(device, word)});
    }
    return std::nullopt;
}

/// Gives the device the driver's script as its file has it now, and settings their values.
MaybeFailure RenewSetup(Session& session, Device& device, const Show& show, const ShowDevice& described,
                        const Options& options, const std::vector<GivenSetting>& words) {
    QString setup;
    if (auto failure = session.SetupToKeep(device, setup))
        return failure;
    if (!described.driverFile.isEmpty()) {
        DriverEdition edition;
        if (auto failure = ReadDriver(show, show.Path(described.driverFile), options.timeout, edition))
            return failure;
        setup = MakeSetupText(setup, edition).value_or(setup);
    }
    QString problem = session.Settings().PutInto(described.name, setup);
    if (problem.isEmpty())
        problem = GiveSettings(setup, words).join(QLatin1Char('\n'));
    if (!problem.isEmpty())
        return Failure{kExitBadUse, problem};
    if (const auto refused = device.TakeSetup(ToBorderText(setup)))
        return Failure{kExitNoModule, QStringLiteral("%1: %2").arg(described.name, refused->text)};
    return std::nullopt;
}

/// Keeps the device's setup of now. What "settings" in the show file say goes there, and not into the setup as well.
/// @param kept the setup that is kept.
MaybeFailure KeepSetup(Session& session, ShowFile& file, const Device& device, QString& kept) {
    const QString name = FromBorderText(device.Name());
    QString setup;
    auto failure = SetupOfDevice(device, setup);
    if (!failure)
        failure = session.SetupToKeep(device, kept);
    if (failure)
        return failure;
    for (const auto& setting : session.Settings().Changed(name, setup))
        file.SetSetting(name, setting.name, setting.text);
    file.SetSetup(name, kept);
    return std::nullopt;
}

/// A value that a user gives stands in the place of the peer that the setting has named.
void TakePlaceOfPeer(ShowFile& file, const ShowDevice& described, const GivenSetting& word) {
    const auto& named = described.peerSettings;
    if (std::any_of(named.begin(), named.end(), [&](const auto& entry) { return entry.first == word.name; }))
        file.SetSetting(described.name, word.name, word.text);
}

/// A script that is loaded at the start of a show is in no setup before the first dialog, which looks into it itself.
MaybeFailure ShowScript(Device& device, const Show& show, const ShowDevice& described, const Options& options) {
    if (!described.setup.isEmpty() || (described.scriptFile.isEmpty() && described.scriptText.isEmpty()))
        return std::nullopt;
    WholeScript script{described.scriptText};
    if (!described.scriptFile.isEmpty()) {
        if (auto failure = ReadWhole(show.Path(described.scriptFile), options.timeout, script))
            return failure;
    }
    DriverEdition edition;
    edition.text = script.text;
    QString setup;
    if (auto failure = SetupOfDevice(device, setup))
        return failure;
    setup = MakeSetupText(setup, edition).value_or(QString());
    if (const auto refused = device.TakeSetup(ToBorderText(setup)))
        return Failure{kExitNoModule, QStringLiteral("%1: %2").arg(described.name, refused->text)};
    return std::nullopt;
}

/// The setup text as the user leaves it in the device's dialog.
MaybeFailure AskForSetup(Session& session, ShowFile& file, const Options& options, SetupWindow& window,
                         KeepReport& report) {
    const QString name = options.arguments.value(1);
    Device* device = session.FindDevice(name);
    if (device == nullptr || options.arguments.size() != 2)
        return Failure{kExitBadUse, QStringLiteral("--window needs one device of the show")};
    if (session.HasRefusedSetup(name))
        return Failure{kExitBadUse, QStringLiteral("%1: %2").arg(name, RefusedSetupText())};
    const ShowDevice& described = *file.Content().FindDevice(name);
    if (auto failure = ShowScript(*device, file.Content(), described, options))
        return failure;
    const QString before = described.setup;
    const KXPCode code = window.Show(*device);
    if (code == KXP_CANCELLED && Interrupt::HasCome())
        return Failure{kExitNoAnswer, QStringLiteral("%1: interrupted, setup left as it was").arg(name)};
    const char* what = "left as it was";
    if (code != KXP_CANCELLED) {
        QString kept;
        if (auto failure = KeepSetup(session, file, *device, kept))
            return failure;
        what = kept == before && !file.HasChangedSettings(name) ? "as before" : "changed";
    }
    report.Add(QStringLiteral("%1: setup %2").arg(name, QLatin1String(what)),
               {{QStringLiteral("device"), name}, {QStringLiteral("setup"), QLatin1String(what)}});
    session.CheckStored();
    return std::nullopt;
}

/// A device whose script fails has its panel all the same: it is where that can be mended.
MaybeFailure RunPanel(Session& session, ShowFile& file, const Options& options, PanelWindow& window,
                      KeepReport& report) {
    const QString& name = options.arguments.at(1);
    Device* device = session.FindDevice(name);
    if (device == nullptr)
        return session.NoDevice(name);
    if (session.HasRefusedSetup(name))
        return Failure{kExitBadUse, QStringLiteral("%1: %2").arg(name, RefusedSetupText())};
    const auto before = device->Setup();
    if (const auto failure = session.Start())
        PrintProblem(failure->text);
    if (!window.Run(session, *device, options))
        return Failure{kExitNoModule, QStringLiteral("%1: the module makes no control panel").arg(name)};
    for (const auto& [stored, xml] : window.Stored()) {
        file.SetStoredCommand(stored, xml);
        report.Add(QStringLiteral("%1: stored").arg(stored), {{QStringLiteral("name"), stored}});
    }
    const bool changed = !device->IsOver() && device->Setup() != before;
    if (changed) {
        QString kept;
        if (auto failure = KeepSetup(session, file, *device, kept))
            return failure;
    }
    const char* what = changed ? "changed" : "as before";
    report.Add(QStringLiteral("%1: setup %2").arg(name, QLatin1String(what)),
               {{QStringLiteral("device"), name}, {QStringLiteral("setup"), QLatin1String(what)}});
    return std::nullopt;
}

MaybeFailure RenewSetups(Session& session, ShowFile& file, const Options& options, KeepReport& report) {
    const QString only = options.arguments.value(1);
    if (!only.isEmpty() && file.Content().FindDevice(only) == nullptr)
        return session.NoDevice(only);
    std::vector<GivenSetting> words;
    if (auto failure = ReadSettings(only, options.arguments.mid(2), words))
        return failure;
    for (const auto& described : file.Content().devices) {
        if (!only.isEmpty() && described.name != only)
            continue;
        if (session.HasRefusedSetup(described.name))
            return Failure{kExitBadUse, QStringLiteral("%1: %2").arg(described.name, RefusedSetupText())};
        Device& device = *session.FindDevice(described.name);
        if (auto failure = RenewSetup(session, device, file.Content(), described, options, words))
            return failure;
        for (const auto& word : words)
            TakePlaceOfPeer(file, described, word);
        QString setup;
        if (auto failure = KeepSetup(session, file, device, setup))
            return failure;
        const bool same = setup == described.setup && !file.HasChangedSettings(described.name);
        const char* what = described.setup.isEmpty() ? "made" : same ? "as before" : "renewed";
        report.Add(QStringLiteral("%1: setup %2").arg(described.name, QLatin1String(what)),
                   {{QStringLiteral("device"), described.name}, {QStringLiteral("setup"), QLatin1String(what)}});
    }
    session.CheckStored();
    return std::nullopt;
}

/// Words of the form PARAM=VALUE, or PARAM:=VARIABLE for a variable that stands for the parameter.
MaybeFailure ReadParameters(Session& session, const QStringList& words, std::vector<ActionParameter>& parameters,
                            std::vector<ParameterInput>& inputs) {
    if (auto failure = ReadInputs(words, inputs))
        return failure;
    for (auto& input : inputs) {
        const bool isVariable = input.name.size() > 1 && input.name.back() == ':';
        if (isVariable) {
            input.name.pop_back();
            input.variable = session.TheHost().Variables().Find(input.text);
            if (!input.variable)
                return session.NoVariable(FromBorderText(input.text));
        }
        parameters.push_back({input.name, input.text, isVariable});
    }
    return std::nullopt;
}

MaybeFailure Store(Session& session, ShowFile& file, const QStringList& words, KeepReport& report) {
    const QString& name = words.at(1);
    Device* device = session.FindDevice(words.at(2));
    if (device == nullptr)
        return session.NoDevice(words.at(2));
    const auto definition = device->Variables().Definition();
    const CommandDefinition* command = definition->FindCommand(ToBorderText(words.at(3)));
    if (command == nullptr)
        return Failure{kExitBadUse, QStringLiteral("%1: has no command \"%2\"").arg(words.at(2), words.at(3))};
    std::vector<ActionParameter> parameters;
    std::vector<ParameterInput> inputs;
    if (auto failure = ReadParameters(session, words.mid(4), parameters, inputs))
        return failure;
    const QString problem = CheckInputs(*command, inputs);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, QStringLiteral("%1: %2").arg(words.at(2), problem)};
    const auto stored =
        StoredCommandXml::Make(device->Name(), device->Variables().DefinitionText(), command->id, parameters);
    if (!stored || !IsObjectName(ToBorderText(name).c_str()))
        return Failure{kExitBadUse, QStringLiteral("\"%1\" is no name for a stored command").arg(name)};
    file.SetStoredCommand(name, stored->Print());
    report.Add(
        QStringLiteral("%1: %2, %3 (%4)").arg(name, words.at(2), FromBorderText(command->name), ValuesText(*stored)),
        {{QStringLiteral("name"), name},
         {QStringLiteral("device"), words.at(2)},
         {QStringLiteral("command"), FromBorderText(command->name)}});
    return std::nullopt;
}

/// @return the exit code: 1 when something is left that cannot be updated.
int Update(Session& session, ShowFile& file, KeepReport& report) {
    int exitCode = kExitOk;
    for (const auto& command : session.StoredOnes()) {
        QStringList changes;
        const char* what = "as it was";
        if (command.updated) {
            what = "updated";
            changes = ChangesText(command.stored, *command.updated);
            file.SetStoredCommand(command.name, command.updated->Print());
        } else if (command.InForce() == nullptr) {
            what = command.standing == Device::Standing::Gone ? "gone" : "cannot be updated";
            exitCode = kExitScriptFailed;
        }
        const QString list =
            changes.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(changes.join(QStringLiteral(", ")));
        report.Add(QStringLiteral("%1: %2%3").arg(command.name, QLatin1String(what), list),
                   {{QStringLiteral("name"), command.name},
                    {QStringLiteral("device"), FromBorderText(command.stored.Device())},
                    {QStringLiteral("standing"), QLatin1String(what)},
                    {QStringLiteral("changes"), QJsonArray::fromStringList(changes)}});
    }
    return exitCode;
}

/// Opens the show, does the work and writes the file when that went well.
template <typename Work>
int Keep(const Options& options, Keeping keeping, KXPWindow window, Work work) {
    if (!options.sets.isEmpty())
        return Fail(
            options.json, kExitBadUse,
            QStringLiteral("--set is for a run; \"stagehost setup SHOW.json DEVICE SETTING=VALUE\" keeps a value"));
    ShowFile file;
    WindowDialogs dialogs;
    Session session(options);
    session.SetQuiet(keeping == Keeping::Setups);
    session.SetMainWindow(window);
    session.SetDialogs(window != 0 ? &dialogs : nullptr);
    KeepReport report(options.json);
    int exitCode = kExitOk;
    auto failure = Open(session, file, options, keeping);
    if (!failure)
        failure = work(session, file, report, exitCode);
    if (failure)
        return session.Close(Fail(options.json, *failure));
    return session.Close(report.End(file, exitCode));
}

} // namespace

int KeepSetups(const Options& options) {
    if (options.window && !SetupWindow::IsPossible())
        return Fail(options.json, kExitBadUse, QStringLiteral("there is no screen to show a window on"));
    const auto window = options.window ? std::make_unique<SetupWindow>(options.arguments.first()) : nullptr;
    return Keep(options, Keeping::Setups, SetupWindow::Current(),
                [&](Session& session, ShowFile& file, KeepReport& report, int&) {
                    return window ? AskForSetup(session, file, options, *window, report)
                                  : RenewSetups(session, file, options, report);
                });
}

int ShowPanel(const Options& options) {
    if (!SetupWindow::IsPossible())
        return Fail(options.json, kExitBadUse, QStringLiteral("there is no screen to show a window on"));
    PanelWindow window(options.arguments.first());
    return Keep(options, Keeping::Running, window.winId(),
                [&](Session& session, ShowFile& file, KeepReport& report, int&) {
                    return RunPanel(session, file, options, window, report);
                });
}

int StoreCommand(const Options& options) {
    return Keep(options, Keeping::Commands, 0, [&](Session& session, ShowFile& file, KeepReport& report, int&) {
        return Store(session, file, options.arguments, report);
    });
}

int UpdateCommands(const Options& options) {
    return Keep(options, Keeping::Setups, 0, [&](Session& session, ShowFile& file, KeepReport& report, int& exitCode) {
        exitCode = Update(session, file, report);
        return MaybeFailure();
    });
}

} // namespace stagehost

#include "CommandTable.h"

#include "ArgumentReader.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "LiveShow.h"

namespace stagehost {

namespace {

constexpr int kAny = -1;

constexpr Command kCommands[] = {
    {"new", "tcp|udp|http|serial|logic NAME",
     "lays out a driver to begin with, in a folder NAME: the driver, a show that plays it, and a fake device to talk "
     "to",
     "stagehost new tcp amplifier\n"
     "stagehost run amplifier/show.json\n"
     "stagehost new logic foyer   (no device of its own: what follows when variables change)",
     2, 2, &NewDriver},
    {"run", "SHOW.json", "plays a show: starts its devices, sends its steps, shows the results",
     "stagehost run examples/cuelist/show.json\n"
     "stagehost run --log examples/cuelist/show.json\n"
     "stagehost run --keep-going --junit steps.xml show.json   (for CI; --tap tells them as TAP)",
     1, 1, &RunShow},
    {"exec", "FILE.js FUNCTION [ARG...]", "runs one function of a script with up to 8 arguments and prints its result",
     "stagehost exec lights.js fadeTo 50 2.5\n"
     "stagehost exec --timeout 500 lights.js fadeTo -5   (all words behind FUNCTION reach the function as text)",
     2, 2 + 8, &ExecFunction, "a function takes at most 8 arguments"},
    {"check", "FILE.js",
     "tells what a script publishes (commands with their parameters and limits, variables, settings), with a note\n"
     "on each line that will hurt later; or, if it does not load, the error and its line",
     "stagehost check lights.js\n"
     "stagehost check --strict lights.js   (a note is a failure, for CI)\n"
     "stagehost check --json lights.js   (all of it for programs, also of a script that fails)",
     1, 1, &CheckScript},
    {"compose", "FILE.js",
     "prints a driver with the files that it names in front of it (\"// @include NAME\") as one script, for other "
     "hosts",
     "stagehost compose projector.js > whole.js", 1, 1, &ComposeScript},
    {"send", "SHOW.json | FILE.js DEVICE COMMAND [PARAM=VALUE...]", "sends one command to a device of a show",
     "stagehost send show.json desk \"Execute Function\" \"Script Function Name=blackout\"\n"
     "stagehost send show.json desk 3 \"Script Function Name=fadeTo\" Param1=50\n"
     "stagehost send dimmer.js script \"Fade to\" level=50\n"
     "stagehost send dimmer.js script \"Fade to\" level=50 --set channel=7   (a setting has this value in this run)",
     3, kAny, &SendCommand},
    {"watch", "SHOW.json | FILE.js [NAME...]", "runs a show, prints what changes, does what standard input says",
     "stagehost watch examples/evening/show.json\n"
     "stagehost watch --reload dimmer.js   (each time that the script is saved, it runs)\n"
     "stagehost watch --json show.json Level Overture\n"
     "printf 'set Level 50\\nwait Answer yes\\n' | stagehost watch show.json",
     1, kAny, &WatchShow},
    {"test", "[FOLDER | SHOW.json...]",
     "plays the shows that are tests, side by side, and tells what failed: those named NAME.test.json, and those with "
     "the key \"test\"",
     "stagehost test\n"
     "stagehost test --junit tests.xml drivers\n"
     "stagehost test --speed 60 --jobs 4 evening.test.json",
     0, kAny, &TestShows},
    {"definition", "[SHOW.json | FILE.js]", "shows the commands and variables of a device",
     "stagehost definition\n"
     "stagehost definition lights.js\n"
     "stagehost definition --json show.json",
     0, 1, &ShowDefinition},
    {"variables", "SHOW.json | FILE.js [NAME...]", "shows variables and their values once the scripts are loaded",
     "stagehost variables show.json\n"
     "stagehost variables lights.js script.Status script.Error",
     1, kAny, &ShowVariables},
    {"setup", "SHOW.json [DEVICE [SETTING=VALUE...]]",
     "writes the setups of the devices into the show file, with their drivers as they are now",
     "stagehost setup show.json\n"
     "stagehost setup show.json desk address=10.0.0.7 port=9000\n"
     "stagehost setup --window show.json desk   (in the device's setup dialog)",
     1, kAny, &KeepSetups},
    {"panel", "SHOW.json DEVICE",
     "runs a show and shows the control panel of a device, in user modes and themes of your choice. Stored commands "
     "can be\n"
     "changed there, with the module's selectors; what is set is written into the show file",
     "stagehost panel mine/show.json front", 2, 2, &ShowPanel},
    {"store", "SHOW.json NAME DEVICE COMMAND [PARAM=VALUE...]", "writes a command with its values into the show file",
     "stagehost store show.json \"Half light\" desk \"Fade to\" level=50 seconds=2\n"
     "stagehost store show.json Follow desk \"Fade to\" level:=Level   (the variable Level stands for the parameter)",
     4, kAny, &StoreCommand},
    {"counterpart", "FILE.js [NAME=VALUE...]",
     "plays a device that is not there, as a script says; shows start such peers by themselves",
     "stagehost counterpart fake-beamer.js\n"
     "stagehost counterpart --listen 4352 --seed 7 fake-beamer.js password=secret",
     1, kAny, &PlayCounterpart},
    {"record", "--tcp|--udp [LISTEN:]HOST:PORT FILE | --serial PORT FILE",
     "stands between a program and its device, passes everything on, and writes what goes by into a file;\n"
     "with --mischief it is a line that misbehaves",
     "stagehost record --tcp 10.0.0.7:4352 evening.traffic\n"
     "stagehost record --tcp 14352:127.0.0.1:4352 evening.traffic   (programs connect to port 14352)\n"
     "stagehost record --serial /dev/ttyUSB0 --line 9600,8n1 --listen ./switcher evening.traffic\n"
     "stagehost record --tcp 10.0.0.7:4352 --mischief 7 --pranks late,split,reset bad.traffic",
     1, 1, &RecordTraffic},
    {"replay", "FILE",
     "plays the device of a file that record has written: greets, answers what is asked as it was answered then, and\n"
     "tells what it does not know. With --json it hears on standard input what a show says to its peers",
     "stagehost replay evening.traffic\n"
     "stagehost replay --fast --any-order --listen 4352 evening.traffic",
     1, 1, &ReplayTraffic},
    {"declarations", "[driver|counterpart]",
     "prints what such a script sees as a TypeScript declaration file, for other editors",
     "stagehost declarations > calverin.d.ts\n"
     "stagehost declarations counterpart > counterpart.d.ts",
     0, 1, &PrintDeclarations},
    {"schema", "", "prints the JSON Schema of show files, for other editors and programs",
     "stagehost schema > show.schema.json", 0, 0, &PrintSchema},
    {"update", "SHOW.json", "brings the stored commands of the show file up to their drivers",
     "stagehost update show.json", 1, 1, &UpdateCommands},
};

QString Lines(const char* text, const QString& indent) {
    return indent + QString::fromUtf8(text).replace(QLatin1Char('\n'), QLatin1Char('\n') + indent) + QLatin1Char('\n');
}

QString CommandHelp(const Command& command) {
    const QString indent = QStringLiteral("  ");
    return QStringLiteral("stagehost %1 %2\n\n").arg(QLatin1String(command.name), QLatin1String(command.form)) +
           Lines(command.summary, indent) +
           (command.run == &WatchShow ? QStringLiteral("\nLines on standard input\n") + LiveShow::Help() : QString()) +
           QStringLiteral("\nExamples\n") + Lines(command.examples, indent) + QStringLiteral("\nOptions\n") +
           OptionHelp();
}

QString ProgramHelp() {
    QString text =
        QStringLiteral("stagehost: a small show host for the desk. It loads scripts into devices and works them "
                       "as a show does.\n\n"
                       "stagehost [OPTIONS] COMMAND ...\n\nCommands\n");
    QString examples;
    for (const auto& command : kCommands) {
        text += QStringLiteral("  %1 %2\n%3")
                    .arg(QLatin1String(command.name), QLatin1String(command.form),
                         Lines(command.summary, QStringLiteral("      ")));
        examples += QStringLiteral("  ") + QString::fromUtf8(command.examples).section(QLatin1Char('\n'), 0, 0) +
                    QLatin1Char('\n');
    }
    text += QStringLiteral("\nOptions\n") + OptionHelp() + QStringLiteral("\nExamples\n") + examples +
            QStringLiteral("\nExit codes\n");
    for (const auto& row : kExitCodes)
        text += QStringLiteral("  %1  %2\n").arg(static_cast<int>(row.code)).arg(QLatin1String(row.meaning));
    return text + QStringLiteral("\n\"stagehost COMMAND --help\" tells more about one command.\n");
}

} // namespace

std::vector<Command> AllCommands() {
    return {std::begin(kCommands), std::end(kCommands)};
}

const Command* FindCommand(const QString& name) {
    for (const auto& command : kCommands) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    return nullptr;
}

QStringList CommandNames() {
    QStringList names;
    for (const auto& command : kCommands)
        names += QLatin1String(command.name);
    return names;
}

QString HelpText(const Command* command) {
    return command == nullptr ? ProgramHelp() : CommandHelp(*command);
}

} // namespace stagehost

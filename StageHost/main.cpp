#include <exception>
#include <new>
#include <optional>
#include <system_error>

#include <QApplication>
#include <QTextCodec>

#include "ArgumentReader.h"
#include "BorderText.h"
#include "BuiltFrom.h"
#include "CommandTable.h"
#include "ExitCodes.h"
#include "ExitGuard.h"
#include "FileSpace.h"
#include "MainWait.h"
#include "NearNames.h"
#include "Output.h"
#include "ShowClock.h"
#include "ToolkitMessages.h"

using namespace stagehost;

namespace {

/// Without a display, or with one that does not answer, the windows
/// that a module may make go nowhere instead of ending the program.
void ChoosePlatform() {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    QByteArray platforms = qEnvironmentVariableIsEmpty("DISPLAY") ? "" : "xcb;";
    platforms += qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? "" : "wayland;";
    qputenv("QT_QPA_PLATFORM", platforms + "offscreen");
}

/// A line that others speak over is served by the quicker of the toolkit's event loops.
void ChooseEventLoop(const QString& command) {
    if (command == QLatin1String("record") || command == QLatin1String("replay"))
        qputenv("QT_NO_GLIB", "1");
}

/// File names are UTF-8 where the locale says nothing better, as in a container without one.
void ChooseFileNameEncoding() {
    if (!QTextCodec::codecForLocale()->canEncode(QChar(0xE9)))
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

QStringList Words(int count, char** words) {
    QStringList list;
    for (int index = 1; index < count; ++index)
        list += FromOutsideText(words[index]);
    return list;
}

int BadUse(const Options& options, const QString& problem) {
    return Fail(options.json, kExitBadUse,
                problem +
                    QStringLiteral("\nTry: stagehost %1--help")
                        .arg(FindCommand(options.command) == nullptr ? QString() : options.command + QLatin1Char(' ')));
}

int NoCommand(const Options& options, const QString& name) {
    return BadUse(options, QStringLiteral("there is no command \"%1\"").arg(name) + NamesInstead(name, CommandNames()));
}

/// The help of a command, as "help COMMAND" or "COMMAND --help", or of the program.
int Help(const Options& options) {
    const bool isCommand = options.command == QLatin1String("help");
    const QString name = isCommand ? options.arguments.value(0) : options.command;
    const Command* command = FindCommand(name);
    if (command == nullptr && !name.isEmpty() && name != QLatin1String("help"))
        return NoCommand(options, name);
    Print(HelpText(command));
    return kExitOk;
}

/// What the arguments ask for without any device; nothing when a command has to run.
std::optional<int> AnswerAtOnce(const Options& options, const QString& problem) {
    const Command* command = FindCommand(options.command);
    if (options.help || options.command == QLatin1String("help"))
        return Help(options);
    if (options.version) {
        PrintLine(
            QStringLiteral("stagehost %1 (%2)").arg(QLatin1String(STAGEHOST_VERSION), QLatin1String(BuiltFrom())));
        return kExitOk;
    }
    if (!problem.isEmpty())
        return BadUse(options, problem);
    if (options.command.isEmpty())
        return BadUse(options, QStringLiteral("there is no command"));
    if (command == nullptr)
        return NoCommand(options, options.command);
    const int count = options.arguments.size();
    if (command->tooMany != nullptr && count > command->most)
        return BadUse(options, QLatin1String(command->tooMany));
    if (count < command->fewest || (command->most >= 0 && count > command->most))
        return BadUse(options, QStringLiteral("the form is: stagehost %1 %2")
                                   .arg(QLatin1String(command->name), QLatin1String(command->form)));
    return std::nullopt;
}

/// What the system refuses on a thread of the host's own ends the program, in words. Anything else is a fault of ours,
/// and ends it as such.
[[noreturn]] void EndWithoutRoom() {
    try {
        if (const auto thrown = std::current_exception())
            std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        LeaveAtOnce(kExitNoModule, "there is no memory left");
    } catch (const std::system_error&) {
        LeaveAtOnce(kExitNoModule, "the system has no thread left");
    } catch (...) {
    }
    std::abort();
}

/// Runs the command. What it has begun is ended, also when the system has no room left for what it needs.
int Run(const Options& options) {
    try {
        return FindCommand(options.command)->run(options);
    } catch (const std::bad_alloc&) {
        return Fail(options.json, kExitNoModule, QStringLiteral("there is no memory left"));
    } catch (const std::system_error&) {
        return Fail(options.json, kExitNoModule, QStringLiteral("the system has no thread left"));
    }
}

/// Each test has a time of its own, and their host that of the computer.
QString EnterClock(const Options& options, char** arguments) {
    return options.command == QLatin1String("test") ? QString() : ShowClock::Enter(options.clock, arguments);
}

} // namespace

int main(int argc, char** argv) {
    std::set_terminate(&EndWithoutRoom);
    HoldStandardChannels();
    FailWhereFilesMayNotGrow();
    ChooseFileNameEncoding();
    ArgumentReader reader;
    const QString problem = reader.Read(Words(argc, argv));
    if (const auto exitCode = AnswerAtOnce(reader.Result(), problem))
        return FinalExitCode(*exitCode);
    if (const QString told = EnterClock(reader.Result(), argv); !told.isEmpty())
        return FinalExitCode(Fail(reader.Result().json, kExitBadUse, told));
    ShowToolkitMessages(reader.Result().log);
    ChoosePlatform();
    ChooseEventLoop(reader.Result().command);
    int applicationArguments = 1; // the words are ours, not those of the toolkit
    const QApplication application(applicationArguments, argv);
    const MainWait wait;
    return FinalExitCode(Run(reader.Result()));
}

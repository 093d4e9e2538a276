#include <random>

#include <QFileInfo>

#include "Commands.h"
#include "Counterpart.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "Orders.h"
#include "Output.h"
#include "TextFile.h"

namespace stagehost {

namespace {

constexpr std::chrono::hours kBetweenLooks(1); // nothing but the end wakes it

/// Words of the form NAME=VALUE.
QString ReadScriptOptions(const QStringList& words, std::map<QString, QString>& options) {
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1)
            return QStringLiteral("expected NAME=VALUE, not \"%1\"").arg(word);
        options[word.left(equals)] = word.mid(equals + 1);
    }
    return {};
}

} // namespace

int PlayCounterpart(const Options& options) {
    const Interrupt interrupt;
    const QString& file = options.arguments.first();
    QString problem;
    const auto text = ReadText(QFileInfo(file).absoluteFilePath(), &problem);
    std::map<QString, QString> given;
    LinePlace listen;
    if (text)
        problem = ReadScriptOptions(options.arguments.mid(1), given);
    if (problem.isEmpty() && !options.listen.isEmpty())
        problem = ReadHostAndPort(options.listen, QStringLiteral("127.0.0.1"), listen);
    const Voice voice(options.json, &PrintLine, &PrintProblem);
    if (!problem.isEmpty()) {
        voice.Problem(problem);
        return kExitBadUse;
    }
    const quint64 seed = options.seed.value_or(std::random_device()());
    Counterpart counterpart(voice, seed, listen, given);
    bool isOver = false;
    if (const auto failure = counterpart.Load(*text, file)) {
        voice.Problem(failure->text, failure->place);
        return kExitScriptFailed;
    }
    const Orders orders([&](const QByteArray& line) { counterpart.Do(line); },
                        [&] {
                            isOver = true;
                            MainWait::Wake();
                        });
    while (!isOver && !Interrupt::HasCome())
        MainWait::UntilInterrupted([&] { return isOver; }, kBetweenLooks);
    return kExitOk;
}

} // namespace stagehost

#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <deque>

#include <QFile>
#include <QJsonDocument>

#include "BorderText.h"
#include "Colors.h"
#include "ExitCodes.h"
#include "HostCodes.h"
#include "ScriptPlaces.h"
#include "Terminal.h"

namespace stagehost {

namespace {

constexpr int kLongestCell = 60;
constexpr int kStandardOutput = 1; // descriptors of every process
constexpr int kStandardError = 2;

bool outputIsClosed = false; // both of host main alone
bool resultIsLost = false;

void (*beforeOutput)() = nullptr; // both of host main alone
void (*behindOutput)() = nullptr;

bool WriteBytes(std::FILE* stream, const QByteArray& bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

bool GoesToATerminal(std::FILE* stream) {
    static const bool output = IsTerminal(StandardChannel::Output);
    static const bool errors = IsTerminal(StandardChannel::Error);
    return stream == stdout ? output : errors;
}

bool Write(std::FILE* stream, const QString& text) {
    if (beforeOutput != nullptr)
        beforeOutput();
    const bool written = WriteBytes(stream, ForChannel(GoesToATerminal(stream), text).toUtf8());
    if (behindOutput != nullptr)
        behindOutput();
    return written;
}

void WriteResult(const QString& text) {
    if (resultIsLost || text.isEmpty() || (!outputIsClosed && Write(stdout, text)))
        return;
    resultIsLost = true;
    PrintProblem(QStringLiteral("the output cannot be written: %1")
                     .arg(outputIsClosed ? qt_error_string(EBADF) : qt_error_string()));
}

QString RefusalText(KXPCode code, const QString& command) {
    if (code == KXP_SCRIPT_FAILED)
        return QStringLiteral("the script has no function of that name");
    if (code == KXP_BAD_COMMAND)
        return QStringLiteral("the device does not know the command \"%1\" or lacks parameters for it").arg(command);
    return QStringLiteral("the device refuses the command \"%1\" (code %2)").arg(command).arg(code);
}

} // namespace

void Print(const QString& text) {
    WriteResult(text);
}

void PrintLine(const QString& line) {
    WriteResult(line + QLatin1Char('\n'));
}

void PrintProblem(const QString& line) {
    Write(stderr, line + QLatin1Char('\n'));
}

void PrintJson(const QJsonObject& object) {
    WriteResult(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented)));
}

void PrintJsonLine(const QJsonObject& object) {
    PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

QString LostCharactersNote() {
    return QStringLiteral("note: a host carries Latin-1 text only; other characters became \"?\"");
}

void SetAroundOutput(void (*before)(), void (*behind)()) {
    beforeOutput = before;
    behindOutput = behind;
}

void HoldStandardChannels() {
    for (int descriptor = 0; descriptor <= kStandardError;) {
        static std::deque<QFile> held; // to the end of the process
        held.emplace_back(QStringLiteral("/dev/null"));
        if (!held.back().open(QIODevice::ReadWrite))
            return;
        descriptor = held.back().handle();
        if (descriptor > kStandardError)
            held.pop_back();
        if (descriptor == kStandardOutput)
            outputIsClosed = true;
    }
}

int FinalExitCode(int exitCode) {
    return exitCode == kExitOk && resultIsLost ? kExitBadUse : exitCode;
}

int Fail(bool json, int exitCode, const QString& text) {
    return Fail(json, Failure{exitCode, text});
}

int Fail(bool json, const Failure& failure) {
    PrintProblem(OnErrors(Ink::Bad, failure.text));
    PrintPlace(failure.place);
    QJsonObject object{{QStringLiteral("ok"), false},
                       {QStringLiteral("error"), failure.text},
                       {QStringLiteral("exitCode"), failure.exitCode}};
    AddPlace(object, failure.place);
    if (json)
        PrintJson(object);
    return failure.exitCode;
}

void PrintPlace(const QStringList& place) {
    for (const QString& line : place)
        PrintProblem(QStringLiteral("    ") + line);
}

void AddPlace(QJsonObject& object, const QStringList& place) {
    const QJsonObject where = PlaceJson(place);
    if (!where.isEmpty())
        object.insert(QStringLiteral("where"), where);
}

int ExitCodeOf(const CommandOutcome& outcome) {
    if (outcome.kind == CommandOutcome::Kind::Done)
        return kExitOk;
    const bool answered =
        outcome.kind == CommandOutcome::Kind::ScriptFailed || outcome.kind == CommandOutcome::Kind::Refused;
    return answered ? kExitScriptFailed : kExitNoAnswer;
}

QString FailureText(const CommandOutcome& outcome, const QString& command, std::chrono::milliseconds limit) {
    switch (outcome.kind) {
    case CommandOutcome::Kind::Done:
        return {};
    case CommandOutcome::Kind::ScriptFailed:
        return FromBorderText(outcome.error);
    case CommandOutcome::Kind::Refused:
        return RefusalText(outcome.code, command);
    case CommandOutcome::Kind::Interrupted:
        return QStringLiteral("interrupted before the end of \"%1\"").arg(command);
    case CommandOutcome::Kind::NoAnswer:
        break;
    }
    return QStringLiteral("no answer to \"%1\" within %2 ms").arg(command).arg(limit.count());
}

QString HostCodeLine(KXPCode code) {
    const char* text = FindHostCodeText(code);
    return text == nullptr ? QStringLiteral("code %1").arg(code) : QLatin1String(text);
}

QJsonObject ToJson(const CommandOutcome& outcome) {
    constexpr const char* kKinds[] = {"done", "failed", "refused", "no answer", "interrupted"};
    return {{QStringLiteral("ok"), outcome.kind == CommandOutcome::Kind::Done},
            {QStringLiteral("outcome"), QLatin1String(kKinds[static_cast<int>(outcome.kind)])},
            {QStringLiteral("code"), static_cast<double>(outcome.code)},
            {QStringLiteral("result"), FromBorderText(outcome.result)},
            {QStringLiteral("status"), FromBorderText(outcome.status)},
            {QStringLiteral("error"), FromBorderText(outcome.error)},
            {QStringLiteral("milliseconds"), outcome.milliseconds}};
}

QString Table(const QVector<QStringList>& rows, const QString& indent) {
    QVector<int> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (int column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row.at(column).size());
    }
    QString text;
    for (const auto& row : rows) {
        QString line = indent;
        for (int column = 0; column < row.size(); ++column)
            line += row.at(column).leftJustified(widths.at(column) + 2);
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

QString OneLine(const QString& text) {
    QString line = text;
    line.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line.size() <= kLongestCell ? line : line.left(kLongestCell - 3) + QStringLiteral("...");
}

} // namespace stagehost

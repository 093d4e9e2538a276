#include "Protocol.h"

#include <QCryptographicHash>

#include "Projector.h"

namespace projector {

namespace {

constexpr char kDone[] = "OK";
constexpr char kUnknownCommand[] = "ERR1";
constexpr char kWrongParameter[] = "ERR2";
constexpr char kNotNow[] = "ERR3";
constexpr char kFailure[] = "ERR4";

QByteArray AnswerPower(Projector& projector, const QByteArray& parameter) {
    if (parameter == "?")
        return QByteArray::number(static_cast<int>(projector.GetPower()));
    if (parameter != "0" && parameter != "1")
        return kWrongParameter;
    return (parameter == "1" ? projector.TurnOn() : projector.TurnOff()) ? kDone : kNotNow;
}

QByteArray AnswerInput(Projector& projector, const QByteArray& parameter) {
    const QString input = QString::fromLatin1(parameter);
    if (parameter != "?" && !projector.HasInput(input))
        return kWrongParameter;
    if (projector.GetPower() != Power::On)
        return kNotNow;
    if (parameter == "?")
        return projector.Input().toLatin1();
    projector.SelectInput(input);
    return kDone;
}

QByteArray MuteState(const Projector& projector) {
    if (projector.PictureMuted())
        return projector.SoundMuted() ? "31" : "11";
    return projector.SoundMuted() ? "21" : "30";
}

/// First digit: 1 picture, 2 sound, 3 both; second: 1 muted, 0 not.
QByteArray AnswerMute(Projector& projector, const QByteArray& parameter) {
    const bool query = parameter == "?";
    const bool known = parameter.size() == 2 && parameter[0] >= '1' && parameter[0] <= '3' &&
                       (parameter[1] == '0' || parameter[1] == '1');
    if (!query && !known)
        return kWrongParameter;
    if (projector.GetPower() != Power::On)
        return kNotNow;
    if (query)
        return MuteState(projector);
    const int what = parameter[0] - '0';
    const bool mute = parameter[1] == '1';
    if ((what & 1) != 0)
        projector.MutePicture(mute);
    if ((what & 2) != 0)
        projector.MuteSound(mute);
    return kDone;
}

QByteArray AnswerLamps(const Projector& projector) {
    const bool lit = projector.GetPower() == Power::On || projector.GetPower() == Power::WarmingUp;
    QByteArrayList lamps;
    for (int lamp = 0; lamp < projector.About().lampHours.size(); ++lamp)
        lamps += QByteArray::number(projector.LampHours(lamp)) + (lit ? " 1" : " 0");
    return lamps.isEmpty() ? kUnknownCommand : lamps.join(' ');
}

using Act = QByteArray (*)(Projector&, const QByteArray& parameter);
using Tell = QByteArray (*)(const Projector&);

/// A command acts on the projector or only tells something.
struct Command {
    const char* name;
    Act act;
    Tell tell;
};

constexpr Command kCommands[] = {
    {"POWR", &AnswerPower, nullptr},
    {"INPT", &AnswerInput, nullptr},
    {"AVMT", &AnswerMute, nullptr},
    {"ERST", nullptr, [](const Projector& p) { return p.About().errors.toLatin1(); }},
    {"LAMP", nullptr, &AnswerLamps},
    {"INST", nullptr, [](const Projector& p) { return p.About().inputs.join(QLatin1Char(' ')).toLatin1(); }},
    {"NAME", nullptr, [](const Projector& p) { return p.About().name.toUtf8(); }},
    {"INF1", nullptr, [](const Projector& p) { return p.About().maker.toUtf8(); }},
    {"INF2", nullptr, [](const Projector& p) { return p.About().product.toUtf8(); }},
    {"INFO", nullptr, [](const Projector& p) { return p.About().other.toUtf8(); }},
    {"CLSS", nullptr, [](const Projector&) { return QByteArray("1"); }},
};

QByteArray AnswerCommand(Projector& projector, const QByteArray& name, const QByteArray& parameter) {
    for (const Command& command : kCommands) {
        if (name != command.name)
            continue;
        if (command.act != nullptr)
            return projector.About().broken ? kFailure : command.act(projector, parameter);
        return parameter == "?" ? command.tell(projector) : kWrongParameter;
    }
    return kUnknownCommand;
}

bool IsCommand(const QByteArray& line) {
    return line.size() >= 7 && line.size() <= kLongestLine && line.startsWith("%1") && line[6] == ' ';
}

} // namespace

QByteArray Answer(Projector& projector, const QByteArray& line) {
    if (!IsCommand(line))
        return {};
    const QByteArray name = line.mid(2, 4).toUpper();
    return "%1" + name + '=' + AnswerCommand(projector, name, line.mid(7)) + '\r';
}

QByteArray Digest(const QByteArray& random, const QByteArray& password) {
    return QCryptographicHash::hash(random + password, QCryptographicHash::Md5).toHex();
}

} // namespace projector

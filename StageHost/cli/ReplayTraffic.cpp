#include <memory>

#include <QFileInfo>
#include <QJsonDocument>

#include "Colors.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "InputLines.h"
#include "InputSide.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "NearNames.h"
#include "Output.h"
#include "Replay.h"
#include "TrafficText.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookForInterrupt(100); // a signal wakes nobody

/// Tells what a replay does: as lines of JSON, or for people.
class ReplayTeller {
public:
    ReplayTeller(QString file, bool json)
        : m_file(std::move(file))
        , m_json(json) {}

    ReplayNews News() const {
        return {[this](LineId line, const QString& who) { TellOpened(line, who); },
                [this](LineId line, const QByteArray& bytes, int fileLine) {
                    Tell(line, QStringLiteral("received"), QStringLiteral("<"), bytes, fileLine);
                },
                [this](LineId line, const QByteArray& bytes) {
                    Tell(line, QStringLiteral("said"), QStringLiteral(">"), bytes, 0);
                },
                [this](LineId line, const QByteArray& bytes, const QString& nearest, int fileLine,
                       const QString& expected) { TellUnknown(line, bytes, nearest, fileLine, expected); }};
    }

    void TellReady(const Endpoint& endpoint) const {
        if (!m_json)
            return PrintLine(QStringLiteral("%1 plays %2. Ctrl-C ends it.").arg(TextOf(endpoint.Place()), m_file));
        QJsonObject ready = endpoint.PlaceJson();
        ready.insert(QStringLiteral("ready"), true);
        PrintJsonLine(ready);
    }

private:
    void TellOpened(LineId line, const QString& who) const {
        if (m_json)
            PrintJsonLine({{QStringLiteral("connection"), line}, {QStringLiteral("opened"), who}});
        else
            PrintLine(QStringLiteral("%1   connection of %2").arg(line).arg(NameOfProgram(who)));
    }

    void Tell(LineId line, const QString& key, const QString& sign, const QByteArray& bytes, int fileLine) const {
        if (!m_json)
            return PrintLine(QStringLiteral("%1 %2 %3").arg(line).arg(sign, BytesForPeople(bytes)));
        QJsonObject told{{QStringLiteral("connection"), line}, {key, QString::fromLatin1(bytes)}};
        if (fileLine != 0)
            told.insert(QStringLiteral("line"), fileLine);
        PrintJsonLine(told);
    }

    void TellUnknown(LineId line, const QByteArray& bytes, const QString& nearest, int fileLine,
                     const QString& expected) const {
        if (m_json)
            return PrintJsonLine({{QStringLiteral("connection"), line},
                                  {QStringLiteral("unknown"), BytesForPeople(bytes)},
                                  {QStringLiteral("nearest"), nearest},
                                  {QStringLiteral("line"), fileLine},
                                  {QStringLiteral("expected"), expected}});
        QString text = QStringLiteral("%1 ? %2\n").arg(line).arg(BytesForPeople(bytes));
        if (!expected.isEmpty())
            text += QStringLiteral("    expected:    %1\n").arg(expected);
        text += nearest.isEmpty()
                    ? QStringLiteral("    %1 has no requests").arg(m_file)
                    : QStringLiteral("    the nearest: %1   (%2:%3)").arg(nearest, m_file, QString::number(fileLine));
        PrintProblem(OnErrors(Ink::Bad, text));
    }

    const QString m_file;
    const bool m_json;
};

/// What a show says to one that plays for it, a line of JSON each.
class ReplayOrders {
public:
    explicit ReplayOrders(Replay& replay)
        : m_replay(replay) {}

    /// @return the answer: what is done, or why it is not.
    QJsonObject Do(const QString& line) {
        const QJsonObject order = QJsonDocument::fromJson(line.toUtf8()).object();
        const QString name = order.value(QLatin1String("do")).toString();
        const QString problem = Obey(name, order);
        if (!problem.isEmpty())
            return {{QStringLiteral("refused"), problem}};
        return {{QStringLiteral("done"), name}};
    }

private:
    QString Obey(const QString& name, const QJsonObject& order) {
        Endpoint& endpoint = m_replay.TheEndpoint();
        if (name == QLatin1String("leave"))
            endpoint.Leave();
        else if (name == QLatin1String("return"))
            return endpoint.Return();
        else if (name == QLatin1String("stall"))
            endpoint.Stall();
        else if (name == QLatin1String("resume"))
            endpoint.Resume();
        else if (name == QLatin1String("lie"))
            return Lie(order.value(QLatin1String("with")).toString());
        else if (name == QLatin1String("obey"))
            m_replay.Lie(Prank::None);
        else
            return QStringLiteral("a replay cannot do \"%1\"").arg(name);
        return {};
    }

    QString Lie(const QString& name) {
        Prank prank{};
        if (!FindPrank(name, prank))
            return QStringLiteral("there is no prank \"%1\"").arg(name);
        m_replay.Lie(prank);
        return {};
    }

    Replay& m_replay;
};

/// The place of the command line, or any of this machine.
QString ReadPlace(const Options& options, LinePlace& place) {
    if (place.kind == LineKind::Serial) {
        place.path = options.listen.isEmpty() ? QString() : QFileInfo(options.listen).absoluteFilePath();
        return {};
    }
    place.host = QStringLiteral("127.0.0.1");
    place.port = 0;
    return options.listen.isEmpty() ? QString() : ReadHostAndPort(options.listen, place.host, place);
}

/// Plays until Ctrl-C and, where a program speaks to it, until that has nothing more to say.
void Play(Replay& replay, bool hearsOrders) {
    const auto input = hearsOrders && HasInputOtherSide() ? std::make_unique<InputLines>() : nullptr;
    ReplayOrders orders(replay);
    while (!Interrupt::HasCome() && !(input && input->IsOver())) {
        MainWait::Until([&] { return input && (input->HasLine() || input->IsOver()); }, kLookForInterrupt);
        while (input && input->HasLine())
            PrintJsonLine(orders.Do(input->TakeLine()));
    }
    replay.Finish();
}

} // namespace

int ReplayTraffic(const Options& options) {
    const QString name = options.arguments.first();
    QString problem;
    auto file = ReadTrafficFile(name, problem);
    if (!file)
        return Fail(options.json, kExitBadUse, problem);
    LinePlace place = file->head.device;
    problem = ReadPlace(options, place);
    if (!problem.isEmpty())
        return Fail(options.json, kExitBadUse, problem);
    const Interrupt noted;
    const ReplayTeller teller(name, options.json);
    Replay replay(std::move(*file), {options.fast, options.anyOrder}, teller.News());
    problem = replay.Open(place);
    if (!problem.isEmpty())
        return Fail(options.json, kExitBadUse, QStringLiteral("%1: %2").arg(TextOf(place), problem));
    teller.TellReady(replay.TheEndpoint());
    Play(replay, options.json);
    return replay.UnknownCount() == 0 ? kExitOk : kExitScriptFailed;
}

} // namespace stagehost

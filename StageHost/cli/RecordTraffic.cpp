#include <optional>

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include "Commands.h"
#include "ExitCodes.h"
#include "Failure.h"
#include "Interrupt.h"
#include "LineSettingsText.h"
#include "MainWait.h"
#include "NearNames.h"
#include "Output.h"
#include "Relay.h"
#include "TrafficText.h"
#include "TrafficWriter.h"

namespace stagehost {

namespace {

const QString kThisMachine = QStringLiteral("127.0.0.1");

/// "HOST:PORT" with, in front of it, "PORT:" or "HOST:PORT:" of the place to listen at.
QString ReadNetPlaces(const QString& text, RelayPlan& plan) {
    static const QRegularExpression form(QStringLiteral("^(?:(.+):)?(\\[[^\\]]*\\]:\\d+|[^:]+:\\d+)$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return QStringLiteral("\"%1\" is no [LISTEN:]HOST:PORT").arg(text);
    QString problem = ReadHostAndPort(match.captured(2), kThisMachine, plan.device);
    if (!problem.isEmpty() || match.captured(1).isEmpty())
        return problem;
    return ReadHostAndPort(match.captured(1), kThisMachine, plan.listen);
}

QString ReadDevice(const Options& options, RelayPlan& plan) {
    const QString* given[] = {&options.tcp, &options.udp, &options.serial};
    int count = 0;
    for (const LineKind kind : {LineKind::Tcp, LineKind::Udp, LineKind::Serial}) {
        if (given[static_cast<int>(kind)]->isEmpty())
            continue;
        ++count;
        plan.device.kind = plan.listen.kind = kind;
    }
    if (count != 1)
        return QStringLiteral("record needs one of --tcp, --udp and --serial");
    if (plan.device.kind != LineKind::Serial && !options.line.isEmpty())
        return QStringLiteral("--line is for a serial line");
    if (plan.device.kind != LineKind::Serial) {
        plan.listen.host = kThisMachine;
        QString problem = ReadNetPlaces(*given[static_cast<int>(plan.device.kind)], plan);
        return problem.isEmpty() && plan.device.port == 0
                   ? TextOf(plan.device) + QStringLiteral(": a device has no port 0")
                   : problem;
    }
    plan.device.path = options.serial;
    return options.line.isEmpty() ? QString() : ReadLineSettings(options.line, plan.serial);
}

QString ReadListen(const Options& options, RelayPlan& plan) {
    if (options.listen.isEmpty())
        return {};
    if (plan.listen.kind != LineKind::Serial)
        return ReadHostAndPort(options.listen, kThisMachine, plan.listen);
    plan.listen.path = QFileInfo(options.listen).absoluteFilePath();
    return {};
}

QString ReadPranks(const QString& list, std::vector<Prank>& pranks) {
    QStringList known;
    for (int number = 1; number < kPrankCount; ++number)
        known += NameOf(static_cast<Prank>(number));
    for (const QString& name : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        Prank prank{};
        if (!FindPrank(name, prank) || prank == Prank::None)
            return QStringLiteral("there is no prank \"%1\"").arg(name) + NamesInstead(name, known);
        pranks.push_back(prank);
    }
    return {};
}

QString ReadMischief(const Options& options, RelayPlan& plan) {
    if (options.mischief.isEmpty())
        return options.pranks.isEmpty() && options.oneIn.isEmpty()
                   ? QString()
                   : QStringLiteral("--pranks and --one-in need --mischief");
    MischiefPlan mischief;
    bool isSeed = false;
    mischief.seed = options.mischief.toULongLong(&isSeed);
    if (!isSeed)
        return QStringLiteral("--mischief needs a whole number, not \"%1\"").arg(options.mischief);
    bool isCount = true;
    if (!options.oneIn.isEmpty())
        mischief.oneIn = options.oneIn.toUInt(&isCount);
    if (!isCount || mischief.oneIn == 0)
        return QStringLiteral("--one-in needs a whole number from 1, not \"%1\"").arg(options.oneIn);
    plan.mischief = mischief;
    return ReadPranks(options.pranks, plan.mischief->from);
}

QString ReadPlan(const Options& options, RelayPlan& plan) {
    for (const auto read : {&ReadDevice, &ReadListen, &ReadMischief}) {
        QString problem = read(options, plan);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

/// A relay, and the file that it writes.
class Recording {
public:
    Recording(const RelayPlan& plan, bool json)
        : m_json(json)
        , m_writer({[this] { m_relay.HoldUp(false); }, [](const QString& why) { TellEnd(why); }})
        , m_relay(plan, [this](TrafficEntry entry) { Note(std::move(entry)); }) {}

    /// The file comes last: a recording that cannot begin leaves the one that is there.
    QString Open(const QString& file, const TrafficHead& head) {
        m_clock.start();
        const QString problem = m_relay.Open();
        return problem.isEmpty() ? m_writer.Open(file, head) : problem;
    }

    const Endpoint& Listener() const { return m_relay.Listener(); }

    /// @return the exit code.
    int Close() {
        m_writer.Add({m_clock.elapsed(), 0, TrafficEvent::End, Side::Program, {}});
        return m_writer.Close().isEmpty() ? kExitOk : kExitBadUse;
    }

private:
    static void TellEnd(const QString& why) {
        PrintProblem(QStringLiteral("the recording has ended: %1; everything still passes").arg(why));
    }

    void Note(TrafficEntry entry) {
        entry.at = m_clock.elapsed();
        if (entry.event == TrafficEvent::Unreachable)
            PrintProblem(QStringLiteral("the device cannot be reached: %1").arg(entry.text));
        if (!m_json && entry.event == TrafficEvent::Opened)
            PrintLine(QStringLiteral("connection %1 %2").arg(entry.connection).arg(NameOfProgram(entry.text)));
        m_writer.Add(entry);
        if (m_writer.IsFull())
            m_relay.HoldUp(true);
    }

    const bool m_json;
    QElapsedTimer m_clock;
    TrafficWriter m_writer;
    Relay m_relay;
};

void TellReady(const Options& options, const RelayPlan& plan, const Endpoint& listener) {
    if (options.json) {
        QJsonObject ready = listener.PlaceJson();
        ready.insert(QStringLiteral("ready"), true);
        return PrintJsonLine(ready);
    }
    PrintLine(QStringLiteral("%1 leads to %2; what goes by is written into %3. Ctrl-C ends it.")
                  .arg(TextOf(listener.Place()), TextOf(plan.device), options.arguments.first()));
}

} // namespace

int RecordTraffic(const Options& options) {
    RelayPlan plan;
    const QString wrong = ReadPlan(options, plan);
    if (!wrong.isEmpty())
        return Fail(options.json, kExitBadUse, wrong);
    const Interrupt noted;
    Recording recording(plan, options.json);
    const QString began = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    const QString problem = recording.Open(options.arguments.first(), {plan.device, options.line, began});
    if (!problem.isEmpty())
        return Fail(options.json, kExitBadUse, problem);
    TellReady(options, plan, recording.Listener());
    MainWait::ForInterrupt();
    return recording.Close();
}

} // namespace stagehost

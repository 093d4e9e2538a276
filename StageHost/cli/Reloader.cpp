#include "Reloader.h"

#include <algorithm>

#include <QDateTime>
#include <QFileInfo>

#include "BorderText.h"
#include "Colors.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "Output.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookAtFiles(100); // of the computer
constexpr int kLooksUntilStill = 2;                    // an editor writes in several steps
constexpr int kLooksForGone = 10; // one that replaces a file may take it away or empty it for a while

/// Sizes and times of files; any way of saving changes one of them.
QByteArray StateOf(const QStringList& files) {
    QByteArray state;
    for (const QString& file : files) {
        const QFileInfo info(file);
        state += QByteArray::number(info.exists() ? info.size() : -1) + ' ' +
                 QByteArray::number(info.lastModified().toMSecsSinceEpoch()) + ' ' +
                 QByteArray::number(info.metadataChangeTime().toMSecsSinceEpoch()) + '\n';
    }
    return state;
}

bool IsGone(const QStringList& files) {
    return std::any_of(files.begin(), files.end(), [](const QString& file) { return QFileInfo(file).size() == 0; });
}

} // namespace

Reloader::Reloader(Session& session, const Show& show, const Options& options)
    : m_session(session)
    , m_show(show)
    , m_options(options) {
    WatchDevices();
    WatchPeers();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        Look();
        KeepPace(m_timer, kLookAtFiles);
    });
    m_timer.start(kLookAtFiles);
}

void Reloader::WatchDevices() {
    for (const auto& device : m_show.devices) {
        const QString& file = device.driverFile.isEmpty() ? device.scriptFile : device.driverFile;
        if (file.isEmpty())
            continue;
        Watched watched{&device, {{m_show.Path(file)}, {}, {}}, {}};
        WholeScript script;
        if (!ReadWhole(m_show.Path(file), m_options.timeout, script) && device.setup.isEmpty())
            watched.text = script.text;
        if (!script.files.isEmpty())
            watched.files.paths = script.files;
        watched.files.settled = StateOf(watched.files.paths);
        m_watched.push_back(watched);
    }
}

void Reloader::WatchPeers() {
    for (const auto& peer : m_show.peers) {
        const QStringList paths{m_show.Path(peer.file)};
        if (peer.kind == ShowPeer::Kind::Script)
            m_peers.push_back({&peer, {paths, StateOf(paths), {}}});
    }
}

void Reloader::Look() {
    if (m_isBusy || m_session.IsBusy() || Interrupt::HasCome())
        return;
    m_isBusy = true;
    for (Watched& watched : m_watched) {
        if (HasSettled(watched.files))
            Reload(watched);
    }
    for (WatchedPeer& watched : m_peers) {
        if (HasSettled(watched.files))
            Reload(watched);
    }
    m_isBusy = false;
}

/// @return whether the files have changed and stand still.
bool Reloader::HasSettled(Files& files) {
    const QByteArray state = StateOf(files.paths);
    files.looks = state == files.seen ? files.looks + 1 : 1;
    files.seen = state;
    if (state == files.settled || files.looks < (IsGone(files.paths) ? kLooksForGone : kLooksUntilStill))
        return false;
    files.settled = state;
    return true;
}

void Reloader::Reload(const WatchedPeer& watched) {
    const QString& name = watched.described->name;
    QString result;
    const auto failure = m_session.Work({name, QStringLiteral("load"), {}, {}, {}}, &result);
    PrintProblem(
        failure ? failure->text
                : QStringLiteral("reloaded peer %1 (%2)").arg(name, QFileInfo(watched.files.paths.first()).fileName()));
}

void Reloader::Reload(Watched& watched) {
    const QString& name = watched.described->name;
    DriverEdition edition;
    auto failure = ReadDriver(m_show, watched.files.paths.first(), m_options.timeout, edition);
    if (edition.files != watched.files.paths) {
        watched.files.paths = edition.files;
        watched.files.settled = StateOf(edition.files);
    }
    QString setup;
    if (!failure && edition.text == watched.text)
        return;
    if (!failure)
        failure = SetupOf(watched, edition, setup);
    if (failure)
        return GoOn(name, failure);
    const Device* device = m_session.FindDevice(name);
    QString before;
    failure = SetupOfDevice(*device, before);
    if (failure)
        return GoOn(name, failure);
    failure = Run(watched, setup, edition.text);
    if (!failure) {
        watched.text = edition.text;
        PrintProblem(QStringLiteral("reloaded %1 (%2)").arg(name, QFileInfo(watched.files.paths.first()).fileName()));
        return m_session.CheckStored();
    }
    if (Interrupt::HasCome())
        return;
    GoOn(name, failure);
    if (const auto again = Run(watched, before, watched.text))
        PrintProblem(again->text);
}

/// The setup for an edition, with what the user has entered.
MaybeFailure Reloader::SetupOf(const Watched& watched, const DriverEdition& edition, QString& setup) {
    const QString& name = watched.described->name;
    const Device& device = *m_session.FindDevice(name);
    const bool isDriver = !watched.described->driverFile.isEmpty();
    if (!isDriver && !m_session.Settings().HasAny(name))
        return SetupOfDevice(device, setup);
    if (auto failure = m_session.SetupToKeep(device, setup))
        return failure;
    setup = MakeSetupText(setup, isDriver ? edition : SettingsAlone(edition)).value_or(setup);
    const QString problem = m_session.Settings().PutInto(name, setup);
    return problem.isEmpty() ? std::nullopt : MaybeFailure(Failure{kExitBadUse, problem});
}

MaybeFailure Reloader::Run(const Watched& watched, const QString& setup, const QString& text) {
    const QString& name = watched.described->name;
    if (auto failure = m_session.Restart(name, ToBorderText(setup)))
        return failure;
    Device& device = *m_session.FindDevice(name);
    return watched.described->driverFile.isEmpty() ? m_session.LoadText(device, text) : std::nullopt;
}

void Reloader::GoOn(const QString& device, const MaybeFailure& failure) {
    PrintProblem(OnErrors(Ink::Bad, failure->text));
    PrintPlace(failure->place);
    PrintProblem(QStringLiteral("%1 goes on with the edition that it has").arg(device));
}

} // namespace stagehost

#include "PtyEndpoint.h"

#include <chrono>
#include <utility>

#include <QFile>
#include <QFileInfo>

#include "PseudoTerminal.h"
#include "StreamChannel.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookAgain(1000);

} // namespace

PtyEndpoint::PtyEndpoint(EndpointNews& news)
    : Endpoint(news) {
    m_lookAgain.setSingleShot(true);
    m_lookAgain.setInterval(kLookAgain);
    QObject::connect(&m_lookAgain, &QTimer::timeout, &m_lookAgain, [this] { LookAgain(); });
}

PtyEndpoint::~PtyEndpoint() {
    CloseAll();
    Drop();
}

QString PtyEndpoint::Open(const LinePlace& place) {
    m_place = place;
    if (place.path.isEmpty()) {
        m_folder = std::make_unique<PassingFolder>();
        m_place.path = m_folder->FilePath(QStringLiteral("serial"));
    }
    return DoReturn();
}

QString PtyEndpoint::DoReturn() {
    std::string name;
    std::string problem;
    m_ours = OpenPseudoTerminal(name, problem);
    if (m_ours < 0)
        return QString::fromStdString(problem);
    m_terminal = QString::fromStdString(name);
    QString taken = ClearPlace();
    if (!taken.isEmpty()) {
        Drop();
        return taken;
    }
    QFile terminal(m_terminal);
    if (!terminal.link(m_place.path)) {
        Drop();
        return terminal.errorString();
    }
    m_watch = WatchOpens(name, problem);
    if (m_watch < 0) {
        Drop();
        return QString::fromStdString(problem);
    }
    m_opens = std::make_unique<QSocketNotifier>(m_watch, QSocketNotifier::Read);
    QObject::connect(m_opens.get(), &QSocketNotifier::activated, m_opens.get(), [this] {
        ForgetOpens(m_watch);
        LookForPrograms();
    });
    return {};
}

/// A link to a pseudo-terminal that nobody has, or that has become ours, is of a run that could not remove it.
/// Everything else is somebody's. @return what is there, empty for nothing.
QString PtyEndpoint::ClearPlace() const {
    const QString target = QFile::symLinkTarget(m_place.path);
    if (target.isEmpty() || QFileInfo(target).path() != QFileInfo(m_terminal).path())
        return {};
    if (target != m_terminal && QFileInfo::exists(target))
        return QStringLiteral("leads to %1, which is in use").arg(target);
    QFile::remove(m_place.path);
    return {};
}

/// Whether a program has come; that one has gone is told by its line.
void PtyEndpoint::LookForPrograms() {
    if (m_line != 0 || !m_letsIn || m_ours < 0 || !IsOpenByOthers(m_ours))
        return;
    const int second = SecondDescriptor(m_ours);
    if (second < 0)
        return m_lookAgain.start();
    m_line = NextLine();
    Add(StreamChannel::OverTerminal(second), {});
}

void PtyEndpoint::LineIsOver(LineId, bool isClosedHere) {
    m_line = 0;
    if (isClosedHere) {
        Drop();
        LookAgain();
    } else if (m_ours >= 0) {
        DropUnread(m_ours);
        LookForPrograms();
    }
}

/// Nothing tells when a descriptor is left again.
void PtyEndpoint::LookAgain() {
    if (m_ours < 0 && !DoReturn().isEmpty())
        m_lookAgain.start();
    LookForPrograms();
}

void PtyEndpoint::LetIn(bool lets) {
    m_letsIn = lets;
    LookForPrograms();
}

void PtyEndpoint::Drop() {
    m_lookAgain.stop();
    if (m_opens) {
        m_opens->setEnabled(false);
        m_opens.release()->deleteLater(); // perhaps from inside its own signal
    }
    CloseLine(std::exchange(m_watch, -1));
    if (m_ours >= 0 && QFile::symLinkTarget(m_place.path) == m_terminal)
        QFile::remove(m_place.path);
    CloseLine(std::exchange(m_ours, -1));
}

void PtyEndpoint::DoLeave() {
    Drop();
}

} // namespace stagehost

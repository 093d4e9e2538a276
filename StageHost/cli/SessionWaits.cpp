#include "ConditionWatch.h"
#include "ExitCodes.h"
#include "JsonNode.h"
#include "MainWait.h"
#include "Session.h"
#include "ShowClock.h"
#include "ValueCheck.h"

/// The steps of a show that send no command: what peers are told to do, waits and pauses.

namespace stagehost {

MaybeFailure Session::Work(const PeerDeed& deed, QString* result) {
    Peer* peer = m_peers.Find(deed.peer);
    if (peer == nullptr)
        return NoPeer(deed.peer);
    ++m_calls;
    const QString problem = peer->Do(deed, AnswerTime(m_options.timeout), result);
    --m_calls;
    if (problem.isEmpty())
        return std::nullopt;
    QStringList lines = problem.split(QStringLiteral("\n    "));
    return Failure{Interrupt::HasCome() ? kExitNoAnswer : kExitScriptFailed,
                   QStringLiteral("peer %1: %2").arg(deed.peer, lines.takeFirst()), lines};
}

MaybeFailure Session::WaitForFrame(const PeerReceipt& receipt, std::chrono::milliseconds limit) {
    Peer* peer = m_peers.Find(receipt.peer);
    if (peer == nullptr)
        return NoPeer(receipt.peer);
    const QString problem = peer->WaitFor(receipt, limit);
    return problem.isEmpty() ? MaybeFailure()
                             : Failure{kExitNoAnswer, QStringLiteral("peer %1: %2").arg(receipt.peer, problem)};
}

MaybeFailure Session::WaitFor(const ShowWait& wait) {
    const auto limit = wait.within ? std::chrono::milliseconds(*wait.within) : AnswerTime(m_options.timeout);
    if (wait.receipt)
        return WaitForFrame(*wait.receipt, limit);
    const QString never = ValueCheck(m_show).WhyNeverHolds(wait.until);
    if (!never.isEmpty())
        return Failure{kExitBadUse, Quoted(wait.until.name) + QLatin1Char(' ') + never};
    const ConditionWatch watch(*m_host, wait.until);
    if (watch.IsUnknown())
        return NoVariable(wait.until.name);
    if (!watch.Problem().isEmpty())
        return Failure{kExitBadUse, watch.Problem()};
    if (MainWait::UntilInterrupted([&] { return watch.Holds(); }, limit))
        return std::nullopt;
    const QString state =
        wait.until.comparison == Comparison::Is
            ? QStringLiteral("\"%1\" is \"%2\", not \"%3\"").arg(wait.until.name, watch.Now(), wait.until.value)
            : QStringLiteral("\"%1\" is \"%2\", and should be: %3")
                  .arg(wait.until.name, watch.Now(), wait.until.Text());
    if (Interrupt::HasCome())
        return Failure{kExitNoAnswer, QStringLiteral("interrupted while ") + state};
    return Failure{kExitNoAnswer, QStringLiteral("%1, after %2 ms").arg(state).arg(limit.count())};
}

MaybeFailure Session::Pause(std::chrono::milliseconds time) {
    MainWait::UntilInterrupted([] { return false; }, time);
    return Interrupt::HasCome() ? MaybeFailure(Failure{kExitNoAnswer, QStringLiteral("interrupted in a pause")})
                                : std::nullopt;
}

} // namespace stagehost

#pragma once

#include <memory>
#include <vector>

#include "Peer.h"
#include "Show.h"

namespace stagehost {

/// The peers of a show's devices: started before the devices, ended behind them. Their standard input stays open as
/// long as this process lives, so a peer that reads it sees the end also where nobody could tell it.   [host main]
class Peers {
public:
    /// @param tell takes lines for the user.
    explicit Peers(Peer::Tell tell);
    ~Peers() { End(); }

    /// Starts all of them and waits until they are ready: those that a setting, a port or a step names, and scripts
    /// and replays, have to be; other programs may take their time. @param show receives, in the place of what names a
    /// peer, where it is reached. @return what is wrong with the first; empty when they run.
    QString Start(Show& show);

    /// The peer of that name, or null.
    Peer* Find(const QString& name) const;

    /// Asks those that run to end, and ends those that do not.
    void End();

private:
    QString StartOne(const Show& show, const ShowPeer& described);
    QString WaitUntilReady(const Show& show) const;
    QString Resolve(Show& show) const;
    QString TextOf(const PeerAddress& address, const QString& taker, QString& text) const;

    const Peer::Tell m_tell;
    std::vector<std::unique_ptr<Peer>> m_running;
};

} // namespace stagehost

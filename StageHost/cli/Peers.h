#pragma once

#include <memory>
#include <vector>

#include <QProcess>

#include "Show.h"

namespace stagehost {

/// The programs that a show names as peers of its devices: started before the devices, ended behind them. Their
/// standard input stays open as long as this process lives, so a peer that reads it sees the end also where nobody
/// could tell it. The first line that one prints says that it is ready, what else it prints is dropped, and what it
/// complains of stands on standard error.   [host main]
class Peers {
public:
    ~Peers() { End(); }

    /// Starts all of them. @return what is wrong with the first that cannot be started; empty when they run.
    QString Start(const Show& show);

    /// Asks those that run to end, and ends those that do not.
    void End();

private:
    void WaitUntilReady();
    QString StartOne(const Show& show, const ShowPeer& peer);

    std::vector<std::unique_ptr<QProcess>> m_running;
};

} // namespace stagehost

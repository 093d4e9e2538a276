#pragma once

#include <vector>

#include <QTimer>

#include "DriverSetup.h"
#include "Session.h"

namespace stagehost {

/// Looks at the files of the show's drivers and scripts, and at those of its peers, while the show runs. A device whose
/// files have been saved runs the new edition: it is stopped, so that the old one's timers and sockets are gone, gets
/// its setup with the new script and is started. Settings, and the values that its variables have, stay. An edition
/// that does not load, or fails as it starts, leaves the old one running. A peer goes on at the same places. All is
/// told on standard error.
///
/// Files are looked at by their times, ten times a second, and count once they stand still: that sees every way of
/// saving, also on file systems that tell nobody of changes. A command under way is waited for.   [host main]
class Reloader {
public:
    /// @param session, show, options outlive the object; the devices have been made.
    Reloader(Session& session, const Show& show, const Options& options);

private:
    /// The files of a device or a peer.
    struct Files {
        QStringList paths;
        QByteArray settled; ///< the state of the files that has been seen to
        QByteArray seen;    ///< their state at the last look
        int looks = 0;      ///< how often they were seen in that state
    };
    struct Watched {
        const ShowDevice* described;
        Files files;
        QString text; ///< the script that it runs; null when that is not known
    };
    struct WatchedPeer {
        const ShowPeer* described;
        Files files;
    };

    void WatchDevices();
    void WatchPeers();
    void Look();
    static bool HasSettled(Files& files);
    void Reload(Watched& watched);
    void Reload(const WatchedPeer& watched);
    MaybeFailure SetupOf(const Watched& watched, const DriverEdition& edition, QString& setup);
    MaybeFailure Run(const Watched& watched, const QString& setup, const QString& text);
    static void GoOn(const QString& device, const MaybeFailure& failure);

    Session& m_session;
    const Show& m_show;
    const Options& m_options;
    std::vector<Watched> m_watched;
    std::vector<WatchedPeer> m_peers;
    QTimer m_timer;
    bool m_isBusy = false; ///< a reload is under way, and lets events through
};

} // namespace stagehost

#pragma once

#include "JsonNode.h"
#include "Show.h"

namespace stagehost {

/// Reads what a show file says of its peers: what they are, where they are named in the place of a port, what steps
/// have them do.   [host main]
class PeersReader {
public:
    /// @param show receives the peers; must outlive the reader.
    explicit PeersReader(Show& show)
        : m_show(show) {}

    void Read(const JsonNode& peers);

    /// An object that names a peer where a text could stand.
    PeerAddress ReadAddress(const JsonNode& node) const;

    /// The keys of a step that works a peer.
    PeerDeed ReadDeed(const JsonNode& step) const;

    /// The keys of a wait for what a peer receives.
    PeerReceipt ReadReceipt(const JsonNode& wait) const;

private:
    void ReadPeer(const JsonNode& node);
    void ReadRun(const JsonNode& run, ShowPeer& peer) const;
    void ReadFile(const JsonNode& file, ShowPeer& peer) const;
    static void ReadOptions(const JsonNode& node, ShowPeer& peer);
    QString ReadName(const JsonNode& node) const;

    Show& m_show;
};

} // namespace stagehost

#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QJsonArray>
#include <QString>
#include <QStringList>

namespace stagehost {

/// A process that stands for the other end of a device's line, and runs as long as the show does: a program, or this
/// program with a script that plays the device or with a file of what was said on a line once.
struct ShowPeer {
    enum class Kind { Program, Script, Replay };

    QString name;
    Kind kind = Kind::Program;
    QStringList run; ///< of a program: it and its words; one with a "/" is a file of the show's folder, or absolute
    QString file;    ///< of the others, relative to the show file
    std::vector<std::pair<QString, QString>> options; ///< of a script: names and texts
    std::optional<int> seed;                          ///< of a script's chance
    bool isFast = false;                              ///< of a replay: it answers at once
    bool isOrdered = false;                           ///< of a replay: requests come as they came then
};

/// Where a peer is reached, in the place of a text that a show would have to fix.
struct PeerAddress {
    /// What of it; kPeerParts names them.
    enum class Part { Host, Port, Path, Address, Url };

    QString peer;
    QString endpoint;         ///< empty for a peer that has one
    std::optional<Part> part; ///< what fits the taker when it is not given
};

struct PeerPartName {
    const char* name;
    PeerAddress::Part part;
};

inline constexpr PeerPartName kPeerParts[] = {
    {"host", PeerAddress::Part::Host},       {"port", PeerAddress::Part::Port}, {"path", PeerAddress::Part::Path},
    {"address", PeerAddress::Part::Address}, {"url", PeerAddress::Part::Url},
};

/// What a peer can be told to do, beside calls.
inline constexpr const char* kPeerDeeds[] = {"leave", "return", "stall", "resume", "lie", "obey"};

/// How a peer can lie.
inline constexpr const char* kPeerLies[] = {"late", "cut", "repeat", "reset", "silence", "nonsense"};

/// What a step has a peer do.
struct PeerDeed {
    QString peer;
    QString deed;     ///< one of kPeerDeeds; empty for a call
    QString with;     ///< of "lie": one of kPeerLies
    QString function; ///< of the peer's script, that is called
    QJsonArray arguments;
};

/// A frame that a peer has to receive, or one like it.
struct PeerReceipt {
    QString peer;
    QString text;
    bool isPattern = false; ///< the text is a regular expression that finds something in the frame
};

} // namespace stagehost

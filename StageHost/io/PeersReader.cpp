#include "PeersReader.h"

#include <QFileInfo>

#include "BorderText.h"
#include "Condition.h"
#include "NameCheck.h"
#include "NearNames.h"
#include "ShowKeys.h"

namespace stagehost {

namespace {

/// One of some words. @return empty for another one, about which it complains.
template <std::size_t Count>
QString ReadWord(const JsonNode& node, const char* const (&words)[Count]) {
    QString word = node.Text();
    QStringList known;
    for (const char* one : words)
        known += QLatin1String(one);
    if (known.contains(word))
        return word;
    if (node.IsText())
        node.Complain(QStringLiteral("there is no ") + Quoted(word) + NamesInstead(word, known));
    return {};
}

/// @return false for what is missing.
bool ReadTruth(const JsonNode& node) {
    if (!node.IsMissing() && !node.IsTrue() && !node.IsFalse())
        node.Complain(QStringLiteral("expected true or false"));
    return node.IsTrue();
}

struct KeyOfAKind {
    const char* key;
    ShowPeer::Kind kind;
};

constexpr KeyOfAKind kKeysOfAKind[] = {
    {"options", ShowPeer::Kind::Script},
    {"seed", ShowPeer::Kind::Script},
    {"fast", ShowPeer::Kind::Replay},
    {"ordered", ShowPeer::Kind::Replay},
};

} // namespace

void PeersReader::Read(const JsonNode& peers) {
    peers.ForEach([this](const JsonNode& node) { ReadPeer(node); });
}

void PeersReader::ReadPeer(const JsonNode& node) {
    if (!node.ExpectObject(kPeerKeys))
        return;
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    ShowPeer peer;
    peer.name = member("name").Text();
    CheckName(member("name"), ToBorderText(peer.name), "a peer");
    if (m_show.FindPeer(peer.name) != nullptr)
        member("name").Complain(QStringLiteral("another peer has this name"));
    const auto given = [&](const char* name) { return member(name).IsMissing() ? 0 : 1; };
    if (given("run") + given("script") + given("replay") != 1)
        node.Complain(QStringLiteral("expected one of \"script\", \"replay\" and \"run\""));
    else if (given("run") == 1)
        ReadRun(member("run"), peer);
    else {
        peer.kind = given("script") == 1 ? ShowPeer::Kind::Script : ShowPeer::Kind::Replay;
        ReadFile(member(given("script") == 1 ? "script" : "replay"), peer);
    }
    ReadOptions(node, peer);
    m_show.peers.push_back(peer);
}

void PeersReader::ReadRun(const JsonNode& run, ShowPeer& peer) const {
    run.ForEach([&](const JsonNode& word) { peer.run += word.Scalar(); });
    const QString program = peer.run.value(0);
    if (program.isEmpty())
        run.Complain(QStringLiteral("expected a program and its words"));
    else if (program.contains(QLatin1Char('/')) && !QFileInfo(m_show.Path(program)).isFile())
        run.Complain(QStringLiteral("there is no file ") + Quoted(program));
}

void PeersReader::ReadFile(const JsonNode& file, ShowPeer& peer) const {
    peer.file = file.Text();
    if (file.IsText() && !QFileInfo(m_show.Path(peer.file)).isFile())
        file.Complain(QStringLiteral("there is no file ") + Quoted(peer.file));
}

void PeersReader::ReadOptions(const JsonNode& node, ShowPeer& peer) {
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    member("options").ExpectObjectOfAny();
    for (const QString& name : member("options").MemberNames())
        peer.options.emplace_back(name, member("options").Member(name).Scalar());
    peer.seed = member("seed").Whole(0);
    peer.isFast = ReadTruth(member("fast"));
    peer.isOrdered = ReadTruth(member("ordered"));
    for (const auto& [key, kind] : kKeysOfAKind) {
        if (!member(key).IsMissing() && peer.kind != kind)
            member(key).Complain(QStringLiteral("is for a \"%1\" only")
                                     .arg(QLatin1String(kind == ShowPeer::Kind::Script ? "script" : "replay")));
    }
}

QString PeersReader::ReadName(const JsonNode& node) const {
    QStringList known;
    for (const ShowPeer& peer : m_show.peers)
        known += peer.name;
    QString name = node.Text();
    if (m_show.FindPeer(name) == nullptr)
        node.Complain(QStringLiteral("there is no peer ") + Quoted(name) + NamesInstead(name, known));
    return name;
}

PeerAddress PeersReader::ReadAddress(const JsonNode& node) const {
    PeerAddress address;
    if (!node.ExpectObject(kPeerAddressKeys))
        return address;
    address.peer = ReadName(node.Member(QStringLiteral("peer")));
    address.endpoint = node.Member(QStringLiteral("endpoint")).Text();
    const JsonNode of = node.Member(QStringLiteral("of"));
    QStringList known;
    for (const PeerPartName& row : kPeerParts) {
        known += QLatin1String(row.name);
        if (of.PlainText() == known.last())
            address.part = row.part;
    }
    if (!of.IsMissing() && !address.part)
        of.Complain(QStringLiteral("a peer has no ") + Quoted(of.Text()) + NamesInstead(of.PlainText(), known));
    return address;
}

PeerDeed PeersReader::ReadDeed(const JsonNode& step) const {
    const auto member = [&step](const char* name) { return step.Member(QLatin1String(name)); };
    PeerDeed deed;
    deed.peer = ReadName(member("peer"));
    const bool calls = !member("call").IsMissing();
    if (calls == !member("do").IsMissing()) {
        step.Complain(QStringLiteral("expected one of \"do\" and \"call\" for the peer"));
        return deed;
    }
    if (calls) {
        deed.function = member("call").Text();
        member("args").ForEach([&](const JsonNode& argument) { deed.arguments.append(argument.ScalarValue()); });
        const ShowPeer* peer = m_show.FindPeer(deed.peer);
        if (peer != nullptr && peer->kind != ShowPeer::Kind::Script)
            member("call").Complain(QStringLiteral("the peer has no \"script\""));
    } else {
        deed.deed = ReadWord(member("do"), kPeerDeeds);
    }
    if (deed.deed == QLatin1String("lie"))
        deed.with = ReadWord(member("with"), kPeerLies);
    if (deed.deed == QLatin1String("lie") && member("with").IsMissing())
        step.Complain(QStringLiteral("\"lie\" needs a \"with\""));
    else if (deed.deed != QLatin1String("lie") && !member("with").IsMissing())
        member("with").Complain(QStringLiteral("is for \"lie\" only"));
    for (const char* name : {"args", "expect"}) {
        if (!calls && !member(name).IsMissing())
            member(name).Complain(QStringLiteral("needs a \"call\""));
    }
    return deed;
}

PeerReceipt PeersReader::ReadReceipt(const JsonNode& wait) const {
    const JsonNode received = wait.Member(QStringLiteral("received"));
    const JsonNode matches = wait.Member(QStringLiteral("matches"));
    PeerReceipt receipt{ReadName(wait.Member(QStringLiteral("peer"))), {}, received.IsMissing()};
    if (received.IsMissing() == matches.IsMissing())
        wait.Complain(QStringLiteral("expected one of \"received\" and \"matches\" for the peer"));
    for (const char* name : {"until", "variable", "value"}) {
        if (!wait.Member(QLatin1String(name)).IsMissing())
            wait.Member(QLatin1String(name)).Complain(QStringLiteral("is for a wait without a \"peer\""));
    }
    receipt.text = receipt.isPattern ? matches.Text() : received.Scalar();
    if (receipt.isPattern)
        matches.ComplainUnlessEmpty(WhyNoCondition({receipt.peer, Comparison::Matches, receipt.text}));
    return receipt;
}

} // namespace stagehost

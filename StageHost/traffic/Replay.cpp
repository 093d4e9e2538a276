#include "Replay.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "TrafficText.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kRestComes(500);

PrankedPiece::End EndOf(TrafficAnswer::What what) {
    switch (what) {
    case TrafficAnswer::What::End:
        return PrankedPiece::End::HalfClose;
    case TrafficAnswer::What::Close:
        return PrankedPiece::End::Close;
    case TrafficAnswer::What::Reset:
        return PrankedPiece::End::Reset;
    case TrafficAnswer::What::Say:
        break;
    }
    return PrankedPiece::End::None;
}

} // namespace

Replay::Replay(TrafficFile file, ReplayPlan plan, ReplayNews news)
    : m_file(std::move(file))
    , m_plan(plan)
    , m_news(std::move(news))
    , m_endpoint(Endpoint::Make(m_file.head.device.kind, *this)) {
    GatherRequests();
}

Replay::~Replay() {
    for (const auto& [line, caller] : m_callers)
        caller.way->Stop();
}

void Replay::GatherRequests() {
    for (const TrafficTalk& talk : m_file.talks) {
        for (const TrafficExchange& exchange : talk.exchanges) {
            const std::size_t number = NumberOf(exchange.request);
            m_known[number].turns.push_back(m_all.size());
            m_all.push_back({&exchange, number});
        }
    }
    if (m_known.empty())
        return;
    m_terminator = m_known.front().request->LastByte();
    for (const Known& known : m_known)
        m_terminator = known.request->LastByte() == m_terminator ? m_terminator : -1;
}

/// @return the place in m_known of a request; one that is new is known from now on.
std::size_t Replay::NumberOf(const TrafficPattern& request) {
    const bool isMarked = request.HasMarks();
    const std::size_t behind = m_known.size();
    const std::size_t number = isMarked ? m_marked.try_emplace(request.ForPeople(), behind).first->second
                                        : m_plain.try_emplace(request.Filled({}), behind).first->second;
    if (number < behind)
        return number;
    m_known.push_back({&request, {}});
    if (isMarked)
        m_markedInOrder.push_back(number);
    return number;
}

void Replay::Opened(LineId line, const QString& who) {
    Caller& caller = m_callers[line];
    if (!m_file.talks.empty())
        caller.talk = &m_file.talks.at(static_cast<std::size_t>(line - 1) % m_file.talks.size());
    caller.quiet.reset(new QTimer);
    caller.quiet->setSingleShot(true);
    QObject::connect(caller.quiet.get(), &QTimer::timeout, caller.quiet.get(), [this, line] {
        LeaveOut(line, m_callers[line], false);
        TakeRequests(line);
    });
    caller.way = Passage::To({[this, line](const QByteArray& bytes) {
                                  m_endpoint->Send(line, bytes);
                                  m_news.said(line, bytes);
                              },
                              [this, line](PrankedPiece::End end) { End(line, end); }});
    m_news.opened(line, who);
    if (caller.talk != nullptr)
        Answer(line, caller, caller.talk->greeting);
}

void Replay::Came(LineId line, const QByteArray& bytes) {
    const auto found = m_callers.find(line);
    if (found == m_callers.end())
        return;
    found->second.quiet->stop();
    found->second.waiting += bytes;
    TakeRequests(line);
}

/// An answer may end the connection.
void Replay::TakeRequests(LineId line) {
    for (;;) {
        const auto found = m_callers.find(line);
        if (found == m_callers.end() || found->second.waiting.isEmpty() || !TakeOne(line, found->second))
            return;
    }
}

/// @return whether there may be another one behind it.
bool Replay::TakeOne(LineId line, Caller& caller) {
    const Finding finding = m_plan.anyOrder ? FindInAnyOrder(caller) : FindInOrder(caller);
    if (finding.exchange == nullptr) {
        if (finding.mayBecome)
            return false;
        LeaveOut(line, caller, true);
        return !caller.quiet->isActive();
    }
    const QByteArray bytes = caller.waiting.left(finding.size);
    if (!m_plan.anyOrder) {
        const auto place = static_cast<std::size_t>(finding.exchange - caller.talk->exchanges.data());
        if (place != caller.next)
            TellUnknown(line, caller, bytes);
        caller.next = place + 1;
    }
    caller.waiting.remove(0, finding.size);
    m_news.received(line, bytes, finding.exchange->line);
    Answer(line, caller, finding.exchange->answers);
    return true;
}

bool Replay::Try(const TrafficPattern& request, Caller& caller, Finding& finding) const {
    const bool isDatagram = m_file.head.device.kind == LineKind::Udp;
    FreePlaces places = caller.places;
    const TrafficPattern::Match match = request.Fits(caller.waiting, places);
    const bool isWhole =
        match.kind == TrafficPattern::Match::Whole && (!isDatagram || match.size == caller.waiting.size());
    finding.mayBecome = finding.mayBecome || (match.kind == TrafficPattern::Match::Begins && !isDatagram);
    if (!isWhole)
        return false;
    finding.size = match.size;
    caller.places = places;
    return true;
}

/// The one that is expected; otherwise the next one of them that fits.
Replay::Finding Replay::FindInOrder(Caller& caller) const {
    Finding finding;
    if (caller.talk == nullptr)
        return finding;
    const auto& exchanges = caller.talk->exchanges;
    for (std::size_t place = caller.next; place < exchanges.size(); ++place) {
        if (Try(exchanges[place].request, caller, finding)) {
            finding.exchange = &exchanges[place];
            return finding;
        }
        if (finding.mayBecome)
            return finding;
    }
    return finding;
}

/// The longest that fits: one request may be the begin of another. Of two that are as long it is the later one of the
/// file; a request of no bytes never comes.
Replay::Finding Replay::FindInAnyOrder(Caller& caller) {
    Finding best;
    std::size_t longest = 0;
    const auto consider = [&](std::size_t number) {
        Finding finding;
        const bool fits = Try(*m_known[number].request, caller, finding) && finding.size > 0;
        best.mayBecome = best.mayBecome || finding.mayBecome;
        if (fits && std::tie(finding.size, number) >= std::tie(best.size, longest)) {
            best.size = finding.size;
            longest = number;
        }
    };
    if (const auto plain = LongestPlain(caller.waiting))
        consider(*plain);
    for (const std::size_t number : m_markedInOrder)
        consider(number);
    best.mayBecome = best.mayBecome || BeginsPlain(caller.waiting);
    if (best.size > 0)
        best.exchange = TakeTurn(m_known[longest]);
    return best;
}

/// The longest request without marks that these bytes begin with: a place in m_known. All that they begin with is
/// sorted before them. Where the last request before them is not it, a shorter one lies within what both share.
std::optional<std::size_t> Replay::LongestPlain(QByteArray bytes) const {
    while (!bytes.isEmpty()) {
        const auto behind = m_plain.upper_bound(bytes);
        if (behind == m_plain.begin())
            return std::nullopt;
        const auto& [request, number] = *std::prev(behind);
        if (bytes.startsWith(request))
            return request.isEmpty() ? std::nullopt : std::optional(number);
        const auto differs = std::mismatch(bytes.cbegin(), bytes.cend(), request.cbegin(), request.cend());
        bytes.truncate(static_cast<int>(differs.first - bytes.cbegin()));
    }
    return std::nullopt;
}

/// Whether these bytes, with more behind them, may become a request without marks.
bool Replay::BeginsPlain(const QByteArray& bytes) const {
    const auto behind = m_plain.upper_bound(bytes);
    return m_file.head.device.kind != LineKind::Udp && behind != m_plain.end() && behind->first.startsWith(bytes);
}

const TrafficExchange* Replay::TakeTurn(Known& known) {
    if (known.next < known.turns.size() && !IsTooEarly(known))
        ++known.next;
    Place& place = m_all[known.turns[known.next - 1]];
    place.wasPlayed = true;
    return place.exchange;
}

/// Whether a rarer request that has not come yet stands between the last answer and the next. Goes on where it stopped
/// the last time.
bool Replay::IsTooEarly(Known& known) const {
    if (known.next == 0)
        return false;
    std::size_t& place = known.cleared; // what has been played stays so
    for (place = std::max(place, known.turns[known.next - 1]); place < known.turns[known.next]; ++place) {
        const bool isRarer = m_known[m_all[place].known].turns.size() < known.turns.size();
        if (isRarer && !m_all[place].wasPlayed)
            return true;
    }
    return false;
}

/// Drops what is not known, up to the end of it as far as that can be told.
/// @param waits whether the rest of it may still come.
void Replay::LeaveOut(LineId line, Caller& caller, bool waits) {
    int size = caller.waiting.size();
    if (m_file.head.device.kind != LineKind::Udp) {
        const int end = m_terminator < 0 ? -1 : caller.waiting.indexOf(static_cast<char>(m_terminator));
        if (end < 0 && waits)
            return caller.quiet->start(kRestComes);
        size = end < 0 ? size : end + 1;
    }
    if (size == 0)
        return;
    TellUnknown(line, caller, caller.waiting.left(size));
    caller.waiting.remove(0, size);
}

void Replay::TellUnknown(LineId line, const Caller& caller, const QByteArray& bytes) {
    ++m_unknown;
    const Known* nearest = Nearest(bytes);
    m_news.unknown(line, bytes, nearest == nullptr ? QString() : nearest->request->ForPeople(),
                   nearest == nullptr ? 0 : m_all[nearest->turns.front()].exchange->line, Expected(caller));
}

const Replay::Known* Replay::Nearest(const QByteArray& bytes) {
    for (std::size_t place = m_texts.Count(); place < m_known.size(); ++place) // nobody needs them before
        m_texts.Add(m_known[place].request->ForPeople());
    const std::size_t nearest = m_texts.Nearest(BytesForPeople(bytes));
    return nearest < m_known.size() ? &m_known[nearest] : nullptr;
}

QString Replay::Expected(const Caller& caller) const {
    const bool isKnown = !m_plan.anyOrder && caller.talk != nullptr && caller.next < caller.talk->exchanges.size();
    return isKnown ? caller.talk->exchanges[caller.next].request.ForPeople() : QString();
}

void Replay::Answer(LineId, Caller& caller, const std::vector<TrafficAnswer>& answers) {
    const auto way = caller.way; // an answer may end the connection, and the caller with it
    const FreePlaces places = caller.places;
    for (const TrafficAnswer& answer : answers) {
        PrankedPiece piece;
        if (answer.what == TrafficAnswer::What::Say)
            piece = m_mischief.Do(m_prank, answer.bytes.Filled(places));
        else
            piece.end = EndOf(answer.what);
        piece.wait += std::chrono::milliseconds(m_plan.isFast ? 0 : answer.delay);
        way->Pass(piece);
    }
}

void Replay::End(LineId line, PrankedPiece::End end) {
    if (end == PrankedPiece::End::HalfClose)
        return m_endpoint->EndSending(line);
    if (end == PrankedPiece::End::Reset)
        m_endpoint->Reset(line);
    m_endpoint->Close(line);
    Closed(line, {});
}

/// What is still to be said comes before the end.
void Replay::Ended(LineId line) {
    const auto found = m_callers.find(line);
    if (found == m_callers.end())
        return;
    const auto way = found->second.way;
    LeaveOut(line, found->second, false);
    way->PassEnd(PrankedPiece::End::Close);
}

void Replay::Closed(LineId line, const QString&) {
    const auto found = m_callers.find(line);
    if (found == m_callers.end())
        return;
    LeaveOut(line, found->second, false);
    found->second.way->Stop();
    m_callers.erase(found);
}

void Replay::Finish() {
    for (auto& [line, caller] : m_callers) {
        while (!caller.waiting.isEmpty())
            LeaveOut(line, caller, false);
    }
}

} // namespace stagehost

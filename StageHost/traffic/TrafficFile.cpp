#include "TrafficFile.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <QJsonDocument>

#include "TextFile.h"

namespace stagehost {

namespace {

constexpr double kMsInASecond = 1000;

struct FileEntry {
    std::int64_t at = 0;
    int connection = 0;
    TrafficEvent event = TrafficEvent::Bytes;
    Side by = Side::Program;
    TrafficPattern bytes;
    int line = 0;
};

bool FindSide(const QString& name, Side& side) {
    side = name == QLatin1String(kSideNames[1]) ? Side::Device : Side::Program;
    return name == QLatin1String(kSideNames[static_cast<int>(side)]);
}

bool FindEvent(const QString& name, TrafficEvent& event) {
    for (std::size_t number = 1; number < std::size(kTrafficEventNames); ++number) {
        event = static_cast<TrafficEvent>(number);
        if (name == QLatin1String(kTrafficEventNames[number]))
            return true;
    }
    return false;
}

QString ReadHead(const QJsonObject& line, TrafficHead& head) {
    if (line.value(QLatin1String("traffic")).toInt() != 1)
        return QStringLiteral("expected \"traffic\": 1, as in the first line of every traffic file");
    const QString device = line.value(QLatin1String("device")).toString();
    if (!FindLineKind(line.value(QLatin1String("kind")).toString(), head.device.kind))
        return QStringLiteral("\"kind\": expected \"tcp\", \"udp\" or \"serial\"");
    head.lineSettings = line.value(QLatin1String("line")).toString();
    if (head.device.kind != LineKind::Serial)
        return ReadHostAndPort(device, {}, head.device);
    head.device.path = device;
    return {};
}

QString ReadEntry(const QJsonObject& line, FileEntry& entry) {
    const QJsonValue at = line.value(QLatin1String("at"));
    const QJsonValue connection = line.value(QLatin1String("connection"));
    if (!at.isDouble() && !at.isUndefined())
        return QStringLiteral("\"at\": expected seconds");
    entry.at = std::llround(at.toDouble() * kMsInASecond);
    entry.connection = connection.toInt(0);
    const QString event = line.value(QLatin1String("event")).toString();
    if (!event.isEmpty()) {
        FindSide(line.value(QLatin1String("by")).toString(), entry.by);
        return FindEvent(event, entry.event) ? QString() : QStringLiteral("there is no event \"%1\"").arg(event);
    }
    if (!FindSide(line.value(QLatin1String("from")).toString(), entry.by))
        return QStringLiteral("\"from\": expected \"program\" or \"device\"");
    QString problem = entry.bytes.Read(line);
    if (problem.isEmpty() && entry.by == Side::Device && entry.bytes.HasFree())
        problem = QStringLiteral("\"free\": of what the program says; an answer has \"same\"");
    return problem;
}

/// Puts the entries of the file together into talks.
class TalkBuilder {
public:
    explicit TalkBuilder(TrafficFile& file)
        : m_file(file) {}

    void Add(const FileEntry& entry) {
        TrafficTalk& talk = TalkOf(entry.connection);
        const std::int64_t delay = std::max<std::int64_t>(0, entry.at - m_last[entry.connection]);
        m_last[entry.connection] = entry.at;
        if (entry.event == TrafficEvent::Bytes && entry.by == Side::Program)
            AddRequest(talk, entry);
        else if (const auto what = WhatOf(entry))
            AnswersOf(talk).push_back({*what, delay, entry.bytes});
    }

    /// Several lines that were asked and answered together.
    void PartLines() {
        for (TrafficTalk& talk : m_file.talks) {
            std::vector<TrafficExchange> parted;
            for (const TrafficExchange& exchange : talk.exchanges) {
                const auto lines = LinesOf(exchange);
                parted.insert(parted.end(), lines.begin(), lines.end());
            }
            talk.exchanges = parted;
        }
    }

private:
    TrafficTalk& TalkOf(int connection) {
        const auto [place, isNew] = m_places.try_emplace(connection, m_file.talks.size());
        if (isNew)
            m_file.talks.push_back({connection, {}, {}});
        return m_file.talks[place->second];
    }

    void AddRequest(TrafficTalk& talk, const FileEntry& entry) {
        const bool joins = m_file.head.device.kind != LineKind::Udp && !talk.exchanges.empty() &&
                           talk.exchanges.back().answers.empty();
        if (joins)
            talk.exchanges.back().request.Append(entry.bytes);
        else
            talk.exchanges.push_back({entry.bytes, entry.line, {}});
    }

    static std::vector<TrafficAnswer>& AnswersOf(TrafficTalk& talk) {
        return talk.exchanges.empty() ? talk.greeting : talk.exchanges.back().answers;
    }

    static std::optional<TrafficAnswer::What> WhatOf(const FileEntry& entry) {
        using What = TrafficAnswer::What;
        if (entry.by != Side::Device)
            return std::nullopt;
        switch (entry.event) {
        case TrafficEvent::Bytes:
            return What::Say;
        case TrafficEvent::Ended:
            return What::End;
        case TrafficEvent::Closed:
            return What::Close;
        case TrafficEvent::Reset:
            return What::Reset;
        default:
            return std::nullopt;
        }
    }

    std::vector<TrafficExchange> LinesOf(const TrafficExchange& exchange) const {
        const int last = exchange.request.LastByte();
        if ((last != '\r' && last != '\n') || m_file.head.device.kind == LineKind::Udp)
            return {exchange};
        const auto requests = exchange.request.SplitBehind(static_cast<char>(last));
        std::vector<TrafficAnswer> answers;
        for (const TrafficAnswer& answer : exchange.answers) {
            std::int64_t delay = answer.delay;
            for (const TrafficPattern& piece : answer.bytes.SplitBehind(static_cast<char>(last))) {
                answers.push_back({answer.what, delay, piece});
                delay = 0;
            }
        }
        const bool hasBlankLine = std::any_of(requests.begin(), requests.end(), [](const TrafficPattern& line) {
            return line.Filled({}).trimmed().isEmpty();
        });
        if (requests.size() < 2 || answers.size() != requests.size() || hasBlankLine)
            return {exchange};
        std::vector<TrafficExchange> lines;
        for (std::size_t number = 0; number < requests.size(); ++number)
            lines.push_back({requests[number], exchange.line, {answers[number]}});
        return lines;
    }

    TrafficFile& m_file;
    std::map<int, std::size_t> m_places; ///< of talks in the file, by their connections
    std::map<int, std::int64_t> m_last;  ///< when something went by on a connection, in ms
};

/// Names that are the same as a free place which a file does not have: mistyped, most likely.
class NameCheck {
public:
    void Add(const FileEntry& entry) {
        for (const QString& name : entry.bytes.NamesOfFree())
            m_free.insert(name);
        for (const QString& name : entry.bytes.NamesOfSame())
            m_same.try_emplace(name, entry.line);
    }

    /// @return empty, or what is wrong with the first one. @param line its line.
    QString Problem(int& line) const {
        for (const auto& [name, where] : m_same) {
            if (m_free.count(name) > 0)
                continue;
            line = where;
            return QStringLiteral("\"same\": no free place of this file has the name \"%1\" (\"as\")").arg(name);
        }
        return {};
    }

private:
    std::set<QString> m_free;
    std::map<QString, int> m_same; ///< the line that has each first
};

QString WithPlace(const QString& file, int line, const QString& problem) {
    return QStringLiteral("%1:%2: %3").arg(file, QString::number(line), problem);
}

} // namespace

std::optional<TrafficFile> ReadTrafficFile(const QString& file, QString& problem) {
    const auto bytes = ReadTextBytes(file, &problem);
    if (!bytes)
        return std::nullopt;
    TrafficFile traffic;
    TalkBuilder builder(traffic);
    NameCheck names;
    int number = 0;
    for (const QByteArray& text : bytes->split('\n')) {
        ++number;
        if (text.trimmed().isEmpty() && number > 1)
            continue;
        QJsonParseError error{};
        const QJsonObject line = QJsonDocument::fromJson(text, &error).object();
        FileEntry entry;
        entry.line = number;
        QString wrong = error.error == QJsonParseError::NoError ? QString() : error.errorString();
        if (wrong.isEmpty())
            wrong = number == 1 ? ReadHead(line, traffic.head) : ReadEntry(line, entry);
        if (!wrong.isEmpty()) {
            problem = WithPlace(file, number, wrong);
            return std::nullopt;
        }
        names.Add(entry);
        if (number > 1 && entry.connection > 0)
            builder.Add(entry);
    }
    if (const QString wrong = names.Problem(number); !wrong.isEmpty()) {
        problem = WithPlace(file, number, wrong);
        return std::nullopt;
    }
    builder.PartLines();
    return traffic;
}

} // namespace stagehost

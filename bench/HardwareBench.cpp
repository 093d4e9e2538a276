#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <sys/resource.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QUdpSocket>

#include "DmxListener.h"
#include "DmxSender.h"
#include "SerialPort.h"

/// What universes and serial ports cost, and what they lose: ./hardware_bench [SECONDS], a minute if not given.

using namespace stagehost;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kUniverses = 4;

double ProcessorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) { return static_cast<double>(time.tv_sec) + time.tv_usec * 1e-6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void Pause(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

template <typename Condition>
bool Within(std::chrono::seconds limit, Condition condition) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > end)
            return false;
        Pause(std::chrono::milliseconds(1));
    }
    return true;
}

class CountingInput final : public InputNews {
public:
    void StateChanged() override {}
    void Told(const std::string&) override {}
    void LevelsChanged(const DmxFrame&) override { ++changes; }

    std::atomic<std::uint64_t> changes{0};
};

std::uint16_t FreePort() {
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return socket.localPort();
}

/// Every frame carries other levels, so that each is worked on to its end.
bool MeasureUniverses(DmxProtocol protocol, int seconds) {
    std::vector<CountingInput> news(kUniverses * 2);
    DmxListener listener;
    auto sender = std::make_unique<DmxSender>();
    DmxOutPlan out;
    DmxInPlan in;
    out.protocol = in.protocol = protocol;
    out.port = in.port = FreePort();
    out.continuous = true;
    for (std::uint16_t universe = 1; universe <= kUniverses; ++universe) {
        out.universe = in.universe = universe;
        listener.Open(listener.Add(in, news[universe - 1u]));
        sender->Add(out, news[universe - 1u + kUniverses]);
    }
    Within(std::chrono::seconds(10), [&] { return listener.Status(kUniverses - 1).open; });
    const double processorBefore = ProcessorSeconds();
    const auto begin = Clock::now();
    for (std::size_t universe = 0; universe < kUniverses; ++universe)
        sender->Open(universe);
    std::uint8_t level = 0;
    while (Clock::now() - begin < std::chrono::seconds(seconds)) {
        ++level;
        for (std::size_t universe = 0; universe < kUniverses; ++universe)
            sender->Write(universe, &level, universe, 1);
        Pause(std::chrono::milliseconds(22));
    }
    for (std::size_t universe = 0; universe < kUniverses; ++universe)
        sender->Close(universe);
    const double wall = std::chrono::duration<double>(Clock::now() - begin).count();
    const double processor = ProcessorSeconds() - processorBefore;
    Pause(std::chrono::milliseconds(300)); // the ends leave
    std::uint64_t sent = 0;
    std::uint64_t heard = 0;
    std::uint64_t refused = 0;
    std::chrono::microseconds usually{0};
    std::chrono::microseconds rarely{0};
    for (std::size_t universe = 0; universe < kUniverses; ++universe) {
        const DmxOutStatus status = sender->Status(universe);
        sent += status.frames;
        usually = std::max(usually, status.usuallyLate);
        rarely = std::max(rarely, status.rarelyLate);
    }
    Within(std::chrono::seconds(5), [&] {
        heard = refused = 0;
        for (std::size_t universe = 0; universe < kUniverses; ++universe) {
            heard += listener.Status(universe).counts.Of(Refusal::None);
            refused += listener.Status(universe).counts.Refused();
        }
        return heard >= sent;
    });
    const bool good = heard == sent && refused == 0 && sent >= kUniverses * 43 * static_cast<std::uint64_t>(seconds);
    std::printf(
        "%-7s %d universes, %.1f s: %llu frames sent, %llu heard, %llu refused; %.2f %% of a core; a frame leaves "
        "%lld us late at the median, %lld us at 99 %% (the worst universe)%s\n",
        kDmxProtocolNames[static_cast<int>(protocol)], kUniverses, wall, static_cast<unsigned long long>(sent),
        static_cast<unsigned long long>(heard), static_cast<unsigned long long>(refused), 100 * processor / wall,
        static_cast<long long>(usually.count()), static_cast<long long>(rarely.count()),
        good ? "" : "   FRAMES ARE MISSING");
    return good;
}

/// Nonsense as fast as one thread can send it, beside a universe that goes on.
bool MeasureFlood(int seconds) {
    CountingInput inNews;
    CountingInput outNews;
    DmxListener listener;
    DmxSender sender;
    DmxOutPlan out;
    DmxInPlan in;
    out.port = in.port = FreePort();
    out.continuous = true;
    listener.Open(listener.Add(in, inNews));
    Within(std::chrono::seconds(10), [&] { return listener.Status(0).open; });
    sender.Open(sender.Add(out, outNews));
    std::mt19937 random(6454);
    SacnPacket packet;
    packet.universe = 9;
    packet.frame.count = kUniverseSize;
    const auto bytes = WriteSacn(packet);
    QByteArray nonsense(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
    QUdpSocket socket;
    std::uint64_t count = 0;
    const auto begin = Clock::now();
    while (Clock::now() - begin < std::chrono::seconds(seconds)) {
        for (int burst = 0; burst < 200; ++burst, ++count) {
            nonsense[static_cast<int>(random() % 126)] = static_cast<char>(random());
            socket.writeDatagram(nonsense.constData(), static_cast<qint64>(random() % 639), out.address, out.port);
        }
        const std::chrono::duration<double> planned(static_cast<double>(count) / 200000);
        std::this_thread::sleep_until(begin + std::chrono::duration_cast<Clock::duration>(planned));
    }
    Pause(std::chrono::milliseconds(500));
    const DmxInStatus status = listener.Status(0);
    std::printf(
        "flood   %.0f packets of nonsense a second: %llu counted, %llu frames of the universe heard of %llu sent; "
        "a frame leaves %lld us late at 99 %%\n",
        static_cast<double>(count) / seconds, static_cast<unsigned long long>(status.counts.Refused()),
        static_cast<unsigned long long>(status.counts.Of(Refusal::None)),
        static_cast<unsigned long long>(sender.Status(0).frames),
        static_cast<long long>(sender.Status(0).rarelyLate.count()));
    return status.open;
}

/// One end of a serial line: keeps what comes, and sends it back when it is the echo.
class SerialEnd final : public SerialNews {
public:
    explicit SerialEnd(const QString& path)
        : port(path, *this) {}

    void StateChanged() override {}
    void DataCame(const std::uint8_t* data, std::size_t size) override {
        if (isEcho)
            port.Write(data, size);
        const std::lock_guard<std::mutex> hold(lock);
        came.insert(came.end(), data, data + size);
    }
    void Happened(SerialEvent, bool) override {}
    void Told(const std::string& text) override { std::printf("        %s\n", text.c_str()); }

    std::size_t Count() {
        const std::lock_guard<std::mutex> hold(lock);
        return came.size();
    }

    bool isEcho = false;
    std::mutex lock; ///< guards came
    std::vector<std::uint8_t> came;
    SerialPort port;
};

/// Random bytes at the pace of 115200 baud, there and back.
bool MeasureSerial(int seconds) {
    const QTemporaryDir folder;
    const QString one = folder.filePath(QStringLiteral("one"));
    const QString other = folder.filePath(QStringLiteral("other"));
    QProcess socat;
    socat.start(QStringLiteral("socat"),
                {QStringLiteral("pty,raw,echo=0,link=") + one, QStringLiteral("pty,raw,echo=0,link=") + other});
    if (!Within(std::chrono::seconds(10), [&] { return QFileInfo::exists(one) && QFileInfo::exists(other); })) {
        std::printf("serial  socat gives no ports\n");
        return false;
    }
    bool good = false;
    {
        SerialEnd near(one);
        SerialEnd far(other);
        far.isEcho = true;
        for (SerialEnd* end : {&near, &far}) {
            end->port.Set(SerialSetting::BaudRate, 115200);
            end->port.Open();
            Within(std::chrono::seconds(10), [&] { return end->port.Status().open; });
        }
        constexpr std::size_t kBytesPerSecond = 11520; // ten bits each
        std::mt19937 random(115200);
        std::vector<std::uint8_t> sent;
        const double processorBefore = ProcessorSeconds();
        const auto begin = Clock::now();
        while (sent.size() < kBytesPerSecond * static_cast<std::size_t>(seconds)) {
            std::vector<std::uint8_t> block(1 + random() % 200);
            std::generate(block.begin(), block.end(), [&] { return static_cast<std::uint8_t>(random()); });
            near.port.Write(block.data(), block.size());
            sent.insert(sent.end(), block.begin(), block.end());
            const std::chrono::duration<double> planned(static_cast<double>(sent.size()) / kBytesPerSecond);
            std::this_thread::sleep_until(begin + std::chrono::duration_cast<Clock::duration>(planned));
        }
        Within(std::chrono::seconds(10), [&] { return near.Count() >= sent.size(); });
        const double wall = std::chrono::duration<double>(Clock::now() - begin).count();
        const double processor = ProcessorSeconds() - processorBefore;
        const std::lock_guard<std::mutex> hold(near.lock);
        good = near.came == sent;
        std::printf("serial  %zu random bytes echoed at 115200 baud in %.1f s: %zu came back, %s; %.2f %% of a core\n",
                    sent.size(), wall, near.came.size(), good ? "all as they were" : "NOT THE SAME",
                    100 * processor / wall);
    }
    socat.kill();
    socat.waitForFinished();
    return good;
}

/// How long a break of 2 ms really lasts, from its begin to its end as the caller sees them.
bool MeasureBreaks() {
    const QTemporaryDir folder;
    const QString one = folder.filePath(QStringLiteral("one"));
    const QString other = folder.filePath(QStringLiteral("other"));
    QProcess socat;
    socat.start(QStringLiteral("socat"),
                {QStringLiteral("pty,raw,echo=0,link=") + one, QStringLiteral("pty,raw,echo=0,link=") + other});
    if (!Within(std::chrono::seconds(10), [&] { return QFileInfo::exists(one) && QFileInfo::exists(other); }))
        return false;
    bool good = true;
    {
        SerialEnd near(one);
        SerialEnd far(other);
        for (SerialEnd* end : {&near, &far}) {
            end->port.Open();
            Within(std::chrono::seconds(10), [&] { return end->port.Status().open; });
        }
        std::vector<double> lengths;
        const std::uint8_t frame[] = {1, 2, 3};
        for (int round = 0; round < 500; ++round) {
            near.port.Write(frame, sizeof(frame));
            good = near.port.Set(SerialSetting::Break, 1) && good;
            const auto begin = Clock::now();
            Pause(std::chrono::milliseconds(2));
            good = near.port.Set(SerialSetting::Break, 0) && good;
            lengths.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        }
        std::sort(lengths.begin(), lengths.end());
        std::printf("breaks  500 of 2 ms, each behind three bytes: %.2f ms at the median, %.2f ms at 99 %%, none below "
                    "%.2f ms\n",
                    lengths[lengths.size() / 2], lengths[lengths.size() * 99 / 100], lengths.front());
    }
    socat.kill();
    socat.waitForFinished();
    return good;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 60;
    bool good = MeasureUniverses(DmxProtocol::Sacn, seconds);
    good = MeasureUniverses(DmxProtocol::ArtNet, seconds) && good;
    good = MeasureFlood(std::min(seconds, 10)) && good;
    good = MeasureSerial(seconds) && good;
    good = MeasureBreaks() && good;
    return good ? 0 : 1;
}

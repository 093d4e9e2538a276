#include "SoakRun.h"

#include <cstdio>

#include <QEventLoop>

#include "DeviceScript.h"
#include "Measure.h"

namespace {

constexpr int kDevices = 20;
/// The last two throw in commands, which holds them up; the two before are those that neighbours ask, and ask nobody.
constexpr int kFaulty = 2;
constexpr int kAsked = 2;
constexpr int kAsking = kDevices - kFaulty - kAsked;

constexpr int kBeatMs = 50;
constexpr std::uint64_t kCommandsOfABeat = 10; ///< each device has ten in a second
constexpr int kBeatsOfASample = 20;
/// A device is loaded anew each minute, stopped and started each two, released and made anew each five.
constexpr int kBeatsOfAReload = 60 * 20 / kDevices;
constexpr int kReloadsOfAStop = 2;
constexpr int kReloadsOfANewOne = 5;

constexpr int kSettleMs = 60000;
constexpr double kMostMegabytesAnHour = 1;
/// Resident memory goes up and down by a megabyte with the engines' collections: half an hour is the least in which
/// that is no slope.
constexpr double kMinutesToJudgeMemory = 60;

const char* const kOtherFunctions[] = {"Datagram", "Line", "Page", "Neighbour", "NeighbourLater"};

/// Serves the events of the main thread until it is so. @return false when it is not so in time.
template <typename Condition>
bool ServeUntil(int milliseconds, Condition condition) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(kBeatMs, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return condition();
}

} // namespace

SoakRun::SoakRun(double minutes)
    : m_minutes(minutes) {}

int SoakRun::Play() {
    if (m_host.Module() == nullptr) {
        std::fprintf(stderr, "soak: the module %s cannot be loaded\n", MODULE_FILE);
        return 2;
    }
    WarmUp();
    const Footprint before = Footprint::Now();
    MakeDevices();
    m_processorBefore = ProcessorSeconds();
    m_clock.start();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [this] { Beat(); });
    timer.start(kBeatMs);
    ServeUntil(static_cast<int>(m_minutes * 60000), [this] { return Share() >= 1; });
    timer.stop();
    return Close(before);
}

/// A device fetches a page and goes: what the module and Qt make once is there from now on.
void SoakRun::WarmUp() {
    const SoakDevice first(m_host, "first", DeviceScript(m_ports, false));
    const Ledger& ledger = m_host.ledger;
    ServeUntil(kSettleMs, [&] {
        if (ledger.open == 0) // it is refused until the script has been loaded
            m_host.SendTo(first.Name(), new Request(m_host.ledger, false, "Page", ""));
        return ledger.AnswersOfAllKinds() > 0;
    });
}

void SoakRun::MakeDevices() {
    for (int number = 0; number < kDevices; ++number)
        m_devices.push_back(std::make_unique<SoakDevice>(m_host, "device" + std::to_string(number),
                                                         DeviceScript(m_ports, number >= kDevices - kFaulty)));
}

void SoakRun::Beat() {
    if (m_isBeating)
        return;
    m_isBeating = true;
    m_host.ledger.latencies = Share() < 0.1 ? &m_first : (Share() < 0.9 ? &m_middle : &m_last);
    Send();
    Disturb();
    if (m_beats % kBeatsOfASample == 0)
        Sample();
    ++m_beats;
    m_isBeating = false;
}

/// One in five is none of those that are timed.
void SoakRun::Send() {
    for (std::uint64_t i = 0; i < kCommandsOfABeat; ++i) {
        const std::uint64_t number = m_beats * kCommandsOfABeat + i;
        const int device = static_cast<int>(number % kDevices);
        const std::uint64_t round = number / kDevices;
        const bool isOther = round % 5 == 0 && device < kAsking;
        const char* function = isOther ? kOtherFunctions[(round / 5 + number) % std::size(kOtherFunctions)] : "Answer";
        const std::string argument =
            isOther ? "device" + std::to_string(kAsking + static_cast<int>(number % kAsked)) : std::to_string(number);
        const bool isUnknown = m_host.faults.Strike();
        const bool isTimed = !isOther && device < kDevices - kFaulty;
        m_host.SendTo(m_devices[static_cast<std::size_t>(device)]->Name(),
                      new Request(m_host.ledger, isTimed, isUnknown ? "NotThere" : function, argument));
    }
    m_host.errands.Post([this, value = std::to_string(m_beats)] { m_host.TellAll(value); });
}

void SoakRun::Disturb() {
    if (m_beats % kBeatsOfAReload != 0)
        return;
    const std::uint64_t turn = m_beats / kBeatsOfAReload;
    SoakDevice& device = *m_devices[turn % kDevices];
    const std::uint64_t round = turn / kDevices + turn; // so that not all devices have the same in one round
    if (round % kReloadsOfANewOne == 0)
        device.MakeAnew();
    else if (round % kReloadsOfAStop == 0)
        device.StopAndStart();
    else
        device.Reload();
}

/// The first tenth warms up. Resident memory takes longer, a quarter of an hour or so: each engine lets its collector's
/// heap grow to the size that its script needs between two collections, and the allocator keeps the pieces between.
/// That ends, and a leak does not: so it is the second half of a run that is judged.
void SoakRun::Sample() {
    const Footprint now = Footprint::Now();
    if (Share() >= 0.1) {
        m_resident.Add(Hours(), now.residentMegabytes);
        m_heap.Add(Hours(), now.heapMegabytes);
        m_threads.Add(Hours(), now.threads);
        m_descriptors.Add(Hours(), now.descriptors);
    }
    if (Share() >= 0.5)
        m_residentLate.Add(Hours(), now.residentMegabytes);
    if (static_cast<int>(Hours() * 60) > m_minutesTold)
        PrintMinute();
}

void SoakRun::PrintMinute() {
    m_minutesTold = static_cast<int>(Hours() * 60);
    const Footprint now = Footprint::Now();
    const Ledger& ledger = m_host.ledger;
    std::printf("%4d min  %llu commands, %lld open  %.1f MB resident, %.1f MB heap  %.0f threads  %.0f descriptors  "
                "%.1f %% of a core\n",
                m_minutesTold, static_cast<unsigned long long>(ledger.sent), static_cast<long long>(ledger.open),
                now.residentMegabytes, now.heapMegabytes, now.threads, now.descriptors,
                100 * (ProcessorSeconds() - m_processorBefore) / (Hours() * 3600));
    std::fflush(stdout);
}

/// What is still open when everything has had the time to end.
std::int64_t SoakRun::OpenAtLast() {
    ServeUntil(kSettleMs, [this] { return m_host.ledger.open == 0; });
    return m_host.ledger.open;
}

/// Threads and descriptors of devices go a little behind the devices.
bool SoakRun::IsAtRest(const Footprint& before) {
    return ServeUntil(kSettleMs, [&before] {
        const Footprint now = Footprint::Now();
        return now.threads <= before.threads && now.descriptors <= before.descriptors;
    });
}

int SoakRun::Close(const Footprint& before) {
    if (static_cast<int>(Hours() * 60) > m_minutesTold)
        PrintMinute();
    const std::int64_t open = OpenAtLast();
    m_devices.clear();
    const std::int64_t openBehindDevices = m_host.ledger.open;
    const bool isAtRest = IsAtRest(before);
    const Footprint after = Footprint::Now();
    const Faults& faults = m_host.faults;
    std::printf("\ncalls that could fail: %llu, failed on purpose: %llu (%.2f %%)\n",
                static_cast<unsigned long long>(faults.Calls()), static_cast<unsigned long long>(faults.Struck()),
                100.0 * static_cast<double>(faults.Struck()) / static_cast<double>(faults.Calls()));
    std::printf("commands: %llu, refused: %llu, without an end: %lld, without an end behind their device: %lld\n",
                static_cast<unsigned long long>(m_host.ledger.sent),
                static_cast<unsigned long long>(m_host.ledger.refused), static_cast<long long>(open),
                static_cast<long long>(openBehindDevices));
    bool isCounted = m_first.Count() > 0 && m_last.Count() > 0 && faults.Struck() > 0;
    std::printf("answers:");
    for (std::size_t kind = 0; kind < std::size(kAnswers); ++kind) {
        const std::uint64_t count = m_host.ledger.answers[kind];
        std::printf("%s \"%s\" %llu", kind == 0 ? "" : ",", kAnswers[kind], static_cast<unsigned long long>(count));
        isCounted = isCounted && (count > 0 || kind >= kLuckyAnswers);
    }
    std::printf("\nslope: resident %+.2f MB/h, in the second half %+.2f MB/h, heap %+.2f MB/h, threads %+.2f/h, "
                "descriptors %+.2f/h\n",
                m_resident.PerX(), m_residentLate.PerX(), m_heap.PerX(), m_threads.PerX(), m_descriptors.PerX());
    std::printf("a command, first tenth: p50 %.3f ms, p99 %.3f ms (of %llu)\n", m_first.Percentile(0.5),
                m_first.Percentile(0.99), static_cast<unsigned long long>(m_first.Count()));
    std::printf("a command, last tenth:  p50 %.3f ms, p99 %.3f ms (of %llu)\n", m_last.Percentile(0.5),
                m_last.Percentile(0.99), static_cast<unsigned long long>(m_last.Count()));
    std::printf("left behind: threads %+.0f, descriptors %+.0f\n", after.threads - before.threads,
                after.descriptors - before.descriptors);
    const bool grows = m_minutes >= kMinutesToJudgeMemory && m_residentLate.PerX() > kMostMegabytesAnHour;
    const bool isWell = open == 0 && openBehindDevices == 0 && isAtRest && isCounted && !grows;
    std::printf("%s\n", isWell ? "well" : "NOT WELL");
    return isWell ? 0 : 1;
}

#include "NetBenchServers.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QScriptEngine>

#include "BufferConversion.h"
#include "ByteArrayClass.h"
#include "MCalverinScript_Device.h"
#include "ScriptClasses.h"

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

namespace {

constexpr std::size_t kCounted = 64;
constexpr std::size_t kEchoed = 8;

constexpr const char* kUdpScript = R"(
var s = QCalverin.CreateSocket("udp4"), count = 0;
s.on("message", function (bytes, from) {
    var length = bytes.length;
    if (length === 64) {
        ++count;
        return;
    }
    if (length === 2) {
        for (var end = Date.now() + 3000; Date.now() < end;) {}
        return;
    }
    var port = (from.port & 255) * 256 + (from.port >> 8);
    if (length === 8) {
        s.send(bytes, 0, 8, port, "127.0.0.1");
        return;
    }
    var answer = new Buffer(String(count));
    s.send(answer, 0, answer.length, port, "127.0.0.1");
    count = 0;
});
s.bind(0);
report(s.address().port);
({}))";

constexpr const char* kTcpScript = R"(
var s = QCalverin.CreateSocket(), left = TOTAL;
s.on("data", function (bytes) {
    var length = bytes.length;
    if (length === 8) {
        s.write(bytes);
        return;
    }
    left -= length;
    if (left <= 0) {
        left = TOTAL;
        s.write("d");
    }
});
s.connect(PORT);
({}))";

QScriptValue Report(QScriptContext* context, QScriptEngine*) {
    std::printf("%d\n", context->argument(0).toInt32());
    std::fflush(stdout);
    return QScriptValue();
}

int RunDevice(QString script, std::uint16_t port, std::uint64_t total) {
    script.replace(QLatin1String("TOTAL"), QString::number(total))
        .replace(QLatin1String("PORT"), QString::number(port));
    auto* device = new MCalverinScript_Device(nullptr, nullptr, "Bench");
    std::promise<void> ready;
    device->PostTask([&] {
        QScriptEngine* engine = device->GetEngine();
        engine->globalObject().setProperty(QStringLiteral("report"), engine->newFunction(&Report));
        ready.set_value();
    });
    ready.get_future().wait();
    device->GetStoredSetup().SetScript(QString(), script);
    device->Start();
    for (;;)
        pause();
}

/// What a script of the device needs of its surroundings, on plain system calls.
constexpr const char* kBareSurroundings = R"(
var listener, QCalverin = {
    CreateSocket: function () {
        return {
            on: function (event, f) { listener = f; },
            bind: function () {},
            address: function () { return {port: PORT}; },
            send: function (bytes) { answer(bytes); }
        };
    }
};)";

int bareDescriptor = -1;
sockaddr_in bareSender{};

QScriptValue Answer(QScriptContext* context, QScriptEngine*) {
    const QByteArray bytes = BytesFromBuffer(context->argument(0));
    sendto(bareDescriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0,
           reinterpret_cast<sockaddr*>(&bareSender), sizeof bareSender);
    return QScriptValue();
}

int BindLoopback(std::uint16_t& port) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    if (bind(descriptor, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
        getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        port = ntohs(address.sin_port);
    return descriptor;
}

int RunBareUdp() {
    std::uint16_t port = 0;
    const int descriptor = BindLoopback(port);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    std::printf("%d\n", port);
    std::fflush(stdout);
    std::array<char, 4096> buffer{};
    for (long count = 0;;) {
        const ssize_t got =
            recvfrom(descriptor, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&address), &size);
        if (got == static_cast<ssize_t>(kCounted)) {
            ++count;
            continue;
        }
        std::string answer(buffer.data(), static_cast<std::size_t>(got));
        if (answer.size() != kEchoed)
            answer = std::to_string(std::exchange(count, 0));
        sendto(descriptor, answer.data(), answer.size(), 0, reinterpret_cast<sockaddr*>(&address), size);
    }
}

/// The least that a datagram costs with this script engine: one thread receives and calls the same listener with
/// arguments of the same kinds; no queue, no lock, nothing between.
int RunScriptUdp() {
    std::uint16_t port = 0;
    bareDescriptor = BindLoopback(port);
    QScriptEngine engine;
    InstallScriptClasses(engine);
    QScriptValue global = engine.globalObject();
    global.setProperty(QStringLiteral("report"), engine.newFunction(&Report));
    global.setProperty(QStringLiteral("answer"), engine.newFunction(&Answer));
    engine.evaluate(QString::fromLatin1(kBareSurroundings).replace(QLatin1String("PORT"), QString::number(port)));
    const QScriptValue script = engine.evaluate(QString::fromLatin1(kUdpScript));
    QScriptValue listener = global.property(QStringLiteral("listener"));
    const QScriptValue self = global.property(QStringLiteral("s"));
    auto* buffers = qscriptvalue_cast<ByteArrayClass*>(global.property(QStringLiteral("Buffer")).data());
    const QScriptString portName = engine.toStringHandle(QStringLiteral("port"));
    const QScriptString addressName = engine.toStringHandle(QStringLiteral("address"));
    const QScriptValue address(&engine, QStringLiteral("127.0.0.1"));
    std::array<char, 4096> buffer{};
    for (;;) {
        socklen_t size = sizeof bareSender;
        const ssize_t got =
            recvfrom(bareDescriptor, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&bareSender), &size);
        QScriptValue from = engine.newObject();
        from.setProperty(portName, int{bareSender.sin_port});
        from.setProperty(addressName, address);
        const QScriptValue bytes = buffers->NewInstance(QByteArray(buffer.data(), static_cast<int>(got)));
        listener.call(script, QScriptValueList{bytes, from, self});
    }
}

int RunBareTcp(std::uint16_t port, std::uint64_t total) {
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = Loopback(port);
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return 1;
    std::vector<char> buffer(65536);
    auto left = static_cast<std::int64_t>(total);
    for (;;) {
        const ssize_t got = recv(descriptor, buffer.data(), buffer.size(), 0);
        if (got <= 0)
            return 0;
        if (got == static_cast<ssize_t>(kEchoed)) {
            send(descriptor, buffer.data(), kEchoed, 0);
        } else if ((left -= got) <= 0) {
            left = static_cast<std::int64_t>(total);
            send(descriptor, "d", 1, 0);
        }
    }
}

} // namespace

int RunSubject(const std::string& mode, std::uint16_t port, std::uint64_t total) {
    if (mode == "device-udp")
        return RunDevice(QString::fromLatin1(kUdpScript), port, total);
    if (mode == "device-tcp")
        return RunDevice(QString::fromLatin1(kTcpScript), port, total);
    if (mode == "script-udp")
        return RunScriptUdp();
    return mode == "bare-udp" ? RunBareUdp() : RunBareTcp(port, total);
}

Subject::Subject(const std::vector<std::string>& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        cpu_set_t core;
        CPU_ZERO(&core);
        CPU_SET(1, &core);
        sched_setaffinity(0, sizeof core, &core);
        dup2(ends[1], STDOUT_FILENO);
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& word : command)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    m_output = ends[0];
}

Subject::~Subject() {
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    close(m_output);
}

std::uint16_t Subject::ReadPort() const {
    std::array<char, 16> text{};
    return read(m_output, text.data(), text.size() - 1) > 0 ? static_cast<std::uint16_t>(std::atoi(text.data())) : 0;
}

/// The first number in a thread's schedstat is its processor time in nanoseconds; the process's own clock ticks every
/// 10 ms only.
double Subject::Seconds() const {
    double nanoseconds = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/" + std::to_string(m_pid) + "/task")) {
        double used = 0;
        std::ifstream(thread.path() / "schedstat") >> used;
        nanoseconds += used;
    }
    return nanoseconds / 1e9;
}

double Subject::ResidentMegabytes() const {
    std::ifstream statm("/proc/" + std::to_string(m_pid) + "/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

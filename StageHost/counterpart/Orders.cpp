#include "Orders.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <QFile>
#include <QObject>

#include "ExitGuard.h"
#include "InputSide.h"
#include "MainWait.h"

namespace stagehost {

namespace {

constexpr int kStandardInput = 0; // the descriptor of every process
constexpr std::chrono::seconds kToEnd(1);
constexpr int kLeftAtOnce = 3; // the exit code for no answer

} // namespace

struct Orders::State {
    std::mutex lock; ///< guards receiver
    std::condition_variable gone;
    std::unique_ptr<QObject> receiver; ///< lives on the main thread; null when nobody hears any more
    Takers takers;

    void Post(const std::function<void()>& call) {
        const std::lock_guard<std::mutex> hold(lock);
        if (receiver)
            QMetaObject::invokeMethod(receiver.get(), call, Qt::QueuedConnection);
    }

    /// Reads to the end; a terminal that is another process's gives an error, which is no end.
    void Read() {
        QFile input;
        if (!input.open(kStandardInput, QIODevice::ReadOnly | QIODevice::Unbuffered))
            return;
        QByteArray line;
        qint64 size = 0;
        char character = 0;
        qint64 count = input.read(&character, 1); // asking for more would wait for it
        for (; count > 0; count = input.read(&character, 1)) {
            if (character != '\n') {
                if (++size <= kLongest)
                    line += character;
                continue;
            }
            if (size > kLongest)
                Post([this, size] { takers.takeTooLong(size); });
            else
                Post([this, line] { takers.take(line); });
            line.clear();
            size = 0;
        }
        if (count < 0)
            return;
        Post([this] { takers.end(); });
        std::unique_lock<std::mutex> hold(lock);
        if (!gone.wait_for(hold, kToEnd, [this] { return !receiver; }))
            LeaveAtOnce(kLeftAtOnce, "the script does not come back; it is left at once");
    }
};

Orders::Orders(Takers takers)
    : m_state(std::make_shared<State>()) {
    m_state->receiver = std::make_unique<QObject>();
    m_state->takers = std::move(takers);
    LetTerminalRefuse();
    std::thread([state = m_state] { state->Read(); }).detach();
}

Orders::~Orders() {
    std::unique_ptr<QObject> receiver;
    {
        const std::lock_guard<std::mutex> hold(m_state->lock);
        receiver = std::move(m_state->receiver);
    }
    m_state->gone.notify_all();
}

} // namespace stagehost

#include "HostResolver.h"

#include <atomic>

#include "HostLookup.h"
#include "MEvent.h"
#include "RunWithinMemory.h"
#include "SocketAddress.h"
#include "SystemThread.h"

/// Shared by the caller and the thread that looks up; the first who has an outcome settles it.
struct HostResolver::Question {
    explicit Question(std::string host)
        : name(std::move(host)) {}

    void Settle(Outcome value) {
        Outcome pending = Outcome::Pending;
        outcome.compare_exchange_strong(pending, value);
        settled.Set();
    }

    const std::string name;
    std::uint32_t address = 0; // written by the thread before it settles, read after
    std::atomic<Outcome> outcome{Outcome::Pending};
    MEvent settled;
};

std::uint32_t HostResolver::GetCancelCount() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_cancelCount;
}

HostResolver::Outcome HostResolver::Resolve(const std::string& host, std::uint32_t cancelCount,
                                            std::uint32_t& address) {
    if (ParseDottedAddress(host.c_str(), address))
        return Outcome::Found;
    const std::shared_ptr<Question> question = Ask(host, cancelCount);
    if (!question)
        return Outcome::Cancelled;
    const auto lookUp = [question] {
        bool found = false;
        RunWithinMemory([&] { found = LookUpHost(question->name, question->address); });
        question->Settle(found ? Outcome::Found : Outcome::NotFound);
        return 0U;
    };
    if (!SystemThread::Create(lookUp))
        question->Settle(Outcome::NotFound);
    question->settled.Wait();
    if (question->outcome == Outcome::Found)
        address = question->address;
    return question->outcome;
}

std::shared_ptr<HostResolver::Question> HostResolver::Ask(const std::string& host, std::uint32_t cancelCount) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_cancelCount != cancelCount)
        return nullptr;
    m_question = std::make_shared<Question>(host);
    return m_question;
}

void HostResolver::Cancel() {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_cancelCount;
    if (m_question)
        m_question->Settle(Outcome::Cancelled);
    m_question = nullptr;
}

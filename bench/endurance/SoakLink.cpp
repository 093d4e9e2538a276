#include "SoakLink.h"

#include "SoakHost.h"

namespace {

constexpr KXPCode kRefused = 72;

/// A request of a script's that another device answers.
class PerformRequest : public Request {
public:
    /// @param asked kept until the answer is there.
    PerformRequest(Ledger& ledger, IExecContext2& asked, const std::string& argument)
        : Request(ledger, false, "Answer", argument)
        , m_asked(asked) {
        m_asked.AddRef();
    }
    ~PerformRequest() override {
        m_asked.End();
        m_asked.Release();
    }

private:
    void Done() override { m_asked.SetResultText(Result().c_str()); }

    IExecContext2& m_asked;
};

} // namespace

KXPCode SoakLink::Code() {
    return m_host.faults.Strike() ? kRefused : KXPCode{KXP_OK};
}

KXPCode SoakLink::Text(IExecContext* context, const char* text) {
    auto* answer = QueryFace<IExecContext2>(context, "IExecContext2");
    if (answer != nullptr)
        answer->SetResultText(text);
    return Code();
}

KXPCode SoakLink::SetHandler(IManagerRemoteHandler* handler) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_handler = m_closed ? nullptr : handler;
    return KXP_OK;
}

void SoakLink::Close() {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_handler = nullptr;
    m_closed = true;
}

void SoakLink::Tell(const std::string& variable, const std::string& value) {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_handler != nullptr)
        m_handler->OnPropertyChange(variable.c_str(), "Value", value.c_str(), 0, 0);
}

KXPCode SoakLink::Perform(const char* object, const char* /*action*/, const char* parameters, IExecContext* context,
                          void* /*reserved*/) {
    auto* asked = QueryFace<IExecContext2>(context, "IExecContext2");
    if (asked == nullptr || m_host.faults.Strike())
        return kRefused;
    context->Begin();
    auto* request = new PerformRequest(m_host.ledger, *asked, parameters);
    m_host.errands.Post([this, request, device = std::string(object)] { m_host.SendTo(device, request); });
    return KXP_PENDING;
}

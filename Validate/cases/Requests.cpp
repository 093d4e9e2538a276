#include <atomic>
#include <thread>

#include "BusyScript.h"
#include "Cases.h"

namespace {

constexpr const char* kAnswer = "the answer";

/// When a request is ended.
enum class EndAt { Never, Inside, Before, OnAnotherThread, BehindStop, BehindRelease };

/// One way of a host with a request.
struct Way {
    const char* name;
    KXPCode code;
    bool isBegun;
    bool isHeld; ///< with a reference of the host's own
    EndAt end;
    int ends;         ///< how often
    const char* text; ///< what the script gets
};

constexpr Way kWays[] = {
    {"answered at once", KXP_OK, false, false, EndAt::Never, 0, kAnswer},
    {"refused", KXP_NOT_IMPLEMENTED, false, false, EndAt::Never, 0, ""},
    {"refused and ended", KXP_NOT_IMPLEMENTED, false, false, EndAt::Inside, 1, ""},
    {"answered at once and ended", KXP_OK, true, false, EndAt::Inside, 1, kAnswer},
    {"pending, ended inside the call", KXP_PENDING, true, false, EndAt::Inside, 1, kAnswer},
    {"pending, ended inside the call and held", KXP_PENDING, true, true, EndAt::Inside, 1, kAnswer},
    {"pending, ended on another thread before the answer", KXP_PENDING, true, true, EndAt::Before, 1, kAnswer},
    {"pending, ended on another thread", KXP_PENDING, true, true, EndAt::OnAnotherThread, 1, kAnswer},
    {"pending, ended on another thread by a host that holds nothing", KXP_PENDING, true, false, EndAt::OnAnotherThread,
     1, kAnswer},
    {"pending, ended twice", KXP_PENDING, true, true, EndAt::OnAnotherThread, 2, kAnswer},
    {"pending, ended behind Stop", KXP_PENDING, true, true, EndAt::BehindStop, 1, nullptr},
    {"pending, ended three times behind Stop", KXP_PENDING, true, true, EndAt::BehindStop, 3, nullptr},
    {"pending, ended behind Release", KXP_PENDING, true, true, EndAt::BehindRelease, 1, nullptr},
    {"pending, ended twice behind Release", KXP_PENDING, true, true, EndAt::BehindRelease, 2, nullptr},
    {"pending, never ended", KXP_PENDING, true, false, EndAt::Never, 0, nullptr},
};

/// The host's side of one request at a time.
class Clerk {
public:
    explicit Clerk(const Way& way)
        : m_way(way) {}
    ~Clerk() {
        if (m_thread.joinable())
            m_thread.join();
    }
    Clerk(const Clerk&) = delete;
    Clerk& operator=(const Clerk&) = delete;

    KXPCode Answer(IExecContext2& request) {
        if (m_way.isBegun)
            request.Begin();
        if (m_way.isHeld)
            request.AddRef();
        m_request = &request;
        if (m_way.end == EndAt::Inside)
            End();
        else if (m_way.end == EndAt::Before)
            std::thread([this] { End(); }).join();
        else if (m_way.end == EndAt::OnAnotherThread)
            m_thread = std::thread([this] { End(); });
        else if (m_way.code == KXP_OK)
            request.SetResultText(kAnswer);
        return m_way.code;
    }
    /// Ends a held request that is due at that time.
    void Pass(EndAt now) {
        if (m_request != nullptr && m_way.end == now)
            End();
    }

private:
    void End() {
        IExecContext2& request = *m_request.load();
        request.SetErrorCode(KXP_OK);
        request.SetResultText(kAnswer);
        for (int count = 0; count < m_way.ends; ++count)
            request.End();
        if (m_way.isHeld)
            request.Release();
    }

    const Way& m_way;
    std::atomic<IExecContext2*> m_request{nullptr};
    std::thread m_thread;
};

std::string AskingSetup() {
    return SetupWith("var script = { Device: { Got: 'nothing' },\n"
                     "  Ask: function (a) { script.Device.Got = QCalverin.Perform('host', a); },\n"
                     "  AskLater: function (a) { QCalverin.PerformAsync(\n"
                     "    function (text) { script.Device.Got = text === undefined ? '' : text; }, 'host', a); } };\n"
                     "script;",
                     "Got");
}

/// What is not ended is not called back; what is, brings its text along, even if it was refused.
void ExpectText(HostedDevice& device, const Way& way, bool isLater) {
    if (isLater && way.end == EndAt::Never)
        return;
    const std::string text = isLater ? kAnswer : way.text;
    const bool isThere = WaitForText(device, "Got", text);
    Trial::Expect(isThere, "the script gets \"" + device.Variables().Text("Got") + "\" as the answer",
                  "\"" + text + "\"");
}

void ExpectEnd(ContextTally& tally, const std::string& when) {
    Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context of the command that asks does not end" + when,
                  "it ends with the host's answer, or with Stop");
}

void Ask(Trial& trial, const Way& way, const std::string& function) {
    trial.Step(function + ", " + way.name);
    ModuleHost host;
    Clerk clerk(way);
    ContextTally tally;
    std::atomic<bool> isAsked{false};
    host.answering = [&](const char* call, IExecContext2& request) {
        if (std::string(call) != "Perform")
            return KXPCode{KXP_OK}; // what a device asks by itself
        const KXPCode code = clerk.Answer(request);
        isAsked = true;
        return code;
    };
    LoadOrFail(host, trial);
    HostedDevice device(host);
    StartScript(device, AskingSetup(), {"Ask", "AskLater"});
    std::vector<std::string> texts(kFunctionParameters);
    texts[0] = function;
    CallScript(device, texts, tally);
    if (way.text != nullptr) {
        ExpectEnd(tally, "");
        ExpectText(device, way, function == "AskLater");
    } else {
        const auto end = std::chrono::steady_clock::now() + kTrialWait;
        while (!isAsked && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        Trial::Expect(isAsked, "the host gets no request from " + function, "IManagerRemote2::Perform");
        trial.Step(function + ", " + way.name + ": Stop");
        device->Stop();
        ExpectEnd(tally, " behind Stop");
        clerk.Pass(EndAt::BehindStop);
    }
    trial.Step(function + ", " + way.name + ": Release");
    device.End();
    clerk.Pass(EndAt::BehindRelease);
    Trial::ExpectCount(tally.ended, 1, "ends of the context of the command that asks");
    Trial::ExpectCount(tally.wrong, 0, "Begins or Ends too many of the context of the command that asks");
}

} // namespace

void AnswersReachScripts(Trial& trial) {
    for (int round = trial.Times(1000, 1); round > 0; --round)
        for (const Way& way : kWays)
            for (const char* function : {"Ask", "AskLater"})
                Ask(trial, way, function);
}

void AnswersOnOlderLink(Trial& trial) {
    for (int round = trial.Times(1000, 2); round > 0; --round) {
        ModuleHost host;
        ContextTally tally;
        host.OfferOlderLink();
        LoadOrFail(host, trial);
        HostedDevice device(host);
        StartScript(device, AskingSetup(), {"Ask"});
        trial.Step("a request on the older link");
        std::vector<std::string> texts(kFunctionParameters);
        texts[0] = "Ask";
        CallScript(device, texts, tally);
        ExpectEnd(tally, "");
        const bool isThere = WaitForText(device, "Got", "Perform");
        Trial::Expect(isThere, "the script gets \"" + device.Variables().Text("Got") + "\" as the answer",
                      "\"Perform\", the text of the link");
        device.End();
        Trial::ExpectCount(host.OlderLink().TextsOut(), 0, "texts of the older link were not given back with FreeText");
    }
}

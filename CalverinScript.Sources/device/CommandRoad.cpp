#include "CommandRoad.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "DeviceTexts.h"
#include "ICommandObjectHandler.h"
#include "Log.h"
#include "MyCommandManager.h"
#include "RunWithinMemory.h"

namespace {

constexpr int kRoadLevel = 7;
constexpr int kTroubleLevel = 5;
constexpr std::int32_t kExecutionsPerCommand = 2;

/// One kind of request: its name in the log and what it shows in "Status".
struct RequestKind {
    std::int32_t id;
    const char* name;
    DeviceStatus status;
    bool isScripts; ///< the script's own: clears no error, shows no status
};

constexpr RequestKind kRequestKinds[] = {
    {kLoadFromFile, "LoadScriptFromFile", DeviceStatus::Loading, false},
    {kLoadFromText, "LoadScriptFromText", DeviceStatus::Loading, false},
    {kExecuteFunction, "ExecuteScriptFunction", DeviceStatus::Executing, false},
    {kExecuteFunctionWithParams, "ExecuteScriptFunctionWithParams", DeviceStatus::Executing, false},
    {kScriptCallback, "ExecuteCallBack", DeviceStatus::Executing, true},
};

const RequestKind* KindOf(std::int32_t id) {
    const auto* kind = std::find_if(std::begin(kRequestKinds), std::end(kRequestKinds),
                                    [id](const RequestKind& candidate) { return candidate.id == id; });
    return kind != std::end(kRequestKinds) ? kind : nullptr;
}

std::string Printable(const char* text) {
    return text != nullptr ? text : "";
}

/// The texts of a request as the log shows them, a blank in front; empty for none.
std::string LogTexts(const ScriptRequest& request) {
    if (request.id == kScriptCallback)
        return "";
    std::string texts = " " + Printable(request.text);
    if (request.id == kExecuteFunctionWithParams)
        for (std::size_t i = 0; i < request.params.size(); ++i)
            texts += (i == 0 ? ", " : ",") + Printable(request.params[i]);
    return texts;
}

/// A line for which there is no memory is left out: it is worth no command.
void LogStep(const RequestKind& kind, const ScriptRequest& request, const char* device, const char* step,
             std::int32_t stackCount) {
    if (!IsLogOn(false))
        return;
    RunWithinMemory([&] {
        WriteLog(LogHandle(), kRoadLevel, "kxpCalverinScript [%s] %s [%s]:%s - Stack: %d", device, kind.name, step,
                 LogTexts(request).c_str(), stackCount);
    });
}

void LogExecuted(const RequestKind& kind, const ScriptRequest& request, const char* device) {
    if (!IsLogOn(false))
        return;
    RunWithinMemory([&] {
        const std::string texts = LogTexts(request);
        WriteLog(LogHandle(), kRoadLevel, "kxpCalverinScript [%s] %s [executed]%s%s", device, kind.name,
                 texts.empty() ? "" : ":", texts.c_str());
    });
}

} // namespace

CommandRoad::CommandRoad(MyCommandManager& queue, IThreadHandler& threadBody, ICommandObjectHandler& contexts,
                         ICommandWork& work, std::size_t stackSize)
    : m_queue(queue)
    , m_contexts(contexts)
    , m_work(work)
    , m_thread(&threadBody)
    , m_dropped([this](std::uint64_t count) { TellDropped(count); }) {
    m_thread.SetStackSize(stackSize);
}

void CommandRoad::Start() {
    if (m_thread.StopRequested() && !m_thread.Wait(kInfinite))
        m_thread.TakeStopBack();
    m_isMissing = !m_thread.Start(false);
}

bool CommandRoad::HasThread() {
    if (m_isMissing)
        Start();
    return !m_isMissing;
}

void CommandRoad::BeginRun() {
    m_queue.KeepFromHere(true);
}

void CommandRoad::EndRun() {
    m_queue.KeepFromHere(false);
    m_thread.Stop(false);
}

/// The commands that go end the contexts of their requests.
void CommandRoad::Stop() {
    m_isMissing = false;
    m_thread.Stop(false);
    m_queue.WakeCommandThread();
    m_thread.Wait(kInfinite);
    m_queue.ClearCommands();
    m_dropped.TellRest();
}

/// Only a function with parameters has a context that is ended; with the others it travels along. The host may release
/// the device when its context begins, which then ends here.
bool CommandRoad::Post(const ScriptRequest& request, IExecContext* context) {
    const RequestKind* kind = KindOf(request.id);
    if (kind == nullptr || !m_work.MayPost())
        return false;
    LogStep(*kind, request, m_work.GetRoadName().c_str(), "post", m_stackCount.Read());
    const bool endsContext = request.id == kExecuteFunctionWithParams;
    auto command = std::make_unique<MCommandObject>(&m_queue, request.id, 0, endsContext ? &m_contexts : nullptr,
                                                    endsContext ? context : nullptr);
    if (!m_work.MayPost())
        return true;
    command->AddVoidParam(context, kPointerParamSize);
    request.AddTo(*command);
    Queue(std::move(command));
    return true;
}

void CommandRoad::Queue(std::unique_ptr<MCommandObject> command) {
    command->SetTimeout(kCommandTimeoutMs);
    m_stackCount.Increment();
    std::unique_ptr<MCommandObject> dropped;
    m_queue.PostCommand(command.release(), dropped);
    if (dropped)
        LetGo(*dropped);
}

void CommandRoad::LetGo(const MCommandObject& dropped) {
    m_stackCount.DecrementUnlessZero();
    m_dropped.Note(1);
    const ScriptRequest request = ScriptRequest::Of(dropped);
    if (request.id == kScriptCallback)
        m_work.DropAnswer(request.answer);
}

bool CommandRoad::Execute(const ScriptRequest& request) {
    const RequestKind* kind = KindOf(request.id);
    if (kind == nullptr)
        return false;
    LogStep(*kind, request, m_work.GetRoadName().c_str(), "execute", m_stackCount.Read());
    if (!kind->isScripts) {
        m_work.ShowError("");
        m_work.ShowStatus(kind->status);
    }
    const bool done = m_work.Run(request);
    RunWithinMemory([&] { LogExecuted(*kind, request, m_work.GetRoadName().c_str()); });
    if (!kind->isScripts)
        RunWithinMemory([&] { m_work.ShowStatus(DeviceStatus::Ready); });
    return done;
}

/// A function whose command the script has taken is over for the queue, whatever it gave: its answer comes later.
bool CommandRoad::ExecuteCommand(MCommandObject& command) {
    const bool isFunction = command.GetId() == kExecuteFunctionWithParams;
    if (isFunction)
        m_executing = &command;
    bool done = false;
    if (!RunWithinMemory([&] { done = Execute(ScriptRequest::Of(command)); }))
        TellWantOfMemory();
    const bool taken = isFunction && m_executing.exchange(nullptr) == nullptr;
    if (!done && !taken) {
        m_queue.HoldCurrentCommand();
        return false;
    }
    m_queue.FinishCurrentCommand(taken ? &command : nullptr);
    m_stackCount.DecrementUnlessZero();
    m_work.OnCommandOver();
    return true;
}

/// The command is held, and by its second execution there may be memory again.
void CommandRoad::TellWantOfMemory() {
    RunWithinMemory([this] { m_work.ShowError(DeviceText::kNoMemory); });
    RunWithinMemory([this] { LogWantOfMemory(m_work.GetRoadName().c_str(), "a command"); });
}

void CommandRoad::Serve(MThread& thread) {
    while (!thread.StopRequested()) {
        m_queue.WaitForCommand(kInfinite);
        // What is taken is executed: it may be of a run that has begun behind the stop.
        while (!thread.StopRequested() && m_queue.TakeNextCommand() == kCommandDone)
            m_queue.ExecuteCurrentCommand();
    }
}

void CommandRoad::OnTick() {
    m_dropped.TellDue();
    CheckExpired();
}

/// A held command is executed once more after its time; after the second time it is given up.
void CommandRoad::CheckExpired() {
    MCommandObject* command = nullptr;
    if (!m_queue.CheckCommandTimeout(&command))
        return;
    if (command->IncrementRetries() < kExecutionsPerCommand)
        m_queue.ExecuteCurrentCommand();
    else
        GiveUp(command);
    m_queue.UnlockCurrentCommand();
}

void CommandRoad::GiveUp(MCommandObject* command) {
    m_work.ShowError(DeviceText::kCommandTimeOut);
    m_work.ShowStatus(DeviceStatus::Ready);
    if (IsLogOn(false))
        WriteLog(LogHandle(), kTroubleLevel, "CalverinScript_ [%s] Command Timeout ID : %d",
                 m_work.GetRoadName().c_str(), command != nullptr ? command->GetId() : -1);
    m_queue.FinishCurrentCommand(nullptr);
    m_stackCount.DecrementUnlessZero();
    if (m_queue.TakeNextCommand() == kCommandDone)
        m_queue.ExecuteCurrentCommand();
}

void CommandRoad::TellDropped(std::uint64_t count) {
    if (IsLogOn(false))
        WriteLog(LogHandle(), kTroubleLevel,
                 "CalverinScript_ [%s] %llu commands or answers dropped: more than %d were waiting",
                 m_work.GetRoadName().c_str(), static_cast<unsigned long long>(count), m_queue.GetMaxQueued());
}

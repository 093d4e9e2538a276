#include "Device.h"

#include <algorithm>
#include <atomic>

#include "BorderText.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "ShowClock.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = Device::Milliseconds;

constexpr Milliseconds kBlockedStop(100);  // for the Stop of a blocked device, and for calls to leave one
constexpr Milliseconds kComeBack(2000);    // for blocked calls to return once the device has been released
constexpr Milliseconds kHeldCommand(6000); // a held command is run once more, or given up, after 5 s
constexpr const char* kGivenUp = "Command Timeout.";

Milliseconds Left(Clock::time_point deadline) {
    return std::max(Milliseconds(0), std::chrono::duration_cast<Milliseconds>(deadline - Clock::now()));
}

} // namespace

Device::Device(HostedModule& module, std::string name, Conduct conduct)
    : m_module(module)
    , m_pool(module.TheHost().Pool())
    , m_name(std::move(name))
    , m_conduct(conduct)
    , m_variables(std::make_shared<DeviceVariables>(m_name, module.TheHost().Variables())) {}

Device::~Device() {
    Shutdown(kComeBack);
}

std::optional<Device::Problem> Device::Create(const std::string& setup) {
    m_variables->SetDefinition(m_module.Module()->GetDefinition());
    IKXPDevice* device = nullptr;
    const KXPCode made = m_module.Module()->CreateDevice(nullptr, &device);
    if (made != KXP_OK || device == nullptr)
        return Problem{false, QStringLiteral("the module makes no device (code %1)").arg(made)};
    const auto release = [](IKXPDevice* unused) { unused->Release(); };
    std::unique_ptr<IKXPDevice, decltype(release)> held(device, release); // until there is an object that lets go of it
    m_object = std::make_shared<DeviceObject>(m_name, m_conduct, device, m_variables, TheHost().Variables(), m_pool,
                                              TheHost().Commands());
    m_device = held.release();
    TheHost().Model().AddDevice(m_object);
    m_device->SetDeviceVariables(m_variables.get());
    return TakeSetup(setup);
}

std::optional<Device::Problem> Device::TakeSetup(const std::string& setup) {
    m_device->SetName(m_name.c_str());
    const std::string text = setup.empty() ? Setup().value_or(std::string()) : setup;
    const KXPCode applied = text.empty() ? KXP_OK : m_device->SetSetup(text.c_str());
    if (applied != KXP_OK && !setup.empty())
        return Problem{true, QStringLiteral("the device does not take its setup (code %1)").arg(applied)};
    m_device->SetName(m_name.c_str()); // a setup brings the name that the device had when it was stored
    if (RefreshDefinition() == nullptr || m_variables->Definition()->commands.empty())
        return Problem{
            false,
            QStringLiteral("the device has no usable definition. %1").arg(FromBorderText(m_variables->LastError()))};
    return std::nullopt;
}

KXPCode Device::ShowSetup() {
    const KXPCode code = m_device->ShowSetup(nullptr);
    RefreshDefinition();
    return code;
}

IKXPDevicePanel* Device::CreatePanel() {
    constexpr std::uint32_t kControlPanel = 1;
    IKXPDevicePanel* panel = nullptr;
    return m_device != nullptr && m_device->CreatePanel(kControlPanel, &panel) == KXP_OK ? panel : nullptr;
}

bool Device::Start(Milliseconds limit) {
    m_started = true;
    return RunInTime(m_pool.Run([device = m_device] { device->Start(); }), limit, &MainWait::UntilInterrupted);
}

bool Device::Stop(Milliseconds limit) {
    m_started = false;
    return RunInTime(m_pool.Run([device = m_device] { device->Stop(); }), limit, &MainWait::UntilInterrupted);
}

CommandOutcome Device::Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                            Milliseconds limit) {
    if (m_mayHold)
        Settle();
    const auto begin = Clock::now();
    const auto call = std::make_shared<Call>(command, inputs, *m_variables, &MainWait::Wake);
    m_calls.push_back(call);
    call->task = m_pool.Run([device = m_device, call] {
        call->code = device->ExecuteCommand(call->id, call->params.get(), call->watch->Context());
    });
    CommandOutcome outcome = Await(*call, limit);
    outcome.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    Complete(outcome, *call);
    call->watch->StopLooking();
    const bool answered =
        outcome.kind != CommandOutcome::Kind::NoAnswer && outcome.kind != CommandOutcome::Kind::Interrupted;
    if (answered && !m_mayHold)
        m_calls.pop_back();
    return outcome;
}

bool Device::Shutdown(Milliseconds limit) {
    if (m_device == nullptr)
        return true;
    TheHost().Model().RemoveDevice(m_name);
    m_object->Close();
    TheHost().EndWaitingOfOlderLink();
    WithdrawCalls();
    const bool quiet = MainWait::Until([this] { return AllBack(); }, kBlockedStop);
    if (m_started && quiet)
        RunInTime(m_pool.Run([device = m_device] { device->Stop(); }), m_blocked ? kBlockedStop : limit,
                  &MainWait::Until);
    WithdrawCalls();
    TheHost().CloseLink(m_device);
    m_device->Release();
    TheHost().ForgetDevice(m_device);
    m_device = nullptr;
    const bool back = MainWait::Until([this] { return AllBack(); }, kComeBack);
    if (!back)
        return false;
    m_calls.clear();
    m_object->Forget();
    m_object.reset();
    return true;
}

std::string Device::ErrorText() const {
    const auto error = m_variables->FindState("Error");
    return error ? error->Text() : std::string();
}

const char* Device::RefreshDefinition() {
    const char* text = m_device->GetDefinition();
    if (text != nullptr && !m_variables->IsDefinedBy(text))
        m_variables->SetDefinition(text);
    return text;
}

std::optional<std::string> Device::Setup() const {
    char* text = nullptr;
    if (m_device == nullptr || m_device->GetSetup(&text) != KXP_OK || text == nullptr)
        return std::nullopt;
    std::string setup = text;
    m_device->ReleaseString(&text);
    return setup;
}

/// The module looks at names and parameters alone, so the number is compared here.
Device::Standing Device::Check(const StoredCommandXml& stored) {
    const CommandDefinition& command = stored.Command();
    ObjectParams params(command.properties);
    for (const auto& parameter : command.parameters)
        params.Add(MakeValue(parameter), nullptr);
    const KXPCode code = m_module.Module()->CheckCommand(nullptr, m_device, command.id, &params);
    if (code == KXP_COMMANDS_CHANGED)
        return Standing::Gone;
    const auto definition = m_variables->Definition();
    const auto byId = definition->FindCommandOfId(command.id);
    if (code != KXP_OK || byId == nullptr)
        return byId == nullptr && command.FunctionName().empty() ? Standing::Gone : Standing::Changed;
    return byId->FunctionName() == command.FunctionName() ? Standing::Valid : Standing::Changed;
}

std::optional<StoredCommandXml> Device::Update(const StoredCommandXml& stored) {
    char* text = nullptr;
    const KXPCode code = m_device->UpdateCommand(ToBorderText(stored.Print()).c_str(), &text);
    if (code != KXP_OK || text == nullptr)
        return std::nullopt;
    QString problem;
    auto updated = StoredCommandXml::Read(FromOutsideText(text), &problem);
    m_device->ReleaseString(&text);
    return updated;
}

CommandOutcome Device::Await(Call& call, Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    CommandOutcome outcome;
    if (!RunInTime(call.task, limit, &MainWait::UntilInterrupted))
        return Unanswered();
    outcome.code = call.code;
    if (outcome.code != KXP_OK) {
        outcome.kind = CommandOutcome::Kind::Refused;
        return outcome;
    }
    using Verdict = CommandWatch::Verdict;
    Verdict verdict = Verdict::Running;
    const auto judged = [&] { return (verdict = call.watch->Judge(Clock::now())) != Verdict::Running; };
    while (!MainWait::UntilInterrupted(judged, std::min(MachineTime(kLook), Left(deadline)))) {
        if (Clock::now() >= deadline || Interrupt::HasCome())
            return Unanswered();
    }
    m_mayHold = verdict == Verdict::Failed;
    const bool failed = verdict == Verdict::Failed || !call.watch->OwnError().empty();
    outcome.kind = failed ? CommandOutcome::Kind::ScriptFailed : CommandOutcome::Kind::Done;
    return outcome;
}

CommandOutcome Device::Unanswered() {
    m_blocked = true;
    CommandOutcome outcome;
    if (Interrupt::HasCome())
        outcome.kind = CommandOutcome::Kind::Interrupted;
    return outcome;
}

void Device::Complete(CommandOutcome& outcome, const Call& call) const {
    outcome.result = call.ResultText();
    const auto status = Status();
    outcome.status = status ? status->Text() : std::string();
    outcome.error = call.watch->OwnError();
    outcome.answered = call.watch->IsAnswered();
}

void Device::Settle() {
    m_mayHold = false;
    const auto status = Status();
    if (!status)
        return;
    auto active = std::make_shared<std::atomic<bool>>(false);
    const Observation observation = status->Observe([active] {
        *active = true;
        MainWait::Wake();
    });
    const auto givenUp = [this] { return ErrorText() == kGivenUp; };
    if (MainWait::UntilInterrupted([&] { return *active || givenUp(); }, kHeldCommand))
        MainWait::UntilInterrupted(givenUp, kHeldCommand);
}

bool Device::RunInTime(const std::shared_ptr<Task>& task, Milliseconds limit, Wait wait) {
    m_tasks.erase(std::remove_if(m_tasks.begin(), m_tasks.end(), [](const auto& other) { return other->IsDone(); }),
                  m_tasks.end());
    m_tasks.push_back(task);
    const bool inTime = wait([&] { return task->IsDone(); }, limit);
    m_blocked = m_blocked || !inTime;
    return inTime;
}

/// On a busy computer a call may not have begun when nobody waits for it any more; the device may be gone by then.
void Device::WithdrawCalls() {
    for (const auto& task : m_tasks)
        task->Withdraw();
}

bool Device::AllBack() const {
    const bool done = std::all_of(m_tasks.begin(), m_tasks.end(), [](const auto& task) { return task->IsDone(); });
    return done && (!m_object || m_object->IsEmpty());
}

} // namespace stagehost

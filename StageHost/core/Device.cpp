#include "Device.h"

#include <algorithm>
#include <atomic>

#include "BorderText.h"
#include "Interrupt.h"
#include "MainWait.h"
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

Device::Device(ModuleFile& module, std::string name, Conduct conduct)
    : module_(module)
    , pool_(module.TheHost().Pool())
    , name_(std::move(name))
    , conduct_(conduct)
    , variables_(std::make_shared<DeviceVariables>(name_, module.TheHost().Variables())) {}

Device::~Device() {
    Shutdown(kComeBack);
}

std::optional<Device::Problem> Device::Create(const std::string& setup) {
    variables_->SetDefinition(module_.Module()->GetDefinition());
    const KXPCode made = module_.Module()->CreateDevice(nullptr, &device_);
    if (made != KXP_OK || device_ == nullptr) {
        device_ = nullptr;
        return Problem{false, QStringLiteral("the module makes no device (code %1)").arg(made)};
    }
    object_ = std::make_shared<DeviceObject>(name_, conduct_, device_, variables_, TheHost().Variables(), pool_,
                                             TheHost().Commands());
    TheHost().Model().AddDevice(object_);
    device_->SetDeviceVariables(variables_.get());
    return TakeSetup(setup);
}

std::optional<Device::Problem> Device::TakeSetup(const std::string& setup) {
    device_->SetName(name_.c_str());
    const std::string text = setup.empty() ? Setup() : setup;
    const KXPCode applied = text.empty() ? KXP_OK : device_->SetSetup(text.c_str());
    if (applied != KXP_OK && !setup.empty())
        return Problem{true, QStringLiteral("the device does not take its setup (code %1)").arg(applied)};
    device_->SetName(name_.c_str()); // a setup brings the name that the device had when it was stored
    if (RefreshDefinition() == nullptr || variables_->Definition()->commands.empty())
        return Problem{
            false,
            QStringLiteral("the device has no usable definition. %1").arg(FromBorderText(variables_->LastError()))};
    return std::nullopt;
}

bool Device::Start(Milliseconds limit) {
    started_ = true;
    return RunInTime(pool_.Run([device = device_] { device->Start(); }), limit, &MainWait::UntilInterrupted);
}

CommandOutcome Device::Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                            Milliseconds limit) {
    if (mayHold_)
        Settle();
    const auto begin = Clock::now();
    const auto call = std::make_shared<Call>(command, inputs, *variables_, &MainWait::Wake);
    calls_.push_back(call);
    call->task = pool_.Run([device = device_, call] {
        call->code = device->ExecuteCommand(call->id, call->params.get(), call->watch->Context());
    });
    CommandOutcome outcome = Await(*call, limit);
    outcome.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    Complete(outcome, *call);
    call->watch->StopLooking();
    const bool answered =
        outcome.kind != CommandOutcome::Kind::NoAnswer && outcome.kind != CommandOutcome::Kind::Interrupted;
    if (answered && !mayHold_)
        calls_.pop_back();
    return outcome;
}

bool Device::Shutdown(Milliseconds limit) {
    if (device_ == nullptr)
        return true;
    TheHost().Model().RemoveDevice(name_);
    object_->Close();
    TheHost().EndWaitingOfOlderLink();
    const bool quiet = MainWait::Until([this] { return AllBack(); }, kBlockedStop);
    if (started_ && quiet)
        RunInTime(pool_.Run([device = device_] { device->Stop(); }), blocked_ ? kBlockedStop : limit, &MainWait::Until);
    TheHost().CloseLink(device_);
    device_->Release();
    TheHost().ForgetDevice(device_);
    device_ = nullptr;
    const bool back = MainWait::Until([this] { return AllBack(); }, kComeBack);
    if (!back)
        return false;
    calls_.clear();
    object_->Forget();
    object_.reset();
    return true;
}

std::string Device::ErrorText() const {
    const auto error = variables_->FindState("Error");
    return error ? error->Text() : std::string();
}

const char* Device::RefreshDefinition() {
    const char* text = device_->GetDefinition();
    if (text != nullptr && !variables_->IsDefinedBy(text))
        variables_->SetDefinition(text);
    return text;
}

std::string Device::Setup() const {
    char* text = nullptr;
    if (device_->GetSetup(&text) != KXP_OK || text == nullptr)
        return {};
    std::string setup = text;
    device_->ReleaseString(&text);
    return setup;
}

/// The module looks at names and parameters alone, so the number is compared here.
Device::Standing Device::Check(const StoredCommand& stored) {
    const CommandDefinition& command = stored.Command();
    ObjectParams params(command.properties);
    for (const auto& parameter : command.parameters)
        params.Add(MakeValue(parameter), nullptr);
    const KXPCode code = module_.Module()->CheckCommand(nullptr, device_, command.id, &params);
    if (code == KXP_COMMANDS_CHANGED)
        return Standing::Gone;
    const auto definition = variables_->Definition();
    const auto byId = definition->FindCommandOfId(command.id);
    if (code != KXP_OK || byId == nullptr)
        return byId == nullptr && command.FunctionName().empty() ? Standing::Gone : Standing::Changed;
    return byId->FunctionName() == command.FunctionName() ? Standing::Valid : Standing::Changed;
}

std::optional<StoredCommand> Device::Update(const StoredCommand& stored) {
    char* text = nullptr;
    const KXPCode code = device_->UpdateCommand(ToBorderText(stored.Print()).c_str(), &text);
    if (code != KXP_OK || text == nullptr)
        return std::nullopt;
    QString problem;
    auto updated = StoredCommand::Read(FromOutsideText(text), &problem);
    device_->ReleaseString(&text);
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
    while (!MainWait::UntilInterrupted(judged, std::min(kLook, Left(deadline)))) {
        if (Clock::now() >= deadline || Interrupt::HasCome())
            return Unanswered();
    }
    mayHold_ = verdict == Verdict::Failed;
    const bool failed = verdict == Verdict::Failed || !ErrorText().empty();
    outcome.kind = failed ? CommandOutcome::Kind::ScriptFailed : CommandOutcome::Kind::Done;
    return outcome;
}

CommandOutcome Device::Unanswered() {
    blocked_ = true;
    CommandOutcome outcome;
    if (Interrupt::HasCome())
        outcome.kind = CommandOutcome::Kind::Interrupted;
    return outcome;
}

void Device::Complete(CommandOutcome& outcome, const Call& call) const {
    outcome.result = call.ResultText();
    const auto status = Status();
    outcome.status = status ? status->Text() : std::string();
    outcome.error = ErrorText();
}

void Device::Settle() {
    mayHold_ = false;
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
    tasks_.erase(std::remove_if(tasks_.begin(), tasks_.end(), [](const auto& other) { return other->IsDone(); }),
                 tasks_.end());
    tasks_.push_back(task);
    const bool inTime = wait([&] { return task->IsDone(); }, limit);
    blocked_ = blocked_ || !inTime;
    return inTime;
}

bool Device::AllBack() const {
    const bool done = std::all_of(tasks_.begin(), tasks_.end(), [](const auto& task) { return task->IsDone(); });
    return done && (!object_ || object_->IsEmpty());
}

} // namespace stagehost

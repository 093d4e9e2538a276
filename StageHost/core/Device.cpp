#include "Device.h"

#include <algorithm>
#include <atomic>

#include "BorderText.h"
#include "MainWait.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = Device::Milliseconds;

constexpr Milliseconds kLook(50);          // how often a verdict is asked for that ripens with time alone
constexpr Milliseconds kBlockedStop(100);  // for the Stop of a device that is known to be blocked
constexpr Milliseconds kComeBack(2000);    // for blocked calls to return once the device has been released
constexpr Milliseconds kHeldCommand(6000); // a held command is run once more, or given up, after 5 s
constexpr const char* kGivenUp = "Command Timeout.";

Milliseconds Left(Clock::time_point deadline) {
    return std::max(Milliseconds(0), std::chrono::duration_cast<Milliseconds>(deadline - Clock::now()));
}

const ValueSpec* FindParameter(const CommandDefinition& command, const std::string& name) {
    const auto& all = command.parameters;
    auto found = std::find_if(all.begin(), all.end(), [&](const auto& parameter) { return parameter.name == name; });
    if (found == all.end()) {
        std::size_t index = 0;
        found = std::find_if(all.begin(), all.end(), [&](const auto&) { return std::to_string(index++) == name; });
    }
    return found == all.end() ? nullptr : &*found;
}

const ParameterInput* FindInput(const CommandDefinition& command, const ValueSpec& parameter,
                                const std::vector<ParameterInput>& inputs) {
    const auto found = std::find_if(inputs.rbegin(), inputs.rend(), [&](const auto& input) {
        return FindParameter(command, input.name) == &parameter;
    });
    return found == inputs.rend() ? nullptr : &*found;
}

} // namespace

Device::Device(ModuleFile& module, WorkerPool& pool, std::string name)
    : module_(module)
    , pool_(pool)
    , name_(std::move(name))
    , variables_(name_, module.TheHost().Variables()) {}

Device::~Device() {
    Shutdown(kComeBack);
}

std::optional<Device::Problem> Device::Create(const std::string& setup) {
    variables_.SetDefinition(module_.Module()->GetDefinition());
    const KXPCode made = module_.Module()->CreateDevice(nullptr, &device_);
    if (made != KXP_OK || device_ == nullptr) {
        device_ = nullptr;
        return Problem{false, QStringLiteral("the module makes no device (code %1)").arg(made)};
    }
    device_->SetDeviceVariables(&variables_);
    device_->SetName(name_.c_str());
    const std::string text = setup.empty() ? Setup() : setup;
    const KXPCode applied = text.empty() ? KXP_OK : device_->SetSetup(text.c_str());
    if (applied != KXP_OK && !setup.empty())
        return Problem{true, QStringLiteral("the device does not take its setup (code %1)").arg(applied)};
    if (RefreshDefinition() == nullptr || variables_.Definition()->commands.empty())
        return Problem{
            false,
            QStringLiteral("the device has no usable definition. %1").arg(FromBorderText(variables_.LastError()))};
    return std::nullopt;
}

bool Device::Start(Milliseconds limit) {
    started_ = true;
    return RunInTime(pool_.Run([device = device_] { device->Start(); }), limit);
}

CommandOutcome Device::Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                            Milliseconds limit) {
    if (mayHold_)
        Settle();
    const auto begin = Clock::now();
    const auto call = MakeCall(command, inputs);
    calls_.push_back(call);
    call->task = pool_.Run([device = device_, call] {
        call->code = device->ExecuteCommand(call->id, call->params.get(), call->watch->Context());
    });
    CommandOutcome outcome = Await(*call, limit);
    outcome.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    Complete(outcome, *call);
    call->watch->StopLooking();
    if (outcome.kind != CommandOutcome::Kind::NoAnswer && !mayHold_)
        calls_.pop_back();
    return outcome;
}

QString Device::CheckInputs(const CommandDefinition& command, const std::vector<ParameterInput>& inputs) {
    for (const auto& input : inputs) {
        const ValueSpec* parameter = FindParameter(command, input.name);
        if (parameter == nullptr)
            return QStringLiteral("the command \"%1\" has no parameter \"%2\"")
                .arg(FromBorderText(command.name), FromBorderText(input.name));
        if (!input.variable && !MakeValue(*parameter)->SetText(input.text))
            return QStringLiteral("the parameter \"%1\" does not take \"%2\"")
                .arg(FromBorderText(input.name), FromBorderText(input.text));
    }
    return {};
}

bool Device::Shutdown(Milliseconds limit) {
    if (device_ == nullptr)
        return true;
    if (started_ && AllBack())
        RunInTime(pool_.Run([device = device_] { device->Stop(); }), blocked_ ? kBlockedStop : limit);
    device_->Release();
    module_.TheHost().ForgetDevice(device_);
    device_ = nullptr;
    const bool back = MainWait::Until([this] { return AllBack(); }, kComeBack);
    if (back)
        calls_.clear();
    return back;
}

std::string Device::ErrorText() const {
    const auto error = variables_.Find("Error");
    return error ? error->Text() : std::string();
}

const char* Device::RefreshDefinition() {
    const char* text = device_->GetDefinition();
    if (text != nullptr && !variables_.IsDefinedBy(text))
        variables_.SetDefinition(text);
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

std::shared_ptr<Device::Call> Device::MakeCall(const CommandDefinition& command,
                                               const std::vector<ParameterInput>& inputs) {
    auto call = std::make_shared<Call>();
    call->id = command.id;
    call->params = std::make_shared<ObjectParams>(command.properties);
    for (const auto& parameter : command.parameters) {
        std::shared_ptr<HostValue> own = MakeValue(parameter);
        const ParameterInput* input = FindInput(command, parameter, inputs);
        if (input != nullptr)
            own->SetText(input->text);
        call->params->Add(std::move(own), input == nullptr ? nullptr : input->variable);
    }
    call->watch = std::make_unique<CommandWatch>(Status(), variables_.Find("Error"));
    return call;
}

CommandOutcome Device::Await(Call& call, Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    CommandOutcome outcome;
    if (!RunInTime(call.task, limit))
        return outcome;
    outcome.code = call.code;
    if (outcome.code != KXP_OK) {
        outcome.kind = CommandOutcome::Kind::Refused;
        return outcome;
    }
    using Verdict = CommandWatch::Verdict;
    Verdict verdict = Verdict::Running;
    const auto judged = [&] { return (verdict = call.watch->Judge(Clock::now())) != Verdict::Running; };
    while (!MainWait::Until(judged, std::min(kLook, Left(deadline)))) {
        if (Clock::now() >= deadline) {
            blocked_ = true;
            return outcome;
        }
    }
    mayHold_ = verdict == Verdict::Failed;
    const bool failed = verdict == Verdict::Failed || !ErrorText().empty();
    outcome.kind = failed ? CommandOutcome::Kind::ScriptFailed : CommandOutcome::Kind::Done;
    return outcome;
}

void Device::Complete(CommandOutcome& outcome, const Call& call) const {
    for (const auto& param : call.params->Params()) {
        if (std::string(param->GetName()) == "Result")
            outcome.result = param->Effective().Text();
    }
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
    if (MainWait::Until([&] { return *active || givenUp(); }, kHeldCommand))
        MainWait::Until(givenUp, kHeldCommand);
}

bool Device::RunInTime(const std::shared_ptr<Task>& task, Milliseconds limit) {
    tasks_.erase(std::remove_if(tasks_.begin(), tasks_.end(), [](const auto& other) { return other->IsDone(); }),
                 tasks_.end());
    tasks_.push_back(task);
    const bool inTime = MainWait::Until([&] { return task->IsDone(); }, limit);
    blocked_ = blocked_ || !inTime;
    return inTime;
}

bool Device::AllBack() const {
    return std::all_of(tasks_.begin(), tasks_.end(), [](const auto& task) { return task->IsDone(); });
}

} // namespace stagehost

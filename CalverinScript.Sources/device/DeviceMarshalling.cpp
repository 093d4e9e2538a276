#include "MCalverinScript_Device.h"

#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include <QScriptEngine>

#include "DeviceLinks.h"
#include "DeviceMarshalling.h"
#include "OwnedArgument.h"
#include "ScriptAnalysis.h"
#include "ScriptProgram.h"

/// A marshalled call on its way, which owns what its slot needs.
template <typename... Parameters>
class MCalverinScript_Device::OpenCall final : public ScriptCrossing::Call {
public:
    using Row = MarshalledCallRow<Parameters...>;

    OpenCall(MCalverinScript_Device& device, const Row& row, const Parameters&... parameters)
        : m_device(device)
        , m_row(row)
        , m_arguments(parameters...) {}

    void Announce() {
        if (m_row.request != nullptr)
            std::apply([this](auto&... owned) { Q_EMIT(m_device.*m_row.request)(owned.Get()...); }, m_arguments);
    }
    bool Run() override {
        return std::apply([this](auto&... owned) { return (m_device.*m_row.slot)(owned.Get()...); }, m_arguments);
    }
    void GiveBack(const Parameters&... callers) {
        std::apply([&](auto&... owned) { (owned.GiveBack(callers), ...); }, m_arguments);
    }

private:
    MCalverinScript_Device& m_device;
    const Row& m_row;
    std::tuple<OwnedArgument<std::decay_t<Parameters>>...> m_arguments;
};

/// Runs the slot of a call on the script thread and waits for it; on that thread itself runs it at once. The request
/// lives until the slot has run, also when the wait for it has ended earlier.
template <typename... Parameters>
bool MCalverinScript_Device::Marshal(const MarshalledCallRow<Parameters...>& row,
                                     const std::common_type_t<Parameters>&... parameters) {
    if (crossing.Entrance().IsOnScriptThread())
        return (this->*row.slot)(parameters...);
    bool result = false;
    const auto cross = [&] {
        const auto call = std::make_shared<OpenCall<Parameters...>>(*this, row, parameters...);
        call->Announce();
        if (crossing.Run(call, row.limitMs, result))
            call->GiveBack(parameters...);
    };
    if (!RunWithinMemory(cross))
        TellWantOfMemory("a call of the script");
    return result;
}

bool MCalverinScript_Device::LoadScriptCommand(const char* fileName, bool stopMode) {
    if (stopMode)
        return SlotLoadScriptCommand(fileName, stopMode);
    return Marshal(MarshalledCallTable::kLoadScriptCommand, fileName, stopMode);
}

bool MCalverinScript_Device::EvaluateScriptCommand(const QString& text, bool stopMode) {
    if (stopMode)
        return SlotEvaluateScriptCommand(text, stopMode);
    return Marshal(MarshalledCallTable::kEvaluateScriptCommand, text, stopMode);
}

bool MCalverinScript_Device::EvaluateScript(const QString& text, QScriptEngine* analysisEngine) {
    if (analysisEngine == nullptr)
        return Marshal(MarshalledCallTable::kEvaluateScript, text, false);
    const HostDoor::Visit visit(
        door); // the script's names are looked up in the host, which may release the device then
    return !door.IsClosed() && analysis->RunOn(*analysisEngine, text);
}

bool MCalverinScript_Device::ExecuteScriptFunction(const char* name, IData* result, const char** params) {
    return Marshal(MarshalledCallTable::kExecuteScriptFunction, name, result, params);
}

bool MCalverinScript_Device::ExecuteCallBack(MyAsyncDeviceExecContext* context) {
    return Marshal(MarshalledCallTable::kExecuteCallBack, context);
}

bool MCalverinScript_Device::ExecuteStopFunction() {
    return program->HasStopFunction() && Marshal(MarshalledCallTable::kExecuteStopFunction);
}

void MCalverinScript_Device::ClearScriptState() {
    Marshal(MarshalledCallTable::kClearScriptState);
}

/// What the engine side shows is changed on its own thread, behind whatever runs there.
void MCalverinScript_Device::ShowScript(const QString& fileName, const QString& text) {
    links->ReportScriptFile(fileName);
    links->ReportScriptText(text);
    PostTask([this, fileName, text] {
        const ScriptEntrance::Entry entry(crossing.Entrance());
        program->Show(fileName, text);
    });
}

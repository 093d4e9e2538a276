#include "FakeScriptDevice.h"

#include "HostText.h"
#include "MScriptParamList.h"

namespace {

std::string Shown(const char* text) {
    return text != nullptr ? text : "-";
}

} // namespace

void FakeScriptDevice::PostPropertyChange(const char* object, const char* property, const char* value,
                                          bool objectFollows) {
    changes.push_back(Shown(object) + "|" + Shown(property) + "|" + Shown(value) + (objectFollows ? "|1" : "|0"));
}

void FakeScriptDevice::WriteCommandResult(MCommandObject* command, const QString& text) {
    resultCommand = command;
    results.push_back(ToHostText(text).toStdString());
}

int FakeScriptDevice::PostScriptEvent(const QString& event, const MScriptParamList* params,
                                      MScriptCommonEvent* object) {
    const char* source = params->GetSource() == object ? " with object" : "";
    events.push_back(event.toStdString() + " " + std::to_string(params->Count()) + source);
    return 1;
}

void FakeScriptDevice::PostScriptEvents(const QString& event, std::vector<MScriptParamList> list,
                                        MScriptCommonEvent* object) {
    for (const MScriptParamList& params : list)
        PostScriptEvent(event, &params, object);
}

bool FakeScriptDevice::PostTask(std::function<void()> task) {
    if (takesTasks)
        tasks.push_back(std::move(task));
    return takesTasks;
}

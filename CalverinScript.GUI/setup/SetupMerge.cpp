#include "SetupMerge.h"

#include <algorithm>

namespace {

constexpr int kLabelWidget = 12;

template <typename Records>
auto* FindNamed(const Records& records, const QString& name) {
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const auto& record) { return record.name == name; });
    return found != records.end() ? &*found : nullptr;
}

/// The search ends at the first of the name, whatever its type.
const MScriptVariable* FindAlike(const ScriptVariables& variables, const MScriptVariable& wanted) {
    const MScriptVariable* found = FindNamed(variables, wanted.name);
    return found != nullptr && found->type == wanted.type ? found : nullptr;
}

} // namespace

ScriptVariables MergeVariables(ScriptVariables& declared, const ScriptVariables& loaded,
                               const ScriptVariables& edited) {
    ScriptVariables merged;
    for (MScriptVariable& variable : declared) {
        if (const MScriptVariable* user = FindAlike(edited, variable)) {
            variable.value = user->value;
            variable.useDefaultScriptValue = user->useDefaultScriptValue;
        }
        const MScriptVariable* known = FindAlike(loaded, variable);
        merged.push_back(variable);
        merged.back().data = known != nullptr ? known->data : nullptr;
    }
    return merged;
}

void MergeSettings(ScriptSettings& declared, const ScriptSettings& edited) {
    for (MScriptSetting& setting : declared) {
        const MScriptSetting* user = FindNamed(edited, setting.name);
        if (user != nullptr && (setting.widget != kLabelWidget || user->widget != kLabelWidget))
            setting.value = user->value;
    }
}

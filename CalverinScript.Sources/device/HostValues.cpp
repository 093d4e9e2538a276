#include "HostValues.h"

#include "HostText.h"
#include "IKXPDevice.h"

IData* HostValues::Find(const QString& name) const {
    return m_variables != nullptr ? m_variables->GetVariable(ToHostText(name).constData()) : nullptr;
}

bool HostValues::Offer(const std::string& definition) {
    if (m_variables == nullptr)
        return false;
    bool taken = false;
    const DefaultVariables::Replacement replacing(m_defaults);
    Gate().Replace([&] {
        taken = m_variables->SetDefinition(definition.c_str()) == 1;
        m_accessors.Rebind(VariableOrigin::Device, [this](const QString& name) { return Find(name); });
    });
    return taken;
}

DefaultVariables::Find HostValues::DefaultsThatAre(bool there) const {
    return [variables = there ? m_variables : nullptr](const char* name) {
        return variables != nullptr ? variables->GetVariable(name) : nullptr;
    };
}

void HostValues::BindDefaults(bool areThere) {
    m_defaults.Bind(DefaultsThatAre(areThere));
}

void HostValues::BindDefaultsUnlessBound(bool areThere) {
    m_defaults.BindUnlessBound(DefaultsThatAre(areThere));
}

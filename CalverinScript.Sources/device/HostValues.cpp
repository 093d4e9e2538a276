#include "HostValues.h"

#include "HostText.h"
#include "IKXPDevice.h"

IData* HostValues::Find(const char* name) const {
    if (m_variables == nullptr || m_closed)
        return nullptr;
    IData* const found = m_variables->GetVariable(name);
    return m_closed ? nullptr : found;
}

IData* HostValues::Find(const QString& name) const {
    return Find(ToHostText(name).constData());
}

bool HostValues::Offer(const std::string& definition) {
    if (m_variables == nullptr || m_closed)
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
    return [this, there](const char* name) { return there ? Find(name) : nullptr; };
}

void HostValues::BindDefaults(bool areThere) {
    m_defaults.Bind(DefaultsThatAre(areThere));
}

void HostValues::BindDefaultsUnlessBound(bool areThere) {
    m_defaults.BindUnlessBound(DefaultsThatAre(areThere));
}

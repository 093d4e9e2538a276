#pragma once

#include <memory>

#include "HostValue.h"
#include "IObjectParams.h"

namespace stagehost {

/// One parameter of a command: a value of its own and, optionally, a variable that stands in its place.
///
/// The operations of IData work on the own value; GetValue gives the variable. Values are shared, so a parameter that
/// a late command still writes to stays alive.   [any]
class ObjectParam final : public IObjectParam {
public:
    /// @param own never null. @param bound may be null.
    ObjectParam(std::shared_ptr<HostValue> own, std::shared_ptr<HostValue> bound);
    virtual ~ObjectParam() = default;

    /// The value in force by the contract's rule: the bound variable if there is one, the own value otherwise.
    HostValue& Effective() { return m_bound ? *m_bound : *m_own; }
    const HostValue& Effective() const { return m_bound ? *m_bound : *m_own; }

    /// The own value, bound or not.
    const HostValue& Own() const { return *m_own; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return m_own->Face()->GetName(); }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t reserved1, std::uint32_t reserved2) override;
    const char* GetProperty(const char* name) override { return m_own->Face()->GetProperty(name); }
    void ReleaseString(char** text) override { m_own->Face()->ReleaseString(text); }
    std::uint32_t GetInstanceID() override { return m_own->Face()->GetInstanceID(); }
    std::int32_t GetIntValue() override { return m_own->Face()->GetIntValue(); }
    void SetIntValue(std::int32_t value, std::uint32_t reserved1, std::uint32_t reserved2) override;
    double GetRealValue() override { return m_own->Face()->GetRealValue(); }
    void SetRealValue(double value, std::uint32_t reserved1, std::uint32_t reserved2) override;
    char* GetValueAsString() override { return m_own->Face()->GetValueAsString(); }
    void SetValueFromString(const char* text, std::uint32_t reserved1, std::uint32_t reserved2) override;
    std::uint32_t GetDataType() override { return m_own->Face()->GetDataType(); }
    IData* GetValue(std::uint32_t reserved) override;

private:
    const std::shared_ptr<HostValue> m_own;
    const std::shared_ptr<HostValue> m_bound;
};

} // namespace stagehost

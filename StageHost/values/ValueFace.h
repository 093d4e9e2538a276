#pragma once

#include <cstring>

#include "BorderText.h"
#include "DataTypes.h"
#include "HostValue.h"

namespace stagehost {

/// A value behind the interface of its type: the operations that all types share, on top of HostValue. A type adds its
/// content and the few operations of its own.
template <typename Interface>
class ValueFace : public Interface, public HostValue {
public:
    using HostValue::HostValue;

    IData* Face() override { return this; }

    KXPCode QueryInterface(const char* name, void** out) override {
        if (name == nullptr || out == nullptr)
            return KXP_BAD_INTERFACE_ARG;
        const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IData") == 0 ||
                             std::strcmp(name, FindDataType(Type())->interfaceName) == 0;
        *out = offered ? static_cast<Interface*>(this) : nullptr;
        return offered ? KXP_OK : KXP_NO_INTERFACE;
    }

    /// The host owns its values: giving one up changes nothing.
    KXPCode Release() override { return KXP_OK; }

    const char* GetName() override { return Name().c_str(); }

    KXPCode SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) override {
        return StoreProperty(name, value) ? KXP_OK : KXP_NULL_ARGUMENT;
    }

    const char* GetProperty(const char* name) override { return Property(name); }
    void ReleaseString(char** text) override { FreeBorderText(text); }
    std::uint32_t GetInstanceID() override { return InstanceId(); }
    std::int32_t GetIntValue() override { return Int(); }
    void SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) override { SetInt(value); }
    double GetRealValue() override { return Real(); }
    void SetRealValue(double value, std::uint32_t, std::uint32_t) override { SetReal(value); }
    char* GetValueAsString() override { return CopyBorderText(Text()); }

    void SetValueFromString(const char* text, std::uint32_t, std::uint32_t) override {
        SetText(text == nullptr ? "" : text);
    }

    std::uint32_t GetDataType() override { return Type(); }
};

} // namespace stagehost

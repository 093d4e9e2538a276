#pragma once

#include <memory>
#include <string>
#include <vector>

#include "PlainHost.h"

/// A value of the host that answers for the interface of its type, with limits that a test sets. It may be a parameter too.
class TypedValue : public plain::Value {
public:
    TypedValue(const std::string& name, std::uint32_t type, const std::string& text = "");
    ~TypedValue() override;

    KXPCode QueryInterface(const char* name, void** out) override;
    std::uint32_t GetInstanceID() override { return instanceId; }

    double minimum;
    double maximum;
    std::int32_t maxLength = -1;
    std::int32_t precision = 5;
    std::int32_t timeCodeType = 4;
    std::uint32_t instanceId = 0;
    std::vector<std::string> items; ///< of an enumeration

private:
    struct Faces;
    const std::unique_ptr<Faces> m_faces;
};

#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "ObjectParam.h"

namespace stagehost {

/// The parameters of one command. Complete before it is handed out; from then on only its properties change.
class ObjectParams final : public IObjectParams {
public:
    /// @param properties the descriptor properties that the command's definition gives.
    explicit ObjectParams(std::map<std::string, std::string> properties);
    virtual ~ObjectParams() = default;

    /// Appends a parameter.   [host main, before the collection is handed out]
    void Add(std::shared_ptr<HostValue> own, std::shared_ptr<HostValue> bound);

    /// The parameters in their order.   [any]
    const std::vector<std::unique_ptr<ObjectParam>>& Params() const { return m_params; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t reserved1, std::uint32_t reserved2) override;
    const char* GetProperty(const char* name) override;
    IObjectParam* GetParam(std::uint32_t index) override;
    std::uint32_t GetParamCount() override { return static_cast<std::uint32_t>(m_params.size()); }

private:
    std::vector<std::unique_ptr<ObjectParam>> m_params;
    std::mutex m_lock; ///< guards m_properties
    std::map<std::string, std::string> m_properties;
};

} // namespace stagehost

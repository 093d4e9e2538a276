#pragma once

#include "ChannelBank.h"
#include "IIOResource.h"
#include "ModuleHandlers.h"
#include "ResourceObject.h"

namespace stagehost {

/// One channel behind the contract.
class IoChannel final : public IIOResourceChannel {
public:
    /// @param resource, bank outlive the channel.
    IoChannel(ChannelType type, std::size_t index, IIOResource& resource, ChannelBank& bank);
    ~IoChannel() = default;

    KXPCode AddHandler(IIOResourceChannelHandler* handler) override;
    KXPCode RemoveHandler(IIOResourceChannelHandler* handler) override;
    KXPCode Reserved3() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved4() override { return KXP_NOT_IMPLEMENTED; }
    std::uint32_t SetValue(std::int32_t value) override;
    std::int32_t GetValue() override;
    IIOResource* GetResource() override { return &m_resource; }
    KXPCode Reserved8() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved9() override { return KXP_NOT_IMPLEMENTED; }
    std::int32_t GetChannelIndex() override { return static_cast<std::int32_t>(m_index); }
    const char* GetName() override { return Plan().name.c_str(); }

    /// Tells the handlers a new value.   [any]
    void TellValue(std::int32_t value);

    /// The channel for people. @param resourceName stands before its name.
    ShowObjectPtr MakeObject(const std::string& resourceName);

private:
    const ChannelPlan& Plan() const { return m_bank.Plan()[static_cast<std::size_t>(m_type)][m_index]; }

    const ChannelType m_type;
    const std::size_t m_index;
    IIOResource& m_resource;
    ChannelBank& m_bank;
    ModuleHandlers<IIOResourceChannelHandler> m_handlers;
};

} // namespace stagehost

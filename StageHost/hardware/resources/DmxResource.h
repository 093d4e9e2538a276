#pragma once

#include "DmxListener.h"
#include "DmxSender.h"
#include "IDMXResource.h"
#include "ModuleHandlers.h"
#include "ResourceFace.h"
#include "ResourceObject.h"
#include "ResourceVoice.h"

namespace stagehost {

/// What universes of both directions have in common: handlers that hear of the state.
class DmxResource : public ResourceFace<IDMXResource> {
public:
    DmxResource(std::int32_t id, ResourceVoice voice);

    KXPCode AddHandler(IDMXResourceHandler* handler) override;
    KXPCode RemoveHandler(IDMXResourceHandler* handler) override;
    std::uint32_t WriteBlock(const std::uint8_t* data, std::int32_t startChannel, std::int32_t count,
                             std::uint32_t reserved) override;
    std::uint32_t ReadInput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) override;
    std::uint32_t ReadOutput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) override;
    KXPCode Reserved19() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved20() override { return KXP_NOT_IMPLEMENTED; }

    /// The universe for people: state, levels, counts.
    virtual ShowObjectPtr MakeObject() = 0;

protected:
    void TellState();
    static std::uint32_t Copy(const DmxFrame& frame, std::uint8_t* buffer, std::int32_t startChannel,
                              std::int32_t count);

    const ResourceVoice m_voice;
    ModuleHandlers<IDMXResourceHandler> m_handlers;
};

/// A universe that goes out. A closed one takes no levels.
class DmxOutResource final : public DmxResource, private PortNews {
public:
    /// @param sender must outlive all calls, and is gone before this object is.
    DmxOutResource(std::int32_t id, const DmxOutPlan& plan, ResourceVoice voice, DmxSender& sender);

    std::uint32_t GetState() override;
    KXPCode Open() override;
    KXPCode Close() override;
    std::uint32_t WriteBlock(const std::uint8_t* data, std::int32_t startChannel, std::int32_t count,
                             std::uint32_t reserved) override;
    std::uint32_t ReadOutput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) override;
    ShowObjectPtr MakeObject() override;

private:
    void StateChanged() override { TellState(); }
    void Told(const std::string& text) override { m_voice.TellWords(text); }

    DmxSender& m_sender;
    const std::size_t m_number;
};

/// A universe that comes in. Handlers hear levels when they are new.
class DmxInResource final : public DmxResource, private InputNews {
public:
    /// @param listener must outlive all calls, and is gone before this object is.
    DmxInResource(std::int32_t id, const DmxInPlan& plan, ResourceVoice voice, DmxListener& listener);

    std::uint32_t GetState() override;
    KXPCode Open() override;
    KXPCode Close() override;
    std::uint32_t ReadInput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) override;
    ShowObjectPtr MakeObject() override;

private:
    void StateChanged() override { TellState(); }
    void Told(const std::string& text) override { m_voice.TellWords(text); }
    void LevelsChanged(const DmxFrame& frame) override;

    DmxListener& m_listener;
    const std::size_t m_number;
};

} // namespace stagehost

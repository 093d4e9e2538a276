#pragma once

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "CallBook.h"
#include "IDMXResource.h"
#include "IIOResource.h"
#include "IResourceProvider.h"
#include "ISerialResource.h"

/// @file
/// Resources of a host that note what they are asked and answer as a test tells them.

namespace plain {

/// Bytes as hexadecimal digits.
std::string HexOf(const std::uint8_t* data, std::size_t length);

/// A resource with a state. GetState is not noted: it is asked all the time.
template <typename Resource>
class FakeResource : public Resource, public IResourceProxy {
public:
    explicit FakeResource(const char* faceName, std::int32_t id = 0)
        : m_faceName(faceName)
        , m_id(id) {}
    virtual ~FakeResource() = default;

    CallBook calls;
    std::atomic<std::uint32_t> state{KXP_RESOURCE_CLOSED};
    std::atomic<std::uint32_t> stateQuestions{0};
    std::function<void()> onGetState; ///< called before the state is read
    bool offersItsFace = true;

    /// What the provider hands out.
    IMInterface* Root() { return static_cast<Resource*>(this); }

    KXPCode QueryInterface(const char* name, void** out) override {
        if (name == nullptr || out == nullptr)
            return KXP_BAD_INTERFACE_ARG;
        *out = nullptr;
        if (offersItsFace && m_faceName == name)
            *out = static_cast<Resource*>(this);
        else if (std::string("IResourceProxy") == name)
            *out = static_cast<IResourceProxy*>(this);
        return *out != nullptr ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
    }
    /// The module never releases a resource.
    KXPCode Release() override {
        calls.Note("Release");
        return KXP_OK;
    }
    KXPCode Reserved3() override { return KXP_OK; }
    KXPCode Reserved4() override { return KXP_OK; }
    std::uint32_t GetState() override {
        ++stateQuestions;
        if (onGetState)
            onGetState();
        return state;
    }
    KXPCode Reserved6() override { return KXP_OK; }
    KXPCode Reserved7() override { return KXP_OK; }
    KXPCode Reserved8() override { return KXP_OK; }
    KXPCode Reserved11() override { return KXP_OK; }
    KXPCode Reserved12() override { return KXP_OK; }
    KXPCode Reserved13() override { return KXP_OK; }
    KXPCode Reserved14() override { return KXP_OK; }
    KXPCode Reserved15() override { return KXP_OK; }
    KXPCode Reserved16() override { return KXP_OK; }
    const char* GetName() override { return m_faceName.c_str(); }
    std::int32_t GetResourceID() override { return m_id; }

private:
    const std::string m_faceName;
    const std::int32_t m_id;
};

/// A port that opens when it is asked, from inside the call, unless it is told to refuse.
template <typename Port, typename Handler>
class FakePort : public FakeResource<Port> {
public:
    using FakeResource<Port>::FakeResource;

    HandlerBook<Handler> handlers;
    bool refusesToOpen = false;

    /// The state is another one now, and the handlers are told.
    void BecomeState(std::uint32_t newState) {
        this->state = newState;
        handlers.Tell([](Handler& handler) { handler.OnStateChanged(); });
    }
    KXPCode Open() override {
        this->calls.Note("Open");
        if (refusesToOpen)
            return KXP_NOT_IMPLEMENTED;
        BecomeState(KXP_RESOURCE_OPEN);
        return KXP_OK;
    }
    KXPCode Close() override {
        this->calls.Note("Close");
        if (this->state != KXP_RESOURCE_CLOSED)
            BecomeState(KXP_RESOURCE_CLOSED);
        return KXP_OK;
    }
    KXPCode RemoveHandler(Handler* handler) override {
        this->calls.Note("RemoveHandler");
        handlers.Remove(handler);
        return KXP_OK;
    }
    KXPCode Reserved19() override { return KXP_OK; }
    KXPCode Reserved20() override { return KXP_OK; }
};

class FakeSerial : public FakePort<ISerialResource, ISerialResourceHandler> {
public:
    explicit FakeSerial(std::int32_t id = 0)
        : FakePort("ISerialResource", id) {}

    void Receive(const std::string& bytes);
    void Happen(std::int32_t eventType, std::int32_t eventState);

    KXPCode AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) override;
    KXPCode Reserved21() override { return KXP_OK; }
    /// Noted as "Write:0102".
    KXPCode Write(const std::uint8_t* data, std::uint32_t length, std::uint32_t reserved) override;
    KXPCode Reserved23() override { return KXP_OK; }
    KXPCode Reserved24() override { return KXP_OK; }
    KXPCode SetBaudRate(std::uint32_t value) override { return NoteSetting("SetBaudRate", value); }
    KXPCode SetParity(std::uint32_t value) override { return NoteSetting("SetParity", value); }
    KXPCode SetDataSize(std::uint32_t value) override { return NoteSetting("SetDataSize", value); }
    KXPCode SetStopBits(std::uint32_t value) override { return NoteSetting("SetStopBits", value); }
    KXPCode SetBreak(bool value) override { return NoteSetting("SetBreak", value); }
    KXPCode SetDTR(bool value) override { return NoteSetting("SetDTR", value); }
    KXPCode SetRTS(bool value) override { return NoteSetting("SetRTS", value); }
    KXPCode SetDTRControl(bool value) override { return NoteSetting("SetDTRControl", value); }
    KXPCode SetRTSControl(bool value) override { return NoteSetting("SetRTSControl", value); }
    KXPCode SetDTRHandshake(bool value) override { return NoteSetting("SetDTRHandshake", value); }
    KXPCode SetDSROutFlow(bool value) override { return NoteSetting("SetDSROutFlow", value); }
    KXPCode SetRTSHandshake(bool value) override { return NoteSetting("SetRTSHandshake", value); }
    KXPCode SetCTSOutFlow(bool value) override { return NoteSetting("SetCTSOutFlow", value); }

private:
    KXPCode NoteSetting(const char* name, std::uint32_t value);
};

class FakeUniverse : public FakePort<IDMXResource, IDMXResourceHandler> {
public:
    explicit FakeUniverse(std::int32_t id = 0)
        : FakePort("IDMXResource", id) {}

    std::uint32_t answer = 1; ///< of the three block operations
    std::array<std::uint8_t, KXP_DMX_CHANNELS> levels{};

    void Receive(const std::string& frame);

    KXPCode AddHandler(IDMXResourceHandler* handler) override;
    /// Noted as "WriteBlock:start,count,0102".
    std::uint32_t WriteBlock(const std::uint8_t* data, std::int32_t start, std::int32_t count,
                             std::uint32_t reserved) override;
    std::uint32_t ReadInput(std::uint8_t* buffer, std::int32_t start, std::int32_t count) override;
    std::uint32_t ReadOutput(std::uint8_t* buffer, std::int32_t start, std::int32_t count) override;

private:
    std::uint32_t Read(const char* name, std::uint8_t* buffer, std::int32_t start, std::int32_t count);
};

class FakeIo;

class FakeChannel : public IIOResourceChannel {
public:
    FakeChannel(FakeIo* io, std::int32_t index)
        : m_io(io)
        , m_index(index) {}
    virtual ~FakeChannel() = default;

    CallBook calls;
    HandlerBook<IIOResourceChannelHandler> handlers;
    std::atomic<std::int32_t> value{0};
    std::uint32_t answer = 1; ///< of SetValue

    void Become(std::int32_t newValue);

    KXPCode AddHandler(IIOResourceChannelHandler* handler) override;
    KXPCode RemoveHandler(IIOResourceChannelHandler* handler) override;
    KXPCode Reserved3() override { return KXP_OK; }
    KXPCode Reserved4() override { return KXP_OK; }
    std::uint32_t SetValue(std::int32_t newValue) override;
    std::int32_t GetValue() override { return value; }
    IIOResource* GetResource() override;
    KXPCode Reserved8() override { return KXP_OK; }
    KXPCode Reserved9() override { return KXP_OK; }
    std::int32_t GetChannelIndex() override { return m_index; }
    const char* GetName() override { return "channel"; }

private:
    FakeIo* const m_io; ///< null for a channel that says that it has no resource
    const std::int32_t m_index;
};

class FakeIo : public FakeResource<IIOResource> {
public:
    explicit FakeIo(std::int32_t id = 0)
        : FakeResource("IIOResource", id) {}

    HandlerBook<IResourceHandler> handlers;
    std::map<std::pair<std::uint32_t, std::int32_t>, std::unique_ptr<FakeChannel>> channels;

    FakeChannel& Channel(KXPChannelType type, std::int32_t index);
    void BecomeState(std::uint32_t newState);

    KXPCode Reserved9() override { return KXP_OK; }
    KXPCode Reserved10() override { return KXP_OK; }
    KXPCode Reserved17() override { return KXP_OK; }
    IIOResourceChannel* GetChannel(std::uint32_t channelType, std::int32_t channelIndex) override;
    KXPCode Flush() override;
    KXPCode Open(IResourceHandler* handler) override;
    KXPCode Close(IResourceHandler* handler) override;
};

/// Resources by kind, number and subtype.
class FakeProvider : public IResourceProvider {
public:
    virtual ~FakeProvider() = default;

    CallBook calls;
    std::map<std::array<std::int64_t, 3>, IMInterface*> resources; ///< kind, id, subtype; not owned
    std::int32_t chosenResource = -1;                              ///< what the user chooses; below 0 cancels
    IIOResourceChannel* chosenChannel = nullptr;                   ///< null cancels

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    /// Noted as "1,3,3".
    IMInterface* GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) override;
    /// Noted as "select:1,3,0,parent" and "channel:1,text,parent".
    std::int32_t SelectResource(std::uint32_t kind, std::uint32_t subtype, std::int32_t resourceId,
                                KXPWindow parent) override;
    IIOResourceChannel* SelectChannel(std::uint32_t channelType, const char* text, KXPWindow parent) override;
};

} // namespace plain

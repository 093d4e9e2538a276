#pragma once

#include <atomic>
#include <memory>

#include "FaceAnswer.h"
#include "GuardedPages.h"
#include "HostValues.h"
#include "IDMXResource.h"
#include "IIOResource.h"
#include "IResourceProvider.h"
#include "ISerialResource.h"
#include "Lent.h"

/// @file
/// One resource of each kind. They take everything, do nothing, and know who hears of them.

/// What all have in common.
template <typename Face>
class HostResource : public Face, public IResourceProxy, public Guarded {
public:
    explicit HostResource(const char* face)
        : m_face(face) {
        GuardedName(this, face);
    }
    virtual ~HostResource() = default;

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out,
                          {{m_face, static_cast<Face*>(this)}, {"IResourceProxy", static_cast<IResourceProxy*>(this)}});
    }
    KXPCode Release() override { return NoteRelease(m_face); }
    KXPCode Reserved3() override { return KXP_OK; }
    KXPCode Reserved4() override { return KXP_OK; }
    std::uint32_t GetState() override { return KXP_RESOURCE_OPEN; }
    KXPCode Reserved6() override { return KXP_OK; }
    KXPCode Reserved7() override { return KXP_OK; }
    KXPCode Reserved8() override { return KXP_OK; }
    KXPCode Reserved11() override { return KXP_OK; }
    KXPCode Reserved12() override { return KXP_OK; }
    KXPCode Reserved13() override { return KXP_OK; }
    KXPCode Reserved14() override { return KXP_OK; }
    KXPCode Reserved15() override { return KXP_OK; }
    KXPCode Reserved16() override { return KXP_OK; }
    const char* GetName() override { return m_face; }
    std::int32_t GetResourceID() override { return 1; }

private:
    const char* const m_face;
};

/// A resource that is one port.
template <typename Face, typename PortHandler>
class HostPort : public HostResource<Face> {
public:
    using HostResource<Face>::HostResource;

    PortHandler* Handler() const { return m_handler; }

    KXPCode Open() override { return KXP_OK; }
    KXPCode Close() override { return KXP_OK; }
    KXPCode RemoveHandler(PortHandler*) override {
        m_handler = nullptr;
        return KXP_OK;
    }
    KXPCode Reserved19() override { return KXP_OK; }
    KXPCode Reserved20() override { return KXP_OK; }

protected:
    std::atomic<PortHandler*> m_handler{nullptr};
};

class HostSerial final : public HostPort<ISerialResource, ISerialResourceHandler> {
public:
    HostSerial()
        : HostPort("ISerialResource") {}

    KXPCode AddHandler(ISerialResourceHandler* handler, std::uint32_t) override {
        m_handler = handler;
        return KXP_OK;
    }
    KXPCode Reserved21() override { return KXP_OK; }
    KXPCode Write(const std::uint8_t*, std::uint32_t, std::uint32_t) override { return KXP_OK; }
    KXPCode Reserved23() override { return KXP_OK; }
    KXPCode Reserved24() override { return KXP_OK; }
    KXPCode SetBaudRate(std::uint32_t) override { return KXP_OK; }
    KXPCode SetParity(std::uint32_t) override { return KXP_OK; }
    KXPCode SetDataSize(std::uint32_t) override { return KXP_OK; }
    KXPCode SetStopBits(std::uint32_t) override { return KXP_OK; }
    KXPCode SetBreak(bool) override { return KXP_OK; }
    KXPCode SetDTR(bool) override { return KXP_OK; }
    KXPCode SetRTS(bool) override { return KXP_OK; }
    KXPCode SetDTRControl(bool) override { return KXP_OK; }
    KXPCode SetRTSControl(bool) override { return KXP_OK; }
    KXPCode SetDTRHandshake(bool) override { return KXP_OK; }
    KXPCode SetDSROutFlow(bool) override { return KXP_OK; }
    KXPCode SetRTSHandshake(bool) override { return KXP_OK; }
    KXPCode SetCTSOutFlow(bool) override { return KXP_OK; }
};

class HostUniverse final : public HostPort<IDMXResource, IDMXResourceHandler> {
public:
    HostUniverse()
        : HostPort("IDMXResource") {}

    KXPCode AddHandler(IDMXResourceHandler* handler) override {
        m_handler = handler;
        return KXP_OK;
    }
    std::uint32_t WriteBlock(const std::uint8_t*, std::int32_t, std::int32_t, std::uint32_t) override { return 1; }
    std::uint32_t ReadInput(std::uint8_t*, std::int32_t, std::int32_t) override { return 1; }
    std::uint32_t ReadOutput(std::uint8_t*, std::int32_t, std::int32_t) override { return 1; }
};

/// With one channel, which is the answer to whichever is asked for.
class HostIo final : public HostResource<IIOResource>, public IIOResourceChannel {
public:
    HostIo()
        : HostResource("IIOResource") {}

    IIOResourceChannelHandler* ChannelHandler() const { return m_channelHandler; }
    IResourceHandler* Handler() const { return m_handler; }

    KXPCode Reserved3() override { return KXP_OK; }
    KXPCode Reserved4() override { return KXP_OK; }
    KXPCode Reserved8() override { return KXP_OK; }
    KXPCode Reserved9() override { return KXP_OK; }
    KXPCode Reserved10() override { return KXP_OK; }
    KXPCode Reserved17() override { return KXP_OK; }
    IIOResourceChannel* GetChannel(std::uint32_t, std::int32_t) override { return this; }
    KXPCode Flush() override { return KXP_OK; }
    KXPCode Open(IResourceHandler* handler) override {
        m_handler = handler;
        return KXP_OK;
    }
    KXPCode Close(IResourceHandler*) override {
        m_handler = nullptr;
        return KXP_OK;
    }

    KXPCode AddHandler(IIOResourceChannelHandler* handler) override {
        m_channelHandler = handler;
        return KXP_OK;
    }
    KXPCode RemoveHandler(IIOResourceChannelHandler*) override {
        m_channelHandler = nullptr;
        return KXP_OK;
    }
    std::uint32_t SetValue(std::int32_t) override { return 1; }
    std::int32_t GetValue() override { return 0; }
    IIOResource* GetResource() override { return this; }
    std::int32_t GetChannelIndex() override { return 1; }
    const char* GetName() override { return "channel"; }

private:
    std::atomic<IIOResourceChannelHandler*> m_channelHandler{nullptr};
    std::atomic<IResourceHandler*> m_handler{nullptr};
};

/// Hands out the one of the kind, whatever its number. The resources go with it.
class HostResources final : public IResourceProvider, public Guarded {
public:
    explicit HostResources(const Hearing& hearing)
        : m_hearing(hearing) {
        GuardedName(this, "the resources of a host that is gone");
    }

    HostSerial& Serial() { return *m_serial; }
    HostUniverse& Universe() { return *m_universe; }
    HostIo& Io() { return *m_io; }

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out, {{"IResourceProvider", static_cast<IResourceProvider*>(this)}});
    }
    KXPCode Release() override { return NoteRelease("IResourceProvider"); }
    IMInterface* GetResource(std::uint32_t kind, std::int32_t, std::uint32_t) override {
        if (m_hearing)
            m_hearing("GetResource");
        switch (kind) {
        case KXP_SERIAL_RESOURCE:
            return static_cast<ISerialResource*>(m_serial.get());
        case KXP_DMX_RESOURCE:
            return static_cast<IDMXResource*>(m_universe.get());
        case KXP_IO_RESOURCE:
            return static_cast<IIOResource*>(m_io.get());
        default:
            return nullptr;
        }
    }
    std::int32_t SelectResource(std::uint32_t, std::uint32_t, std::int32_t, KXPWindow) override { return -1; }
    IIOResourceChannel* SelectChannel(std::uint32_t, const char*, KXPWindow) override { return nullptr; }

private:
    const Hearing& m_hearing;
    const std::unique_ptr<HostSerial> m_serial = std::make_unique<HostSerial>();
    const std::unique_ptr<HostUniverse> m_universe = std::make_unique<HostUniverse>();
    const std::unique_ptr<HostIo> m_io = std::make_unique<HostIo>();
};

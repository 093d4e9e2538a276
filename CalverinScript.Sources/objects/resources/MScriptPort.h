#pragma once

#include <QScriptValue>
#include <QString>

#include "IDMXResource.h"
#include "ISerialResource.h"
#include "MScriptResource.h"

/// What a kind of port is called by, and how it takes its handler.
template <typename Resource>
struct PortKind;

template <>
struct PortKind<ISerialResource> {
    using Handler = ISerialResourceHandler;
    static constexpr const char* kHandlerName = "ISerialResourceHandler";
    static void Add(ISerialResource& port, Handler* handler) {
        port.AddHandler(handler, KXP_SERIAL_DATA | KXP_SERIAL_EVENTS);
    }
};

template <>
struct PortKind<IDMXResource> {
    using Handler = IDMXResourceHandler;
    static constexpr const char* kHandlerName = "IDMXResourceHandler";
    static void Add(IDMXResource& port, Handler* handler) { port.AddHandler(handler); }
};

/// What the script objects of serial ports and DMX universes have in common: the port, its
/// handler, opening and closing.
template <typename Resource>
class MScriptPort : public MScriptResource, public PortKind<Resource>::Handler {
public:
    /// @param port the host's; without one the object does nothing. @param owner may be null.   [host main]
    MScriptPort(ScriptObjectType type, Resource* port, IScriptObjectOwner* owner)
        : MScriptResource(type, port, owner)
        , m_port(port) {
        if (port == nullptr)
            GetLink()->Shut();
    }

    // MScriptResource
    void Attach() override {
        GetLink()->Use([this] { PortKind<Resource>::Add(*m_port, this); });
    }
    bool LetGo() override {
        return LetGoOnce([this] {
            if (m_port == nullptr)
                return;
            m_port->RemoveHandler(this);
            m_port->Close();
        });
    }

    // IResourceHandler
    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerHandler(name, out, this, PortKind<Resource>::kHandlerName,
                             static_cast<typename PortKind<Resource>::Handler*>(this));
    }
    void OnStateChanged() override { GetLink()->Look(); }
    const char* GetOwnerName() override { return OwnerName(); }
    KXPCode Reserved4(void* /*argument1*/, void* /*argument2*/, void* /*argument3*/, void* /*argument4*/) override {
        return KXP_OK;
    }

protected:
    void OpenPort(const QScriptValue& listener) {
        Listen(QStringLiteral("open"), listener);
        OpenUnlessLetGo([this] { m_port->Open(); }, [this] { m_port->Close(); });
    }
    void ClosePort(const QScriptValue& listener) {
        Listen(QStringLiteral("close"), listener);
        GetLink()->Use([this] { m_port->Close(); });
    }
    /// Calls the port unless it was let go. @return whether it was called.
    template <typename Call>
    bool UsePort(Call call) {
        return GetLink()->Use([&] { call(*m_port); });
    }
    /// Whether what a handler is told is about this port and has somebody to hear it.
    bool IsMine(const Resource* resource) const { return resource == m_port && Owner() != nullptr; }

private:
    Resource* const m_port;
};

#pragma once

#include "GroupRegistrations.h"
#include "RequestDesk.h"

namespace stagehost {

/// The newer link of one device.
///
/// A request that fails at once (2 a null name or context, 64, 72) does not touch its context. Every other is taken on:
/// the context is begun, the answer is 21, and the context ends on a thread of the host. Registrations are made at once
/// and answer 0. The reserved operations answer 19.   [any]
class NewerLink final : public IManagerRemote2 {
public:
    /// @param desk must outlive the link.
    explicit NewerLink(RequestDesk& desk);
    virtual ~NewerLink() = default;
    NewerLink(const NewerLink&) = delete;
    NewerLink& operator=(const NewerLink&) = delete;

    /// The handler that the device bound last, or null.   [any]
    IManagerRemoteHandler* Handler() const { return m_registrations.Handler(); }

    /// Calls the handler no more and answers 75 to the requests that never end.   [host main]
    void Close();

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode SetHandler(IManagerRemoteHandler* handler) override;
    KXPCode Reserved2(void* argument) override;
    /// Changes are told when the options have "acceptevents" set.
    /// @return 0, 2 null name, 64, 71 options that are none, 72.
    KXPCode RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) override;
    /// @param group null for the granted group, empty for all that the device has registered for.
    /// @return 0, also when there was no such registration.
    KXPCode UnregisterGroup(const char* group, IExecContext* context, void* reserved) override;
    KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top,
                           IExecContext* context, void* reserved) override;
    KXPCode CloseUserScreen(const char* name, IExecContext* context, void* reserved) override;
    KXPCode GotoPage(const char* name, const char* page, IExecContext* context, void* reserved) override;
    KXPCode StartTask(const char* task, IExecContext* context, void* reserved) override;
    KXPCode PauseTask(const char* task, IExecContext* context, void* reserved) override;
    KXPCode StopTask(const char* task, std::int32_t mode, IExecContext* context, void* reserved) override;
    KXPCode GotoLabel(const char* task, const char* label, IExecContext* context, void* reserved) override;
    KXPCode GotoLine(const char* task, std::int32_t line, IExecContext* context, void* reserved) override;
    KXPCode GotoTime(const char* task, std::int32_t time, IExecContext* context, void* reserved) override;
    KXPCode LoadShow(const char* show, std::int32_t time, IExecContext* context, void* reserved) override;
    KXPCode GetObjectList(const char* parent, std::uint32_t type, IExecContext* context, void* reserved) override;
    KXPCode Reserved16(void* argument) override;
    KXPCode Reserved17(void* argument) override;
    KXPCode Reserved18(void* argument) override;
    KXPCode SetProperty(const char* object, const char* property, const char* value, IExecContext* context,
                        void* reserved) override;
    KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value, IExecContext* context,
                             void* reserved) override;
    KXPCode GetProperty(const char* object, const char* property, IExecContext* context, void* reserved) override;
    KXPCode GetObject(const char* object, std::uint16_t depth, IExecContext* context, void* reserved) override;
    KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                    void* reserved) override;

private:
    KXPCode Ask(const char* object, Request request, IExecContext* context);

    RequestDesk& m_desk;
    GroupRegistrations m_registrations;
};

} // namespace stagehost

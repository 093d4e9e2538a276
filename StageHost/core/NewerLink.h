#pragma once

#include <atomic>

#include "IManagerRemote.h"

namespace stagehost {

/// The newer link of one device. The show has no tasks, screens, groups or objects yet: an operation on one answers 64,
/// no such object, and 2 when its name is null. A request that fails at once does not touch its context. The reserved
/// operations answer 19.   [any]
class NewerLink final : public IManagerRemote2 {
public:
    NewerLink() = default;
    virtual ~NewerLink() = default;
    NewerLink(const NewerLink&) = delete;
    NewerLink& operator=(const NewerLink&) = delete;

    /// The handler that the device bound last, or null.   [any]
    IManagerRemoteHandler* Handler() const { return handler_.load(); }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode SetHandler(IManagerRemoteHandler* handler) override;
    KXPCode Reserved2(void* argument) override;
    KXPCode RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) override;
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
    std::atomic<IManagerRemoteHandler*> handler_{nullptr}; ///< written by the script thread, read by host threads
};

} // namespace stagehost

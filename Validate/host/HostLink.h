#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "GuardedPages.h"
#include "HostValues.h"
#include "IManagerRemote.h"

/// What a request of a device is answered with, on the thread of its script. The request may be ended and kept by the
/// rules of IExecContext.   [script, host main]
using Answering = std::function<KXPCode(const char* call, IExecContext2& request)>;

/// The newer link of one device: the host's until the device is gone. Without other orders it does at once what it is
/// asked, and the text of the answer is the name of the call.
class HostLink final : public IManagerRemote2, public Guarded {
public:
    HostLink(const Hearing& hearing, const Answering& answering)
        : m_hearing(hearing)
        , m_answering(answering) {
        GuardedName(this, "the link of a device that is gone");
    }

    /// Who hears of changes; null for nobody.
    IManagerRemoteHandler* Handler() const { return m_handler; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetHandler(IManagerRemoteHandler* handler) override;
    KXPCode Reserved2(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode RegisterGroup(const char*, const char*, IExecContext* context, void*) override;
    KXPCode UnregisterGroup(const char*, IExecContext* context, void*) override;
    KXPCode OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t, IExecContext* context,
                           void*) override;
    KXPCode CloseUserScreen(const char*, IExecContext* context, void*) override;
    KXPCode GotoPage(const char*, const char*, IExecContext* context, void*) override;
    KXPCode StartTask(const char*, IExecContext* context, void*) override;
    KXPCode PauseTask(const char*, IExecContext* context, void*) override;
    KXPCode StopTask(const char*, std::int32_t, IExecContext* context, void*) override;
    KXPCode GotoLabel(const char*, const char*, IExecContext* context, void*) override;
    KXPCode GotoLine(const char*, std::int32_t, IExecContext* context, void*) override;
    KXPCode GotoTime(const char*, std::int32_t, IExecContext* context, void*) override;
    KXPCode LoadShow(const char*, std::int32_t, IExecContext* context, void*) override;
    KXPCode GetObjectList(const char*, std::uint32_t, IExecContext* context, void*) override;
    KXPCode Reserved16(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved17(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved18(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode SetProperty(const char*, const char*, const char*, IExecContext* context, void*) override;
    KXPCode SetPropertyAsInt(const char*, const char*, std::int32_t, IExecContext* context, void*) override;
    KXPCode GetProperty(const char*, const char*, IExecContext* context, void*) override;
    KXPCode GetObject(const char*, std::uint16_t, IExecContext* context, void*) override;
    KXPCode Perform(const char*, const char*, const char*, IExecContext* context, void*) override;

private:
    KXPCode Answer(const char* call, IExecContext* context) const;

    std::atomic<IManagerRemoteHandler*> m_handler{nullptr}; ///< written by the script thread, read by the host
    const Hearing& m_hearing;
    const Answering& m_answering;
};

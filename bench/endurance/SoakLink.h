#pragma once

#include <mutex>
#include <string>

#include "IManagerRemote.h"

class SoakHost;

/// What one device asks of the host. Everything is answered at once but `Perform`, which goes to another device; one
/// call in a hundred is refused.
class SoakLink : public IManagerRemote2 {
public:
    explicit SoakLink(SoakHost& host)
        : m_host(host) {}
    virtual ~SoakLink() = default;

    /// Tells the device of a change, if it listens.   [any host thread]
    void Tell(const std::string& variable, const std::string& value);

    /// Calls the device no more, since it is about to go. Returns when no call is under way.   [host main]
    void Close();

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetHandler(IManagerRemoteHandler* handler) override;
    KXPCode Reserved2(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode RegisterGroup(const char*, const char*, IExecContext*, void*) override { return Code(); }
    KXPCode UnregisterGroup(const char*, IExecContext*, void*) override { return Code(); }
    KXPCode OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t, IExecContext*, void*) override {
        return Code();
    }
    KXPCode CloseUserScreen(const char*, IExecContext*, void*) override { return Code(); }
    KXPCode GotoPage(const char*, const char*, IExecContext*, void*) override { return Code(); }
    KXPCode StartTask(const char*, IExecContext*, void*) override { return Code(); }
    KXPCode PauseTask(const char*, IExecContext*, void*) override { return Code(); }
    KXPCode StopTask(const char*, std::int32_t, IExecContext*, void*) override { return Code(); }
    KXPCode GotoLabel(const char*, const char*, IExecContext*, void*) override { return Code(); }
    KXPCode GotoLine(const char*, std::int32_t, IExecContext*, void*) override { return Code(); }
    KXPCode GotoTime(const char*, std::int32_t, IExecContext*, void*) override { return Code(); }
    KXPCode LoadShow(const char*, std::int32_t, IExecContext*, void*) override { return Code(); }
    KXPCode GetObjectList(const char*, std::uint32_t, IExecContext* c, void*) override { return Text(c, "<Objects/>"); }
    KXPCode Reserved16(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved17(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved18(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode SetProperty(const char*, const char*, const char*, IExecContext*, void*) override { return Code(); }
    KXPCode SetPropertyAsInt(const char*, const char*, std::int32_t, IExecContext*, void*) override { return Code(); }
    KXPCode GetProperty(const char*, const char*, IExecContext* c, void*) override { return Text(c, "42"); }
    KXPCode GetObject(const char*, std::uint16_t, IExecContext* c, void*) override { return Text(c, "<Object/>"); }
    /// Runs the function "Answer" of the device of that name with the parameters as its argument.
    KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                    void* reserved) override;

private:
    KXPCode Code();
    KXPCode Text(IExecContext* context, const char* text);

    SoakHost& m_host;
    std::mutex m_lock; ///< held while the handler is called, so that one that is taken away is called no more
    IManagerRemoteHandler* m_handler = nullptr; ///< under the lock
    bool m_closed = false;                      ///< under the lock
};

#pragma once

#include <atomic>

#include "GuardedPages.h"
#include "HostValues.h"
#include "IManagerRemote.h"

/// The older link, one for all devices. It does at once what it is asked; a text that it gives is the name of the call,
/// in guarded memory.
class HostOlderLink final : public IManagerRemote, public Guarded {
public:
    explicit HostOlderLink(const Hearing& hearing)
        : m_hearing(hearing) {
        GuardedName(this, "the older link of a host that is gone");
    }

    /// Texts given and not back yet.
    int TextsOut() const { return m_textsOut; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t) override {
        return Do("OpenUserScreen");
    }
    KXPCode CloseUserScreen(const char*) override { return Do("CloseUserScreen"); }
    KXPCode GotoPage(const char*, std::int32_t) override { return Do("GotoPage"); }
    KXPCode StartTask(const char*) override { return Do("StartTask"); }
    KXPCode PauseTask(const char*) override { return Do("PauseTask"); }
    KXPCode StopTask(const char*, std::int32_t) override { return Do("StopTask"); }
    KXPCode GotoLabel(const char*, const char*) override { return Do("GotoLabel"); }
    KXPCode GotoLine(const char*, std::int32_t) override { return Do("GotoLine"); }
    KXPCode GotoTime(const char*, std::int32_t) override { return Do("GotoTime"); }
    KXPCode LoadShow(const char*, std::int32_t) override { return Do("LoadShow"); }
    KXPCode RegisterGroup(IManagerRemoteHandler*, const char*) override { return Do("RegisterGroup"); }
    KXPCode UnregisterGroup() override { return Do("UnregisterGroup"); }
    KXPCode SetProperty(const char*, const char*, const char*) override { return Do("SetProperty"); }
    KXPCode SetPropertyAsInt(const char*, const char*, std::int32_t) override { return Do("SetPropertyAsInt"); }
    KXPCode GetObjectList(const char*, std::uint32_t, char** out) override { return Tell("GetObjectList", out); }
    KXPCode GetProperty(const char*, const char*, char** out) override { return Tell("GetProperty", out); }
    KXPCode GetObject(const char*, std::uint16_t, char** out) override { return Tell("GetObject", out); }
    KXPCode Perform(const char*, const char*, const char*, char** out) override { return Tell("Perform", out); }
    KXPCode GetPropertyAsInt(const char*, const char*, std::int32_t* out) override;
    KXPCode Reserved14(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved15(void*) override { return KXP_NOT_IMPLEMENTED; }
    void FreeText(char** text) override;

private:
    KXPCode Do(const char* call) const;
    KXPCode Tell(const char* call, char** out);

    std::atomic<int> m_textsOut{0};
    const Hearing& m_hearing;
};

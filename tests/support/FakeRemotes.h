#pragma once

#include <functional>
#include <string>
#include <vector>

#include "IManagerRemote.h"

/// A newer link that notes what it is asked, "name|argument|argument", and answers as it is told.
class FakeRemote2 : public IManagerRemote2 {
public:
    virtual ~FakeRemote2() = default;

    std::vector<std::string> calls;
    IManagerRemoteHandler* handler = nullptr;
    IExecContext* lastContext = nullptr; ///< of the last call; borrowed
    KXPCode code = KXP_OK;               ///< what calls answer
    /// Called with the context of each call, before it answers.
    std::function<void(IExecContext2*)> onCall;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetHandler(IManagerRemoteHandler* newHandler) override;
    KXPCode Reserved2(void*) override { return Note("Reserved2", nullptr); }
    KXPCode RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) override;
    KXPCode UnregisterGroup(const char* group, IExecContext* context, void* reserved) override;
    KXPCode OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t, IExecContext* c, void*) override {
        return Note("OpenUserScreen", c);
    }
    KXPCode CloseUserScreen(const char*, IExecContext* c, void*) override { return Note("CloseUserScreen", c); }
    KXPCode GotoPage(const char*, const char*, IExecContext* c, void*) override { return Note("GotoPage", c); }
    KXPCode StartTask(const char*, IExecContext* c, void*) override { return Note("StartTask", c); }
    KXPCode PauseTask(const char*, IExecContext* c, void*) override { return Note("PauseTask", c); }
    KXPCode StopTask(const char*, std::int32_t, IExecContext* c, void*) override { return Note("StopTask", c); }
    KXPCode GotoLabel(const char*, const char*, IExecContext* c, void*) override { return Note("GotoLabel", c); }
    KXPCode GotoLine(const char*, std::int32_t, IExecContext* c, void*) override { return Note("GotoLine", c); }
    KXPCode GotoTime(const char*, std::int32_t, IExecContext* c, void*) override { return Note("GotoTime", c); }
    KXPCode LoadShow(const char*, std::int32_t, IExecContext* c, void*) override { return Note("LoadShow", c); }
    KXPCode GetObjectList(const char*, std::uint32_t, IExecContext* c, void*) override {
        return Note("GetObjectList", c);
    }
    KXPCode Reserved16(void*) override { return Note("Reserved16", nullptr); }
    KXPCode Reserved17(void*) override { return Note("Reserved17", nullptr); }
    KXPCode Reserved18(void*) override { return Note("Reserved18", nullptr); }
    KXPCode SetProperty(const char*, const char*, const char*, IExecContext* c, void*) override {
        return Note("SetProperty", c);
    }
    KXPCode SetPropertyAsInt(const char*, const char*, std::int32_t, IExecContext* c, void*) override {
        return Note("SetPropertyAsInt", c);
    }
    KXPCode GetProperty(const char*, const char*, IExecContext* c, void*) override { return Note("GetProperty", c); }
    KXPCode GetObject(const char*, std::uint16_t, IExecContext* c, void*) override { return Note("GetObject", c); }
    KXPCode Perform(const char*, const char*, const char*, IExecContext* c, void*) override {
        return Note("Perform", c);
    }

private:
    KXPCode Note(const std::string& call, IExecContext* context);
};

/// An older link that does the same.
class FakeRemote : public IManagerRemote {
public:
    virtual ~FakeRemote() = default;

    std::vector<std::string> calls;
    IManagerRemoteHandler* handler = nullptr;
    KXPCode code = KXP_OK;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t) override {
        return Note("OpenUserScreen");
    }
    KXPCode CloseUserScreen(const char*) override { return Note("CloseUserScreen"); }
    KXPCode GotoPage(const char*, std::int32_t) override { return Note("GotoPage"); }
    KXPCode StartTask(const char*) override { return Note("StartTask"); }
    KXPCode PauseTask(const char*) override { return Note("PauseTask"); }
    KXPCode StopTask(const char*, std::int32_t) override { return Note("StopTask"); }
    KXPCode GotoLabel(const char*, const char*) override { return Note("GotoLabel"); }
    KXPCode GotoLine(const char*, std::int32_t) override { return Note("GotoLine"); }
    KXPCode GotoTime(const char*, std::int32_t) override { return Note("GotoTime"); }
    KXPCode LoadShow(const char*, std::int32_t) override { return Note("LoadShow"); }
    KXPCode RegisterGroup(IManagerRemoteHandler* newHandler, const char* group) override;
    KXPCode UnregisterGroup() override { return Note("UnregisterGroup"); }
    KXPCode GetObjectList(const char*, std::uint32_t, char**) override { return Note("GetObjectList"); }
    KXPCode Reserved14(void*) override { return Note("Reserved14"); }
    KXPCode Reserved15(void*) override { return Note("Reserved15"); }
    KXPCode SetProperty(const char*, const char*, const char*) override { return Note("SetProperty"); }
    KXPCode SetPropertyAsInt(const char*, const char*, std::int32_t) override { return Note("SetPropertyAsInt"); }
    KXPCode GetProperty(const char*, const char*, char**) override { return Note("GetProperty"); }
    KXPCode GetPropertyAsInt(const char*, const char*, std::int32_t*) override { return Note("GetPropertyAsInt"); }
    KXPCode GetObject(const char*, std::uint16_t, char**) override { return Note("GetObject"); }
    KXPCode Perform(const char*, const char*, const char*, char**) override { return Note("Perform"); }
    void FreeText(char**) override { calls.emplace_back("FreeText"); }

private:
    KXPCode Note(const std::string& call) {
        calls.push_back(call);
        return code;
    }
};

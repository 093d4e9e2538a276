#pragma once

#include <functional>
#include <string>
#include <vector>

#include "IManagerRemote.h"

/// An argument as the fakes note it: "-" for a null text.
std::string ShownArgument(const char* text);
inline std::string ShownArgument(std::int64_t number) {
    return std::to_string(number);
}

/// "name|argument|argument".
template <typename... Arguments>
std::string CallText(const std::string& name, Arguments... arguments) {
    return (name + ... + ("|" + ShownArgument(arguments)));
}

/// A newer link that notes what it is asked, "name|argument|argument", and answers as it is told.
class FakeRemote2 : public IManagerRemote2 {
public:
    virtual ~FakeRemote2() = default;

    std::vector<std::string> calls;
    IManagerRemoteHandler* handler = nullptr;
    IExecContext* lastContext = nullptr; ///< of the last call; borrowed
    KXPCode code = KXP_OK;               ///< what calls answer
    const char* text = nullptr;          ///< put into the contexts of operations that give a text, null for none
    /// Called with the context of each call, before it answers.
    std::function<void(IExecContext2*)> onCall;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetHandler(IManagerRemoteHandler* newHandler) override;
    KXPCode Reserved2(void*) override { return Note("Reserved2", nullptr, nullptr); }
    KXPCode RegisterGroup(const char* group, const char* options, IExecContext* c, void* r) override {
        return Note(CallText("RegisterGroup", group, options), c, r);
    }
    KXPCode UnregisterGroup(const char* group, IExecContext* c, void* r) override {
        return Note(CallText("UnregisterGroup", group), c, r);
    }
    KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top,
                           IExecContext* c, void* r) override {
        return Note(CallText("OpenUserScreen", name, position, left, top), c, r);
    }
    KXPCode CloseUserScreen(const char* name, IExecContext* c, void* r) override {
        return Note(CallText("CloseUserScreen", name), c, r);
    }
    KXPCode GotoPage(const char* name, const char* page, IExecContext* c, void* r) override {
        return Note(CallText("GotoPage", name, page), c, r);
    }
    KXPCode StartTask(const char* task, IExecContext* c, void* r) override {
        return Note(CallText("StartTask", task), c, r);
    }
    KXPCode PauseTask(const char* task, IExecContext* c, void* r) override {
        return Note(CallText("PauseTask", task), c, r);
    }
    KXPCode StopTask(const char* task, std::int32_t mode, IExecContext* c, void* r) override {
        return Note(CallText("StopTask", task, mode), c, r);
    }
    KXPCode GotoLabel(const char* task, const char* label, IExecContext* c, void* r) override {
        return Note(CallText("GotoLabel", task, label), c, r);
    }
    KXPCode GotoLine(const char* task, std::int32_t line, IExecContext* c, void* r) override {
        return Note(CallText("GotoLine", task, line), c, r);
    }
    KXPCode GotoTime(const char* task, std::int32_t time, IExecContext* c, void* r) override {
        return Note(CallText("GotoTime", task, time), c, r);
    }
    KXPCode LoadShow(const char* show, std::int32_t time, IExecContext* c, void* r) override {
        return Note(CallText("LoadShow", show, time), c, r);
    }
    KXPCode GetObjectList(const char* parent, std::uint32_t type, IExecContext* c, void* r) override {
        return NoteText(CallText("GetObjectList", parent, type), c, r);
    }
    KXPCode Reserved16(void*) override { return Note("Reserved16", nullptr, nullptr); }
    KXPCode Reserved17(void*) override { return Note("Reserved17", nullptr, nullptr); }
    KXPCode Reserved18(void*) override { return Note("Reserved18", nullptr, nullptr); }
    KXPCode SetProperty(const char* object, const char* property, const char* value, IExecContext* c,
                        void* r) override {
        return Note(CallText("SetProperty", object, property, value), c, r);
    }
    KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value, IExecContext* c,
                             void* r) override {
        return Note(CallText("SetPropertyAsInt", object, property, value), c, r);
    }
    KXPCode GetProperty(const char* object, const char* property, IExecContext* c, void* r) override {
        return NoteText(CallText("GetProperty", object, property), c, r);
    }
    KXPCode GetObject(const char* object, std::uint16_t depth, IExecContext* c, void* r) override {
        return NoteText(CallText("GetObject", object, depth), c, r);
    }
    KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* c, void* r) override {
        return NoteText(CallText("Perform", object, action, parameters), c, r);
    }

private:
    KXPCode Note(const std::string& call, IExecContext* context, const void* reserved);
    KXPCode NoteText(const std::string& call, IExecContext* context, const void* reserved);
};

/// An older link that does the same.
class FakeRemote : public IManagerRemote {
public:
    virtual ~FakeRemote() = default;

    std::vector<std::string> calls;
    IManagerRemoteHandler* handler = nullptr;
    KXPCode code = KXP_OK;
    const char* text = nullptr; ///< what operations that give a text answer with code 0, null for none
    std::int32_t number = 0;    ///< what GetPropertyAsInt writes, whatever the code
    int textsOut = 0;           ///< texts given and not yet freed

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top) override {
        return Note(CallText("OpenUserScreen", name, position, left, top));
    }
    KXPCode CloseUserScreen(const char* name) override { return Note(CallText("CloseUserScreen", name)); }
    KXPCode GotoPage(const char* name, std::int32_t page) override { return Note(CallText("GotoPage", name, page)); }
    KXPCode StartTask(const char* task) override { return Note(CallText("StartTask", task)); }
    KXPCode PauseTask(const char* task) override { return Note(CallText("PauseTask", task)); }
    KXPCode StopTask(const char* task, std::int32_t mode) override { return Note(CallText("StopTask", task, mode)); }
    KXPCode GotoLabel(const char* task, const char* label) override { return Note(CallText("GotoLabel", task, label)); }
    KXPCode GotoLine(const char* task, std::int32_t line) override { return Note(CallText("GotoLine", task, line)); }
    KXPCode GotoTime(const char* task, std::int32_t time) override { return Note(CallText("GotoTime", task, time)); }
    KXPCode LoadShow(const char* show, std::int32_t time) override { return Note(CallText("LoadShow", show, time)); }
    KXPCode RegisterGroup(IManagerRemoteHandler* newHandler, const char* group) override;
    KXPCode UnregisterGroup() override { return Note("UnregisterGroup"); }
    KXPCode GetObjectList(const char* parent, std::uint32_t type, char** out) override {
        return NoteText(CallText("GetObjectList", parent, type), out);
    }
    KXPCode Reserved14(void*) override { return Note("Reserved14"); }
    KXPCode Reserved15(void*) override { return Note("Reserved15"); }
    KXPCode SetProperty(const char* object, const char* property, const char* value) override {
        return Note(CallText("SetProperty", object, property, value));
    }
    KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value) override {
        return Note(CallText("SetPropertyAsInt", object, property, value));
    }
    KXPCode GetProperty(const char* object, const char* property, char** out) override {
        return NoteText(CallText("GetProperty", object, property), out);
    }
    KXPCode GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) override;
    KXPCode GetObject(const char* object, std::uint16_t depth, char** out) override {
        return NoteText(CallText("GetObject", object, depth), out);
    }
    KXPCode Perform(const char* object, const char* action, const char* parameters, char** out) override {
        return NoteText(CallText("Perform", object, action, parameters), out);
    }
    void FreeText(char** given) override;

private:
    KXPCode Note(const std::string& call) {
        calls.push_back(call);
        return code;
    }
    KXPCode NoteText(const std::string& call, char** out);
};

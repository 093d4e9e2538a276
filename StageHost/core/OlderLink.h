#pragma once

#include "IManagerRemote.h"

namespace stagehost {

/// The older link. The show has no tasks, screens, groups or objects yet: an operation on one answers 64, no such
/// object, and 2 when its name is null. Texts are not given. The reserved operations answer 19.   [any]
class OlderLink final : public IManagerRemote {
public:
    OlderLink() = default;
    virtual ~OlderLink() = default;
    OlderLink(const OlderLink&) = delete;
    OlderLink& operator=(const OlderLink&) = delete;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top) override;
    KXPCode CloseUserScreen(const char* name) override;
    KXPCode GotoPage(const char* name, std::int32_t page) override;
    KXPCode StartTask(const char* task) override;
    KXPCode PauseTask(const char* task) override;
    KXPCode StopTask(const char* task, std::int32_t mode) override;
    KXPCode GotoLabel(const char* task, const char* label) override;
    KXPCode GotoLine(const char* task, std::int32_t line) override;
    KXPCode GotoTime(const char* task, std::int32_t time) override;
    KXPCode LoadShow(const char* show, std::int32_t time) override;
    KXPCode RegisterGroup(IManagerRemoteHandler* handler, const char* group) override;
    KXPCode UnregisterGroup() override;
    KXPCode GetObjectList(const char* parent, std::uint32_t type, char** out) override;
    KXPCode Reserved14(void* argument) override;
    KXPCode Reserved15(void* argument) override;
    KXPCode SetProperty(const char* object, const char* property, const char* value) override;
    KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value) override;
    KXPCode GetProperty(const char* object, const char* property, char** out) override;
    KXPCode GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) override;
    KXPCode GetObject(const char* object, std::uint16_t depth, char** out) override;
    KXPCode Perform(const char* object, const char* action, const char* parameters, char** out) override;
    void FreeText(char** text) override;
};

} // namespace stagehost

#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

#include "IManagerRemote.h"
#include "RequestDesk.h"

namespace stagehost {

/// The older link. It keeps its caller until the request is over, which a request that never ends is only when the
/// waiting is ended.
///
/// It tells no changes: it takes a registration for a group that exists, and keeps nothing of it. The reserved
/// operations answer 19.   [any]
class OlderLink final : public IManagerRemote {
public:
    /// @param desk must outlive the link.
    explicit OlderLink(RequestDesk& desk);
    virtual ~OlderLink() = default;
    OlderLink(const OlderLink&) = delete;
    OlderLink& operator=(const OlderLink&) = delete;

    /// Answers 75 to all callers that wait. From then on a caller waits a moment at most.   [host main]
    void EndWaiting();

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

private:
    /// Shared with the answers, which may come when the caller has gone.
    struct Waiting {
        std::mutex lock; ///< guards ending and the replies that callers wait for
        std::condition_variable changed;
        bool ending = false;
    };

    Reply Ask(const char* object, Request request);
    KXPCode AskForText(const char* object, Request request, char** out);

    RequestDesk& m_desk;
    const std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
};

} // namespace stagehost

#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "DropLog.h"
#include "IResource.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "ResourceLink.h"
#include "ScriptBacklog.h"

class IIOResource;
class IScriptObjectOwner;

/// What the script objects of the host's resources have in common. Such an object lives from the reading of one setup
/// of the device to the next, over the runs of the script. It is made and let go on the host's main thread and
/// deleted on the script's.
///
/// From LetGo on every method does nothing and gives its neutral result, for a script may keep the object as
/// long as it likes.
class MScriptResource : public MScriptCommonEvent {
public:
    /// @param type kind of the object. @param resource the host's, may be null. @param owner may be null.   [host main]
    MScriptResource(ScriptObjectType type, IResource* resource, IScriptObjectOwner* owner);
    ~MScriptResource() override;

    /// Makes the object a handler of its resource, once.   [host main]
    virtual void Attach() = 0;
    /// Gives the resource back: removes the handlers and closes it. When this returns no handler is inside and no call
    /// to the host begins any more; what is still inside the host is waited for, for a second.
    /// @return false when a call has not come back by then.   [host main]
    virtual bool LetGo() = 0;

    /// The resource that one flush of its channels puts out; null for all but channels.   [script]
    virtual IIOResource* GetFlushed() const { return nullptr; }
    const std::shared_ptr<ResourceLink>& GetLink() const { return m_link; }
    /// The next look at the state raises "open" or "close", whatever the state was.   [any]
    void ForgetState() { m_link->ForgetState(); }

protected:
    /// Sets a listener while the object has its resource.   [script]
    void Listen(const QString& event, const QScriptValue& listener);
    /// Runs the host's opening, and its closing when the object was let go meanwhile.   [script]
    template <typename Open, typename Close>
    void OpenUnlessLetGo(Open open, Close close) {
        m_link->Use([&] {
            open();
            if (m_link->IsShut())
                close();
        });
    }
    /// Removes what the host knows of the object, once.   [host main, script]
    template <typename Remove>
    bool LetGoOnce(Remove remove) {
        if (m_letGo)
            return true;
        m_letGo = true;
        m_link->Shut();
        remove();
        return m_link->WaitUntilUnused(kCallTime);
    }
    /// The device's name, valid as long as this object.   [any]
    const char* OwnerName();
    IScriptObjectOwner* Owner() const { return m_owner; }
    /// Queues an event of the resource. While too many wait, since the script does not keep up, it is dropped, and
    /// the log tells how many were.   [any]
    void Raise(const char* event, MScriptParamList values);
    /// The answer of a handler to QueryInterface.
    KXPCode AnswerHandler(const char* name, void** out, IResourceHandler* self, const char* ownName, void* own) const;

private:
    static constexpr std::chrono::milliseconds kCallTime{
        1000}; ///< what the host has for a call that is inside at the end

    IScriptObjectOwner* const m_owner;
    const std::shared_ptr<ResourceLink> m_link;
    DropLog m_drops;
    ScriptBacklog m_backlog;
    std::mutex m_nameLock;
    std::list<std::string> m_ownerNames; ///< under m_nameLock: what the host was given, the last one at the end
    bool m_letGo = false;                ///< host main, then script when it is deleted
};

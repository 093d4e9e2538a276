#pragma once

#include "IExecContext.h"

class IKXPDevice;

/// @file
/// The two links through which a device works the host's show. The newer one takes execution contexts and is always
/// preferred; a host may offer either, both or none. Texts are borrowed for the call; codes other than 0 and 21 are the
/// host's.

/// Implemented by the module: hears of changes in the groups that a device registered for.
///
/// It is not found through QueryInterface and not counted: both operations of IMInterface answer 0x10000001.
class IManagerRemoteHandler : public IMInterface {
public:
    /// An object of a registered group has changed. Copies the texts and returns at once; a null text drops the change.
    /// @param flag non-zero when the changed object itself follows. @param reserved ignored. @return 0.   [any host
    /// thread]
    virtual KXPCode OnPropertyChange(const char* object, const char* property, const char* value, std::uint32_t flag,
                                     std::uint32_t reserved) = 0;
    virtual KXPCode Reserved2(void* argument1, void* argument2, void* argument3) = 0;

protected:
    ~IManagerRemoteHandler() = default;
};

/// The older link. Text results are allocated by the host and given back with FreeText.
class IManagerRemote : public IMInterface {
public:
    virtual KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top) = 0;
    virtual KXPCode CloseUserScreen(const char* name) = 0;
    virtual KXPCode GotoPage(const char* name, std::int32_t page) = 0;
    virtual KXPCode StartTask(const char* task) = 0;
    virtual KXPCode PauseTask(const char* task) = 0;
    virtual KXPCode StopTask(const char* task, std::int32_t mode) = 0;
    virtual KXPCode GotoLabel(const char* task, const char* label) = 0;
    virtual KXPCode GotoLine(const char* task, std::int32_t line) = 0;
    virtual KXPCode GotoTime(const char* task, std::int32_t time) = 0;
    virtual KXPCode LoadShow(const char* show, std::int32_t time) = 0;
    /// Binds the handler and registers it for the group. The handler stays owned by the module.   [script]
    virtual KXPCode RegisterGroup(IManagerRemoteHandler* handler, const char* group) = 0;
    virtual KXPCode UnregisterGroup() = 0;
    virtual KXPCode GetObjectList(const char* parent, std::uint32_t type, char** out) = 0;
    virtual KXPCode Reserved14(void* argument) = 0;
    virtual KXPCode Reserved15(void* argument) = 0;
    virtual KXPCode SetProperty(const char* object, const char* property, const char* value) = 0;
    virtual KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value) = 0;
    virtual KXPCode GetProperty(const char* object, const char* property, char** out) = 0;
    virtual KXPCode GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) = 0;
    virtual KXPCode GetObject(const char* object, std::uint16_t depth, char** out) = 0;
    /// Runs an action on an object and waits for it. @param parameters an XML text. @param out the result text.
    /// [script]
    virtual KXPCode Perform(const char* object, const char* action, const char* parameters, char** out) = 0;
    /// Frees a text of this link and clears the pointer. Null is ignored.   [script]
    virtual void FreeText(char** text) = 0;

protected:
    ~IManagerRemote() = default;
};

/// The newer link of one device. Each operation but the first takes a context and a reserved 0. It returns 0 when it is
/// done, 21 when it goes on and ends through the context, anything else on failure. A result text is stored in the
/// context with SetResultText before the end.
class IManagerRemote2 : public IMInterface {
public:
    /// Binds the handler for changes. Stays owned by the module; null unbinds.   [script]
    virtual KXPCode SetHandler(IManagerRemoteHandler* handler) = 0;
    virtual KXPCode Reserved2(void* argument) = 0;
    virtual KXPCode RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) = 0;
    virtual KXPCode UnregisterGroup(const char* group, IExecContext* context, void* reserved) = 0;
    virtual KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top,
                                   IExecContext* context, void* reserved) = 0;
    virtual KXPCode CloseUserScreen(const char* name, IExecContext* context, void* reserved) = 0;
    /// The page is a decimal text here and a number on the older link.   [script]
    virtual KXPCode GotoPage(const char* name, const char* page, IExecContext* context, void* reserved) = 0;
    virtual KXPCode StartTask(const char* task, IExecContext* context, void* reserved) = 0;
    virtual KXPCode PauseTask(const char* task, IExecContext* context, void* reserved) = 0;
    virtual KXPCode StopTask(const char* task, std::int32_t mode, IExecContext* context, void* reserved) = 0;
    virtual KXPCode GotoLabel(const char* task, const char* label, IExecContext* context, void* reserved) = 0;
    virtual KXPCode GotoLine(const char* task, std::int32_t line, IExecContext* context, void* reserved) = 0;
    virtual KXPCode GotoTime(const char* task, std::int32_t time, IExecContext* context, void* reserved) = 0;
    virtual KXPCode LoadShow(const char* show, std::int32_t time, IExecContext* context, void* reserved) = 0;
    virtual KXPCode GetObjectList(const char* parent, std::uint32_t type, IExecContext* context, void* reserved) = 0;
    virtual KXPCode Reserved16(void* argument) = 0;
    virtual KXPCode Reserved17(void* argument) = 0;
    virtual KXPCode Reserved18(void* argument) = 0;
    virtual KXPCode SetProperty(const char* object, const char* property, const char* value, IExecContext* context,
                                void* reserved) = 0;
    virtual KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value,
                                     IExecContext* context, void* reserved) = 0;
    virtual KXPCode GetProperty(const char* object, const char* property, IExecContext* context, void* reserved) = 0;
    virtual KXPCode GetObject(const char* object, std::uint16_t depth, IExecContext* context, void* reserved) = 0;
    virtual KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                            void* reserved) = 0;

protected:
    ~IManagerRemote2() = default;
};

/// Hands out the older link. Found on the host root as "IManagerRemoteManager".
class IManagerRemoteManager : public IMInterface {
public:
    /// The link, owned by the host and valid for the module's life, or null.   [host main]
    virtual IManagerRemote* GetRemote() = 0;

protected:
    ~IManagerRemoteManager() = default;
};

/// Hands out the newer link, one for each device. Found on the host root as "IManagerRemoteManager2".
class IManagerRemoteManager2 : public IMInterface {
public:
    virtual KXPCode Reserved1(void* argument) = 0;
    /// The link of that device, owned by the host and valid until the device is released, or null.   [host main]
    virtual IManagerRemote2* GetRemote(IKXPDevice* device) = 0;

protected:
    ~IManagerRemoteManager2() = default;
};

#pragma once

#include "IExecContext.h"

class IKXPDevice;

/// @file
/// The two links through which a device works the host's show. The newer one takes
/// execution contexts and is always preferred; a host may offer either, both or
/// none. Texts are borrowed for the call; codes other than 0 and 21 are the host's.

/// Implemented by the module: hears of changes in the groups that a device registered for.
///
/// It is not found through QueryInterface and not counted: both operations of IMInterface answer 0x10000001. A host may
/// call it from SetHandler, or the older RegisterGroup, until it calls Release of the device; then it goes.
class IManagerRemoteHandler : public IMInterface {
public:
    /// An object of a registered group has changed. Copies the texts and returns at once; a null text drops the change.
    /// @param flag non-zero when the changed object itself follows.
    /// @param reserved ignored. @return 0.   [any host thread]
    virtual KXPCode OnPropertyChange(const char* object, const char* property, const char* value, std::uint32_t flag,
                                     std::uint32_t reserved) = 0;
    virtual KXPCode Reserved2(void* argument1, void* argument2, void* argument3) = 0;

protected:
    ~IManagerRemoteHandler() = default;
};

/// The older link. Text results are allocated by the host and given back with FreeText. The dialogs of a device ask for
/// lists and objects too: those calls come on the main thread, also while a call of the script is inside.
class IManagerRemote : public IMInterface {
public:
    /// Opens a user screen. The meaning of position, left and top
    /// is the host's. @return 0, or a code of the host.   [script]
    virtual KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top) = 0;
    /// Closes a user screen. @return 0, or a code of the host.   [script]
    virtual KXPCode CloseUserScreen(const char* name) = 0;
    /// Shows a page of a user screen. @return 0, or a code of the host.   [script]
    virtual KXPCode GotoPage(const char* name, std::int32_t page) = 0;
    /// Starts a task. @return 0, or a code of the host.   [script]
    virtual KXPCode StartTask(const char* task) = 0;
    /// Pauses a task. @return 0, or a code of the host.   [script]
    virtual KXPCode PauseTask(const char* task) = 0;
    /// Stops a task. The modes are the host's. @return 0, or a code of the host.   [script]
    virtual KXPCode StopTask(const char* task, std::int32_t mode) = 0;
    /// Moves a task to a label. @return 0, or a code of the host.   [script]
    virtual KXPCode GotoLabel(const char* task, const char* label) = 0;
    /// Moves a task to a line. @return 0, or a code of the host.   [script]
    virtual KXPCode GotoLine(const char* task, std::int32_t line) = 0;
    /// Moves a task to a time, in the host's unit. @return 0, or a code of the host.   [script]
    virtual KXPCode GotoTime(const char* task, std::int32_t time) = 0;
    /// Loads a show at a time, in the host's unit. @return 0, or a code of the host.   [script]
    virtual KXPCode LoadShow(const char* show, std::int32_t time) = 0;
    /// Binds the handler and registers it for the group. The handler stays owned by the module; null
    /// binds none.   [script, host main]
    virtual KXPCode RegisterGroup(IManagerRemoteHandler* handler, const char* group) = 0;
    /// Ends all registrations of the handler. The result is not looked at.   [script, host main]
    virtual KXPCode UnregisterGroup() = 0;
    /// Lists the objects of a type below a parent. @param out the text, given back with FreeText. @return 0, or a
    /// code of the host.   [script, host main]
    virtual KXPCode GetObjectList(const char* parent, std::uint32_t type, char** out) = 0;
    virtual KXPCode Reserved14(void* argument) = 0;
    virtual KXPCode Reserved15(void* argument) = 0;
    /// Sets a property of an object from a text. @return 0, or a code of the host.   [script]
    virtual KXPCode SetProperty(const char* object, const char* property, const char* value) = 0;
    /// Sets a property of an object from a number. @return 0, or a code of the host.   [script]
    virtual KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value) = 0;
    /// Reads a property of an object as a text. @param out the text, given back with FreeText. @return 0, or a code
    /// of the host.   [script]
    virtual KXPCode GetProperty(const char* object, const char* property, char** out) = 0;
    /// Reads a property of an object as a number. @param out the number,
    /// 0 on failure. @return 0, or a code of the host.   [script]
    virtual KXPCode GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) = 0;
    /// Describes an object down to a depth. @param out the text, given back with FreeText. @return 0, or a code
    /// of the host.   [script, host main]
    virtual KXPCode GetObject(const char* object, std::uint16_t depth, char** out) = 0;
    /// Runs an action on an object and waits for it. @param
    /// parameters an XML text. @param out the result text.   [script]
    virtual KXPCode Perform(const char* object, const char* action, const char* parameters, char** out) = 0;
    /// Frees a text of this link and clears the pointer. Null is ignored.   [script, host main]
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
    /// Registers the handler for changes in a group. @param options an XML text, empty for none.
    /// @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) = 0;
    /// Ends the registration for a group; null for the group granted to the device. @return 0 done, 21 goes on, or a
    /// code of the host.   [script]
    virtual KXPCode UnregisterGroup(const char* group, IExecContext* context, void* reserved) = 0;
    /// Opens a user screen. The meaning of position, left and top is the host's. @return 0 done, 21 goes on, or a
    /// code of the host.   [script]
    virtual KXPCode OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top,
                                   IExecContext* context, void* reserved) = 0;
    /// Closes a user screen. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode CloseUserScreen(const char* name, IExecContext* context, void* reserved) = 0;
    /// The page is a decimal text here and a number on the older link.   [script]
    virtual KXPCode GotoPage(const char* name, const char* page, IExecContext* context, void* reserved) = 0;
    /// Starts a task. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode StartTask(const char* task, IExecContext* context, void* reserved) = 0;
    /// Pauses a task. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode PauseTask(const char* task, IExecContext* context, void* reserved) = 0;
    /// Stops a task. The modes are the host's. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode StopTask(const char* task, std::int32_t mode, IExecContext* context, void* reserved) = 0;
    /// Moves a task to a label. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode GotoLabel(const char* task, const char* label, IExecContext* context, void* reserved) = 0;
    /// Moves a task to a line. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode GotoLine(const char* task, std::int32_t line, IExecContext* context, void* reserved) = 0;
    /// Moves a task to a time, in the host's unit. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode GotoTime(const char* task, std::int32_t time, IExecContext* context, void* reserved) = 0;
    /// Loads a show at a time, in the host's unit. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode LoadShow(const char* show, std::int32_t time, IExecContext* context, void* reserved) = 0;
    /// Lists the objects of a type below a parent. The list is the result text. @return 0 done, 21 goes on, or a
    /// code of the host.   [script]
    virtual KXPCode GetObjectList(const char* parent, std::uint32_t type, IExecContext* context, void* reserved) = 0;
    virtual KXPCode Reserved16(void* argument) = 0;
    virtual KXPCode Reserved17(void* argument) = 0;
    virtual KXPCode Reserved18(void* argument) = 0;
    /// Sets a property of an object from a text. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode SetProperty(const char* object, const char* property, const char* value, IExecContext* context,
                                void* reserved) = 0;
    /// Sets a property of an object from a number. @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode SetPropertyAsInt(const char* object, const char* property, std::int32_t value,
                                     IExecContext* context, void* reserved) = 0;
    /// Reads a property of an object as a text. The value is the result text, also when it is read as a number.
    /// @return 0 done, 21 goes on, or a code of the host.   [script]
    virtual KXPCode GetProperty(const char* object, const char* property, IExecContext* context, void* reserved) = 0;
    /// Describes an object down to a depth. The description is the result text. @return 0 done, 21 goes on, or a
    /// code of the host.   [script, host main]
    virtual KXPCode GetObject(const char* object, std::uint16_t depth, IExecContext* context, void* reserved) = 0;
    /// Runs an action on an object. Parameters are an XML text; the answer is the result text. @return 0 done, 21
    /// goes on, or a code of the host.   [script]
    virtual KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                            void* reserved) = 0;

protected:
    ~IManagerRemote2() = default;
};

/// Hands out the older link. Found on the host root as "IManagerRemoteManager".
class IManagerRemoteManager : public IMInterface {
public:
    /// The link or null, the host's for the module's life. Who is done with it calls its Release.   [host main]
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

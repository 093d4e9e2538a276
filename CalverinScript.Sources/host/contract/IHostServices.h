#pragma once

#include "IData.h"

/// @file
/// Small services of the host, each found by its name on the host root and each allowed to be missing.

/// The host's variables. "IVariableManager".
class IVariableManager : public IMInterface {
public:
    virtual KXPCode Reserved1(void* argument) = 0;
    /// The variable of that full name; owned by the host, never released by the module; null when there is none. [any]
    virtual IData* FindVariable(const char* name) = 0;

protected:
    ~IVariableManager() = default;
};

/// Folder numbers of IFolderManager.
enum KXPFolder : std::uint32_t {
    KXP_FOLDER_PROGRAM_DATA = 1, ///< the host's program data
    KXP_FOLDER_4 = 4,
    KXP_FOLDER_PROJECT_USER_DATA = 20, ///< user data of the open project
    KXP_FOLDER_SCRIPTS = 33            ///< the host's scripts, null when it has none
};

/// The host's folders. "IFolderManager".
class IFolderManager : public IMInterface {
public:
    /// The path of a folder, owned by the host and valid until the next call; null when there is none.   [any]
    virtual const char* GetFolder(std::uint32_t folderId) = 0;

protected:
    ~IFolderManager() = default;
};

/// Rules for the names of the host's objects. "IObjectNameTools".
class IObjectNameTools : public IMInterface {
public:
    virtual KXPCode Reserved1(void* argument) = 0;
    virtual KXPCode Reserved2(void* argument) = 0;
    virtual KXPCode Reserved3(void* argument) = 0;
    virtual KXPCode Reserved4(void* argument) = 0;
    /// Whether an object may have that name. @return 0 refused, non-zero allowed.   [any]
    virtual std::uint32_t IsValidName(const char* name) = 0;

protected:
    ~IObjectNameTools() = default;
};

/// The colours in which the host draws itself. "IThemeManager".
class IThemeManager : public IMInterface {
public:
    /// The colour of that number as 0x00BBGGRR: 0 background, 1 text, 6 selected, 7 selected text,
    /// 8 field.   [host main]
    virtual std::uint32_t GetColor(std::uint32_t id) = 0;

protected:
    ~IThemeManager() = default;
};

#pragma once

#include <optional>
#include <string>

#include "KXPTypes.h"
#include "ScriptRecords.h"

/// @file
/// The text in which a host keeps a device's setup. Pure functions; no file is touched.

/// Token of the project's user data folder in a stored file name.
constexpr const char* kUserDataToken = "$CURRENTPRJ_USERDATA";

/// The user's choices beside a script, as a text that names none of them means them.
struct SetupChoices {
    bool registerAllUserGroups = false;
    bool removeDefaults = false;
    bool programmingMode = false;
    bool autoCompletion = true;
};

/// The script of a setup with the choices that stand beside it.
struct SetupScript : SetupChoices {
    QString storedFileName; ///< as stored: the token, a separator and a file name; empty for none
    QString text;           ///< characters beyond Latin-1 are lost when it is written
};

/// A device's setup. What is optional was not in the text, or is not to be in it.
struct DeviceSetup {
    QString name; ///< the device's
    std::optional<bool> userModeVisible;
    std::optional<bool> runModeVisible;
    ScriptSettings settings;
    ScriptVariables monitors;
    std::optional<ScriptCommands> moduleCommands; ///< written by one device for all
    ScriptCommands commands;
    std::optional<SetupScript> script;
};

/// The setup as text, indented by tabs.
std::string PrintSetup(const DeviceSetup& setup);

/// Whether ReadSetup takes a text of that size: what is larger must not be stored, or it is lost.
bool IsStorable(const std::string& setupText);

/// Reads a setup text. A bad entry in a list is left out, the rest is read.
/// @param setup untouched unless the result is 0; but its name is read from every good root, also where `Setup` is missing.
/// @return 0, 2 for a null or empty text, one that does not parse and one without `Setup`, 22 for another root than `DeviceData`
///         with a `Version`.
KXPCode ReadSetup(const char* text, DeviceSetup& setup);

/// The path that a stored file name stands for: below the folder when it holds the token, empty otherwise or without a folder.
/// Both separators are understood.
QString ResolveStoredFileName(const QString& storedFileName, const QString& userDataFolder);

/// What is stored for a script file: the token, a backslash and the file's name alone.
QString MakeStoredFileName(const QString& path);

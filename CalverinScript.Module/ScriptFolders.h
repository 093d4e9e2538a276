#pragma once

#include <string>

class IFolderManager;

/// @file
/// The folders in which scripts lie, and the one-time move of older ones. Host main thread.

/// Copies a folder with all below it. The target must not exist; it is made before anything else is looked at.
/// @param stopOnError whether the first failure ends the copy. @param overwrite whether files that exist are replaced.
/// @return false when an argument is null, when the paths are
/// equal without regard to case, when the target lies below the
///         source, exists or cannot be made, when the source cannot be listed and when a failure ended the copy.
bool CopyFolder(const char* source, const char* target, bool stopOnError, bool overwrite);

/// Removes a folder with all below it. Links are removed, not followed, also when the path itself is one.
/// @param stopOnError whether the first failure ends the removal.
/// @return whether the folder is gone; false for null and for an empty path.
bool RemoveFolder(const char* path, bool stopOnError);

/// Path of the script library. Moves the folders of an older installation there on the way.
/// @param folders may be null: then it is the fallback.
std::string FindScriptsFolder(IFolderManager* folders, const std::string& fallback);

/// Where scripts lie when the host tells no folders: "Calverin/Scripts" under the documents folder.
std::string FallbackScriptsFolder();

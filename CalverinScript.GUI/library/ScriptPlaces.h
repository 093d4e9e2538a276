#pragma once

#include <chrono>
#include <memory>

#include <QString>

class MCalverinScript_Device;
class QScriptEngine;
class QWidget;
struct MScriptDescription;

/// @file
/// The two places in which scripts lie: the library that all projects share, and the user data of the open project, where each
/// device has the copy that it runs.   [host main]

/// The library's folder; empty when there is none, or no device.
QString LibraryFolderOf(const MCalverinScript_Device* device);

/// Where the library has the script of that name; empty without a name or a library.
/// @param projectFile the project's copy, or its name.
QString LibraryPathOf(const MCalverinScript_Device* device, const QString& projectFile);

/// The project's user data; empty when the host tells none, or there is no device.
QString ProjectFolderOf(const MCalverinScript_Device* device);

/// Where the help file lies; empty when the host tells no folder, or there is no device.
QString HelpFolderOf(const MCalverinScript_Device* device);

/// How long a script may take to say what it is.
std::chrono::milliseconds AnalysisLimitOf(const MCalverinScript_Device* device);

/// What a script file says of itself. The pointer shows meanwhile that it may take long. @return null without a file or an engine.
std::unique_ptr<MScriptDescription> DescribeFile(const QString& path, QScriptEngine* engine,
                                                 const MCalverinScript_Device* device);

/// What the user is told when a script of the library does not reach the project.
QString CopyFailureText();

/// Copies a script of the library into the project and tells the user when that fails.
/// @param copyPath receives where the copy is to lie, may be null. @return whether it lies there.
bool CopyScriptToProject(const MCalverinScript_Device* device, const QString& path, QString* copyPath, QWidget* parent);

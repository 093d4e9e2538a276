#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// @file
/// The file of a download. Callable on any thread.

/// Where a download goes: into a folder under the last name of the address's path, otherwise to the path itself. "\\" in the path
/// counts as a separator.
/// @return "" when the path names no file.
QString DownloadTarget(const QString& path, const QUrl& address);

/// Replaces the content of a file. Writes to nothing but plain files: opening a pipe or a device could block for ever. A file that does
/// not take all the bytes is removed.
/// @return whether there is a plain file of that path then. One that was there and cannot be opened for writing stays as it is, and
/// counts.
bool WriteDownload(const QString& target, const QByteArray& bytes);

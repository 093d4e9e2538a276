#pragma once

#include <optional>

#include <QString>

/// @file
/// Script files on disk. A file that is written over keeps its old content until the new one lies complete beside it, so that a
/// full disk costs nobody a script.   [host main]

/// The text of a script file. @return nothing when it cannot be read.
std::optional<QString> ReadScriptFile(const QString& path);

/// Whether a script may be written there: the folder is made if it is missing, and a file that is there has to be writable.
bool CanWriteScriptFile(const QString& path);

/// Writes a script as UTF-8; a file that is there is replaced, also one that is not writable.
/// @param failure receives the reason. @return false when the file is as it was.
bool WriteScriptFile(const QString& path, const QString& text, QString* failure = nullptr);

/// Copies a file byte by byte over whatever is there; the folder is made if it is missing. @return false when the target is as it was.
bool CopyScriptFile(const QString& source, const QString& target);

/// The path of a file in a folder, with the separator of this platform.
QString PathBelow(const QString& folder, const QString& fileName);

/// The text as an editor shows it, with a line feed at the end of each line.
QString WithPlainLineEnds(QString text);

/// The text with the line ends that a model has: those of other systems where the model has nothing else.
QString WithLineEndsOf(const QString& model, QString text);

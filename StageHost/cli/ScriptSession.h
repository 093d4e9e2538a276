#pragma once

#include "Session.h"

namespace stagehost {

/// A show with one device "script" and no steps, in the folder of the script file.
/// @param file may be empty: the device has no script then.
Show ShowOfScript(const QString& file);

/// Whether a file can be read as a script; what is wrong otherwise.
MaybeFailure CheckReadable(const QString& file);

/// Reads a show file, or makes a show of a script file, which is
/// then the driver of its device: what ends in ".json" is a show.
MaybeFailure ReadShowOrScript(const QString& file, Show& show);

/// Reads a show file; all its mistakes, one on a line, are the failure.
MaybeFailure ReadShow(const QString& file, Show& show);
/// @param text receives what the file holds.
MaybeFailure ReadShow(const QString& file, Show& show, QByteArray& text);

} // namespace stagehost

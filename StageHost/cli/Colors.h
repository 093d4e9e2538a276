#pragma once

#include <QString>

namespace stagehost {

/// What a piece of text is, for the eye.
enum class Ink { Heading, Good, Bad, Warning, Faint };

/// A text for standard output or standard error in the colour of what it is; as it was given when nobody sits before a
/// terminal there, when the terminal has no colours ("dumb"), or when the user wants none (the variable NO_COLOR of the
/// environment is set and not empty, see no-color.org).   [host main]
QString OnOutput(Ink ink, const QString& text);
QString OnErrors(Ink ink, const QString& text);

/// What is written of a text: at a terminal the control characters of scripts and devices are shown, as \x1b, so that
/// they work nothing there.   [any]
QString ForChannel(bool isTerminal, const QString& text);

} // namespace stagehost

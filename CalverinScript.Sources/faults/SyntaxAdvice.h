#pragma once

#include <QString>

/// Where a script breaks off being one, and why.
struct SyntaxAdvice {
    int line = 0;   ///< from 1; 0 when nothing is known
    int column = 0; ///< from 1; 0 when only the line is known
    QString what;   ///< `expected ")" before "{"`
    QString note;   ///< what to write in place of something that newer editions of the language have; empty for none
};

/// Looks at a text that the engine does not take.
/// @param engineLine where the engine itself has given up; counts where the grammar says nothing.   [any]
SyntaxAdvice AdviceOn(const QString& text, int engineLine);

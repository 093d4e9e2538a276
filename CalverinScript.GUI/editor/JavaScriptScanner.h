#pragma once

#include <QList>
#include <QSet>
#include <QString>

#include <vector>

#include "EditorColors.h"

/// Where a scan stands. The numbers are the low four bits of a line's state.
enum class ScanState : int { Start = 0, Number = 1, Identifier = 2, String = 3, Comment = 4, Regex = 5 };

/// A run of one colour. It lies inside its line: 0 <= start, 0 < length, start + length <= length of the text.
struct ScriptToken {
    int start;
    int length;
    ScriptColor role;
};

/// What the scan of one line gives.
struct ScannedLine {
    std::vector<ScriptToken> tokens; ///< from left to right, never overlapping
    QList<int> brackets;             ///< the columns of '{' and '}', in order
    int state = 0;                   ///< see PackLineState; what the scan of the next line begins with
};

/// The words that have a colour of their own; both sets tell upper from lower case.
struct ScriptWords {
    QSet<QString> keywords;
    QSet<QString> knownIdentifiers;
};

/// The 28 words that a script's language reserves.
QStringList DefaultKeywords();

/// Bits 0 to 3 hold the scan state, the bits above the depth of curly braces. Of a negative state (a depth below 0)
/// the next line keeps nothing: it starts afresh.
int PackLineState(ScanState state, int depth);

/// Scans one line. A pure function of its arguments, for any thread. Only a block comment crosses a line; a text or a
/// regular expression that is still open at the end has no colour and ends there.
/// @param previousState state of the line before, negative for the first line.
ScannedLine ScanLine(const QString& text, int previousState, const ScriptWords& words);

#pragma once

#include <vector>

#include <QString>

/// One word or sign of a script's text. Blanks and comments are none.
struct SourceToken {
    enum class Kind {
        Word, ///< a name or a keyword
        Number,
        Text,     ///< with its quotes; an open one ends with its line
        Template, ///< between back quotes, which the engine does not know
        Pattern,  ///< a regular expression
        Sign      ///< "=>" and "..." and their like are one, all others single characters
    };

    Kind kind;
    int start;
    int length;

    int End() const { return start + length; }
    QStringRef In(const QString& text) const { return text.midRef(start, length); }
    bool Is(const QString& text, const char* what) const { return In(text) == QLatin1String(what); }
};

/// The tokens of a script from the first to the last. Any text has some, also one that no engine takes.   [any]
std::vector<SourceToken> TokensOf(const QString& text);

/// The start of a line, counted from 1; the end of the text for a line that it does not have.   [any]
int StartOfLine(const QString& text, int line);
/// The line of an offset, from 1.   [any]
int LineOf(const QString& text, int offset);
/// A line without its end.   [any]
QString TextOfLine(const QString& text, int line);

#pragma once

#include <vector>

#include <QString>
#include <QStringList>

/// The first place at which a text is no ECMAScript 5.1.
struct SyntaxBreak {
    enum class Kind {
        None,        ///< the text is a script, or nests too deep to be looked at
        Unexpected,  ///< what stands at the offset cannot stand there
        OpenText,    ///< from the offset: not closed on its line
        OpenComment, ///< from the offset: never closed
        OpenPattern  ///< from the offset: a regular expression that is not closed on its line
    };

    Kind kind = Kind::None;
    int offset = 0; ///< of a character of the text; its size where the text ends too early
    QStringList
        expected; ///< what could stand there, as it is written or as "a name"; empty where it could be many things
};

/// Reads a text by the grammar of ECMA-262, edition 5.1, annex A, as the engine has it: reserved words name no members,
/// and a comment over several lines ends none. The engine's own parser tells no place for most mistakes, and its check
/// of a text writes beyond its memory where functions, or the branches of a long "else if", nest a good dozen deep.
/// What an assignment goes to is not looked at: this is asked about texts that the engine has refused already.   [any]
SyntaxBreak ReadSyntax(const QString& text);

/// A "break" or "continue" that leads nowhere: no loop of its function stands around it, or none of its label.
struct LostJump {
    int offset = 0; ///< of the word
    QString word;   ///< as it is written, with its label
};

/// All of them, in the order of a text that the engine has taken. The engine itself tells of one within a function only
/// when that is called for the first time. Nothing is found behind a place that nests too deep to be looked at.   [any]
std::vector<LostJump> FindLostJumps(const QString& text);

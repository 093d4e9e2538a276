#pragma once

#include <array>
#include <cstddef>

#include <QList>
#include <QString>
#include <QStringList>

/// @file
/// What the check has to say of a script that loads, all in one table: each kind of note with the code by which
/// programs know it. A code never changes its meaning. Pure data, without threads.

enum class NoteCode {
    // What is published
    UnusableName,
    NoVariable,
    DefaultVariableName,
    NoSetting,
    TooManyParameters,
    SameCommandName,
    StartName,
    StartNotPublished,
    SameMember,
    // What `Info` says
    MeansNothing,
    NotPublished,
    NoObject,
    NoBoolean,
    NoPlainValue,
    NoNumber,
    UnknownType,
    UnknownWidget,
    NoArrayOfItems,
    ItemsWithoutEnum,
    EnumWithoutItems,
    BuiltInName,
    MinAboveMax,
    DefaultBeyondLimit,
    DefaultTooLong,
    DefaultIsNoItem,
    // What the script does
    SettingNotRead,
    UnknownCall,
    UnknownMember,
    TooFewArguments,
    TooManyArguments,
    UnknownClass,
    UnknownEvent,
    LikelyEvent,
    EventNeverComes,
    UnknownObjectMember,
    ObjectMadeAgain,
    LostJump,
    PassedOver,
    Count
};

/// One kind of note.
struct NoteKind {
    NoteCode code;
    const char* name; ///< the code, as programs and people write it
    const char* text; ///< what is so, and what to do; %1 is what it is said of
};

/// All of them, in the order of NoteCode.
extern const std::array<NoteKind, static_cast<std::size_t>(NoteCode::Count)> kNoteKinds;

/// One thing that the check has to say of a script.
struct ScriptNote {
    NoteCode code;
    int line = 0;   ///< from 1; 0 when it is not known
    QString where;  ///< "Info.Variables.Level.Type", "QCalverin.Preform"
    QString text;   ///< one sentence
    QString file{}; ///< the path of the one of the driver's files that it is in; empty for the driver itself

    QString Code() const;
};

/// A note with its sentence. @param details what the sentence names beside `where`: %2, %3 and so on.
ScriptNote MakeNote(NoteCode code, int line, const QString& where, const QStringList& details = {});

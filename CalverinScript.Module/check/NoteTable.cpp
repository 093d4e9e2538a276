#include "NoteTable.h"

const std::array<NoteKind, static_cast<std::size_t>(NoteCode::Count)> kNoteKinds = {{
    {NoteCode::UnusableName, "unusable-name",
     "no command is made of %1, since hosts cannot carry the name: write it in Latin-1"},
    {NoteCode::NoVariable, "no-variable",
     "no variable is made of %1: give it a name that hosts take, and a number or a text"},
    {NoteCode::DefaultVariableName, "default-variable",
     "no variable is made of %1, since every device has one: take another name, or remove the default variables"},
    {NoteCode::NoSetting, "no-setting", "no setting is made of %1: give it a number or a text"},
    {NoteCode::TooManyParameters, "too-many-parameters",
     "%1 has %2 parameters, and at most 8 reach a function: hand over several values in one text"},
    {NoteCode::SameCommandName, "same-command-name",
     "%1 is shown as \"%2\", and so is %3: give each a Name of its own in Info.Commands"},
    {NoteCode::StartName, "start-name",
     "%1 is never called at the %2 of the device: the function for that is called %3"},
    {NoteCode::StartNotPublished, "start-not-published",
     "%1 is never called, since the object that the script ends with does not have it: make it a member"},
    {NoteCode::SameMember, "same-member",
     "%1 stands twice in one object, and the last one counts: rename one, or take it out"},
    {NoteCode::MeansNothing, "means-nothing", "%1 means nothing: correct the name, or take it out (%2)"},
    {NoteCode::NotPublished, "not-published",
     "%1 describes nothing, since nothing of that name is published: correct the name, or take it out"},
    {NoteCode::NoObject, "no-object", "%1 is no object: write it in braces"},
    {NoteCode::NoBoolean, "no-boolean", "%1 is neither true nor false: make it one of them"},
    {NoteCode::NoPlainValue, "no-plain-value", "%1 is no plain value: make it a text or a number"},
    {NoteCode::NoNumber, "no-number", "%1 is \"%2\", which is no number that fits: make it one"},
    {NoteCode::UnknownType, "unknown-type", "%1 is \"%2\", which is no type: take one of %3"},
    {NoteCode::UnknownWidget, "unknown-widget", "%1 is \"%2\", which is no field: take one of %3"},
    {NoteCode::NoArrayOfItems, "no-array", "%1 is no array: write the items in square brackets"},
    {NoteCode::ItemsWithoutEnum, "items-without-enum",
     "%1 counts for the type Enum alone: say Type: \"Enum\", or take the items out"},
    {NoteCode::EnumWithoutItems, "enum-without-items",
     "%1 is an Enum without items, so nothing can be chosen: give it Items"},
    {NoteCode::BuiltInName, "built-in-name",
     "%1 is the name of a command that every device has, and is not taken: choose another"},
    {NoteCode::MinAboveMax, "min-above-max", "%1 has MinValue %2 above MaxValue %3: exchange or correct them"},
    {NoteCode::DefaultBeyondLimit, "default-beyond-limit",
     "%1 begins with %2, which is %3: correct the value or the limit"},
    {NoteCode::DefaultTooLong, "default-too-long",
     "%1 begins with a text of %2 characters, and MaxLength is %3: shorten it, or raise MaxLength"},
    {NoteCode::DefaultIsNoItem, "default-is-no-item",
     "%1 begins with \"%2\", which is none of its items: take one of %3"},
    {NoteCode::SettingNotRead, "setting-not-read",
     "%1 seems never to be read, so what the user enters changes nothing: use it, or take it out"},
    {NoteCode::UnknownCall, "unknown-call", "%1 does not exist, and the call will throw: correct the name%2"},
    {NoteCode::UnknownMember, "unknown-member", "%1 does not exist and is undefined: correct the name%2"},
    {NoteCode::TooFewArguments, "too-few-arguments", "%1 gets %2, needs %3, and will throw: give it what it needs"},
    {NoteCode::TooManyArguments, "too-many-arguments", "%1 gets %2 and takes at most %3: take out what is dropped"},
    {NoteCode::UnknownClass, "unknown-class", "there is no class %1, and the line will throw: correct the name%2"},
    {NoteCode::UnknownEvent, "unknown-event",
     "there is no event \"%1\", so the listener is never called: correct the name%2"},
    {NoteCode::LikelyEvent, "likely-event",
     "\"%1\" is no event of these objects; it may be meant as \"%2\": write it so"},
    {NoteCode::EventNeverComes, "event-never-comes",
     "\"%1\" never comes from %2, so the listener is never called: listen for one of %3"},
    {NoteCode::UnknownObjectMember, "unknown-object-member",
     "%1 does not exist for %2, and a call of it will throw: correct the name%3"},
    {NoteCode::ObjectMadeAgain, "object-made-again",
     "%1 may run more than once, and what it made before goes on, with its listeners, until the device stops: make the "
     "object once, "
     "as in _mStart, and use it again"},
    {NoteCode::LostJump, "lost-jump",
     "\"%1\" leads nowhere, and its function will throw when it is called: only a loop of the same function can be "
     "left "
     "so; write \"return\", or use a loop"},
    {NoteCode::PassedOver, "passed-over",
     "%1: the engine takes the script all the same, and leaves out what it cannot read here: correct the line"},
}};

QString ScriptNote::Code() const {
    return QLatin1String(kNoteKinds[static_cast<std::size_t>(code)].name);
}

ScriptNote MakeNote(NoteCode code, int line, const QString& where, const QStringList& details) {
    QString text = QString::fromUtf8(kNoteKinds[static_cast<std::size_t>(code)].text);
    // All places at once: what is put in may hold a sign like them.
    QString sentence;
    for (int at = 0; at < text.size(); ++at) {
        const int place = text.at(at) == QLatin1Char('%') && at + 1 < text.size() ? text.at(at + 1).digitValue() : -1;
        if (place < 1) {
            sentence += text.at(at);
            continue;
        }
        sentence += place == 1 ? where : details.value(place - 2);
        ++at;
    }
    return {code, line, where, sentence};
}

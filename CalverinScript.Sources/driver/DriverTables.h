#pragma once

#include <array>
#include <cstddef>

#include <QString>

#include "KXPTypes.h"
#include "ScriptRecords.h"

/// @file
/// The agreed names of a driver script and of the texts that are made of it: each family is one table. Pure functions,
/// callable on any thread.

/// What the members of a publishing object become.
enum class PublishGroup { Host, Device, Setup };

/// The group of one of the nine publishing objects ("Calverin" to "Setup").
/// @return false for any other name.
bool FindPublishGroup(const QString& objectName, PublishGroup& group);

/// One type of data: its element in definitions, its name in a
/// script's `Info`, the attributes that hold value and default.
struct DataKind {
    const char* element;  ///< "IntegerData"; the host's interface is "I" and this
    const char* infoName; ///< "Integer"
    KXPDataType code;
    int widget;                   ///< kind of the form's field for a setting of this type
    const char* valueAttribute;   ///< in definitions
    const char* defaultAttribute; ///< null where a date is written in parts
};

/// The kind of an element name; null for other names.
const DataKind* FindDataKind(const QString& element);
/// The kind that `Info` names; null for other names.
const DataKind* FindDataKindOfInfo(const QString& infoName);
/// The kind of a type code; null for codes without an element.
const DataKind* FindDataKindOfCode(std::uint32_t code);

/// Families of things that have properties.
enum class PropertyOwner { Variable, Command, Setting };

/// The property names that an owner allows, in the order in which they are written.
/// @param type element name; counts for variables and parameters alone.
QStringList AllowedProperties(PropertyOwner owner, const QString& type);

/// Keeps a property if its owner allows the name and, where the name asks for a number, the text is one. A property
/// that is there already takes the new text.
/// @return whether it was kept.
bool StoreProperty(ScriptProperties& properties, PropertyOwner owner, const QString& type, const QString& name,
                   const QString& text);

/// The text of a property; null without one.
QString FindProperty(const ScriptProperties& properties, const QString& name);

/// The kind of the form's field that a name or a number stands for; -1 for others.
int WidgetKindOf(const QString& nameOrNumber);
/// The name of a field's kind ("LineEdit"); null outside the table.
const char* WidgetName(int kind);

/// First and last of the kinds of fields that name a resource of the host.
constexpr int kFirstResourceWidget = 14;
constexpr int kLastResourceWidget = 20;

/// The variables that every device has unless they are removed, in the order of their names.
enum class DefaultVariable { Status, Error, ScriptFileName, ScriptText, Functions };
constexpr std::size_t kDefaultVariableCount = 5;
constexpr std::array<const char*, kDefaultVariableCount> kDefaultVariables = {
    "Status", "Error", "CurrentScriptFileName", "CurrentScriptText", "ScriptFunctions"};

/// Whether the name is one of the five variables that every device has unless they are removed.
bool IsDefaultVariable(const QString& name);

/// Whether the name is one of the four commands that every device has.
bool IsBuiltInCommand(const QString& name);

/// Descriptor properties of commands and parameters.
constexpr const char* kCommandNameProperty = "KXPProp::ScriptUserCommandName";
constexpr const char* kParamNameProperty = "KXPProp::ScriptUserCommandParamName";
constexpr const char* kAcceptVariableProperty = "DataDescriptor::AcceptVariable";
constexpr const char* kDirectionProperty = "DataDescriptor::VarDirection";

/// "mddIn" or "mddOut".
const char* DirectionText(ParamDirection direction);

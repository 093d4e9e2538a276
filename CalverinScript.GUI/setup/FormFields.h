#pragma once

#include <QByteArray>
#include <QString>

#include "KXPTypes.h"
#include "ScriptRecords.h"

class IDialogManager2;
class IMInterface;
class IResourceProvider;
class QWidget;

/// @file
/// The fields of the setup form, one row of a table for each kind of widget that a script may ask for.   [host main]

/// The dynamic property by which a field is found again: the name of its setting.
constexpr const char* kSettingNameProperty = "ScriptSetupVarName";

/// How a setting lies in the form's two columns.
enum class FieldLayout {
    LabelAlone,        ///< the name; there is no field for this kind yet
    LabelAndField,     ///< the name, and the field at its natural width
    LabelAndWideField, ///< the name, and the field over all that is left
    FieldAlone,        ///< the field says its name itself
    WholeRow           ///< over both columns
};

/// One kind of field.
struct FieldKind {
    const char* name; ///< as a script writes it in `Widget`
    FieldLayout layout;
    QWidget* (*make)(const MScriptSetting& setting);                      ///< null for LabelAlone
    QString (*read)(const QWidget& field, const MScriptSetting& setting); ///< null where nothing is entered
};

/// The kind of that number; that of a line edit for numbers outside the table.
const FieldKind& FieldKindOf(int widget);

/// How a field lies in the form: a line edit without a width of its own takes all that is left.
FieldLayout LayoutOf(const MScriptSetting& setting);

/// What fields ask of the host, all of which may be missing. Borrowed for the life of the fields.
struct FormHost {
    /// Asks the host's root object, which may be null. @param owner the device's name, for the host.
    static FormHost Find(IMInterface* host, const QByteArray& owner);

    IDialogManager2* dialogs = nullptr;
    IResourceProvider* resources = nullptr;
    KXPWindow window = 0; ///< of the host, for its dialogs
    QByteArray owner;
};

/// Makes the field of a setting with its value in it, marked with the setting's name. @return null when its kind has none.
/// The caller owns it.
QWidget* MakeField(const MScriptSetting& setting, const FormHost& host);

/// The value that a field holds, as settings store it; the setting's own for a field that nothing is entered in.
QString ReadField(const QWidget& field, const MScriptSetting& setting);

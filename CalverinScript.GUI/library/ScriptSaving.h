#pragma once

#include <QPointer>
#include <QString>

#include "MCalverinScript_Device.h"

class QScriptEngine;
class QWidget;

/// How dialogs save a device's script: the text goes to the library first and is copied to the project from there. The user is told
/// what goes wrong; what was on disk is then still there.   [host main]
class ScriptSaving {
public:
    /// @param parent of the dialogs; borrowed for this object's life. @param engine reads the library's scripts.
    ScriptSaving(QWidget& parent, QPointer<MCalverinScript_Device> device, QScriptEngine& engine)
        : m_parent(parent)
        , m_device(std::move(device))
        , m_engine(engine) {}

    /// Saves under the name of the project's copy; asks for another one when there is no copy or the library's file may not be
    /// written. @param projectFile the copy's path; receives that of the new one. @return whether the text is in both files.
    bool Save(QString& projectFile, const QString& text);
    /// Asks for a name first. The arguments are those of Save.
    bool SaveAs(QString& projectFile, const QString& text);

private:
    bool MayOverwrite(const QString& libraryPath, const QString& name);
    bool Write(const QString& libraryPath, const QString& projectPath, const QString& text, const QString& modelFile);

    QWidget& m_parent;
    const QPointer<MCalverinScript_Device> m_device; ///< it may go while a dialog is open
    QScriptEngine& m_engine;
};

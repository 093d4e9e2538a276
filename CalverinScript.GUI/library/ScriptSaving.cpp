#include "ScriptSaving.h"

#include <QFileInfo>

#include "DialogMessage.h"
#include "DialogSaveScript.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"

bool ScriptSaving::Save(QString& projectFile, const QString& text) {
    const QString path = LibraryPathOf(m_device, projectFile);
    if (path.isEmpty() || !CanWriteScriptFile(path))
        return SaveAs(projectFile, text);
    return Write(path, projectFile, text, projectFile);
}

bool ScriptSaving::SaveAs(QString& projectFile, const QString& text) {
    DialogSaveScript choice(&m_parent);
    choice.SetDevice(m_device);
    choice.Load(projectFile, &m_engine);
    const bool isChosen = choice.exec() == QDialog::Accepted;
    const QString folder = LibraryFolderOf(m_device);
    if (!isChosen || folder.isEmpty())
        return false;
    QString name = choice.GetFileName();
    if (name.right(3).toLower() != QLatin1String(".js"))
        name += QStringLiteral(".js");
    const QString libraryPath = PathBelow(folder, name);
    const QString projectFolder = ProjectFolderOf(m_device);
    const QString projectPath = projectFolder.isEmpty() ? QString() : PathBelow(projectFolder, name);
    if (!MayOverwrite(libraryPath, name) || !Write(libraryPath, projectPath, text, projectFile))
        return false;
    projectFile = projectPath;
    return true;
}

bool ScriptSaving::MayOverwrite(const QString& libraryPath, const QString& name) {
    return !QFileInfo::exists(libraryPath) ||
           DialogMessage::Ask(&m_parent, QStringLiteral("The file '") + name +
                                             QStringLiteral("' already exits. \n\nDo you want to overwrite it?"));
}

bool ScriptSaving::Write(const QString& libraryPath, const QString& projectPath, const QString& text,
                         const QString& modelFile) {
    const QString model = ReadScriptFile(modelFile).value_or(QString());
    QString failure;
    if (!WriteScriptFile(libraryPath, WithLineEndsOf(model, text), &failure)) {
        DialogMessage::Warn(&m_parent,
                            QStringLiteral("The script could not be saved as %1.\n\n%2").arg(libraryPath, failure));
        return false;
    }
    if (CopyScriptFile(libraryPath, projectPath))
        return true;
    DialogMessage::Warn(&m_parent, CopyFailureText());
    return false;
}

#include "SeenFiles.h"

#include <utility>

#include "DialogMessage.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"

void SeenFiles::Note(const MCalverinScript_Device* device, const QString& projectFile) {
    m_inProject = ReadScriptFile(projectFile);
    m_inLibrary = ReadScriptFile(LibraryPathOf(device, projectFile));
}

bool SeenFiles::MayReplace(const MCalverinScript_Device* device, const QString& projectFile, QWidget* parent) const {
    const QString libraryPath = LibraryPathOf(device, projectFile);
    if (libraryPath.isEmpty() || !CanWriteScriptFile(libraryPath))
        return true;
    for (const auto& [path, seen] : {std::pair(projectFile, m_inProject), {libraryPath, m_inLibrary}}) {
        const std::optional<QString> now = ReadScriptFile(path);
        const QString question =
            QObject::tr("The file '%1' was changed by another program.\n\nDo you want to overwrite it?");
        if (now && now != seen && !DialogMessage::Ask(parent, question.arg(path)))
            return false;
    }
    return true;
}

#include "ScriptPlaces.h"

#include <QDir>
#include <QFileInfo>

#include "BusyCursor.h"
#include "DialogMessage.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "IHostServices.h"
#include "IModuleServices.h"
#include "LimitedRun.h"
#include "MCalverinScript_Device.h"
#include "MScriptDescription.h"
#include "ScriptAnalysis.h"
#include "ScriptFiles.h"

namespace {

QString FolderOf(const MCalverinScript_Device* device, KXPFolder folder) {
    IModuleServices* module = device != nullptr ? device->GetModule() : nullptr;
    auto* folders = QueryFace<IFolderManager>(module != nullptr ? module->GetHost() : nullptr, "IFolderManager");
    return folders != nullptr ? FromHostText(folders->GetFolder(folder)) : QString();
}

} // namespace

QString LibraryFolderOf(const MCalverinScript_Device* device) {
    IModuleServices* module = device != nullptr ? device->GetModule() : nullptr;
    return module != nullptr ? QFile::decodeName(module->GetScriptsFolder()) : QString();
}

QString LibraryPathOf(const MCalverinScript_Device* device, const QString& projectFile) {
    const QString folder = LibraryFolderOf(device);
    return projectFile.isEmpty() || folder.isEmpty() ? QString() : PathBelow(folder, QFileInfo(projectFile).fileName());
}

QString ProjectFolderOf(const MCalverinScript_Device* device) {
    return FolderOf(device, KXP_FOLDER_PROJECT_USER_DATA);
}

QString HelpFolderOf(const MCalverinScript_Device* device) {
    return FolderOf(device, KXP_FOLDER_4);
}

std::chrono::milliseconds AnalysisLimitOf(const MCalverinScript_Device* device) {
    return device != nullptr ? device->GetAnalysis().Limit() : kAnalysisLimit;
}

std::unique_ptr<MScriptDescription> DescribeFile(const QString& path, QScriptEngine* engine,
                                                 const MCalverinScript_Device* device) {
    const BusyCursor busy;
    return MScriptDescription::FromFile(path, engine, AnalysisLimitOf(device));
}

QString CopyFailureText() {
    return QStringLiteral("An error happened during the copy from the Scripts Repository to the current project "
                          "UserData folder.");
}

bool CopyScriptToProject(const MCalverinScript_Device* device, const QString& path, QString* copyPath,
                         QWidget* parent) {
    const QString folder = ProjectFolderOf(device);
    if (folder.isEmpty() || !QFileInfo::exists(path))
        return false;
    QDir().mkdir(folder);
    const QString target = PathBelow(folder, QFileInfo(path).fileName());
    if (copyPath != nullptr)
        *copyPath = target;
    if (CopyScriptFile(path, target))
        return true;
    DialogMessage::Warn(parent, CopyFailureText());
    return false;
}

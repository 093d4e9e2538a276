#include "ModuleFile.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace stagehost {

ModuleFile::ModuleFile(Host& host)
    : host_(host) {}

ModuleFile::~ModuleFile() {
    if (module_ == nullptr)
        return;
    module_->Terminate(nullptr);
    module_->Release();
    library_.unload();
}

QString ModuleFile::Load(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile())
        return QStringLiteral("there is no module file %1").arg(path);
    library_.setFileName(file.absoluteFilePath());
    QString problem = FindModule(path);
    if (module_ == nullptr)
        return problem;
    module_->Initialize(host_.Root(), nullptr, nullptr);
    module_->SetDeviceHost(&host_);
    return {};
}

QString ModuleFile::FindModule(const QString& path) {
    if (!library_.load())
        return QStringLiteral("%1 cannot be loaded: %2").arg(path, library_.errorString());
    const auto entryPoint = reinterpret_cast<KXPEntryPoint>(library_.resolve(KXP_ENTRY_POINT_NAME));
    if (entryPoint == nullptr)
        return QStringLiteral("%1 is no module: it has no %2").arg(path, QStringLiteral(KXP_ENTRY_POINT_NAME));
    const KXPCode code = entryPoint(&module_);
    if (code == KXP_OK && module_ != nullptr)
        return {};
    module_ = nullptr;
    return QStringLiteral("%1 gives no module object (code %2)").arg(path).arg(code);
}

QString DefaultModulePath() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/kxpCalverinScript.kxp6");
}

} // namespace stagehost

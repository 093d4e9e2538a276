#include "HostedModule.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace stagehost {

HostedModule::HostedModule(Host& host)
    : m_host(host) {}

HostedModule::~HostedModule() {
    if (m_module == nullptr)
        return;
    m_module->Terminate(nullptr);
    m_module->Release();
    m_library.unload();
}

QString HostedModule::Load(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile())
        return QStringLiteral("there is no module file %1").arg(path);
    m_library.setFileName(file.absoluteFilePath());
    QString problem = FindModule(path);
    if (m_module == nullptr)
        return problem;
    m_module->Initialize(m_host.Root(), nullptr, nullptr);
    m_module->SetDeviceHost(&m_host);
    return {};
}

QString HostedModule::FindModule(const QString& path) {
    if (!m_library.load())
        return QStringLiteral("%1 cannot be loaded: %2").arg(path, m_library.errorString());
    const auto entryPoint = reinterpret_cast<KXPEntryPoint>(m_library.resolve(KXP_ENTRY_POINT_NAME));
    if (entryPoint == nullptr)
        return QStringLiteral("%1 is no module: it has no %2").arg(path, QStringLiteral(KXP_ENTRY_POINT_NAME));
    const KXPCode code = entryPoint(&m_module);
    if (code == KXP_OK && m_module != nullptr)
        return {};
    m_module = nullptr;
    return QStringLiteral("%1 gives no module object (code %2)").arg(path).arg(code);
}

QString DefaultModulePath() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/kxpCalverinScript.kxp6");
}

} // namespace stagehost

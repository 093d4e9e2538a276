#include "ModuleResources.h"

#include <QFile>

static void RegisterModuleResources() {
    Q_INIT_RESOURCE(module);
}

QByteArray FindModuleResource(ModuleResource kind, std::uint32_t id) {
    RegisterModuleResources();
    QFile file(QStringLiteral(":/module/%1/%2").arg(static_cast<std::uint32_t>(kind)).arg(id));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

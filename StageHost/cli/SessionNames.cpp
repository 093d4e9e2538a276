#include "BorderText.h"
#include "ExitCodes.h"
#include "NearNames.h"
#include "Session.h"

/// What a show's names stand for, and what is said of those that it does not have.

namespace stagehost {

Device* Session::FindDevice(const QString& name) {
    const std::string border = ToBorderText(name);
    for (const auto& device : m_devices) {
        if (device->Name() == border)
            return device.get();
    }
    return nullptr;
}

Failure NoDevice(const Show& show, const QString& name) {
    QStringList known;
    for (const auto& device : show.devices)
        known += device.name;
    return {kExitBadUse, QStringLiteral("the show has no device \"%1\"").arg(name) + NamesInstead(name, known)};
}

Failure Session::NoPeer(const QString& name) const {
    QStringList known;
    for (const auto& peer : m_show.peers)
        known += peer.name;
    return {kExitBadUse, QStringLiteral("the show has no peer \"%1\"").arg(name) + NamesInstead(name, known)};
}

Failure Session::NoVariable(const QString& name) const {
    QStringList known;
    for (const auto& variable : m_host->Variables().All())
        known += FromBorderText(variable->Name());
    return {kExitBadUse, QStringLiteral("there is no variable \"%1\"").arg(name) + NamesInstead(name, known)};
}

Failure Session::NoObject(ObjectKind kind, const QString& name) const {
    QStringList known;
    for (const auto& object : m_host->Model().Top(kind))
        known += FromBorderText(object->Name());
    return {kExitBadUse,
            QStringLiteral("the show has no %1 \"%2\"").arg(QString(QLatin1String(RowOf(kind).name)).toLower(), name) +
                NamesInstead(name, known)};
}

Failure Session::NoObject(const QString& name) const {
    QStringList known;
    for (const auto& kind : kObjectKinds) {
        for (const auto& object : m_host->Model().Top(kind.kind))
            known += FromBorderText(object->Name());
    }
    return {kExitBadUse, QStringLiteral("the show has no object \"%1\"").arg(name) + NamesInstead(name, known)};
}

} // namespace stagehost

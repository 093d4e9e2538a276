#include "Show.h"

#include <algorithm>

#include <QDir>
#include <QStandardPaths>

#include "BorderText.h"
#include "IHostServices.h"

namespace stagehost {

QString Show::Path(const QString& named) const {
    return QDir::cleanPath(QDir(folder).absoluteFilePath(named));
}

const ShowDevice* Show::FindDevice(const QString& deviceName) const {
    const auto found =
        std::find_if(devices.begin(), devices.end(), [&](const auto& device) { return device.name == deviceName; });
    return found == devices.end() ? nullptr : &*found;
}

const ShowPeer* Show::FindPeer(const QString& peerName) const {
    const auto found =
        std::find_if(peers.begin(), peers.end(), [&](const auto& peer) { return peer.name == peerName; });
    return found == peers.end() ? nullptr : &*found;
}

Show EmptyShow(const QString& folder) {
    Show show;
    show.folder = QDir(folder).absolutePath();
    const QString data =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/stagehost");
    show.host.folders = {
        {KXP_FOLDER_PROGRAM_DATA, ToBorderText(data)},
        {KXP_FOLDER_4, ToBorderText(data + QStringLiteral("/common"))},
        {KXP_FOLDER_PROJECT_USER_DATA, ToBorderText(show.folder)},
        {KXP_FOLDER_SCRIPTS, ToBorderText(data + QStringLiteral("/scripts"))},
    };
    return show;
}

} // namespace stagehost

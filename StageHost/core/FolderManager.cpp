#include "FolderManager.h"

#include <QDir>

#include "BorderText.h"

namespace stagehost {

FolderManager::FolderManager(HostFaces& faces, const HostSettings& settings)
    : HostFace(faces)
    , settings_(settings) {
    OfferAs("IFolderManager");
}

const char* FolderManager::GetFolder(std::uint32_t folderId) {
    const auto found = settings_.folders.find(folderId);
    if (found == settings_.folders.end())
        return nullptr;
    QDir().mkpath(FromBorderText(found->second));
    return found->second.c_str();
}

} // namespace stagehost

#include "FolderManager.h"

#include <QDir>

#include "BorderText.h"

namespace stagehost {

FolderManager::FolderManager(FaceTable& faces, const HostSettings& settings)
    : HostFace(faces)
    , m_settings(settings) {
    OfferAs("IFolderManager");
}

const char* FolderManager::GetFolder(std::uint32_t folderId) {
    const auto found = m_settings.folders.find(folderId);
    if (found == m_settings.folders.end())
        return nullptr;
    QDir().mkpath(FromBorderText(found->second));
    return found->second.c_str();
}

} // namespace stagehost

#pragma once

#include "HostFace.h"
#include "HostSettings.h"
#include "IHostServices.h"

namespace stagehost {

/// The host's folders, as the settings name them. A folder that does not exist yet is made when it is asked for.
class FolderManager final : public HostFace<IFolderManager> {
public:
    /// @param settings must outlive this object and does not change.
    FolderManager(FaceTable& faces, const HostSettings& settings);

    /// @return valid as long as the host; null for a number that the settings do not have.
    const char* GetFolder(std::uint32_t folderId) override;

private:
    const HostSettings& m_settings;
};

} // namespace stagehost

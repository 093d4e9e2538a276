#include <algorithm>
#include <cstring>

#include <QDir>
#include <QImage>

#include "HostText.h"
#include "IHostServices.h"
#include "MCalverinScript_Device.h"
#include "MCalverinScript_Module.h"
#include "ModuleFile.h"
#include "ModuleResources.h"
#include "ScriptFolders.h"
#include "SetupInterface.h"
#include "ThreadPromise.h"

namespace {

constexpr const char* kConfigFileName = "kxpCalverinScript.cfg";

void CopyText(char* buffer, const std::string& text) {
    const std::size_t length = std::min(text.size(), MCalverinScript_Module::kPathSize - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

} // namespace

MCalverinScript_Module::MCalverinScript_Module()
    : m_setupInterface(std::make_unique<SetupInterface>()) {}

const char* MCalverinScript_Module::GetScriptsFolder() {
    if (m_scriptsFolder.empty()) {
        auto* folders = QueryFace<IFolderManager>(m_host, "IFolderManager");
        m_scriptsFolder = FindScriptsFolder(folders, FallbackScriptsFolder()).substr(0, kPathSize - 1);
    }
    return m_scriptsFolder.c_str();
}

void MCalverinScript_Module::GetConfigFilePath(char* buffer) {
    std::string path = ModuleFileOf(reinterpret_cast<const void*>(&MCalverinScript_Module::GetEntryPoint));
    const std::size_t point = path.rfind('.');
    CopyText(buffer, point != std::string::npos ? path.substr(0, point) + ".cfg" : kConfigFileName);
}

bool MCalverinScript_Module::GetHostVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* build) const {
    if (major == nullptr || minor == nullptr || build == nullptr)
        return false;
    *major = m_hostMajor;
    *minor = m_hostMinor;
    *build = m_hostBuild;
    return true;
}

/// Each number is tested by itself, so 7.0.0 does not pass for 6.4.2.
bool MCalverinScript_Module::IsHostAtLeast(std::int32_t major, std::int32_t minor, std::int32_t build) const {
    return m_hostMajor >= major && m_hostMinor >= minor && m_hostBuild >= build;
}

bool MCalverinScript_Module::IsHostAtLeast642() const {
    return IsHostAtLeast(6, 4, 2);
}

bool MCalverinScript_Module::IsHostAtLeast643() const {
    return IsHostAtLeast(6, 4, 3);
}

KXPCode MCalverinScript_Module::GetDriverList(char** out, std::uint32_t* outSize) {
    ExpectThread(ThreadWord::HostMain, "IKXPModuleDriverManager::GetDriverList");
    if (out == nullptr || outSize == nullptr)
        return KXP_OK;
    const QDir folder(QFile::decodeName(GetScriptsFolder()));
    m_driverList = ToHostText(folder.entryList({QStringLiteral("*.js")}).join(QLatin1Char(';')));
    *out = m_driverList.data();
    *outSize = static_cast<std::uint32_t>(m_driverList.size());
    return KXP_OK;
}

KXPCode MCalverinScript_Module::ShowDriverSetup(const char* driver, IKXPDevice* device, void* third) {
    ExpectThread(ThreadWord::HostMain, "IKXPModuleDriverManager::ShowDriverSetup");
    if (device == nullptr || third == nullptr)
        return KXP_NULL_ARGUMENT;
    auto* ours = dynamic_cast<MCalverinScript_Device*>(device);
    return ours != nullptr ? ours->ShowSetupDialog(driver) : KXPCode{KXP_CANCELLED};
}

KXPBitmap MCalverinScript_Module::GetDriverBitmap() {
    ExpectThread(ThreadWord::HostMain, "IKXPModuleDriverManager::GetDriverBitmap");
    if (!m_bitmap) {
        const QImage image = QImage::fromData(FindModuleResource(ModuleResource::Bitmap, kDeviceBitmapId));
        if (!image.isNull())
            m_bitmap = std::make_unique<QImage>(image);
    }
    return m_bitmap.get();
}

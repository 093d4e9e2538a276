#include "ModuleFixture.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <QFile>

namespace fs = std::filesystem;

void ModuleFixture::SetUp() {
    m_home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(m_folder.filePath(QStringLiteral("home"))));
    fs::create_directories(PathOf("home/Documents"));
    IKXPModule* made = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&made), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(made);
}

void ModuleFixture::TearDown() {
    module->Terminate(nullptr);
    EXPECT_EQ(module->Release(), KXP_OK);
    qputenv("HOME", m_home);
}

void ModuleFixture::Renew() {
    module->Release();
    IKXPModule* made = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&made), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(made);
}

IKXPDevice* ModuleFixture::MakeDevice() {
    module->SetDeviceHost(&deviceHost);
    IKXPDevice* device = nullptr;
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_OK);
    return device;
}

std::uint32_t ModuleFixture::DeviceCount() {
    std::uint32_t count = 99;
    EXPECT_EQ(module->GetDeviceCount(&count), KXP_OK);
    return count;
}

std::string ModuleFixture::PathOf(const std::string& name) const {
    return QFile::encodeName(m_folder.path()).toStdString() + "/" + name;
}

void ModuleFixture::Write(const std::string& name, const std::string& content) const {
    const fs::path path = PathOf(name);
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string ModuleFixture::Read(const std::string& name) const {
    std::ifstream file(PathOf(name), std::ios::binary);
    if (!file)
        return "(none)";
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

bool ModuleFixture::Exists(const std::string& name) const {
    return fs::exists(fs::symlink_status(PathOf(name)));
}

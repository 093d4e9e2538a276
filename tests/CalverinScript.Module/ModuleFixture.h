#pragma once

#include <string>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "MCalverinScript_Module.h"
#include "PlainHost.h"

/// The module object in a plain host. The home folder is a temporary one, so that no test sees the user's documents.
class ModuleFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    void Initialize() { EXPECT_EQ(module->Initialize(host.Root(), nullptr, nullptr), KXP_OK); }
    /// Releases the module and makes a new one.
    void Renew();
    IKXPDevice* MakeDevice();
    std::uint32_t DeviceCount();

    /// Path of something in the test's folder.
    std::string PathOf(const std::string& name) const;
    void Write(const std::string& name, const std::string& content) const;
    /// Everything in a file; "(none)" when there is no such file.
    std::string Read(const std::string& name) const;
    bool Exists(const std::string& name) const;

    plain::Host host;
    MCalverinScript_Module* module = nullptr;
    int deviceHost = 0;

private:
    QTemporaryDir m_folder;
    QByteArray m_home;
};

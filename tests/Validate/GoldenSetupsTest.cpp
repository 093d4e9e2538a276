#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ModuleHost.h"

/// @file
/// Setups as older and newer versions store them, in golden/: NAME.xml is given to a device, and NAME.back.xml is what
/// the device then gives for the host's project. Of a setup that stays as it is there is only NAME.xml.

namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> GoldenNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(GOLDEN_FOLDER))
        if (const std::string name = entry.path().stem().string(); name.find('.') == std::string::npos)
            names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

class GoldenSetups : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_EQ(host.Load(MODULE_FILE), ""); }

    static std::string Given() { return ReadFile(Path("")); }
    static std::string Expected() { return fs::exists(Path(".back")) ? ReadFile(Path(".back")) : Given(); }

    ModuleHost host;

private:
    static fs::path Path(const std::string& kind) { return fs::path(GOLDEN_FOLDER) / (GetParam() + kind + ".xml"); }
};

TEST_P(GoldenSetups, AreReadAndGivenBackAsExpected) {
    HostedDevice device(host);
    ASSERT_EQ(device->SetSetup(Given().c_str()), KXP_OK);
    EXPECT_EQ(device.Setup(), Expected());
}

TEST_P(GoldenSetups, AreTheSameOnceTheyHaveBeenGivenBack) {
    HostedDevice device(host);
    ASSERT_EQ(device->SetSetup(Given().c_str()), KXP_OK);
    const std::string back = device.Setup();
    ASSERT_EQ(device->SetSetup(back.c_str()), KXP_OK);
    EXPECT_EQ(device.Setup(), back);
}

TEST_P(GoldenSetups, StartTheirScripts) {
    HostedDevice device(host);
    ASSERT_EQ(device->SetSetup(Given().c_str()), KXP_OK);
    ASSERT_EQ(device->Start(), KXP_OK);
    EXPECT_EQ(device.Variables().Text("Error"), "");
    const bool hasScript = Given().find("<Script") != std::string::npos;
    EXPECT_EQ(device.Variables().Text("ScriptFunctions"), hasScript ? "Fade\n" : "");
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenSetups, testing::ValuesIn(GoldenNames()), [](const auto& file) {
    std::string name = file.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
});

TEST(GoldenFolder, HasOlderAndNewerSetups) {
    const auto names = GoldenNames();
    const auto count = [&](const std::string& begin) {
        return std::count_if(names.begin(), names.end(),
                             [&](const std::string& name) { return name.rfind(begin, 0) == 0; });
    };
    EXPECT_GE(count("older-"), 5);
    EXPECT_GE(count("newer-"), 2);
    EXPECT_GE(count("current-"), 2);
}

} // namespace

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <elf.h>

#include <gtest/gtest.h>

#include "LoadedModule.h"
#include "PlainHost.h"

namespace fs = std::filesystem;

namespace {

/// What the module file may show: the entry point, and all of the classes that it shares with others.
constexpr const char* kAllowedNames[] = {KXP_ENTRY_POINT_NAME};
constexpr const char* kAllowedClasses[] = {"10CodeEditor", "14LineNumberArea", "10QWinWidget"};

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/// Names that a shared library defines for others, from its dynamic symbol table.
std::vector<std::string> DefinedSymbols(const std::string& file) {
    std::vector<std::string> names;
    Elf64_Ehdr header;
    std::memcpy(&header, file.data(), sizeof(header));
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    std::memcpy(sections.data(), file.data() + header.e_shoff, sections.size() * sizeof(Elf64_Shdr));
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM)
            continue;
        std::vector<Elf64_Sym> symbols(section.sh_size / sizeof(Elf64_Sym));
        std::memcpy(symbols.data(), file.data() + section.sh_offset, section.sh_size);
        const char* texts = file.data() + sections[section.sh_link].sh_offset;
        for (const Elf64_Sym& symbol : symbols)
            if (symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS)
                names.emplace_back(texts + symbol.st_name);
    }
    return names;
}

bool IsAllowed(const std::string& name) {
    return std::any_of(std::begin(kAllowedNames), std::end(kAllowedNames), [&](const char* n) { return name == n; }) ||
           std::any_of(std::begin(kAllowedClasses), std::end(kAllowedClasses),
                       [&](const char* c) { return name.find(c) != std::string::npos; });
}

TEST(ModuleFile, ShowsItsEntryPointAndNothingThatIsNotMeantForOthers) {
    const std::vector<std::string> names = DefinedSymbols(ReadFile(MODULE_FILE));
    EXPECT_EQ(std::count(names.begin(), names.end(), KXP_ENTRY_POINT_NAME), 1);
    for (const std::string& name : names)
        EXPECT_TRUE(IsAllowed(name)) << name;
}

TEST(ModuleFile, ReadsItsConfigurationAndWritesItsLogBesideItself) {
    const fs::path folder =
        fs::temp_directory_path() / ("module-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                                     "-" + std::to_string(fs::file_time_type::clock::now().time_since_epoch().count()));
    fs::create_directory(folder);
    fs::copy_file(MODULE_FILE, folder / "renamed.kxp6");
    fs::copy_file(LOGS_FILE, folder / "logsE.so");
    std::ofstream(folder / "renamed.cfg") << "[LOGSE]\nOutputLogFile = 2\n";
    {
        plain::Host host;
        const LoadedModule loaded((folder / "renamed.kxp6").string());
        ASSERT_NE(loaded.module, nullptr);
        loaded.module->Initialize(host.Root(), nullptr, nullptr);
        int deviceHost = 0;
        loaded.module->SetDeviceHost(&deviceHost);
        IKXPDevice* device = nullptr;
        ASSERT_EQ(loaded.module->CreateDevice(nullptr, &device), KXP_OK);
        plain::Variables variables;
        device->SetDeviceVariables(&variables);
        device->SetName("Desk");
        device->Start();
        plain::Params load({"({})"});
        device->ExecuteCommand(1, &load, nullptr);
        EXPECT_TRUE(variables.status.Plain().WaitForHistory(2));
        device->Stop();
        device->Release();
        loaded.module->Terminate(nullptr);
        loaded.module->Release();
    }
    const std::string log = ReadFile(folder / "renamed.log");
    EXPECT_NE(log.find("kxpCalverinScript [Desk] LoadScriptFromText [post]: ({}) - Stack: 0"), std::string::npos)
        << log;
    fs::remove_all(folder);
}

} // namespace

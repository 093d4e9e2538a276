#include "ModuleFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <QFile>

namespace fs = std::filesystem;

ModuleFolder::ModuleFolder(const std::string& moduleName) {
    Copy(STUB_MODULE, moduleName);
    EXPECT_TRUE(m_module.Open(PathOf(moduleName))) << m_module.GetError();
}

std::string ModuleFolder::PathOf(const std::string& name) const {
    return (fs::canonical(QFile::encodeName(m_folder.path()).toStdString()) / name).string();
}

void ModuleFolder::Write(const std::string& name, const std::string& content) const {
    std::ofstream(PathOf(name), std::ios::binary) << content;
}

void ModuleFolder::Copy(const std::string& file, const std::string& name) const {
    fs::copy_file(file, PathOf(name));
}

std::string ModuleFolder::Read(const std::string& name) const {
    std::ifstream file(PathOf(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

bool ModuleFolder::Has(const std::string& name) const {
    return fs::exists(PathOf(name));
}

#pragma once

#include <string>

#include <QTemporaryDir>

#include "DynamicLibrary.h"

/// A folder of its own with a module file in it, loaded, and whatever a test puts beside it.
class ModuleFolder {
public:
    /// @param moduleName name of the module's file.
    explicit ModuleFolder(const std::string& moduleName = "kxpTest.kxp6");

    /// An address inside the loaded module.
    const void* Module() const { return m_module.Find("AddressInTheModule"); }
    /// Path of a file in the folder.
    std::string PathOf(const std::string& name) const;
    void Write(const std::string& name, const std::string& content) const;
    void Copy(const std::string& file, const std::string& name) const;
    /// Everything in a file; empty when there is none.
    std::string Read(const std::string& name) const;
    bool Has(const std::string& name) const;

private:
    QTemporaryDir m_folder;
    DynamicLibrary m_module;
};

#pragma once

#include <string>

#include "IKXPModule.h"

/// The module file, loaded as any host loads it, and closed at the end.
class LoadedModule {
public:
    explicit LoadedModule(const std::string& file = MODULE_FILE);
    ~LoadedModule();
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    IKXPModule* module = nullptr; ///< null when the file cannot be loaded

private:
    void* m_file = nullptr;
};

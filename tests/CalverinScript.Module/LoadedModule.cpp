#include "LoadedModule.h"

#include <dlfcn.h>

LoadedModule::LoadedModule(const std::string& file)
    : m_file(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (m_file == nullptr)
        return;
    const auto entry = reinterpret_cast<KXPEntryPoint>(dlsym(m_file, KXP_ENTRY_POINT_NAME));
    if (entry != nullptr)
        entry(&module);
}

LoadedModule::~LoadedModule() {
    if (m_file != nullptr)
        dlclose(m_file);
}

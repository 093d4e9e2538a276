#include "ModuleFile.h"

#include <cstdlib>
#include <memory>

#include <dlfcn.h>
#include <link.h>

namespace {

std::string ResolvedPath(const char* path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path, nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : std::string();
}

} // namespace

std::string ModuleFileOf(const void* address) {
    Dl_info info{};
    void* loaded = nullptr;
    if (address == nullptr || !dladdr1(address, &info, &loaded, RTLD_DL_LINKMAP) || loaded == nullptr)
        return {};
    const char* name = static_cast<const link_map*>(loaded)->l_name;
    if (name == nullptr || !*name) // the loader gives the program itself an empty name
        return ExecutableFile();
    const std::string resolved = ResolvedPath(name);
    return resolved.empty() ? std::string(name) : resolved; // the file may have been moved since it was loaded
}

std::string ExecutableFile() {
    return ResolvedPath("/proc/self/exe");
}

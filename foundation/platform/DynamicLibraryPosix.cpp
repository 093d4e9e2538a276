#include "DynamicLibrary.h"

#include <utility>

#include <dlfcn.h>

DynamicLibrary::~DynamicLibrary() {
    Close();
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : m_handle(std::exchange(other.m_handle, nullptr))
    , m_error(std::move(other.m_error)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
    if (this != &other) {
        Close();
        m_handle = std::exchange(other.m_handle, nullptr);
        m_error = std::move(other.m_error);
    }
    return *this;
}

bool DynamicLibrary::Open(const std::string& pathOrName) {
    Close();
    m_error.clear();
    if (pathOrName.empty()) { // dlopen would take an empty name as the program itself
        m_error = "no library named";
        return false;
    }
    m_handle = dlopen(pathOrName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        const char* reason = dlerror();
        m_error = reason != nullptr ? reason : "unknown error";
    }
    return m_handle != nullptr;
}

void DynamicLibrary::Close() {
    if (m_handle != nullptr)
        dlclose(std::exchange(m_handle, nullptr));
}

void* DynamicLibrary::Find(const char* symbol) const {
    return m_handle != nullptr && symbol != nullptr ? dlsym(m_handle, symbol) : nullptr;
}

std::string DynamicLibrary::FileName(const std::string& name) {
    return name + ".so";
}

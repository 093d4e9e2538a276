#pragma once

#include <string>

/// A shared library opened at run time. Closed by the destructor; symbols of a closed library must not be used any
/// more. One object belongs to one thread at a time.
class DynamicLibrary {
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(DynamicLibrary&& other) noexcept;
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// Opens the library at a path, or, for a bare name, the one that the system's search order finds. A library that
    /// this object held before is closed first. Its symbols are not offered to other libraries.
    /// @return false when there is no such library or it cannot be loaded; GetError() then tells why.
    bool Open(const std::string& pathOrName);

    /// The file name that a library of that name has on this platform: "logsE" is "logsE.so".
    static std::string FileName(const std::string& name);

    /// Closes the library; harmless when none is open.
    void Close();

    bool IsOpen() const { return m_handle != nullptr; }

    /// The address of an exported symbol; null when no library is open or it has no such symbol.
    void* Find(const char* symbol) const;

    /// The same with the type of the entry point: `library.FindFunction<int (*)(int)>("Twice")`.
    template <class Function>
    Function FindFunction(const char* symbol) const {
        return reinterpret_cast<Function>(Find(symbol));
    }

    /// The system's reason for the last failed Open; empty after a successful one.
    const std::string& GetError() const { return m_error; }

private:
    void* m_handle = nullptr;
    std::string m_error;
};

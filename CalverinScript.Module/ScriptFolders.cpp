#include "ScriptFolders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "HostText.h"
#include "IHostServices.h"

namespace fs = std::filesystem;

namespace {

bool IsFolder(const fs::directory_entry& entry) {
    std::error_code error;
    return entry.is_directory(error) && !entry.is_symlink(error);
}

/// Whether a path lies below a folder: a copy there would find itself again and again.
bool LiesBelow(const char* path, const char* folder) {
    std::error_code error;
    const fs::path inner = fs::weakly_canonical(path, error);
    const fs::path outer = fs::weakly_canonical(folder, error);
    return !error && !outer.empty() &&
           std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

bool CopyEntry(const fs::directory_entry& entry, const fs::path& target, bool stopOnError, bool overwrite) {
    const fs::path copy = target / entry.path().filename();
    if (IsFolder(entry))
        return CopyFolder(entry.path().c_str(), copy.c_str(), stopOnError, overwrite);
    std::error_code error;
    if (entry.is_symlink(error))
        fs::copy_symlink(entry.path(), copy, error);
    else
        fs::copy_file(entry.path(), copy, overwrite ? fs::copy_options::overwrite_existing : fs::copy_options::none,
                      error);
    return !error;
}

/// Moves a folder by copying it and then removing the source.
void MoveFolder(const std::string& source, const std::string& target) {
    if (CopyFolder(source.c_str(), target.c_str(), true, false))
        RemoveFolder(source.c_str(), true);
}

/// @param folder in the host's text.
std::string Below(const char* folder, const char* name) {
    return (fs::path(ToFilePath(folder)) / name).string();
}

} // namespace

bool CopyFolder(const char* source, const char* target, bool stopOnError, bool overwrite) {
    if (source == nullptr || target == nullptr || qstricmp(source, target) == 0 || LiesBelow(target, source))
        return false;
    std::error_code error;
    if (!fs::create_directory(target, error) || error)
        return false;
    fs::directory_iterator entry(source, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (!CopyEntry(*entry, target, stopOnError, overwrite) && stopOnError)
            return false;
    return !error;
}

bool RemoveFolder(const char* path, bool stopOnError) {
    std::error_code error;
    if (path == nullptr || !fs::is_directory(path, error))
        return false;
    if (fs::remove(path, error))
        return true;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code failure;
        const bool removed =
            IsFolder(*entry) ? RemoveFolder(entry->path().c_str(), stopOnError) : fs::remove(entry->path(), failure);
        if (!removed && stopOnError)
            return false;
    }
    return fs::remove(path, error);
}

std::string FindScriptsFolder(IFolderManager* folders, const std::string& fallback) {
    if (folders == nullptr)
        return fallback;
    const char* scripts = folders->GetFolder(KXP_FOLDER_SCRIPTS);
    std::string library = scripts != nullptr ? Below(scripts, "Script Drivers") : std::string();
    const char* programData = folders->GetFolder(KXP_FOLDER_PROGRAM_DATA);
    const std::string old = programData != nullptr ? Below(programData, "Script Drivers") : std::string();
    if (!library.empty()) {
        MoveFolder(old, library);
        MoveFolder(fallback, library);
        return library;
    }
    if (!old.empty())
        MoveFolder(fallback, old);
    return old.empty() ? fallback : old;
}

std::string FallbackScriptsFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFile::encodeName(QDir::toNativeSeparators(documents + QStringLiteral("/Calverin/Scripts"))).toStdString();
}

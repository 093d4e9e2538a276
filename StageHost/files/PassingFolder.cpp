#include "PassingFolder.h"

#include <QDir>
#include <QFileInfo>

namespace stagehost {

namespace {

constexpr const char* kForm = "stagehost-XXXXXX"; // as QTemporaryDir fills it
constexpr const char* kLock = "in-use";

/// Never by its age: a show may last for months.
std::unique_ptr<QLockFile> LockIn(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(folder + QLatin1Char('/') + QLatin1String(kLock));
    lock->setStaleLockTime(0);
    return lock;
}

/// Folders of this user whose processes have gone. One without a lock is being made just now.
void RemoveLeft(uint owner) {
    const QString form = QString::fromLatin1(kForm).replace(QLatin1Char('X'), QLatin1Char('?'));
    for (const QFileInfo& folder : QDir::temp().entryInfoList({form}, QDir::Dirs | QDir::NoSymLinks)) {
        const QString path = folder.filePath();
        if (folder.ownerId() != owner || !QFileInfo::exists(path + QLatin1Char('/') + QLatin1String(kLock)))
            continue;
        if (const auto lock = LockIn(path); lock->tryLock(0))
            QDir(path).removeRecursively();
    }
}

} // namespace

PassingFolder::PassingFolder()
    : m_folder(QDir::temp().filePath(QLatin1String(kForm))) {
    if (!m_folder.isValid()) {
        m_problem = m_folder.errorString();
        return;
    }
    m_lock = LockIn(m_folder.path());
    m_lock->tryLock(0); // where that fails, the folder is left when the process is killed
    RemoveLeft(QFileInfo(m_folder.path()).ownerId());
}

} // namespace stagehost

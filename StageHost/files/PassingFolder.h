#pragma once

#include <memory>

#include <QLockFile>
#include <QTemporaryDir>

namespace stagehost {

/// A folder of the process's own among the temporary ones. It goes with the object; that of a process which was killed
/// goes when another one makes such a folder.   [any]
class PassingFolder {
public:
    PassingFolder();

    /// What is wrong with it; empty when it is there.
    const QString& Problem() const { return m_problem; }
    QString FilePath(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<QLockFile> m_lock; ///< tells others that the process lives
    QString m_problem;
};

} // namespace stagehost

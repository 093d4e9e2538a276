#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QUrl>

/// @file
/// The file of a download. Callable on any thread.

/// Where a download goes: into a folder under the last name of the address's path, otherwise to the path itself. "\\"
/// in the path counts as a separator.
/// @return "" when the path names no file.
QString DownloadTarget(const QString& path, const QUrl& address);

/// The content of a download on its way into its file, as it comes. It is written beside the file and takes its place
/// when all is there, so whatever breaks off leaves the file as it was, and nothing else. Writes to nothing but plain
/// files: opening a pipe or a device could block for ever.   [http]
class DownloadFile {
public:
    enum class End {
        Written,
        Refused, ///< there is no file, or no room for it; what was there stays as it was
        KeptOld, ///< there is a file, as it was: it cannot be opened for writing
    };

    explicit DownloadFile(const QString& target);
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;
    /// Removes what was not finished.
    ~DownloadFile();

    /// Takes the next bytes. @return false when they cannot be kept: the end would be Refused.
    bool Write(const QByteArray& bytes);
    /// Forgets all bytes so far.
    void Restart();
    /// All is there. To be called once, and nothing after it.
    End Finish();

    const QString& GetTarget() const { return m_target; }

private:
    bool Open();
    bool OpenIn(const QString& folder);
    End MoveIntoPlace();
    End CopyIntoPlace();

    const QString m_target; ///< as it was asked for
    const QString m_place;  ///< the same without links
    QFile m_part;
    bool m_keepsOld = false; ///< there is no way to write anything, but a file
    bool m_beside = false;   ///< the part can be renamed
};

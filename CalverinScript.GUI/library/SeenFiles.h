#pragma once

#include <optional>

#include <QString>

class MCalverinScript_Device;
class QWidget;

/// The two files of a device's script, in the project and in the library, as a dialog has seen them last: what another program has
/// written since is not overwritten unasked.   [host main]
class SeenFiles {
public:
    /// @param projectFile the project's copy; the library's file has the same name. Either may be missing.
    void Note(const MCalverinScript_Device* device, const QString& projectFile);
    /// Asks for each of the two that is not as it was noted. One that is gone has nothing to lose, and a script that cannot go to the
    /// library is saved under a name that the user chooses. @return false when the user keeps what is there.
    bool MayReplace(const MCalverinScript_Device* device, const QString& projectFile, QWidget* parent) const;

private:
    std::optional<QString> m_inProject;
    std::optional<QString> m_inLibrary;
};

#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

#include "Condition.h"
#include "HardwareSpec.h"
#include "HostSettings.h"
#include "ShowPeer.h"
#include "ShowSpec.h"
#include "ValueSpec.h"

namespace stagehost {

/// A device of a show. At most one of script file, script text and driver file is set.
struct ShowDevice {
    QString name;
    QString scriptFile; ///< as the show file names it: relative to that file or absolute
    QString scriptText;
    QString setup; ///< the device's own setup text, kept as the device gave it
    Conduct conduct = Conduct::Normal;
    QString driverFile;                                ///< the script of which the setup is made; named as scriptFile
    std::vector<std::pair<QString, QString>> settings; ///< names and texts that stand over the setup, see SettingRule
    std::vector<std::pair<QString, PeerAddress>> peerSettings{}; ///< the same, with what is known once the peers run
};

/// A stored command of a show, see StoredCommandXml.
struct ShowStoredCommand {
    QString name;
    QString xml;
};

/// What a step gives to one parameter of its command.
struct ShowParameter {
    enum class Kind {
        Text,    ///< the text itself
        File,    ///< the content of a text file
        Path,    ///< the full path of a file
        Variable ///< a variable of the show stands for the parameter
    };

    QString name;
    Kind kind = Kind::Text;
    QString text; ///< the text, the file's name relative to the show file, or the variable's name
};

/// Something that has to become so.
struct ShowWait {
    Condition until;
    std::optional<int> within{};          ///< ms; the limit for answers when it is not given
    std::optional<PeerReceipt> receipt{}; ///< in the place of the condition
};

/// One step of a show: a command and what is expected of it, something else that the show does, or a wait.
struct ShowStep {
    QString say;     ///< shown to the user when the step begins
    QString device;  ///< empty: no command
    QString command; ///< name or id
    std::vector<ShowParameter> parameters;
    std::optional<QString> expectedResult;
    std::optional<QString> expectedError; ///< the step has to fail with this text
    ActionSpec action;                    ///< variables, a task or a cue; never a command
    std::optional<ShowWait> wait;
    std::optional<int> pause;     ///< ms in which nothing is done
    QString stored;               ///< a stored command by its name, sent as a command is; empty: none
    std::optional<PeerDeed> deed; ///< of a peer; the expected result is that of its call
};

/// How "stagehost test" plays a show.
struct ShowTest {
    std::optional<int> within; ///< ms of the computer
    int speed = 1;
    QString clock; ///< as --clock takes it; empty: the computer's
};

/// A show as its file tells it.
struct Show {
    QString file;   ///< the show file; empty when there is none
    QString folder; ///< where the show file stands; relative names start here
    QString name;
    HostSettings host; ///< without the log and the link, which are not the show's business
    HardwareSpec resources;
    std::vector<ValueSpec> variables;
    std::vector<ShowPeer> peers;
    std::vector<std::pair<std::size_t, PeerAddress>> peerPorts; ///< places of serial ports in the resources
    std::vector<ShowDevice> devices;
    std::vector<ShowStoredCommand> commands;
    ShowSpec objects; ///< tasks, cues, screens, groups, objects, shows
    std::vector<ShowStep> steps;
    std::optional<ShowTest> test; ///< nothing: the file does not say that it is one

    /// The full path of a file that the show names.   [any]
    QString Path(const QString& named) const;

    /// The device of that name, or null.   [any]
    const ShowDevice* FindDevice(const QString& deviceName) const;

    const ShowPeer* FindPeer(const QString& peerName) const;
};

/// Names of the host's folders in show files, each with its number.
struct ShowFolder {
    const char* name;
    std::uint32_t number;
};

inline constexpr ShowFolder kShowFolders[] = {
    {"programData", 1}, {"commonData", 4}, {"projectUserData", 20}, {"scripts", 33}};

/// A show without content in that folder: default host, default folders.
Show EmptyShow(const QString& folder);

} // namespace stagehost

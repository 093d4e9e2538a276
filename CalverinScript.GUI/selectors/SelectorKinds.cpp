#include <cstdlib>
#include <mutex>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "DialogFunctionSelector.h"
#include "DialogMessage.h"
#include "DialogScriptTextSelector.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "MCalverinScript_Device.h"
#include "MLockedList.h"
#include "MSelectorWizard.h"
#include "QWinWidget.h"
#include "ScriptAnalysis.h"
#include "ScriptWorld.h"
#include "ThemeStyleSheet.h"

/// The three kinds of selectors, each with its dialog.

namespace {

template <typename Wizard>
MSelectorWizard* MakeWizard() {
    return new Wizard(true);
}

/// Two of the names are the same, which hosts know.
constexpr MSelectorWizard::Kind kScriptSelector = {"IScriptSelector", "Select Script File",
                                                   &MakeWizard<MScriptSelectorWizard>};
constexpr MSelectorWizard::Kind kScriptTextSelector = {"IScriptTextSelector", "Select Script Function",
                                                       &MakeWizard<MScriptTextSelectorWizard>};
constexpr MSelectorWizard::Kind kFunctionSelector = {"IFunctionSelector", "Select Script Function",
                                                     &MakeWizard<MFunctionSelectorWizard>};

/// Shows a dialog on the host's window, in the host's colours. @return whether it was accepted; not when the window has gone.
bool Run(QDialog& dialog, QWinWidget& parent, IMInterface* host) {
    QObject::connect(&parent, &QWinWidget::SignalParentGone, &dialog, &QDialog::reject);
    WearTheme(dialog, host);
    parent.Adopt(dialog);
    return dialog.exec() == QDialog::Accepted;
}

/// Begins with the present file, or where the scripts are.
void PrepareFileDialog(QFileDialog& dialog, const QString& present, const QString& library) {
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    const QFileInfo file(present);
    if (!present.isEmpty() && file.isFile()) {
        dialog.setDirectory(file.absolutePath());
        dialog.selectFile(file.fileName());
    } else if (QFileInfo(library).isDir()) {
        dialog.setDirectory(library);
    }
}

/// What runs in a device, or what its stored script would publish where nothing runs.
QStringList FunctionsOf(MCalverinScript_Device& device) {
    ScriptSet& set = device.IsRunning() == KXP_OK ? device.GetWorld().GetSet() : device.GetAnalysis().GetSet();
    QStringList names;
    for (const MScriptCommand& function : set.functions.Snapshot())
        names.append(function.name);
    return names;
}

/// A number may have gone to two devices: then each has its heading, as when all are meant.
QStringList OfferedFunctions(IModuleServices* module, const std::string& deviceId) {
    MLockedList<MCalverinScript_Device*>* devices = module != nullptr ? module->GetDeviceList() : nullptr;
    if (devices == nullptr)
        return {};
    const std::lock_guard<MLockedList<MCalverinScript_Device*>> guard(*devices);
    const auto number = static_cast<std::uint32_t>(std::strtoul(deviceId.c_str(), nullptr, 10));
    std::vector<MCalverinScript_Device*> meant;
    for (MCalverinScript_Device* device : *devices)
        if (number == 0 || device->GetStoredSetup().GetDeviceNumber() == number)
            meant.push_back(device);
    QStringList offered;
    for (MCalverinScript_Device* device : meant) {
        if (number == 0 || meant.size() > 1)
            offered.append(DialogFunctionSelector::Heading(FromHostText(device->CopyName().c_str())));
        offered.append(FunctionsOf(*device));
    }
    return offered;
}

} // namespace

MScriptSelectorWizard::MScriptSelectorWizard(bool endsWithRelease)
    : MSelectorWizard(kScriptSelector, endsWithRelease) {}

/// A file whose name the host cannot carry would not be found again.
std::optional<QString> MScriptSelectorWizard::Ask(QWinWidget& parent, const Place& place,
                                                  const Subject& subject) const {
    const char* folder = place.module != nullptr ? place.module->GetScriptsFolder() : nullptr;
    QFileDialog dialog(&parent, QStringLiteral("Open Calverin Script"), QString(),
                       QStringLiteral("Calverin Script (*.js);;All Files (*)"));
    PrepareFileDialog(dialog, subject.present, QFile::decodeName(folder));
    while (Run(dialog, parent, place.host)) {
        const QString path = QDir::toNativeSeparators(dialog.selectedFiles().value(0));
        if (path.isEmpty())
            return std::nullopt;
        if (FitsHostText(path))
            return path;
        DialogMessage::Warn(&dialog, QStringLiteral("The name of this file has characters that the host does not "
                                                    "know:\n\n%1\n\nPlease choose another one.")
                                         .arg(path));
    }
    return std::nullopt;
}

MScriptTextSelectorWizard::MScriptTextSelectorWizard(bool endsWithRelease)
    : MSelectorWizard(kScriptTextSelector, endsWithRelease) {}

std::optional<QString> MScriptTextSelectorWizard::Ask(QWinWidget& parent, const Place& place,
                                                      const Subject& subject) const {
    DialogScriptTextSelector dialog(&parent, subject.present);
    return Run(dialog, parent, place.host) ? std::optional(dialog.GetText()) : std::nullopt;
}

MFunctionSelectorWizard::MFunctionSelectorWizard(bool endsWithRelease)
    : MSelectorWizard(kFunctionSelector, endsWithRelease) {}

std::optional<QString> MFunctionSelectorWizard::Ask(QWinWidget& parent, const Place& place,
                                                    const Subject& subject) const {
    DialogFunctionSelector dialog(&parent, OfferedFunctions(place.module, subject.deviceId), subject.present);
    return Run(dialog, parent, place.host) ? std::optional(dialog.GetText()) : std::nullopt;
}

#pragma once

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include "IModuleServices.h"
#include "MCalverinScript_Device.h"
#include "MLockedList.h"
#include "PlainHost.h"
#include "SetupInterface.h"

/// A module with a library of scripts.
class LibraryModule : public IModuleServices {
public:
    LibraryModule();
    virtual ~LibraryModule() = default;
    IMInterface* GetHost() override { return host; }
    const char* GetDefinitionTemplate() override { return m_definition.c_str(); }
    void GetConfigFilePath(char* buffer) override;
    const char* GetScriptsFolder() override { return library.empty() ? nullptr : library.c_str(); }
    bool IsDebuggerAllowed() const override { return false; }
    bool IsHostAtLeast642() const override { return true; }
    bool IsHostAtLeast643() const override { return true; }
    MLockedList<MCalverinScript_Device*>* GetDeviceList() override { return devices.Count() > 0 ? &devices : nullptr; }
    void RemoveDevice(MCalverinScript_Device* device) override { devices.Remove(device); }

    MLockedList<MCalverinScript_Device*> devices; ///< while it is empty, the module has no list
    IMInterface* host = nullptr;
    std::string library;
    std::string config;                     ///< the path of the configuration file
    std::function<void()> configIsAskedFor; ///< an analysis begins

private:
    const std::string m_definition;
};

/// A host that may have a main window and a theme.
class WindowHost : public plain::Host, public IThemeManager {
public:
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPWindow GetMainWindow() override { return Tell("GetMainWindow"), mainWindow; }
    std::uint32_t GetColor(std::uint32_t id) override { return Tell("GetColor"), colors.at(id); }
    std::uint32_t GetUserMode() override { return Tell("GetUserMode"), userMode; }

    std::uint32_t userMode = 2;
    std::function<void(const std::string& operation)> isAsked; ///< before one of the operations here answers
    KXPWindow mainWindow = 0;
    std::map<std::uint32_t, std::uint32_t> colors; ///< 0x00BBGGRR; without them the host has no theme

private:
    std::mutex m_asking; ///< guards what the plain host notes of each question
    void Tell(const char* operation) const {
        const auto hear = isAsked; // it may be replaced meanwhile
        if (hear)
            hear(operation);
    }
};

/// Answers modal dialogs as they come, in the order in which they were expected. Each answer has to close its dialog.
class DialogDriver {
public:
    DialogDriver();
    /// @param answer works on the next modal dialog once it is up.
    void Expect(std::function<void(QWidget&)> answer);
    /// @return whether every dialog that was expected has come.
    bool IsDone() const { return m_answers.empty(); }

private:
    void Wait(QDeadlineTimer deadline);
    void Work(QWidget& dialog);
    void GiveUp();
    QWidget* FindNew() const;
    void CloseUnexpected();

    QObject m_context; ///< with it, what is still waited for ends
    std::deque<std::function<void(QWidget&)>> m_answers;
    QList<QWidget*> m_open;
    bool m_waits = false;
    QTimer m_watch; ///< looks for dialogs that nobody expected, which would never be closed
    int m_unexpected = 0;
};

/// The part of a window that has the name.
template <typename Part>
Part& Find(QWidget& window, const char* name) {
    auto* part = window.findChild<Part*>(QLatin1String(name));
    if (part == nullptr)
        throw std::runtime_error(std::string("there is no ") + name);
    return *part;
}

/// Clicks with the mouse.
void Click(QWidget& window, const char* name);
/// Replaces the text of a line edit by typing.
void Type(QWidget& window, const char* name, const char* text);
std::string TextOf(QWidget& window, const char* name);
/// Closes with the window's box.
void CloseBox(QWidget& window);
/// Answers a message whose text contains a part.
std::function<void(QWidget&)> Press(const char* button, const char* partOfText);

/// A device with its setup dialog, a library and a project on disk.
class SetupFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Stores a setup as a project would have it. @param programming whether the dialog shows all tabs.
    void GivenScript(const std::string& text, bool programming = true);
    /// A script in the library, and its copy in the project as the device's script.
    void GivenScriptFile(const std::string& name, const std::string& text);
    std::string WriteLibrary(const std::string& name, const std::string& content);
    /// The content of a file; "(none)" without one.
    std::string Read(const std::string& folder, const std::string& name) const;
    static void Write(const std::string& path, const std::string& content);
    /// Opens the dialog, lets it be worked on, and returns when it is closed.
    KXPCode Show(const std::function<void(QWidget&)>& work, const char* scriptName = nullptr);
    std::string Library() const { return m_folder.path().toStdString() + "/library"; }
    std::string Project() const { return m_folder.path().toStdString() + "/project"; }

    DialogDriver dialogs;
    WindowHost host;
    LibraryModule module;
    plain::Variables variables;
    SetupInterface setup;
    MCalverinScript_Device* device = nullptr;
    QTemporaryDir m_folder;
};

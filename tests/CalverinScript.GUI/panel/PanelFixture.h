#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "Deadline.h"
#include "IKXPDevicePanel.h"
#include "SetupFixture.h"

/// A device with its control panel in a window of a host.
class PanelFixture : public SetupFixture {
protected:
    static constexpr std::uint32_t kFreeMode = 5; ///< a user mode in which every panel is shown

    void SetUp() override;
    void TearDown() override;

    /// Makes the panel and lets the host show it.
    void GivenPanel();
    void ReleasePanel();
    void ReleaseDevice();
    /// Runs a script in the device that has no file, before there is a panel.
    void GivenRunningScript(const std::string& text);
    /// The same, with a file in the library and in the project.
    void GivenRunningFile(const std::string& name, const std::string& text);

    /// The window of a panel, and the widget in it. Null without one.
    static QWidget* WindowOf(IKXPDevicePanel& shown);
    static QWidget* WidgetOf(IKXPDevicePanel& shown);
    QWidget& Widget() const { return *WidgetOf(*panel); }
    QPlainTextEdit& Editor() const { return Find<QPlainTextEdit>(Widget(), "plainTextEditScript"); }
    bool IsShown() const { return WindowOf(*panel)->isVisible(); }
    std::string Text() const { return Editor().toPlainText().toStdString(); }
    std::string Status() const { return TextOf(Widget(), "lineEditStatus"); }
    std::string Info() const { return TextOf(Widget(), "lineEditDebugInfo"); }
    std::string FileName() const { return TextOf(Widget(), "lineEditScriptFileName"); }
    bool CanUpdate() const { return Find<QPushButton>(Widget(), "pushButtonSync").isEnabled(); }
    /// Replaces the text as a user does.
    void TypeScript(const char* text);
    void Press(const char* button) { Click(Widget(), button); }
    /// Calls a function of the running script by the host's command. @return its result.
    std::string Call(const char* function);
    template <typename Condition>
    static bool Comes(const Condition& condition) {
        return QTest::qWaitFor(condition, kDeadlineMs);
    }

    std::unique_ptr<QWidget> window; ///< the host's
    IKXPDevicePanel* panel = nullptr;
};

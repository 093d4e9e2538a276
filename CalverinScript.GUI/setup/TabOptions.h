#pragma once

#include <memory>
#include <optional>

#include <QWidget>

namespace Ui {
class TabOptions;
}

/// What the options tab asks.
struct SetupOptions {
    bool registerAllUserGroups = true;
    bool autoCompletion = true;
    bool userModeVisible = true;
    bool runModeVisible = true;
};

/// The tab of the options for programming and for the control panel.   [host main]
class TabOptions : public QWidget {
    Q_OBJECT

public:
    explicit TabOptions(QWidget* parent = nullptr);
    ~TabOptions() override;

    void SetOptions(const SetupOptions& options);
    SetupOptions GetOptions() const;
    void ShowDebugger(bool isEnabled);
    /// The script's own word about the default commands and variables outranks the user's.
    void ShowRemoveDefaults(bool users, std::optional<bool> scripts);
    bool IsRemoveDefaultsChecked() const;

Q_SIGNALS:
    void SignalRemoveDefaultsClicked();
    void SignalAutoCompletionClicked(bool isEnabled);

private:
    const std::unique_ptr<Ui::TabOptions> m_ui;
};

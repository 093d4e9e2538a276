#pragma once

#include <memory>

#include <QWidget>

class SettingsForm;
struct MScriptDescription;

namespace Ui {
class TabSetup;
}

/// The first tab: what the script says of itself, and the form of its settings.   [host main]
class TabSetup : public QWidget {
    Q_OBJECT

public:
    explicit TabSetup(QWidget* parent = nullptr);
    ~TabSetup() override;

    void ShowDescription(const MScriptDescription& description);
    SettingsForm& Form();

private:
    const std::unique_ptr<Ui::TabSetup> m_ui;
};

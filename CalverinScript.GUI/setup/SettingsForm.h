#pragma once

#include <QWidget>

#include "FormFields.h"
#include "ScriptRecords.h"

class QGridLayout;

/// The form of settings that a script declares: a row for each, the names to the left of the fields.   [host main]
class SettingsForm : public QWidget {
    Q_OBJECT

public:
    explicit SettingsForm(QWidget* parent = nullptr);

    /// What the fields of forms that are made from now on ask of the host.
    void SetHost(const FormHost& host) { m_host = host; }
    /// Makes the form anew.
    void ShowSettings(const ScriptSettings& settings);
    /// Writes what the fields hold into the settings of the same names; the rest stays as it is.
    void ReadBack(ScriptSettings& settings) const;

Q_SIGNALS:
    /// The user has chosen another resource in a field.
    void SignalResourceChosen();

protected:
    /// The wheel scrolls the form: it changes no field but the one that has the focus.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Clear();
    void AddRow(int row, const MScriptSetting& setting);
    void AddLabel(int row, const MScriptSetting& setting, QWidget* field);
    void AddField(int row, const MScriptSetting& setting, QWidget* field);
    void CloseRows(int row);
    void KeepWheelAway(QWidget* field);

    QGridLayout* m_grid; ///< a child
    FormHost m_host;
};

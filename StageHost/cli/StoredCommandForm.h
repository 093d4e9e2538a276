#pragma once

#include <map>
#include <memory>
#include <vector>

#include <QDialog>

#include "ParameterSelector.h"
#include "Session.h"

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace stagehost {

/// Changes the values of the show's stored commands. A parameter that names a selector of the module has its button
/// there. What was typed for one command waits while another is looked at, and is asked about before the form closes.
/// [host main]
class StoredCommandForm : public QDialog {
    Q_OBJECT

public:
    /// @param session borrowed for this object's life.
    StoredCommandForm(Session& session, QWidget* parent);
    ~StoredCommandForm() override;

    /// The commands that were stored here: their texts by their names.
    const std::map<QString, QString>& Stored() const { return m_stored; }

public Q_SLOTS:
    void reject() override;

private:
    /// One parameter on the form.
    struct Row {
        std::string name;
        QLineEdit* field = nullptr;
        QWidget* place = nullptr; ///< the field, or the list of items that it is part of
        std::string variable;     ///< stands for the parameter; empty for none
        std::unique_ptr<ParameterSelector> selector;
        QPushButton* button = nullptr; ///< of the selector; null without one
    };

    void ShowCommand();
    void KeepDraft();
    void ShowDraft();
    QStringList Texts() const;
    void AddRow(const ValueSpec& parameter, const StoredCommandXml& stored, std::size_t number);
    void Ask(const Row& row);
    void Store();
    std::optional<StoredCommandXml> StoredOne() const;
    std::vector<ParameterInput> Inputs() const;

    Session& m_session;
    QComboBox* m_choice;
    QString m_shown;               ///< the command on the form
    QStringList m_shownTexts;      ///< of its rows, before anybody typed
    QFormLayout* m_form = nullptr; ///< of the command that is chosen
    QWidget* m_page = nullptr;
    QLabel* m_news;
    std::vector<Row> m_rows;
    CommandDefinition m_command;
    std::map<QString, QString> m_stored;
    std::map<QString, QStringList> m_drafts; ///< what was typed and not stored: texts of rows by names of commands
};

} // namespace stagehost

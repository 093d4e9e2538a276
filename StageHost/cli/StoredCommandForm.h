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
/// there. [host main]
class StoredCommandForm : public QDialog {
    Q_OBJECT

public:
    /// @param session borrowed for this object's life.
    StoredCommandForm(Session& session, QWidget* parent);
    ~StoredCommandForm() override;

    /// The commands that were stored here: their texts by their names.
    const std::map<QString, QString>& Stored() const { return m_stored; }

private:
    /// One parameter on the form.
    struct Row {
        std::string name;
        QLineEdit* field = nullptr;
        std::string variable; ///< stands for the parameter; empty for none
        std::unique_ptr<ParameterSelector> selector;
        QPushButton* button = nullptr; ///< of the selector; null without one
    };

    void ShowCommand();
    void AddRow(const ValueSpec& parameter, const StoredCommandXml& stored, std::size_t number);
    void Ask(const Row& row);
    void Store();
    std::optional<StoredCommandXml> StoredOne() const;
    std::vector<ParameterInput> Inputs() const;

    Session& m_session;
    QComboBox* m_choice;
    QFormLayout* m_form = nullptr; ///< of the command that is chosen
    QWidget* m_page = nullptr;
    QLabel* m_news;
    std::vector<Row> m_rows;
    CommandDefinition m_command;
    std::map<QString, QString> m_stored;
};

} // namespace stagehost

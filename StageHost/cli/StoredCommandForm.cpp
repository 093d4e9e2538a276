#include "StoredCommandForm.h"

#include <algorithm>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "BorderText.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr int kFormWidth = 560;

/// The field of a parameter. @param place receives what stands on the form: the field, or the list that it is part of.
QLineEdit* MakeField(const ValueSpec& parameter, QWidget*& place) {
    if (parameter.items.empty()) {
        auto* field = new QLineEdit;
        place = field;
        return field;
    }
    auto* list = new QComboBox;
    list->setEditable(true);
    for (const std::string& item : parameter.items)
        list->addItem(FromBorderText(item));
    QObject::connect(list->lineEdit(), &QLineEdit::textChanged, list, [list](const QString& text) {
        const int item = list->findText(text);
        if (item >= 0)
            list->setCurrentIndex(item); // the keys and the open list begin there
    });
    place = list;
    return list->lineEdit();
}

} // namespace

StoredCommandForm::StoredCommandForm(Session& session, QWidget* parent)
    : QDialog(parent)
    , m_session(session)
    , m_choice(new QComboBox)
    , m_news(new QLabel) {
    setWindowTitle(QStringLiteral("Stored commands"));
    setMinimumWidth(kFormWidth);
    auto* layout = new QVBoxLayout(this);
    auto* choice = new QFormLayout;
    m_choice->setObjectName(QStringLiteral("comboBoxCommand"));
    choice->addRow(QStringLiteral("&Command:"), m_choice);
    layout->addLayout(choice);
    layout->addWidget(m_news);
    layout->addStretch(1);
    auto* buttons = new QDialogButtonBox;
    QPushButton* store = buttons->addButton(QStringLiteral("&Store"), QDialogButtonBox::ApplyRole);
    store->setObjectName(QStringLiteral("pushButtonStore"));
    QPushButton* close = buttons->addButton(QStringLiteral("C&lose"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("pushButtonClose"));
    layout->addWidget(buttons);
    for (const CheckedCommand& command : session.StoredOnes())
        if (command.InForce() != nullptr)
            m_choice->addItem(command.name);
    connect(store, &QPushButton::clicked, this, &StoredCommandForm::Store);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_choice, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &StoredCommandForm::ShowCommand);
    ShowCommand();
}

StoredCommandForm::~StoredCommandForm() = default;

/// As it was stored here last, or as the show has it.
std::optional<StoredCommandXml> StoredCommandForm::StoredOne() const {
    const QString name = m_choice->currentText();
    const auto own = m_stored.find(name);
    if (own != m_stored.end()) {
        QString problem;
        return StoredCommandXml::Read(own->second, &problem);
    }
    const auto& all = m_session.StoredOnes();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const CheckedCommand& command) { return command.name == name; });
    return found != all.end() && found->InForce() != nullptr ? std::optional(*found->InForce()) : std::nullopt;
}

QStringList StoredCommandForm::Texts() const {
    QStringList texts;
    for (const Row& row : m_rows)
        texts.append(row.field->text());
    return texts;
}

void StoredCommandForm::KeepDraft() {
    if (Texts() != m_shownTexts)
        m_drafts[m_shown] = Texts();
    else
        m_drafts.erase(m_shown);
}

void StoredCommandForm::ShowDraft() {
    m_shownTexts = Texts();
    const auto draft = m_drafts.find(m_shown);
    if (draft == m_drafts.end() || draft->second.size() != m_shownTexts.size())
        return;
    for (std::size_t number = 0; number < m_rows.size(); ++number)
        m_rows[number].field->setText(draft->second[static_cast<int>(number)]);
    m_news->setText(QStringLiteral("Not stored yet."));
}

void StoredCommandForm::reject() {
    KeepDraft();
    QStringList names;
    for (const auto& [name, texts] : m_drafts)
        names.append(name);
    if (!names.isEmpty() &&
        QMessageBox::question(
            this, windowTitle(),
            QStringLiteral("Changed and not stored: %1.\nLeave without storing?").arg(names.join(QStringLiteral(", "))),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    QDialog::reject();
}

void StoredCommandForm::ShowCommand() {
    KeepDraft();
    m_shown = m_choice->currentText();
    m_shownTexts.clear();
    m_rows.clear();
    delete m_page;
    m_page = new QWidget;
    m_form = new QFormLayout(m_page);
    m_form->setContentsMargins(0, 0, 0, 0);
    static_cast<QVBoxLayout*>(layout())->insertWidget(1, m_page);
    m_news->clear();
    const auto stored = StoredOne();
    Device* device = stored ? m_session.FindDevice(FromBorderText(stored->Device())) : nullptr;
    const auto definition = device != nullptr ? device->Variables().Definition() : nullptr;
    const CommandDefinition* command =
        definition != nullptr ? definition->FindCommandOfId(stored->Command().id) : nullptr;
    if (command == nullptr)
        return;
    m_command = *command;
    for (std::size_t number = 0; number < m_command.parameters.size(); ++number)
        if (!IsOutParameter(m_command.parameters[number]))
            AddRow(m_command.parameters[number], *stored, number);
    QWidget* last = m_choice; // the rows come behind it, though they were made later than the buttons
    for (const Row& row : m_rows) {
        for (QWidget* part : {row.place, static_cast<QWidget*>(row.button)}) {
            if (part == nullptr)
                continue;
            setTabOrder(last, part);
            last = part;
        }
    }
    ShowDraft();
}

void StoredCommandForm::AddRow(const ValueSpec& parameter, const StoredCommandXml& stored, std::size_t number) {
    Row row;
    row.name = parameter.name;
    row.field = MakeField(parameter, row.place);
    const QString name = FromBorderText(parameter.name);
    row.field->setObjectName(name);
    row.place->setAccessibleName(name);
    row.field->setText(FromBorderText(MakeValue(parameter)->Text()));
    for (const ValueSpec& value : stored.Command().parameters)
        if (value.name == parameter.name)
            row.field->setText(FromBorderText(MakeValue(value)->Text()));
    for (const auto& [bound, variable] : stored.Bindings())
        if (bound == number)
            row.variable = variable;
    auto* line = new QHBoxLayout;
    line->addWidget(row.place, 1);
    row.selector = std::make_unique<ParameterSelector>(m_session.TheHost().Factories(), parameter);
    if (!row.variable.empty()) {
        row.field->setText(FromBorderText(row.variable));
        row.place->setEnabled(false);
        row.place->setToolTip(QStringLiteral("This variable stands for the parameter."));
    } else if (row.selector->IsThere()) {
        auto* button = new QPushButton(QStringLiteral("..."));
        button->setObjectName(name + QStringLiteral("Selector"));
        button->setAutoDefault(false);
        button->setToolTip(FromBorderText(row.selector->Name()));
        button->setAccessibleName(FromBorderText(row.selector->Name()));
        line->addWidget(button);
        row.button = button;
        const std::size_t place = m_rows.size();
        connect(button, &QPushButton::clicked, this, [this, place] { Ask(m_rows[place]); });
    }
    auto* label = new QLabel(name + QLatin1Char(':'));
    label->setBuddy(row.place);
    m_form->addRow(label, line);
    m_rows.push_back(std::move(row));
}

std::vector<ParameterInput> StoredCommandForm::Inputs() const {
    std::vector<ParameterInput> inputs;
    for (const Row& row : m_rows) {
        inputs.push_back({row.name, ToBorderText(row.field->text()), {}});
        if (!row.variable.empty())
            inputs.back().variable = m_session.TheHost().Variables().Find(row.variable);
    }
    return inputs;
}

void StoredCommandForm::Ask(const Row& row) {
    QLineEdit* field = row.field;
    if (const auto text = row.selector->Ask(m_command, Inputs()))
        field->setText(FromBorderText(*text));
}

void StoredCommandForm::Store() {
    const auto stored = StoredOne();
    if (!stored)
        return;
    const QString problem = CheckInputs(m_command, Inputs());
    if (!problem.isEmpty()) {
        m_news->setText(problem);
        return;
    }
    std::vector<ActionParameter> parameters;
    for (const Row& row : m_rows) {
        const bool isVariable = !row.variable.empty();
        parameters.push_back({row.name, isVariable ? row.variable : ToBorderText(row.field->text()), isVariable});
    }
    Device* device = m_session.FindDevice(FromBorderText(stored->Device()));
    const auto made =
        StoredCommandXml::Make(stored->Device(), device->Variables().DefinitionText(), m_command.id, parameters);
    if (made) {
        m_stored[m_shown] = made->Print();
        m_shownTexts = Texts();
    }
    m_news->setText(made ? QStringLiteral("Stored.") : QStringLiteral("The command cannot be stored."));
}

} // namespace stagehost

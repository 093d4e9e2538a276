#include "DialogSelectScript.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "DialogMessage.h"
#include "LongText.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"
#include "ui_DialogSelectScript.h"

namespace {

QString ScriptFilter() {
    return QStringLiteral("Calverin Script (*.js);;All Files (*)");
}

bool LieInOneFolder(const QString& left, const QString& right) {
    return QDir(QFileInfo(left).absolutePath()).canonicalPath() ==
           QDir(QFileInfo(right).absolutePath()).canonicalPath();
}

} // namespace

DialogSelectScript::DialogSelectScript(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogSelectScript>())
    , m_scripts((m_ui->setupUi(this), *m_ui->listWidgetScripts)) {
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    EnableFields(false);
    connect(m_ui->listWidgetScripts, &QListWidget::currentItemChanged, this,
            &DialogSelectScript::SlotSelectedScriptChanged);
    connect(m_ui->listWidgetScripts, &QListWidget::itemDoubleClicked, this,
            &DialogSelectScript::SlotSelectedScriptValidated);
    connect(m_ui->pushButtonImport, &QPushButton::clicked, this, &DialogSelectScript::SlotImport);
    connect(m_ui->pushButtonExport, &QPushButton::clicked, this, &DialogSelectScript::SlotExport);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogSelectScript::SlotYes);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogSelectScript::SlotNo);
}

DialogSelectScript::~DialogSelectScript() = default;

void DialogSelectScript::Load(const QString& fileToSelect, QScriptEngine* engine) {
    m_engine = engine;
    m_scripts.Load(m_device, fileToSelect, engine);
}

void DialogSelectScript::EnableFields(bool isEnabled) {
    for (QWidget* field :
         std::initializer_list<QWidget*>{m_ui->lineEditFileName, m_ui->lineEditTitle, m_ui->lineEditVersion,
                                         m_ui->lineEditAuthor, m_ui->plainTextEditDescription})
        field->setEnabled(isEnabled);
}

void DialogSelectScript::SlotSelectedScriptChanged(QListWidgetItem* lpCurrentItem,
                                                   QListWidgetItem* /*lpPreviousItem*/) {
    const MScriptDescription* description = ScriptList::DescriptionOf(lpCurrentItem);
    m_ui->pushButtonExport->setEnabled(description != nullptr);
    m_ui->pushButtonOk->setEnabled(description != nullptr);
    if (description == nullptr)
        return;
    EnableFields(true);
    m_ui->lineEditFileName->setText(description->fileName);
    m_ui->lineEditTitle->setText(description->title);
    m_ui->lineEditVersion->setText(description->version);
    m_ui->lineEditAuthor->setText(description->author);
    for (QLineEdit* field : {m_ui->lineEditFileName, m_ui->lineEditTitle, m_ui->lineEditVersion, m_ui->lineEditAuthor})
        ShowFromTheBeginning(*field);
    m_ui->plainTextEditDescription->setPlainText(description->description);
}

void DialogSelectScript::SlotSelectedScriptValidated(QListWidgetItem* lpSelectedItem) {
    if (lpSelectedItem == nullptr)
        SlotSelectedScriptChanged(nullptr, nullptr);
    else
        SlotYes();
}

void DialogSelectScript::SlotYes() {
    MScriptDescription* description = ScriptList::DescriptionOf(m_ui->listWidgetScripts->currentItem());
    const QString folder = LibraryFolderOf(m_device);
    if (description != nullptr && !folder.isEmpty()) {
        m_path = PathBelow(folder, description->fileName);
        m_description = description;
    }
    accept();
}

void DialogSelectScript::SlotNo() {
    reject();
}

void DialogSelectScript::SlotImport() {
    FileStep step = FileStep::Again;
    while (step == FileStep::Again)
        step = ImportOne();
    if (step == FileStep::ExportInstead)
        SlotExport();
}

DialogSelectScript::FileStep DialogSelectScript::ImportOne() {
    const QString source =
        QFileDialog::getOpenFileName(this, QStringLiteral("Import Calverin Script"), QString(), ScriptFilter());
    auto description = DescribeFile(source, m_engine, m_device);
    if (description == nullptr || LibraryFolderOf(m_device).isEmpty())
        return FileStep::Done;
    return TakeIntoLibrary(source, std::move(description));
}

/// A failed import leads to the export dialog: users know it so.
DialogSelectScript::FileStep DialogSelectScript::TakeIntoLibrary(const QString& source,
                                                                 std::unique_ptr<MScriptDescription> description) {
    const QString folder = LibraryFolderOf(m_device);
    QDir().mkpath(folder);
    const QString fileName = QFileInfo(source).fileName();
    const QString target = PathBelow(folder, fileName);
    if (LieInOneFolder(source, target)) {
        DialogMessage::Warn(this,
                            QStringLiteral("It is not possible to import script from the Scripts Library.\n\nPlease "
                                           "choose an other directory to select a script to import."));
        return FileStep::Again;
    }
    if (QFileInfo::exists(target) &&
        !DialogMessage::Ask(
            this, QStringLiteral("A script file with the same name,") + fileName +
                      QStringLiteral(", already exists into Scripts Library.\n\nDo you want to overwrite it?")))
        return FileStep::Again;
    if (!CopyScriptFile(source, target)) {
        DialogMessage::Warn(this, QStringLiteral("An error happened during the importation.\n\nPlease try again."));
        return FileStep::ExportInstead;
    }
    m_scripts.Put(std::move(description));
    SlotSelectedScriptChanged(m_ui->listWidgetScripts->currentItem(), nullptr);
    return FileStep::Done;
}

void DialogSelectScript::SlotExport() {
    FileStep step = FileStep::Again;
    while (step == FileStep::Again)
        step = ExportOne();
}

DialogSelectScript::FileStep DialogSelectScript::ExportOne() {
    const MScriptDescription* description = ScriptList::DescriptionOf(m_ui->listWidgetScripts->currentItem());
    if (description == nullptr) {
        m_ui->pushButtonExport->setEnabled(false);
        return FileStep::Done;
    }
    const QString source = PathBelow(LibraryFolderOf(m_device), description->fileName);
    const QString target = QFileDialog::getSaveFileName(this, QStringLiteral("Export Calverin Script"),
                                                        description->fileName, ScriptFilter());
    if (target.isEmpty())
        return FileStep::Done;
    if (LieInOneFolder(target, source)) {
        DialogMessage::Warn(this,
                            QStringLiteral("It is not possible to export script into the Scripts Library.\n\nPlease "
                                           "choose an other directory to export the selected script."));
        return FileStep::Again;
    }
    if (CopyScriptFile(source, target))
        return FileStep::Done;
    DialogMessage::Warn(this, QStringLiteral("An error happened during the exportation.\n\nPlease try again."));
    return FileStep::Again;
}

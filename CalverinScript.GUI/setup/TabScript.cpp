#include "TabScript.h"

#include <QAction>
#include <QCompleter>
#include <QIcon>
#include <QMenu>
#include <QMessageBox>
#include <QTextBlock>

#include "AnalysisOutcome.h"
#include "CodeEditor.h"
#include "DialogFinder.h"
#include "Highlighter.h"
#include "Pictures.h"
#include "SetupMemory.h"
#include "ui_TabScript.h"

namespace {

constexpr int kTabStopPixels = 28;
constexpr int kFontPoints = 9;
constexpr int kVisibleCompletions = 15;

constexpr int With(Qt::Modifier modifier, Qt::Key key) {
    return static_cast<int>(modifier) | static_cast<int>(key);
}

/// One action of the editor's menu.
struct EditorAction {
    const char* text;
    const char* statusTip;
    const char* icon;
    int shortcut;
    void (TabScript::*signal)();
    bool endsGroup; ///< whether a line follows in the menu
};

constexpr EditorAction kEditorActions[] = {
    {"Find...", "Find...", ":/search", With(Qt::CTRL, Qt::Key_F), &TabScript::SignalOpenFinder, true},
    {"Insert Variable", "Insert a Variable", ":/varFolder", With(Qt::ALT, Qt::Key_V), &TabScript::SignalInsertVariable,
     false},
    {"Insert UserGroup", "Insert an UserGroup", ":/userGroupIcon", With(Qt::ALT, Qt::Key_G),
     &TabScript::SignalInsertUserGroup, false},
    {"Insert Task", "Insert a Task", ":/taskIcon", With(Qt::ALT, Qt::Key_T), &TabScript::SignalInsertTask, false},
    {"Insert Cue", "Insert a Cue", ":/cueIcon", With(Qt::ALT, Qt::Key_C), &TabScript::SignalInsertCue, false},
    {"Insert UserScreen", "Insert an UserScreen", ":/userscreenIcon", With(Qt::ALT, Qt::Key_U),
     &TabScript::SignalInsertUserScreen, false},
    {"Insert Device", "Insert a Device", ":/devIcon", With(Qt::ALT, Qt::Key_D), &TabScript::SignalInsertDevice, true},
    {"Insert QCalverin.Perform", "Insert QCalverin.Perform", ":/perform", With(Qt::ALT, Qt::Key_P),
     &TabScript::SignalInsertPerform, false},
};

} // namespace

TabScript::TabScript(QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::TabScript>())
    , m_completer(new QCompleter(this)) {
    RegisterPictures();
    m_ui->setupUi(this);
    SetUpEditor();
    MakeActions();
    connect(m_ui->pushButtonEvaluate, &QPushButton::clicked, this, &TabScript::SignalEvaluate);
    connect(m_ui->plainTextEditScript, &QWidget::customContextMenuRequested, this, &TabScript::SlotShowContextMenu);
    connect(m_ui->plainTextEditScript, &QPlainTextEdit::textChanged, this, &TabScript::SlotTextChanged);
}

TabScript::~TabScript() {
    delete m_finder;
}

void TabScript::SetUpEditor() {
    CodeEditor& editor = Editor();
    QFont font(QStringLiteral("Lucida Console"), kFontPoints);
    font.setStyleHint(QFont::Monospace);
    editor.setFont(font);
    editor.setTabStopDistance(kTabStopPixels);
    editor.setStyleSheet(QStringLiteral("QPlainTextEdit {\n\tcolor: black;\n}"));
    editor.setContextMenuPolicy(Qt::CustomContextMenu);
    m_highlighter = new Highlighter(editor.document());
    SetCompletions(nullptr);
}

void TabScript::SetCompletions(QStandardItemModel* table) {
    if (table != nullptr)
        table->sort(0, Qt::AscendingOrder);
    m_completer->setModel(table != nullptr ? table : &m_noCompletions);
    m_completer->setMaxVisibleItems(kVisibleCompletions);
    Editor().setCompleter(m_completer);
}

void TabScript::MakeActions() {
    for (const EditorAction& row : kEditorActions) {
        auto* action = new QAction(QLatin1String(row.text), this);
        action->setStatusTip(QLatin1String(row.statusTip));
        action->setShortcut(QKeySequence(row.shortcut));
        connect(action, &QAction::triggered, this, row.signal);
        m_actions.append(action);
    }
}

CodeEditor& TabScript::Editor() {
    return *m_ui->plainTextEditScript;
}

/// The widget's own plain text makes blanks of characters that only look like them.
QString TabScript::GetText() const {
    return m_ui->plainTextEditScript->document()->toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

void TabScript::SetText(const QString& text) {
    m_highlighter->SpreadLoading([&] { Editor().setText(text); });
}

void TabScript::ReplaceText(const QString& text) {
    QTextCursor cursor(Editor().document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    Editor().moveCursor(QTextCursor::Start);
}

void TabScript::SetDebugInfo(const QString& text) {
    if (text.isNull())
        return;
    m_isPraised = false;
    m_ui->lineEditDebugInfo->setText(text);
    m_ui->lineEditDebugInfo->setToolTip(text);
    m_ui->lineEditDebugInfo->setCursorPosition(0);
}

/// What is wrong stays to be read while it is mended; that all is well was said of another text.
void TabScript::SlotTextChanged() {
    if (m_isPraised)
        SetDebugInfo(QStringLiteral(""));
}

void TabScript::ShowAnalysis(const AnalysisOutcome& analysis) {
    SetDebugInfo(QLatin1String("") + analysis.text);
    m_isPraised = analysis.succeeded;
    SlotOnNotifyLineErrorChange(analysis.line);
}

void TabScript::SlotOnNotifyLineErrorChange(int line) {
    if (line <= 0)
        return;
    QTextCursor cursor = Editor().textCursor();
    cursor.setPosition(0);
    cursor.movePosition(QTextCursor::NextBlock, QTextCursor::MoveAnchor, line - 1);
    Editor().setTextCursor(cursor);
}

/// Pictures take long to find, and only the menu shows them.
void TabScript::LoadPictures() {
    for (int index = 0; index < m_actions.size(); ++index)
        if (m_actions[index]->icon().isNull())
            m_actions[index]->setIcon(QIcon(QLatin1String(kEditorActions[index].icon)));
}

void TabScript::SlotShowContextMenu(QPoint pt) {
    LoadPictures();
    const std::unique_ptr<QMenu> menu(Editor().createStandardContextMenu());
    menu->addSeparator();
    for (int index = 0; index < m_actions.size(); ++index) {
        menu->addAction(m_actions[index]);
        if (kEditorActions[index].endsGroup)
            menu->addSeparator();
    }
    menu->exec(Editor().mapToGlobal(pt));
}

void TabScript::OpenFinder(SetupMemory& memory) {
    if (m_finder != nullptr)
        return;
    m_finder = new DialogFinder(this, memory.findMatchesCase, memory.findsDown);
    connect(m_finder.data(), &DialogFinder::SignalFind, this, &TabScript::SlotFind);
    m_finder->show();
    m_finder->exec();
    if (m_finder == nullptr)
        return;
    memory.findMatchesCase = m_finder->MatchesCase();
    memory.findsDown = m_finder->FindsDown();
    delete m_finder;
}

void TabScript::CloseFinder() {
    if (m_finder != nullptr)
        m_finder->close();
}

void TabScript::AddTool(QPushButton& tool) {
    m_ui->layoutInfo->addWidget(&tool);
    setTabOrder(m_ui->pushButtonEvaluate, &tool);
}

void TabScript::EnableEvaluation(bool isEnabled) {
    m_ui->pushButtonEvaluate->setEnabled(isEnabled);
}

void TabScript::SlotFind(const QString& sSearch, bool bMatchCase, bool bDirDown) {
    QWidget* asker = m_finder != nullptr ? static_cast<QWidget*>(m_finder) : this;
    if (sSearch.isEmpty()) {
        QMessageBox::information(asker, QStringLiteral("Empty Search Field"),
                                 QStringLiteral("The search field is empty. Please enter a word and click Find."),
                                 QMessageBox::Ok);
        return;
    }
    QTextDocument::FindFlags flags;
    flags.setFlag(QTextDocument::FindCaseSensitively, bMatchCase);
    flags.setFlag(QTextDocument::FindBackward, !bDirDown);
    const QTextCursor match = Editor().document()->find(sSearch, Editor().textCursor(), flags);
    if (match.isNull()) {
        QMessageBox::information(asker, QStringLiteral("Word Not Found"),
                                 QStringLiteral("Sorry, the word \"") + sSearch + QStringLiteral("\" cannot be found."),
                                 QMessageBox::Ok);
        return;
    }
    QTextCursor selection = Editor().textCursor();
    selection.setPosition(match.selectionStart());
    selection.setPosition(match.selectionEnd(), QTextCursor::KeepAnchor);
    Editor().setTextCursor(selection);
}

#pragma once

#include <memory>

#include <QList>
#include <QPointer>
#include <QStandardItemModel>
#include <QWidget>

class CodeEditor;
class DialogFinder;
class Highlighter;
class QAction;
class QCompleter;
class QPushButton;
struct AnalysisOutcome;
struct SetupMemory;

namespace Ui {
class TabScript;
}

/// The tab with the script's text, where it is edited, searched and evaluated.   [host main]
class TabScript : public QWidget {
    Q_OBJECT

public:
    explicit TabScript(QWidget* parent = nullptr);
    ~TabScript() override;

    /// The text as it stands, each character kept.
    QString GetText() const;
    /// Colours the first lines at once and the others from the event loop.
    void SetText(const QString& text);
    /// The same as a step of the user's, who can take it back.
    void ReplaceText(const QString& text);
    CodeEditor& Editor();

    /// A null text does nothing.
    void SetDebugInfo(const QString& text);
    /// Shows what an analysis came to, and puts the caret on the line of an error.
    void ShowAnalysis(const AnalysisOutcome& analysis);

    /// What the editor completes from. @param table sorted here, borrowed; null completes nothing.
    void SetCompletions(QStandardItemModel* table);

    /// What the editor's menu offers beside the usual, in its order. Whoever owns the window adds them, so that their shortcuts
    /// work in all of it.
    const QList<QAction*>& GetActions() const { return m_actions; }

    /// Opens the find dialog, unless it is open, and waits until it is closed. @param memory its options; takes the last ones.
    void OpenFinder(SetupMemory& memory);
    void CloseFinder();

    /// Puts a button behind the one that evaluates. It becomes a child.
    void AddTool(QPushButton& tool);
    /// Whether the script may be evaluated.
    void EnableEvaluation(bool isEnabled);

Q_SIGNALS:
    void SignalEvaluate();
    void SignalOpenFinder();
    // An object of that kind is to be chosen and inserted.
    void SignalInsertVariable();
    void SignalInsertUserGroup();
    void SignalInsertTask();
    void SignalInsertCue();
    void SignalInsertUserScreen();
    void SignalInsertDevice();
    // A line that performs a command is to be composed and inserted.
    void SignalInsertPerform();

public Q_SLOTS:
    void SlotFind(const QString& sSearch, bool bMatchCase, bool bDirDown);
    void SlotOnNotifyLineErrorChange(int line);
    void SlotShowContextMenu(QPoint pt);

private:
    void SetUpEditor();
    void SlotTextChanged();
    void MakeActions();
    void LoadPictures();

    const std::unique_ptr<Ui::TabScript> m_ui;
    Highlighter* m_highlighter = nullptr; ///< the document's
    QStandardItemModel m_noCompletions;
    QCompleter* m_completer;   ///< a child
    QList<QAction*> m_actions; ///< children
    QPointer<DialogFinder> m_finder;
    bool m_isPraised = false; ///< the info says that the text is good
};

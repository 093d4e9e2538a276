#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class DialogFinder;
}

/// Asks what to look for in a script; stays open while it is looked for.   [host main]
class DialogFinder : public QDialog {
    Q_OBJECT

public:
    DialogFinder(QWidget* parent, bool matchesCase, bool findsDown);
    ~DialogFinder() override;

    bool MatchesCase() const;
    bool FindsDown() const;

Q_SIGNALS:
    /// @param bDirUp whether to look downwards, in spite of its name.
    void SignalFind(const QString& sSearch, bool bMatchCase, bool bDirUp);

private Q_SLOTS:
    void SlotNext();
    void SlotClose();
    void SlotDirUpChange(bool isUp);
    void SlotDirDownChange(bool isDown);

private:
    const std::unique_ptr<Ui::DialogFinder> m_ui;
};

#pragma once

#include <QSyntaxHighlighter>
#include <QTextCursor>
#include <QTimer>

#include <vector>

/// A highlighter that stays quick while a change at the top of a long document alters the state of every line below it
/// (an opened block comment, one curly brace more). The changed lines are always done at once, and with them the next
/// lines whose state follows, as far as one pass goes; what is left is done in passes from the event loop, in between
/// which the user types on. In the end each line has the format and the state that one long pass would give it.
///
/// A pass is bounded by its work and not by a clock, so that the same change is always done in the same passes. A full
/// rehighlight() is done at once, as in the base class.
///
/// It also mends a gap of the base class: an edit that comes before the first highlighting of a document's text doesn't
/// cancel that. [thread: that of the document]
class SpreadingHighlighter : public QSyntaxHighlighter {
public:
    /// What one pass may do, in characters; each line counts kLineCost characters more than it has.
    static constexpr int kPassCost = 50000;
    static constexpr int kLineCost = 60;
    /// What the first pass over a loaded text does: more lines than a screen shows.
    static constexpr int kFirstPassCost = 10000;
    /// What waits of a loaded text begins when the window that shows it had time to come up, in milliseconds.
    static constexpr int kAfterLoadingMs = 100;

    /// Belongs to the document, as in the base class. A document with text is done from the event loop.
    explicit SpreadingHighlighter(QTextDocument* document);
    ~SpreadingHighlighter() override;

    /// Calls a function that loads a text into the document: its first lines are done at once, as far as the first pass goes,
    /// and the others in later passes.
    template <typename Load>
    void SpreadLoading(Load load) {
        TurnAway();
        load();
        TurnToLoaded();
    }
    /// Whether lines wait for a later pass.
    bool IsSpreading() const { return !m_waiting.empty(); }

protected:
    /// For highlightBlock of the subclass, in place of setCurrentBlockState.
    void FinishBlock(int state);

private:
    void TurnAway();
    void TurnToLoaded();
    void BeginChange(int from, int removed, int added);
    void EndChange();
    void BeginPass(int mandatoryEnd, int cost);
    void EndPass();
    void RunPass();
    QTextBlock TakeFirstWaiting();
    bool IsPassSpent();

    /// Every line is in tune with the state of the line before it. The lines at these places have new formats but still
    /// their old state, with which the lines behind them are in tune; lines that are joined keep the state of the last, so
    /// that stays true. They are cursors, so that edits carry them along.
    std::vector<QTextCursor> m_waiting;
    QTimer m_nextPass;
    bool m_inPass = false;
    bool m_isLoaded = false; ///< whether the change that is told is a text that was loaded
    int m_mandatoryEnd = 0;  ///< lines that begin before it are done in this pass whatever they cost
    int m_costLeft = 0;
};

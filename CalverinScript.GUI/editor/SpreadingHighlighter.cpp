#include "SpreadingHighlighter.h"

#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace {

/// The state of a loaded line that waits. No line that was done has it, so a pass that comes to it goes on behind it.
constexpr int kPutOff = 15;

} // namespace

// The base class is made without a document: its own answer to a change has to lie between the two of ours.
SpreadingHighlighter::SpreadingHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(static_cast<QObject*>(document)) {
    m_nextPass.setSingleShot(true);
    connect(&m_nextPass, &QTimer::timeout, this, &SpreadingHighlighter::RunPass);
    connect(document, &QTextDocument::contentsChange, this, &SpreadingHighlighter::BeginChange);
    setDocument(document);
    connect(document, &QTextDocument::contentsChange, this, &SpreadingHighlighter::EndChange);
    if (!document->isEmpty()) {
        m_waiting.emplace_back(document);
        m_nextPass.start(0);
    }
}

SpreadingHighlighter::~SpreadingHighlighter() {
    if (document() != nullptr)
        document()->disconnect(this);
}

// A line that the base class only looks at costs it more than to load it, so it must not see the text come. It can be taken to another
// document and back, but then does all of the text in one turn: so its connection goes alone.
void SpreadingHighlighter::TurnAway() {
    m_nextPass.stop();
    m_waiting.clear();
    disconnect(document(), SIGNAL(contentsChange(int, int, int)), this, nullptr);
}

// Told of a change at the beginning, the lines from there are done in passes, as after any other change.
void SpreadingHighlighter::TurnToLoaded() {
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        block.setUserState(kPutOff);
    connect(document(), &QTextDocument::contentsChange, this, &SpreadingHighlighter::BeginChange);
    connect(document(), SIGNAL(contentsChange(int, int, int)), this, SLOT(_q_reformatBlocks(int, int, int)));
    connect(document(), &QTextDocument::contentsChange, this, &SpreadingHighlighter::EndChange);
    m_isLoaded = true;
    Q_EMIT document()->contentsChange(0, 0, 0);
    m_isLoaded = false;
}

void SpreadingHighlighter::FinishBlock(int state) {
    if (state == currentBlockState())
        return;
    if (m_inPass && IsPassSpent())
        m_waiting.emplace_back(currentBlock());
    else
        setCurrentBlockState(state);
}

// The range is the one that the base class takes for changed.
void SpreadingHighlighter::BeginChange(int from, int removed, int added) {
    if (sender() != document())
        return;
    const QTextBlock last = document()->findBlock(from + added + (removed > 0 ? 1 : 0));
    const int end = last.isValid() ? last.position() + last.length() : document()->characterCount();
    BeginPass(end, m_isLoaded ? kFirstPassCost : kPassCost);
}

void SpreadingHighlighter::EndChange() {
    EndPass();
}

void SpreadingHighlighter::BeginPass(int mandatoryEnd, int cost) {
    m_inPass = true;
    m_mandatoryEnd = mandatoryEnd;
    m_costLeft = cost;
}

void SpreadingHighlighter::EndPass() {
    m_inPass = false;
    if (IsSpreading() && !m_nextPass.isActive())
        m_nextPass.start(m_isLoaded ? kAfterLoadingMs : 0);
}

void SpreadingHighlighter::RunPass() {
    if (document() == nullptr)
        m_waiting.clear();
    m_costLeft = kPassCost;
    const QSignalBlocker silence(document()); // no letter changes: who follows the text has heard of the edit
    while (IsSpreading() && m_costLeft > 0) {
        const QTextBlock block = TakeFirstWaiting();
        m_inPass = true;
        m_mandatoryEnd = block.position() + block.length();
        rehighlightBlock(block);
    }
    EndPass();
}

QTextBlock SpreadingHighlighter::TakeFirstWaiting() {
    const auto first = std::min_element(m_waiting.begin(), m_waiting.end());
    const QTextBlock block = first->block();
    m_waiting.erase(first);
    return block;
}

bool SpreadingHighlighter::IsPassSpent() {
    if (currentBlock().position() < m_mandatoryEnd)
        return false;
    m_costLeft -= currentBlock().length() + kLineCost;
    return m_costLeft <= 0;
}

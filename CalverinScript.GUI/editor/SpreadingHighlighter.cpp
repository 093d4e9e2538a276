#include "SpreadingHighlighter.h"

#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace {

/// The state of a line that was put off. No line that was done has it, so a pass that comes to it goes on behind it.
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

bool SpreadingHighlighter::IsPutOff() {
    if (!m_isLoading || !m_inPass)
        return false;
    if (m_costLeft > 0) {
        m_costLeft -= currentBlock().length() + kLineCost;
        return false;
    }
    if (previousBlockState() != kPutOff)
        m_waiting.emplace_back(currentBlock());
    setCurrentBlockState(kPutOff);
    return true;
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
    BeginPass(last.isValid() ? last.position() + last.length() : document()->characterCount());
}

void SpreadingHighlighter::EndChange() {
    EndPass();
}

void SpreadingHighlighter::BeginPass(int mandatoryEnd) {
    m_inPass = true;
    m_mandatoryEnd = mandatoryEnd;
    m_costLeft = kPassCost;
}

void SpreadingHighlighter::EndPass() {
    m_inPass = false;
    if (IsSpreading())
        m_nextPass.start(0);
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

#pragma once

#include <QString>

#include "SyntaxReader.h"

/// One word, value or sign as the grammar knows it: signs are as long as they can be.
struct SyntaxSymbol {
    enum class Kind { End, Name, Reserved, Number, Text, Template, Pattern, Sign };

    Kind kind = Kind::End;
    int start = 0;
    int end = 0;
    bool isFirstOfLine = false; ///< a line ends between the symbol before and this one
};

/// Cuts a script's text into symbols, from the first to the last.   [any]
class SyntaxScanner {
public:
    explicit SyntaxScanner(const QString& text)
        : m_text(text) {}

    /// The symbol behind the last one. A slash is a sign here, see ReadPattern.
    SyntaxSymbol Next();
    /// The regular expression that begins where a sign was read that begins with a slash.
    SyntaxSymbol ReadPattern(const SyntaxSymbol& slash);
    bool Is(const SyntaxSymbol& symbol, const char* what) const;
    /// Signs that later editions have.
    bool IsOfNewerEdition(const SyntaxSymbol& symbol) const;

    /// What cannot be cut: open texts, comments and patterns, letters right behind a number. The first of them counts.
    const SyntaxBreak& Fault() const { return m_fault; }

private:
    bool SkipBlanks();
    void SkipComment();
    void SkipLine();
    int EndOfWord(int at) const;
    int EndOfNumber(int at);
    int EndOfText(int at);
    int EndOfTemplate(int at) const;
    int EndOfSign(int at) const;
    QChar At(int at) const { return at < m_text.size() ? m_text[at] : QChar(); }
    void Blame(SyntaxBreak::Kind kind, int offset);

    const QString& m_text;
    int m_at = 0;
    SyntaxBreak m_fault;
};

#pragma once

#include <vector>

#include <QString>
#include <QStringList>

/// @file
/// A script's text, read without running it: words, brackets, functions. For texts that the engine has accepted; of any
/// other text the answers are some that fit, never a fault. The editor's scanner knows colours, line by line; here it
/// counts where a regular expression ends. Pure functions of the text.   [any]

enum class WordKind {
    Name, ///< also the words that the language reserves
    Number,
    Text,    ///< its value stands in `text`, without quotes, with escapes resolved
    Pattern, ///< a regular expression
    Sign     ///< an operator, a bracket or another sign, the longest that fits
};

/// One word of a script. Blanks and comments are none.
struct SourceWord {
    WordKind kind = WordKind::Sign;
    QString text;
    int line = 1;     ///< from 1
    int depth = 0;    ///< how many brackets are open around it; an opening bracket and its partner have the same
    int partner = -1; ///< of a bracket the place of the other one; -1 for other words and where it is missing
};

/// One function of a script.
struct SourceFunction {
    QString name;       ///< its own, or that of the member or variable that takes it; empty for others
    QStringList params; ///< as the script names them
    int keyword = 0;    ///< the place of `function`
    int open = 0;       ///< the places of the braces of its body
    int close = 0;
    int parent = -1;         ///< the function around it; -1 at the top level
    QString givenTo;         ///< the name of the call that it is handed to; empty for none
    bool isAtOnce = false;   ///< called where it stands
    bool isDeclared = false; ///< `function name()` as a statement
};

class ScriptSource {
public:
    explicit ScriptSource(const QString& script);

    const std::vector<SourceWord>& Words() const { return m_words; }
    int Count() const { return static_cast<int>(m_words.size()); }
    const std::vector<SourceFunction>& Functions() const { return m_functions; }

    /// Whether a sign, or a name, stands at a place; false outside the text.
    bool IsSign(int place, const char* sign) const { return Is(place, WordKind::Sign, sign); }
    bool IsName(int place, const char* name) const { return Is(place, WordKind::Name, name); }
    bool IsName(int place) const { return IsKind(place, WordKind::Name); }
    bool IsText(int place) const { return IsKind(place, WordKind::Text); }

    /// Whether the word is the key of a member in an object that is written out: a name or a text before ":".
    bool IsKey(int place) const;
    /// Whether an object that is written out begins here, not a block.
    bool IsObject(int place) const;

    /// The arguments between a bracket and its partner: the place where each begins. Nothing for "()".
    std::vector<int> Arguments(int openBracket) const;

    /// The innermost function around a place; -1 at the top level.
    int FunctionAround(int place) const;

    /// Whether the script makes a thing of that name somewhere: a variable, a function, a parameter, by assignment.
    bool Declares(const QString& name) const;

    /// Whether a name stands anywhere in the script.
    bool Mentions(const char* name) const;

    /// The line of a member of the published object, given by the names on the way to it, or of the last on that way
    /// that is written out. 0 when not even the first is.
    int LineOf(const QStringList& path) const;

private:
    bool Is(int place, WordKind kind, const char* text) const;
    bool IsKind(int place, WordKind kind) const;
    void MatchBrackets();
    void FindFunctions();
    SourceFunction FunctionAt(int keyword) const;
    void Name(SourceFunction& function) const;
    int FindTop(const QString& name) const;
    int FindKey(int open, const QString& name) const;

    std::vector<SourceWord> m_words;
    std::vector<SourceFunction> m_functions; ///< in the order of their keywords
};

#pragma once

#include <vector>

#include <QString>

/// The names by which the functions of a script are known to who reads it. An engine knows only those that stand behind
/// the word "function"; most functions of a driver are members of an object or arguments of a call:
///
///     Fade: function () {}                     Fade
///     this.Fade = function () {}               Fade
///     QCalverin.SetTimeout(function () {}, 5)  SetTimeout's function
///
/// Pure computation on a text, for any thread.
class FunctionNames {
public:
    explicit FunctionNames(const QString& text);

    /// The function that a line belongs to, the innermost one of several. Empty outside of functions, and for a
    /// function without any name, and where several functions begin on the line and nothing tells them apart.
    /// @param offset in the text, on that line; -1 when it is not known.
    QString OnLine(int line, int offset = -1) const;

private:
    struct Range {
        QString name;
        int start; ///< offsets in the text
        int end;
        int firstLine;
        int lastLine;
    };

    std::vector<Range> m_functions; ///< an inner one behind the outer one
};

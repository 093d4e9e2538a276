#pragma once

#include <QList>
#include <QTextBlockUserData>

/// What the highlighter leaves at a line that has, or once had, curly braces. The line owns it.
class JSBlockData : public QTextBlockUserData {
public:
    QList<int> bracketPositions; ///< the columns of '{' and '}', in order
};

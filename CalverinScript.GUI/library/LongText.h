#pragma once

#include <QLineEdit>

/// A text that is too long for its field shows how it begins, and all of it when the mouse rests on the field.   [host main]
inline void ShowFromTheBeginning(QLineEdit& field) {
    field.setCursorPosition(0);
    field.setToolTip(field.text());
}

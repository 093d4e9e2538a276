#pragma once

#include <QModelIndex>
#include <QString>

/// What an entry of the completion table inserts: its Qt::UserRole text, or what it shows if it has none.
QString CompletionText(const QModelIndex& entry);

/// Where the caret goes in an inserted text: between its first pair of quotes or one character before its first comma,
/// whichever comes first.
/// @return characters from the beginning of the text, 0 for behind it.
int CaretOffset(const QString& text);

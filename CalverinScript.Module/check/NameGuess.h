#pragma once

#include <QString>
#include <QStringList>

/// The name that resembles a wrong one most: the same but for the case of letters, or with a letter or two changed.
/// Empty when none does. A pure function.
QString Nearest(const QString& wrong, const QStringList& names);

/// What goes behind "correct the name": which one may be meant; empty when no name resembles the wrong one. A pure
/// function.
QString MayBeMeant(const QString& wrong, const QStringList& names);

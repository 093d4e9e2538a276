#pragma once

#include <QString>
#include <QStringList>

/// @file
/// What is said to somebody who has named what does not exist. Pure functions, callable on any thread.

namespace stagehost {

/// What of a text is compared: letters, as many as the names of a show have.
constexpr int kLongestCompared = 128;

/// How many single letters have to be put in, left out, changed or exchanged with their neighbour to make one text of
/// the other, letter case ignored: the optimal string alignment distance.
int DistanceBetween(const QString& one, const QString& other);

/// The known name that was probably meant; null when none is near.
QString NearestName(const QString& name, const QStringList& known);

/// What goes behind "there is no X": `; did you mean "Level"? There are: Doors, Level`. A long list is cut. Empty when
/// nothing is known.
QString NamesInstead(const QString& name, const QStringList& known);

} // namespace stagehost

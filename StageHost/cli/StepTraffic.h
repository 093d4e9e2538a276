#pragma once

#include <QStringList>

#include "Peers.h"

namespace stagehost {

/// The last of what the peers of a step have received and said, a line each: `peer fake: received "ON\r"`. They are
/// those that the step names, or that the settings of its device do; all of the show where these are none.
/// @param step null for what is no step's matter.   [host main]
QStringList TrafficOf(const Show& show, const ShowStep* step, const Peers& peers);

/// The same under a heading, for who reads it below a failure.   [any]
QStringList TrafficForPeople(const QStringList& traffic);

} // namespace stagehost

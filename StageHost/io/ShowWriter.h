#pragma once

#include <QByteArray>

#include "Show.h"

namespace stagehost {

/// The text of a show file that reads back as the same show.
/// Folders are written when they are not the defaults.   [any]
QByteArray WriteShow(const Show& show);

} // namespace stagehost

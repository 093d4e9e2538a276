#pragma once

#include <QString>

namespace stagehost {

/// A frame as people read it: in quotes, with \r, \n and \xff for what is no plain character, and cut where it is
/// long. @param frame its bytes as characters 0 to 255.   [any]
QString FrameForPeople(const QString& frame);

} // namespace stagehost

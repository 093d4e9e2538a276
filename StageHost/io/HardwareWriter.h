#pragma once

#include <QJsonObject>

#include "HardwareSpec.h"

namespace stagehost {

/// A resource as a show file has it, without what is as when it is not given.
QJsonObject WriteResource(const ResourceSpec& resource);

} // namespace stagehost

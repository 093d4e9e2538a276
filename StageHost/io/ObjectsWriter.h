#pragma once

#include <QJsonObject>

#include "ShowSpec.h"

namespace stagehost {

/// Adds the show's own objects to the object of a show file; what is empty is left out.   [any]
void WriteObjects(const ShowSpec& objects, QJsonObject& root);

/// Adds the keys of an action.   [any]
void WriteAction(const ActionSpec& action, QJsonObject& object);

/// Adds the key "requests" unless it is the normal conduct.   [any]
void WriteConduct(Conduct conduct, QJsonObject& object);

} // namespace stagehost

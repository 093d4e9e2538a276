#pragma once

#include <optional>

#include "MCalverinScript_Device.h"

/// Why an evaluation gave no script.
struct MCalverinScript_Device::EvaluationFailure {
    QString text;
    std::optional<int> line; ///< of an uncaught exception
};

#pragma once

#include <cstdint>

/// Index of the items of the device's variable "Status".
enum class DeviceStatus : std::int32_t { Ready = 0, Loading = 1, Executing = 2 };

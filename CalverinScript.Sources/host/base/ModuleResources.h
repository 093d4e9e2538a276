#pragma once

#include <cstdint>

#include <QByteArray>

/// @file
/// The resources that travel inside the module file, found by kind and number. Pure functions, callable on any thread.

/// Kinds of resources.
enum class ModuleResource : std::uint32_t { Bitmap = 2, String = 6, RawData = 10 };

/// Numbers of the module's resources.
enum ModuleResourceId : std::uint32_t {
    kDeviceBitmapId = 5,         ///< 16 by 16 icon of the device
    kDeviceTypeNameId = 1000,    ///< name of the device type
    kDriverManagerMarkId = 1030, ///< tells a host that the module has the driver manager face
    kDefinitionId = 10000        ///< template of the device definition
};

/// The bytes of a resource; a null array when the module has none of that kind and number.
QByteArray FindModuleResource(ModuleResource kind, std::uint32_t id);

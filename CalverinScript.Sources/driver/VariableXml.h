#pragma once

#include <memory>

#include "ScriptRecords.h"

class IDeviceVariables;
class TiXmlElement;

/// @file
/// Variables and settings as definitions and stored setups write them. Pure functions.

/// The element `Monitor` of a stored setup.
std::unique_ptr<TiXmlElement> MakeMonitorElement(const MScriptVariable& variable);
/// @return false, and variable undefined, without a name, a type or a value.
bool ReadMonitorElement(const TiXmlElement& element, MScriptVariable& variable);

/// The element `Setting` of a stored setup.
std::unique_ptr<TiXmlElement> MakeSettingElement(const MScriptSetting& setting);
/// @return false, and setting undefined, without a name or a type.
bool ReadSettingElement(const TiXmlElement& element, MScriptSetting& setting);

/// The element of a device's definition, named after the variable's type.
/// @param instanceId the host's number, 0 to have one allocated. @return null when the type cannot name an element.
std::unique_ptr<TiXmlElement> MakeVariableElement(const MScriptVariable& variable, std::uint32_t instanceId);

#pragma once

#include <memory>

#include "ScriptRecords.h"

class TiXmlElement;

/// @file
/// User commands as definitions and stored setups write them. Pure functions, callable on any thread.

/// The element `Command` with its parameters and the name of its function.
std::unique_ptr<TiXmlElement> MakeCommandElement(const MScriptCommand& command);

/// Reads such an element. A parameter that is none is left out.
/// @return false, and command undefined, without a name or a status.
bool ReadCommandElement(const TiXmlElement& element, MScriptCommand& command);

/// The element `ObjectParam` of one parameter. @param id from 0.
std::unique_ptr<TiXmlElement> MakeParamElement(const MScriptCommandParam& param, int id);

/// The element inside an `ObjectParam` that holds the value; null when there is none of a known type.
const TiXmlElement* FindDataElement(const TiXmlElement& objectParam);

/// The child `EnumStrings`: its items with a running index, and their count.
void AddEnumStrings(TiXmlElement& element, const QStringList& items);
QStringList ReadEnumStrings(const TiXmlElement& element);

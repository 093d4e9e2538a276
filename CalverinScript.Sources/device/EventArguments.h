#pragma once

#include <QScriptValue>

class MScriptParamList;
class QScriptEngine;

/// The values of an event as the arguments of its listener: bytes as a Buffer, records as plain objects, the object that raised
/// the event as what its factory gave. Values of kinds that are not in the table add nothing, so later ones move up.   [script]
QScriptValueList EventArguments(QScriptEngine& engine, const MScriptParamList& params);

#pragma once

#include <cstdint>
#include <string>

#include <QScriptValue>

#include "RequestedStack.h"

class MScriptParamList;
class MWSAData;
class QScriptEngine;

/// @file
/// What both sockets of scripts tell in the same words.

/// What `address()` gives: a plain object with port, family and address, in this order. Invalid without an engine, when it is not a
/// script that asks.   [script]
QScriptValue SocketAddressValue(QScriptEngine* engine, int port, const std::string& address);

/// The values of an "error".   [any]
MScriptParamList SocketErrorValues(MWSAData& socket, std::int32_t code);

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <QScriptValue>

class MScriptParamList;
class MWSAData;
class QScriptEngine;

/// @file
/// What both sockets of scripts tell in the same words.

/// What the thread of a socket is asked to take, in bytes; it gets at least what the system needs.
inline constexpr std::size_t kRequestedStackSize = 8193;

/// What `address()` gives: a plain object with port, family and address, in this order. Invalid without an engine, when it is not a
/// script that asks.   [script]
QScriptValue SocketAddressValue(QScriptEngine* engine, int port, const std::string& address);

/// The values of an "error".   [any]
MScriptParamList SocketErrorValues(MWSAData& socket, std::int32_t code);

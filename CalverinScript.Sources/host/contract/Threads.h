#pragma once

/// @file
/// The threads of the contract. Every operation of an interface ends its description with one of these words, in square
/// brackets; nowhere else is a thread described.
///
/// | word            | which thread |
/// |-----------------|--------------|
/// | host main       | the thread that loaded the module: module, definition, setup and window operations |
/// | any host thread | any thread of the host's, the main one included, but never a thread of the module |
/// | tick            | the module's one period thread: command watchdog and periodic service of all devices |
/// | command         | a device's command thread, from `Start` to `Stop`: runs its queued commands one by one |
/// | script          | a device's script thread, for the device's whole life: the engine and what a script calls |
/// | socket          | one for each network object of a script |
/// | http            | one for each HTTP object of a script |
/// | any             | any of the above |
///
/// A host never has to lock anything for the module's sake. In the other direction the module calls typed values,
/// execution contexts and the remote links from any of its threads, and expects the host to serialise those calls.

/// The words of the table, for code that checks them.
enum class ThreadWord { HostMain, AnyHostThread, Tick, Command, Script, Socket, Http, Any };

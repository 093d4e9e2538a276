#pragma once

#include <string>

/// What is being handled: "an exception of the type std::runtime_error (its text)". Only inside of a catch and of the
/// handler of exceptions that nobody catches.   [any]
std::string TextOfThrown();

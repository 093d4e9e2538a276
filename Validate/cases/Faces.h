#pragma once

#include <initializer_list>

#include "IMInterface.h"

/// Holds QueryInterface of an object to the contract: names are compared byte by byte, what is not offered clears the
/// pointer, and no argument may be null. @param names of faces that the object offers or may offer. @param what the
/// face that is asked, for findings.
void ExpectExactNames(IMInterface& object, std::initializer_list<const char*> names, const char* what);

#pragma once

/// The commit that the program was built from, shortened; "unknown" where the sources were no working copy.   [any]
const char* BuiltFrom();

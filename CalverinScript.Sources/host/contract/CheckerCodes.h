#pragma once

/// @file
/// The program beside the module that looks into a script without a device, for a host's own tools:
///
///     calverincheck [--json [--script]] [--strict] [--timeout MS] [--setting NAME=VALUE...] -- FILE
///
/// What it has found is on standard output, what went wrong otherwise on standard error.

constexpr const char* KXP_CHECKER_NAME = "calverincheck";

/// Its exit codes.
enum KXPCheckerCode : int {
    KXP_CHECKER_OK = 0,
    KXP_CHECKER_SCRIPT_FAILED = 1, ///< the script itself fails
    KXP_CHECKER_BAD_USE = 2,       ///< wrong arguments, a bad file, or an output that cannot be written
    KXP_CHECKER_NO_ANSWER = 3      ///< nothing came within the time
};

#pragma once

#include <stdexcept>
#include <string>

#include "ThrownText.h"

/// What is wrong with a module ends the case that finds it: what was found, and what is promised.
struct Finding : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A device's Release takes longer than it may.
struct SlowRelease : Finding {
    using Finding::Finding;
};

/// Makes a call of the module. What it throws becomes a finding. @param name the operation with its arguments.
template <typename Call>
auto CallModule(const std::string& name, const Call& call) {
    try {
        return call();
    } catch (const Finding&) { // of a host that was called from inside
        throw;
    } catch (...) {
        throw Finding(name + " throws " + TextOfThrown() + "; promised: nothing throws across the border");
    }
}

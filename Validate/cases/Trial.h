#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>

#include "Finding.h"

/// A case does not apply to this module, or has tested nothing. The text is the reason.
struct Skipped : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One run of one case: its module file, its dice, its size, and what it was doing last.   [host main]
class Trial {
public:
    /// @param level 1 to 10. @param descriptor where the steps are told; -1 for nowhere.
    Trial(std::string moduleFile, int level, std::uint64_t seed, int descriptor)
        : m_moduleFile(std::move(moduleFile))
        , m_level(level)
        , m_descriptor(descriptor)
        , m_dice(seed) {}

    const std::string& ModuleFile() const { return m_moduleFile; }

    /// A count that is the given one at level 10 and a quarter of it with each level less, but never less than the
    /// other.
    int Times(int atTen, int atLeast) const;
    /// A number from 0 to below the bound.
    std::uint32_t Roll(std::uint32_t bound) { return static_cast<std::uint32_t>(m_dice() % bound); }

    /// Says what comes next. When the process then crashes or hangs, the last one is what is told.
    void Step(const std::string& what) const;
    /// Something about the module that who reads the results should know, whether the case passes or not.
    void Note(const std::string& what) const;
    /// Ends the case with a finding unless it is so. @param found what is, with the operation and its arguments.
    /// @param promised what the headers say.
    static void Expect(bool isSo, const std::string& found, const std::string& promised) {
        if (!isSo)
            throw Finding(found + "; promised: " + promised);
    }
    /// @param call the operation with its arguments.
    static void ExpectCode(std::uint32_t code, std::uint32_t expected, const std::string& call) {
        Expect(code == expected, call + " answers " + std::to_string(code), std::to_string(expected));
    }
    /// A number of things that have to be there, or to be gone.
    static void ExpectCount(long count, long expected, const std::string& things) {
        Expect(count == expected, std::to_string(count) + " " + things, std::to_string(expected));
    }

private:
    const std::string m_moduleFile;
    const int m_level;
    const int m_descriptor;
    std::mt19937_64 m_dice;
};

/// How long a case waits for what has to come.
constexpr std::chrono::seconds kTrialWait(20);

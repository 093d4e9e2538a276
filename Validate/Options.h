#pragma once

#include <cstdint>
#include <string>

/// What the command line asks for.
struct Options {
    std::string moduleFile;
    std::string only; ///< empty for all cases
    int level = 3;
    std::uint64_t seed = 1;
    bool json = false;
    bool list = false;
    bool help = false;
};

/// Reads the words behind the program's name. @return what is wrong; empty when nothing is.
std::string ReadOptions(int count, char** words, Options& options);

std::string HelpText();

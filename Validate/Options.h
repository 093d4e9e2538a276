#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What the command line asks for.
struct Options {
    std::string moduleFile;
    std::vector<std::string> only; ///< the names of some cases; empty for all
    int level = 3;
    std::uint64_t seed = 1;
    bool json = false;
    bool list = false;
    bool help = false;
};

/// Reads the words behind the program's name. @return what is wrong; empty when nothing is.
std::string ReadOptions(int count, char** words, Options& options);

std::string HelpText();

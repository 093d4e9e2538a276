#pragma once

#include <map>
#include <string>

/// The scripts of the fake module: a few words for each way in which a device can behave.
///
/// Each line is one statement; empty lines and lines that begin with "#" count for nothing.
///
///     error TEXT             loading fails with that text and the command is held
///     hang                   loading never ends
///     function NAME WAY...   defines a function; WAY is one of those of FakeDevice
struct FakeScript {
    std::string error;
    bool hangs = false;
    std::map<std::string, std::string> functions; ///< name to way

    static FakeScript Parse(const std::string& text);

    /// The names, each followed by a line feed.
    std::string FunctionList() const;
};

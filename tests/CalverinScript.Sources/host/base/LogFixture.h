#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "Log.h"
#include "LogRecorder.h"
#include "ModuleFolder.h"
#include "PlainHost.h"

/// Whether a file is mapped into this process.
bool IsMapped(const std::string& path);

/// A module in a folder of its own, a host that says what it wants
/// of the log, and the logging library of the test's choice.
class LogFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// What the section "LOGSE" of the module's configuration file says.
    void GivenConfig(const std::string& lines) { folder.Write("kxpTest.cfg", "[LOGSE]\n" + lines); }
    void GivenLibrary(const char* file) { folder.Copy(file, "logsE.so"); }
    /// The host has a log, at a path of its own.
    void GivenHostLog(std::uint32_t levelBits = 0, bool enabled = true);
    bool Open() { return OpenLog(folder.Module(), "program", host.Root()); }
    /// What the recording library was told. Valid until the test's end.
    LogRecorder& Recorded();
    bool IsLibraryMapped() const { return IsMapped(folder.PathOf("logsE.so")); }

    ModuleFolder folder;
    plain::Host host;

private:
    DynamicLibrary m_recorder;
};

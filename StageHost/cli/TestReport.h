#pragma once

#include <QElapsedTimer>

#include "Options.h"
#include "TestRun.h"

namespace stagehost {

/// Tells how tests come out: text or TAP as they end, or one JSON text at the end, and a JUnit file beside
/// that.   [host main]
class TestReport {
public:
    TestReport(const Options& options, std::size_t count);

    /// A test is over, or was not played.
    void Add(const TestOutcome& outcome);

    /// Writes the JUnit file as far as the tests have come.
    MaybeFailure KeepJUnit() const;

    /// @return the exit code of all.
    int End(bool interrupted);

private:
    void PrintText(const TestOutcome& outcome) const;
    void PrintTap(const TestOutcome& outcome) const;
    int CountOf(TestOutcome::Standing standing) const;
    const Options& m_options;
    const std::size_t m_count;
    QElapsedTimer m_clock;
    std::vector<TestOutcome> m_outcomes; ///< in the order in which they ended
};

} // namespace stagehost

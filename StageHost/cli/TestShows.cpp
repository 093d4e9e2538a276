#include <algorithm>
#include <memory>

#include <QThread>

#include "Commands.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "Output.h"
#include "TestReport.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookAgain(1000); // a test that ends wakes the wait

/// Plays tests side by side, a few at a time.
class TestRunner {
public:
    TestRunner(const std::vector<TestShow>& tests, const Options& options, TestReport& report)
        : m_tests(tests)
        , m_options(options)
        , m_report(report)
        , m_most(static_cast<std::size_t>(options.jobs.value_or(std::max(1, QThread::idealThreadCount())))) {}

    /// Runs them, until all are over or the user wants no more.
    void Run() {
        while (StartMore() || !m_running.empty()) {
            MainWait::UntilInterrupted([this] { return FirstOver() != m_running.end(); }, kLookAgain);
            if (Interrupt::HasCome())
                EndAll();
            for (auto over = FirstOver(); over != m_running.end(); over = FirstOver()) {
                m_report.Add((*over)->Outcome());
                m_running.erase(over);
            }
        }
        for (; m_next < m_tests.size(); ++m_next) {
            TestOutcome notPlayed;
            notPlayed.file = m_tests[m_next].file;
            m_report.Add(notPlayed);
        }
    }

private:
    using Running = std::vector<std::unique_ptr<TestRun>>;

    bool StartMore() {
        while (m_next < m_tests.size() && m_running.size() < m_most && !Interrupt::HasCome())
            m_running.push_back(std::make_unique<TestRun>(m_tests[m_next++], m_options));
        return m_next < m_tests.size() && !Interrupt::HasCome();
    }

    void EndAll() {
        for (const auto& run : m_running)
            run->Interrupt();
        MainWait::Until([this] { return FirstOver() != m_running.end(); }, kLookAgain);
    }

    Running::iterator FirstOver() {
        return std::find_if(m_running.begin(), m_running.end(), [](const auto& run) { return run->IsOver(); });
    }

    const std::vector<TestShow>& m_tests;
    const Options& m_options;
    TestReport& m_report;
    const std::size_t m_most;
    std::size_t m_next = 0; ///< the first that has not been started
    Running m_running;
};

} // namespace

int TestShows(const Options& options) {
    std::vector<TestShow> tests;
    if (auto failure = FindTests(options.arguments, tests))
        return Fail(options.json, *failure);
    const Interrupt interrupt;
    TestReport report(options, tests.size());
    if (auto failure = report.KeepJUnit())
        return Fail(options.json, *failure);
    TestRunner(tests, options, report).Run();
    return report.End(Interrupt::HasCome());
}

} // namespace stagehost

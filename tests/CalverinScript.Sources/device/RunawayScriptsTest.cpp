#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

#include "Deadline.h"
#include "DeviceFixture.h"

namespace {

/// One way of a script never to come back.
struct RunawayKind {
    const char* name;
    const char* setUp; ///< runs before the test knows that the script is inside
    const char* loop;
    bool promptly; ///< ends within kPromptCpuMs of its release
};

/// Processor time that a script may take after its release. The machine's other work does not count.
constexpr double kPromptCpuMs = 1000;

constexpr RunawayKind kRunawayKinds[] = {
    {"ALoop", "", "for (;;) {}", true},
    {"ALoopOfCalls", "function empty() {}", "for (;;) empty();", true},
    {"RecursionThatIsCaught", "function f() { return f() + 1; }", "for (;;) { try { f(); } catch (e) {} }", false},
    {"AWalkRoundARing",
     "var a = {}, b = { m: a, n: a }; a.m = b; a.n = b; function walk(o) { for (var k in o) walk(o[k]); }",
     "for (;;) { try { walk(a); } catch (e) {} }", false},
    {"AGrowingText", "var s = '';", "for (;;) { s += '0123456789'; if (s.length > 1e7) s = ''; s.indexOf('x'); }",
     true},
    {"ADoublingText", "var s = 'x';", "for (;;) { s += s; if (s.length > 1e6) s = 'x'; s.toUpperCase(); }", true},
    {"RegularExpressions", "var text = new Array(31).join('a');", "for (;;) /(a+)+b/.test(text);", true},
    {"Allocation", "", "for (;;) new Array(1000).join('ab').split('b');", true},
    {"AStormOfTimers",
     SANITIZED ? "for (var i = 0; i < 2000; ++i) QCalverin.SetInterval(function() {}, 0);"
               : "for (var i = 0; i < 20000; ++i) QCalverin.SetInterval(function() {}, 0);",
     "", true},
    {"ASortWithAComparator", "var big = []; for (var i = 0; i < 1000; ++i) big.push(i);",
     "for (;;) big.sort(function(x, y) { return y - x; });", true},
    {"ALoopOverABuffer", "var buffer = new Buffer(1000);", "for (;;) for (var i = 0; i < 1000; ++i) buffer[i] = i;",
     true},
    {"ALoopOfXml", "", "for (;;) new XMLDocument().Parse('<a><b/></a>');", true},
    {"ALoopOfCallsToTheHost", "", "for (;;) QCalverin.GetValueAsString('x');", true},
    {"ASparseArrayIntoABuffer", "", "for (;;) new Buffer(new Array(300000000));", true},
    {"ASparseListOfBuffers", "var buffer = new Buffer(1);", "for (;;) buffer.concat(new Array(4000000000));", true},
    {"ALongListOfTexts", "", "for (;;) QCalverin.EnumStringToIndex(new Array(4000000000), 'x');", true},
    {"AJoinOfTenMillion", "", "return new Array(10000000).join('ab').length;", false},
};

class RunawayScripts : public DeviceFixture, public testing::WithParamInterface<RunawayKind> {
protected:
    static double CpuMs() {
        timespec now{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
    }
    /// Looks now and then, so that the test itself takes no time of the script's.
    static bool EndsByItself() {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(6 * kDeadlineMs);
        while (MCalverinScript_Device::SweepAbandoned() > 0) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    plain::Value inside{"inside"};
    plain::Context context;
};

TEST_P(RunawayScripts, EndWithTheirDevice) {
    const RunawayKind& kind = GetParam();
    TellWhenInside(inside);
    GivenScript("({ Run: function() { " + std::string(kind.setUp) + " inside(); " + kind.loop + " } })");
    auto params = plain::Params::ForFunction("Run", {});
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(inside.WaitFor("yes", 6 * kDeadlineMs));
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the engine has found its pace by then
    const double before = CpuMs();
    const auto clock = std::chrono::steady_clock::now();
    device->Release();
    device = nullptr;
    ASSERT_TRUE(EndsByItself());
    const double taken = CpuMs() - before;
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - clock;
    std::printf("%-40s %6.0f ms, of processor time %6.0f ms\n", kind.name, passed.count(), taken);
    if (kind.promptly) {
        EXPECT_LT(taken, kPromptCpuMs);
    }
    EXPECT_EQ(context.Ended(), 1);
}

INSTANTIATE_TEST_SUITE_P(Kinds, RunawayScripts, testing::ValuesIn(kRunawayKinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace

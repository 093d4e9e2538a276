#include "BufferMemory.h"

#include <fstream>
#include <limits>

#include <sys/resource.h>
#include <unistd.h>

#include "ByteArrayClass.h"
#include "ScriptFixture.h"

namespace {

class BufferMemory : public ScriptFixture {};

/// Lets the process grow by so many bytes and no more.
class SpareMemory {
public:
    explicit SpareMemory(long bytes) {
        getrlimit(RLIMIT_AS, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = static_cast<rlim_t>(UsedBytes() + bytes);
        setrlimit(RLIMIT_AS, &limit);
    }
    ~SpareMemory() { setrlimit(RLIMIT_AS, &m_before); }
    SpareMemory(const SpareMemory&) = delete;
    SpareMemory& operator=(const SpareMemory&) = delete;

private:
    static long UsedBytes() {
        std::ifstream statm("/proc/self/statm");
        long pages = 0;
        statm >> pages;
        return pages * sysconf(_SC_PAGESIZE);
    }

    rlimit m_before{};
};

TEST_F(BufferMemory, IsRefusedWithAnErrorThatNamesTheSize) {
    Run("var b = new Buffer('abc')");
    Check({{"a size", "new Buffer(2147483647)", "threw RangeError: Buffer: no memory for 2147483647 bytes"},
           {"one byte too many", "new Buffer(1073741825)", "threw RangeError: Buffer: no memory for 1073741825 bytes"},
           {"an index", "b[4294967294] = 1", "threw RangeError: Buffer: no memory for 4294967295 bytes"},
           {"a smaller index", "b[2000000000] = 1", "threw RangeError: Buffer: no memory for 2000000001 bytes"},
           {"a length", "b.length = 2147483647", "threw RangeError: Buffer: no memory for 2147483647 bytes"},
           {"an array", "var a = []; a.length = 4294967295; new Buffer(a)",
            "threw RangeError: Buffer: no memory for 4294967295 bytes"},
           {"the buffer is as it was", "b.length + b.toString()", "3abc"},
           {"a script can catch it",
            "try { new Buffer(2147483647) } catch (e) { 'caught ' + (e instanceof RangeError) }", "caught true"}});
}

TEST_F(BufferMemory, IsRefusedForTextsThatAreTooLong) {
    Check({{"hex", "var big = new Buffer(200000000); big.toString('hex')",
            "threw RangeError: Buffer: no memory for 400000004 bytes"},
           {"a stretch of it", "big.toString('hex', 0, 3)", "000000"},
           {"joined beyond the limit", "big.concat([big, big, big, big, big, big])",
            "threw RangeError: Buffer: no memory for 1200000000 bytes"},
           {"joined, the first bytes alone", "big.concat([big, big, big, big, big, big], 5).length", "5"}});
}

/// Each loop drops 1.2 gigabytes.
TEST_F(BufferMemory, IsReportedSoThatTheCollectorSeesLargeBuffers) {
    constexpr long kAllowance = 400000;
    for (const char* loop : {"for (var i = 0; i < 300; ++i) new Buffer(4000000)",
                             "for (i = 0; i < 300; ++i) { var b = new Buffer(1); b.length = 2000000; b[3999999] = 1 }",
                             "for (i = 0; i < 300; ++i) b.concat([b, new Buffer(1)])"}) {
        const long before = ResidentKilobytes();
        Run(loop);
        EXPECT_LT(ResidentKilobytes() - before, kAllowance) << loop;
    }
}

TEST_F(BufferMemory, TurnsAFailedAllocationIntoTheError) {
    const QScriptValue function = engine.newFunction([](QScriptContext* context, QScriptEngine*) {
        return WithMemoryFor(context, 42, []() -> QScriptValue { throw std::bad_alloc(); });
    });
    engine.globalObject().setProperty(QStringLiteral("fail"), function);
    EXPECT_EQ(Run("fail()"), "threw RangeError: Buffer: no memory for 42 bytes");
}

TEST_F(BufferMemory, ThatIsMissingForACopyOfSharedBytesIsRefused) {
    if (MEMORY_ALLOWANCE_KB > 10000)
        GTEST_SKIP() << "sanitizers end a process that has no memory";
    Run("var a = new Buffer(400000000), b = new Buffer(a)");
    const SpareMemory limit(200 << 20);
    const char* refused = "threw RangeError: Buffer: no memory for 400000000 bytes";
    Check({{"a byte", "b[0] = 1", refused},
           {"left", "a.left(399999999)", refused},
           {"middle", "a.middle(1)", refused},
           {"right", "a.right(399999999)", refused},
           {"fill", "b.fill(1)", refused},
           {"write", "b.write('x')", refused},
           {"copy", "new Buffer('x').copy(b)", refused},
           {"the bytes are as they were", "b[0] + ' ' + b.length + ' ' + a.length", "0 400000000 400000000"}});
}

TEST_F(BufferMemory, GivesWhatTheWorkGives) {
    const QScriptValue function = engine.newFunction([](QScriptContext* context, QScriptEngine*) {
        return WithMemoryFor(context, kMaxBufferBytes, [] { return QScriptValue(7); });
    });
    engine.globalObject().setProperty(QStringLiteral("work"), function);
    EXPECT_EQ(Run("work()"), "7");
}

TEST_F(BufferMemory, KnowsWhichTextsAreTooLong) {
    EXPECT_TRUE(IsTextPossible(0));
    EXPECT_TRUE(IsTextPossible(10000000));
    EXPECT_FALSE(IsTextPossible(kMaxBufferText + 1));
    EXPECT_FALSE(IsTextPossible(std::numeric_limits<qint64>::max()));
}

} // namespace

#include "DeviceFixture.h"

#include <filesystem>
#include <fstream>

#include <QElapsedTimer>

#include "Deadline.h"
#include "MScriptThread.h"
#include "ScriptAnalysis.h"

namespace {

/// A release grants a script 50 ms and anything else as much; the rest is for a busy machine.
constexpr qint64 kPromptMs = 2000;

class EndOfDevice : public DeviceFixture {
protected:
    /// Sends a call whose function never returns and waits until it runs.
    void WhenItHangs(const std::string& body) {
        TellWhenInside(inside);
        GivenScript("({ Hang: function() { inside(); " + body + " } })");
        hanging = plain::Params::ForFunction("Hang", {});
        ASSERT_EQ(Send(3, *hanging, &context), KXP_OK);
        ASSERT_TRUE(inside.WaitFor("yes"));
    }
    /// Releases without a stop, which would wait for the script. @return milliseconds.
    qint64 Release() {
        QElapsedTimer clock;
        clock.start();
        device->Release();
        device = nullptr;
        return clock.elapsed();
    }

    std::unique_ptr<plain::Params> hanging;
    plain::Context context;
    plain::Value inside{"inside"};
};

TEST_F(EndOfDevice, AScriptThatLoopsForeverIsEndedWithItAndItsRequestToo) {
    WhenItHangs("while (true) {}");
    EXPECT_LT(Release(), kPromptMs);
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    EXPECT_EQ(module.removed, 1);
}

/// Does something when it is asked for a parameter.
class AskedParams : public plain::Params {
public:
    AskedParams(const std::vector<std::string>& texts, std::function<void()> isAsked)
        : plain::Params(texts)
        , m_isAsked(std::move(isAsked)) {}
    virtual ~AskedParams() = default;
    IObjectParam* GetParam(std::uint32_t index) override {
        if (const auto work = std::exchange(m_isAsked, nullptr))
            work();
        return plain::Params::GetParam(index);
    }

private:
    std::function<void()> m_isAsked;
};

TEST_F(EndOfDevice, MayComeWhileTheHostIsAskedForACommandsParameters) {
    for (const int command : {1, 2, 3}) {
        GivenScript("({ Go: function() {} })");
        AskedParams params({"Go", "", "", "", "", "", "", "", "", ""}, [this] { Release(); });
        plain::Context unused;
        MCalverinScript_Device* const asked = device;
        EXPECT_EQ(asked->ExecuteCommand(command, &params, &unused), KXPCode{KXP_BAD_COMMAND}) << command;
        EXPECT_EQ(unused.Begun(), unused.Ended());
        EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
        MakeDevice();
    }
}

TEST_F(EndOfDevice, AScriptThatCatchesEverythingInItsLoopIsEndedToo) {
    WhenItHangs("while (true) { try { while (true) {} } catch (e) {} }");
    EXPECT_LT(Release(), kPromptMs);
}

TEST_F(EndOfDevice, ALoopAtTheTopLevelLetsStartReturn) {
    TellWhenInside(inside);
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("inside(); while (true) {}"));
    std::thread starter([this] { device->Start(); });
    ASSERT_TRUE(inside.WaitFor("yes"));
    device->Release();
    device = nullptr;
    starter.join();
}

TEST_F(EndOfDevice, ASetupThatLoadsAFileDoesNotWaitForAHungScript) {
    const std::string path = WriteFile("driver.js", "({ Play: function() {} })");
    WhenItHangs("while (true) {}");
    EXPECT_TRUE(device->LoadScriptCommand(path.c_str(), true));
    EXPECT_EQ(device->GetAnalysis().GetSet().scriptText, QStringLiteral("({ Play: function() {} })"));
    EXPECT_FALSE(device->LoadScriptCommand("/no/such/file.js", true));
    Release();
}

TEST_F(EndOfDevice, AStopThatWaitsForAHungCommandReturnsWhenTheDeviceIsReleased) {
    WhenItHangs("while (true) {}");
    std::atomic<bool> stopped{false};
    std::thread stopper([&] {
        device->Stop();
        stopped = true;
    });
    EXPECT_TRUE(Eventually([&] { return device->IsRunning() != KXP_OK; }));
    EXPECT_FALSE(stopped);
    device->Release();
    device = nullptr;
    stopper.join();
    EXPECT_TRUE(stopped);
}

TEST_F(EndOfDevice, AScriptThatCannotBeAbortedIsLeftAloneAndSweptWhenItEnds) {
    WhenItHangs("return new Array(10000000).join('ab').length");
    MScriptThread* thread = device->GetScriptThread();
    EXPECT_LT(Release(), kPromptMs);
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_EQ(MCalverinScript_Device::SweepAbandoned(), 1u);
    ASSERT_TRUE(thread->wait(60000));
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
}

TEST_F(EndOfDevice, WithTasksStillQueuedBehindAHungScriptTheyAreNotRun) {
    WhenItHangs("while (true) {}");
    for (int i = 0; i < 100; ++i)
        device->PostPropertyChange("a", "b", "c", false);
    EXPECT_LT(Release(), kPromptMs);
}

TEST_F(EndOfDevice, AThousandStartsAndStopsLeaveNothingBehind) {
    const auto count = [](const char* key) {
        std::ifstream status("/proc/self/status");
        std::string word;
        long value = 0;
        while (status >> word)
            if (word == key)
                status >> value;
        return value;
    };
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const auto cycles = [this](int n) {
        for (int i = 0; i < n; ++i) {
            GivenScript("({ F: function() { return 1 }, _mStart: function() {}, _mStop: function() {} })");
            ASSERT_EQ(Call("F"), "1");
            device->Stop();
        }
    };
    cycles(200);
    const long threads = count("Threads:");
    const long memory = count("VmRSS:");
    const auto open = descriptors();
    cycles(1000);
    EXPECT_TRUE(Eventually([&] { return count("Threads:") <= threads; })) << "a joined thread counts for a moment more";
    EXPECT_LE(descriptors(), open);
    EXPECT_LT(count("VmRSS:"), memory + MEMORY_ALLOWANCE_KB) << "kB; before: " << memory;
}

} // namespace

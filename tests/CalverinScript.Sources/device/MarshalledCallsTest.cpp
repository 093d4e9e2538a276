#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <thread>

#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include "Deadline.h"
#include "DeviceFixture.h"
#include "DeviceTexts.h"
#include "HostText.h"

namespace {

/// A text whose memory is spoilt the moment its owner lets go of it.
class SpoiltText {
public:
    explicit SpoiltText(const std::string& text)
        : m_text(text.c_str(), text.c_str() + text.size() + 1) {}
    ~SpoiltText() { std::fill(m_text.begin(), m_text.end() - 1, '#'); }
    SpoiltText(const SpoiltText&) = delete;
    SpoiltText& operator=(const SpoiltText&) = delete;
    const char* Get() const { return m_text.data(); }

private:
    std::vector<char> m_text;
};

/// Several threads that wait for the script thread at the same time.
class MarshalledCalls : public DeviceFixture {
protected:
    /// Keeps the script thread from its tasks until it is let go.
    void HoldScriptThread() {
        std::promise<void> held;
        m_release = std::promise<void>();
        ASSERT_TRUE(device->PostTask([&held, go = m_release.get_future().share()] {
            held.set_value();
            go.wait();
        }));
        ASSERT_EQ(held.get_future().wait_for(std::chrono::milliseconds(kDeadlineMs)), std::future_status::ready);
    }
    void LetScriptThreadGo() { m_release.set_value(); }
    template <typename Work>
    auto OnAThread(Work work) {
        return std::async(std::launch::async, std::move(work));
    }

private:
    std::promise<void> m_release;
};

constexpr int kRounds = 200;

TEST_F(MarshalledCalls, TwoLoadsAtOnceReadTheirOwnFilesAndGiveTheirOwnResults) {
    GivenScript("");
    const std::string good = WriteFile("good.js", "({})");
    const std::string bad = WriteFile("bad.js", "({");
    const auto load = [this](const std::string& path) {
        return OnAThread([this, path] {
            const SpoiltText name(path);
            return device->LoadScriptCommand(name.Get(), false);
        });
    };
    for (int round = 0; round < kRounds; ++round) {
        HoldScriptThread();
        std::array<std::future<bool>, 4> results = {load(good), load(bad), load(good), load(bad)};
        LetScriptThreadGo();
        for (std::size_t i = 0; i < results.size(); ++i)
            ASSERT_EQ(results[i].get(), i % 2 == 0) << "round " << round << ", load " << i;
    }
    const std::vector<std::string> errors = variables.error.History();
    EXPECT_EQ(std::count(errors.begin(), errors.end(), DeviceText::kUnreadableFile), 0);
}

TEST_F(MarshalledCalls, ACommandThatLoadsAFileWhileStartLoadsOneReadsItsOwn) {
    const std::string first = WriteFile("first.js", "({ First: function() {} })");
    const std::string second = WriteFile("second.js", "({ Second: function() {} })");
    device->GetStoredSetup().SetScript(QString::fromStdString(first), QString());
    for (int round = 0; round < kRounds; ++round) {
        std::thread sender([&] {
            plain::Params params({second});
            EXPECT_EQ(Send(0, params), KXP_OK);
        });
        device->Start();
        sender.join();
        ASSERT_TRUE(NothingIsPending()) << round;
        device->Stop();
    }
    const std::vector<std::string> errors = variables.error.History();
    EXPECT_EQ(std::count(errors.begin(), errors.end(), DeviceText::kUnreadableFile), 0);
}

TEST_F(MarshalledCalls, CallsOfFunctionsAtOnceGiveTheirOwnResults) {
    GivenScript("({ Twice: function(a) { return a + a } })");
    const auto call = [this](const std::string& text) {
        return OnAThread([this, text] {
            plain::Value result("Result");
            const SpoiltText name("Twice");
            const SpoiltText argument(text);
            const char* texts[8] = {argument.Get()};
            const bool done = device->ExecuteScriptFunction(name.Get(), &result, texts);
            return (done ? "" : "failed ") + result.Text();
        });
    };
    for (int round = 0; round < kRounds; ++round) {
        HoldScriptThread();
        std::array<std::future<std::string>, 3> results = {call("a"), call("b"), call("c")};
        LetScriptThreadGo();
        ASSERT_EQ(results[0].get() + results[1].get() + results[2].get(), "aabbcc") << "round " << round;
    }
}

TEST_F(MarshalledCalls, ACallOnTheScriptThreadRunsInPlaceWhileAnotherWaits) {
    GivenScript("({ Name: function(a) { return a } })");
    HoldScriptThread();
    auto other = OnAThread([this] {
        plain::Value result("Result");
        const char* texts[8] = {"other"};
        device->ExecuteScriptFunction("Name", &result, texts);
        return result.Text();
    });
    LetScriptThreadGo();
    plain::Value own("Result");
    OnScriptThread([&] {
        const char* texts[8] = {"own"};
        EXPECT_TRUE(device->ExecuteScriptFunction("Name", &own, texts));
        EXPECT_EQ(own.Text(), "own");
    });
    EXPECT_EQ(other.get(), "other");
}

TEST_F(MarshalledCalls, AStopFunctionThatTakesTooLongGivesItsOwnResultAndNotThatOfTheOneBefore) {
    GivenScript("({ Quick: function() {}, _mStop: function() {} })");
    const auto inPlace = [this] { EXPECT_TRUE(device->ExecuteStopFunction()) << "no limit counts here"; };
    OnScriptThread(inPlace);
    HoldScriptThread();
    EXPECT_FALSE(device->ExecuteStopFunction());
    LetScriptThreadGo();
    EXPECT_EQ(Call("Quick"), "") << "the late call does no harm";
    OnScriptThread(inPlace);
}

TEST_F(MarshalledCalls, AWaiterOnTheMainThreadServesItsEventsAndGetsItsOwnResult) {
    GivenScript("");
    HoldScriptThread();
    auto other = OnAThread([this] { return device->EvaluateScriptCommand(QStringLiteral("({"), false); });
    bool served = false;
    QTimer::singleShot(0, [&] {
        served = true;
        LetScriptThreadGo();
    });
    EXPECT_TRUE(device->EvaluateScriptCommand(QStringLiteral("({})"), false));
    EXPECT_TRUE(served);
    EXPECT_FALSE(other.get());
}

/// A value that takes long to write and tells while it is written.
class SlowValue : public plain::Value {
public:
    SlowValue()
        : plain::Value("Result") {}
    virtual ~SlowValue() = default;
    void SetValueFromString(const char* text, std::uint32_t a, std::uint32_t b) override {
        entered.set_value();
        go.get_future().wait();
        plain::Value::SetValueFromString(text, a, b);
        over = true;
    }
    std::promise<void> entered;
    std::promise<void> go;
    std::atomic<bool> over{false};
};

/// A request whose end tells whether its result was being written at that moment.
class EndBehindTheResult : public plain::Context {
public:
    explicit EndBehindTheResult(SlowValue& result)
        : m_result(result) {}
    virtual ~EndBehindTheResult() = default;
    KXPCode End() override {
        wasOver = m_result.over.load();
        return plain::Context::End();
    }
    bool wasOver = false;

private:
    SlowValue& m_result;
};

TEST_F(MarshalledCalls, ARequestEndsBehindTheWriteOfItsResultAlsoWhenTheDeviceIsReleasedMeanwhile) {
    GivenScript("({ F: function() { return 'text' } })");
    SlowValue result;
    EndBehindTheResult context(result);
    auto params = plain::Params::ForFunction("F", {});
    params->At(1).SetBound(&result);
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_EQ(result.entered.get_future().wait_for(std::chrono::milliseconds(kDeadlineMs)), std::future_status::ready);
    auto released = OnAThread([this] {
        device->Release();
        device = nullptr;
    });
    // What a release grants the script is over long before; a request that ends too early ends now.
    EXPECT_FALSE(context.WaitForEnd(300));
    result.go.set_value();
    released.get();
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_TRUE(context.wasOver);
    EXPECT_EQ(result.Text(), "text");
    Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; });
}

} // namespace

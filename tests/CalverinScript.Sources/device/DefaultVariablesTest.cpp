#include "DefaultVariables.h"

#include <atomic>
#include <future>

#include <gtest/gtest.h>

#include "PlainHost.h"

namespace {

constexpr std::chrono::milliseconds kDeadline(kDeadlineMs);
using Texts = std::vector<std::string>;

class DefaultValues : public testing::Test {
protected:
    void Bind() {
        defaults.Bind([this](const char* name) { return host.GetVariable(name); });
    }
    void Error(const char* text) { defaults.SetText(DefaultVariable::Error, QString::fromLatin1(text)); }

    plain::Variables host;
    DefaultVariables defaults;
};

TEST_F(DefaultValues, TakeTextsAndTheStatusOnceTheyAreBound) {
    Error("too early");
    defaults.SetStatus(DeviceStatus::Executing);
    Bind();
    EXPECT_TRUE(host.error.History().empty());
    defaults.SetText(DefaultVariable::ScriptFileName, QStringLiteral("f"));
    defaults.SetText(DefaultVariable::ScriptText, QStringLiteral("t"));
    defaults.SetText(DefaultVariable::Functions, QStringLiteral("l"));
    Error("e");
    defaults.SetStatus(DeviceStatus::Loading);
    EXPECT_EQ(host.fileName.Text() + host.scriptText.Text() + host.functions.Text() + host.error.Text(), "ftle");
    EXPECT_EQ(host.status.Plain().Text(), "1");
}

TEST_F(DefaultValues, ThatTheHostHasNotGotAreLeftOut) {
    defaults.Bind([](const char*) { return nullptr; });
    Error("nowhere");
    defaults.SetStatus(DeviceStatus::Executing);
    EXPECT_TRUE(host.error.History().empty());
}

TEST_F(DefaultValues, WithAPlainStatusTakeItsIndexAsANumber) {
    plain::Value status("Status", KXP_INTEGER_DATA);
    defaults.Bind([&](const char* name) -> IData* { return std::string(name) == "Status" ? &status : nullptr; });
    defaults.SetStatus(DeviceStatus::Executing);
    EXPECT_EQ(status.Text(), "2");
}

TEST_F(DefaultValues, GetTheLastTextOfEachThatCameWhileTheHostReplacedThem) {
    Bind();
    defaults.Unbind();
    Error("first");
    Error("last");
    defaults.SetStatus(DeviceStatus::Executing);
    EXPECT_TRUE(host.error.History().empty());
    plain::Variables fresh;
    defaults.Bind([&](const char* name) { return fresh.GetVariable(name); });
    EXPECT_EQ(fresh.error.History(), Texts{"last"});
    EXPECT_EQ(fresh.status.Plain().Text(), "2");
    Error("later");
    EXPECT_EQ(fresh.error.Text(), "later");
    EXPECT_TRUE(host.error.History().empty());
}

/// A value in which a writer stays until it is told to leave.
class SlowText : public plain::Value {
public:
    SlowText()
        : plain::Value("Error") {}
    void SetValueFromString(const char* text, std::uint32_t, std::uint32_t) override {
        entered.set_value();
        leave.get_future().wait_for(kDeadline);
        plain::Value::SetValueFromString(text, 0, 0);
        left = true;
    }
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> left{false};
};

class SlowValues : public DefaultValues {
protected:
    void WhenAWriterIsInside() {
        defaults.Bind([this](const char* name) -> IData* { return std::string(name) == "Error" ? &slow : nullptr; });
        writing = std::async(std::launch::async, [this] { Error("slow"); });
        slow.entered.get_future().wait();
    }
    SlowText slow;
    std::future<void> writing;
};

TEST_F(SlowValues, AreLeftBeforeTheHostDropsThem) {
    WhenAWriterIsInside();
    auto unbinding = std::async(std::launch::async, [this] {
        defaults.Unbind();
        return slow.left.load();
    });
    EXPECT_EQ(unbinding.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    slow.leave.set_value();
    EXPECT_TRUE(unbinding.get());
    writing.wait();
}

TEST_F(SlowValues, AreNotWaitedForForEver) {
    WhenAWriterIsInside();
    defaults.Unbind();
    EXPECT_FALSE(slow.left) << "the host may wait for us";
    slow.leave.set_value();
    writing.wait();
}

TEST_F(DefaultValues, AreNotFoundByAStartWhileTheHostReplacesThem) {
    const auto find = [this](const char* name) { return host.GetVariable(name); };
    defaults.Unbind();
    defaults.BindUnlessBound(find);
    Error("kept");
    EXPECT_TRUE(host.error.History().empty());
    Bind();
    EXPECT_EQ(host.error.Text(), "kept");
    int asked = 0;
    defaults.BindUnlessBound([&](const char*) {
        ++asked;
        return nullptr;
    });
    EXPECT_EQ(asked, 0) << "they are bound";
}

TEST_F(DefaultValues, AreFoundByTheFirstStart) {
    defaults.BindUnlessBound([this](const char* name) { return host.GetVariable(name); });
    Error("e");
    EXPECT_EQ(host.error.Text(), "e");
}

TEST_F(DefaultValues, OfWhatAStartHasFoundNothingCountsOnceTheHostHasReplacedThem) {
    defaults.BindUnlessBound([this](const char* name) {
        defaults.Unbind();
        return host.GetVariable(name);
    });
    Error("kept");
    EXPECT_TRUE(host.error.History().empty());
}

TEST_F(DefaultValues, AreNotBoundToWhatAnOuterReplacementIsAboutToDrop) {
    plain::Variables dropped;
    {
        const DefaultVariables::Replacement outer(defaults);
        { const DefaultVariables::Replacement inner(defaults); }
        defaults.Bind([&](const char* name) { return dropped.GetVariable(name); });
        Error("kept");
    }
    EXPECT_TRUE(dropped.error.History().empty());
    Bind();
    EXPECT_EQ(host.error.Text(), "kept");
}

TEST_F(DefaultValues, ThatAreFoundWhileTheDeviceEndsAreNotTouched) {
    constexpr std::uintptr_t kGone = 8; // no memory is there
    int asked = 0;
    defaults.Bind([&](const char*) {
        ++asked;
        defaults.Forget();
        return reinterpret_cast<IData*>(kGone);
    });
    EXPECT_EQ(asked, 1);
}

TEST_F(DefaultValues, AreNeverTouchedAgainOnceTheyAreForgotten) {
    Bind();
    defaults.Forget();
    Error("e");
    defaults.Unbind();
    Error("e");
    Bind();
    Error("e");
    defaults.SetStatus(DeviceStatus::Executing);
    EXPECT_TRUE(host.error.History().empty());
    EXPECT_EQ(host.status.Plain().Text(), "0");
}

TEST_F(DefaultValues, OfManyWritersAndReplacementsTouchLivingValuesAlone) {
    std::atomic<bool> over{false};
    auto writing = std::async(std::launch::async, [&] {
        while (!over)
            Error("e");
    });
    for (int i = 0; i < 300; ++i) {
        auto values = std::make_unique<plain::Variables>();
        defaults.Bind([&](const char* name) { return values->GetVariable(name); });
        EXPECT_TRUE(values->error.WaitFor("e"));
        defaults.Unbind();
    }
    over = true;
    writing.wait();
}

} // namespace

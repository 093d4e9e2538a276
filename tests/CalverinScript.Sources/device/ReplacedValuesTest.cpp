#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <vector>

#include "DeviceFixture.h"
#include "ScriptWorld.h"
#include "TypedValue.h"

namespace {

using namespace std::chrono_literals;

/// A value that notes who still touches it when the host has dropped it.
class MortalValue : public TypedValue {
public:
    MortalValue(const std::string& name, std::uint32_t type, std::atomic<int>& touches)
        : TypedValue(name, type, "0")
        , m_touches(touches) {}

    std::atomic<bool> gone{false};

    KXPCode QueryInterface(const char* name, void** out) override {
        return Touched(), TypedValue::QueryInterface(name, out);
    }
    const char* GetName() override { return Touched(), TypedValue::GetName(); }
    std::uint32_t GetInstanceID() override { return Touched(), TypedValue::GetInstanceID(); }
    std::int32_t GetIntValue() override { return Touched(), TypedValue::GetIntValue(); }
    void SetIntValue(std::int32_t value, std::uint32_t a, std::uint32_t b) override {
        Touched();
        TypedValue::SetIntValue(value, a, b);
    }
    char* GetValueAsString() override { return Touched(), TypedValue::GetValueAsString(); }
    void SetValueFromString(const char* text, std::uint32_t a, std::uint32_t b) override {
        Touched();
        TypedValue::SetValueFromString(text, a, b);
    }
    std::uint32_t GetDataType() override { return Touched(), TypedValue::GetDataType(); }

private:
    void Touched() {
        if (gone)
            ++m_touches;
    }
    std::atomic<int>& m_touches;
};

/// A host that makes every value of a device anew with each definition, and takes its time over it.
class MortalVariables : public plain::Variables, public IVariableManager {
public:
    KXPCode QueryInterface(const char* name, void** out) override {
        return plain::Variables::QueryInterface(name, out);
    }
    KXPCode Release() override { return KXP_OK; }
    IData* GetVariable(const char* name) override {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto found = m_values.find(name);
        return found != m_values.end() ? found->second : nullptr;
    }
    KXPCode Reserved1(void*) override { return KXP_OK; }
    IData* FindVariable(const char* name) override {
        const std::string text = name;
        if (text == "Go")
            return &go;
        return text.rfind("Desk.", 0) == 0 ? GetVariable(text.c_str() + 5) : nullptr;
    }
    std::uint32_t SetDefinition(const char* xml) override {
        definition = xml;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            for (const auto& [name, value] : m_values)
                value->gone = true;
            m_values.clear();
        }
        std::this_thread::sleep_for(5ms); // how long this host takes
        if (meanwhile)
            meanwhile();
        const std::lock_guard<std::mutex> guard(m_lock);
        for (const char* name : {"Status", "Error", "CurrentScriptFileName", "CurrentScriptText", "ScriptFunctions"})
            Make(name, KXP_STRING_DATA);
        Make("Level", KXP_INTEGER_DATA);
        return 1;
    }
    MortalValue& At(const char* name) {
        const std::lock_guard<std::mutex> guard(m_lock);
        return *m_values.at(name);
    }

    std::atomic<int> touches{0};
    std::function<void()> meanwhile; ///< what happens while the host takes a definition
    plain::Value go{"Go"};

private:
    void Make(const std::string& name, std::uint32_t type) {
        m_all.push_back(std::make_unique<MortalValue>("Desk." + name, type, touches));
        m_values[name] = m_all.back().get();
    }

    std::mutex m_lock;
    std::map<std::string, MortalValue*> m_values;
    std::vector<std::unique_ptr<MortalValue>> m_all; ///< the gone ones too, so that a touch is seen and does no harm
};

class ReplacedValues : public DeviceFixture {
protected:
    void SetUp() override {
        host.variableManager = &values;
        MakeDevice();
        device->SetDeviceVariables(&values);
        module.definition = "<Device Name='D'><Variables/><Commands/></Device>";
    }
    void TearDown() override {
        over = true;
        for (std::thread& thread : threads)
            thread.join();
        DeviceFixture::TearDown();
    }
    static std::string SetupOf(const std::string& script) {
        return "<DeviceData Version='1' Name='Desk'><Setup><Monitors>"
               "<Monitor Name='Level' Type='IntegerData' Value='0'/></Monitors><Script><![CDATA[" +
               script + "]]></Script></Setup></DeviceData>";
    }
    void Repeat(std::function<void()> work) {
        threads.emplace_back([this, work = std::move(work)] {
            while (!over)
                work();
        });
    }

    MortalVariables values;
    std::atomic<bool> over{false};
    std::vector<std::thread> threads;
};

constexpr int kSetups = 40;

TEST_F(ReplacedValues, OfARunningDeviceAreNotTouchedAfterTheHostHasDroppedThem) {
    const std::string setup =
        SetupOf("({ Device: { Level: 0 }, Get: function() { return this.Device.Level },"
                "   Tick: function() { this.Device.Level += 1;"
                "     QCalverin.SetValue('Desk.Level', QCalverin.GetValueAsString('Desk.Level')) },"
                "   Fail: function() { throw new Error('e') } })");
    ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    device->Start();
    OnScriptThread(
        [&] { device->SlotSetInterval(device->GetWorld().GetSet().global.property(QStringLiteral("Tick")), 0); });
    Repeat([&] {
        auto params = plain::Params::ForFunction("Fail", {});
        plain::Context context;
        if (Send(3, *params, &context) == KXP_OK)
            context.WaitForEnd();
    });
    Repeat([&] {
        plain::Params params({"x"});
        Send(77, params); // "Command not found" goes to Error on the host's own thread
    });
    for (int i = 0; i < kSetups; ++i)
        ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    EXPECT_EQ(values.touches, 0);
    EXPECT_TRUE(Eventually([&] { return std::stoi(values.At("Level").Text()) > 0; })) << "and the script goes on";
}

TEST_F(ReplacedValues, AreNotTouchedByAScriptThatIsLoadedMeanwhile) {
    const std::string script = "({ Device: { Level: 0 }, Calverin: { Desk: { Level: 0 } }, f: function() {} })";
    ASSERT_EQ(device->SetSetup(SetupOf(script).c_str()), KXP_OK);
    device->Start();
    Repeat([&] { device->EvaluateScriptCommand(QString::fromStdString(script), false); });
    for (int i = 0; i < kSetups; ++i)
        ASSERT_EQ(device->SetSetup(SetupOf(script).c_str()), KXP_OK);
    EXPECT_EQ(values.touches, 0);
}

TEST_F(ReplacedValues, ShowWhatWasWrittenWhileTheyWereReplaced) {
    ASSERT_EQ(device->SetSetup(SetupOf("({})").c_str()), KXP_OK);
    device->Start();
    values.meanwhile = [this] {
        std::thread([this] { device->ReportError(QStringLiteral("written"), false); }).join();
        device->ReportError(QStringLiteral("and by the host's thread"), false);
    };
    ASSERT_EQ(device->SetSetup(SetupOf("({})").c_str()), KXP_OK);
    EXPECT_EQ(values.At("Error").History(), std::vector<std::string>{"and by the host's thread"});
    EXPECT_EQ(values.touches, 0);
}

TEST_F(ReplacedValues, DoNotHoldUpAHostThatStopsAndStartsTheDeviceInside) {
    const std::string setup = SetupOf("({ Device: { Level: 0 }, _mStart: function() { this.Device.Level = 1 },"
                                      "   _mStop: function() { this.Device.Level = 2 } })");
    ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    device->Start();
    std::chrono::steady_clock::duration took{};
    values.meanwhile = [&] {
        const auto begin = std::chrono::steady_clock::now();
        device->Stop();
        device->Start();
        took = std::chrono::steady_clock::now() - begin;
    };
    ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    EXPECT_LT(took, VisitGate::kVisitWait) << "the script waits for the host, which waits for the script";
    EXPECT_EQ(values.touches, 0);
    EXPECT_EQ(device->IsRunning(), KXP_OK);
}

TEST_F(ReplacedValues, AreNotTouchedByAnObjectOfAScriptThatTakesItsTimeToBecomeANumber) {
    ASSERT_EQ(device->SetSetup(SetupOf("({ Device: { Level: 0 }, Slow: function() { var me = this;"
                                       "   this.Device.Level = { valueOf: function() { inside();"
                                       "     while (QCalverin.GetValueAsString('Go') != 'yes') {} return 7 } } } })")
                                   .c_str()),
              KXP_OK);
    plain::Value inside("inside");
    TellWhenInside(inside);
    device->Start();
    auto params = plain::Params::ForFunction("Slow", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(inside.WaitFor("yes"));
    ASSERT_EQ(device->SetSetup(SetupOf("({ Device: { Level: 0 } })").c_str()), KXP_OK);
    values.go.SetValueFromString("yes", 0, 0);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(values.touches, 0);
    EXPECT_EQ(values.At("Level").Text(), "7");
}

} // namespace

#include <future>

#include "EnumHelpers.h"
#include "IObjectParams.h"
#include "ScanFixture.h"

namespace {

class Accessors : public ScanFixture {
protected:
    /// Binds `Calverin.X` to a variable of that type.
    TypedValue& GivenBound(std::uint32_t type, const std::string& text = "") {
        TypedValue& value = GivenHostVariable("X", type, text);
        Run("({ Calverin: { X: 0 } })");
        return value;
    }
    std::string Read() { return Evaluate("typeof published.Calverin.X + ' ' + published.Calverin.X"); }
    /// @return what the host was given, "-" for nothing.
    std::string Write(TypedValue& value, const std::string& script) {
        const std::size_t before = value.History().size();
        Evaluate("published.Calverin.X = " + script);
        return value.History().size() > before ? value.History().back() : "-";
    }
};

TEST_F(Accessors, ReadEachTypeInItsScriptForm) {
    GivenBound(KXP_INTEGER_DATA, "5");
    EXPECT_EQ(Read(), "number 5");
    GivenBound(KXP_ENUM_DATA, "2");
    EXPECT_EQ(Read(), "number 2");
    GivenBound(KXP_REAL_DATA, "1.5");
    EXPECT_EQ(Read(), "number 1.5");
    GivenBound(KXP_STRING_DATA, "text");
    EXPECT_EQ(Read(), "string text");
    GivenBound(KXP_TIME_DATA, "00:00:01/00");
    EXPECT_EQ(Read(), "string 00:00:01/00");
    GivenBound(KXP_DATE_DATA, "24/12/2020");
    EXPECT_EQ(Read(), "string 24/12/2020");
    GivenBound(KXP_TEXT_LIKE_DATA, "t");
    EXPECT_EQ(Read(), "string t");
    EXPECT_EQ(plain::Value::OutstandingTexts(), 0);
}

TEST_F(Accessors, WriteWholeNumbersAndLetTextSetAnEnumeration) {
    TypedValue& integer = GivenBound(KXP_INTEGER_DATA);
    EXPECT_EQ(Write(integer, "7.9"), "7");
    EXPECT_EQ(Write(integer, "'8'"), "8");
    EXPECT_EQ(Write(integer, "true"), "1");
    TypedValue& item = GivenBound(KXP_ENUM_DATA);
    EXPECT_EQ(Write(item, "'storm'"), "storm");
    EXPECT_EQ(Write(item, "1"), "1");
}

TEST_F(Accessors, WriteNothingWhenTurningTheValueIntoANumberThrows) {
    for (const std::uint32_t type : {KXP_INTEGER_DATA, KXP_ENUM_DATA, KXP_REAL_DATA}) {
        TypedValue& value = GivenBound(type, "5");
        EXPECT_EQ(Write(value, "({ valueOf: function() { throw 1 } })"), "-") << type;
        engine.clearExceptions();
    }
}

TEST_F(Accessors, TakeThePlaceOfGettersAndSettersOfTheScriptWithoutCallingThem) {
    TypedValue& value = GivenHostVariable("X", KXP_INTEGER_DATA, "5");
    Run("var called = 0; ({ Calverin: { get X() { return 9 } }, CalverinW: { set X(v) { ++called } } })");
    Evaluate("published.Calverin.X = 6; published.CalverinW.X += 1");
    EXPECT_EQ(value.Text(), "7");
    EXPECT_EQ(Evaluate("published.Calverin.X + ' ' + called"), "7 0");
}

TEST_F(Accessors, WriteRealNumbersThatAreOnes) {
    TypedValue& real = GivenBound(KXP_REAL_DATA);
    EXPECT_EQ(Write(real, "2.5"), "2.500000");
    EXPECT_EQ(Write(real, "'3.25'"), "3.25");
    EXPECT_EQ(Write(real, "NaN"), "-");
    EXPECT_EQ(Write(real, "({})"), "-");
}

TEST_F(Accessors, WriteAnythingAsTextToATextButWhatThrows) {
    TypedValue& text = GivenBound(KXP_STRING_DATA);
    EXPECT_EQ(Write(text, "5"), "5");
    EXPECT_EQ(Write(text, "'\\u00e9'"), "\xE9");
    EXPECT_EQ(Write(text, "({ toString: function() { return 'made' } })"), "made");
    EXPECT_EQ(Write(text, "({ toString: function() { throw 1 } })"), "-");
}

TEST_F(Accessors, WriteANumberToATimeAsFramesOfItsTimeCode) {
    TypedValue& time = GivenBound(KXP_TIME_DATA);
    time.timeCodeType = 1;
    EXPECT_EQ(Write(time, "50"), "00:00:02/00");
    EXPECT_EQ(Write(time, "25.6"), "00:00:01/01");
    EXPECT_EQ(Write(time, "'00:01:00/00'"), "00:01:00/00");
    EXPECT_EQ(Write(time, "NaN"), "-");
    EXPECT_EQ(Write(time, "true"), "-");
}

TEST_F(Accessors, WriteAWholeNumberToADateAsDaysSince1900) {
    TypedValue& date = GivenBound(KXP_DATE_DATA);
    EXPECT_EQ(Write(date, "0"), "01/01/1900");
    EXPECT_EQ(Write(date, "31"), "01/02/1900");
    EXPECT_EQ(Write(date, "1.5"), "-");
    EXPECT_EQ(Write(date, "'24/12/2020'"), "24/12/2020");
}

TEST_F(Accessors, GiveTheWrittenValueAndReadTheHostEachTime) {
    TypedValue& value = GivenBound(KXP_INTEGER_DATA, "1");
    EXPECT_EQ(Evaluate("published.Calverin.X = 5.5"), "5.5");
    EXPECT_EQ(value.Text(), "5");
    value.SetIntValue(9, 0, 0);
    EXPECT_EQ(Evaluate("published.Calverin.X"), "9");
    EXPECT_EQ(Evaluate("published.Calverin.X += 1; published.Calverin.X"), "10");
}

TEST_F(Accessors, StandInMembersOfObjectsAndOfTheDevice) {
    TypedValue& hours = GivenHostVariable("Lamp.Hours", KXP_INTEGER_DATA, "3");
    TypedValue& level = GivenDeviceVariable("Level", KXP_INTEGER_DATA, "4");
    Run("({ Calverin: { Lamp: { Hours: 0 } }, DeviceW: { Level: 0, Plain: 8 } })");
    EXPECT_EQ(Evaluate("published.Calverin.Lamp.Hours * published.DeviceW.Level"), "12");
    Evaluate("published.Calverin.Lamp.Hours = 30; published.DeviceW.Level = 40; published.DeviceW.Plain = 1");
    EXPECT_EQ(hours.Text(), "30");
    EXPECT_EQ(level.Text(), "40");
    EXPECT_EQ(Evaluate("published.DeviceW.Plain"), "1");
}

TEST_F(Accessors, BindEachMemberOfANameThatStandsInTwoGroups) {
    TypedValue& value = GivenHostVariable("X", KXP_INTEGER_DATA, "1");
    Run("({ CalverinR: { X: 0 }, CalverinW: { X: 0 } })");
    Evaluate("published.CalverinW.X = 6");
    EXPECT_EQ(value.Text(), "6");
    EXPECT_EQ(Evaluate("published.CalverinR.X"), "6");
}

TEST_F(Accessors, OfAnObjectThatLivesOverAReloadReachTheSameVariable) {
    TypedValue& value = GivenHostVariable("X", KXP_INTEGER_DATA, "1");
    Run("kept = { X: 0 }; ({ Calverin: kept })");
    Run("({ Calverin: kept })");
    Evaluate("kept.X = 5");
    EXPECT_EQ(value.Text(), "5");
    EXPECT_EQ(Evaluate("kept.X"), "5");
}

TEST_F(Accessors, FollowAVariableThatIsMadeAnewAndLetGoOfOneThatIsGone) {
    GivenDeviceVariable("Level", KXP_INTEGER_DATA, "1");
    Run("({ Device: { Level: 0 } })");
    TypedValue other("Desk.Level", KXP_INTEGER_DATA, "22");
    accessors.Rebind(VariableOrigin::Device, [&](const QString&) { return &other; });
    EXPECT_EQ(Evaluate("published.Device.Level"), "22");
    accessors.Rebind(VariableOrigin::Device, [](const QString&) { return nullptr; });
    EXPECT_EQ(Evaluate("published.Device.Level"), "undefined");
    EXPECT_EQ(Evaluate("published.Device.Level = 3"), "3");
    EXPECT_EQ(other.Text(), "22");
}

TEST_F(Accessors, AreThoseOfTheLastReplacementWhenTheHostComesBackFromInsideTheLookUp) {
    GivenDeviceVariable("Level", KXP_INTEGER_DATA, "1");
    GivenDeviceVariable("Speed", KXP_INTEGER_DATA, "1");
    Run("({ Device: { Level: 0, Speed: 0 } })");
    TypedValue dropped("Desk.Level", KXP_INTEGER_DATA, "2");
    TypedValue fresh("Desk.Level", KXP_INTEGER_DATA, "3");
    accessors.Rebind(VariableOrigin::Device, [&](const QString&) {
        accessors.Rebind(VariableOrigin::Device, [&](const QString&) { return &fresh; });
        return &dropped;
    });
    EXPECT_EQ(Evaluate("published.Device.Level + ' ' + published.Device.Speed"), "3 3");
}

TEST_F(Accessors, WaitWhileTheHostReplacesItsValues) {
    GivenDeviceVariable("Level", KXP_INTEGER_DATA, "1");
    Run("({ Device: { Level: 0 } })");
    std::future<std::string> reading;
    accessors.GetGate().Replace([&] {
        TypedValue& fresh = GivenDeviceVariable("Level", KXP_INTEGER_DATA, "2");
        reading = std::async(std::launch::async, [this] { return Evaluate("published.Device.Level"); });
        EXPECT_EQ(reading.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        accessors.Rebind(VariableOrigin::Device, [&](const QString&) { return &fresh; });
    });
    EXPECT_EQ(reading.get(), "2");
}

/// A value in which somebody may stay.
class SlowValue : public TypedValue {
public:
    SlowValue()
        : TypedValue("Desk.Level", KXP_INTEGER_DATA, "1") {}
    std::int32_t GetIntValue() override {
        entered.set_value();
        leave.get_future().wait_for(std::chrono::milliseconds(kDeadlineMs));
        gone = true;
        return 1;
    }

    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> gone{false};
};

TEST_F(Accessors, AreWaitedForByAReplacementButNotForEver) {
    GivenDeviceVariable("Level", KXP_INTEGER_DATA, "1");
    Run("({ Device: { Level: 0 } })");
    SlowValue slow;
    accessors.Rebind(VariableOrigin::Device, [&](const QString&) { return &slow; });
    auto reading = std::async(std::launch::async, [this] { return Evaluate("published.Device.Level"); });
    slow.entered.get_future().wait();
    bool wasInside = false;
    accessors.GetGate().Replace([&] {
        wasInside = !slow.gone;
        slow.leave.set_value();
    });
    EXPECT_TRUE(wasInside) << "the host may wait for the replacement";
    EXPECT_EQ(reading.get(), "1");
    accessors.GetGate().Replace([&] { EXPECT_TRUE(slow.gone); });
}

TEST_F(Accessors, InsideOneAnotherDoNotWaitForAReplacementThatWaitsForThem) {
    TypedValue& value = GivenDeviceVariable("Level", KXP_INTEGER_DATA, "1");
    std::future<void> replacing;
    const auto replace = [](QScriptContext*, QScriptEngine*, void* start) {
        (*static_cast<std::function<void()>*>(start))();
        return QScriptValue();
    };
    std::function<void()> start = [&] {
        replacing = std::async(std::launch::async, [this] { accessors.GetGate().Replace([] {}); });
    };
    engine.globalObject().setProperty(QStringLiteral("replace"), engine.newFunction(replace, &start));
    Run("({ Device: { Level: 0 } })");
    Evaluate("published.Device.Level = { valueOf: function() { replace(); return published.Device.Level + 1 } }");
    replacing.wait();
    EXPECT_EQ(value.Text(), "2");
}

TEST_F(Accessors, DoNotTouchTheHostOnceItIsClosed) {
    TypedValue& value = GivenBound(KXP_INTEGER_DATA, "5");
    closed = true;
    EXPECT_EQ(Read(), "undefined undefined");
    EXPECT_EQ(Write(value, "6"), "-");
}

class EnumFunctions : public ScanFixture {
protected:
    EnumFunctions()
        : mood("Desk.Mood", KXP_ENUM_DATA, "0") {
        published = engine.evaluate(QStringLiteral(
            "({ Info: { Variables: { Mood: { Items: ['calm'] }, NoItems: {}, Text: { Items: 'x' } } }, Device: {} })"));
        helpers.Install(published.property(QStringLiteral("Device")));
        mood.items = {"calm"};
    }
    std::string Items() { return Evaluate("published.Info.Variables.Mood.Items.join()"); }

    TypedValue mood;
    EnumHelpers helpers{{[this] { return published; },
                         [this](const QString& name) {
                             return name != QLatin1String("Gone") ? QueryFace<IEnumData>(&mood, "IEnumData") : nullptr;
                         }}};
};

TEST_F(EnumFunctions, AddAndClearItemsInTheHostAndInInfo) {
    EXPECT_EQ(Evaluate("published.Device.EnumAdd('Mood', 'storm')"), "0");
    EXPECT_EQ(mood.items, (std::vector<std::string>{"calm", "storm"}));
    EXPECT_EQ(Items(), "calm,storm");
    EXPECT_EQ(Evaluate("published.Device.EnumClear('Mood')"), "0");
    EXPECT_TRUE(mood.items.empty());
    EXPECT_EQ(Items(), "");
}

TEST_F(EnumFunctions, RefuseTooFewArgumentsUnknownNamesAndMissingArrays) {
    for (const char* call :
         {"EnumAdd()", "EnumAdd('Mood')", "EnumClear()", "EnumAdd('Gone', 'x')", "EnumClear('Gone')",
          "EnumAdd('NoItems', 'x')", "EnumClear('NoItems')", "EnumAdd('Text', 'x')", "EnumAdd('Nowhere', 'x')"})
        EXPECT_EQ(Evaluate(std::string("published.Device.") + call), "19") << call;
    EXPECT_EQ(mood.items, std::vector<std::string>{"calm"});
}

TEST_F(EnumFunctions, RebuildTheArraySoThatOneTakenBeforeStaysAsItWas) {
    Evaluate("before = published.Info.Variables.Mood.Items; published.Device.EnumAdd('Mood', 'storm')");
    EXPECT_EQ(Evaluate("before.join()"), "calm");
}

TEST_F(EnumFunctions, KeepHolesAndTakeAnEndlessArrayForAnEmptyOne) {
    Evaluate("published.Info.Variables.Mood.Items = [1, , 3, ,]; published.Device.EnumAdd('Mood', 'x');"
             "c = published.Info.Variables.Mood.Items");
    EXPECT_EQ(Evaluate("[c.length, c[0], 1 in c, c[2], 3 in c, c[4]].join()"), "5,1,false,3,false,x");
    Evaluate("published.Info.Variables.Mood.Items = new Array(4000000000); 0");
    EXPECT_EQ(Evaluate("published.Device.EnumAdd('Mood', 'x')"), "0");
    EXPECT_EQ(Items(), "x");
}

TEST_F(EnumFunctions, CopyDeeplyAndSurviveCircles) {
    Evaluate("f = function() {}; a = [1, { b: [2], f: f }, new Date(5)]; a[3] = a; "
             "published.Info.Variables.Mood.Items = a; published.Device.EnumAdd('Mood', 'x');"
             "c = published.Info.Variables.Mood.Items");
    EXPECT_EQ(Evaluate("[c.length, c !== a, c[1] !== a[1], c[1].b !== a[1].b, c[1].b[0], c[1].f === f, c[3] === c,"
                       " c[2].getTime(), c[4]].join()"),
              "5,true,true,true,2,true,true,5,x");
    EXPECT_EQ(Evaluate("deep = []; for (var i = 0, at = deep; i < 20000; ++i) at = at[0] = [];"
                       "published.Info.Variables.Mood.Items = deep; published.Device.EnumAdd('Mood', 'x')"),
              "0");
}

} // namespace

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "DataTypes.h"
#include "EnumValue.h"
#include "ValueFactory.h"

using namespace stagehost;

namespace {

std::unique_ptr<HostValue> Given(std::uint32_t type, const std::string& text = {}) {
    ValueSpec spec;
    spec.type = type;
    spec.name = "value";
    spec.text = text;
    return MakeValue(spec);
}

std::unique_ptr<HostValue> Given(ValueSpec spec, std::uint32_t type) {
    spec.type = type;
    return MakeValue(spec);
}

std::string TextThroughTheContract(HostValue& value) {
    char* text = value.Face()->GetValueAsString();
    std::string copy = text;
    value.Face()->ReleaseString(&text);
    EXPECT_EQ(text, nullptr);
    return copy;
}

/// Every text that must leave the value alone does.
void RefusesTexts(HostValue& value, std::initializer_list<const char*> texts) {
    const std::string before = value.Text();
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(value.SetText(text));
        EXPECT_EQ(value.Text(), before);
    }
}

} // namespace

TEST(Values, ExistForEveryTypeOfTheTableAndForNoOther) {
    for (const auto& row : kDataTypes) {
        const auto value = Given(row.code);
        ASSERT_NE(value, nullptr) << row.showName;
        EXPECT_EQ(value->Face()->GetDataType(), row.code);
        EXPECT_NE(QueryFace<IData>(value->Face(), row.interfaceName), nullptr) << row.interfaceName;
        EXPECT_STREQ(value->Face()->GetName(), "value");
    }
    for (const std::uint32_t code : {KXP_TEXT_LIKE_DATA, KXP_UNKNOWN_DATA, KXPDataType(99)})
        EXPECT_EQ(Given(code), nullptr);
}

TEST(Values, AnswerQueryInterfaceByTheRule) {
    const auto value = Given(KXP_TIME_DATA);
    void* out = &out;
    EXPECT_EQ(value->Face()->QueryInterface("IStringData", &out), KXP_NO_INTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(value->Face()->QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(value->Face()->QueryInterface("ITimeData", nullptr), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(value->Face()->QueryInterface("IMInterface", &out), KXP_OK);
    EXPECT_EQ(out, value->Face());
}

TEST(Values, KeepDescriptorProperties) {
    const auto value = Given(KXP_STRING_DATA);
    EXPECT_EQ(value->Face()->GetProperty("a"), nullptr);
    EXPECT_EQ(value->Face()->GetProperty(nullptr), nullptr);
    EXPECT_EQ(value->Face()->SetProperty(nullptr, "x", 0, 0), KXP_NULL_ARGUMENT);
    EXPECT_EQ(value->Face()->SetProperty("a", "x", 0, 0), KXP_OK);
    EXPECT_EQ(value->Face()->SetProperty("b", nullptr, 0, 0), KXP_OK);
    EXPECT_STREQ(value->Face()->GetProperty("a"), "x");
    EXPECT_STREQ(value->Face()->GetProperty("b"), "");
}

TEST(IntegerValue, IsClampedToItsBounds) {
    ValueSpec spec;
    spec.minimum = -10;
    spec.maximum = 10;
    spec.text = "99";
    const auto value = Given(spec, KXP_INTEGER_DATA);
    EXPECT_EQ(value->Int(), 10);
    value->Face()->SetIntValue(-11, 0, 0);
    EXPECT_EQ(value->Face()->GetIntValue(), -10);
    value->Face()->SetRealValue(4.6, 0, 0);
    EXPECT_EQ(value->Face()->GetIntValue(), 5);
    value->Face()->SetRealValue(1e300, 0, 0);
    EXPECT_EQ(value->Face()->GetIntValue(), 10);
    auto* face = QueryFace<IIntegerData>(value->Face(), "IIntegerData");
    EXPECT_EQ(face->GetMinValue(), -10);
    EXPECT_EQ(face->GetMaxValue(), 10);
}

TEST(IntegerValue, ReadsNumbersAndLeavesOtherTextsAlone) {
    const auto value = Given(KXP_INTEGER_DATA);
    EXPECT_TRUE(value->SetText(" +12 "));
    EXPECT_EQ(value->Int(), 12);
    EXPECT_TRUE(value->SetText("-2147483648"));
    EXPECT_EQ(value->Int(), std::numeric_limits<std::int32_t>::min());
    EXPECT_TRUE(value->SetText("99999999999"));
    EXPECT_EQ(value->Int(), std::numeric_limits<std::int32_t>::max());
    RefusesTexts(*value, {"", " ", "abc", "12abc", "+-1", "nan", "inf", "0x10", "1,5"});
    EXPECT_FALSE(value->SetReal(std::nan("")));
}

TEST(IntegerValue, TakesBoundsInTheWrongOrderAsOneValue) {
    ValueSpec spec;
    spec.minimum = 5;
    spec.maximum = 1;
    const auto value = Given(spec, KXP_INTEGER_DATA);
    value->SetInt(100);
    EXPECT_EQ(value->Int(), 5);
}

TEST(RealValue, IsClampedAndWrittenWithItsPrecision) {
    ValueSpec spec;
    spec.minimum = -1.5;
    spec.maximum = 2.5;
    spec.precision = 2;
    const auto value = Given(spec, KXP_REAL_DATA);
    value->Face()->SetRealValue(1.23456, 0, 0);
    EXPECT_EQ(TextThroughTheContract(*value), "1.23");
    EXPECT_DOUBLE_EQ(value->Face()->GetRealValue(), 1.23456);
    EXPECT_EQ(value->Face()->GetIntValue(), 1);
    value->Face()->SetIntValue(7, 0, 0);
    EXPECT_DOUBLE_EQ(value->Real(), 2.5);
    auto* face = QueryFace<IRealData>(value->Face(), "IRealData");
    EXPECT_DOUBLE_EQ(face->GetMinValue(), -1.5);
    EXPECT_DOUBLE_EQ(face->GetMaxValue(), 2.5);
    EXPECT_EQ(face->GetPrecision(), 2);
}

TEST(RealValue, LeavesWhatIsNotFiniteOrNoNumberAlone) {
    const auto value = Given(KXP_REAL_DATA, "1.5");
    EXPECT_EQ(value->Text(), "1.50000");
    EXPECT_FALSE(value->SetReal(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(value->SetReal(std::nan("")));
    RefusesTexts(*value, {"", "one", "1.5.5", "1,5", "1e999", "inf"});
    EXPECT_TRUE(value->SetText("-1e-3"));
    EXPECT_EQ(value->Text(), "-0.00100");
    EXPECT_TRUE(value->SetReal(1.5e300));
    EXPECT_EQ(value->Text(), "1.5e+300");
}

TEST(StringValue, IsCutToItsMaximumLength) {
    ValueSpec spec;
    spec.maxLength = 3;
    spec.text = "abcdef";
    const auto value = Given(spec, KXP_STRING_DATA);
    EXPECT_EQ(value->Text(), "abc");
    EXPECT_EQ(QueryFace<IStringData>(value->Face(), "IStringData")->GetMaxLength(), 3);
    spec.maxLength = -1;
    EXPECT_EQ(Given(spec, KXP_STRING_DATA)->Text(), "abcdef");
    spec.maxLength = 0;
    EXPECT_EQ(Given(spec, KXP_STRING_DATA)->Text(), "");
}

TEST(StringValue, IsANumberWhenItsTextIsOne) {
    const auto value = Given(KXP_STRING_DATA, "12.6");
    EXPECT_EQ(value->Int(), 13);
    EXPECT_DOUBLE_EQ(value->Real(), 12.6);
    value->SetText("twelve");
    EXPECT_EQ(value->Int(), 0);
    EXPECT_DOUBLE_EQ(value->Real(), 0);
    value->SetInt(-4);
    EXPECT_EQ(value->Text(), "-4");
    value->SetReal(0.1);
    EXPECT_EQ(value->Text(), "0.1");
    value->Face()->SetValueFromString(nullptr, 0, 0);
    EXPECT_EQ(value->Text(), "");
}

TEST(TimeValue, IsACountOfUnitsWithSecondsAsItsRealNumber) {
    ValueSpec spec;
    spec.timeCodeType = 1;
    spec.text = "00:00:02/05";
    const auto value = Given(spec, KXP_TIME_DATA);
    auto* face = QueryFace<ITimeData>(value->Face(), "ITimeData");
    EXPECT_EQ(face->GetTimeCodeType(), 1);
    EXPECT_EQ(face->GetFrameCount(), 55);
    EXPECT_EQ(value->Int(), 55);
    EXPECT_DOUBLE_EQ(value->Real(), 2.2);
    value->SetReal(1.5);
    EXPECT_EQ(value->Int(), 38); // 37.5 frames, rounded
    value->SetText("");
    EXPECT_EQ(value->Int(), 0);
    RefusesTexts(*value, {"-", "soon", "12", "00:00:00/26"});
}

TEST(TimeValue, CountsHundredthsUnlessToldOtherwise) {
    const auto value = Given(KXP_TIME_DATA, "00:00:01/50");
    EXPECT_EQ(value->Int(), 150);
    EXPECT_EQ(QueryFace<ITimeData>(value->Face(), "ITimeData")->GetTimeCodeType(), 4);
}

TEST(DateValue, CountsDaysSince1900) {
    const auto value = Given(KXP_DATE_DATA);
    EXPECT_EQ(value->Int(), 0);
    EXPECT_EQ(value->Text(), "01/01/1900");
    EXPECT_TRUE(value->SetText("29/02/2000"));
    EXPECT_EQ(value->Int(), 36583);
    EXPECT_TRUE(value->SetText("2024-12-31"));
    EXPECT_EQ(value->Text(), "31/12/2024");
    value->SetInt(1);
    EXPECT_EQ(value->Text(), "02/01/1900");
    value->SetReal(2.9);
    EXPECT_EQ(value->Int(), 2);
    RefusesTexts(*value, {"29/02/1900", "31/04/2024", "1899-12-31", "tomorrow", "12/2024", "01/01/10000"});
    EXPECT_FALSE(value->SetInt(-1));
    EXPECT_FALSE(value->SetInt(std::numeric_limits<std::int32_t>::max()));
    EXPECT_TRUE(value->SetText(""));
    EXPECT_EQ(value->Int(), 0);
}

TEST(EnumValue, IsChosenByIndexAndByText) {
    ValueSpec spec;
    spec.items = {"Ready", "Loading", "7"};
    const auto value = Given(spec, KXP_ENUM_DATA);
    auto* face = QueryFace<IEnumData>(value->Face(), "IEnumData");
    EXPECT_EQ(value->Text(), "Ready");
    face->SetCurrent(1, 0, 0);
    EXPECT_EQ(TextThroughTheContract(*value), "Loading");
    EXPECT_TRUE(value->SetText("7"));
    EXPECT_EQ(value->Int(), 2);
    EXPECT_TRUE(value->SetText("0"));
    EXPECT_EQ(value->Text(), "Ready");
    RefusesTexts(*value, {"", "ready", "3", "-1", "Done"});
    face->SetCurrent(3, 0, 0);
    face->SetCurrent(-1, 0, 0);
    EXPECT_EQ(value->Int(), 0);
}

TEST(EnumValue, GrowsAndIsEmptied) {
    const auto value = Given(KXP_ENUM_DATA);
    EXPECT_EQ(value->Text(), "");
    auto* face = QueryFace<IEnumData>(value->Face(), "IEnumData");
    face->AddItem("a");
    face->AddItem(nullptr);
    face->AddItem("c");
    face->SetCurrent(2, 0, 0);
    EXPECT_EQ(value->Text(), "c");
    face->ClearItems(0, 0);
    EXPECT_EQ(value->Int(), 0);
    EXPECT_EQ(value->Text(), "");
}

TEST(PrivateValue, KeepsItsTextAndTakesNoNumbers) {
    const auto value = Given(KXP_PRIVATE_DATA, "<any/>");
    EXPECT_EQ(value->Text(), "<any/>");
    EXPECT_FALSE(value->SetInt(1));
    EXPECT_FALSE(value->SetReal(1));
    EXPECT_EQ(value->Int(), 0);
}

TEST(Values, TellObserversOfChangesAndOnlyOfChanges) {
    const auto value = Given(KXP_INTEGER_DATA);
    std::vector<std::int32_t> seen;
    auto observation = value->Observe([&] { seen.push_back(value->Int()); });
    value->SetInt(1);
    value->SetInt(1);
    value->SetText("no number");
    value->SetInt(2);
    observation.reset();
    value->SetInt(3);
    EXPECT_EQ(seen, (std::vector<std::int32_t>{1, 2}));
}

TEST(Values, LetAnObserverWriteAndStopObservingFromItsCall) {
    const auto value = Given(KXP_INTEGER_DATA);
    int calls = 0;
    Observation observation = value->Observe([&] {
        ++calls;
        observation.reset();
        value->SetInt(10);
    });
    value->SetInt(1);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(value->Int(), 10);
}

TEST(Values, TakeWritesAndReadsOfManyThreads) {
    const auto value = Given(KXP_STRING_DATA);
    std::atomic<int> calls{0};
    const auto observation = value->Observe([&] { ++calls; });
    std::vector<std::thread> writers;
    writers.reserve(4);
    for (int number = 0; number < 4; ++number) {
        writers.emplace_back([&value, number] {
            for (int round = 0; round < 500; ++round) {
                value->SetText(std::string(static_cast<std::size_t>(number) + 1, 'x'));
                EXPECT_LE(value->Text().size(), 4u);
            }
        });
    }
    for (auto& writer : writers)
        writer.join();
    EXPECT_GE(calls, 1);
}

#include "MCommandObjectParam.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Sample {
    std::unique_ptr<MCommandObjectParam> param;
    std::int32_t type;
    std::uint32_t size;
};

int pointedTo = 0;

std::vector<Sample> OneOfEach() {
    std::vector<Sample> all;
    all.push_back({std::make_unique<MCommandObjectBYTEParam>(std::uint8_t{200}, "n"), 1, 1});
    all.push_back({std::make_unique<MCommandObjectCharParam>(std::int8_t{-5}, "n"), 2, 1});
    all.push_back({std::make_unique<MCommandObjectIntParam>(-70000, "n"), 3, 4});
    all.push_back({std::make_unique<MCommandObjectWORDParam>(std::uint16_t{60000}, "n"), 4, 2});
    all.push_back({std::make_unique<MCommandObjectDWORDParam>(4000000000U, "n"), 5, 4});
    all.push_back({std::make_unique<MCommandObjectFloatParam>(1.25, "n"), 6, 8});
    all.push_back({std::make_unique<MCommandObjectCharBufferParam>("text", "n"), 7, 5});
    all.push_back({std::make_unique<MCommandObjectBYTEBufferParam>("abc", 3, "n"), 8, 3});
    all.push_back({std::make_unique<MCommandObjectVoidParam>(&pointedTo, 4, "n"), 9, 4});
    return all;
}

/// Copies through operator= and counts the calls of the hook.
class Hooked : public MCommandObjectIntParam {
public:
    using MCommandObjectIntParam::MCommandObjectIntParam;
    using MCommandObjectIntParam::operator=;
    int hooks = 0;

protected:
    void CopyHook(const MCommandObjectParam& /*other*/) override { ++hooks; }
};

/// Claims to be an Int parameter and is not one.
class Impostor : public MCommandObjectParam {
public:
    explicit Impostor(std::int32_t type)
        : m_type(type) {}
    std::int32_t GetType() const override { return m_type; }
    void* GetData() const override { return nullptr; }
    std::uint32_t GetSize() const override { return 4; }
    const char* GetName() const override { return nullptr; }

private:
    std::int32_t m_type;
};

std::string Bytes(const MCommandObjectParam& param) {
    return {static_cast<const char*>(param.GetData()), param.GetSize()};
}

} // namespace

TEST(MCommandObjectParam, EachClassHasItsTypeCodeSizeAndName) {
    for (const Sample& sample : OneOfEach()) {
        EXPECT_EQ(sample.param->GetType(), sample.type);
        EXPECT_EQ(sample.param->GetSize(), sample.size) << sample.type;
        EXPECT_NE(sample.param->GetData(), nullptr) << sample.type;
        EXPECT_STREQ(sample.param->GetName(), "n") << sample.type;
    }
}

TEST(MCommandObjectParam, AFloatParameterStoresEightBytes) {
    const MCommandObjectFloatParam param(0.1);
    double stored = 0;
    ASSERT_EQ(param.GetSize(), sizeof(stored));
    std::memcpy(&stored, param.GetData(), sizeof(stored));
    EXPECT_EQ(stored, 0.1);
}

TEST(MCommandObjectParam, ANameIsCopiedAndMayBeMissing) {
    std::string name = "first";
    const MCommandObjectIntParam named(1, name.c_str());
    name = "other";
    EXPECT_STREQ(named.GetName(), "first");
    EXPECT_EQ(MCommandObjectIntParam(1).GetName(), nullptr);
    EXPECT_STREQ(MCommandObjectIntParam(1, "").GetName(), "");
}

TEST(MCommandObjectParam, ATextIsCopiedWithItsTerminator) {
    std::string text = "hello";
    const MCommandObjectCharBufferParam param(text.c_str());
    text = "xxxxx";
    EXPECT_STREQ(static_cast<const char*>(param.GetData()), "hello");
    EXPECT_EQ(param.GetSize(), 6U);
    EXPECT_EQ(MCommandObjectCharBufferParam("").GetSize(), 1U);
}

TEST(MCommandObjectParam, ANullTextLeavesDataNullAndSizeZero) {
    const MCommandObjectCharBufferParam param(nullptr, "name");
    EXPECT_EQ(param.GetData(), nullptr);
    EXPECT_EQ(param.GetSize(), 0U);
    EXPECT_STREQ(param.GetName(), "name");
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): copying is what is tested
    const MCommandObjectCharBufferParam copy(param);
    EXPECT_EQ(copy.GetData(), nullptr);
}

TEST(MCommandObjectParam, BytesWithoutDataHaveSizeZero) {
    const MCommandObjectBYTEBufferParam none(nullptr, 16);
    EXPECT_EQ(none.GetData(), nullptr);
    EXPECT_EQ(none.GetSize(), 0U);
    const MCommandObjectBYTEBufferParam empty("abc", 0);
    EXPECT_NE(empty.GetData(), nullptr);
    EXPECT_EQ(empty.GetSize(), 0U);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): copying is what is tested
    const MCommandObjectBYTEBufferParam copyOfNone(none);
    EXPECT_EQ(copyOfNone.GetData(), nullptr);
}

TEST(MCommandObjectParam, ItIsMeantThatACopiedByteBufferStopsAtTheFirstZeroByte) {
    const MCommandObjectBYTEBufferParam source("ab\0cd", 5, "n");
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): copying is what is tested
    const MCommandObjectBYTEBufferParam copy(source);
    EXPECT_EQ(copy.GetSize(), 5U);
    EXPECT_EQ(Bytes(copy), std::string("ab\0\0\0", 5)) << "readable up to its size all the same";
    EXPECT_STREQ(copy.GetName(), "n");
    const MCommandObjectBYTEBufferParam plain("abcde", 5);
    EXPECT_EQ(Bytes(MCommandObjectBYTEBufferParam(plain)), "abcde") << "no zero byte, nothing lost";
}

TEST(MCommandObjectParam, ItIsMeantThatAnAssignedByteBufferKeepsEveryByte) {
    const MCommandObjectBYTEBufferParam source("ab\0cd", 5, "n");
    MCommandObjectBYTEBufferParam target("x", 1);
    target = source;
    EXPECT_EQ(target.GetSize(), 5U);
    EXPECT_EQ(Bytes(target), std::string("ab\0cd", 5));
    EXPECT_STREQ(target.GetName(), "n");
}

TEST(MCommandObjectParam, AnAssignedParameterHasItsOwnPayload) {
    MCommandObjectCharBufferParam text("longer than before", "a");
    {
        const MCommandObjectCharBufferParam source("new", "b");
        text = source;
    }
    EXPECT_STREQ(static_cast<const char*>(text.GetData()), "new");
    EXPECT_EQ(text.GetSize(), 4U);
    EXPECT_STREQ(text.GetName(), "b");
    MCommandObjectIntParam number(1);
    number = MCommandObjectIntParam(9, "c");
    EXPECT_EQ(*static_cast<std::int32_t*>(number.GetData()), 9);
    EXPECT_STREQ(number.GetName(), "c");
}

TEST(MCommandObjectParam, AVoidParameterPointsToTheSamePlaceAfterACopy) {
    const MCommandObjectVoidParam source(&pointedTo, 4);
    EXPECT_EQ(MCommandObjectVoidParam(source).GetData(), &pointedTo);
    MCommandObjectVoidParam target(nullptr, 0);
    target = source;
    EXPECT_EQ(target.GetData(), &pointedTo);
    EXPECT_EQ(target.GetSize(), 4U);
}

TEST(MCommandObjectParam, AssigningAParameterToItselfChangesNothingAndCallsNoHook) {
    Hooked param(5, "n");
    const MCommandObjectIntParam& itself = param;
    param = itself;
    EXPECT_EQ(param.hooks, 0);
    EXPECT_STREQ(param.GetName(), "n");
    MCommandObjectBYTEBufferParam bytes("a\0b", 3);
    const MCommandObjectBYTEBufferParam& same = bytes;
    bytes = same;
    EXPECT_EQ(Bytes(bytes), std::string("a\0b", 3));
    MCommandObjectCharBufferParam text("t");
    const MCommandObjectCharBufferParam& sameText = text;
    text = sameText;
    EXPECT_STREQ(static_cast<const char*>(text.GetData()), "t");
}

TEST(MCommandObjectParam, ACopyCallsTheHookOnce) {
    Hooked param(5);
    param = MCommandObjectIntParam(6);
    EXPECT_EQ(param.hooks, 1);
    EXPECT_EQ(*static_cast<std::int32_t*>(param.GetData()), 6);
}

TEST(MCommandObjectParam, ACloneIsOfTheClassThatTheTypeCodeNames) {
    for (const Sample& sample : OneOfEach()) {
        const auto clone = CloneParam(sample.param.get());
        ASSERT_NE(clone, nullptr) << sample.type;
        EXPECT_EQ(clone->GetType(), sample.type);
        EXPECT_EQ(clone->GetSize(), sample.size);
        EXPECT_STREQ(clone->GetName(), "n");
        EXPECT_EQ(Bytes(*clone), Bytes(*sample.param)) << sample.type;
        EXPECT_EQ(clone->GetData() == sample.param->GetData(), sample.type == 9) << "only pointers are shared";
    }
}

TEST(MCommandObjectParam, WhatIsNotOfTheFamilyIsNotCloned) {
    EXPECT_EQ(CloneParam(nullptr), nullptr);
    for (const std::int32_t type : {-1, 0, 3, 9, 10, 2147483647}) {
        const Impostor impostor(type);
        EXPECT_EQ(CloneParam(&impostor), nullptr) << type;
    }
}

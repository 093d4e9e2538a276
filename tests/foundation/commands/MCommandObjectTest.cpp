#include <string>

#include <gtest/gtest.h>

#include "CommandFixture.h"

namespace {

constexpr std::int32_t kBadIndices[] = {-1, 9, 2147483647, -2147483647 - 1};

int anything = 0;

/// One parameter of each type, at the index of its type code less one.
void AddOneOfEach(MCommandObject& command) {
    EXPECT_EQ(command.AddBYTEParam(200, "byte"), 0);
    EXPECT_EQ(command.AddCharParam(-5, "char"), 1);
    EXPECT_EQ(command.AddIntParam(-70000, "int"), 2);
    EXPECT_EQ(command.AddWORDParam(60000, "word"), 3);
    EXPECT_EQ(command.AddDWORDParam(4000000000U, "dword"), 4);
    EXPECT_EQ(command.AddFloatParam(1.25, "float"), 5);
    EXPECT_EQ(command.AddCharBufferParam("text", "text"), 6);
    EXPECT_EQ(command.AddBYTEBufferParam("a\0b", 3, "bytes"), 7);
    EXPECT_EQ(command.AddVoidParam(&anything, 4, "void"), 8);
}

} // namespace

TEST(MCommandObject, BeginsWithWhatItWasGiven) {
    int owner = 0;
    MCommandObject command(&owner, 7, 3);
    EXPECT_EQ(command.GetOwner(), &owner);
    EXPECT_EQ(command.GetId(), 7);
    EXPECT_EQ(command.GetSubId(), 3);
    EXPECT_EQ(command.GetTimeout(), 0U);
    EXPECT_EQ(command.GetParamCount(), 0);
    EXPECT_EQ(command.GetCapacity(), 8);
    EXPECT_STREQ(command.GetName(), "");
    EXPECT_EQ(command.IncrementRetries(), 1);
    EXPECT_EQ(command.IncrementRetries(), 2);
    command.SetTimeout(250);
    EXPECT_EQ(command.GetTimeout(), 250U);
}

TEST(MCommandObject, TiesTheRequestToItsLife) {
    Requests requests;
    int request = 0;
    {
        MCommandObject command(nullptr, 1, 0, &requests, &request);
        EXPECT_EQ(requests.Begun(), 1U);
        EXPECT_EQ(requests.Ended(), 0U);
    }
    EXPECT_EQ(requests.Begun(), 1U);
    EXPECT_TRUE(requests.HasEnded(&request));
}

TEST(MCommandObject, WithoutHandlerNoRequestIsTouched) {
    int request = 12;
    { MCommandObject command(nullptr, 1, 0, nullptr, &request); }
    EXPECT_EQ(request, 12);
}

TEST(MCommandObject, TheHandlerIsToldBeforeTheParametersGo) {
    struct Looking : ICommandObjectHandler {
        void OnCommandCreated(void*) override {}
        void OnCommandDestroyed(void*) override { seen = command->GetCharBufferParam(0); }
        MCommandObject* command = nullptr;
        std::string seen;
    } handler;
    {
        MCommandObject command(nullptr, 1, 0, &handler, nullptr);
        handler.command = &command;
        command.AddCharBufferParam("still there");
    }
    EXPECT_EQ(handler.seen, "still there");
}

TEST(MCommandObject, KeepsANameOfItsOwn) {
    MCommandObject command(nullptr, 1);
    std::string name = "mine";
    command.SetName(name.c_str());
    name = "else";
    EXPECT_STREQ(command.GetName(), "mine");
    command.SetName(command.GetName());
    EXPECT_STREQ(command.GetName(), "mine");
    command.SetName(nullptr);
    EXPECT_STREQ(command.GetName(), "");
}

TEST(MCommandObject, EachTypeComesBackByItsOwnGetter) {
    MCommandObject command(nullptr, 1);
    AddOneOfEach(command);
    EXPECT_EQ(command.GetParamCount(), 9);
    EXPECT_EQ(command.GetBYTEParam(0), 200);
    EXPECT_EQ(command.GetCharParam(1), -5);
    EXPECT_EQ(command.GetIntParam(2), -70000);
    EXPECT_EQ(command.GetWORDParam(3), 60000);
    EXPECT_EQ(command.GetDWORDParam(4), 4000000000U);
    EXPECT_EQ(command.GetFloatParam(5), 1.25);
    EXPECT_STREQ(command.GetCharBufferParam(6), "text");
    std::uint32_t size = 0;
    const void* bytes = command.GetBYTEBufferParam(7, &size);
    EXPECT_EQ(std::string(static_cast<const char*>(bytes), size), std::string("a\0b", 3));
    EXPECT_EQ(command.GetVoidParam(8, &size), &anything);
    EXPECT_EQ(size, 4U);
    EXPECT_NE(command.GetBYTEBufferParam(7, nullptr), nullptr);
    EXPECT_EQ(command.GetVoidParam(8, nullptr), &anything);
}

TEST(MCommandObject, NoGetterConvertsBetweenTypes) {
    MCommandObject command(nullptr, 1);
    AddOneOfEach(command);
    for (std::int32_t i = 0; i < 9; ++i) {
        std::uint32_t size = 99;
        EXPECT_EQ(command.GetBYTEParam(i) != 0, i == 0) << i;
        EXPECT_EQ(command.GetCharParam(i) != 0, i == 1) << i;
        EXPECT_EQ(command.GetIntParam(i) != 0, i == 2) << i;
        EXPECT_EQ(command.GetWORDParam(i) != 0, i == 3) << i;
        EXPECT_EQ(command.GetDWORDParam(i) != 0, i == 4) << i;
        EXPECT_EQ(command.GetFloatParam(i) != 0, i == 5) << i;
        EXPECT_EQ(command.GetCharBufferParam(i) != nullptr, i == 6) << i;
        EXPECT_EQ(command.GetBYTEBufferParam(i, &size) != nullptr, i == 7) << i;
        EXPECT_EQ(size, i == 7 ? 3U : 0U) << i;
        EXPECT_EQ(command.GetVoidParam(i, &size) != nullptr, i == 8) << i;
        EXPECT_EQ(size, i == 8 ? 4U : 0U) << i;
    }
}

TEST(MCommandObject, GetFloatParamOfAnIntParameterReturnsZero) {
    MCommandObject command(nullptr, 1);
    command.AddIntParam(5);
    EXPECT_EQ(command.GetFloatParam(0), 0.0);
}

TEST(MCommandObject, AnIndexOutsideGivesZeroOrNull) {
    MCommandObject command(nullptr, 1);
    AddOneOfEach(command);
    for (const std::int32_t index : kBadIndices) {
        std::uint32_t size = 99;
        std::int32_t type = 99;
        EXPECT_EQ(command.GetParam(index), nullptr);
        EXPECT_EQ(command.GetParamType(index), 0);
        EXPECT_EQ(command.GetParamData(index), nullptr);
        EXPECT_EQ(command.GetParamSize(index), 0U);
        EXPECT_EQ(command.GetParamRaw(index, &size, &type), nullptr);
        EXPECT_EQ(size, 0U);
        EXPECT_EQ(type, 0);
        EXPECT_EQ(command.GetBYTEParam(index), 0);
        EXPECT_EQ(command.GetCharParam(index), 0);
        EXPECT_EQ(command.GetIntParam(index), 0);
        EXPECT_EQ(command.GetWORDParam(index), 0);
        EXPECT_EQ(command.GetDWORDParam(index), 0U);
        EXPECT_EQ(command.GetFloatParam(index), 0.0);
        EXPECT_EQ(command.GetCharBufferParam(index), nullptr);
        EXPECT_EQ(command.GetBYTEBufferParam(index, &size), nullptr);
        EXPECT_EQ(command.GetVoidParam(index, &size), nullptr);
    }
}

TEST(MCommandObject, TellsTypeDataAndSizeOfAParameter) {
    MCommandObject command(nullptr, 1);
    AddOneOfEach(command);
    std::uint32_t size = 0;
    std::int32_t type = 0;
    EXPECT_EQ(command.GetParamRaw(6, &size, &type), command.GetParamData(6));
    EXPECT_EQ(size, 5U);
    EXPECT_EQ(type, 7);
    EXPECT_EQ(command.GetParamRaw(8, nullptr, nullptr), &anything);
    EXPECT_EQ(command.GetParamType(5), 6);
    EXPECT_EQ(command.GetParamSize(5), 8U);
    EXPECT_STREQ(command.GetParam(5)->GetName(), "float");
}

TEST(MCommandObject, ANullTextParameterReadsAsNull) {
    MCommandObject command(nullptr, 1);
    EXPECT_EQ(command.AddCharBufferParam(nullptr), 0);
    EXPECT_EQ(command.GetCharBufferParam(0), nullptr);
    EXPECT_EQ(command.GetParamType(0), 7);
}

TEST(MCommandObject, RoomGrowsInStepsOfEight) {
    MCommandObject command(nullptr, 1);
    command.ReserveParams(8);
    EXPECT_EQ(command.GetCapacity(), 8);
    command.ReserveParams(9);
    EXPECT_EQ(command.GetCapacity(), 16);
    command.ReserveParams(3);
    EXPECT_EQ(command.GetCapacity(), 16);
    command.ReserveParams(-4);
    EXPECT_EQ(command.GetCapacity(), 16);
    command.ReserveParams(2147483647);
    EXPECT_EQ(command.GetCapacity(), 2147483640) << "no memory is taken for what nobody adds";
    EXPECT_EQ(command.AddIntParam(1), 0);
}

TEST(MCommandObject, AddingReservesTwoMoreThanThereAre) {
    MCommandObject command(nullptr, 1);
    for (int i = 0; i < 7; ++i)
        command.AddIntParam(i);
    EXPECT_EQ(command.GetCapacity(), 8);
    command.AddIntParam(7);
    EXPECT_EQ(command.GetCapacity(), 16) << "seven and two are nine";
    for (int i = 8; i < 1000; ++i)
        EXPECT_EQ(command.AddIntParam(i), i);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(command.GetIntParam(i), i);
}

TEST(MCommandObject, OwnsAnAddedParameterAndRefusesNull) {
    MCommandObject command(nullptr, 1);
    EXPECT_EQ(command.AddParam(nullptr), -1);
    auto* param = new MCommandObjectIntParam(4);
    EXPECT_EQ(command.AddParam(param), 0);
    EXPECT_EQ(command.GetParam(0), param);
}

TEST(MCommandObject, AddsACopyOfAParameter) {
    MCommandObject command(nullptr, 1);
    {
        const MCommandObjectCharBufferParam gone("kept", "n");
        EXPECT_EQ(command.AddParamCopy(&gone), 0);
    }
    EXPECT_STREQ(command.GetCharBufferParam(0), "kept");
    EXPECT_EQ(command.AddParamCopy(command.GetParam(0)), 1) << "also of one of its own";
    EXPECT_EQ(command.AddParamCopy(nullptr), -1);
    EXPECT_EQ(command.GetParamCount(), 2);
}

TEST(MCommandObject, ClearDeletesParametersAndName) {
    MCommandObject command(nullptr, 5);
    AddOneOfEach(command);
    command.SetName("n");
    command.Clear();
    EXPECT_EQ(command.GetParamCount(), 0);
    EXPECT_STREQ(command.GetName(), "");
    EXPECT_EQ(command.GetId(), 5);
    EXPECT_EQ(command.AddIntParam(1), 0) << "it can be used again";
}

TEST(MCommandObject, InitSetsEverythingAnewAndCallsNoHandler) {
    Requests requests;
    int owner = 0;
    {
        MCommandObject command(nullptr, 1);
        AddOneOfEach(command);
        command.SetTimeout(5);
        command.IncrementRetries();
        command.Init(&owner, 2, 3, "name", 20, &requests, &owner);
        EXPECT_EQ(requests.Begun(), 0U);
        EXPECT_EQ(command.GetOwner(), &owner);
        EXPECT_EQ(command.GetId(), 2);
        EXPECT_EQ(command.GetSubId(), 3);
        EXPECT_STREQ(command.GetName(), "name");
        EXPECT_EQ(command.GetTimeout(), 0U);
        EXPECT_EQ(command.GetParamCount(), 0);
        EXPECT_EQ(command.GetCapacity(), 20);
        EXPECT_EQ(command.IncrementRetries(), 1);
    }
    EXPECT_TRUE(requests.HasEnded(&owner)) << "its handler is told the end all the same";
    MCommandObject odd(nullptr, 1);
    odd.Init(nullptr, 0, 0, nullptr, -8, nullptr, nullptr);
    EXPECT_EQ(odd.GetCapacity(), 0);
    EXPECT_EQ(odd.AddIntParam(1), 0);
}

TEST(MCommandObject, ACopyHasTheParametersButNeitherHandlerNorTimeOut) {
    Requests requests;
    int request = 0;
    MCommandObject source(&request, 7, 8, &requests, &request);
    AddOneOfEach(source);
    source.SetName("n");
    source.SetTimeout(5);
    source.IncrementRetries();
    {
        MCommandObject copy(source);
        EXPECT_EQ(copy.GetOwner(), &request);
        EXPECT_EQ(copy.GetId(), 7);
        EXPECT_EQ(copy.GetSubId(), 8);
        EXPECT_STREQ(copy.GetName(), "n");
        EXPECT_EQ(copy.GetTimeout(), 0U);
        EXPECT_EQ(copy.IncrementRetries(), 1);
        ASSERT_EQ(copy.GetParamCount(), 9);
        EXPECT_STREQ(copy.GetCharBufferParam(6), "text");
        EXPECT_NE(copy.GetParam(6), source.GetParam(6));
    }
    EXPECT_EQ(requests.Begun(), 1U);
    EXPECT_EQ(requests.Ended(), 0U);
}

TEST(MCommandObject, ACopyOfItsByteBuffersIsMeantToStopAtTheFirstZeroByte) {
    MCommandObject source(nullptr, 1);
    AddOneOfEach(source);
    MCommandObject target(nullptr, 2);
    target = source;
    std::uint32_t size = 0;
    const void* bytes = target.GetBYTEBufferParam(7, &size);
    EXPECT_EQ(std::string(static_cast<const char*>(bytes), size), std::string("a\0\0", 3));
}

TEST(MCommandObject, AssigningReplacesEverything) {
    MCommandObject source(nullptr, 7);
    source.AddIntParam(3);
    MCommandObject target(nullptr, 1);
    AddOneOfEach(target);
    target.SetName("old");
    target = source;
    EXPECT_EQ(target.GetId(), 7);
    EXPECT_EQ(target.GetParamCount(), 1);
    EXPECT_EQ(target.GetIntParam(0), 3);
    EXPECT_STREQ(target.GetName(), "");
}

TEST(MCommandObject, AssigningToItselfChangesNothing) {
    Requests requests;
    {
        MCommandObject command(nullptr, 1, 0, &requests, nullptr);
        AddOneOfEach(command);
        const MCommandObject& itself = command;
        command = itself;
        EXPECT_EQ(command.GetParamCount(), 9);
    }
    EXPECT_EQ(requests.Ended(), 1U) << "the handler is still there";
}

TEST(MCommandObject, EqualityIsIdentity) {
    const MCommandObject first(nullptr, 1);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is the other object
    const MCommandObject second(first);
    EXPECT_TRUE(first == first);
    EXPECT_FALSE(first == second);
}

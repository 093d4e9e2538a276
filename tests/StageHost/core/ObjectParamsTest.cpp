#include "ObjectParams.h"

#include <gtest/gtest.h>

#include "ValueFactory.h"

using namespace stagehost;

namespace {

using Properties = std::map<std::string, std::string>;

std::shared_ptr<HostValue> Value(const char* name, const char* text) {
    ValueSpec spec;
    spec.name = name;
    spec.text = text;
    return MakeValue(spec);
}

std::string TextOf(IData* data) {
    char* text = data->GetValueAsString();
    std::string copy = text;
    data->ReleaseString(&text);
    return copy;
}

} // namespace

TEST(ObjectParams, GivesItsParametersInOrderAndNullOutside) {
    ObjectParams params{Properties()};
    params.Add(Value("first", "1"), nullptr);
    params.Add(Value("second", "2"), nullptr);
    ASSERT_EQ(params.GetParamCount(), 2u);
    EXPECT_STREQ(params.GetParam(0)->GetName(), "first");
    EXPECT_STREQ(params.GetParam(1)->GetName(), "second");
    EXPECT_EQ(params.GetParam(2), nullptr);
    EXPECT_EQ(params.GetParam(0xFFFFFFFFu), nullptr);
}

TEST(ObjectParams, KeepsDescriptorProperties) {
    ObjectParams params(Properties{{"ObjectParamDescriptor::DeviceID", "0"}});
    EXPECT_STREQ(params.GetProperty("ObjectParamDescriptor::DeviceID"), "0");
    EXPECT_EQ(params.SetProperty("ObjectParamDescriptor::DeviceID", "4", 0, 0), KXP_OK);
    EXPECT_STREQ(params.GetProperty("ObjectParamDescriptor::DeviceID"), "4");
    EXPECT_EQ(params.SetProperty(nullptr, "4", 0, 0), KXP_NULL_ARGUMENT);
    EXPECT_EQ(params.GetProperty("other"), nullptr);
    EXPECT_EQ(params.GetProperty(nullptr), nullptr);
    EXPECT_EQ(QueryFace<IObjectParams>(&params, "IObjectParams"), &params);
    EXPECT_EQ(QueryFace<IMInterface>(&params, "IData"), nullptr);
}

TEST(ObjectParam, IsItsOwnValueWhenNothingIsBound) {
    ObjectParams params{Properties()};
    params.Add(Value("p", "own"), nullptr);
    IObjectParam* const param = params.GetParam(0);
    EXPECT_EQ(param->GetValue(0), nullptr);
    EXPECT_EQ(TextOf(param), "own");
    param->SetValueFromString("7", 0, 0);
    EXPECT_EQ(params.Params()[0]->Effective().Text(), "7");
    EXPECT_EQ(param->GetIntValue(), 7);
    param->SetIntValue(8, 0, 0);
    EXPECT_DOUBLE_EQ(param->GetRealValue(), 8);
    param->SetRealValue(1.5, 0, 0);
    EXPECT_EQ(TextOf(param), "1.5");
    EXPECT_EQ(param->GetDataType(), KXP_STRING_DATA);
    EXPECT_EQ(param->GetInstanceID(), 0u);
    EXPECT_EQ(param->SetProperty("a", "b", 0, 0), KXP_OK);
    EXPECT_STREQ(param->GetProperty("a"), "b");
}

TEST(ObjectParam, IsReplacedByTheVariableBoundToIt) {
    const auto variable = Value("desk.level", "bound");
    ObjectParams params{Properties()};
    params.Add(Value("p", "own"), variable);
    IObjectParam* const param = params.GetParam(0);
    ASSERT_EQ(param->GetValue(0), variable->Face());
    param->GetValue(0)->SetValueFromString("written", 0, 0);
    EXPECT_EQ(params.Params()[0]->Effective().Text(), "written");
    EXPECT_EQ(TextOf(param), "own");
}

TEST(ObjectParam, AnswersForItselfAndForTheTypeOfItsValue) {
    ObjectParams params{Properties()};
    params.Add(Value("p", ""), nullptr);
    IObjectParam* const param = params.GetParam(0);
    EXPECT_EQ(QueryFace<IObjectParam>(param, "IObjectParam"), param);
    EXPECT_NE(QueryFace<IStringData>(param, "IStringData"), nullptr);
    EXPECT_EQ(QueryFace<IMInterface>(param, "IEnumData"), nullptr);
    EXPECT_EQ(param->QueryInterface(nullptr, nullptr), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(param->Release(), KXP_OK);
}

#include "MKXPXmlDefinition.h"

#include <string>

#include <gtest/gtest.h>

#include "ModuleResources.h"

namespace {

TEST(MKXPXmlDefinition, HasNoTextAtFirst) {
    EXPECT_EQ(MKXPXmlDefinition().GetText(), nullptr);
}

TEST(MKXPXmlDefinition, LoadsTheWholeResourceWithANulBehindIt) {
    MKXPXmlDefinition definition;
    EXPECT_TRUE(definition.LoadFromResource(nullptr, kDefinitionId));
    EXPECT_EQ(definition.GetText(), FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString());
}

TEST(MKXPXmlDefinition, WithoutTheResourceHasNoTextAnyMore) {
    MKXPXmlDefinition definition;
    definition.SetText("old");
    EXPECT_FALSE(definition.LoadFromResource(nullptr, 10001));
    EXPECT_EQ(definition.GetText(), nullptr);
}

TEST(MKXPXmlDefinition, CopiesTheTextThatItIsGiven) {
    MKXPXmlDefinition definition;
    std::string text = "one";
    definition.SetText(text.c_str());
    text = "two";
    EXPECT_STREQ(definition.GetText(), "one");
    definition.SetText("");
    EXPECT_STREQ(definition.GetText(), "");
}

TEST(MKXPXmlDefinition, TakesItsOwnText) {
    MKXPXmlDefinition definition;
    definition.SetText("the same");
    definition.SetText(definition.GetText());
    EXPECT_STREQ(definition.GetText(), "the same");
}

TEST(MKXPXmlDefinition, OfANullTextHasNone) {
    MKXPXmlDefinition definition;
    definition.SetText("old");
    definition.SetText(nullptr);
    EXPECT_EQ(definition.GetText(), nullptr);
}

} // namespace

#include "XmlElement.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST(XmlElement, PrintsWhatReadsBackAsTheSame) {
    QString problem;
    const auto read = XmlElement::Parse(
        Text("<?xml version='1.0'?><a b='1&#10;&lt;&quot;' c=''><d/><e f='g'><![CDATA[x<y]]></e></a>"), &problem);
    ASSERT_TRUE(read) << problem.toStdString();
    EXPECT_EQ(read->Attribute("b"), Text("1\n<\""));
    EXPECT_EQ(read->children.size(), 2u);
    EXPECT_EQ(read->Child("e")->text, Text("x<y"));
    const auto again = XmlElement::Parse(read->Print(), &problem);
    ASSERT_TRUE(again) << problem.toStdString();
    EXPECT_EQ(again->Print(), read->Print());
    EXPECT_EQ(again->Attribute("b"), Text("1\n<\""));
    EXPECT_EQ(again->Child("e")->text, Text("x<y"));
}

TEST(XmlElement, ChangesAttributesInTheirPlace) {
    XmlElement element;
    element.name = Text("a");
    element.Set("x", Text("1")).Set("y", Text("2")).Set("x", Text("3"));
    EXPECT_EQ(element.Attribute("x"), Text("3"));
    EXPECT_EQ(element.attributes.size(), 2u);
    element.Remove("x");
    EXPECT_TRUE(element.Attribute("x").isNull());
    EXPECT_EQ(&element.Need("b"), &element.Need("b"));
    EXPECT_EQ(element.ChildWith("k", Text("v")), nullptr);
}

TEST(XmlElement, TellsWhereATextIsNoXml) {
    for (const char* bad : {"", "x", "<a", "<a><b></a>", "<a/><b/>"}) {
        QString problem;
        EXPECT_FALSE(XmlElement::Parse(Text(bad), &problem)) << bad;
        EXPECT_TRUE(problem.contains(QLatin1Char(':'))) << bad;
    }
    const QString deep = Text("<a>").repeated(100000) + Text("</a>").repeated(100000);
    QString problem;
    EXPECT_FALSE(XmlElement::Parse(deep, &problem));
}

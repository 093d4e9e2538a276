#include "ObjectText.h"

#include <QXmlStreamReader>

#include "../core/RemoteShow.h"

using namespace stagehost;

namespace {

class ObjectTextTest : public RemoteShow {
protected:
    ObjectTextTest()
        : RemoteShow(Link::None) {}

    std::string List(const char* parent, std::uint32_t type) {
        return ObjectListText(host.Model(), parent, type).value_or("none");
    }
    std::string Object(const char* name, std::uint32_t depth) {
        return ObjectDescription(host.Model(), name, depth).value_or("none");
    }
};

} // namespace

TEST_F(ObjectTextTest, ListsEachKindByItsNumber) {
    const std::string head = "<Objects Parent=\"\" Type=";
    EXPECT_EQ(List("", 6), head + "\"6\"><Object Name=\"Level\" Type=\"Variable\" Value=\"IntegerData\"/>"
                                  "<Object Name=\"Mood\" Type=\"Variable\" Value=\"StringData\"/>"
                                  "<Object Name=\"Other\" Type=\"Variable\" Value=\"StringData\"/></Objects>");
    EXPECT_EQ(List("", 3), head + "\"3\"><Object Name=\"Overture\" Type=\"Task\" Value=\"\"/>"
                                  "<Object Name=\"Stubborn\" Type=\"Task\" Value=\"\"/>"
                                  "<Object Name=\"Endless\" Type=\"Task\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("", 28), head + "\"28\"><Object Name=\"Thunder\" Type=\"Cue\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("", 8), head + "\"8\"><Object Name=\"Panel\" Type=\"UserScreen\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("", 1000), head + "\"1000\"><Object Name=\"Matinee\" Type=\"Show\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("", 1), head + "\"1\"/>") << "no devices";
    EXPECT_EQ(List("", 17), head + "\"17\"/>") << "no such kind";
}

TEST_F(ObjectTextTest, NestsGroupsInOneObjectAndObjectsInEachOther) {
    EXPECT_EQ(
        List("GrantedRootGroup", 27),
        "<Objects Parent=\"GrantedRootGroup\" Type=\"27\"><Object Name=\"User Groups\" Type=\"UserGroup\" Value=\"\">"
        "<Object Name=\"House\" Type=\"UserGroup\" Value=\"\">"
        "<Object Name=\"Inner\" Type=\"UserGroup\" Value=\"\"/></Object>"
        "<Object Name=\"Closed\" Type=\"UserGroup\" Value=\"\"/></Object></Objects>");
    EXPECT_EQ(List("", 100), "<Objects Parent=\"\" Type=\"100\"><Object Name=\"Hall\" Type=\"Object\" Value=\"\">"
                             "<Object Name=\"Hall.Door\" Type=\"Object\" Value=\"\"/></Object></Objects>");
}

TEST_F(ObjectTextTest, ListsTheMembersOfAGroup) {
    EXPECT_EQ(List("House", 0), "<Objects Parent=\"House\" Type=\"0\">"
                                "<Object Name=\"Level\" Type=\"Variable\" Value=\"IntegerData\"/>"
                                "<Object Name=\"Overture\" Type=\"Task\" Value=\"\"/>"
                                "<Object Name=\"Inner\" Type=\"UserGroup\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("House", 3), "<Objects Parent=\"House\" Type=\"3\">"
                                "<Object Name=\"Overture\" Type=\"Task\" Value=\"\"/></Objects>");
    EXPECT_EQ(List("Thunder", 0), "<Objects Parent=\"Thunder\" Type=\"0\"/>") << "nothing is below a cue";
    EXPECT_EQ(List("Nobody", 0), "none");
}

TEST_F(ObjectTextTest, ListsTheWholeShowForNumberZero) {
    const std::string all = List("", 0);
    for (const char* name : {"Overture", "Thunder", "Panel", "House", "Level", "Hall.Door", "Matinee"})
        EXPECT_NE(all.find(std::string("Name=\"") + name + "\""), std::string::npos) << name;
}

TEST_F(ObjectTextTest, DescribesAnObjectDownToADepth) {
    EXPECT_EQ(Object("Hall", 0), "<Object Name=\"Hall\" Type=\"Object\" Value=\"\"><Properties>"
                                 "<Property Name=\"Temperature\" Value=\"21\"/></Properties></Object>");
    EXPECT_EQ(Object("Hall", 1),
              "<Object Name=\"Hall\" Type=\"Object\" Value=\"\"><Properties>"
              "<Property Name=\"Temperature\" Value=\"21\"/></Properties><Object Name=\"Hall.Door\" Type=\"Object\" "
              "Value=\"\"><Properties><Property Name=\"Locked\" Value=\"no\"/></Properties></Object></Object>");
    EXPECT_EQ(Object("", 0), "<Object Name=\"GrantedRootGroup\" Type=\"UserGroup\" Value=\"\"/>");
    EXPECT_NE(Object("GrantedRootGroup", 2).find("Hall.Door"), std::string::npos);
    EXPECT_EQ(Object("GrantedRootGroup", 1).find("Hall.Door"), std::string::npos);
    EXPECT_EQ(Object("Nobody", 1), "none");
}

TEST_F(ObjectTextTest, WritesEveryCharacterSoThatItReadsBack) {
    AddVariable("Odd", KXP_STRING_DATA, "");
    host.Variables().Find("Odd")->StoreProperty("note", "\xE4<&>\"'\n\x7F\xA0");
    const std::string text = Object("Odd", 0);
    for (const char character : text)
        EXPECT_TRUE(character >= 0x20 && character < 0x7F);
    QXmlStreamReader xml(QString::fromLatin1(text.c_str()));
    QString found;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement &&
            xml.attributes().value(QStringLiteral("Name")) == QLatin1String("note"))
            found = xml.attributes().value(QStringLiteral("Value")).toString();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(found, QString::fromLatin1("\xE4<&>\"'\n\x7F\xA0"));
}

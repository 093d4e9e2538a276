#include "PerformParameters.h"

#include <gtest/gtest.h>

namespace {

std::string AsList(const QStringList& parameters) {
    return PerformParameters(QStringLiteral("Name"), parameters);
}

std::string AsList(std::initializer_list<const char*> parameters) {
    QStringList list;
    for (const char* parameter : parameters)
        list.append(QLatin1String(parameter));
    return AsList(list);
}

TEST(PerformParameterText, OfTheXmlTypeIsTheFirstParameterUnchangedInAnyLetterCase) {
    const QString text = QStringLiteral("<unclosed & a=b");
    for (const char* type : {"XML", "xml", "Xml", "xMl"})
        EXPECT_EQ(PerformParameters(QLatin1String(type), {text, QStringLiteral("b=2")}), "<unclosed & a=b") << type;
}

TEST(PerformParameterText, OfTheXmlTypeWithoutParametersIsEmpty) {
    EXPECT_EQ(PerformParameters(QStringLiteral("XML"), {}), "");
    EXPECT_EQ(PerformParameters(QStringLiteral("XML"), {QString(), QStringLiteral("b=2")}), "");
}

TEST(PerformParameterText, OfAnyOtherTypeIsAList) {
    for (const char* type : {"", "Name", "XM", "XML ", " XML", "XMLS", "LIST"})
        EXPECT_EQ(PerformParameters(QLatin1String(type), {QStringLiteral("a=1")}),
                  "<parameters>\n\t<parameter name=\"a\" value=\"1\" />\n</parameters>\n")
            << type;
}

TEST(PerformParameterText, SplitsAtTheFirstEqualsAndSkipsWhatHasAnEmptySide) {
    EXPECT_EQ(AsList({"a=1", "b", "=2", "c=", "d=e=f"}), "<parameters>\n"
                                                         "\t<parameter name=\"a\" value=\"1\" />\n"
                                                         "\t<parameter name=\"d\" value=\"e=f\" />\n"
                                                         "</parameters>\n");
}

TEST(PerformParameterText, SkipsALoneEqualsAndKeepsOneThatTheValueStartsWith) {
    EXPECT_EQ(AsList({"=", "==", "a==", "==b"}), "<parameters>\n"
                                                 "\t<parameter name=\"a\" value=\"=\" />\n"
                                                 "</parameters>\n");
}

TEST(PerformParameterText, OfAnEmptyListIsTheEmptyElement) {
    EXPECT_EQ(AsList(QStringList()), "<parameters />\n");
    EXPECT_EQ(AsList({"", "", "", "", "", "", "", "", "", ""}), "<parameters />\n");
}

TEST(PerformParameterText, KeepsTheOrderOfTenAndSameNames) {
    QStringList ten;
    std::string expected = "<parameters>\n";
    for (int i = 10; i > 0; --i) {
        ten.append(QStringLiteral("n=%1").arg(i));
        expected += "\t<parameter name=\"n\" value=\"" + std::to_string(i) + "\" />\n";
    }
    EXPECT_EQ(AsList(ten), expected + "</parameters>\n");
}

TEST(PerformParameterText, KeepsSpacesAroundTheEquals) {
    EXPECT_EQ(AsList({" a = 1 "}), "<parameters>\n\t<parameter name=\" a \" value=\" 1 \" />\n</parameters>\n");
}

TEST(PerformParameterText, EscapesWhatXmlReserves) {
    EXPECT_EQ(AsList({"a=<\"&'>"}),
              "<parameters>\n\t<parameter name=\"a\" value='&lt;&quot;&amp;&apos;&gt;' />\n</parameters>\n");
}

TEST(PerformParameterText, IsEightBitTextWithQuestionMarksBeyond) {
    const QString text = QString::fromUtf8("a=\u00e9\u20ac");
    EXPECT_EQ(PerformParameters(QStringLiteral("XML"), {text}), "a=\xe9?");
    EXPECT_EQ(AsList({text}), "<parameters>\n\t<parameter name=\"a\" value=\"\xe9?\" />\n</parameters>\n");
}

} // namespace

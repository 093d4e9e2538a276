#include "GuardedXml.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <QThread>

namespace {

constexpr unsigned int kSmallStack = 512 * 1024;

std::string Times(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string Nested(int depth) {
    return Times("<a>", depth) + Times("</a>", depth);
}

std::string WithAttributes(int count) {
    std::string element = "<r";
    for (int i = 0; i < count; ++i)
        element += " a" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
    return element + "/>";
}

bool Parses(const std::string& text) {
    TiXmlDocument document;
    return ParseXml(document, text.c_str());
}

bool Within(const std::string& text, const XmlLimits& limits = XmlLimits(), bool utf8 = true) {
    return IsXmlWithinLimits(text.data(), text.size(), utf8, limits);
}

/// Runs work on a thread with little stack: an overflow ends the program.
void OnASmallStack(const std::function<void()>& work) {
    const std::unique_ptr<QThread> thread(QThread::create(work));
    thread->setStackSize(kSmallStack);
    thread->start();
    ASSERT_TRUE(thread->isRunning() || thread->isFinished());
    ASSERT_TRUE(thread->wait());
}

struct XmlCase {
    const char* sentence;
    std::string text;
    bool parses;
};

TEST(ParseXml, TakesWhatIsWholeAndRefusesWhatIsNot) {
    const XmlCase cases[] = {
        {"one element is a document", "<r/>", true},
        {"attributes, texts, comments and sections are part of it",
         "<?xml version=\"1.0\"?><!-- a > b --><r a=\"1\" b='2'>text &amp; more<![CDATA[<x>]]><s/></r>", true},
        {"a byte order mark is passed over", "\xEF\xBB\xBF<r/>", true},
        {"a text without an element is none", "text", false},
        {"the empty text is none", "", false},
        {"blanks alone are none", " \n\t", false},
        {"a comment alone is none", "<!-- c -->", false},
        {"a document type alone is none", "<!DOCTYPE html>", false},
        {"a document type before the root is passed over", "<!DOCTYPE html><r/>", true},
        {"an element without an end is none", "<r>", false},
        {"an end of another name is none", "<r></s>", false},
        {"a tag without an end is none", "<r", false},
        {"an attribute without a value is none", "<r a/>", false},
        {"an open quote is none", "<r a=\"1/>", false},
        {"the same attribute twice is none", "<r a=\"1\" a=\"2\"/>", false},
        {"characters of two, three and four bytes are taken", "<r a=\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAD\"/>", true},
        {"a byte that starts no character is refused", "<r a=\"\xFF\"/>", false},
        {"a continuation without a start is refused", "<r a=\"\x80\"/>", false},
        {"a character with a wrong second byte is refused", "<r a=\"\xC3(\"/>", false},
        {"a text cut inside its last character is refused", "<r>\xF0", false},
        {"and so with two of four bytes", "<r>\xF0\x9F", false},
        {"and so with three of four bytes", "<r>\xF0\x9F\x8E", false},
        {"and so with two of three bytes", "<r>\xE2\x82", false},
        {"and so with one of two bytes", "<r>\xC3", false},
    };
    for (const XmlCase& row : cases)
        EXPECT_EQ(Parses(row.text), row.parses) << row.sentence;
}

TEST(ParseXml, OfANullTextIsRefused) {
    TiXmlDocument document;
    EXPECT_FALSE(ParseXml(document, nullptr));
}

TEST(ParseXml, ReadsUtf8WhateverTheDeclarationSays) {
    TiXmlDocument document;
    ASSERT_TRUE(ParseXml(document, "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r a=\"&#233;\"/>"));
    EXPECT_STREQ(document.RootElement()->Attribute("a"), "\xC3\xA9");
}

TEST(ParseXml, TakesElementsNestedToTheLimitOnASmallStack) {
    OnASmallStack([] {
        EXPECT_TRUE(Parses(Nested(256)));
        EXPECT_FALSE(Parses(Nested(257)));
        EXPECT_FALSE(Parses(Nested(100000)));
        EXPECT_FALSE(Parses(Times("<a>", 100000)));
    });
}

/// Each text hides deep nesting behind markup that two readers might understand differently.
TEST(ParseXml, IsNotTalkedIntoDeepNestingByMarkupThatHidesIt) {
    const std::string deep = Times("<a>", 50000);
    const char* const prefixes[] = {
        "",
        "</x \">",
        "</x '>",
        "<r/></x \">",
        "<r/></x a=\">",
        "<!x \">",
        "<!DOCTYPE '>",
        "<?x \">",
        "<?xml version=\"1.0\" \">",
        "<?xml version=\">",
        "< \">",
        "<1 \">",
        "<-- \">",
        "<!-->",
        "<!--->",
        "<!-- -- >-->",
        "<!---->",
        "<![CDATA[]]>",
        "<![CDATA[ \"]]>",
        "<![cdata[ \">",
        "<![ \">",
        "<r a=b\">",
        "<r a='\"'>",
        "<r a=\"'\">",
        "<r \">",
        "<r/ \">",
        "<r a=\"/\">",
        "<r><x/ ></r>",
        "<\x7F \">",
        "<\xC3\xA9 \">",
        "<_ \">",
        "<:\">",
        "<>\">",
        "<<\">",
        "<r/><!-- \" --></r>",
        "</></></></>",
    };
    OnASmallStack([&] {
        for (const char* prefix : prefixes)
            EXPECT_FALSE(Parses(prefix + deep)) << prefix;
    });
}

TEST(ParseXml, CountsNoDepthForElementsThatFollowEachOther) {
    EXPECT_TRUE(Parses("<r>" + Times("<a><b/></a>", 5000) + "</r>"));
    EXPECT_TRUE(Parses("<r>" + Times("<a/>", 5000) + "</r>"));
    EXPECT_TRUE(Parses("<r>" + Times("<a b=\"/\"></a>", 5000) + "</r>"));
}

TEST(ParseXml, TakesMarkupInsideTextsForTexts) {
    EXPECT_TRUE(Parses("<r a=\"" + Times("&lt;a>", 1000) + "\"/>"));
    EXPECT_TRUE(Parses("<r><!--" + Times("<a>", 1000) + "--></r>"));
    EXPECT_TRUE(Parses("<r><![CDATA[" + Times("<a>", 1000) + "]]></r>"));
    EXPECT_TRUE(Parses("<r a=\"" + Times("<a>", 1000) + "\"/>"));
}

TEST(ParseXml, TakesAThousandAttributesOnAnElementAndNoMore) {
    EXPECT_TRUE(Parses(WithAttributes(1000)));
    EXPECT_FALSE(Parses(WithAttributes(1001)));
    EXPECT_FALSE(Parses("<r>" + WithAttributes(200000) + "</r>"));
}

TEST(ParseXml, CountsOnlyEqualsSignsOutsideQuotes) {
    EXPECT_TRUE(Parses("<r a=\"" + Times("=", 2000) + "\"/>"));
    EXPECT_TRUE(Parses("<r>" + Times("=", 2000) + "</r>"));
}

TEST(ParseXml, RefusesAnUnknownSectionWhoseEndStandsInQuotes) {
    EXPECT_FALSE(Parses("<!DOCTYPE a \">\"><r/>"));
    EXPECT_FALSE(Parses("<?x '>' ?><r/>"));
    EXPECT_TRUE(Parses("<!DOCTYPE a \"quoted\"><r/>"));
}

TEST(IsXmlWithinLimits, RefusesANullTextAndANulInsideOne) {
    EXPECT_FALSE(IsXmlWithinLimits(nullptr, 0, true));
    EXPECT_FALSE(Within(std::string("<r>\0</r>", 8)));
    EXPECT_TRUE(Within(""));
}

TEST(IsXmlWithinLimits, RefusesATextThatIsTooLong) {
    XmlLimits limits;
    limits.bytes = 10;
    EXPECT_TRUE(Within("<r>123</r>", limits));
    EXPECT_FALSE(Within("<r>1234</r>", limits));
    EXPECT_EQ(XmlLimits().bytes, 64u * 1024 * 1024);
}

TEST(IsXmlWithinLimits, RefusesWhatIsTooDeep) {
    XmlLimits limits;
    limits.depth = 2;
    EXPECT_TRUE(Within("<a><b/></a>", limits));
    EXPECT_TRUE(Within("<a><b></b><b></b></a>", limits));
    EXPECT_FALSE(Within("<a><b><c></c></b></a>", limits));
}

TEST(IsXmlWithinLimits, RefusesTooManyAttributesOfOneElementAndNotOfSeveral) {
    XmlLimits limits;
    limits.attributesOfOneElement = 2;
    EXPECT_TRUE(Within("<a b='1' c='2'><d e='1' f='2'/></a>", limits));
    EXPECT_FALSE(Within("<a b='1' c='2' d='3'/>", limits));
}

TEST(IsXmlWithinLimits, TakesAny8BitTextWhenItNeedNotBeUtf8) {
    EXPECT_FALSE(Within("<r>\xE9</r>"));
    EXPECT_TRUE(Within("<r>\xE9</r>", XmlLimits(), false));
}

TEST(PrintXml, IndentsByTabsAndParsesBackToTheSame) {
    TiXmlDocument document;
    ASSERT_TRUE(ParseXml(document, "<r a=\"1\"><s><t b=\"&lt;&amp;&quot;\"/></s><!--c--></r>"));
    const std::string printed = PrintXml(document);
    EXPECT_EQ(printed, "<r a=\"1\">\n\t<s>\n\t\t<t b='&lt;&amp;&quot;' />\n\t</s>\n\t<!--c-->\n</r>\n");
    TiXmlDocument again;
    ASSERT_TRUE(ParseXml(again, printed.c_str()));
    EXPECT_EQ(PrintXml(again), printed);
    EXPECT_EQ(PrintXml(*document.RootElement()->FirstChildElement()), "<s>\n\t<t b='&lt;&amp;&quot;' />\n</s>\n");
}

} // namespace

#include "XMLDocument.h"

#include "ScriptFixture.h"

namespace {

class XmlDocument : public ScriptFixture {
protected:
    XmlDocument() {
        Run("var d = new XMLDocument(); function parsed(t) { var n = new XMLDocument(); n.Parse(t); return n }");
    }
};

TEST_F(XmlDocument, IsWalkedFromElementToElement) {
    Run("d.Parse(\"<a><b x='1'>t</b><b/></a>\"); var a = d.DocumentElement(), b = a.FirstChildElement('b')");
    Check({{"no error", "d.Error()", "false"},
           {"the root's name", "a.GetTagName()", "a"},
           {"an attribute", "b.Attribute('x')", "1"},
           {"a text", "b.GetText()", "t"},
           {"a sibling", "b.NextSiblingElement('b').IsNull()", "false"},
           {"no further sibling", "b.NextSiblingElement('b').NextSiblingElement('b').IsNull()", "true"}});
}

TEST_F(XmlDocument, IsInErrorForATextThatIsNotXml) {
    Check({{"an open element", "parsed('<a>').Error()", "true"},
           {"an empty text", "parsed('').Error()", "true"},
           {"spaces", "parsed('   ').Error()", "true"},
           {"plain text", "parsed('hello').Error()", "true"},
           {"crossed elements", "parsed('<a><b></a></b>').Error()", "true"},
           {"an attribute without a value", "parsed('<a x></a>').Error()", "true"},
           {"half a tag", "parsed('<a').Error()", "true"},
           {"an unfinished comment", "parsed('<a><!-- </a>').Error()", "true"},
           {"an unfinished section", "parsed('<a><![CDATA[ </a>').Error()", "true"},
           {"two attributes of one name", "parsed(\"<a x='1' x='2'/>\").Error()", "true"},
           {"a new document", "new XMLDocument().Error()", "false"}});
}

TEST_F(XmlDocument, KeepsWhatStandsBeforeAnError) {
    EXPECT_EQ(Run("parsed(\"<a x='1'><b/>\").DocumentElement().Attribute('x')"), "1");
}

TEST_F(XmlDocument, ForgetsAnErrorAtTheNextParse) {
    EXPECT_EQ(Run("d.Parse('<a>'); var first = d.Error(); d.Parse('<b/>'); first + ' ' + d.Error()"), "true false");
}

TEST_F(XmlDocument, AddsASecondTextToTheSameDocument) {
    Check({{"behind the first",
            "d.Parse('<a/>'); d.Parse('<b/>'); d.DocumentElement().NextSiblingElement().GetTagName()", "b"},
           {"the first element stays", "d.DocumentElement().GetTagName()", "a"}});
}

TEST_F(XmlDocument, GivesAViewOfNothingWhenItIsEmpty) {
    Check({{"null", "d.DocumentElement().IsNull()", "true"},
           {"a comment alone", "parsed('<!-- c -->').DocumentElement().IsNull()", "true"},
           {"a comment alone is no error", "parsed('<!-- c -->').Error()", "false"}});
}

TEST_F(XmlDocument, ReadsEntitiesSectionsCommentsAndDeclarations) {
    Check(
        {{"entities", "parsed('<a>&lt;&amp;&gt;&quot;&apos;&#65;&#x42;</a>').DocumentElement().GetText()", "<&>\"'AB"},
         {"an unknown entity loses its first character", "parsed('<a>&nothing;</a>').DocumentElement().GetText()",
          "nothing;"},
         {"entities in attributes", "parsed(\"<a x='&lt;&quot;'/>\").DocumentElement().Attribute('x')", "<\""},
         {"a section", "parsed('<a><![CDATA[<b>&amp;]]></a>').DocumentElement().GetText()", "<b>&amp;"},
         {"a section prints as one", "parsed('<a><![CDATA[<b>]]></a>').DocumentElement().ToString()",
          "<a>\n\t<![CDATA[<b>]]>\n</a>\n"},
         {"a comment before the root", "parsed('<!-- c --><a/>').DocumentElement().GetTagName()", "a"},
         {"a comment before the text is no text", "parsed('<a><!-- c -->t</a>').DocumentElement().GetText()", ""},
         {"a declaration",
          "parsed('<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a/>').DocumentElement().GetTagName()", "a"},
         {"a document type", "parsed('<!DOCTYPE a><a/>').DocumentElement().GetTagName()", "a"},
         {"an entity bomb is not expanded",
          "parsed('<!DOCTYPE a [<!ENTITY x \"yyyyyyyy\">]><a>&x;</a>').Error() || "
          "parsed('<!DOCTYPE a [<!ENTITY x \"yyyyyyyy\">]><a>&x;</a>').DocumentElement().ToString().length < 60",
          "true"}});
}

TEST_F(XmlDocument, IsInLatin1AndOtherCharactersDoNotSurviveAsIsMeant) {
    Check({{"Latin-1 is kept", "parsed('<a>\\u00e9</a>').DocumentElement().GetText() == '\\u00e9'", "true"},
           {"also between other letters",
            "parsed(\"<a x='\\u00e9\\u00ff'>\\u00e4</a>\").DocumentElement().Attribute('x').length", "2"},
           {"others become question marks", "parsed('<a>\\u20ac</a>').DocumentElement().GetText()", "?"},
           {"in tag names", "parsed('<a\\u00e9/>').DocumentElement().GetTagName() == 'a\\u00e9'", "true"}});
}

TEST_F(XmlDocument, EndsTheTextAtAZeroCharacter) {
    EXPECT_EQ(Run("parsed('<a/>\\u0000<b>').Error()"), "false");
}

TEST_F(XmlDocument, RefusesWhatWouldOverrunTheParser) {
    Run("function nested(n) { return new Array(n + 1).join('<a>') + new Array(n + 1).join('</a>') }"
        "function flat(n) { return '<a ' + new Array(n + 1).join('x=\"1\" ') + '/>' }");
    Check({{"nested as deep as allowed", "parsed(nested(256)).Error()", "false"},
           {"too deep", "parsed(nested(257)).Error()", "true"},
           {"far too deep", "parsed(nested(200000)).Error()", "true"},
           {"too deep and unfinished", "parsed(new Array(300000).join('<a>')).Error()", "true"},
           {"many attributes", "parsed(flat(100000)).Error()", "true"},
           {"what is refused adds nothing", "parsed(nested(257)).DocumentElement().IsNull()", "true"},
           {"what was there before stays", "d.Parse('<x/>'); d.Parse(nested(257)); d.DocumentElement().GetTagName()",
            "x"},
           {"a wide document", "parsed('<a>' + new Array(200001).join('<b/>') + '</a>').Error()", "false"},
           {"a long text", "parsed('<a>' + new Array(2000001).join('x') + '</a>').DocumentElement().GetText().length",
            "2000000"}});
}

TEST_F(XmlDocument, IsBuiltFromNewElements) {
    Run("var e = d.CreateElement('show'); e.SetAttribute('name', 'Odin'); var c = d.CreateElement('cue'); "
        "c.SetText('1')");
    Check({{"not yet in the tree", "d.DocumentElement().IsNull()", "true"},
           {"appended", "d.AppendChild(e); e.AppendChild(c); d.DocumentElement().ToString()",
            "<show name=\"Odin\">\n\t<cue>1</cue>\n</show>\n"},
           {"a second root is behind the first",
            "d.AppendChild(d.CreateElement('more'));"
            "d.DocumentElement().NextSiblingElement().GetTagName()",
            "more"}});
}

TEST_F(XmlDocument, IgnoresChildrenThatAreNoElements) {
    Check({{"values",
            "d.AppendChild(null); d.AppendChild(5); d.AppendChild('<a/>'); d.AppendChild({});"
            "d.AppendChild(new Checksum()); d.AppendChild(new Buffer(3)); d.AppendChild(d);"
            "d.DocumentElement().IsNull()",
            "true"},
           {"a view of nothing", "d.AppendChild(d.DocumentElement()); d.DocumentElement().IsNull()", "true"}});
}

} // namespace

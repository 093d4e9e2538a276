#include "XMLElement.h"

#include "ScriptFixture.h"
#include "XmlTree.h"

namespace {

class XmlElement : public ScriptFixture {
protected:
    XmlElement() {
        Run("var d = new XMLDocument(); var e = d.CreateElement('x'); var none = d.DocumentElement();"
            "function parsed(t) { var n = new XMLDocument(); n.Parse(t); return n.DocumentElement() }");
    }
};

TEST_F(XmlElement, PrintsItsTextOnOneLineAndItsTreeWithTabs) {
    Check({{"empty", "e.ToString()", "<x />\n"},
           {"text", "e.SetText('1'); e.ToString()", "<x>1</x>\n"},
           {"nested", "parsed('<a><b><c>t</c></b><d/></a>').ToString()",
            "<a>\n\t<b>\n\t\t<c>t</c>\n\t</b>\n\t<d />\n</a>\n"},
           {"a part of a tree", "parsed('<a><b><c/></b></a>').FirstChildElement().ToString()", "<b>\n\t<c />\n</b>\n"},
           {"special characters", "e.SetText('<&>\"'); e.SetAttribute('q', 'a\"<'); e.ToString()",
            "<x q='a&quot;&lt;'>&lt;&amp;&gt;&quot;</x>\n"},
           {"Latin-1", "e.SetText('\\u00e9'); e.ToString().indexOf('\\u00e9') > 0", "true"}});
}

TEST_F(XmlElement, FindsChildrenAndSiblings) {
    Run("var a = parsed('<a>t<b/><!-- c --><c/><b n=\"2\"/></a>')");
    Check({{"first child", "a.FirstChildElement().GetTagName()", "b"},
           {"first child of a name", "a.FirstChildElement('c').GetTagName()", "c"},
           {"no child of a name", "a.FirstChildElement('z').IsNull()", "true"},
           {"names are case-sensitive", "a.FirstChildElement('B').IsNull()", "true"},
           {"sibling", "a.FirstChildElement().NextSiblingElement().GetTagName()", "c"},
           {"sibling of a name", "a.FirstChildElement().NextSiblingElement('b').Attribute('n')", "2"},
           {"no sibling", "a.NextSiblingElement().IsNull()", "true"},
           {"a child of an empty element", "a.FirstChildElement().FirstChildElement().IsNull()", "true"},
           {"an empty name finds nothing", "a.FirstChildElement('').IsNull()", "true"}});
}

TEST_F(XmlElement, GivesNothingAtAllBehindAViewOfNothing) {
    Check({{"first child", "typeof none.FirstChildElement()", "undefined"},
           {"named child", "typeof none.FirstChildElement('b')", "undefined"},
           {"sibling", "typeof none.NextSiblingElement()", "undefined"},
           {"named sibling", "typeof none.NextSiblingElement('b')", "undefined"}});
}

TEST_F(XmlElement, DoesNothingOnAViewOfNothing) {
    Check({{"changes",
            "none.SetTagName('a'); none.SetText('t'); none.SetAttribute('a', 'b'); none.RemoveAttribute('a');"
            "none.AppendChild(e); none.IsNull()",
            "true"},
           {"what was given stays free", "d.AppendChild(e); d.DocumentElement().GetTagName()", "x"},
           {"texts are empty", "none.GetTagName() + none.GetText() + none.Attribute('a') + none.ToString()", ""}});
}

TEST_F(XmlElement, HasATagNameAndAttributes) {
    Check({{"name", "e.GetTagName()", "x"},
           {"renamed", "e.SetTagName('y'); e.GetTagName() + e.ToString()", "y<y />\n"},
           {"attribute", "e.SetAttribute('a', '1'); e.Attribute('a')", "1"},
           {"changed", "e.SetAttribute('a', '2'); e.Attribute('a')", "2"},
           {"missing", "e.Attribute('missing') === ''", "true"},
           {"empty looks like missing, as is meant", "e.SetAttribute('b', ''); e.Attribute('b') === ''", "true"},
           {"a number is taken as text", "e.SetAttribute('n', 5); e.Attribute('n')", "5"},
           {"removed", "e.RemoveAttribute('a'); e.Attribute('a')", ""},
           {"removed once more", "e.RemoveAttribute('a'); e.ToString()", "<y b=\"\" n=\"5\" />\n"},
           {"other characters become question marks", "e.SetAttribute('c', '\\u20ac'); e.Attribute('c')", "?"}});
}

TEST_F(XmlElement, ReplacesItsText) {
    Check({{"set", "e.SetText('1'); e.GetText()", "1"},
           {"replaced", "e.SetText('2'); e.GetText() + e.ToString()", "2<x>2</x>\n"},
           {"emptied", "e.SetText(''); e.GetText()", ""},
           {"one text and an element leave the new text at the end",
            "var p = parsed('<a>old<b/></a>'); p.SetText('new'); p.ToString()", "<a>\n\t<b />\n\tnew\n</a>\n"},
           {"an element first", "p = parsed('<a><b/>old</a>'); p.SetText('new'); p.ToString()",
            "<a>\n\t<b />\n\tnew\n</a>\n"},
           {"a text behind an element is no text of its own, as is meant", "p = parsed('<a><b/>t</a>'); p.GetText()",
            ""}});
}

/// After the removal of the first text the scan steps over the node that has become first.
TEST_F(XmlElement, LeavesATextThatHasBecomeFirstAsIsMeant) {
    EXPECT_EQ(Run("var p = parsed('<a>one<![CDATA[two]]><b/></a>'); p.SetText('new'); p.ToString()"),
              "<a>\n\t<![CDATA[two]]>\n\t<b />\n\tnew\n</a>\n");
}

TEST_F(XmlElement, SharesItsNodeWithTheTree) {
    Run("var root = d.CreateElement('root'); d.AppendChild(root); root.AppendChild(e)");
    Check({{"a later change shows",
            "e.SetAttribute('late', '1'); d.DocumentElement().FirstChildElement().Attribute('late')", "1"},
           {"two views of one element", "d.DocumentElement().FirstChildElement().SetText('both'); e.GetText()", "both"},
           {"a tree built from below",
            "var t = d.CreateElement('top'), m = d.CreateElement('mid'), l = d.CreateElement('low');"
            "m.AppendChild(l); t.AppendChild(m); l.SetText('!'); t.ToString()",
            "<top>\n\t<mid>\n\t\t<low>!</low>\n\t</mid>\n</top>\n"}});
}

TEST_F(XmlElement, IsAppendedOnce) {
    Check({{"twice", "d.AppendChild(e); d.AppendChild(e)",
            "threw Error: AppendChild: the element has been appended already"},
           {"elsewhere", "var f = d.CreateElement('f'); f.AppendChild(e)",
            "threw Error: AppendChild: the element has been appended already"},
           {"one that was parsed", "f.AppendChild(parsed('<a><b/></a>').FirstChildElement())",
            "threw Error: AppendChild: the element has been appended already"},
           {"to itself", "f.AppendChild(f)", "threw Error: AppendChild: an element cannot become a part of itself"},
           {"to what is inside it", "var g = d.CreateElement('g'); f.AppendChild(g); g.AppendChild(f)",
            "threw Error: AppendChild: an element cannot become a part of itself"},
           {"all is as it was", "f.ToString() + d.DocumentElement().ToString()", "<f>\n\t<g />\n</f>\n<x />\n"}});
}

TEST_F(XmlElement, IgnoresChildrenThatAreNoElements) {
    EXPECT_EQ(Run("e.AppendChild(null); e.AppendChild(5); e.AppendChild('<a/>'); e.AppendChild(none); e.AppendChild(d);"
                  "e.ToString()"),
              "<x />\n");
}

TEST_F(XmlElement, IsNotBuiltDeeperThanTheParserGoes) {
    Run("function chain(n) { var top = d.CreateElement('a'), at = top;"
        "  for (var i = 1; i < n; ++i) { var next = d.CreateElement('a'); at.AppendChild(next); at = next } return top "
        "}");
    Check({{"as deep as allowed", "chain(256).ToString().split('<a').length", "257"},
           {"too deep from above", "chain(257)", "threw Error: AppendChild: more than 256 levels of elements"},
           {"too deep by joining",
            "var one = chain(200), two = chain(57), at = one;"
            "while (!at.FirstChildElement().IsNull()) at = at.FirstChildElement(); at.AppendChild(two)",
            "threw Error: AppendChild: more than 256 levels of elements"},
           {"as deep as allowed by joining", "at.AppendChild(chain(56)); d.AppendChild(one); d.Error()", "false"},
           {"from below",
            "var low = d.CreateElement('a'); for (var i = 1; i < 256; ++i) {"
            "  var up = d.CreateElement('a'); up.AppendChild(low); low = up } low.ToString().length > 0",
            "true"},
           {"too deep from below", "up = d.CreateElement('a'); up.AppendChild(low)",
            "threw Error: AppendChild: more than 256 levels of elements"},
           {"a joined tree remembers how deep it is",
            "var top = d.CreateElement('t'), mid = d.CreateElement('m'); top.AppendChild(mid); "
            "mid.AppendChild(chain(254));"
            "var above = d.CreateElement('u'); above.AppendChild(top)",
            "threw Error: AppendChild: more than 256 levels of elements"}});
}

/// A quotation mark is six characters in print.
TEST_F(XmlElement, IsNotPrintedWhenTheEngineCouldNotHoldTheText) {
    Run("var quotes = new Buffer(45000000); quotes.fill('\"'); e.SetText(quotes.toString()); quotes = null; gc()");
    Check({{"refused", "e.ToString()", "threw RangeError: XMLElement: no memory for the text"},
           {"the text is there", "e.GetText().length", "45000000"},
           {"printed again", "e.SetText('1'); e.ToString()", "<x>1</x>\n"}});
}

TEST_F(XmlElement, TurnsWantOfMemoryIntoAScriptError) {
    const QScriptValue function = engine.newFunction([](QScriptContext* context, QScriptEngine*) {
        return WithXmlText(context, []() -> QScriptValue { throw std::bad_alloc(); });
    });
    engine.globalObject().setProperty(QStringLiteral("fail"), function);
    EXPECT_EQ(Run("try { fail() } catch (x) { String(x) }"), "RangeError: XMLElement: no memory for the text");
}

TEST_F(XmlElement, TakesNamesThatAreNoneAsTheyAre) {
    Check(
        {{"empty", "e = d.CreateElement(''); e.SetAttribute('', ''); e.SetText(''); e.GetTagName() + e.GetText()", ""},
         {"markup", "e = d.CreateElement('a<b'); e.GetTagName() + e.Attribute('<')", "a<b"},
         {"a zero character ends a name", "e.SetTagName('x\\u0000y'); e.GetTagName()", "x"}});
}

TEST_F(XmlElement, ShowsItsOwnMethodsAlone) {
    EXPECT_EQ(Run("typeof e.deleteLater + typeof e.objectName + typeof e.destroyed"), "undefinedundefinedundefined");
}

} // namespace

#include <random>

#include "ScriptFixture.h"

namespace {

class XmlLifetime : public ScriptFixture {};

TEST_F(XmlLifetime, KeepsAnElementWhoseDocumentWasDropped) {
    Check({{"parsed",
            "var d = new XMLDocument(); d.Parse('<a><b>t</b></a>'); var b = d.DocumentElement().FirstChildElement();"
            "d = null; gc(); gc(); b.GetText() + b.ToString()",
            "t<b>t</b>\n"},
           {"appended",
            "d = new XMLDocument(); var e = d.CreateElement('e'); d.AppendChild(e); d = null; gc(); e.SetText('x');"
            "e.ToString()",
            "<e>x</e>\n"},
           {"never appended", "e = new XMLDocument().CreateElement('e'); gc(); e.GetTagName()", "e"},
           {"navigated from one that was dropped",
            "var r = new XMLDocument().CreateElement('r'), c = new XMLDocument().CreateElement('c'); r.AppendChild(c); "
            "r = null;"
            "gc(); c.AppendChild(new XMLDocument().CreateElement('g')); gc(); c.ToString()",
            "<c>\n\t<g />\n</c>\n"}});
}

TEST_F(XmlLifetime, KeepsADocumentWhoseElementsWereDropped) {
    EXPECT_EQ(
        Run("var d = new XMLDocument(); (function () { var r = d.CreateElement('r'); d.AppendChild(r);"
            "for (var i = 0; i < 3; ++i) { var c = d.CreateElement('c'); c.SetText(String(i)); r.AppendChild(c) } })();"
            "gc(); gc(); d.DocumentElement().FirstChildElement().NextSiblingElement().GetText()"),
        "1");
}

TEST_F(XmlLifetime, KeepsAllPartsOfATreeThatWasJoinedFromOthers) {
    EXPECT_EQ(Run("var d = new XMLDocument(), parts = [];"
                  "for (var i = 0; i < 50; ++i) { var p = d.CreateElement('p' + i); if (i) parts[i - 1].AppendChild(p);"
                  "  parts.push(p); if (i % 7 == 0) gc() }"
                  "d.AppendChild(parts[0]); d = null; var last = parts[49]; parts = null; gc(); gc();"
                  "last.SetText('end'); last.ToString()"),
              "<p49>end</p49>\n");
}

/// Whatever a script does, in whatever order things go, with collections in between.
TEST_F(XmlLifetime, SurvivesEveryOrderInWhichThingsGo) {
    Run("var docs = [], elements = [], errors = 0;"
        "function step(kind, i, k) {"
        "  var d = docs[i % 5] || (docs[i % 5] = new XMLDocument()), e = elements[i % 12], f = elements[k % 12];"
        "  try { switch (kind) {"
        "    case 0: docs[i % 5] = null; break;"
        "    case 1: elements[i % 12] = null; break;"
        "    case 2: elements[k % 12] = d.CreateElement('n' + i); break;"
        "    case 3: if (f) d.AppendChild(f); break;"
        "    case 4: if (e && f) e.AppendChild(f); break;"
        "    case 5: elements[k % 12] = d.DocumentElement(); break;"
        "    case 6: if (e) elements[k % 12] = e.FirstChildElement(); break;"
        "    case 7: if (e) elements[k % 12] = e.NextSiblingElement(); break;"
        "    case 8: if (e) e.SetText('t' + i); break;"
        "    case 9: if (e) e.ToString(); break;"
        "    case 10: d.Parse('<a><b>' + i + '</b><c/></a>'); break;"
        "    case 11: if (e) e.SetAttribute('a' + k % 3, String(i)); break;"
        "    case 12: gc(); break; } } catch (x) { ++errors } }");
    QScriptValue step = engine.globalObject().property(QStringLiteral("step"));
    std::mt19937 random(99);
    for (int i = 0; i < 30000; ++i) {
        const auto pick = [&](int most) { return QScriptValue(std::uniform_int_distribution<int>(0, most)(random)); };
        const int kind = i % 40 == 0 ? 12 : std::uniform_int_distribution<int>(0, 11)(random);
        step.call(QScriptValue(), QScriptValueList{QScriptValue(kind), pick(1000), pick(1000)});
    }
    EXPECT_FALSE(engine.hasUncaughtException());
    EXPECT_GT(engine.evaluate(QStringLiteral("errors")).toInt32(), 0)
        << "no refusal was met, so the steps are too tame";
}

TEST_F(XmlLifetime, GivesBackWhatAScriptHasDropped) {
    const std::string round =
        "for (var i = 0; i < 300; ++i) { var d = new XMLDocument(), r = d.CreateElement('r');"
        "d.AppendChild(r); for (var k = 0; k < 10; ++k) { var c = d.CreateElement('c'); c.SetText('x');"
        "r.AppendChild(c) } d.Parse('<m><n/><n/></m>'); d.DocumentElement().FirstChildElement() } gc(); 1";
    ASSERT_EQ(Run(round), "1");
    ASSERT_EQ(Run(round), "1");
    const long before = ResidentKilobytes();
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(Run(round), "1");
    EXPECT_LT(ResidentKilobytes() - before, MEMORY_ALLOWANCE_KB);
}

} // namespace

#include "ScriptFixture.h"

namespace {

class BufferMethods : public ScriptFixture {
protected:
    BufferMethods() { Run("function hex(b) { return b.toString('hex') }"); }
};

TEST_F(BufferMethods, TurnBytesIntoText) {
    Check({{"UTF-8 by default", "new Buffer([0xc3, 0xa9]).toString() == '\\u00e9'", "true"},
           {"ends at a zero byte, as is meant", "new Buffer([65, 0, 66]).toString()", "A"},
           {"hex does not", "new Buffer([65, 0, 66]).toString('hex')", "410042"},
           {"ascii looks at seven bits, as is meant", "new Buffer([0xc1]).toString('ascii')", "A"},
           {"base64", "new Buffer('ABC').toString('base64')", "QUJD"},
           {"an unknown encoding means UTF-8", "new Buffer('abc').toString('Hex')", "abc"},
           {"a stretch", "new Buffer('abcdef').toString('utf8', 1, 3)", "bc"},
           {"from a position", "new Buffer('abcdef').toString('utf8', 4)", "ef"},
           {"a negative start is the start", "new Buffer('abc').toString('utf8', -5, 2)", "ab"},
           {"a negative end is the length", "new Buffer('abc').toString('utf8', 1, -9)", "bc"},
           {"an end before the start is empty", "new Buffer('abc').toString('utf8', 2, 1)", ""},
           {"a start past the end is empty", "new Buffer('abc').toString('utf8', 9)", ""},
           {"an end past the end is the length", "new Buffer('abc').toString('utf8', 1, 2147483647)", "bc"},
           {"the largest numbers", "new Buffer('abc').toString('utf8', 2147483647, 2147483647)", ""},
           {"of nothing", "new Buffer().toString() + new Buffer().toString('hex')", ""}});
}

TEST_F(BufferMethods, CopyOverBytesOfATargetThatNeverGrows) {
    Run("var s = new Buffer('abcdef'); function into(size, args) {"
        "  var t = new Buffer(size); t.fill('.'); s.copy.apply(s, [t].concat(args)); return t.toString() }");
    Check(
        {{"all", "into(8, [])", "abcdef.."},
         {"as much as there is room for", "into(3, [])", "abc"},
         {"to a position", "into(8, [6])", "......ab"},
         {"from a position", "into(8, [0, 4])", "ef......"},
         {"a stretch", "into(8, [1, 2, 4])", ".cd....."},
         {"a target position past the end does nothing", "into(3, [10])", "..."},
         {"a target position at the end does nothing", "into(3, [3])", "..."},
         {"negative positions are the start", "into(8, [-4, -2, 2])", "ab......"},
         {"a negative end is the length", "into(8, [0, 4, -7])", "ef......"},
         {"an end past the end is the length", "into(8, [0, 4, 99])", "ef......"},
         {"a start past the end is nothing", "into(8, [0, 99])", "........"},
         {"a start behind the end is nothing", "into(8, [0, 4, 2])", "........"},
         {"the largest numbers", "into(8, [0, 2147483647, 2147483647])", "........"},
         {"a target that is no Buffer", "typeof s.copy({}) + typeof s.copy('x') + typeof s.copy(null)",
          "undefinedundefinedundefined"},
         {"an empty target", "into(0, [])", ""},
         {"within one buffer to the right", "var o = new Buffer('abcdef'); o.copy(o, 2, 0, 4); o.toString()", "ababcd"},
         {"within one buffer to the left", "var o = new Buffer('abcdef'); o.copy(o, 0, 2); o.toString()", "cdefef"},
         {"bytes that are shared stay apart",
          "var o = new Buffer('--'), p = new Buffer(o); s.copy(p); o + p.toString()", "--ab"}});
}

TEST_F(BufferMethods, WriteOverBytesAndNeverGrow) {
    Run("function wrote(size, args) { var b = new Buffer(size); b.fill('.');"
        "  return b.write.apply(b, args) + ' ' + b.toString() }");
    Check({{"all", "wrote(5, ['abc'])", "3 abc.."},
           {"to the end", "wrote(3, ['abcdef', 1])", "2 .ab"},
           {"so many", "wrote(5, ['abcdef', 1, 2])", "2 .ab.."},
           {"not more than the text has", "wrote(5, ['ab', 0, 4])", "2 ab..."},
           {"none", "wrote(5, ['ab', 0, 0])", "0 ....."},
           {"a negative offset is the start", "wrote(5, ['ab', -3])", "2 ab..."},
           {"an offset past the end writes nothing", "wrote(3, ['ab', 9])", "0 ..."},
           {"the largest numbers", "wrote(3, ['ab', 2147483647, 2147483647])", "0 ..."},
           {"hex", "wrote(3, ['4142', 0, -1, 'hex'])", "2 AB."},
           {"base64", "wrote(3, ['QUI=', 0, -1, 'base64'])", "2 AB."},
           {"half a character of UTF-8", "var b = new Buffer(1); b.write('\\u00e9') + hex(b)", "1c3"},
           {"ascii", "var b = new Buffer(1); b.write('\\u00e9', 0, -1, 'ascii') + hex(b)", "1e9"},
           {"an empty buffer", "new Buffer().write('abc')", "0"},
           {"a number is taken as text", "wrote(5, [12])", "2 12..."}});
}

TEST_F(BufferMethods, JoinBuffers) {
    Run("var x = new Buffer('ab'), y = new Buffer('cd')");
    Check({{"two", "x.concat([x, y]).toString()", "abcd"},
           {"the first bytes", "var c = x.concat([x, y], 1); c.toString() + c.length", "a1"},
           {"a total beyond the end adds nothing", "x.concat([x, y], 99).length", "4"},
           {"a negative total is all", "x.concat([x, y], -5).length", "4"},
           {"a total of zero is empty", "x.concat([x, y], 0).length", "0"},
           {"others are skipped", "x.concat([1, x, 'zz', null, y, {}]).toString()", "abcd"},
           {"the only element itself", "x.concat([x]) === x", "true"},
           {"the only element itself, whatever the total", "x.concat([x], 1) === x", "true"},
           {"a copy when there is more in the array", "var c = x.concat([x, 5]); c === x || c.toString()", "ab"},
           {"one element that is no Buffer", "x.concat([5]).length", "0"},
           {"an empty array", "x.concat([]).length", "0"},
           {"no array", "(x.concat('ab') instanceof Buffer) + ' ' + x.concat('ab').length", "true 0"},
           {"a Buffer is no array", "x.concat(y).length", "0"},
           {"the same one twice", "x.concat([x, x]).toString()", "abab"},
           {"the result is of its own", "var c = x.concat([x, y]); c[0] = 90; x.toString()", "ab"},
           {"it looks at the list alone", "Buffer.prototype.concat([x, y]).toString()", "abcd"}});
}

TEST_F(BufferMethods, FillAStretch) {
    Run("function filled(args) { var b = new Buffer('abcd'); b.fill.apply(b, args); return hex(b) }");
    Check({{"all", "filled([1])", "01010101"},
           {"a number is cut", "filled([257.9])", "01010101"},
           {"a character", "filled(['xyz'])", "78787878"},
           {"an empty text is zero", "filled([''])", "00000000"},
           {"a Latin-1 character", "filled(['\\u00e9'])", "e9e9e9e9"},
           {"a character that is not Latin-1 is zero", "filled(['\\u20ac'])", "00000000"},
           {"null does nothing", "filled([null])", "61626364"},
           {"undefined does nothing", "filled([undefined])", "61626364"},
           {"true does nothing", "filled([true])", "61626364"},
           {"an object does nothing", "filled([{}])", "61626364"},
           {"from a position", "filled([0, 2])", "61620000"},
           {"a stretch", "filled([0, 1, 3])", "61000064"},
           {"a negative offset is the start", "filled([0, -2, 1])", "00626364"},
           {"an offset past the end does nothing", "filled([0, 9])", "61626364"},
           {"a negative end is the length", "filled([0, 3, -4])", "61626300"},
           {"an end past the end is the length", "filled([0, 3, 99])", "61626300"},
           {"an end before the offset does nothing", "filled([0, 3, 1])", "61626364"},
           {"what else shares the bytes stays", "var a = new Buffer('ab'), c = new Buffer(a); c.fill(0); a.toString()",
            "ab"}});
}

TEST_F(BufferMethods, CutNewBuffers) {
    Run("var b = new Buffer('abcd')");
    Check({{"left", "b.left(2).toString()", "ab"},
           {"left of more", "b.left(9).toString()", "abcd"},
           {"left of a negative", "b.left(-1).toString()", "abcd"},
           {"left of none", "b.left(0).length", "0"},
           {"right", "b.right(2).toString()", "cd"},
           {"right of more", "b.right(2147483647).toString()", "abcd"},
           {"right of a negative", "b.right(-1).toString()", "abcd"},
           {"middle", "b.middle(1, 2).toString()", "bc"},
           {"middle to the end", "b.middle(1).toString()", "bcd"},
           {"middle of a negative", "b.middle(-3, 2).toString()", "ab"},
           {"middle of a negative length", "b.middle(2, -8).toString()", "cd"},
           {"middle past the end", "b.middle(9).length + b.middle(9, 2).length", "0"},
           {"middle with the largest numbers", "b.middle(2147483647, 2147483647).length", "0"},
           {"middle of more", "b.middle(2, 2147483647).toString()", "cd"},
           {"the result is a Buffer of its own", "var l = b.left(-1); l[0] = 90; b.toString() + (l instanceof Buffer)",
            "abcdtrue"}});
}

TEST_F(BufferMethods, GiveTheVariantAsValue) {
    Check({{"no Buffer", "new Buffer('abc').valueOf() instanceof Buffer", "false"},
           {"but its text", "String(new Buffer('abc').valueOf())", "abc"}});
}

TEST_F(BufferMethods, DoNothingOnWhatIsNoBuffer) {
    Run("var p = Buffer.prototype");
    Check({{"toString gives an empty text", "p.toString.call({}) + p.toString.call(5) + p.toString()", ""},
           {"left", "typeof p.left.call({}, 1)", "undefined"},
           {"right", "typeof p.right.call([1], 1)", "undefined"},
           {"middle", "typeof p.middle.call('abc', 1)", "undefined"},
           {"write", "typeof p.write.call({}, 'abc')", "undefined"},
           {"fill", "var o = {length: 2}; p.fill.call(o, 1); typeof o[0]", "undefined"},
           {"copy", "var t = new Buffer('ab'); p.copy.call({}, t); t.toString()", "ab"},
           {"valueOf", "typeof p.valueOf.call({})", "undefined"},
           {"as a bare function", "var left = p.left; typeof left(1)", "undefined"}});
}

TEST_F(BufferMethods, HaveAnEntryForEachShorterForm) {
    Check({{"none is enumerated", "var k = []; for (var i in Buffer.prototype) k.push(i); k.join()", ""},
           {"all are there",
            "['valueOf', 'toString', 'copy', 'write', 'concat', 'fill', 'left', 'middle', 'right'].filter("
            "function (n) { return typeof Buffer.prototype[n] != 'function' }).length",
            "0"},
           {"too few arguments are the engine's error", "try { new Buffer().left() } catch (e) { e.name }",
            "SyntaxError"}});
}

} // namespace

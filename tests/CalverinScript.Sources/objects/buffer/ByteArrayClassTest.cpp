#include "ByteArrayClass.h"

#include "ByteArrayClassPropertyIterator.h"
#include "ScriptFixture.h"

namespace {

class BufferObject : public ScriptFixture {
protected:
    BufferObject() { Run("var b = new Buffer([1, 2, 3])"); }
};

TEST_F(BufferObject, ReadsItsLengthAndItsBytesAsUnsignedNumbers) {
    Check({{"length", "b.length", "3"},
           {"a byte", "b[0]", "1"},
           {"a high byte is not negative", "b[1] = 200; b[1]", "200"},
           {"an index as text", "b['2']", "3"},
           {"the type of a byte", "typeof b[0]", "number"},
           {"past the end", "typeof b[3]", "undefined"},
           {"a negative index", "typeof b[-1]", "undefined"},
           {"a fraction", "typeof b[0.5]", "undefined"},
           {"a text with a leading zero is no index", "typeof b['01']", "undefined"},
           {"the largest index", "typeof b[4294967294]", "undefined"},
           {"beyond all indices", "typeof b[4294967295]", "undefined"},
           {"in", "(2 in b) + ' ' + (3 in b) + ' ' + ('length' in b)", "true false true"},
           {"hasOwnProperty", "b.hasOwnProperty(0) + ' ' + b.hasOwnProperty(3)", "true false"}});
}

TEST_F(BufferObject, ReadsPastTheEndFromThePrototypeChain) {
    EXPECT_EQ(Run("Object.prototype[3] = 'from the prototype'; var r = b[3] + b[2]; delete Object.prototype[3]; r"),
              "from the prototype3");
}

TEST_F(BufferObject, StoresTheLowEightBitsOfTheNumber) {
    Check({{"cut", "b[0] = 257; b[0]", "1"},
           {"negative", "b[0] = -1; b[0]", "255"},
           {"fraction", "b[0] = 2.9; b[0]", "2"},
           {"text", "b[0] = '65'; b[0]", "65"},
           {"no number", "b[0] = 'x'; b[0]", "0"},
           {"undefined", "b[0] = 9; b[0] = undefined; b[0]", "0"},
           {"true", "b[0] = true; b[0]", "1"},
           {"large", "b[0] = 4294967297; b[0]", "1"},
           {"compound", "b[1] = 255; b[1]++; b[1]", "0"},
           {"the value of an assignment is the value given", "(b[0] = 300)", "300"}});
}

TEST_F(BufferObject, GrowsWithZeroBytesWhenWrittenPastTheEnd) {
    Check({{"past the end", "b[5] = 1; b.length + b.toString('hex')", "6010203000001"},
           {"at the end", "b[b.length] = 7; b.length + ' ' + b[6]", "7 7"}});
}

TEST_F(BufferObject, IsResizedThroughItsLength) {
    Check({{"shorter", "b.length = 1; b.toString('hex')", "01"},
           {"longer is filled with zero bytes", "b.length = 4; b.toString('hex')", "01000000"},
           {"negative is empty", "b.length = -3; b.length", "0"},
           {"no number is empty", "b.length = 'x'; b.length", "0"},
           {"a fraction", "b.length = 2.7; b.length", "2"},
           {"a text", "b.length = '3'; b.length", "3"}});
}

TEST_F(BufferObject, GrowsWithZeroBytesAfterItShrank) {
    EXPECT_EQ(Run("b.length = 0; b.length = 3; b.toString('hex')"), "000000");
}

TEST_F(BufferObject, KeepsItsBytesAndLengthFromBeingDeleted) {
    Check({{"a byte", "(delete b[0]) + ' ' + b[0]", "false 1"},
           {"length", "(delete b.length) + ' ' + b.length", "false 3"},
           {"past the end", "(delete b[9]) + ' ' + b.length", "false 3"}});
}

TEST_F(BufferObject, CarriesOrdinaryPropertiesOfAScript) {
    Check({{"set and read", "b.note = 'mine'; b.note", "mine"},
           {"enumerated", "var n = []; for (var k in b) n.push(k); n.join()", "note,0,1,2"},
           {"deleted", "delete b.note; typeof b.note", "undefined"},
           {"a method can be replaced", "b.left = 5; b.left", "5"}});
}

TEST_F(BufferObject, IsSeenByAllItsReferences) {
    EXPECT_EQ(Run("var c = b; c[0] = 9; c.length = 5; b[0] + ' ' + b.length + ' ' + (b === c)"), "9 5 true");
}

TEST_F(BufferObject, EnumeratesItsIndicesAlone) {
    Check({{"for in", "var k = []; for (var i in b) k.push(typeof i + i); k.join()", "string0,string1,string2"},
           {"empty", "var k = []; for (var i in new Buffer()) k.push(i); k.length", "0"},
           {"keys", "Object.keys(b).join()", "0,1,2"}});
}

TEST_F(BufferObject, LooksLikeAnObjectToTheLanguage) {
    Check({{"typeof", "typeof b", "object"},
           {"instanceof", "(b instanceof Buffer) + ' ' + (b instanceof Object) + ' ' + (b instanceof Array)",
            "true true false"},
           {"constructor", "b.constructor === Buffer", "true"},
           {"prototype", "Object.getPrototypeOf(b) === Buffer.prototype", "true"},
           {"the prototype's prototype", "Object.getPrototypeOf(Buffer.prototype) === Object.prototype", "true"},
           {"no array", "Array.isArray(b)", "false"},
           {"typeof the constructor", "typeof Buffer", "function"},
           {"JSON", "JSON.stringify(new Buffer([1, 200]))", "{\"0\":1,\"1\":200}"},
           {"String", "String(new Buffer('abc'))", "abc"},
           {"joined to a text", "'<' + new Buffer('abc') + '>'", "<abc>"},
           {"compared", "new Buffer('a') == 'a'", "true"},
           {"two are different", "new Buffer('a') == new Buffer('a')", "false"},
           {"as a condition", "new Buffer(0) ? 'yes' : 'no'", "yes"},
           {"array methods work on it", "Array.prototype.slice.call(b, 1).join()", "2,3"},
           {"concat of an array takes it as one", "[0].concat(b).length", "2"},
           {"Qt's own members are hidden", "typeof b.deleteLater + typeof b.objectName + typeof b.destroyed",
            "undefinedundefinedundefined"}});
}

TEST_F(BufferObject, SurvivesAValueThatChangesItWhileItIsStored) {
    Check({{"shrinks it", "b[2] = {valueOf: function () { b.length = 0; return 7 }}; b.toString('hex')", "000007"},
           {"looks at others",
            "b[0] = {valueOf: function () { for (var i = 0; i < 9; ++i) new Buffer(3)[1] = i; gc(); return 8 }}; b[0]",
            "8"},
           {"throws", "try { b[0] = {valueOf: function () { throw 'no' }} } catch (e) { e + b[0] }", "no8"}});
}

/// The class remembers the objects that it looked at last; none of them may be mixed up with another one.
TEST_F(BufferObject, IsNeverMixedUpWithAnotherOneAfterACollection) {
    EXPECT_EQ(Run("var wrong = 0;"
                  "for (var round = 0; round < 300; ++round) {"
                  "  var some = [];"
                  "  for (var i = 0; i < 20; ++i) { var n = new Buffer(4); n[0] = i; some.push(n) }"
                  "  if (round % 10 == 0) gc();"
                  "  for (i = 0; i < 20; ++i) if (some[i][0] != i || some[(i * 7) % 20][0] != (i * 7) % 20) ++wrong;"
                  "} wrong"),
              "0");
}

TEST_F(BufferObject, IsWalkedBothWays) {
    const QScriptValue object = engine.evaluate(QStringLiteral("b"));
    ByteArrayClassPropertyIterator iterator(object);
    EXPECT_FALSE(iterator.hasPrevious());
    std::string seen;
    while (iterator.hasNext()) {
        iterator.next();
        seen += iterator.name().toString().toStdString() + ":" + std::to_string(iterator.id()) + " ";
    }
    EXPECT_EQ(seen, "0:0 1:1 2:2 ");
    while (iterator.hasPrevious()) {
        iterator.previous();
        seen += std::to_string(iterator.id());
    }
    EXPECT_EQ(seen, "0:0 1:1 2:2 210");
    iterator.toBack();
    EXPECT_FALSE(iterator.hasNext());
    EXPECT_TRUE(iterator.hasPrevious());
    iterator.toFront();
    EXPECT_TRUE(iterator.hasNext());
}

TEST_F(BufferObject, EndsAWalkWhenItShrinks) {
    EXPECT_EQ(Run("var count = 0; for (var k in b) { b.length = 0; ++count } count < 4"), "true");
}

} // namespace

#include "ScriptFixture.h"

namespace {

class BufferConstructor : public ScriptFixture {};

TEST_F(BufferConstructor, TakesBytesFromABufferATextAnArrayOrASize) {
    Check(
        {{"a buffer is copied", "var a = new Buffer('abc'); var b = new Buffer(a); a[0] = 90; b.toString() + a",
          "abcZbc"},
         {"a text is UTF-8 without an encoding", "new Buffer('\\u00e9').toString('hex')", "c3a9"},
         {"an encoding that is no text means UTF-8", "new Buffer('\\u00e9', 5).toString('hex')", "c3a9"},
         {"an unknown encoding means UTF-8", "new Buffer('\\u00e9', 'UTF8').toString('hex')", "c3a9"},
         {"ascii is one byte for each character", "new Buffer('\\u00e9A', 'ascii').toString('hex')", "e941"},
         {"ascii has a question mark for what is not Latin-1", "new Buffer('\\u20ac', 'ascii').toString()", "?"},
         {"base64 is decoded", "new Buffer('QUJD', 'base64').toString()", "ABC"},
         {"hex is decoded", "new Buffer('414243', 'hex').toString()", "ABC"},
         {"an array has numbers and texts", "new Buffer([65, 'BC', 300]).toString('hex')", "41422c"},
         {"an empty text in an array is a zero", "new Buffer(['', 1]).toString('hex')", "0001"},
         {"other elements are taken as text", "new Buffer([true, null, undefined, {}]).toString()", "tnu["},
         {"numbers in an array are cut to eight bits", "new Buffer([-1, 256, 1.9, 65.2]).toString('hex')", "ff000141"},
         {"a text in an array gives the first byte of its UTF-8", "new Buffer(['\\u00e9']).toString('hex')", "c3"},
         {"an empty array is empty", "new Buffer([]).length", "0"},
         {"a hole in an array is a zero", "new Buffer([65, , 66]).toString('hex')", "410042"},
         {"an empty text is empty", "new Buffer('').length", "0"},
         {"a size gives zero bytes", "new Buffer(4).toString('hex')", "00000000"},
         {"no argument is empty", "new Buffer().length", "0"},
         {"undefined is empty", "new Buffer(undefined).length", "0"},
         {"null is empty", "new Buffer(null).length", "0"},
         {"true is one byte", "new Buffer(true).length", "1"},
         {"a negative size is empty", "new Buffer(-7).length", "0"},
         {"an object that is no number is empty", "new Buffer({}).length", "0"},
         {"an object with a value is a size", "new Buffer({valueOf: function () { return 3 }}).length", "3"},
         {"a text object is no text", "new Buffer(new String('abc')).length", "0"},
         {"a size beyond 32 bits wraps", "new Buffer(4294967298).length", "2"}});
}

TEST_F(BufferConstructor, DoesTheSameWithAndWithoutNew) {
    Check({{"a text", "Buffer('abc').toString()", "abc"},
           {"a size", "Buffer(2).length", "2"},
           {"an instance", "Buffer(1) instanceof Buffer", "true"},
           {"through call", "Buffer.call(null, 'abc').toString()", "abc"},
           {"as a method", "var o = {B: Buffer}; o.B('abc').toString()", "abc"}});
}

TEST_F(BufferConstructor, DecodesMalformedTextAsFarAsItGoes) {
    Check({{"odd hex", "new Buffer('414', 'hex').toString('hex')", "0414"},
           {"foreign characters in hex", "new Buffer('4x1', 'hex').toString('hex')", "41"},
           {"foreign characters in base64", "new Buffer('Q-U!JD', 'base64').toString()", "ABC"},
           {"base64 without padding", "new Buffer('QQ', 'base64').toString()", "A"}});
}

TEST_F(BufferConstructor, LetsAnErrorOfAnElementThrough) {
    EXPECT_EQ(Run("new Buffer([1, {toString: function () { throw new Error('no text') }}, 2])"),
              "threw Error: no text");
}

TEST_F(BufferConstructor, SurvivesAnElementThatChangesTheArray) {
    EXPECT_EQ(
        Run("var a = [1, {toString: function () { a.length = 0; return 'x' }}, 3]; new Buffer(a).toString('hex')"),
        "017800");
}

} // namespace

#include "Checksum.h"

#include "ScriptFixture.h"

namespace {

/// `sum(settings, data)` gives the checksum of the data alone as hexadecimal text.
class ChecksumClass : public ScriptFixture {
protected:
    ChecksumClass() {
        Run("function sum(set, data) { var c = new Checksum(); set(c);"
            "  return c.ComputeChecksum(data).toString('hex', data.length) }"
            "function init() { var a = arguments; return function (c) { c.Init.apply(c, a) } }"
            "var digits = '123456789'");
    }
};

TEST_F(ChecksumClass, GivesTheKnownChecksumsOfTheDigits) {
    Check({{"sum", "sum(init('Sum'), digits)", "dd"},
           {"xor", "sum(init('Xor'), digits)", "31"},
           {"or", "sum(init('Or'), digits)", "3f"},
           {"CRC-16", "sum(init('Crc16'), digits)", "bb3d"},
           {"CRC-8", "sum(init('Crc8'), digits)", "0b"},
           {"two's complement", "sum(init('Sum', 1, true), digits)", "23"},
           {"text", "new Buffer(sum(init('Crc16', 2, false, true), digits), 'hex').toString()", "BB3D"},
           {"text backwards",
            "new Buffer(sum(function (c) { c.Init('Crc16', 2, false, true); c.SetHighByteFirst(false) }, digits), "
            "'hex').toString()",
            "D3BB"},
           {"the low byte first", "sum(function (c) { c.Init('Crc16'); c.SetHighByteFirst(false) }, digits)", "3dbb"},
           {"one byte as text", "new Buffer(sum(init('Sum', 1, false, true), digits), 'hex').toString()", "DD"},
           {"one byte as text backwards",
            "new Buffer(sum(function (c) { c.Init('Xor', 1, false, true); c.SetHighByteFirst(false) }, digits), "
            "'hex').toString()",
            "13"},
           {"a sum of 16 bits", "sum(init('Sum', 2), digits)", "01dd"},
           {"its two's complement", "sum(init('Sum', 2, true), digits)", "fe23"},
           {"a sum of 16 bits wraps", "var b = new Buffer(300); b.fill(255); sum(init('Sum', 2), b)", "2ad4"},
           {"a sum of 8 bits wraps", "sum(init('Sum'), new Buffer([255, 255, 5]))", "03"}});
}

TEST_F(ChecksumClass, StartsAsASumOfOneByte) {
    EXPECT_EQ(Run("sum(function () {}, digits)"), "dd");
    EXPECT_EQ(Run("sum(function (c) { c.Init() }, digits)"), "dd");
}

TEST_F(ChecksumClass, TakesTheCountOfTheTypeUnlessOneAboveZeroIsGiven) {
    Check({{"the type's", "sum(init('Crc16', 0), digits)", "bb3d"},
           {"a negative one", "sum(init('Crc16', -2), digits)", "bb3d"},
           {"a type set later sets its count",
            "sum(function (c) { c.Init('Crc16'); c.SetChecksumType('Sum') }, digits)", "dd"},
           {"Sum is the default type", "sum(function (c) { c.Init('Crc16'); c.SetChecksumType() }, digits)", "dd"},
           {"any count but one means two bytes", "sum(init('Sum', 7), digits)", "01dd"},
           {"a count is not checked", "sum(function (c) { c.SetCountOfBytes(0) }, digits)", "01dd"}});
}

TEST_F(ChecksumClass, ReadsTheRegisterOfTheCountAsIsMeant) {
    Check({{"xor writes the small one", "sum(function (c) { c.Init('Xor', 2, false, true) }, digits)", "30303030"},
           {"CRC-16 writes the large one", "sum(function (c) { c.Init('Crc16', 1, false, true) }, digits)", "3030"}});
}

TEST_F(ChecksumClass, IgnoresAnUnknownTypeName) {
    Check({{"another case", "sum(function (c) { c.Init('Crc16'); c.SetChecksumType('crc16') }, digits)", "bb3d"},
           {"in Init the flags still count", "sum(init('nothing', 0, true), digits)", "23"},
           {"empty", "sum(function (c) { c.SetChecksumType('') }, digits)", "dd"}});
}

TEST_F(ChecksumClass, CutsRawResultsAtTheFirstZeroByteAsIsMeant) {
    Check(
        {{"one byte of zero", "sum(init('Sum'), new Buffer([0]))", ""},
         {"a high byte of zero", "sum(init('Sum', 2), new Buffer([5]))", ""},
         {"a low byte of zero", "sum(init('Sum', 2), new Buffer([255, 1]))", "01"},
         {"text is not cut", "new Buffer(sum(init('Sum', 2, false, true), new Buffer([5])), 'hex').toString()", "0005"},
         {"the low byte first", "sum(function (c) { c.Init('Sum', 2); c.SetHighByteFirst(false) }, new Buffer([5]))",
          "05"}});
}

TEST_F(ChecksumClass, InsertsTheChecksumAtAPosition) {
    Run("function at(p) { var c = new Checksum(); c.Init('Xor'); return c.ComputeChecksum(new Buffer([1, 2]), "
        "p).toString('hex') }");
    Check({{"at the end", "at(-1)", "010203"},
           {"in front", "at(0)", "030102"},
           {"in the middle", "at(1)", "010302"},
           {"any negative is the end", "at(-2147483648)", "010203"},
           {"behind the end, with spaces between", "at(5)", "010220202003"},
           {"far behind the end is refused", "at(2147483647)",
            "threw RangeError: Buffer: no memory for 2147483651 bytes"},
           {"the data stays as it is",
            "var d = new Buffer([1, 2]), c = new Checksum(); c.ComputeChecksum(d); d.toString('hex')", "0102"}});
}

TEST_F(ChecksumClass, TakesTextsAndBuffersAndNothingElse) {
    Run("function of(v) { var c = new Checksum(); c.Init('Sum', 2, false, true); c.UpdateChecksumToCompute(v);"
        "  return c.GetComputedChecksum().toString() }");
    Check({{"a text", "of('AB')", "0083"},
           {"a text is Latin-1", "of('\\u00ff')", "00FF"},
           {"other characters are question marks", "of('\\u20ac')", "003F"},
           {"a buffer", "of(new Buffer([1, 2]))", "0003"},
           {"an empty buffer", "of(new Buffer())", "0000"},
           {"null", "of(null)", "0000"},
           {"undefined", "of(undefined)", "0000"},
           {"a number", "of(65)", "0000"},
           {"an array", "of([65])", "0000"},
           {"a text object", "of(new String('AB'))", "0000"},
           {"a whole of no data is the checksum of none",
            "var c = new Checksum(); c.Init('Sum', 1, false, true);"
            "c.ComputeChecksum(null).toString()",
            "00"}});
}

TEST_F(ChecksumClass, LeavesTheRegistersAloneForNoData) {
    EXPECT_EQ(
        Run("var c = new Checksum(); c.Init('Crc16'); c.UpdateChecksumToCompute(digits);"
            "c.UpdateChecksumToCompute(''); c.UpdateChecksumToCompute(new Buffer()); c.UpdateChecksumToCompute(5);"
            "c.GetComputedChecksum().toString('hex')"),
        "bb3d");
}

TEST_F(ChecksumClass, NegatesTheRegisterItselfAsIsMeant) {
    Check({{"a second reading negates back",
            "var c = new Checksum(); c.Init('Sum', 1, true); c.UpdateChecksumToCompute(digits);"
            "c.GetComputedChecksum().toString('hex') + c.GetComputedChecksum().toString('hex')",
            "23dd"},
           {"more data goes on from the negated value",
            "c.GetComputedChecksum(); c.UpdateChecksumToCompute('\\u0001'); c.SetTwoComplement(false);"
            "c.GetComputedChecksum().toString('hex')",
            "24"}});
}

TEST_F(ChecksumClass, ResetsAroundAWholeComputationAlone) {
    Check({{"what was before does not count",
            "var c = new Checksum(); c.UpdateChecksumToCompute('zzz'); c.ComputeChecksum(digits).toString('hex', 9)",
            "dd"},
           {"nothing is left behind", "c.UpdateChecksumToCompute('A'); c.GetComputedChecksum().toString('hex')", "41"},
           {"a reset starts anew",
            "c.ResetChecksumToCompute(); c.UpdateChecksumToCompute('B');"
            "c.GetComputedChecksum().toString('hex')",
            "42"},
           {"Init does not touch the registers",
            "c.Init('Sum'); c.UpdateChecksumToCompute('\\u0001');"
            "c.GetComputedChecksum().toString('hex')",
            "43"},
           {"a type that is set later goes on with the register",
            "c.SetChecksumType('Xor');"
            "c.UpdateChecksumToCompute('\\u0003'); c.GetComputedChecksum().toString('hex')",
            "40"}});
}

TEST_F(ChecksumClass, TakesMasksAndInitialValuesOfItsWidthAndTheirDefaults) {
    Check(
        {{"the default mask is restored",
          "sum(function (c) { c.Init('Crc16'); c.SetCRC16Mask(0x8408); c.SetCRC16Mask() }, digits)", "bb3d"},
         {"the default mask of 8 bits",
          "sum(function (c) { c.Init('Crc8'); c.SetCRC8Mask(1); c.SetCRC8Mask() }, digits)", "0b"},
         {"the default initial value is restored",
          "sum(function (c) { c.Init('Crc16'); c.SetCRC16InitialValue(7); c.SetCRC16InitialValue() }, digits)", "bb3d"},
         {"the default initial value of 8 bits",
          "sum(function (c) { c.Init('Crc8'); c.SetCRC8InitialValue(7); c.SetCRC8InitialValue() }, digits)", "0b"},
         {"high bits are cut",
          "sum(function (c) { c.Init('Crc16'); c.SetCRC16Mask(0x7FFFA001);"
          "c.SetCRC16InitialValue(0x10000) }, digits)",
          "bb3d"},
         {"high bits of 8 are cut",
          "sum(function (c) { c.Init('Crc8'); c.SetCRC8Mask(0x18C);"
          "c.SetCRC8InitialValue(-1) }, digits)",
          "0b"},
         {"an initial value counts at once, without a reset",
          "var c = new Checksum(); c.Init('Crc16'); c.SetCRC16InitialValue(0xFFFF); c.UpdateChecksumToCompute(digits);"
          "c.GetComputedChecksum().toString('hex')",
          "4b37"},
         {"and after a reset",
          "c.ResetChecksumToCompute(); c.UpdateChecksumToCompute(digits);"
          "c.GetComputedChecksum().toString('hex')",
          "4b37"},
         {"objects with other masks do not disturb each other",
          "var a = new Checksum(), b = new Checksum(); a.Init('Crc16'); b.Init('Crc16'); b.SetCRC16Mask(0x8408);"
          "a.UpdateChecksumToCompute('12345'); b.UpdateChecksumToCompute('12345');"
          "a.UpdateChecksumToCompute('6789'); b.UpdateChecksumToCompute('6789');"
          "a.GetComputedChecksum().toString('hex') + b.GetComputedChecksum().toString('hex')",
          "bb3d2189"}});
}

TEST_F(ChecksumClass, GivesBuffers) {
    EXPECT_EQ(Run("var c = new Checksum(); (c.GetComputedChecksum() instanceof Buffer) + ' ' + "
                  "(c.ComputeChecksum('x') instanceof Buffer)"),
              "true true");
}

TEST_F(ChecksumClass, GoesWhenTheScriptHasDroppedIt) {
    EXPECT_EQ(Run("for (var i = 0; i < 50000; ++i) new Checksum(); gc(); 'done'"), "done");
}

} // namespace

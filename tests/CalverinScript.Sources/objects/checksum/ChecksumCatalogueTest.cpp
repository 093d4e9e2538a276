#include <random>

#include "Checksum.h"
#include "ScriptFixture.h"

namespace {

/// Entries of Greg Cook's "Catalogue of parametrised CRC algorithms" with reflected input and output and no final XOR: mask and
/// initial value as the right-shifting register has them, and the check over "123456789".
struct Entry {
    const char* name;
    const char* type; ///< "Crc16" or "Crc8"
    int mask;
    int initial;
    const char* check;
};

constexpr Entry kCatalogue[] = {{"CRC-16/ARC", "Crc16", 0xA001, 0x0000, "BB3D"},
                                {"CRC-16/MODBUS", "Crc16", 0xA001, 0xFFFF, "4B37"},
                                {"CRC-16/KERMIT", "Crc16", 0x8408, 0x0000, "2189"},
                                {"CRC-16/MCRF4XX", "Crc16", 0x8408, 0xFFFF, "6F91"},
                                {"CRC-16/RIELLO", "Crc16", 0x8408, 0x554D, "63D0"},
                                {"CRC-16/TMS37157", "Crc16", 0x8408, 0x3791, "26B1"},
                                {"CRC-16/ISO-IEC-14443-3-A", "Crc16", 0x8408, 0x6363, "BF05"},
                                {"CRC-8/MAXIM-DOW", "Crc8", 0x8C, 0x00, "A1"},
                                {"CRC-8/ROHC", "Crc8", 0xE0, 0xFF, "D0"},
                                {"CRC-8/WCDMA", "Crc8", 0xD9, 0x00, "25"},
                                {"CRC-8/DARC", "Crc8", 0x9C, 0x00, "15"},
                                {"CRC-8/BLUETOOTH", "Crc8", 0xE5, 0x00, "26"},
                                {"CRC-8/TECH-3250", "Crc8", 0xB8, 0xFF, "97"}};

class ChecksumCatalogue : public ScriptFixture {
protected:
    void Set(const Entry& entry) {
        Run("var c = new Checksum(); c.Init('" + std::string(entry.type) + "', 0, false, true)");
        const std::string prefix = std::string("c.SetCRC") + (entry.type == std::string("Crc8") ? "8" : "16");
        Run(prefix + "Mask(" + std::to_string(entry.mask) + ")");
        Run(prefix + "InitialValue(" + std::to_string(entry.initial) + ")");
    }
};

TEST_F(ChecksumCatalogue, IsMetByEveryEntryThatCanBeSet) {
    for (const Entry& entry : kCatalogue) {
        Set(entry);
        EXPECT_EQ(Run("c.ComputeChecksum('123456789').toString('utf8', 9)"), entry.check) << entry.name;
        EXPECT_EQ(Run("c.ComputeChecksum('123456789').toString('utf8', 9)"), entry.check)
            << entry.name << ", once more";
    }
}

/// Bit by bit, as the definition has it.
unsigned Slow(unsigned value, unsigned mask, const std::vector<int>& bytes) {
    for (int byte : bytes) {
        value ^= static_cast<unsigned>(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? (value >> 1) ^ mask : value >> 1;
    }
    return value;
}

TEST_F(ChecksumCatalogue, IsMetInBlocksAsInOneGo) {
    std::mt19937 random(4711);
    const auto pick = [&](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
    for (int i = 0; i < 2000; ++i) {
        const bool wide = pick(0, 1) == 1;
        const Entry entry{"random", wide ? "Crc16" : "Crc8", pick(0, wide ? 0xFFFF : 0xFF),
                          pick(0, wide ? 0xFFFF : 0xFF), ""};
        Set(entry);
        std::vector<int> bytes(static_cast<std::size_t>(pick(1, 60)));
        std::string array;
        for (int& byte : bytes) {
            byte = pick(0, 255);
            array += (array.empty() ? "" : ",") + std::to_string(byte);
        }
        Run("var d = new Buffer([" + array +
            "]); c.ResetChecksumToCompute(); for (var at = 0; at < d.length;) {"
            " var n = 1 + (at * 7 + 3) % 5; c.UpdateChecksumToCompute(d.middle(at, n)); at += n }");
        const std::string inBlocks = Run("c.GetComputedChecksum().toString()");
        char expected[8];
        std::snprintf(expected, sizeof(expected), wide ? "%04X" : "%02X",
                      Slow(static_cast<unsigned>(entry.initial), static_cast<unsigned>(entry.mask), bytes));
        ASSERT_EQ(inBlocks, expected) << "case " << i;
        ASSERT_EQ(Run("c.ComputeChecksum(d, 0).toString('utf8', 0, " + std::to_string(wide ? 4 : 2) + ")"), expected);
    }
}

} // namespace

#include "ConnectionFixture.h"

// What stands for a frame on the wire: each framing alone, with frames that are cut, joined, too long or none.

namespace {

class Framing : public ConnectionFixture {
protected:
    void SetUp() override {
        ConnectionFixture::SetUp();
        GivenConnectionScript();
    }
    /// What a framing makes of pieces; frames are divided by "|", what is no frame begins with "!", "_" stands for a
    /// zero byte.
    std::string Fed(const std::string& framing, const std::string& pieces) {
        return Do("fed(Connection." + framing + ", [" + pieces + "]).join('|').replace(/\\x00/g, '_')");
    }
    std::string Hex(const std::string& expression) {
        return Do("new Buffer(" + expression + ", 'ascii').toString('hex')");
    }
};

} // namespace

TEST_F(Framing, LinesEndInCarriageReturnLineFeedOrBothAndEmptyOnesAreLeftOut) {
    EXPECT_EQ(Fed("lines()", R"('one\r\ntwo\nthree\r\r\n\nfour', '', '!\r')"), "one|two|three|four!");
    EXPECT_EQ(Hex("Connection.lines().encode('A')"), "410d0a");
    EXPECT_EQ(Hex("Connection.lines('\\r').encode('A')"), "410d");
    EXPECT_EQ(Hex("Connection.lines('').encode('A')"), "41");
}

TEST_F(Framing, ALineThatIsTooLongIsDroppedToItsEndAndToldOnce) {
    EXPECT_EQ(Fed("lines('\\n', 5)", R"('12345\n123456\nok\n', '1234', '5678', '9', '0\nyes\n')"),
              "12345|!a frame of more than 5 bytes|ok|!a frame of more than 5 bytes|yes");
}

TEST_F(Framing, ADelimiterMayBeLongAndCutAnywhere) {
    EXPECT_EQ(Fed("delimited('<>')", R"('a<', '>b<', 'c<>', '<>d')"), "a|b<c");
    EXPECT_EQ(Fed("delimited('<>', '', 4)", R"('12345678<', '>ok<>')"), "!a frame of more than 4 bytes|ok");
}

TEST_F(Framing, WhatStandsBeforeTheBeginningOfAFrameIsDropped) {
    EXPECT_EQ(
        Fed("delimited('\\x03', '\\x02')", R"('noise\x02A\x03\x02', 'B\x03no beginning\x03\x02cut\x02whole\x03')"),
        "A|B|!no frame|whole");
    EXPECT_EQ(Hex("Connection.delimited('\\x03', '\\x02').encode('A')"), "024103");
}

TEST_F(Framing, SlipIsThatOfRfc1055) {
    EXPECT_EQ(Hex("Connection.slip().encode('\\x01\\xc0\\x02\\xdb\\x03')"), "c001dbdc02dbdd03c0");
    EXPECT_EQ(Fed("slip()", R"('\xc0\xc0A\xdb', '\xdcB\xdb\xddC\xc0', '\xc0')"), "A\xC0"
                                                                                 "B\xDB"
                                                                                 "C");
    EXPECT_EQ(Fed("slip()", R"('\xc0A\xdbB\xc0good\xc0cut\xdb\xc0')"), "!no frame|good|!no frame");
}

TEST_F(Framing, CobsIsThatOfItsPaper) {
    EXPECT_EQ(Hex("Connection.cobs().encode('\\x00')"), "010100");
    EXPECT_EQ(Hex("Connection.cobs().encode('\\x11\\x22\\x00\\x33')"), "0311220233"
                                                                       "00");
    EXPECT_EQ(Hex("Connection.cobs().encode('\\x11\\x00\\x00\\x00')"), "0211010101"
                                                                       "00");
    EXPECT_EQ(Do("var long = new Array(255).join('x'), e = Connection.cobs().encode(long);"
                 "[e.length, e.charCodeAt(0), e.charCodeAt(255)].join()"),
              "256,255,0");
    EXPECT_EQ(Fed("cobs()", R"('\x03\x11\x22\x02\x33\x00', '\x05\x01\x00\x02ok\x00', '\x03ok\x00')"),
              "\x11\x22_\x33|!no frame|!no frame|ok");
}

TEST_F(Framing, ALengthMayHaveOneTwoOrFourBytesOfEitherOrderAndCountItself) {
    EXPECT_EQ(Hex("Connection.counted({ bytes: 1 }).encode('AB')"), "024142");
    EXPECT_EQ(Hex("Connection.counted().encode('AB')"), "00024142");
    EXPECT_EQ(Hex("Connection.counted({ bytes: 4, little: true, plus: 4 }).encode('AB')"), "060000004142");
    EXPECT_EQ(Fed("counted()", R"('\x00', '\x02A', 'B\x00\x00\x00\x01C\x00')"), "AB||C");
    EXPECT_EQ(Fed("counted({ bytes: 4, little: true, plus: 4 })", R"('\x06\x00\x00\x00AB')"), "AB");
}

TEST_F(Framing, ALengthThatCannotBeIsLostAndNeverWaitedFor) {
    EXPECT_EQ(Fed("counted({ longest: 10 })", R"('\x00\x01A\xff\xff', 'rest')"), "A|lost a frame of 65535 bytes|"
                                                                                 "lost a frame of 29285 bytes");
    EXPECT_EQ(Fed("counted({ plus: 2 })", R"('\x00\x01')"), "lost a frame of -1 bytes");
    EXPECT_EQ(Do("Connection.counted({ bytes: 1 }).encode(new Array(258).join('x'))"),
              "error: a frame of more than 255 bytes");
}

TEST_F(Framing, FramesComeAsTheyWereSentHoweverTheBytesAreCut) {
    for (const char* framing : {"slip()", "cobs()", "counted()", "counted({ bytes: 4, little: true })"}) {
        EXPECT_EQ(Do(std::string("var f = Connection.") + framing +
                     R"(, seed = 7, sent = [], all = '', pieces = [], i, k, n, text;
            function random(below) { seed = (seed * 1103515245 + 12345) % 2147483648; return Math.floor(seed / 65536) % below; }
            for (i = 0; i < 200; ++i) {
                for (text = '', n = 1 + random(i % 10 ? 20 : 700), k = 0; k < n; ++k)
                    text += String.fromCharCode([0, 1, 0xc0, 0xdb, 0xdc, 255, random(256)][random(7)]);
                sent.push(text);
                all += f.encode(text);
            }
            for (i = 0; i < all.length; i += n) {
                n = 1 + random(40);
                pieces.push(all.substr(i, n));
            }
            fed(f, pieces).join('|') === sent.join('|'))"),
                  "true")
            << framing;
    }
}

TEST_F(Framing, GarbageNeverThrowsAndNeverPilesUp) {
    for (const char* framing : {"lines()", "delimited('<<>>', '##')", "slip()", "cobs()", "counted({ bytes: 4 })"}) {
        EXPECT_EQ(Do(std::string("var f = Connection.") + framing + R"(, seed = 3, text, k, i;
            for (i = 0; i < 300; ++i) {
                for (text = '', k = 0; k < 500; ++k) {
                    seed = (seed * 1103515245 + 12345) % 2147483648;
                    text += String.fromCharCode(Math.floor(seed / 65536) % 255 + 1);
                }
                fed(f, [text]);
            }
            f.reset();
            fed(f, [f.encode('still works')]).join('|'))"),
                  "still works")
            << framing;
    }
}

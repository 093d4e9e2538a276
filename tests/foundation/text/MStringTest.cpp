#include "MString.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr std::int32_t kMost = 2147483647;
constexpr std::int32_t kLeast = -2147483647 - 1;
constexpr const char* kNull = nullptr;

} // namespace

TEST(MString, ANullTextIsEmptyAndHasNoBuffer) {
    const MString string(kNull);
    EXPECT_STREQ(string.c_str(), "");
    EXPECT_EQ(string.GetBuffer(), nullptr);
    EXPECT_EQ(string.GetLength(), 0);
    EXPECT_EQ(string.GetCapacity(), 0);
    EXPECT_EQ(MString().GetBuffer(), nullptr);
}

TEST(MString, AnEmptyTextHasABuffer) {
    const MString string("");
    EXPECT_NE(string.GetBuffer(), nullptr);
    EXPECT_EQ(string.GetCapacity(), 1);
    EXPECT_FALSE(string.IsNotEmpty());
}

TEST(MString, ATextTakesItsLengthPlusOne) {
    const MString string("abc");
    EXPECT_STREQ(string.c_str(), "abc");
    EXPECT_EQ(string.GetLength(), 3);
    EXPECT_EQ(string.GetCapacity(), 4);
    EXPECT_TRUE(string.IsNotEmpty());
}

TEST(MString, AMaximumCutsTheText) {
    EXPECT_STREQ(MString("abcdef", 3).c_str(), "abc");
    EXPECT_STREQ(MString("abc", 10).c_str(), "abc");
    EXPECT_STREQ(MString("abc", kMost).c_str(), "abc");
    EXPECT_EQ(MString("abc", 0).GetBuffer(), nullptr);
    EXPECT_EQ(MString("abc", -1).GetBuffer(), nullptr);
    EXPECT_EQ(MString("abc", kLeast).GetBuffer(), nullptr);
    EXPECT_EQ(MString(kNull, 3).GetBuffer(), nullptr);
    const char unterminated[] = {'x', 'y'};
    EXPECT_STREQ(MString(unterminated, 2).c_str(), "xy");
}

TEST(MString, CopiesAndMovesOwnTheirText) {
    MString source("abc");
    const MString copy(source);
    source.Append("d");
    EXPECT_STREQ(copy.c_str(), "abc");
    const MString moved(std::move(source));
    EXPECT_STREQ(moved.c_str(), "abcd");
    EXPECT_EQ(MString(MString()).GetBuffer(), nullptr) << "a copy of a string without buffer has none";
    EXPECT_NE(MString(MString("")).GetBuffer(), nullptr);
    MString target("old");
    target = MString("new");
    EXPECT_STREQ(target.c_str(), "new");
    MString& same = target;
    target = std::move(same);
    EXPECT_STREQ(target.c_str(), "new");
}

TEST(MString, NumbersBecomeText) {
    EXPECT_STREQ(MString(std::int32_t{-17}).c_str(), "-17");
    EXPECT_STREQ(MString(kLeast).c_str(), "-2147483648");
    EXPECT_STREQ(MString(1.5).c_str(), "1.5");
    EXPECT_STREQ(MString(1.0 / 3).c_str(), "0.333333333333333");
    EXPECT_STREQ(MString(123.456, 4).c_str(), "123.5");
    EXPECT_STREQ(MString(123.456, 4, false).c_str(), "123.5");
    EXPECT_STREQ(MString(2.0, 3, true).c_str(), "2.000");
    EXPECT_STREQ(MString(-2.0, 0, true).c_str(), "-2");
}

TEST(MString, TheFixedFormIsNudgedAwayFromZero) {
    EXPECT_STREQ(MString(0.5, 0, true).c_str(), "1") << "half a nudge up";
    EXPECT_STREQ(MString(-0.5, 0, true).c_str(), "-1");
    EXPECT_STREQ(MString(0.125, 2, true).c_str(), "0.13");
    EXPECT_STREQ(MString(0.125, 2, false).c_str(), "0.12") << "the general form is not";
    EXPECT_STREQ(MString(0.0, 20, true).c_str(), "0.00000000000000000000") << "nor is 0";
    EXPECT_EQ(MString(1.75e308, 0, true).GetLength(), 309);
    EXPECT_STREQ(MString(HUGE_VAL, 2, true).c_str(), "inf");
}

TEST(MString, ClearFreesTheBuffer) {
    MString string("abc");
    string.Clear();
    EXPECT_EQ(string.GetBuffer(), nullptr);
    EXPECT_EQ(string.GetLength(), 0);
    EXPECT_EQ(string.GetCapacity(), 0);
    string.Clear();
}

TEST(MString, Appends) {
    MString string;
    string.Append("ab");
    string.Append("cdef", 2);
    string.Append('e');
    string.Append(MString("fg"));
    EXPECT_STREQ(string.c_str(), "abcdefg");
    EXPECT_EQ(string.GetLength(), 7);
}

TEST(MString, AppendingNothingChangesNothing) {
    MString string;
    string.Append(kNull);
    string.Append("");
    string.Append("abc", 0);
    string.Append("abc", kLeast);
    string.Append(kNull, 5);
    string.Append('\0');
    string.Append(MString());
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string = "x";
    string.Append('\0');
    EXPECT_EQ(string.GetLength(), 1);
}

TEST(MString, WhatDoesNotFitMovesToTwiceTheNewSize) {
    MString string("abc");
    string.Append("d");
    EXPECT_EQ(string.GetCapacity(), 10) << "four characters and the terminator, twice";
    const char* buffer = string.GetBuffer();
    string.Append("efghi");
    EXPECT_EQ(string.GetBuffer(), buffer) << "nine characters and the terminator fit";
    string.Append('j');
    EXPECT_EQ(string.GetCapacity(), 22);
    EXPECT_STREQ(string.c_str(), "abcdefghij");
    string.Insert("0", 0);
    EXPECT_EQ(string.GetCapacity(), 22);
    string.Remove(0, 100);
    EXPECT_EQ(string.GetCapacity(), 22) << "nothing shrinks by itself";
    string = "ab";
    EXPECT_EQ(string.GetCapacity(), 3) << "assigning takes what it needs";
}

TEST(MString, CompactTakesTheExactSize) {
    MString string("abc");
    string.Append("d");
    string.Compact();
    EXPECT_EQ(string.GetCapacity(), 5);
    EXPECT_STREQ(string.c_str(), "abcd");
    MString none;
    none.Compact();
    EXPECT_EQ(none.GetBuffer(), nullptr);
    MString reserved;
    reserved.Reserve(100);
    reserved.Compact();
    EXPECT_EQ(reserved.GetCapacity(), 1);
}

TEST(MString, AppendsAndInsertsPartsOfItself) {
    MString string("abc");
    string.Append(string.c_str());
    EXPECT_STREQ(string.c_str(), "abcabc") << "with a new buffer";
    string.Append(string.c_str());
    EXPECT_STREQ(string.c_str(), "abcabcabcabc") << "within the buffer";
    string = "abc";
    string.Append(string);
    EXPECT_STREQ(string.c_str(), "abcabc");
    string.Append(string.c_str() + 4, 1);
    EXPECT_STREQ(string.c_str(), "abcabcb");
    string = "abcd";
    EXPECT_TRUE(string.Insert(string.c_str() + 1, 2));
    EXPECT_STREQ(string.c_str(), "abbcdcd");
    EXPECT_TRUE(string.Insert(string.c_str() + 5, 1)) << "within the buffer";
    EXPECT_STREQ(string.c_str(), "acdbbcdcd");
    EXPECT_EQ(string.ReplaceAll(string.c_str() + 7, string.c_str()), 3);
    EXPECT_STREQ(string.c_str(), "aacdbbcdcdbbacdbbcdcdacdbbcdcd");
}

TEST(MString, AssignsPartsOfItself) {
    MString string("abcdef");
    string = string.c_str();
    EXPECT_STREQ(string.c_str(), "abcdef");
    string = string.c_str() + 2;
    EXPECT_STREQ(string.c_str(), "cdef");
    string.Assign(string.c_str() + 1, 2);
    EXPECT_STREQ(string.c_str(), "de");
    const MString& same = string;
    string = same;
    EXPECT_STREQ(string.c_str(), "de");
    EXPECT_TRUE(string.Replace(0, 1, string.c_str()));
    EXPECT_STREQ(string.c_str(), "dee");
}

TEST(MString, ClonesOnTheHeap) {
    const MString string("abc");
    const std::unique_ptr<MString> clone(string.Clone());
    EXPECT_STREQ(clone->c_str(), "abc");
    EXPECT_NE(clone->GetBuffer(), string.GetBuffer());
}

TEST(MString, AssignsTexts) {
    MString string;
    string = "abc";
    EXPECT_STREQ(string.c_str(), "abc");
    string = kNull;
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string = "";
    EXPECT_NE(string.GetBuffer(), nullptr);
    string = MString("x");
    const MString none;
    string = none;
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string.Assign("abcdef", 2);
    EXPECT_STREQ(string.c_str(), "ab");
    string.Assign("abcdef", 0);
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string.Assign(kNull, 3);
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string.Assign("abc", kMost);
    EXPECT_STREQ(string.c_str(), "abc");
}

TEST(MString, AddsInPlace) {
    MString string;
    string += MString("a");
    string += 1.5;
    string += std::int32_t{-3};
    string += 'x';
    string += "yz";
    string += kNull;
    EXPECT_STREQ(string.c_str(), "a1.5-3xyz");
    string += string;
    EXPECT_STREQ(string.c_str(), "a1.5-3xyza1.5-3xyz");
}

TEST(MString, AddsToANewString) {
    const MString string("a");
    EXPECT_STREQ((string + MString("b")).c_str(), "ab");
    EXPECT_STREQ((string + 0.25).c_str(), "a0.25");
    EXPECT_STREQ((string + std::int32_t{7}).c_str(), "a7");
    EXPECT_STREQ((string + "c").c_str(), "ac");
    EXPECT_STREQ((string + string).c_str(), "aa");
    EXPECT_STREQ((string + kNull).c_str(), "a");
    EXPECT_STREQ(string.c_str(), "a");
}

TEST(MString, ComparesByBytesAndCase) {
    const MString string("abc");
    EXPECT_TRUE(string == "abc");
    EXPECT_FALSE(string == "abC");
    EXPECT_FALSE(string == "ab");
    EXPECT_FALSE(string == kNull);
    EXPECT_TRUE(string == MString("abc"));
    EXPECT_FALSE(string == MString("abcd"));
    EXPECT_TRUE(string != "ABC");
    EXPECT_FALSE(string != "abc");
    EXPECT_TRUE(string != MString("ab"));
    EXPECT_FALSE(string != MString("abc"));
    EXPECT_TRUE(MString() == kNull);
    EXPECT_TRUE(MString() == "");
    EXPECT_TRUE(MString() == MString("")) << "both read as the empty text";
}

TEST(MString, OrdersByBytes) {
    EXPECT_TRUE(MString("a") < MString("b"));
    EXPECT_TRUE(MString("B") < MString("a"));
    EXPECT_TRUE(MString("a") < MString("ab"));
    EXPECT_FALSE(MString("a") < MString("a"));
    EXPECT_TRUE(MString("a") < MString("\xE4")) << "bytes above 127 come last";
    EXPECT_TRUE(MString("a") >= MString("a"));
    EXPECT_TRUE(MString("b") >= MString("a"));
    EXPECT_FALSE(MString("a") >= MString("b"));
    EXPECT_TRUE(MString("") < MString("a"));
}

TEST(MString, TheNegatedOrderIsTheNegation) {
    for (const char* left : {"a", "b", "", kNull})
        for (const char* right : {"a", "b", "", kNull}) {
            EXPECT_EQ(MString(left).IsNotLess(right), !(MString(left) < MString(right)));
            EXPECT_EQ(MString(left).IsNotGreaterOrEqual(right), !(MString(left) >= MString(right)));
        }
}

TEST(MString, BothOrdersAreFalseWithAStringThatHasNoBuffer) {
    const MString none;
    for (const MString& other : {MString("a"), MString(""), MString()}) {
        EXPECT_FALSE(none < other);
        EXPECT_FALSE(other < none);
        EXPECT_FALSE(none >= other);
        EXPECT_FALSE(other >= none);
    }
}

TEST(MString, PointsAtACharacterOrAtAnEmptyText) {
    MString string("abc");
    const MString& constant = string;
    EXPECT_STREQ(constant.CharPointerAt(1), "bc");
    EXPECT_STREQ(string.CharPointerAt(2), "c");
    *string.CharPointerAt(0) = 'x';
    EXPECT_STREQ(string.c_str(), "xbc");
    for (const std::int32_t index : {3, 4, -1, kMost, kLeast}) {
        EXPECT_STREQ(constant.CharPointerAt(index), "") << index;
        EXPECT_STREQ(string.CharPointerAt(index), "") << index;
    }
    *string.CharPointerAt(3) = 'y';
    EXPECT_STREQ(string.CharPointerAt(3), "") << "what was written there is lost";
    EXPECT_STREQ(MString().CharPointerAt(0), "");
}

TEST(MString, FindsATextFromAPosition) {
    const MString string("abcabc");
    EXPECT_EQ(string.Find("bc"), 1);
    EXPECT_EQ(string.Find("bc", 1), 1);
    EXPECT_EQ(string.Find("bc", 2), 4);
    EXPECT_EQ(string.Find("bc", 5), -1);
    EXPECT_EQ(string.Find("x"), -1);
    EXPECT_EQ(string.Find("abcabcd"), -1);
    EXPECT_EQ(string.Find("a", -1), -1);
    EXPECT_EQ(string.Find("a", kLeast), -1);
    EXPECT_EQ(string.Find("a", kMost), -1);
    EXPECT_EQ(string.Find(kNull), -1);
    EXPECT_EQ(string.Find("", 3), 3);
    EXPECT_EQ(string.Find("", 7), -1);
    EXPECT_EQ(MString().Find("a"), -1);
    EXPECT_EQ(MString().Find(""), -1);
}

TEST(MString, FindsACharacterForward) {
    const MString string("abcabc");
    EXPECT_EQ(string.FindChar('a', 0, false), 0);
    EXPECT_EQ(string.FindChar('a', 1, false), 3);
    EXPECT_EQ(string.FindChar('b', false), 1);
    EXPECT_EQ(string.FindChar('x', false), -1);
    EXPECT_EQ(string.FindChar('a', 6, false), -1);
    EXPECT_EQ(string.FindChar('a', -1, false), -1);
    EXPECT_EQ(string.FindChar('\0', false), -1);
    EXPECT_EQ(MString().FindChar('a', false), -1);
}

TEST(MString, ItIsMeantThatABackwardSearchNeverLooksAtPositionZero) {
    const MString string("abcabc");
    EXPECT_EQ(string.FindChar('a', true), 3);
    EXPECT_EQ(string.FindChar('c', true), 5);
    EXPECT_EQ(string.FindChar('a', 2, true), -1) << "the one at 0 is not seen";
    EXPECT_EQ(string.FindChar('b', 3, true), 1);
    EXPECT_EQ(string.FindChar('a', 3, true), 3);
    EXPECT_EQ(string.FindChar('a', 6, true), 3);
    EXPECT_EQ(string.FindChar('a', 7, true), -1);
    EXPECT_EQ(string.FindChar('a', kLeast, true), -1);
    EXPECT_EQ(MString("a").FindChar('a', true), -1);
    EXPECT_EQ(MString().FindChar('a', true), -1);
}

TEST(MString, ReserveClearsAndAllocates) {
    MString string("abc");
    string.Reserve(50);
    EXPECT_EQ(string.GetCapacity(), 50);
    EXPECT_EQ(string.GetLength(), 0);
    EXPECT_STREQ(string.c_str(), "");
    EXPECT_NE(string.GetBuffer(), nullptr);
    string.Reserve(0);
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string.Reserve(kLeast);
    EXPECT_EQ(string.GetBuffer(), nullptr);
    string.Reserve(1);
    EXPECT_STREQ(string.c_str(), "");
    string.Append("a");
    EXPECT_STREQ(string.c_str(), "a");
}

TEST(MString, InsertsWithinAndAtTheEnd) {
    MString string("ad");
    EXPECT_TRUE(string.Insert("bc", 1));
    EXPECT_STREQ(string.c_str(), "abcd");
    EXPECT_TRUE(string.Insert("x", string.GetLength())) << "as Append";
    EXPECT_STREQ(string.c_str(), "abcdx");
    EXPECT_TRUE(string.Insert("0", 0));
    EXPECT_STREQ(string.c_str(), "0abcdx");
    for (const std::int32_t position : {7, -1, kMost, kLeast})
        EXPECT_FALSE(string.Insert("y", position)) << position;
    EXPECT_TRUE(string.Insert(kNull, 2));
    EXPECT_TRUE(string.Insert("", 2));
    EXPECT_STREQ(string.c_str(), "0abcdx");
    MString none;
    EXPECT_TRUE(none.Insert("a", 0));
    EXPECT_STREQ(none.c_str(), "a");
}

TEST(MString, RemovesUpToTheEnd) {
    MString string("abcdef");
    EXPECT_TRUE(string.Remove(2, 1000));
    EXPECT_STREQ(string.c_str(), "ab");
    string = "abcdef";
    EXPECT_TRUE(string.Remove(1, kMost));
    EXPECT_STREQ(string.c_str(), "a");
    string = "abcdef";
    EXPECT_TRUE(string.Remove(1, 2));
    EXPECT_STREQ(string.c_str(), "adef");
    EXPECT_TRUE(string.Remove(0, 0));
    EXPECT_STREQ(string.c_str(), "adef");
    for (const std::int32_t position : {4, 5, -1, kMost, kLeast})
        EXPECT_FALSE(string.Remove(position, 1)) << position;
    EXPECT_FALSE(string.Remove(0, -1));
    EXPECT_STREQ(string.c_str(), "adef");
    EXPECT_FALSE(MString().Remove(0, 1));
}

TEST(MString, ReplaceAllGoesOnBehindEachNewText) {
    MString string("aa");
    EXPECT_EQ(string.ReplaceAll("a", "aa"), 2);
    EXPECT_STREQ(string.c_str(), "aaaa");
    EXPECT_EQ(string.ReplaceAll("aa", "b"), 2);
    EXPECT_STREQ(string.c_str(), "bb");
    EXPECT_EQ(string.ReplaceAll("b", kNull), 2) << "a null text as an empty one";
    EXPECT_STREQ(string.c_str(), "");
    string = "abcabc";
    EXPECT_EQ(string.ReplaceAll("bc", ""), 2);
    EXPECT_STREQ(string.c_str(), "aa");
    EXPECT_EQ(string.ReplaceAll("x", "y"), 0);
}

TEST(MString, ReplaceAllOfNothingReplacesNothing) {
    MString string("abc");
    EXPECT_EQ(string.ReplaceAll("", "x"), 0);
    EXPECT_EQ(string.ReplaceAll(kNull, "x"), 0);
    EXPECT_STREQ(string.c_str(), "abc");
    MString none;
    EXPECT_EQ(none.ReplaceAll("", "x"), 0);
    EXPECT_EQ(none.ReplaceAll("a", "x"), 0);
}

TEST(MString, ReplaceRemovesThenInserts) {
    MString string("abcdef");
    EXPECT_TRUE(string.Replace(1, 2, "XYZ"));
    EXPECT_STREQ(string.c_str(), "aXYZdef");
    EXPECT_TRUE(string.Replace(4, kMost, ""));
    EXPECT_STREQ(string.c_str(), "aXYZ");
    EXPECT_TRUE(string.Replace(3, 1, kNull));
    EXPECT_STREQ(string.c_str(), "aXY");
    EXPECT_FALSE(string.Replace(3, 1, "n"));
    EXPECT_FALSE(string.Replace(-1, 1, "n"));
    EXPECT_FALSE(string.Replace(0, -1, "n"));
    EXPECT_STREQ(string.c_str(), "aXY");
}

TEST(MString, ChangesTheCaseOfAsciiLettersAlone) {
    MString string("aB1\xE4\xC4[z{@");
    EXPECT_EQ(string.ToUpper(), 2);
    EXPECT_STREQ(string.c_str(), "AB1\xE4\xC4[Z{@");
    EXPECT_EQ(string.ToUpper(), 0);
    EXPECT_EQ(string.ToLower(), 3);
    EXPECT_STREQ(string.c_str(), "ab1\xE4\xC4[z{@");
    MString none;
    EXPECT_EQ(none.ToUpper(), 0);
    EXPECT_EQ(none.ToLower(), 0);
}

TEST(MString, ReadsNumbers) {
    EXPECT_EQ(MString("42x").ToInt(), 42);
    EXPECT_EQ(MString().ToInt(), 0);
    EXPECT_EQ(MString("").ToInt(), 0);
    EXPECT_EQ(MString("1.25").ToDouble(), 1.25);
    EXPECT_EQ(MString().ToDouble(), 0.0);
}

TEST(MString, TrimsControlCharactersOrBlanksAlone) {
    MString string(" \t\x01 a b\n\x7F ");
    EXPECT_EQ(string.Trim(false), 5);
    EXPECT_STREQ(string.c_str(), "a b\n\x7F") << "127 is not below 33";
    string = " \ta\t ";
    EXPECT_EQ(string.Trim(true), 2);
    EXPECT_STREQ(string.c_str(), "\ta\t");
    string = "  a  ";
    EXPECT_EQ(string.TrimLeft(false), 2);
    EXPECT_EQ(string.TrimRight(false), 2);
    EXPECT_STREQ(string.c_str(), "a");
    string = " \ta\t ";
    EXPECT_EQ(string.TrimLeft(true), 1);
    EXPECT_EQ(string.TrimRight(true), 1);
    EXPECT_STREQ(string.c_str(), "\ta\t");
    string = "\xE4 a \xE4";
    EXPECT_EQ(string.Trim(false), 0) << "bytes above 127 are no control characters";
}

TEST(MString, TrimsOneCharacter) {
    MString string("xxaxbxx");
    EXPECT_EQ(string.TrimLeft('x'), 2);
    EXPECT_EQ(string.TrimRight('x'), 2);
    EXPECT_STREQ(string.c_str(), "axb");
    string = "--a--";
    EXPECT_EQ(string.Trim('-'), 4);
    EXPECT_STREQ(string.c_str(), "a");
    EXPECT_EQ(string.Trim('-'), 0);
}

TEST(MString, ItIsMeantThatTrimRightKeepsTheFirstCharacter) {
    MString string("   ");
    EXPECT_EQ(string.TrimRight(false), 2);
    EXPECT_STREQ(string.c_str(), " ");
    EXPECT_EQ(string.TrimRight(true), 0);
    string = "xxx";
    EXPECT_EQ(string.TrimRight('x'), 2);
    EXPECT_STREQ(string.c_str(), "x");
}

TEST(MString, TrimmingAllOfATextEmptiesIt) {
    MString string("   ");
    EXPECT_EQ(string.Trim(false), 3);
    EXPECT_STREQ(string.c_str(), "");
    MString none;
    EXPECT_EQ(none.Trim(false), 0);
    EXPECT_EQ(none.Trim('x'), 0);
    EXPECT_EQ(none.TrimRight(true), 0);
    EXPECT_EQ(none.TrimLeft(true), 0);
}

TEST(MString, TakesAPartOfTheMiddle) {
    const MString string("abcdef");
    EXPECT_STREQ(string.Mid(1, 3).c_str(), "bcd");
    EXPECT_STREQ(string.Mid(4, kMost).c_str(), "ef");
    for (const std::int32_t position : {6, 7, -1, kMost, kLeast})
        EXPECT_EQ(string.Mid(position, 2).GetBuffer(), nullptr) << position;
    EXPECT_FALSE(string.Mid(1, 0).IsNotEmpty());
    EXPECT_FALSE(string.Mid(1, -3).IsNotEmpty());
    EXPECT_FALSE(MString().Mid(0, 1).IsNotEmpty());
}

TEST(MString, ReversesAndCountsTheSwaps) {
    MString string("abc");
    EXPECT_EQ(string.Reverse(), 1);
    EXPECT_STREQ(string.c_str(), "cba");
    string = "abcd";
    EXPECT_EQ(string.Reverse(), 2);
    EXPECT_STREQ(string.c_str(), "dcba");
    MString none;
    EXPECT_EQ(none.Reverse(), 0);
}

TEST(MString, DuplicatesForTheCallerToFree) {
    const MString string("abc");
    char* copy = string.Duplicate();
    EXPECT_STREQ(copy, "abc");
    std::free(copy);
    char* empty = MString().Duplicate();
    EXPECT_STREQ(empty, "");
    std::free(empty);
}

TEST(MString, KnowsWhatIsNumeric) {
    EXPECT_FALSE(MString("1.5").IsNumeric(true));
    EXPECT_TRUE(MString("1.5").IsNumeric(false));
    EXPECT_TRUE(MString("-1").IsNumeric(true));
    EXPECT_TRUE(MString("1-2-").IsNumeric(true)) << "the minus counts in every position";
    EXPECT_TRUE(MString("..").IsNumeric(false));
    EXPECT_FALSE(MString("+1").IsNumeric(false));
    EXPECT_FALSE(MString("1e5").IsNumeric(false));
    EXPECT_FALSE(MString(" 1").IsNumeric(false));
    EXPECT_TRUE(MString("").IsNumeric(true)) << "the empty text is";
    EXPECT_FALSE(MString().IsNumeric(true)) << "a string without buffer is not";
    EXPECT_FALSE(MString("\xB2").IsNumeric(false));
}

TEST(MString, TheChainedFormsDoTheSameAndReturnTheString) {
    MString string;
    string.ChainAppend("abc").ChainAppend("defg", 2).ChainInsert("0", 0).ChainRemove(1, 1);
    EXPECT_STREQ(string.c_str(), "0bcde");
    string.ChainReplaceAll("b", "bb").ChainReplace(0, 1, "z").ChainToUpper().ChainReverse();
    EXPECT_STREQ(string.c_str(), "EDCBBZ");
    EXPECT_STREQ(string.ChainToLower().c_str(), "edcbbz");
    string = "  \tx\t  ";
    EXPECT_STREQ(string.ChainTrimLeft(true).c_str(), "\tx\t  ");
    EXPECT_STREQ(string.ChainTrimRight(true).c_str(), "\tx\t");
    EXPECT_STREQ(string.ChainTrim(false).c_str(), "x");
    string = "--x--y--";
    EXPECT_STREQ(string.ChainTrimLeft('-').c_str(), "x--y--");
    EXPECT_STREQ(string.ChainTrimRight('-').c_str(), "x--y");
    EXPECT_STREQ(string.ChainTrim('y').c_str(), "x--");
    EXPECT_EQ(&string.ChainRemove(100, 1), &string) << "a failure changes nothing";
    EXPECT_STREQ(string.c_str(), "x--");
}

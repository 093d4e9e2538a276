#include "HttpFixture.h"

// Header lists as a script handles them.

class HeaderLists : public HttpFixture {};

TEST_F(HeaderLists, TheFirstHeaderHasNoLineEndBeforeIt) {
    EXPECT_EQ(Run("client.addHeader('', 'A', '1')"), "A:1");
    EXPECT_EQ(Run("client.addHeader('A:1', 'B', '2')"), "A:1\r\nB:2");
}

TEST_F(HeaderLists, AnEmptyListCountsOneLine) {
    EXPECT_EQ(Run("client.getHeaderCount('')"), "1");
    EXPECT_EQ(Run("client.getHeaderCount('A:1\\r\\nB:2')"), "2");
    EXPECT_EQ(Run("client.getHeaderCount('A:1\\r\\n\\r\\n')"), "3");
    EXPECT_EQ(Run("client.getHeaderCount('A:1\\nB:2\\rC:3')"), "1");
}

TEST_F(HeaderLists, AValueBeginsBehindTheFirstColon) {
    EXPECT_EQ(Run("client.getHeaderValue('a:b:c', 'a')"), "b:c");
    EXPECT_EQ(Run("client.getHeaderValueByIndex('a:b:c', 1)"), "b:c");
}

TEST_F(HeaderLists, NamesAreComparedExactly) {
    EXPECT_EQ(Run("client.getHeaderValue('A:1', 'a')"), "");
    EXPECT_EQ(Run("client.getHeaderValue('A :1', 'A')"), "");
    EXPECT_EQ(Run("client.getHeaderValue('AB:1', 'A')"), "");
}

TEST_F(HeaderLists, TheFirstOfTwoHeadersOfOneNameCounts) {
    EXPECT_EQ(Run("client.getHeaderValue('A:1\\r\\nA:2', 'A')"), "1");
    EXPECT_EQ(Run("client.getHeaderValue('A:\\r\\nA:2', 'A')"), "");
}

TEST_F(HeaderLists, NothingIsTrimmed) {
    EXPECT_EQ(Run("client.getHeaderValue('A: 1 ', 'A')"), " 1 ");
    EXPECT_EQ(Run("client.getHeaderNameByIndex(' A :1', 1)"), " A ");
}

TEST_F(HeaderLists, LinesWithoutColonAreSkippedByNameAndEmptyByIndex) {
    EXPECT_EQ(Run("client.getHeaderValue('plain\\r\\nA:1', 'A')"), "1");
    EXPECT_EQ(Run("client.getHeaderValue('plain', 'plain')"), "");
    EXPECT_EQ(Run("client.getHeaderValue('plain\\r\\nA:1', '')"), "");
    EXPECT_EQ(Run("client.getHeaderNameByIndex('plain\\r\\nA:1', 1)"), "");
    EXPECT_EQ(Run("client.getHeaderValueByIndex('plain\\r\\nA:1', 1)"), "");
}

TEST_F(HeaderLists, AHeaderWithoutNameIsFoundByTheEmptyName) {
    EXPECT_EQ(Run("client.getHeaderValue(':1', '')"), "1");
}

TEST_F(HeaderLists, LinesAreCountedFromOne) {
    EXPECT_EQ(Run("client.getHeaderNameByIndex('A:1\\r\\nB:2', 1)"), "A");
    EXPECT_EQ(Run("client.getHeaderNameByIndex('A:1\\r\\nB:2', 2)"), "B");
    EXPECT_EQ(Run("client.getHeaderValueByIndex('A:1\\r\\nB:2', 2)"), "2");
}

TEST_F(HeaderLists, ALineThatIsNotThereIsEmpty) {
    for (const char* index : {"2", "0", "-1", "2147483647", "-2147483648"}) {
        EXPECT_EQ(Run(std::string("client.getHeaderNameByIndex('A:1', ") + index + ")"), "");
        EXPECT_EQ(Run(std::string("client.getHeaderValueByIndex('A:1', ") + index + ")"), "");
    }
}

TEST_F(HeaderLists, AreBuiltWithoutTouchingTheTexts) {
    EXPECT_EQ(Run("client.addHeader('A:1', '', '')"), "A:1\r\n:");
    EXPECT_EQ(Run("client.getHeaderValue(client.addHeader('', 'T', '\\u20ac'), 'T') === '\\u20ac'"), "true");
}

#include <gtest/gtest.h>
#include <istream>
#include <iterator>
#include <pm/srcstreambuf.h>
#include <string>

TEST(SrcStreamBuf, FreshOneIsAtItsEnd) {
    pm_srcstreambuf buffer;
    std::istream stream(&buffer);
    EXPECT_EQ(std::char_traits<char>::eof(), stream.get());
    EXPECT_TRUE(stream.eof());
}

TEST(SrcStreamBuf, ReadsTheBlockThatItWasGiven) {
    char block[] = "line 1\nline 2\0x";
    pm_srcstreambuf buffer;
    buffer.setg(block, block, block + 15);
    std::istream stream(&buffer);
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ("line 1", line);
    std::getline(stream, line);
    EXPECT_EQ(std::string("line 2\0x", 8), line);
    EXPECT_TRUE(stream.eof());
}

TEST(SrcStreamBuf, StartsAtTheReadPosition) {
    char block[] = "abcdef";
    pm_srcstreambuf buffer;
    buffer.setg(block, block + 2, block + 5);
    EXPECT_EQ(3, buffer.in_avail());
    EXPECT_EQ("cde", std::string(std::istreambuf_iterator<char>(&buffer), {}));
}

TEST(SrcStreamBuf, PutsBackAsFarAsTheStartOfTheArea) {
    char block[] = "abc";
    pm_srcstreambuf buffer;
    buffer.setg(block, block + 1, block + 3);
    EXPECT_EQ('a', buffer.sungetc());
    EXPECT_EQ(std::char_traits<char>::eof(), buffer.sungetc());
}

TEST(SrcStreamBuf, TakesAnotherBlockLater) {
    char first[] = "one";
    char second[] = "two";
    pm_srcstreambuf buffer;
    buffer.setg(first, first, first + 3);
    std::istream stream(&buffer);
    std::string word;
    stream >> word;
    EXPECT_EQ("one", word);
    buffer.setg(second, second, second + 3);
    stream.clear();
    stream >> word;
    EXPECT_EQ("two", word);
}

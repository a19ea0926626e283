#include "filers/wide_text.h"

#include "support/allocation_failures.h"
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using pm::WideText;

std::u16string assigned(const std::string& narrow, unsigned page = 1252) {
    WideText text(pm::code_page(page));
    EXPECT_TRUE(text.assign(narrow));
    return std::u16string(text.view());
}

std::u16string appended(const std::string& narrow, std::size_t piece, unsigned page = 1252) {
    WideText text(pm::code_page(page));
    for (std::size_t at = 0; at < narrow.size(); at += piece)
        EXPECT_TRUE(text.append(std::string_view(narrow).substr(at, piece)));
    EXPECT_TRUE(text.end());
    return std::u16string(text.view());
}

TEST(WideText, AsciiOfAnyLengthIsWidened) {
    for (std::size_t length = 0; length < 70; ++length) {
        std::string narrow;
        for (std::size_t i = 0; i < length; ++i)
            narrow += static_cast<char>(1 + (i * 7 + length) % 0x7F);
        const std::u16string expected(narrow.begin(), narrow.end());
        EXPECT_EQ(expected, assigned(narrow));
        EXPECT_EQ(expected, appended(narrow, 5));
    }
}

TEST(WideText, AZeroByteEndsTheText) {
    for (std::size_t length = 0; length < 20; ++length) {
        const std::string narrow = std::string(length, 'x') + '\0' + "rest\0rest";
        EXPECT_EQ(std::u16string(length, u'x'), assigned(narrow));
        EXPECT_EQ(std::u16string(length, u'x'), appended(narrow, 3));
        EXPECT_EQ(std::u16string(length, u'x') + u'\u00E4',
                  assigned(std::string(length, 'x') + "\xE4" + '\0' + "y"));
    }
}

TEST(WideText, TextIsZeroTerminated) {
    WideText text(pm::code_page(1252));
    ASSERT_TRUE(text.assign("abc"));
    EXPECT_EQ(u'\0', text.view().data()[3]);
    text.truncate(1);
    EXPECT_EQ(u"a", std::u16string(text.view().data()));
}

TEST(WideText, AnewTextForgetsTheOldOne) {
    WideText text(pm::code_page(1252));
    ASSERT_TRUE(text.append(std::string("abc\0", 4)));
    ASSERT_TRUE(text.end());
    text.clear();
    ASSERT_TRUE(text.append("x"));
    ASSERT_TRUE(text.end());
    EXPECT_EQ(u"x", text.view());
    ASSERT_TRUE(text.assign("yz"));
    EXPECT_EQ(u"yz", text.view());
}

TEST(WideText, PiecesGiveWhatTheWholeGives) {
    struct Case {
        unsigned page;
        std::u16string wide;
    };
    for (const Case& each :
         {Case{1252, u"a\u00E4\u20AC=1{\u00FF"}, Case{65001, u"\u4E2D\u00E9x\U0001F600\u3042~~"},
          Case{932, u"\u8868\u3042\uFF71x\u80FD{\u4E88"}, Case{936, u"\u4E2D\u6587ab\u56FD"},
          Case{949, u"\uAC00\uAC02x"}, Case{950, u"\u4E2D\u6587y\u570B"}}) {
        std::string narrow;
        for (int i = 0; i < 10; ++i)
            narrow += pm::to_narrow(each.wide, each.page);
        const std::u16string whole = pm::to_wide(narrow, each.page);
        EXPECT_EQ(whole, assigned(narrow, each.page));
        for (std::size_t piece = 1; piece < 20; ++piece)
            EXPECT_EQ(whole, appended(narrow, piece, each.page)) << each.page << " " << piece;
    }
}

TEST(WideText, PiecesOfBrokenUtf8GiveWhatTheWholeGives) {
    std::mt19937 random(1);
    constexpr std::string_view bytes = "a=\x80\xBF\xC3\xE4\xB8\xF0\x9F\x98\xED\xA0\xFF";
    for (int run = 0; run < 20'000; ++run) {
        std::string narrow;
        for (std::size_t i = random() % 20; i > 0; --i)
            narrow += bytes[random() % bytes.size()];
        ASSERT_EQ(pm::to_wide(narrow, 65001), appended(narrow, 1 + random() % 6, 65001));
    }
}

TEST(WideText, WithoutMemoryTheOperationsTell) {
    WideText text(pm::code_page(1252));
    pm::set_allocation_filter([](std::size_t) { return true; });
    EXPECT_FALSE(text.reserve(1));
    EXPECT_FALSE(text.assign("a"));
    EXPECT_FALSE(text.append("a"));
    EXPECT_FALSE(text.end());
    pm::set_allocation_filter(nullptr);
    ASSERT_TRUE(text.assign("abc"));
    EXPECT_EQ(u"abc", text.view());
}

TEST(WideText, TakenBlockLeavesAnEmptyText) {
    WideText text(pm::code_page(1252));
    ASSERT_TRUE(text.assign("abc"));
    const pm::Block<char16_t> taken = text.take();
    EXPECT_EQ(u"abc", std::u16string(taken.get()));
    EXPECT_TRUE(text.view().empty());
    ASSERT_TRUE(text.assign("xy"));
    EXPECT_EQ(u"xy", text.view());
}

TEST(WideText, ShrunkBlockKeepsItsFirstBytes) {
    WideText text(pm::code_page(1252));
    ASSERT_TRUE(text.assign(std::string(1000, 'x')));
    std::copy_n("bytes", 5, text.bytes());
    text.shrink(5);
    EXPECT_EQ("bytes", std::string(reinterpret_cast<const char*>(text.bytes()), 5));
    ASSERT_TRUE(text.assign(std::string(1000, 'y')));
    EXPECT_EQ(std::u16string(1000, u'y'), text.view());
}

} // namespace

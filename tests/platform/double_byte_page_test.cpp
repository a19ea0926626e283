#include "platform/code_page.h"

#include "platform/code_page_bytes.h"
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <pm_test_paths.h>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using pm::to_narrow;
using pm::to_wide;
using pm::test::character_lengths;
using pm::test::every_byte;

using Pair = std::pair<unsigned, std::string>; // a page and two bytes

std::string bytes_of(const std::string& digits) {
    const unsigned long value = std::stoul(digits, nullptr, 16);
    return {static_cast<char>(value >> 8), static_cast<char>(value & 0xFF)};
}

// What goes out for the characters that don't come back.
std::map<Pair, std::string> shared_units() {
    std::ifstream file(PM_TEST_DATA "/code_pages/shared_units.txt");
    std::map<Pair, std::string> all;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        unsigned page = 0;
        std::string in;
        std::string out;
        if (fields >> page >> in >> out) all[{page, bytes_of(in)}] = bytes_of(out);
    }
    return all;
}

// The pairs of bytes that are a character of the page.
std::vector<std::string> characters(unsigned page) {
    std::vector<std::string> all;
    for (const char lead : every_byte(0x80, 0xFF)) {
        for (const char trail : every_byte(0, 0xFF)) {
            const std::string pair{lead, trail};
            const std::u16string wide = to_wide(pair, page);
            if (wide.size() == 1 && wide != u"\uFFFD") all.push_back(pair);
        }
    }
    return all;
}

} // namespace

TEST(DoubleBytePage, DecodesAndEncodes) {
    EXPECT_EQ(u"\u3042\u30BD\uFF71\\~", to_wide("\x82\xA0\x83\x5C\xB1\\~", 932));
    EXPECT_EQ("\x82\xA0\x83\x5C\xB1\\~", to_narrow(u"\u3042\u30BD\uFF71\\~", 932));
    EXPECT_EQ(u"\u554A\u50DC\u20AC", to_wide("\xB0\xA1\x83\x5C\x80", 936));
    EXPECT_EQ("\xB0\xA1\x83\x5C\x80", to_narrow(u"\u554A\u50DC\u20AC", 936));
    EXPECT_EQ(u"\uAC00\u3000", to_wide("\xB0\xA1\xA1\xA1", 949));
    EXPECT_EQ("\xB0\xA1\xA1\xA1", to_narrow(u"\uAC00\u3000", 949));
    EXPECT_EQ(u"\u965B\uFE5B", to_wide("\xB0\xA1\xA1\xA1", 950));
    EXPECT_EQ("\xB0\xA1\xA1\xA1", to_narrow(u"\u965B\uFE5B", 950));
}

TEST(DoubleBytePage, CharacterIsTwoBytesBehindALeadByte) {
    EXPECT_EQ("12121", character_lengths(932, "a\x83\x5C\xB1\xE0\x40z"));
    EXPECT_EQ("1212", character_lengths(936, "a\x83\x5C\x80\xFE\x40"));
    EXPECT_EQ("122", character_lengths(949, "a\xB0\xA1\xFE\x41"));
    EXPECT_EQ("122", character_lengths(950, "a\xB0\xA1\xFE\x41"));
}

TEST(DoubleBytePage, LeadBytesAreThoseOfThePage) {
    const auto leads = [](unsigned number) {
        std::string all;
        for (const char byte : every_byte(1, 255)) {
            const char text[] = {byte, 'A', '\0'};
            if (pm::code_page(number).character_length(text) == 2) all += byte;
        }
        return all;
    };
    EXPECT_EQ(every_byte(0x81, 0x9F) + every_byte(0xE0, 0xFC), leads(932));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(936));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(949));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(950));
}

TEST(DoubleBytePage, CharacterNeverPassesTheTerminator) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ(1U, pm::code_page(number).character_length("\x83"));
        EXPECT_EQ(1U, pm::code_page(number).character_length(""));
    }
}

TEST(DoubleBytePage, CutCharacterIsReplaced) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ(u"a\uFFFD", to_wide("a\x83", number)) << number;
        EXPECT_EQ(u"\uFFFD \uFFFD", to_wide("\x83 \x83", number)) << number;
    }
    EXPECT_EQ(u"\u3042a", to_wide("\x82\xA0"
                                  "a",
                                  932))
        << "a cut character left something behind";
}

TEST(DoubleBytePage, UndefinedBytesAreReplaced) {
    EXPECT_EQ(u"\uFFFD\uFFFDx", to_wide("\x81\xFFx", 932));
    EXPECT_EQ(u"\uFFFD", to_wide("\xA0", 932));
    EXPECT_EQ(u"\uFFFDx", to_wide("\x81\x80x", 949));
    EXPECT_EQ(u"\uFFFDx", to_wide("\x81\x80x", 950));
}

TEST(DoubleBytePage, UnitsWithoutACharacterBecomeAQuestionMarkEach) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ("a?b", to_narrow(u"a\u0E01b", number)) << number;
        EXPECT_EQ("a??b", to_narrow(u"a\U0001F600b", number)) << number;
        EXPECT_EQ("?x?", to_narrow(u"\xD800x\xDC00", number)) << number;
        EXPECT_EQ("??", to_narrow(u"\xDC00\xD800", number)) << number;
        EXPECT_EQ("?", to_narrow(u"\u200D", number)) << number;
    }
}

TEST(DoubleBytePage, HasTheCharactersOfWindows) {
    EXPECT_EQ(9604U, characters(932).size());
    EXPECT_EQ(23940U, characters(936).size());
    EXPECT_EQ(17236U, characters(949).size());
    EXPECT_EQ(19720U, characters(950).size());
}

TEST(DoubleBytePage, EveryCharacterComesBackOrIsListed) {
    const std::map<Pair, std::string> listed = shared_units();
    ASSERT_EQ(408U, listed.size());
    std::map<Pair, std::string> changed;
    for (const unsigned page : {932U, 936U, 949U, 950U}) {
        for (const std::string& pair : characters(page)) {
            const std::string out = to_narrow(to_wide(pair, page), page);
            if (out != pair) changed[{page, pair}] = out;
        }
    }
    EXPECT_EQ(listed, changed);
}

TEST(DoubleBytePage, WhatGoesOutForAnotherCharacterHasTheSameUnit) {
    for (const auto& [in, out] : shared_units()) {
        EXPECT_EQ(to_wide(in.second, in.first), to_wide(out, in.first));
        EXPECT_NE(in.second, out);
    }
}

TEST(DoubleBytePage, SingleBytesComeBack) {
    for (const auto& [page, bytes] :
         {std::pair(932U, every_byte(0xA1, 0xDF)), std::pair(936U, every_byte(0x80, 0x80)),
          std::pair(936U, every_byte(0xFF, 0xFF)), std::pair(949U, every_byte(0x80, 0x80)),
          std::pair(949U, every_byte(0xFF, 0xFF)), std::pair(950U, every_byte(0x80, 0x80)),
          std::pair(950U, every_byte(0xFF, 0xFF))}) {
        EXPECT_EQ(bytes, to_narrow(to_wide(bytes, page), page)) << page;
    }
    EXPECT_EQ(u"\uFF61\uFF9F", to_wide("\xA1\xDF", 932));
    EXPECT_EQ(u"\u20AC\uF8F5", to_wide("\x80\xFF", 936));
    EXPECT_EQ(u"\u0080\uF8F7", to_wide("\x80\xFF", 949));
    EXPECT_EQ(u"\u0080\uF8F8", to_wide("\x80\xFF", 950));
}

TEST(DoubleBytePage, UnitsThatAreOnlyLikeACharacterAreNotFittedIn) {
    EXPECT_EQ("?", to_narrow(u"\uF86F", 932)); // a private-use form of U+2116
    EXPECT_EQ("??", to_narrow(u"\u2016\u301C", 932)) << "932 has the parallel sign and the wide tilde";
    EXPECT_EQ("?", to_narrow(u"\u00A5", 936));
}

TEST(DoubleBytePage, ThreadsMayUseAPageForTheFirstTimeAtOnce) {
    std::vector<std::thread> threads;
    std::vector<std::string> results(8);
    for (std::string& result : results) {
        threads.emplace_back([&result] { result = to_narrow(to_wide("\xB0\xA1\xFE\x41", 949), 949); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<std::string>(8, to_narrow(to_wide("\xB0\xA1\xFE\x41", 949), 949)), results);
    EXPECT_EQ("\xB0\xA1", results[0].substr(0, 2));
}

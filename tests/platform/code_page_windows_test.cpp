#include "platform/code_page.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <windows.h>

// The library's tables against the system's own.

namespace {

constexpr unsigned single_byte_pages[] = {
    437,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,   863,  864,
    865,   866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258, 20127,
    20866, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};
constexpr unsigned double_byte_pages[] = {932, 936, 949, 950};

using Lines = std::vector<std::string>;

std::string line(const char* form, unsigned page, unsigned what, unsigned ours, unsigned theirs) {
    char text[80];
    std::snprintf(text, sizeof text, form, page, what, ours, theirs);
    return text;
}

// Whether the system's table is one to compare with. Under Wine 858 is missing, and 20127 takes a byte for
// the one without its highest bit.
bool is_comparable(unsigned page) {
    return page != 20127 && IsValidCodePage(page) != FALSE;
}

// Bytes that the system decodes to another unit.
void compare_bytes(unsigned page, Lines& differences) {
    for (unsigned byte = 0; byte <= 0xFF; ++byte) {
        const char narrow = static_cast<char>(byte);
        wchar_t theirs = 0;
        ASSERT_EQ(1, MultiByteToWideChar(page, 0, &narrow, 1, &theirs, 1));
        const std::u16string ours = pm::to_wide({&narrow, 1}, page);
        ASSERT_EQ(1U, ours.size());
        if (ours[0] != static_cast<char16_t>(theirs)) {
            differences.push_back(line("%u: %02X is %04X, theirs %04X", page, byte, ours[0], theirs));
        }
    }
}

// Units that the system encodes to other bytes, or for which one of the two has none.
void compare_units(unsigned page, Lines& differences) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto wide = static_cast<wchar_t>(unit);
        char theirs[2] = {};
        BOOL is_missing = FALSE;
        const int count =
            WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, &wide, 1, theirs, 2, "?", &is_missing);
        const std::string expected = is_missing != FALSE ? "?" : std::string(theirs, theirs + count);
        const std::string ours = pm::to_narrow(std::u16string(1, static_cast<char16_t>(unit)), page);
        if (ours == expected) continue;
        differences.push_back(line("%u: %04X goes out as %02X, theirs %02X", page, unit,
                                   static_cast<unsigned char>(ours[0]),
                                   static_cast<unsigned char>(expected[0])));
    }
}

} // namespace

TEST(CodePageOfTheSystem, DecodesBytesToTheSameUnits) {
    Lines differences;
    for (const unsigned page : single_byte_pages) {
        if (is_comparable(page)) compare_bytes(page, differences);
    }
    EXPECT_EQ(Lines{}, differences);
}

TEST(CodePageOfTheSystem, EncodesUnitsToTheSameBytes) {
    Lines differences;
    for (const unsigned page : single_byte_pages) {
        if (is_comparable(page)) compare_units(page, differences);
    }
    for (const unsigned page : double_byte_pages) {
        compare_units(page, differences);
    }
    EXPECT_EQ(Lines{}, differences);
}

TEST(CodePageOfTheSystem, HasAllOthersOfOurs) {
    std::vector<unsigned> missing;
    for (const unsigned page : single_byte_pages) {
        if (IsValidCodePage(page) == FALSE) missing.push_back(page);
    }
    EXPECT_TRUE(missing.empty() || missing == std::vector<unsigned>{858});
}

TEST(CodePageOfTheSystem, NothingGoesOutByItsLooks) {
    EXPECT_EQ("?????", pm::to_narrow(u"\u0100\u2030\uFF21\u0410\u2126", 28591));
    EXPECT_EQ("?", pm::to_narrow(u"\u0100", 932));
    EXPECT_EQ("?", pm::to_narrow(u"\u0100", 936).substr(0, 1));
}

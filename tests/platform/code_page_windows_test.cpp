#include "platform/code_page.h"

#include <cstdio>
#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

// The library's tables against the system's own.

namespace {

using Lines = std::vector<std::string>;

constexpr unsigned single_byte_pages[] = {
    437,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,   863,  864,
    865,   866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258, 20127,
    20866, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};
constexpr unsigned double_byte_pages[] = {932, 936, 949, 950};

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

// Where Wine has an older table than Unicode's of today: 21866 of 1998, 28597 of 1987 and 28598 of 1988.
const Lines other_units{"21866: AE is 255D, theirs 045E", "21866: BE is 256C, theirs 040E",
                        "28597: A1 is 2018, theirs 02BD", "28597: A2 is 2019, theirs 02BC",
                        "28597: A4 is 20AC, theirs F7C2", "28597: A5 is 20AF, theirs F7C3",
                        "28597: AA is 037A, theirs F7C4", "28598: AF is 00AF, theirs 203E",
                        "28598: FD is 200E, theirs F7BF", "28598: FE is 200F, theirs F7C0"};
const Lines other_bytes{"21866: 040E goes out as 3F, theirs BE", "21866: 045E goes out as 3F, theirs AE",
                        "21866: 255D goes out as AE, theirs 3F", "21866: 256C goes out as BE, theirs 3F",
                        "28597: 02BC goes out as 3F, theirs A2", "28597: 02BD goes out as 3F, theirs A1",
                        "28597: 037A goes out as AA, theirs 3F", "28597: 2018 goes out as A1, theirs 3F",
                        "28597: 2019 goes out as A2, theirs 3F", "28597: 20AC goes out as A4, theirs 3F",
                        "28597: 20AF goes out as A5, theirs 3F", "28597: F7C2 goes out as 3F, theirs A4",
                        "28597: F7C3 goes out as 3F, theirs A5", "28597: F7C4 goes out as 3F, theirs AA",
                        "28598: 00AF goes out as AF, theirs 3F", "28598: 200E goes out as FD, theirs 3F",
                        "28598: 200F goes out as FE, theirs 3F", "28598: 203E goes out as 3F, theirs AF",
                        "28598: F7BF goes out as 3F, theirs FD", "28598: F7C0 goes out as 3F, theirs FE",
                        "932: 0080 goes out as 3F, theirs 80",   "932: F8F0 goes out as 3F, theirs A0",
                        "932: F8F1 goes out as 3F, theirs FD",   "932: F8F2 goes out as 3F, theirs FE",
                        "932: F8F3 goes out as 3F, theirs FF"};

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
    EXPECT_THAT(differences, testing::AnyOf(testing::IsEmpty(), testing::Eq(other_units)));
}

TEST(CodePageOfTheSystem, EncodesUnitsToTheSameBytes) {
    Lines differences;
    for (const unsigned page : single_byte_pages) {
        if (is_comparable(page)) compare_units(page, differences);
    }
    for (const unsigned page : double_byte_pages) {
        compare_units(page, differences);
    }
    EXPECT_THAT(differences, testing::AnyOf(testing::IsEmpty(), testing::Eq(other_bytes)));
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

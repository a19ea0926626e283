#include <gtest/gtest.h>
#include <pm/error_text.h>
#include <pm/exception.h>
#include <set>
#include <string>

namespace {

constexpr std::uint32_t first_number = 50;
constexpr std::uint32_t last_number = 99;

std::u16string text_of(std::uint32_t number) {
    ZT_String text(u"untouched");
    return pm_error_text(number, text) ? text.text() : u"";
}

TEST(MessageText, MessageLibraryIsOpenFromTheStart) {
    EXPECT_NE(0U, GetPMErrResHandle());
}

TEST(MessageText, EveryNumberHasAText) {
    for (std::uint32_t number = first_number; number <= last_number; ++number) {
        EXPECT_FALSE(text_of(number).empty()) << number;
    }
}

TEST(MessageText, NoTwoNumbersHaveTheSameText) {
    std::set<std::u16string> texts;
    for (std::uint32_t number = first_number; number <= last_number; ++number) {
        EXPECT_TRUE(texts.insert(text_of(number)).second) << number;
    }
}

TEST(MessageText, TextsAreOneLineWithoutPlaceholdersOrFullStop) {
    for (std::uint32_t number = first_number; number <= last_number; ++number) {
        const std::u16string text = text_of(number);
        EXPECT_EQ(std::u16string::npos, text.find_first_of(u"%{}\r\n\t")) << number;
        EXPECT_NE(u'.', text.back()) << number;
        EXPECT_TRUE(text.front() >= u'A' && text.front() <= u'Z') << number;
    }
}

TEST(MessageText, TextSaysWhatIsWrong) {
    EXPECT_EQ(u"The file doesn't exist", text_of(63));
    EXPECT_EQ(u"Access to the file is denied", text_of(61));
    EXPECT_EQ(u"The line isn't valid", text_of(57));
    EXPECT_EQ(u"The file has no section of this name", text_of(83));
    EXPECT_EQ(u"The value of dmFields isn't a hexadecimal number", text_of(99));
}

TEST(MessageText, UnknownNumberIsFalseAndLeavesTheTextAlone) {
    for (const std::uint32_t number : {0U, 1U, 49U, 100U, 0xFFFFFFFFU}) {
        ZT_String text(u"untouched");
        EXPECT_FALSE(pm_error_text(number, text)) << number;
        EXPECT_EQ(std::u16string(u"untouched"), text.text()) << number;
    }
}

} // namespace

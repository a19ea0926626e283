#include "check/narrow_text.h"

#include "check/source_text.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/kit/file.h>

namespace {

using namespace pm::kit;

std::u16string decoded(unsigned code_page, std::string_view bytes) {
    const ScopedCodePage scope(code_page);
    return NarrowText(code_page).decode(bytes);
}

TEST(NarrowText, IsReadInItsCodePage) {
    EXPECT_EQ(u"a\u20AC", decoded(1252, "a\x80"));
    EXPECT_EQ(u"a\u20AC", decoded(65001, "a\xE2\x82\xAC"));
    EXPECT_EQ(u"a\u8868", decoded(932, "a\x95\x5C"));
    EXPECT_EQ(u"a\u4E02", decoded(936, "a\x81\x40"));
    EXPECT_EQ(u"a\uAC02", decoded(949, "a\x81\x41"));
    EXPECT_EQ(u"a\u5154", decoded(950, "a\xA8\xDF"));
}

TEST(NarrowText, OfDoubleBytesIsReadAsFarAsATextGoes) {
    EXPECT_EQ(4097U, decoded(932, std::string(5000, 'x')).size());
}

TEST(NarrowText, BytesWithoutACharacterAreThoseOfSingleByteCodePages) {
    const auto undefined = [](unsigned code_page) {
        const ScopedCodePage scope(code_page);
        const NarrowText narrow(code_page);
        std::string bytes;
        for (int byte = 0; byte < 0x100; ++byte) {
            if (narrow.is_undefined(static_cast<unsigned char>(byte))) bytes += static_cast<char>(byte);
        }
        return bytes;
    };
    EXPECT_EQ("\x81\x8D\x8F\x90\x9D", undefined(1252));
    EXPECT_EQ("\x81\x88\x8A\x8C\x8D\x8E\x8F\x90\x98\x9A\x9C\x9D\x9E\x9F\xAA\xD2\xFF", undefined(1253));
    EXPECT_EQ("", undefined(437));
    EXPECT_EQ("", undefined(28591));
    EXPECT_EQ("", undefined(65001));
    EXPECT_EQ("", undefined(932));
}

TEST(NarrowText, SecondBytesAreMasked) {
    const auto masked = [](unsigned code_page, std::string_view bytes) {
        const ScopedCodePage scope(code_page);
        return NarrowText(code_page).masked(bytes);
    };
    EXPECT_EQ("a\x83{", masked(1252, "a\x83{"));
    for (const char* const lead : {"\x81", "\x9F", "\xE0", "\xFC"}) {
        EXPECT_EQ(std::string(lead) + "\x80}", masked(932, std::string(lead) + "{}"));
    }
    for (const char* const other : {"\x80", "\xA0", "\xDF", "\xFD", "z"}) {
        EXPECT_EQ(std::string(other) + "{}", masked(932, std::string(other) + "{}"));
    }
    EXPECT_EQ("\x81\x80\xFE\x80", masked(936, "\x81{\xFE}"));
    EXPECT_EQ("\x80{\xFF}", masked(936, "\x80{\xFF}"));
    EXPECT_EQ("\x81\n\x81", masked(936, "\x81\n\x81"));
    EXPECT_EQ(std::string("\x81\0{", 3), masked(936, {"\x81\0{", 3}));
}

TEST(NarrowText, IsShownWithControlCharactersAndUpToFortyOthers) {
    EXPECT_EQ("a\\x09\\x7Fb", readable("a\t\x7F"
                                       "b"));
    EXPECT_EQ(std::string(40, 'x'), readable(std::string(40, 'x')));
    EXPECT_EQ(std::string(40, 'x') + "...", readable(std::string(41, 'x')));
    EXPECT_EQ("\"\"", in_quotes(""));
}

Place place_of(unsigned code_page, std::string_view content, std::size_t offset) {
    const ScopedCodePage scope(code_page);
    const NarrowText narrow(code_page);
    SourceText source(content, narrow, {.file = "file", .section = {}});
    SourceLine line;
    EXPECT_TRUE(source.next_line(line));
    return source.place(line, line.text.data() + offset);
}

TEST(SourceText, ColumnsAreCharacters) {
    EXPECT_EQ(3U, place_of(1252, "\xE9\xE9=", 2).column);
    EXPECT_EQ(2U, place_of(1252, "\xC3\xA9=", 2).column); // UTF-8, whatever it is read in
    EXPECT_EQ(2U, place_of(65001, "\xC3\xA9=", 2).column);
    EXPECT_EQ(2U, place_of(932, "\x83\x5C=", 2).column);
    EXPECT_EQ(3U, place_of(932, "\xB1\xB2=", 2).column);
}

TEST(SourceText, PartIsShownAsItsFileHasItAndCountedAsTheTreeDoes) {
    const auto shown = [](unsigned code_page, std::string_view content) {
        const ScopedCodePage scope(code_page);
        const NarrowText narrow(code_page);
        const SourceText source(content, narrow, {.file = "file", .section = {}});
        return source.utf8(source.text()) + " " + std::to_string(source.units(source.text()));
    };
    EXPECT_EQ("abc 3", shown(1252, "abc"));
    EXPECT_EQ("\xC3\xA9 1", shown(1252, "\xE9"));
    EXPECT_EQ("\xC3\xA9 2", shown(1252, "\xC3\xA9"));
    EXPECT_EQ("\xC3\xA9 1", shown(65001, "\xC3\xA9"));
    EXPECT_EQ("\xEF\xBF\xBD 1", shown(65001, "\xE9"));
    EXPECT_EQ("\xE3\x82\xBD 1", shown(932, "\x83\x5C"));
}

} // namespace

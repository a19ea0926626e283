#include "platform/compound_storage.h"
#include "support/temp_folder.h"
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <string>
#include <utility>

// What is too long for a page: each limit, and one more.
namespace {

using pm::kit::check_content;
using pm::kit::CheckOptions;
using pm::kit::Diagnostic;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> check(const std::string& content, PM_Object::FileType type, unsigned code_page = 0,
                               const std::string& name = "file") {
    CheckOptions options;
    options.type = type;
    options.code_page = code_page;
    std::vector<std::string> lines;
    for (const Diagnostic& each : check_content(content, name, options)) {
        lines.push_back(fmt::format("{}:{} {} {} {}", each.place.line, each.place.column, each.rule,
                                    each.number, each.message));
    }
    return lines;
}

std::vector<std::string> check_pia(const std::string& body, unsigned code_page = 0) {
    return check("PIAFILEVERSION_2.0\n" + body + "\n", PM_Object::FILE_PIA, code_page);
}

std::string times(std::size_t count, const std::string& text) {
    std::string out;
    for (std::size_t at = 0; at < count; ++at) {
        out += text;
    }
    return out;
}

TEST(CheckLimits, TextOf4096CharactersIsWhole) {
    EXPECT_THAT(check_pia("a=\"" + std::string(4096, 'x')), IsEmpty());
    EXPECT_THAT(check_pia("a=\"" + std::string(4097, 'x')),
                ElementsAre("2:4 cut-text 0 The text has 4097 characters, and 4097 are kept."));
    EXPECT_THAT(check_pia("a=\"" + std::string(5000, 'x')),
                ElementsAre("2:4 cut-text 0 The text has 5000 characters, and 4097 are kept."));
}

TEST(CheckLimits, TextIsCountedInUnitsOfTheTree) {
    EXPECT_THAT(check_pia("a=\"" + times(4096, "\xC3\xA9"), 65001), IsEmpty());
    EXPECT_THAT(check_pia("a=\"" + times(2049, "\xF0\x9F\x98\x80"), 65001),
                ElementsAre("2:4 cut-text 0 The text has 4098 characters, and 4097 are kept."));
}

TEST(CheckLimits, NameOf511CharactersIsRead) {
    EXPECT_THAT(check_pia(std::string(511, 'x') + "=1"), IsEmpty());
    EXPECT_THAT(check_pia(std::string(512, 'x') + "=1"),
                ElementsAre("2:1 bad-line 57 The name or path of the property is too long."));
    EXPECT_THAT(
        check_pia(std::string(512, 'x') + "{\na=1\n}"),
        ElementsAre("2:1 bad-line 57 The name or path of the node is too long, and all in it isn't read."));
}

TEST(CheckLimits, PathOf1023CharactersIsRead) {
    const std::string node = std::string(510, 'n') + "{\n" + std::string(500, 'm') + "{\n";
    const std::string ends = "\n}\n}";
    EXPECT_THAT(check_pia(node + std::string(10, 'a') + "=1" + ends), IsEmpty());
    EXPECT_THAT(check_pia(node + std::string(11, 'a') + "=1" + ends),
                ElementsAre("4:1 bad-line 57 The name or path of the property is too long."));
}

TEST(CheckLimits, PathOf256ComponentsIsRead) {
    EXPECT_THAT(check_pia(times(255, "n{\n") + "a=1\n" + times(255, "}\n")), IsEmpty());
    EXPECT_THAT(check_pia(times(256, "n{\n") + "a=1\n" + times(256, "}\n")),
                ElementsAre("258:1 bad-line 51 The path has too many components."));
}

TEST(CheckLimits, HeaderOf1023BytesIsRead) {
    const std::string header = "PIAFILEVERSION_2.0,";
    EXPECT_THAT(check(header + std::string(1023 - header.size(), 'x') + "\na=1\n", PM_Object::FILE_PIA),
                IsEmpty());
    EXPECT_THAT(check(header + std::string(1024 - header.size(), 'x') + "\na=1\n", PM_Object::FILE_PIA),
                ElementsAre("1:0 bad-header 82 The header has more than 1023 bytes."));
}

TEST(CheckLimits, LineOf1023BytesOfAnOlderFileIsRead) {
    const std::string head = "PC2Version 2.0\n[PlotDriver]\n";
    EXPECT_THAT(check(head + "Stream=" + std::string(1016, 'x') + "\n", PM_Object::FILE_PC2), IsEmpty());
    EXPECT_THAT(check(head + "Stream=" + std::string(1017, 'x') + "\n", PM_Object::FILE_PC2),
                ElementsAre("3:0 bad-line 57 The line has 1024 bytes, and 1023 are read at most."));
    const std::string marker = ";Created by Draftex\n";
    EXPECT_THAT(check(marker + "PLOT_FILE=" + std::string(1013, 'x') + "\n", PM_Object::FILE_PCP), IsEmpty());
    EXPECT_THAT(check(marker + "PLOT_FILE=" + std::string(1014, 'x') + "\n", PM_Object::FILE_PCP),
                ElementsAre("2:0 bad-line 57 The line has 1024 bytes, and 1023 are read at most."));
}

TEST(CheckLimits, SectionNameOf512CharactersIsRead) {
    const std::string head = "PC2Version 2.0\n[";
    EXPECT_THAT(check(head + std::string(513, 'x') + "]\n", PM_Object::FILE_PC2),
                ElementsAre("2:1 bad-line 57 The name of the section is too long."));
}

TEST(CheckLimits, LineOf2047BytesOfATableIsRead) {
    const std::string head = "Cut\tText\tWhen\nname\ttext\tlist\n";
    const auto table = [&](std::size_t size) {
        return check(head + "A\t" + std::string(size - 3, 'x') + "\t\n", PM_Object::FILE_PDT, 0,
                     "Media Cutting.pdt");
    };
    EXPECT_THAT(table(2047), IsEmpty());
    EXPECT_THAT(table(2048),
                ElementsAre("3:0 bad-line 56 The line has 2048 bytes, and 2047 are read at most."));
}

TEST(CheckLimits, TranslatedTextOf255CharactersIsUsed) {
    const auto text = [](std::size_t size) {
        return check("DRFX_MEDIA_SIZE_C3 \"" + std::string(size, 'x') + "\"\n", PM_Object::FILE_PDT, 0,
                     "strings.pdt");
    };
    EXPECT_THAT(text(255), IsEmpty());
    EXPECT_THAT(text(256), ElementsAre("1:21 cut-text 0 The text has 256 characters, and 255 are used."));
}

TEST(CheckLimits, SectionNameOf4096CharactersOfADpiaIsWhole) {
    const auto named = [](std::size_t size) {
        const std::string word = {static_cast<char>(size & 0xFF), static_cast<char>(size >> 8), '\0', '\0'};
        const std::string body = "PIAFILEVERSION_2.0\na=1\n";
        const std::string zero(4, '\0');
        return check(std::string("\0\0\2\0\1\0\0\0", 8) + word + std::string(size, 'n') + zero + zero +
                         static_cast<char>(body.size()) + zero.substr(1) + body,
                     PM_Object::FILE_DPIA);
    };
    EXPECT_THAT(named(4096), IsEmpty());
    EXPECT_THAT(named(4097), ElementsAre("0:0 cut-text 0 The name has more than 4096 characters."));
}

TEST(CheckLimits, StreamOf4096BytesLiesInSectorsOfItsOwn) {
    const pm::test::TempFolder folder;
    for (const auto& [size, behind] : {std::pair(4095, 4083), std::pair(4096, 4084), std::pair(4097, 4085)}) {
        {
            const auto root = pm::StgCreateDocfile(folder.wide("a.doc"));
            ASSERT_TRUE(root->CreateStream(u"Version")->Write("1", 1));
            std::string number("\1\0\0\0\4\0\0\0", 8);
            number.resize(static_cast<std::size_t>(size));
            ASSERT_TRUE(root->CreateStream(u"n")->Write(number.data(), number.size()));
        }
        EXPECT_THAT(
            check(folder.read("a.doc"), PM_Object::FILE_DOC),
            ElementsAre(fmt::format("0:0 trailing-data 0 {} bytes behind the value aren't read.", behind)));
    }
}

TEST(CheckLimits, CompressedBodyOfTooMuchIsNotExpanded) {
    const std::string block("pmzlibcodec\xFF\xFF\x00\x00\x0B\x00\x00\x00x\xDAK\xB4"
                            "5\x04\x00\x01\xD1\x00\xD0",
                            30);
    EXPECT_THAT(check("PIAFILEVERSION_1.0,compress\n" + block, PM_Object::FILE_PIA),
                ElementsAre("2:0 damaged-compression 0 The block tells of 65535 bytes, more than its stream "
                            "of 11 can hold."));
}

} // namespace

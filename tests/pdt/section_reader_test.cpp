#include "pdt/section_reader.h"

#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <vector>

namespace {

using pm::RowLine;
using pm::Section;
using pm::SectionReader;
using pm::test::expect_thrown;
using pm::test::TempFolder;
using Rows = std::vector<std::u16string>;

constexpr const char16_t* place = u"PM_PDTFile::load()";

// The rows of a file that a converter would use.
Rows rows_of(std::string_view content, int skipped = 0) {
    const TempFolder folder;
    SectionReader reader(folder.write("table.pdt", content), skipped);
    RowLine line;
    Rows rows;
    while (reader.read_row(line))
        rows.emplace_back(line.text());
    return rows;
}

TEST(SectionReader, LinesEndAtALineFeed) {
    EXPECT_EQ((Rows{u"a\tb", u"", u"c"}), rows_of("a\tb\n\nc\n"));
}

TEST(SectionReader, CarriageReturnInFrontOfALineFeedIsDropped) {
    EXPECT_EQ((Rows{u"a", u"", u"b\r", u"c\rd"}), rows_of("a\r\n\r\nb\r\r\nc\rd\n"));
}

TEST(SectionReader, LastLineWithoutLineEndIsNoRow) {
    EXPECT_EQ(Rows{u"a"}, rows_of("a\nb"));
    EXPECT_EQ(Rows{u"a"}, rows_of("a\nb\r"));
    EXPECT_EQ(Rows{}, rows_of("a"));
    EXPECT_EQ(Rows{}, rows_of(""));
}

TEST(SectionReader, LastLineWithoutLineEndCanBeLookedAtOnce) {
    const TempFolder folder;
    SectionReader reader(folder.write("table.pdt", "a\nb"), 0);
    RowLine line;
    EXPECT_TRUE(reader.read_row(line));
    EXPECT_FALSE(reader.read_row(line));
    EXPECT_EQ(u"b", line.text());
    EXPECT_FALSE(reader.read_row(line));
    EXPECT_EQ(u"", line.text());
}

TEST(SectionReader, SkippedLinesAreNotLookedAt) {
    EXPECT_EQ(Rows{u"c"}, rows_of("a\nb\nc\n", 2));
    EXPECT_EQ(Rows{}, rows_of("a\nb\n", 2));
    EXPECT_EQ(Rows{}, rows_of("a", 2));
    EXPECT_EQ(Rows{}, rows_of("", 2));
}

TEST(SectionReader, LineOf2047BytesIsTaken) {
    const std::string longest(2047, 'x');
    const std::u16string wide(2047, u'x');
    EXPECT_EQ((Rows{wide, u"y"}), rows_of(longest + "\ny\n"));
    EXPECT_EQ((Rows{wide, u"y"}), rows_of(longest + "\r\ny\n"));
    EXPECT_EQ(Rows{std::u16string(2046, u'x')}, rows_of(std::string(2046, 'x') + "\n"));
}

TEST(SectionReader, LongerLineIsNumber56) {
    for (const std::size_t length : {2048U, 2049U, 5000U}) {
        for (const char* end : {"\n", "\r\n", ""}) {
            for (const int skipped : {0, 2}) {
                const TempFolder folder;
                const std::u16string path = folder.write("long.pdt", std::string(length, 'x') + end);
                expect_thrown<PM_Severe>(
                    [&] {
                        SectionReader reader(path, skipped);
                        RowLine line;
                        reader.read_row(line);
                    },
                    PM_ERR_NOT_OPENED, place, path);
            }
        }
    }
}

TEST(SectionReader, UnendedLineOf2047BytesIsNoRowAndNoFailure) {
    EXPECT_EQ(Rows{}, rows_of(std::string(2047, 'x')));
    EXPECT_EQ(Rows{}, rows_of(std::string(2046, 'x') + "\r"));
}

TEST(SectionReader, TextIsInTheSystemCodePage) {
    EXPECT_EQ(Rows{u"\u20AC\u00E9"}, rows_of("\x80\xE9\n"));
    pm_set_system_code_page(1251);
    EXPECT_EQ(Rows{u"\u0436"}, rows_of("\xE6\n"));
    pm_set_system_code_page(1252);
}

TEST(SectionReader, ZeroBytesStayInTheLine) {
    const TempFolder folder;
    SectionReader reader(folder.write("table.pdt", std::string_view("a\0b\n", 4)), 0);
    RowLine line;
    EXPECT_TRUE(reader.read_row(line));
    EXPECT_EQ(u'b', line.data()[2]);
}

TEST(SectionReader, FilesInTheirFolder) {
    const TempFolder folder;
    folder.write("Protocol .pdt", "a\nb\nc\n");
    SectionReader reader(folder.wide(""), Section::protocol, 2);
    RowLine line;
    EXPECT_TRUE(reader.read_row(line));
    EXPECT_EQ(u"c", line.text());
}

// --- Failures, each with its source marker

TEST(SectionReader, NoSuchFileIsNumber63) {
    const TempFolder folder;
    expect_thrown<PM_Severe>([&] { SectionReader(folder.wide(""), Section::io_method, 2); },
                             PM_ERR_NO_SUCH_FILE, place, folder.wide("IO Method.pdt"));
}

TEST(SectionReader, FailuresCarryTheMarkerOfTheUnit) {
    const auto e = pm::test::thrown_by([] { SectionReader(u"", 0); });
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(std::u16string(u"$Workfile: pmpdt.cpp $ $Revision: #1 $"), e->m_source);
}

TEST(SectionReader, EmptyPathIsNumber63) {
    expect_thrown<PM_Severe>([] { SectionReader(u"", 0); }, PM_ERR_NO_SUCH_FILE, place, u"");
}

TEST(SectionReader, FolderInPlaceOfAFileIsNumber68) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "IO Method.pdt");
    expect_thrown<PM_Severe>([&] { SectionReader(folder.wide(""), Section::io_method, 2); },
                             PM_ERR_IS_A_FOLDER, place, folder.wide("IO Method.pdt"));
}

TEST(SectionReader, UnreadableFileIsNumber61) {
    const TempFolder folder;
    const std::u16string path = folder.write("IO Method.pdt", "");
    const pm::test::UnreadableFile secret(folder / "IO Method.pdt");
    expect_thrown<PM_Severe>([&] { SectionReader(folder.wide(""), Section::io_method, 2); },
                             PM_ERR_ACCESS_DENIED, place, path);
}

TEST(SectionReader, NumbersOfOpenFailures) {
    struct Case {
        int code;
        std::uint32_t number;
        bool names_file;
    };
    const Case cases[] = {
        {ENOENT, PM_ERR_NO_SUCH_FILE, true},    {EACCES, PM_ERR_ACCESS_DENIED, true},
        {EMFILE, PM_ERR_TOO_MANY_FILES, false}, {ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE, false},
        {ENOSPC, PM_ERR_DISK_FULL, true},       {EISDIR, PM_ERR_IS_A_FOLDER, true},
        {EIO, PM_ERR_NOT_OPENED, true},         {0, PM_ERR_NOT_OPENED, true},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(each.number, pm::open_failure(each.code).number) << each.code;
        EXPECT_EQ(each.names_file, pm::open_failure(each.code).names_file) << each.code;
    }
}

// --- Names

TEST(Sections, NamesAndKeyPrefixes) {
    struct Case {
        const char16_t* name;
        const char16_t* prefix;
    };
    const Case cases[] = {
        {u"Baud Rate", u""},
        {u"Custom Capability", u"DRFX_CUSTOM_CAPABILITY_"},
        {u"Dithering Method", u"DRFX_DITHERING_METHOD_"},
        {u"IO Method", u""},
        {u"Media Collating", u"DRFX_MEDIA_COLLATING_"},
        {u"Media Cutting", u"DRFX_MEDIA_CUTTING_"},
        {u"Media Description", u"DRFX_MEDIA_DESCRIPTION_"},
        {u"Media Destination", u"DRFX_MEDIA_DESTINATION_"},
        {u"Media Folding", u"DRFX_MEDIA_FOLDING_"},
        {u"Media Source Size", u""},
        {u"Media Source", u"DRFX_MEDIA_SOURCE_"},
        {u"Media Size", u"DRFX_MEDIA_SIZE_"},
        {u"Media Stapling", u"DRFX_MEDIA_STAPLING_"},
        {u"Media Type", u"DRFX_MEDIA_TYPE_"},
        {u"Memory Area", u"DRFX_MEMORY_AREA_"},
        {u"Resolution", u"DRFX_RESOLUTION_"},
        {u"Resolution Color Memory", u"DRFX_RESOLUTION_COLOR_MEMORY_"},
        {u"Misc Non-Localizable Info", u""},
        {u"Misc Localizable Information", u"DRFX_MISC_LOCALIZABLE_INFORMATION_"},
        {u"Global Static Lists", u""},
        {u"Line Type Capabilities", u""},
        {u"Raster Capability", u""},
        {u"Protocol ", u"DRFX_PROTOCOL__"},
        {u"Media Source Entry", u"DRFX_MEDIA_SOURCE_ENTRY_"},
    };
    int section = 0;
    for (const Case& each : cases) {
        EXPECT_EQ(std::u16string(each.name), pm::section_name(static_cast<Section>(section)));
        EXPECT_EQ(std::u16string(each.prefix), pm::section_key_prefix(static_cast<Section>(section)));
        ++section;
    }
    EXPECT_EQ(pm::section_count, section);
}

TEST(Sections, FolderOfAFileName) {
    EXPECT_EQ(u"", pm::folder_of(u"strings.pdt"));
    EXPECT_EQ(u"", pm::folder_of(u""));
    EXPECT_EQ(u"X\\", pm::folder_of(u"X\\strings.pdt"));
    EXPECT_EQ(u"/a/b\\c/", pm::folder_of(u"/a/b\\c/strings.pdt"));
    EXPECT_EQ(u"/", pm::folder_of(u"/strings.pdt"));
}

} // namespace

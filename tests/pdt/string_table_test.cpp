#include "pdt/string_table.h"

#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <sstream>

namespace {

using pm::Section;
using pm::StringTable;

// The environment variable that names the string file's code page, while it lives.
struct CodePageVariable : pm::test::ScopedVariable {
    explicit CodePageVariable(const char* value) : ScopedVariable("CODEP", value) {}
};

struct Loaded {
    explicit Loaded(std::string_view content) : stream(std::string(content)) {
        reader.attach(stream);
        table.load_strings(reader, u"strings.pdt");
    }
    // The text of cell B of a media size's row, "none" without one.
    std::u16string size_text(int row) {
        char16_t text[256] = u"none";
        table.lookup_string(text, 256, u"DRFX_MEDIA_SIZE_", u'B', row);
        return text;
    }
    std::u16string at_key(const char16_t* prefix, char16_t column, int row) {
        char16_t text[256] = u"none";
        table.lookup_string(text, 256, prefix, column, row);
        return text;
    }

    std::istringstream stream;
    pm::LineReader reader;
    StringTable table;
};

TEST(StringTable, KeyAndQuotedText) {
    EXPECT_EQ(u"ISO A0", Loaded("DRFX_MEDIA_SIZE_B17 \"ISO A0\"\n").size_text(17));
}

TEST(StringTable, BlanksAroundTheKeyDontCount) {
    EXPECT_EQ(u"x", Loaded("   DRFX_MEDIA_SIZE_B17      \"x\"\n").size_text(17));
    EXPECT_EQ(u"x", Loaded("DRFX_MEDIA_SIZE_B17\"x\"\n").size_text(17));
}

TEST(StringTable, TabStaysInTheKey) {
    Loaded loaded("DRFX_MEDIA_SIZE_B17\t\"x\"\n\tDRFX_MEDIA_SIZE_B18 \"y\"\n");
    EXPECT_EQ(u"none", loaded.size_text(17));
    EXPECT_EQ(u"none", loaded.size_text(18));
}

TEST(StringTable, TextIsKeptAsWritten) {
    EXPECT_EQ(u"  a\t\\b ; // ",
              Loaded("DRFX_MEDIA_SIZE_B3 \"  a\t\\b ; // \" and \"more\"\r\n").size_text(3));
}

TEST(StringTable, EmptyTextIsAText) {
    EXPECT_EQ(u"", Loaded("DRFX_MEDIA_SIZE_B3 \"\"\n").size_text(3));
}

TEST(StringTable, OtherLinesAreIgnored) {
    Loaded loaded(
        "; comment\n\nDRF_MEDIA_SIZE_B3 \"a\"\ndrfx_MEDIA_SIZE_B4 \"b\"\n// DRFX_MEDIA_SIZE_B5 \"c\"\n"
        "DRFX_MEDIA_SIZE_B6 \"d\"\n");
    EXPECT_EQ(u"none", loaded.size_text(3));
    EXPECT_EQ(u"none", loaded.size_text(4));
    EXPECT_EQ(u"none", loaded.size_text(5));
    EXPECT_EQ(u"d", loaded.size_text(6));
}

TEST(StringTable, KeyWithoutBothQuotesIsPassedOver) {
    Loaded loaded("DRFX_MEDIA_SIZE_B3\nDRFX_MEDIA_SIZE_B4 \"open\nDRFX_MEDIA_SIZE_B5 \"e\"\n");
    EXPECT_EQ(u"none", loaded.size_text(3));
    EXPECT_EQ(u"none", loaded.size_text(4));
    EXPECT_EQ(u"e", loaded.size_text(5));
}

TEST(StringTable, LaterLineOfAKeyWins) {
    EXPECT_EQ(u"two", Loaded("DRFX_MEDIA_SIZE_B3 \"one\"\nDRFX_MEDIA_SIZE_B3 \"two\"\n").size_text(3));
}

TEST(StringTable, LaterLineOfAKeyWinsAmongAnyNumberOfKeys) {
    for (const int keys : {479, 480, 1000, 5000}) {
        std::string content = "DRFX_MEDIA_SIZE_B3 \"one\"\nDRFX_MEDIA_SIZE_B3 \"two\"\n";
        for (int row = 4; row < 3 + keys; ++row) {
            content += "DRFX_MEDIA_SIZE_B" + std::to_string(row) + " \"x\"\n";
        }
        EXPECT_EQ(u"two", Loaded(content).size_text(3)) << keys;
    }
}

TEST(StringTable, LastLineCountsOnlyWithItsLineEnd) {
    EXPECT_EQ(u"none", Loaded("DRFX_MEDIA_SIZE_B3 \"one\"").size_text(3));
    EXPECT_EQ(u"one", Loaded("DRFX_MEDIA_SIZE_B3 \"one\"\n").size_text(3));
}

TEST(StringTable, ManyKeysAreAllFound) {
    std::string content;
    for (int row = 3; row < 3003; ++row) {
        content += "DRFX_MEDIA_SIZE_B" + std::to_string(row) + " \"text " + std::to_string(row) + "\"\n";
    }
    Loaded loaded(content);
    EXPECT_EQ(u"text 3", loaded.size_text(3));
    EXPECT_EQ(u"text 1500", loaded.size_text(1500));
    EXPECT_EQ(u"text 3002", loaded.size_text(3002));
}

TEST(StringTable, KeyIsPrefixColumnAndRow) {
    Loaded loaded("DRFX_PROTOCOL__C12 \"x\"\n");
    EXPECT_EQ(u"x", loaded.at_key(u"DRFX_PROTOCOL__", u'C', 12));
    EXPECT_EQ(u"none", loaded.at_key(u"DRFX_PROTOCOL_", u'C', 12));
    EXPECT_EQ(u"none", loaded.at_key(u"DRFX_PROTOCOL__", u'B', 12));
    EXPECT_EQ(u"none", loaded.at_key(u"DRFX_PROTOCOL__", u'C', 1));
}

TEST(StringTable, LookUpOfAnUnknownKeyLeavesTheBufferAlone) {
    Loaded loaded("DRFX_MEDIA_SIZE_B3 \"x\"\n");
    char16_t text[4] = u"abc";
    EXPECT_FALSE(loaded.table.lookup_string(text, 4, u"DRFX_MEDIA_SIZE_", u'B', 4));
    EXPECT_EQ(std::u16string(u"abc"), text);
    EXPECT_TRUE(loaded.table.lookup_string(text, 4, u"DRFX_MEDIA_SIZE_", u'B', 3));
    EXPECT_EQ(std::u16string(u"x"), text);
}

TEST(StringTable, TextIsCutToTheBuffer) {
    Loaded loaded("DRFX_MEDIA_SIZE_B3 \"12345\"\n");
    char16_t text[4] = u"abc";
    EXPECT_TRUE(loaded.table.lookup_string(text, 4, u"DRFX_MEDIA_SIZE_", u'B', 3));
    EXPECT_EQ(std::u16string(u"123"), text);
    EXPECT_FALSE(loaded.table.lookup_string(text, 0, u"DRFX_MEDIA_SIZE_", u'B', 3));
    EXPECT_EQ(std::u16string(u"123"), text);
}

TEST(StringTable, LocalizedTextHolds255Units) {
    Loaded loaded("DRFX_MEDIA_SIZE_C3 \"" + std::string(300, 'x') + "\"\nDRFX_MEDIA_SIZE_C4 \"" +
                  std::string(255, 'y') + "\"\n");
    EXPECT_EQ(std::u16string(255, u'x'), loaded.table.localized(Section::media_size, u'C', 3));
    EXPECT_EQ(std::u16string(255, u'y'), loaded.table.localized(Section::media_size, u'C', 4));
}

TEST(StringTable, LocalizedTextCarriesOverToKeysWithoutOne) {
    Loaded loaded("DRFX_MEDIA_SIZE_C3 \"size\"\nDRFX_MEDIA_TYPE_B5 \"type\"\n");
    EXPECT_EQ(std::u16string(u""), loaded.table.localized());
    EXPECT_EQ(std::u16string(u""), loaded.table.localized(Section::media_size, u'C', 9));
    EXPECT_EQ(std::u16string(u"size"), loaded.table.localized(Section::media_size, u'C', 3));
    EXPECT_EQ(std::u16string(u"size"), loaded.table.localized(Section::media_type, u'B', 3));
    EXPECT_EQ(std::u16string(u"type"), loaded.table.localized(Section::media_type, u'B', 5));
    EXPECT_EQ(std::u16string(u"type"), loaded.table.localized());
}

TEST(StringTable, LineOf2047BytesIsTakenAndALongerOneIsNumber56) {
    const std::string start = "DRFX_MEDIA_SIZE_B3 \"x\"";
    const auto line_of = [&](std::size_t length) { return start + std::string(length - start.size(), ' '); };
    EXPECT_EQ(u"x", Loaded(line_of(2046) + "\n").size_text(3));
    EXPECT_EQ(u"x", Loaded(line_of(2047) + "\n").size_text(3));
    for (const std::size_t length : {2048U, 5000U}) {
        for (const char* end : {"\n", ""}) {
            pm::test::expect_thrown<PM_Severe>([&] { Loaded(line_of(length) + end); }, PM_ERR_NOT_OPENED,
                                               u"PM_PDTFile::load()", u"strings.pdt");
        }
    }
}

TEST(StringTable, CarriageReturnCountsInTheLengthOfALine) {
    const std::string start = "DRFX_MEDIA_SIZE_B3 \"x\"";
    EXPECT_EQ(u"x", Loaded(start + std::string(2046 - start.size(), ' ') + "\r\n").size_text(3));
    pm::test::expect_thrown<PM_Severe>(
        [&] { Loaded(start + std::string(2047 - start.size(), ' ') + "\r\n"); }, PM_ERR_NOT_OPENED,
        u"PM_PDTFile::load()", u"strings.pdt");
}

TEST(StringTable, LookUpsOfAnyNumberOfMissingKeysLeaveTheTableAlone) {
    Loaded loaded("DRFX_MEDIA_SIZE_B3 \"x\"\n");
    for (int row = 4; row < 100'000; ++row) {
        ASSERT_EQ(std::u16string(u""), loaded.table.localized(Section::media_size, u'B', row));
    }
    EXPECT_EQ(u"x", loaded.size_text(3));
}

TEST(StringTable, LongLineThatIsIgnoredFailsToo) {
    EXPECT_EQ(PM_ERR_NOT_OPENED,
              pm::test::thrown_by([] { Loaded(std::string(5000, ';') + "\n"); })->m_number);
}

// --- Code pages

TEST(StringTable, WithoutTheVariableTextIsInTheSystemCodePage) {
    EXPECT_EQ(u"\u20AC", Loaded("DRFX_MEDIA_SIZE_B3 \"\x80\"\n").size_text(3));
}

TEST(StringTable, VariableNamesTheCodePage) {
    const CodePageVariable utf8("65001");
    EXPECT_EQ(u"\u20AC", Loaded("DRFX_MEDIA_SIZE_B3 \"\xE2\x82\xAC\"\n").size_text(3));
    const CodePageVariable cyrillic(" 1251 and more");
    EXPECT_EQ(u"\u0436", Loaded("DRFX_MEDIA_SIZE_B3 \"\xE6\"\n").size_text(3));
}

TEST(StringTable, TwoByteCodePage) {
    const CodePageVariable japanese("932");
    EXPECT_EQ(u"\u65E5", Loaded("DRFX_MEDIA_SIZE_B3 \"\x93\xFA\"\n").size_text(3));
}

TEST(StringTable, VariableWithoutAKnownCodePageCountsAsNone) {
    for (const char* value : {"", "utf-8", "99999", "-1", "\xE9"}) {
        const CodePageVariable variable(value);
        EXPECT_EQ(u"\u20AC", Loaded("DRFX_MEDIA_SIZE_B3 \"\x80\"\n").size_text(3)) << value;
    }
}

TEST(StringTable, ZeroByteEndsALine) {
    EXPECT_EQ(u"none", Loaded(std::string_view("DRFX_MEDIA_SIZE_B3 \0\"x\"\n", 24)).size_text(3));
}

} // namespace

#include "inspect/inspect_support.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <sstream>

namespace pm::test {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char16_t* place = u"pm::identify()";

FileIdentity identity_of_sample(const std::string& name) {
    const std::optional<FileIdentity> identity = identify(sample_path(name).u16string());
    EXPECT_TRUE(identity.has_value()) << name;
    return identity.value_or(FileIdentity());
}

void expect_known(const std::string& content, PM_Object::FileType type, Evidence evidence) {
    const std::optional<FileIdentity> identity = identify_content(content);
    ASSERT_TRUE(identity.has_value()) << content;
    EXPECT_EQ(type, identity->type);
    EXPECT_EQ(evidence, identity->evidence);
}

TEST(Identify, PiaFileIsKnownByItsFirstLine) {
    const FileIdentity identity = identity_of_sample("plotter.pia");
    EXPECT_EQ(PM_Object::FILE_PIA, identity.type);
    EXPECT_EQ(Evidence::first_line, identity.evidence);
    EXPECT_EQ("PIAFILEVERSION_2.0,DX4200CFG_1.0", identity.line);
}

TEST(Identify, CompressedPiaFileIsKnownByItsFirstLine) {
    const FileIdentity identity = identity_of_sample("plotter-compressed.pia");
    EXPECT_EQ(PM_Object::FILE_PIA, identity.type);
    EXPECT_EQ("PIAFILEVERSION_2.0,DX4200CFG_1.0,compress", identity.line);
}

TEST(Identify, DpiaFileIsKnownByItsDirectory) {
    const FileIdentity identity = identity_of_sample("sections.dpia");
    EXPECT_EQ(PM_Object::FILE_DPIA, identity.type);
    EXPECT_EQ(Evidence::directory, identity.evidence);
    EXPECT_EQ(2, identity.version);
    EXPECT_EQ(3U, identity.section_count);
}

TEST(Identify, Pc2FileIsKnownByItsFirstLine) {
    const FileIdentity identity = identity_of_sample("office.pc2");
    EXPECT_EQ(PM_Object::FILE_PC2, identity.type);
    EXPECT_EQ(Evidence::first_line, identity.evidence);
    EXPECT_EQ("PC2Version 2.0", identity.line);
}

TEST(Identify, CfgFileIsKnownByItsSections) {
    const FileIdentity identity = identity_of_sample("three-plotters.cfg");
    EXPECT_EQ(PM_Object::FILE_CFG, identity.type);
    EXPECT_EQ(Evidence::sections, identity.evidence);
    EXPECT_THAT(identity.plotters, ElementsAre(1, 2, 3));
}

TEST(Identify, PcpFileIsKnownByItsComment) {
    const FileIdentity identity = identity_of_sample("pens.pcp");
    EXPECT_EQ(PM_Object::FILE_PCP, identity.type);
    EXPECT_EQ(Evidence::comment, identity.evidence);
    EXPECT_EQ(";Created by Draftex", identity.line);
}

TEST(Identify, StringFileIsKnownByItsKeys) {
    const FileIdentity identity = identity_of_sample("dx4200/strings.pdt");
    EXPECT_EQ(PM_Object::FILE_PDT, identity.type);
    EXPECT_EQ(Evidence::string_keys, identity.evidence);
    EXPECT_EQ(u"", identity.string_file);
}

TEST(Identify, FolderIsKnownByItsStringFile) {
    const FileIdentity identity = identity_of_sample("dx4200");
    EXPECT_EQ(PM_Object::FILE_PDT, identity.type);
    EXPECT_EQ(Evidence::string_file, identity.evidence);
    EXPECT_EQ(sample_path("dx4200").u16string() + u"/strings.pdt", identity.string_file);
}

TEST(Identify, CompoundFileIsKnownByItsSignature) {
    const TempFolder folder;
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.save(folder.wide("a").c_str(), PM_Object::FILE_DOC, u"", u"\\");
    const std::optional<FileIdentity> identity = identify(folder.wide("a"));
    ASSERT_TRUE(identity.has_value());
    EXPECT_EQ(PM_Object::FILE_DOC, identity->type);
    EXPECT_EQ(Evidence::signature, identity->evidence);
    EXPECT_FALSE(identify_content(folder.read("a").substr(0, 7)).has_value());
}

TEST(Identify, LooksBehindBlankLinesAndAtAnyCaseForAPiaFile) {
    const std::optional<FileIdentity> identity = identify_content("\n \t\n  piafileversion_1.0,x\r\na=1\n");
    ASSERT_TRUE(identity.has_value());
    EXPECT_EQ(PM_Object::FILE_PIA, identity->type);
    EXPECT_EQ("piafileversion_1.0,x", identity->line);
}

TEST(Identify, LooksBehindCommentsForPc2AndCfgFilesOnly) {
    expect_known("; text\nPC2Version 1.0\n", PM_Object::FILE_PC2, Evidence::first_line);
    expect_known("; text\n\n[PlotDriver]\n", PM_Object::FILE_CFG, Evidence::sections);
    EXPECT_FALSE(identify_content("; text\nPIAFILEVERSION_2.0,\n").has_value());
    EXPECT_FALSE(identify_content("pc2version 1.0\n").has_value());
}

TEST(Identify, PcpCommentMayStandInAnyLineAndCase) {
    expect_known("VERSION=1.0\n  ;CREATED BY DRAFTEX 7\n", PM_Object::FILE_PCP, Evidence::comment);
}

TEST(Identify, LineIsTheBytesOfTheFile) {
    const std::optional<FileIdentity> identity = identify_content("PIAFILEVERSION_2.0,Gro\xDF \r\n");
    ASSERT_TRUE(identity.has_value());
    EXPECT_EQ("PIAFILEVERSION_2.0,Gro\xDF", identity->line);
}

TEST(Identify, CfgFileWithoutNumbersHasNoPlotters) {
    const std::optional<FileIdentity> identity = identify_content("[PlotDriver]\nType=1\n");
    ASSERT_TRUE(identity.has_value());
    EXPECT_THAT(identity->plotters, IsEmpty());
}

TEST(Identify, StringKeyNeedsAQuote) {
    expect_known("heading\n  DRFX_A_B3 \"text\"\n", PM_Object::FILE_PDT, Evidence::string_keys);
    EXPECT_FALSE(identify_content("DRFX_A_B3 text\n").has_value());
}

TEST(Identify, DpiaDirectoryMustLieWithinTheContent) {
    const std::string file = word(0x00020000) + word(1) + dpia_entry("A", "B");
    expect_known(file, PM_Object::FILE_DPIA, Evidence::directory);
    for (std::size_t kept = 0; kept < file.size(); ++kept) {
        EXPECT_FALSE(identify_content(file.substr(0, kept)).has_value()) << kept;
    }
}

TEST(Identify, DpiaVersionAndCountAreTold) {
    const auto identity = identify_content(word(0x00010000) + word(0));
    ASSERT_TRUE(identity.has_value());
    EXPECT_EQ(1, identity->version);
    EXPECT_EQ(0U, identity->section_count);
    EXPECT_FALSE(identify_content(word(0x00030000) + word(0)).has_value());
}

TEST(Identify, DpiaCountBeyondTheContentIsNoDirectory) {
    for (const std::uint32_t count : {2U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(identify_content(word(0x00020000) + word(count) + dpia_entry("A", "B")).has_value())
            << count;
    }
}

TEST(Identify, OtherContentIsOfNoKind) {
    EXPECT_FALSE(identify_content("").has_value());
    EXPECT_FALSE(identify_content("hello\n").has_value());
    EXPECT_FALSE(identify_content("[no end\n").has_value());
    EXPECT_FALSE(identify_content("\0\0\0\0\0\0\0\0"s).has_value());
}

TEST(Identify, FileOfNoKindGivesNothing) {
    const TempFolder folder;
    EXPECT_FALSE(identify(folder.write("a.pia", "hello\n")).has_value());
}

TEST(Identify, PrefixOfASampleIsThatKindOrNone) {
    for (const std::string& name : sample_files) {
        const std::string content = sample(name);
        const PM_Object::FileType type = identity_of_sample(name).type;
        for (std::size_t kept = 0; kept <= content.size(); ++kept) {
            const auto identity = identify_content(std::string_view(content).substr(0, kept));
            ASSERT_EQ(type, identity ? identity->type : type) << name << " " << kept;
        }
    }
}

TEST(Identify, MissingFileIsToldWithItsName) {
    const TempFolder folder;
    const std::u16string name = folder.wide("none");
    expect_thrown<PM_Severe>([&] { (void)identify(name); }, PM_ERR_NO_SUCH_FILE, place, name);
}

TEST(Identify, NameThatHoldsAZeroIsRefused) {
    const TempFolder folder;
    folder.write("a", "PIAFILEVERSION_2.0\n");
    const std::u16string name = (folder / "a").u16string();
    const std::u16string longer = name + u'\0' + u"b";
    expect_thrown<PM_Warning>([&] { (void)identify(longer); }, PM_ERR_BAD_PATH, place, name);
    expect_thrown<PM_Warning>([&] { (void)find_string_file(longer); }, PM_ERR_BAD_PATH, place, name);
}

TEST(Identify, FileBelowAFileIsMissing) {
    const TempFolder folder;
    const std::u16string name = folder.write("a", "hello") + u"/b";
    expect_thrown<PM_Severe>([&] { (void)identify(name); }, PM_ERR_NO_SUCH_FILE, place, name);
}

TEST(Identify, UnreadableFileIsToldWithItsName) {
    const TempFolder folder;
    const std::u16string name = folder.write("a", "hello");
    const UnreadableFile secret(folder / "a");
    expect_thrown<PM_Severe>([&] { (void)identify(name); }, PM_ERR_ACCESS_DENIED, place, name);
}

TEST(Identify, FolderWithoutAStringFileIsAFailure) {
    const TempFolder folder;
    folder.write("a.pdt", "no keys here\n");
    const std::u16string name = folder.path().u16string();
    expect_thrown<PM_Severe>([&] { (void)identify(name); }, PM_ERR_IS_A_FOLDER, place, name);
}

TEST(FindStringFile, NameOfAnyCaseComesBeforeTheContent) {
    const TempFolder folder;
    folder.write("a.pdt", "DRFX_A_B3 \"text\"\n");
    folder.write("Strings.PDT", "no keys here\n");
    const std::u16string file = folder.path().u16string() + u"/Strings.PDT";
    EXPECT_EQ(file, find_string_file(folder.path().u16string()));
}

TEST(FindStringFile, FirstTableWithKeysIsTakenForOneOfAnotherName) {
    const TempFolder folder;
    folder.write("a.pdt", "no keys here\n");
    folder.write("b.txt", "DRFX_A_B3 \"text\"\n");
    folder.write("c.pdt", "DRFX_A_B3 \"text\"\n");
    const std::u16string file = folder.path().u16string() + u"/c.pdt";
    folder.write("d.pdt", "DRFX_A_B3 \"text\"\n");
    EXPECT_EQ(file, find_string_file(folder.path().u16string()));
    EXPECT_EQ(file, identify(folder.path().u16string())->string_file);
}

TEST(FindStringFile, FirstByItsNameIsTakenWhateverTheOrderInTheFolder) {
    const TempFolder folder;
    for (const char letter : std::string_view("mzaykbxcw")) {
        folder.write(std::string(1, letter) + ".pdt", "DRFX_A_B3 \"text\"\n");
    }
    for (const char16_t first : std::u16string_view(u"abckmwxyz")) {
        const std::u16string file = folder.path().u16string() + u'/' + first + u".pdt";
        EXPECT_EQ(file, find_string_file(folder.path().u16string()));
        std::filesystem::remove(file);
    }
}

TEST(FindStringFile, FolderThatCannotBeListedHasNone) {
    const TempFolder folder;
    EXPECT_EQ(std::nullopt, find_string_file(folder.wide("none")));
}

TEST(FindStringFile, TableThatCannotBeReadIsToldWithItsName) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "a.pdt");
    expect_thrown<PM_Severe>([&] { (void)find_string_file(folder.path().u16string()); }, PM_ERR_IS_A_FOLDER,
                             place, folder.path().u16string() + u"/a.pdt");
}

} // namespace
} // namespace pm::test

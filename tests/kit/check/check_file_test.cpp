#include "kit/errors.h"
#include "support/failing_buffer.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <pm/exception.h>
#include <pm/kit/check.h>
#include <pm/tree.h>
#include <pm_test_paths.h>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using pm::kit::check_content;
using pm::kit::check_file;
using pm::kit::CheckOptions;
using pm::kit::Diagnostic;
using pm::kit::Severity;
using pm::kit::test::error_of;
using testing::ElementsAre;
using testing::IsEmpty;

std::string line_of(const Diagnostic& each) {
    const std::string section = each.place.section.empty() ? std::string() : "[" + each.place.section + "]";
    return fmt::format("{}{}:{}:{} {}", fs::path(each.place.file).filename().string(), section,
                       each.place.line, each.place.column, each.rule);
}

std::vector<std::string> lines_of(const std::vector<Diagnostic>& all) {
    std::vector<std::string> lines;
    for (const Diagnostic& each : all) {
        lines.push_back(line_of(each));
    }
    return lines;
}

class CheckFile : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content) const {
        const fs::path path = m_folder / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }

    pm::test::TempFolder m_folder;
};

TEST_F(CheckFile, SamplesAreClean) {
    CheckOptions options;
    options.round_trip = true;
    EXPECT_THAT(lines_of(check_file(PM_SAMPLES, options)), IsEmpty());
}

TEST_F(CheckFile, LineThatEndsALoadLeavesTheWorkingPathToTheLinesBehindIt) {
    const std::string name = write("a.pia", "PIAFILEVERSION_2.0\nc=1\n\\=1\n}\n");
    EXPECT_THAT(lines_of(check_file(name)),
                ElementsAre("a.pia:3:1 odd-name", "a.pia:3:1 bad-line", "a.pia:4:1 unopened-node"));
}

TEST_F(CheckFile, PropertyOfANewNodeInItsNameIsKnownInThatNode) {
    const std::string name = write("a.pia", "PIAFILEVERSION_2.0\na\\b=1\nb=\"x\n");
    EXPECT_THAT(lines_of(check_file(name)), ElementsAre("a.pia:2:2 odd-name", "a.pia:3:1 retyped-name"));
}

TEST_F(CheckFile, EndOfANodeWhosePathIsUsedUpIsFound) {
    const std::string name = write("a.pia", "PIAFILEVERSION_2.0\n\\{\na=1\nb=1\n}\n");
    EXPECT_THAT(lines_of(check_file(name)), ElementsAre("a.pia:2:1 odd-name", "a.pia:5:1 unopened-node"));
}

TEST_F(CheckFile, DiagnosticHasAllThatIsKnown) {
    const std::string name = write("a.pia", "PIAFILEVERSION_2.0\nn{\n  b=truely\n}\n");
    const Diagnostic expected{
        "odd-boolean", Severity::warning,           {.file = name, .section = "", .line = 3, .column = 5},
        "\\n\\b",      "\"truely\" reads as TRUE.", 0};
    EXPECT_THAT(check_file(name), ElementsAre(expected));
}

TEST_F(CheckFile, CompressedBodyThatIsNotReadIsNotChecked) {
    EXPECT_THAT(
        lines_of(check_content("piafileversion_2.0,compress\na=1\n", "a", {.type = PM_Object::FILE_PIA})),
        ElementsAre("a:1:0 bad-header"));
}

TEST_F(CheckFile, TextInAMessageShowsItsControlCharacters) {
    const std::vector<Diagnostic> all = check_content("PIAFILEVERSION_2.0\na=\x01\x7Fx\n", "a");
    ASSERT_EQ(1U, all.size());
    EXPECT_EQ(R"("\x01\x7Fx" has the form of no type.)", all[0].message);
}

TEST_F(CheckFile, FolderIsWalkedInTheOrderOfNames) {
    write("b.pia", "PIAFILEVERSION_2.0\na\n");
    write("a/z.pia", "PIAFILEVERSION_2.0\n}\n");
    write("a.pia", "PIAFILEVERSION_2.0\na=x\n");
    write("readme.txt", "nothing to be checked");
    EXPECT_THAT(lines_of(check_file(m_folder.path().string())),
                ElementsAre("a.pia:2:3 unknown-type", "b.pia:2:1 bad-line", "z.pia:2:1 unopened-node"));
}

TEST_F(CheckFile, FileOfNoKnownKindIsToldWhenItIsNamed) {
    EXPECT_THAT(lines_of(check_file(write("readme.txt", "x"))), ElementsAre("readme.txt:0:0 unknown-kind"));
}

TEST_F(CheckFile, MissingFileIsUnreadable) {
    const std::vector<Diagnostic> found = check_file((m_folder / "none.pia").string());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].rule, "unreadable");
    EXPECT_EQ(found[0].number, 63U);
    EXPECT_EQ(found[0].message, "The file doesn't exist.");
}

TEST_F(CheckFile, DamagedHeaderIsKnownByTheEnding) {
    EXPECT_THAT(lines_of(check_file(write("a.pia", "PIAFILEVERSIO\na=1\n"))),
                ElementsAre("a.pia:1:0 bad-header"));
}

TEST_F(CheckFile, CompoundFileWithADamagedBeginningIsKnownByTheEnding) {
    std::string content = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    content.resize(1536);
    content[3] = static_cast<char>(content[3] ^ 1);
    write("a.doc", content);
    write("b.doc", "A letter of another program.");
    write("c.doc", "short");
    EXPECT_THAT(lines_of(check_file(m_folder.path().string())), ElementsAre("a.doc:0:0 damaged-file"));
}

TEST_F(CheckFile, SectionThatIsNotThereIsUnreadable) {
    const auto said = [](const std::string& file, const std::string& section) {
        std::vector<std::string> lines;
        for (const Diagnostic& each : check_file(PM_SAMPLES "/" + file, {.section = section})) {
            lines.push_back(fmt::format("{} {} {}", each.rule, each.number, each.message));
        }
        return lines;
    };
    EXPECT_THAT(
        said("sections.dpia", "9"),
        ElementsAre("unreadable 83 There is no section \"9\"; there are: Office, Workshop, Archive."));
    EXPECT_THAT(said("three-plotters.cfg", "9"),
                ElementsAre("unreadable 83 There is no plotter 9; there are: 1, 2, 3."));
    EXPECT_THAT(said("three-plotters.cfg", "1st"),
                ElementsAre("unreadable 83 A plotter is told by its number, not by \"1st\"."));
    EXPECT_THAT(said("plotter.pia", "9"), ElementsAre("unreadable 83 A pia file has no sections."));
    EXPECT_THAT(said("dx4200", "9"), ElementsAre("unreadable 83 A pdt file has no sections."));
    EXPECT_THAT(said("dx4200/strings.pdt", "9"), ElementsAre("unreadable 83 A pdt file has no sections."));
    EXPECT_THAT(said("sections.dpia", "Office"), IsEmpty());
    EXPECT_THAT(said("three-plotters.cfg", "2"), IsEmpty());
}

TEST_F(CheckFile, SectionWithAnAsteriskLosesItsInfoText) {
    const std::string section = "PIAFILEVERSION_2.0,\na=1\n";
    const auto said = [&](const std::string& info) {
        const auto word = [](std::size_t number) {
            return std::string{static_cast<char>(number), '\0', '\0', '\0'};
        };
        const std::string file = std::string("\0\0\2\0\1\0\0\0\2\0\0\0a*", 14) + word(info.size()) + info +
                                 word(0) + word(section.size()) + section;
        std::vector<std::string> lines;
        for (const Diagnostic& each : check_content(file, "a.dpia")) {
            lines.push_back(fmt::format("{} [{}] {}", each.rule, each.place.section, each.message));
            EXPECT_EQ(Severity::note, each.severity);
        }
        return lines;
    };
    EXPECT_THAT(
        said("plotters"),
        ElementsAre("odd-name [a*] A save loses the info text of a section with a \"*\" in its name."));
    EXPECT_THAT(said(""), IsEmpty());
}

TEST_F(CheckFile, NameThatNoRuleHasIsAnError) {
    EXPECT_EQ("bad-lin: there is no such rule", error_of([&] {
                  (void)check_file("none.pia", {.rules = {"bad-line", "bad-lin"}});
              }));
    EXPECT_EQ("bad-lin: there is no such rule",
              error_of([&] { (void)check_content("a", "a.pia", {.without = {"bad-lin"}}); }));
}

TEST_F(CheckFile, RuleAloneIsLookedFor) {
    CheckOptions options;
    options.rules = {"odd-boolean"};
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\na=truely\nb\n", "a", options)),
                ElementsAre("a:2:3 odd-boolean"));
}

TEST_F(CheckFile, RuleIsLeftOut) {
    CheckOptions options;
    options.without = {"odd-boolean"};
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\na=truely\nb\n", "a", options)),
                ElementsAre("a:3:1 bad-line"));
}

TEST_F(CheckFile, StreamIsReadToItsEnd) {
    std::stringstream stream("PIAFILEVERSION_2.0\na=1\nb\n");
    EXPECT_THAT(lines_of(pm::kit::check_stream(stream, "-")), ElementsAre("-:3:1 bad-line"));
}

TEST_F(CheckFile, StreamThatFailsIsUnreadable) {
    pm::test::FailingBuffer buffer("PIAFILEVERSION_2.0\na=1\n");
    std::istream stream(&buffer);
    const std::vector<Diagnostic> all = pm::kit::check_stream(stream, "given");
    EXPECT_THAT(lines_of(all), ElementsAre("given:0:0 unreadable"));
    EXPECT_EQ(82U, all.at(0).number);
    EXPECT_EQ("The file can't be read.", all.at(0).message);
}

TEST_F(CheckFile, CodePageIsSetForTheCheckAlone) {
    CheckOptions options;
    options.code_page = 65001;
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\na=\"\xC3\xBC\n", "a", options)), IsEmpty());
    EXPECT_EQ(pm_system_code_page(), 1252U);
}

TEST_F(CheckFile, UnknownCodePageIsRefused) {
    CheckOptions options;
    options.code_page = 1;
    EXPECT_THROW(static_cast<void>(check_content("PIAFILEVERSION_2.0\n", "a", options)), PM_Error);
}

TEST_F(CheckFile, SecondByteOfADoubleOneIsNoBrace) {
    CheckOptions options;
    options.code_page = 932;
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\na\x83{\x83}=\"\x83\x5C\n", "a", options)),
                IsEmpty());
}

TEST_F(CheckFile, ColumnCountsCharactersOfUtf8) {
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\n\xC3\xA9\xE2\x82\xAC=x\n", "a")),
                ElementsAre("a:2:1 mixed-encoding", "a:2:4 unknown-type"));
}

TEST_F(CheckFile, LinesBehindOnesThatEndALoadAreChecked) {
    EXPECT_THAT(lines_of(check_content("PIAFILEVERSION_2.0\nb\nn m{\na=1\na=\"x\n}\na=1\nc\n", "a")),
                ElementsAre("a:2:1 bad-line", "a:3:2 bad-line", "a:5:1 retyped-name", "a:8:1 bad-line"));
}

TEST_F(CheckFile, LineOfACompressedBodyGoesOnBehindTheHeader) {
    pm::Tree tree;
    tree.set("a", 1.5);
    tree.set("n\\b", -0.0);
    std::stringstream stream;
    pm::save(tree, stream, {.tag = "x,compress"});
    std::string content = "\n" + stream.str();
    content.back() = static_cast<char>(content.back() ^ 1); // of the stream's own checksum
    EXPECT_THAT(lines_of(check_content(content, "a")),
                ElementsAre("a:3:0 damaged-compression", "a:3:0 damaged-compression"));
}

TEST_F(CheckFile, OneSectionIsChecked) {
    std::ifstream stream(PM_SAMPLES "/sections.dpia", std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    CheckOptions options;
    options.section = "Office";
    EXPECT_THAT(lines_of(check_content(content, "a", options)), IsEmpty());
    options.section = "office";
    EXPECT_THAT(lines_of(check_content(content, "a", options)), ElementsAre("a[office]:0:0 unreadable"));
}

TEST_F(CheckFile, CopyOfACompoundFileIsGoneBehindTheCheck) {
    const std::string name = (m_folder / "a.doc").string();
    pm::Tree tree;
    tree.set("a", 1);
    pm::save(tree, name, {.type = PM_Object::FILE_DOC});
    const std::string content = pm::test::TempFolder::read_file(name);
    const fs::path copies = m_folder / "copies";
    fs::create_directory(copies);
    const pm::test::ScopedVariable folder(pm::test::temp_folder_variable, copies.string());
    EXPECT_THAT(check_content(content, "a"), IsEmpty());
    EXPECT_TRUE(fs::is_empty(copies));
}

TEST_F(CheckFile, OnePlotterIsChecked) {
    const std::string content = "[PlotDriver#1]\nType=x\n[PlotDriver#2]\nAlias=y\n[PlotDriver]\nExternal=z\n";
    CheckOptions options;
    options.section = "2";
    EXPECT_THAT(lines_of(check_content(content, "a", options)),
                ElementsAre("a[2]:4:7 bad-line", "a:6:10 bad-line"));
    options.section = "9";
    EXPECT_THAT(lines_of(check_content(content, "a", options)),
                ElementsAre("a[9]:0:0 unreadable", "a:6:10 bad-line"));
}

TEST_F(CheckFile, TableIsCheckedBesideTheOthersOfItsDescription) {
    fs::copy(PM_SAMPLES "/dx4200", m_folder / "dx");
    std::ofstream(m_folder / "dx" / "Media Type.pdt", std::ios::binary | std::ios::app)
        << "Foil\tFoil\t1x\t\t\r\n";
    EXPECT_THAT(
        lines_of(check_file((m_folder / "dx" / "Media Type.pdt").string())),
        ElementsAre("Media Type.pdt:11:0 missing-translation", "Media Type.pdt:11:11 partial-number"));
    EXPECT_THAT(lines_of(check_file((m_folder / "dx" / "Media Size.pdt").string())), IsEmpty());
}

TEST_F(CheckFile, DescriptionWhoseJoinsAreTooManyIsTheLibrarys) {
    fs::copy(PM_SAMPLES "/dx4200", m_folder / "dx");
    std::ofstream entries(m_folder / "dx" / "Media Source Entry.pdt", std::ios::binary | std::ios::app);
    std::ofstream sources(m_folder / "dx" / "Media Source.pdt", std::ios::binary | std::ios::app);
    entries << "Many\r\n";
    for (int row = 0; row < 1200; ++row) {
        entries << "\t\t\t\t\tA4\r\n";
        sources << row << "\t\t\tMany\r\n";
    }
    entries.close();
    sources.close();
    CheckOptions options;
    options.rules = {"damaged-file"};
    EXPECT_THAT(lines_of(check_file((m_folder / "dx").string(), options)),
                ElementsAre("strings.pdt:0:0 damaged-file"));
}

TEST_F(CheckFile, TableByItselfIsOneByItsNameWhateverItsCellsHold) {
    std::ifstream stream(PM_SAMPLES "/dx4200/Media Type.pdt", std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_THAT(lines_of(check_content(content + "DRFX_1\tFoil\t1x\t\t\r\n", "Media Type.pdt")),
                ElementsAre("Media Type.pdt:11:13 partial-number"));
}

TEST_F(CheckFile, NameOfARowEndsInFrontOfItsLastBlanks) {
    CheckOptions options;
    options.rules = {"repeated-name"};
    const std::string headings = "Name\t\t\t\t\r\nName\t\t\t\t\r\n";
    EXPECT_THAT(lines_of(check_content(headings + "Foil\t\t\t\t\r\nFoil  \t\t\t\t\r\n Foil\t\t\t\t\r\n",
                                       "Media Type.pdt", options)),
                ElementsAre("Media Type.pdt:4:1 repeated-name"));
}

TEST_F(CheckFile, EachLineOfOwnersIsAList) {
    CheckOptions options;
    options.rules = {"unknown-keyword"};
    for (int line = 44; line <= 63; ++line) {
        std::string content;
        for (int at = 1; at <= 68; ++at) {
            content += at == line ? "x\tALL\tBad\r\n" : "x\r\n";
        }
        EXPECT_THAT(lines_of(check_content(content, "Misc Non-Localizable Info.pdt", options)),
                    ElementsAre(fmt::format("Misc Non-Localizable Info.pdt:{}:7 unknown-keyword", line)));
    }
}

TEST_F(CheckFile, DescriptionFileOfAnotherNameIsAStringFileByItsContent) {
    EXPECT_THAT(lines_of(check_content("a\tb\r\n1\t2\r\n", "other.pdt")),
                ElementsAre("other.pdt:0:0 empty-table"));
    EXPECT_THAT(lines_of(check_content("DRFX_1\r\n", "other.pdt")), ElementsAre("other.pdt:1:1 bad-line"));
}

TEST_F(CheckFile, PenOfTheDefaultBlockIsANumberOrAnyPen) {
    const auto check_pen = [](const std::string& line) {
        return lines_of(check_content(";Created by Draftex\nBEGIN_COLOR=DEFAULT\n" + line + "\nEND_COLOR\n",
                                      "a", {.type = PM_Object::FILE_PCP}));
    };
    EXPECT_THAT(check_pen("PEN_NUMBER=*"), IsEmpty());
    EXPECT_THAT(check_pen("PEN_NUMBER=MOD16"), IsEmpty());
    EXPECT_THAT(check_pen("PEN_NUMBER=5x"), ElementsAre("a:3:12 partial-number"));
    EXPECT_THAT(check_pen("PEN_SPEED=*"), ElementsAre("a:3:11 partial-number"));
}

TEST_F(CheckFile, DefaultBlockThatIsOpenDoesNotReachTheNextFile) {
    CheckOptions options;
    options.type = PM_Object::FILE_PCP;
    static_cast<void>(check_content(";Created by Draftex\nBEGIN_COLOR=DEFAULT\n", "a", options));
    std::stringstream stream(";Created by Draftex\nPEN_SPEED=1\n");
    EXPECT_EQ(pm::load(stream, {.type = PM_Object::FILE_PCP}).tree.get<int>("PEN_SPEED"), 1);
}

TEST_F(CheckFile, LongRawDataIsLookedThroughInOneGo) {
    std::string content = "PIAFILEVERSION_2.0\na=\\";
    for (int pair = 0; pair < 500'000; ++pair) {
        content += "a0";
    }
    EXPECT_THAT(lines_of(check_content(content + "\\\n", "a")), IsEmpty());
    EXPECT_THAT(lines_of(check_content(content + "0a\\\n", "a")), ElementsAre("a:2:1000005 lossy-value"));
}

// Takes twice as long for twice as much, whatever is wrong with each line.
TEST_F(CheckFile, BadLinesTakeTimeInProportion) {
    constexpr int lines = 100'000;
    std::string content = "PIAFILEVERSION_2.0\n";
    for (int line = 0; line < lines; ++line) {
        content += line % 3 == 0 ? "bad\n" : line % 3 == 1 ? "n m{\n" : "}\n";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(check_content(content, "a").size(), 2U * lines / 3 + 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

} // namespace

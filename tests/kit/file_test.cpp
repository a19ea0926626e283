#include "kit/errors.h"
#include "pm_test_paths.h"
#include "support/exceptions.h"
#include "support/failing_buffer.h"
#include "support/ordinary_user.h"
#include "support/temp_folder.h"
#include <gmock/gmock.h>
#include <iostream>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/kit/difference.h>
#include <pm/kit/file.h>
#include <sstream>
#include <thread>

namespace pm::kit::test {
namespace {

using pm::test::expect_thrown;
using pm::test::FailingBuffer;
using pm::test::TempFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string sample(const std::string& name) {
    return std::string(PM_SAMPLES) + '/' + name;
}

FileContent read_sample(const std::string& name, const std::string& section = {}) {
    return read_file({.file = sample(name), .section = section});
}

std::vector<std::string> top_nodes(const Tree& tree) {
    std::vector<std::string> names;
    for (const Node node : tree.root().children()) {
        names.push_back(node.name());
    }
    return names;
}

// The bytes of a DPIA file of version 2.0 with these names, each with the same PIA text.
std::string dpia(const std::vector<std::string>& names, const std::string& text) {
    const auto word = [](std::size_t number) {
        std::string bytes;
        for (int i = 0; i < 4; ++i) {
            bytes += static_cast<char>(number >> 8 * i & 0xFF);
        }
        return bytes;
    };
    std::string bytes = word(0x20000) + word(names.size());
    for (const std::string& name : names) {
        bytes += word(name.size()) + name + word(0) + word(0) + word(text.size());
    }
    return bytes + text;
}

const std::string header = "PIAFILEVERSION_2.0,TAG\r\n";

TEST(ReadFile, PiaWithItsHeader) {
    const FileContent content = read_sample("plotter.pia");
    EXPECT_EQ(PM_Object::FILE_PIA, content.type);
    EXPECT_EQ(1, content.tree.get<int>("\\media\\copies"));
    EXPECT_EQ(2, content.version);
    EXPECT_EQ("DX4200CFG_1.0", content.tag);
    EXPECT_FALSE(content.compressed);
    EXPECT_EQ(TempFolder::read_file(sample("plotter.pia")), content.bytes);
    EXPECT_TRUE(read_sample("plotter-compressed.pia").compressed);
}

TEST(ReadFile, SectionsOfDpiaAreNodesOfTheRoot) {
    const FileContent content = read_sample("sections.dpia");
    EXPECT_THAT(top_nodes(content.tree), ElementsAre("Office", "Workshop", "Archive"));
    EXPECT_TRUE(content.by_section);
    EXPECT_EQ(2, content.version);
    ASSERT_EQ(3U, content.sections.size());
    EXPECT_EQ((Section{"Office", "Drawing office, third floor", "Office"}), content.sections.front());
    const FileContent office = read_sample("sections.dpia", "Office");
    EXPECT_FALSE(office.by_section);
    EXPECT_TRUE(identical(office.tree.root(), *content.tree.node("\\Office")));
    EXPECT_EQ(3U, office.sections.size());
}

TEST(ReadFile, PlottersOfCfgAreNodesByTheirNumbers) {
    const FileContent content = read_sample("three-plotters.cfg");
    EXPECT_THAT(top_nodes(content.tree), ElementsAre("1", "2", "3"));
    EXPECT_EQ("DX-4200, drawing office", content.sections.front().info);
    const FileContent second = read_sample("three-plotters.cfg", "2");
    EXPECT_TRUE(identical(second.tree.root(), *content.tree.node("\\2")));
}

TEST(ReadFile, FilesOfOneTreeAsTheyAre) {
    EXPECT_EQ(PM_Object::FILE_PC2, read_sample("office.pc2").type);
    EXPECT_EQ(PM_Object::FILE_PCP, read_sample("pens.pcp").type);
    EXPECT_EQ(PM_Object::FILE_PDT, read_sample("dx4200").type);
    EXPECT_FALSE(read_sample("dx4200").tree.root().children().empty());
}

TEST(ReadFile, SectionThatIsNotThereNamesThoseThatAre) {
    EXPECT_EQ(sample("three-plotters.cfg") + ": there is no plotter 9; there are: 1, 2, 3",
              error_of([] { (void)read_sample("three-plotters.cfg", "9"); }));
    EXPECT_EQ(sample("sections.dpia") + ": there is no section office; there are: Office, Workshop, Archive",
              error_of([] { (void)read_sample("sections.dpia", "office"); }));
    EXPECT_EQ(sample("three-plotters.cfg") + ": a plotter is told by its number, not by \"1x\"",
              error_of([] { (void)read_sample("three-plotters.cfg", "1x"); }));
    EXPECT_EQ(sample("plotter.pia") + ": a pia file has no sections",
              error_of([] { (void)read_sample("plotter.pia", "x"); }));
}

TEST(ReadFile, SectionOfAFileWithoutAnyIsNotThere) {
    EXPECT_EQ("x: there is no section Office; there are: none",
              error_of([] { (void)read_content(dpia({}, ""), {.file = "x", .section = "Office"}); }));
}

TEST(ReadFile, CompoundFileNeedNotBeWritable) {
    const TempFolder folder;
    const std::string name = (folder / "a.doc").string();
    Tree tree;
    tree.set("\\a", 7);
    save(tree, file_name_to_utf16(name), {.type = PM_Object::FILE_DOC});
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(name, std::filesystem::perms(0444));
    const pm::test::OrdinaryUser user;
    EXPECT_EQ(7, read_file({.file = name}).tree.get<int>("\\a"));
    expect_thrown<PM_Severe>([&] { (void)read_file({.file = name, .exclusive = true}); }, PM_ERR_NOT_OPENED,
                             u"PM_DOCFile::open()", file_name_to_utf16(name));
}

TEST(ReadFile, CompoundFileThatIsNoneIsNamedAsItWasGiven) {
    const TempFolder folder;
    folder.write("a.doc", "no compound file");
    const std::string name = (folder / "a.doc").string();
    expect_thrown<PM_Severe>([&] { (void)read_file({.file = name, .type = PM_Object::FILE_DOC}); },
                             PM_ERR_NOT_OPENED, u"PM_DOCFile::open()", file_name_to_utf16(name));
}

TEST(ReadFile, MissingFileIsTheLibrarys) {
    expect_thrown<PM_Severe>([] { (void)read_file({.file = "/nowhere/x.pia"}); }, PM_ERR_NO_SUCH_FILE,
                             u"pm::identify()", u"/nowhere/x.pia");
}

TEST(ReadFile, UnknownContentAndFoldersWithoutTablesAreRefused) {
    const TempFolder folder;
    (void)folder.write("x", "nothing known");
    EXPECT_EQ((folder / "x").string() + ": the content is of no known format",
              error_of([&] { (void)read_file({.file = (folder / "x").string()}); }));
    EXPECT_EQ(folder.path().string() + ": the folder holds no string file such as strings.pdt", error_of([&] {
                  (void)read_file({.file = folder.path().string(), .type = PM_Object::FILE_PDT});
              }));
    EXPECT_EQ(folder.path().string() + ": this is a folder, not a pia file", error_of([&] {
                  (void)read_file({.file = folder.path().string(), .type = PM_Object::FILE_PIA});
              }));
}

// What a program reads of its standard input.
class StandardInput {
public:
    explicit StandardInput(const std::string& text) : m_text(text), m_before(std::cin.rdbuf(m_text.rdbuf())) {
        std::cin.clear();
    }
    ~StandardInput() { std::cin.rdbuf(m_before); }
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

private:
    std::istringstream m_text;
    std::streambuf* m_before;
};

TEST(ReadFile, ADashIsTheStandardInput) {
    const StandardInput input("PIAFILEVERSION_2.0,TAG\nn{\na=1\n}\n");
    const FileContent content = read_file({.file = "-"});
    EXPECT_EQ(1, content.tree.at<int>("\\n\\a"));
}

TEST(ReadFile, AStandardInputOfNoKnownFormatIsRefused) {
    const StandardInput input("nothing known");
    EXPECT_EQ("-: the content is of no known format", error_of([] { (void)read_file({.file = "-"}); }));
}

TEST(ReadContent, IsWhatTheFileIs) {
    for (const char* name : {"plotter.pia", "plotter-compressed.pia", "sections.dpia", "office.pc2",
                             "three-plotters.cfg", "pens.pcp"}) {
        const std::string bytes = TempFolder::read_file(sample(name));
        const FileContent content = read_content(bytes, {.file = "-"});
        const FileContent file = read_sample(name);
        EXPECT_TRUE(identical(file.tree, content.tree)) << name;
        EXPECT_EQ(file.sections, content.sections) << name;
        EXPECT_EQ(file.tag, content.tag) << name;
        std::istringstream stream(bytes);
        EXPECT_TRUE(identical(file.tree, read_stream(stream, {.file = "-"}).tree)) << name;
    }
}

TEST(ScopedCodePage, CountsForItsThreadAloneAsLongAsItLives) {
    {
        const ScopedCodePage utf8(65001);
        EXPECT_EQ(65001U, pm_system_code_page());
        std::thread([] { EXPECT_EQ(1252U, pm_system_code_page()); }).join();
        {
            const ScopedCodePage other(866);
            const ScopedCodePage as_it_is(0);
            EXPECT_EQ(866U, pm_system_code_page());
        }
        EXPECT_EQ(65001U, pm_system_code_page());
    }
    EXPECT_EQ(1252U, pm_system_code_page());
}

TEST(ReadStream, BeginsWhereTheStreamStands) {
    std::istringstream stream("passed over\nPIAFILEVERSION_2.0\na=1\n");
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(1, read_stream(stream, {.file = "-"}).tree.get<int>("\\a"));
}

TEST(ReadStream, StreamThatFailsIsNotTakenForAWholeOne) {
    FailingBuffer buffer("PIAFILEVERSION_2.0\na=1\n");
    std::istream stream(&buffer);
    EXPECT_EQ("given: the content can't be read",
              error_of([&] { (void)read_stream(stream, {.file = "given"}); }));
}

TEST(ReadStream, StreamThatHasFailedIsNotRead) {
    std::istringstream stream("PIAFILEVERSION_2.0\na=1\n");
    stream.setstate(std::ios::failbit);
    EXPECT_EQ("given: the content can't be read",
              error_of([&] { (void)read_stream(stream, {.file = "given"}); }));
}

TEST(ReadStream, StreamMayThrowByItself) {
    std::istringstream stream("PIAFILEVERSION_2.0\na=1\n");
    stream.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    EXPECT_EQ(1, read_stream(stream, {.file = "-"}).tree.get<int>("\\a"));
}

TEST(ReadContent, ScratchFileIsNamedNowhereAndGone) {
    const std::string text = "[PlotDriver#1]\nnonsense\n[PlotDriver#2]\n";
    const FileContent content = read_content(text, {.file = "given.cfg"});
    ASSERT_EQ(1U, content.reports.size());
    EXPECT_EQ("\n2, nonsense, given.cfg", content.reports[0].detail);
    expect_thrown<PM_Severe>(
        [] { (void)read_content("no compound file", {.file = "a.doc", .type = PM_Object::FILE_DOC}); },
        PM_ERR_NOT_OPENED, u"PM_DOCFile::open()", u"a.doc");
}

TEST(ReadContent, BadLinesBecomeReports) {
    const FileContent content = read_content(header + "a=1\nb=\nc=2\n", {.file = "x"});
    EXPECT_EQ(2, content.tree.get<int>("\\c"));
    ASSERT_EQ(1U, content.reports.size());
    EXPECT_EQ(std::uint32_t{PM_ERR_BAD_LINE}, content.reports.front().number);
}

TEST(ReadContent, WhatEndsTheReadingIsThrownOrTheLastReport) {
    const std::string text = header + "a=1\nnonsense\nc=2\n";
    FileContent content;
    EXPECT_THROW(read_content_into(content, text, {.file = "x"}), PM_Error);
    EXPECT_EQ(1, content.tree.get<int>("\\a"));
    const FileContent kept = read_content(text, {.file = "x", .keep_going = true});
    EXPECT_EQ(1, kept.tree.get<int>("\\a"));
    EXPECT_FALSE(kept.tree.contains("\\c"));
    ASSERT_EQ(1U, kept.reports.size());
    EXPECT_EQ(std::uint32_t{PM_ERR_BAD_LINE}, kept.reports.front().number);
    EXPECT_EQ("PM_PIAFile::load()", kept.reports.front().place);
}

TEST(ReadContent, WhatWasReadOfADamagedSectionStays) {
    const std::string bytes = dpia({"a", "b"}, header + "x=1\nbad\n");
    FileContent content;
    EXPECT_THROW(read_content_into(content, bytes, {.file = "x"}), PM_Error);
    EXPECT_EQ(1, content.tree.get<int>("\\a\\x"));
    EXPECT_FALSE(content.tree.contains("\\b\\x"));
}

TEST(ReadContent, DamagedSectionDoesNotTakeTheOthersAlong) {
    std::string bytes = dpia({"a", "b"}, header + "x=1\nbad\n");
    const FileContent content = read_content(bytes, {.file = "x", .keep_going = true});
    EXPECT_EQ(1, content.tree.get<int>("\\a\\x"));
    EXPECT_EQ(1, content.tree.get<int>("\\b\\x"));
    ASSERT_EQ(2U, content.reports.size());
    EXPECT_EQ("b", content.reports.back().section);
}

TEST(ReadContent, NamesThatNoNodeHasAreChanged) {
    const FileContent content =
        read_content(dpia({"a\\b", "", "a", "a", "*-x"}, header + "x=1\n"), {.file = "x"});
    EXPECT_THAT(top_nodes(content.tree), ElementsAre("a/b", "section", "a", "a#2", "*-x"));
    EXPECT_THAT(content.unread, ElementsAre("a"));
    EXPECT_EQ(1, content.tree.get<int>("\\a/b\\x"));
    EXPECT_EQ(1, content.tree.get<int>("\\section\\x"));
    EXPECT_TRUE(content.tree.node("\\a#2")->properties().empty());
    EXPECT_EQ(1, (*content.tree.node("\\*-x")->properties().begin()).as<int>());
}

TEST(ReadContent, SectionsMayShareFourTimesTheBytesOfTheFile) {
    std::vector<std::string> names;
    for (char name = 'a'; name <= 'f'; ++name) {
        names.emplace_back(1, name);
    }
    std::string text = header;
    for (int i = 0; i < 1000; ++i) {
        text += "p" + std::to_string(i) + "=1\n";
    }
    const std::string bytes = dpia(names, text);
    const FileContent content = read_content(bytes, {.file = "x", .keep_going = true});
    EXPECT_THAT(top_nodes(content.tree), ElementsAre("a", "b", "c", "d", "e", "f"));
    EXPECT_TRUE(content.tree.contains("\\d\\p999"));
    EXPECT_FALSE(content.tree.contains("\\e\\p0"));
    ASSERT_EQ(2U, content.reports.size());
    EXPECT_EQ(std::uint32_t{PM_ERR_STREAM_FAILED}, content.reports.front().number);
    EXPECT_EQ("e", content.reports.front().section);
    EXPECT_EQ("e", content.reports.front().detail);
    EXPECT_TRUE(content.stopped);
    expect_thrown<PM_Severe>([&] { (void)read_content(bytes, {.file = "x"}); }, PM_ERR_STREAM_FAILED,
                             u"load_section", u"e");
    EXPECT_TRUE(read_content(bytes, {.file = "x", .section = "e"}).tree.contains("\\p999"));
}

TEST(ReadContent, SectionOutsideOfTheFileIsTheLibrarys) {
    std::string bytes = dpia({"a", "b"}, header + "x=1\n");
    bytes.resize(bytes.size() - 1);
    const FileContent whole = read_content(bytes, {.file = "x", .keep_going = true});
    const FileContent alone = read_content(bytes, {.file = "x", .section = "a", .keep_going = true});
    ASSERT_EQ(2U, whole.reports.size());
    ASSERT_EQ(1U, alone.reports.size());
    EXPECT_EQ(alone.reports.front().number, whole.reports.front().number);
    EXPECT_EQ(alone.reports.front().place, whole.reports.front().place);
    EXPECT_EQ(alone.reports.front().detail, whole.reports.front().detail);
}

TEST(ReadContent, SectionsAreUtf8) {
    const FileContent content = read_content(dpia({"a"}, header + "\xD0\x96=\"\xD0\x96\n"), {.file = "x"});
    EXPECT_EQ("Ж", content.tree.get<std::string>("\\a\\Ж"));
    EXPECT_EQ(1252U, pm_system_code_page());
}

TEST(ReadContent, BadLineOfAllPlottersIsToldOnce) {
    const FileContent content = read_content("bad\n[Plotter#1/Device]\nPens=x\n[Plotter#2/Device]\nPens=x\n",
                                             {.file = "x", .type = PM_Object::FILE_CFG});
    ASSERT_EQ(3U, content.reports.size());
    EXPECT_EQ("\n1, bad, x", content.reports[0].detail);
    EXPECT_EQ("\n3, Pens=x, x", content.reports[1].detail);
    EXPECT_EQ("1", content.reports[1].section);
    EXPECT_EQ("\n5, Pens=x, x", content.reports[2].detail);
    EXPECT_EQ("2", content.reports[2].section);
}

TEST(ReadContent, NoMoreThanAThousandPlottersAreReadAtOnce) {
    std::string text;
    for (int i = 1; i <= 1001; ++i) {
        text += "[PlotDriver#" + std::to_string(i) + "]\n";
    }
    const Input input{.file = "x", .type = PM_Object::FILE_CFG};
    EXPECT_EQ("x: these are 1001 plotters, and 1000 are read at once at most; choose one",
              error_of([&] { (void)read_content(text, input); }));
    Input one = input;
    one.section = "1001";
    EXPECT_EQ(1001U, read_content(text, one).sections.size());
}

TEST(ReadContent, EmptySectionIsANodeToo) {
    const FileContent content = read_content(dpia({"a"}, header + ";\n"), {.file = "x"});
    EXPECT_THAT(top_nodes(content.tree), ElementsAre("a"));
    EXPECT_EQ(2, read_content(dpia({}, ""), {.file = "x"}).version);
}

TEST(ReadContent, NarrowTextIsReadInTheCodePageThatIsAsked) {
    const std::string text = "PIAFILEVERSION_1.0,\xD0\x96\nname=\"\xD0\x96\n";
    EXPECT_EQ("Ж", read_content(text, {.file = "x", .code_page = 65001}).tree.get<std::string>("\\name"));
    EXPECT_EQ("Ð–", read_content(text, {.file = "x"}).tree.get<std::string>("\\name"));
    EXPECT_EQ("Ж", read_content(text, {.file = "x", .code_page = 65001}).tag);
    EXPECT_EQ(1252U, pm_system_code_page());
}

TEST(ReadContent, ReportsAreAskedFor) {
    Input input{.file = "x"};
    input.on_report = [](const Report&) { return Answer::stop; };
    EXPECT_THROW((void)read_content(header + "a=\n", input), ZT_Canceled_Error);
}

TEST(Formats, AreNamed) {
    EXPECT_EQ("dpia", format_name(PM_Object::FILE_DPIA));
    EXPECT_EQ(PM_Object::FILE_DOC, format_named("DOC"));
    EXPECT_EQ(std::nullopt, format_named("docx"));
    EXPECT_TRUE(is_written(PM_Object::FILE_PIA));
    EXPECT_FALSE(is_written(PM_Object::FILE_PC2));
}

TEST(Formats, OfNoTypeAreUnknown) {
    const auto none = static_cast<PM_Object::FileType>(99);
    EXPECT_EQ("unknown", format_name(none));
    EXPECT_FALSE(is_written(none));
}

} // namespace
} // namespace pm::kit::test

#include "support/system.h"
#include "support/temp_folder.h"
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <pm_test_paths.h>

// What stands around a file: its folder, its kind, the machine.
namespace {

namespace fs = std::filesystem;
using pm::kit::check_file;
using pm::kit::CheckOptions;
using Lines = std::vector<std::string>;

Lines said(const fs::path& file, const CheckOptions& options = {}) {
    Lines lines;
    for (const auto& each : check_file(file.string(), options)) {
        lines.push_back(fmt::format("{}:{} {} {}", fs::path(each.place.file).filename().string(),
                                    each.place.line, each.number, each.message));
    }
    return lines;
}

class CheckedFiles : public testing::Test {
protected:
    // The sample description, in a folder of its own.
    fs::path description() const {
        fs::copy(PM_SAMPLES "/dx4200", m_folder / "dx");
        return m_folder / "dx";
    }

    pm::test::TempFolder m_folder;
};

constexpr const char* bad_line = "PIAFILEVERSION_2.0\nb\n";
const std::string bad_line_said = "2 57 \"b\" is no property, no node and no comment.";

TEST_F(CheckedFiles, TypeThatIsToldCountsForEachFileOfAFolder) {
    const fs::path folder = description();
    m_folder.write("dx/notes.txt", "b\n");
    EXPECT_EQ(Lines(), said(folder));
    const CheckOptions as_pdt{.type = PM_Object::FILE_PDT};
    EXPECT_EQ(Lines{"notes.txt:0 0 The table has one line, and two of headings stand in front of its rows."},
              said(folder, as_pdt));
    const CheckOptions as_pia{.type = PM_Object::FILE_PIA, .rules = {"bad-header"}};
    EXPECT_EQ(24U, said(folder, as_pia).size()); // each file
}

TEST_F(CheckedFiles, FolderCalledLikeATableHidesNoOtherFile) {
    fs::create_directory(m_folder / "a.pdt");
    m_folder.write("b.pia", bad_line);
    EXPECT_EQ(Lines{"b.pia:" + bad_line_said}, said(m_folder.path()));
    m_folder.write("Media Cutting.pdt", "Cut\tText\tWhen\nname\ttext\tlist\nA\tB\tC\n");
    EXPECT_EQ(Lines{"Media Cutting.pdt:3 0 \"C\" is no keyword of its column."},
              said(m_folder / "Media Cutting.pdt"));
}

TEST_F(CheckedFiles, TableThatIsAFolderIsMissing) {
    const fs::path folder = description();
    fs::remove(folder / "Media Type.pdt");
    fs::create_directory(folder / "Media Type.pdt");
    EXPECT_EQ(Lines{"Media Type.pdt:0 68 The table isn't there, or can't be read."},
              said(folder, {.rules = {"missing-table"}}));
}

TEST_F(CheckedFiles, TableIsCheckedThoughOthersAreMissing) {
    const fs::path folder = description();
    fs::remove(folder / "Media Size.pdt");
    EXPECT_EQ(Lines(), said(folder / "Media Type.pdt"));
}

TEST_F(CheckedFiles, StringFileIsCheckedWithItsDescription) {
    const fs::path folder = description();
    fs::rename(folder / "strings.pdt", folder / "texts.pdt");
    EXPECT_EQ(Lines(), said(folder / "texts.pdt"));
    fs::remove(folder / "Media Type.pdt");
    EXPECT_EQ(Lines{"Media Type.pdt:0 63 The table isn't there, or can't be read."},
              said(folder / "texts.pdt", {.rules = {"missing-table"}}));
}

TEST_F(CheckedFiles, TableWithoutAStringFileIsCheckedAlone) {
    m_folder.write("Media Cutting.pdt", "Cut\tText\tWhen\nname\ttext\tlist\nA\tB\tC\n");
    m_folder.write("other.pdt", "a\n");
    EXPECT_EQ(Lines{"Media Cutting.pdt:3 0 \"C\" is no keyword of its column."},
              said(m_folder / "Media Cutting.pdt"));
    EXPECT_EQ(Lines{"other.pdt:0 0 The table has one line, and two of headings stand in front of its rows."},
              said(m_folder / "other.pdt"));
}

TEST_F(CheckedFiles, TableIsNamedWithoutAFolder) {
    const fs::path folder = description();
    m_folder.write("dx/Media Cutting.pdt", "Cut\tText\tWhen\nname\ttext\tlist\nA\tB\tC\n");
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    const Lines lines = said("Media Cutting.pdt", {.rules = {"missing-translation", "unknown-keyword"}});
    fs::current_path(before);
    EXPECT_EQ((Lines{"Media Cutting.pdt:3 0 \"C\" is no keyword of its column."}), lines);
}

TEST_F(CheckedFiles, LongFileIsReadToItsEnd) {
    m_folder.write("a.pia", "PIAFILEVERSION_2.0\n" + std::string(100'000, '\n') + "b");
    EXPECT_EQ(Lines{"a.pia:100002 57 \"b\" is no property, no node and no comment."},
              said(m_folder / "a.pia"));
}

TEST_F(CheckedFiles, NameShorterThanAnEndingHasNone) {
    m_folder.write("a", "x");
    EXPECT_EQ(Lines{"a:0 0 The content is of no known kind."}, said(m_folder / "a"));
    const auto found = pm::kit::check_content("x", "a");
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ("unknown-kind", found[0].rule);
}

TEST_F(CheckedFiles, FileThatMayNotBeReadIsTold) {
    m_folder.write("a.pia", bad_line);
    const pm::test::UnreadableFile unreadable(m_folder / "a.pia");
    EXPECT_EQ(Lines{"a.pia:0 61 The file can't be opened."}, said(m_folder / "a.pia"));
}

// While one lives, the variable has this value.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : m_name(name) {
        pm::test::set_variable(name, value);
    }
    ~ScopedVariable() { pm::test::set_variable(m_name, std::nullopt); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* m_name;
};

TEST_F(CheckedFiles, StringsAreReadInTheCodePageThatTheEnvironmentNames) {
    const fs::path folder = description();
    m_folder.write("dx/strings.pdt", "DRFX_MEDIA_TYPE_B99 \"gr\xC3\xBCn\"\n");
    const CheckOptions options{.rules = {"mixed-encoding"}};
    const Lines in_1252{
        "strings.pdt:1 0 The text is UTF-8 and is read in code page 1252: \"\xC3\xBC\" reads as "
        "\"\xC3\x83\xC2\xBC\"."};
    EXPECT_EQ(in_1252, said(folder, options));
    {
        const ScopedVariable variable("CODEP", "65001");
        EXPECT_EQ(Lines(), said(folder, options));
    }
    const ScopedVariable variable("CODEP", "1"); // no code page
    EXPECT_EQ(in_1252, said(folder, options));
}

} // namespace

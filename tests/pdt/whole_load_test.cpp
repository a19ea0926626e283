#include "pdt/description.h"
#include "support/exceptions.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::expect_thrown;
using pm::test::has_item;
using pm::test::Items;
using pm::test::OpenObject;

const std::u16string sample = u"" PM_SAMPLES "/dx4200/strings.pdt";

// The current folder, as long as one lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() { std::filesystem::current_path(m_before); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path m_before;
};

Items sample_items(const char16_t* base, std::u16string_view path) {
    OpenObject object;
    object.load(sample.c_str(), PM_Object::FILE_PDT, base);
    return object.items(path);
}

// --- Order

TEST(WholeLoad, OpensTheTablesInTheirOrder) {
    Description description;
    for (const Section section : pm::test::loaded_sections)
        description.remove(section);
    for (const Section section : pm::test::loaded_sections) {
        PM_Object object;
        expect_thrown<PM_Severe>([&] { description.load(object); }, 63, u"PM_PDTFile::load()",
                                 description.path_of(section));
        description.rows(section, "");
    }
    PM_Object object;
    description.load(object);
}

TEST(WholeLoad, FailureLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::media_size, "A\n").remove(Section::media_type);
    OpenObject object;
    EXPECT_THROW(description.load(object), PM_Severe);
    EXPECT_EQ(4U, object.items(u"media\\size").size());
    EXPECT_EQ(Items{}, object.items(u"physical_pen"));
}

TEST(WholeLoad, RefusedWriteEndsTheLoad) {
    Description description;
    description.rows(Section::misc_info, "pens\t8\ndefault\t4\n");
    OpenObject object;
    object.SetProperty(u"physical_pen\\default_npens", 2.5);
    expect_thrown<PM_Warning>([&] { description.load(object); }, 54, u"PM_Object::SetData()", u"");
    EXPECT_EQ((Items{"default_npens=2.5", "max_npens=8"}), object.items(u"physical_pen"));
    EXPECT_EQ(Items{}, object.items(u"io"));
}

TEST(WholeLoad, TextIsCarriedThroughTheSectionsInTheirOrder) {
    Description description;
    description.strings("DRFX_CUSTOM_CAPABILITY_B3 \"custom\"\nDRFX_MEDIA_TYPE_B3 \"type\"\n")
        .rows(Section::custom_capability, "C\n")
        .rows(Section::media_size, "S\n")
        .rows(Section::media_type, "T\n")
        .rows(Section::memory_area, "A\n")
        .rows(Section::misc_localizable_info, "\tx\n");
    OpenObject object;
    description.load(object);
    EXPECT_TRUE(has_item(object.items(u"media\\size\\0"), "localized_name=\"custom\""));
    EXPECT_TRUE(has_item(object.items(u"media\\type\\0"), "localized_name=\"type\""));
    EXPECT_TRUE(has_item(object.items(u"res_color_mem\\mem_area_list\\A"), "localized_name=\"type\""));
    EXPECT_TRUE(has_item(object.items(u"meta"), "localized_model_name=\"type\""));
}

TEST(WholeLoad, LinetypesAreTheLastSection) {
    Description description;
    description.remove(Section::line_type_capabilities).rows(Section::misc_localizable_info, "\tx\n");
    OpenObject object;
    EXPECT_THROW(description.load(object), PM_Severe);
    EXPECT_EQ((Items{"model_abilities=\"000000000000\"", "localized_model_name=\"\""}),
              object.items(u"meta"));
}

// --- The sample

TEST(SampleDescription, GivesTheKnownTree) {
    PM_Object object;
    object.load(sample.c_str(), PM_Object::FILE_PDT, u"\\");
    std::stringstream saved;
    object.save(saved, PM_Object::FILE_PIA, u"dx4200", u"\\");
    EXPECT_EQ(pm::test::TempFolder::read_file(PM_TEST_DATA "/pdt/dx4200.pia"), saved.str());
}

TEST(SampleDescription, SecondLoadGivesTheSame) {
    OpenObject object;
    object.load(sample.c_str(), PM_Object::FILE_PDT, u"\\");
    const Items once = object.items(u"");
    object.load(sample.c_str(), PM_Object::FILE_PDT, u"\\");
    EXPECT_EQ(once, object.items(u""));
}

TEST(SampleDescription, GoesBelowTheBase) {
    EXPECT_EQ(sample_items(u"\\", u""), sample_items(u"a\\b", u"a\\b"));
}

TEST(SampleDescription, TellsItsVersion) {
    struct Pdt : PM_PDTFile {
        Pdt() : PM_PDTFile(nullptr) { open(sample.c_str(), false); }
    } pdt;
    char16_t version[64];
    pdt.getVersion(version, std::size(version));
    EXPECT_EQ(std::u16string(u"DX-4200 description 4.2"), version);
}

// --- From a stream

TEST(StreamLoad, FindsTheTablesInTheCurrentFolder) {
    const CurrentFolder here(std::filesystem::path(PM_SAMPLES) / "dx4200");
    std::fstream strings("strings.pdt", std::ios::in | std::ios::binary);
    OpenObject object;
    object.load(strings, PM_Object::FILE_PDT, u"\\");
    EXPECT_EQ(sample_items(u"\\", u""), object.items(u""));
}

TEST(StreamLoad, TakesTheTextsFromTheStream) {
    const Description description;
    const CurrentFolder here(description.folder().path());
    description.folder().write("Media Size.pdt", "heading\nlist\nA\n");
    std::stringstream strings("DRFX_MEDIA_SIZE_C3 \"streamed\"\n");
    OpenObject object;
    object.load(strings, PM_Object::FILE_PDT, u"\\");
    EXPECT_TRUE(has_item(object.items(u"media\\size"), "0\\localized_name=\"streamed\""));
}

TEST(StreamLoad, NamesAMissingTableBare) {
    const pm::test::TempFolder empty;
    const CurrentFolder here(empty.path());
    std::stringstream strings;
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(strings, PM_Object::FILE_PDT, u"\\"); }, 63,
                             u"PM_PDTFile::load()", u"Custom Capability.pdt");
}

// --- What isn't to be had

TEST(PdtDispatch, SaveIsRefused) {
    const pm::test::TempFolder folder;
    const PM_Object object;
    expect_thrown<PM_Warning>(
        [&] { object.save(folder.wide("x.pdt").c_str(), PM_Object::FILE_PDT, u"", u"\\"); }, 67,
        u"PM_Object::save()", u"");
    std::stringstream stream;
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PDT, u"", u"\\"); }, 67,
                              u"PM_Object::save()", u"");
}

TEST(PdtDispatch, FileVersionIsRefused) {
    char16_t version[64];
    const PM_Object object;
    expect_thrown<PM_Warning>(
        [&] { object.getFileVersion(sample.c_str(), version, std::size(version), PM_Object::FILE_PDT); }, 67,
        u"PM_Object::getFileVersion()", u"");
}

} // namespace

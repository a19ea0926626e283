#include "pdt/description.h"
#include "support/exceptions.h"
#include <fstream>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <sstream>

namespace {

using pm::Section;
using pm::test::CurrentFolder;
using pm::test::Description;
using pm::test::expect_thrown;
using pm::test::has_item;
using pm::test::Items;
using pm::test::OpenObject;

const std::u16string sample = u"" PM_SAMPLES "/dx4200/strings.pdt";

Items sample_items(const char16_t* base, std::u16string_view path) {
    OpenObject object;
    object.load(sample.c_str(), PM_Object::FILE_PDT, base);
    return object.items(path);
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
    expect_thrown<PM_Warning>([&] { description.load(object); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()",
                              u"");
    EXPECT_EQ((Items{"default_npens=2.5", "max_npens=8"}), object.items(u"physical_pen"));
    EXPECT_EQ(Items{}, object.items(u"io"));
}

void expect_refused(const Description& description, OpenObject& object) {
    expect_thrown<PM_Warning>([&] { description.load(object); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()",
                              u"");
}

TEST(WholeLoad, RefusedWriteOfADestinationLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::media_stapling, "S\t\tPortraitUL\tEndofjob\t1\n")
        .rows(Section::media_destination, "D\t\t\tS\t\t\t\tS\n");
    OpenObject object;
    object.SetProperty(u"media\\destination\\D\\stapling\\S\\when", 2.5);
    expect_refused(description, object);
    const Items expected = {"localized_name=\"\"",      "caps_type=0",
                            "default_stapling=\"S\"",   "stapling\\S\\when=2.5",
                            "stapling\\S\\caps_type=0", "stapling\\S\\localized_name=\"\"",
                            "stapling\\S\\location=1"};
    EXPECT_EQ(expected, object.items(u"media\\destination\\D"));
    EXPECT_EQ(Items{}, object.items(u"RASTER"));
}

TEST(WholeLoad, RefusedWriteOfAColorModeLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::resolution, "R\t\t600\n")
        .rows(Section::resolution_color_memory, "M\t\t\t\t\t\tR\n");
    OpenObject object;
    object.SetProperty(u"res_color_mem\\rcm_list\\M\\resolution_list\\R\\physical_resolution_y", 1);
    expect_refused(description, object);
    const Items expected = {"localized_name=\"\"",
                            "number_of_colors=0",
                            "color_depth=0",
                            "undithered_colors=0",
                            "color_system=5",
                            "caps_type=0",
                            "resolution_list\\R\\physical_resolution_y=1",
                            "resolution_list\\R\\caps_type=0",
                            "resolution_list\\R\\localized_name=\"\"",
                            "resolution_list\\R\\physical_resolution_x=600.0"};
    EXPECT_EQ(expected, object.items(u"res_color_mem\\rcm_list\\M"));
    // The form is read by then, and of the closing texts that of io alone is written.
    EXPECT_EQ((Items{"ui_owner=\"000000000\"", "abilities=\"000000000000\""}), object.items(u"io"));
    EXPECT_EQ(Items{"ui_owner=\"0000000\""}, object.items(u"physical_pen"));
}

TEST(WholeLoad, RefusedWriteOfASizeLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::media_size, "A\t\t\tL\tN\n");
    OpenObject object;
    object.SetProperty(u"media\\size\\0\\landscape_mode", 1);
    expect_refused(description, object);
    EXPECT_EQ((Items{"landscape_mode=1", "caps_type=0", "name=\"A\"", "localized_name=\"\""}),
              object.items(u"media\\size\\0"));
}

TEST(WholeLoad, RefusedWriteOfATypeLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::media_type, "A\t\t600\t300\t5\n");
    OpenObject object;
    object.SetProperty(u"media\\type\\0\\max_resolution_y", 1);
    expect_refused(description, object);
    EXPECT_EQ((Items{"max_resolution_y=1", "name=\"A\"", "caps_type=0", "localized_name=\"\"",
                     "max_resolution_x=600.0"}),
              object.items(u"media\\type\\0"));
}

TEST(WholeLoad, RefusedWriteOfRastersLeavesWhatWasWritten) {
    OpenObject object;
    object.SetProperty(u"RASTER\\orientation_prefs", 2.5);
    expect_refused(Description(), object);
    EXPECT_EQ((Items{"orientation_prefs=2.5", "abilities=\"0000\""}), object.items(u"RASTER"));
}

TEST(WholeLoad, RefusedWriteOfANameOfTheModelLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::misc_localizable_info, "\tx\n\tx\n\tx\n");
    OpenObject object;
    object.SetProperty(u"meta\\localized_family_name", 1);
    expect_refused(description, object);
    EXPECT_EQ(
        (Items{"localized_family_name=1", "model_abilities=\"000000000000\"", "localized_model_name=\"\""}),
        object.items(u"meta"));
}

TEST(WholeLoad, RefusedWriteOfALinetypeLeavesWhatWasWritten) {
    Description description;
    description.rows(Section::line_type_capabilities, "Solid\t1\nDashed\t2\n");
    OpenObject object;
    object.SetProperty(u"linetype\\font\\1\\width", 1);
    expect_refused(description, object);
    EXPECT_EQ((Items{"font\\1\\width=1", "font\\0\\width=1.0"}), object.items(u"linetype"));
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

TEST(WholeLoad, SizesAndDescriptionsMeetByNumber) {
    Description description;
    description
        .rows(Section::media_size,
              "ISO A4 landscape\tISO A4\tISO A4 (297 \xD7 210 mm)\tL\tISO A4 landscape area\r\n"
              "\r\n"
              "ISO A4 portrait\tISO A4\tISO A4 (210 \xD7 297 mm)\tP\tISO A4 portrait area // feeds first\r\n")
        .rows(Section::media_description, "ISO A4 landscape area\tISO A4\tISO\r\n")
        .strings("DRFX_MEDIA_SIZE_C3  \"ISO A4, landscape\"\r\nDRFX_MEDIA_SIZE_C5  \"ISO A4, portrait\"\r\n");
    const Items expected = {
        "ui_owner=\"00000000000000000000000\"",
        "landscape=true",
        "abilities=\"000005500500500000000000500000000500000000000000000\"",
        "caps_state=\"0000000000000000000\"",
        "description\\0\\caps_type=0",
        "description\\0\\name=\"ISO_A4_landscape_area\"",
        "size\\0\\media_group=4",
        "size\\0\\caps_type=0",
        "size\\0\\name=\"ISO_A4_landscape\"",
        "size\\0\\localized_name=\"ISO A4, landscape\"",
        "size\\0\\landscape_mode=true",
        "size\\0\\media_description_name=\"ISO_A4_landscape_area\"",
        "size\\1\\caps_type=0",
        "size\\1\\name=\"ISO_A4_portrait\"",
        "size\\1\\localized_name=\"ISO A4, portrait\"",
        "size\\1\\landscape_mode=false",
        "size\\1\\media_description_name=\"ISO_A4_portrait_area\"",
    };
    EXPECT_EQ(expected, pm::test::items_of(description, u"media"));
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

// --- From a stream

TEST(StreamLoad, FindsTheTablesInTheCurrentFolder) {
    const CurrentFolder here(std::filesystem::path(PM_SAMPLES) / "dx4200");
    std::fstream strings("strings.pdt", std::ios::in | std::ios::binary);
    OpenObject object;
    object.load(strings, PM_Object::FILE_PDT, u"\\");
    EXPECT_EQ(sample_items(u"\\", u""), object.items(u""));
}

// --- What isn't to be had

TEST(PdtDispatch, FileVersionIsRefused) {
    char16_t version[64];
    const PM_Object object;
    expect_thrown<PM_Warning>(
        [&] { object.getFileVersion(sample.c_str(), version, std::size(version), PM_Object::FILE_PDT); },
        PM_ERR_TYPE_REFUSED, u"PM_Object::getFileVersion()", u"");
}

} // namespace

#include "pdt/pmpdt.h"

#include "pdt/description.h"

#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/scoped_settings.h"
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <sstream>
#include <thread>

namespace {

using pm::Section;
using pm::test::CurrentFolder;
using pm::test::Description;
using pm::test::expect_thrown;
using pm::test::has_item;
using pm::test::Items;
using pm::test::loaded_sections;
using pm::test::OpenObject;

constexpr const char16_t* place = u"PM_PDTFile::load()";

struct OpenPdt : PM_PDTFile {
    explicit OpenPdt(const std::u16string& string_file) : PM_PDTFile(nullptr) {
        open(string_file.c_str(), false);
    }
    explicit OpenPdt(const Description& description) : OpenPdt(description.string_file()) {}
};

// --- What a load writes and where

TEST(PdtLoad, EmptyDescriptionWritesTheClosingBlock) {
    const Description description;
    OpenObject object;
    description.load(object);
    EXPECT_TRUE(has_item(object.items(u"res_color_mem"), "caps_state=\"000000000000000\""));
    EXPECT_TRUE(has_item(object.items(u"media"), "caps_state=\"0000000000000000000\""));
    EXPECT_TRUE(has_item(object.items(u"linetype"), "caps_state=\"0000\""));
    EXPECT_TRUE(has_item(object.items(u"physical_pen"), "caps_state=\"0000000000000000\""));
    EXPECT_TRUE(has_item(object.items(u"io"), "caps_state=\"0000\""));
    EXPECT_TRUE(has_item(object.items(u"meta"), "toolkit_version=0.0"));
}

TEST(PdtLoad, EachFailingAllocationIsTold) {
    Description description;
    description.rows(Section::custom_capability, "C\t\t\t\t\t\tPT_Long\tY\n");
    const int told = pm::test::count_memory_exceptions([&] {
        OpenObject object;
        description.load(object);
    });
    EXPECT_GT(told, 50);
}

TEST(PdtLoad, ItemsLandBelowTheBase) {
    Description description;
    description.rows(Section::custom_capability, "C\t\t\t\t\t\tPT_Long\tY\n");
    OpenObject object;
    description.load(object, u"\\plotter\\one");
    EXPECT_TRUE(has_item(object.items(u"plotter\\one"), "custom_name\\C\\data_type=1"));
    EXPECT_TRUE(has_item(object.items(u"plotter\\one"), "meta\\toolkit_version=0.0"));
    EXPECT_EQ(nullptr, object.root().first_child()->next_sibling());
}

TEST(PdtLoad, ReadsTheStringFileByAnyName) {
    Description description;
    description.rows(Section::custom_capability, "C\t\t\t\t\t\tPT_Long\tY\n");
    OpenObject object;
    const std::u16string other =
        description.folder().write("texts of this driver.txt", "DRFX_CUSTOM_CAPABILITY_B3 \"text\"\n");
    object.load(other.c_str(), PM_Object::FILE_PDT, u"\\");
    EXPECT_TRUE(has_item(object.items(u"custom_name"), "C\\localized_name=\"text\""));
}

TEST(PdtLoad, SecondLoadOfTheProcessIsTheSame) {
    Description description;
    description.rows(Section::io_method, "bogus\nRS232\tbogus\n");
    EXPECT_EQ(pm::test::items_of(description, u""), pm::test::items_of(description, u""));
}

TEST(PdtLoad, SecondLoadIntoOneTreeOverwrites) {
    Description description;
    OpenObject object;
    description.rows(Section::custom_capability, "C\t\ty\t\t\t\tPT_Long\tY\n").load(object);
    description.rows(Section::custom_capability, "C\t\tn\t\t\t\tPT_Long\tY\n").load(object);
    EXPECT_TRUE(has_item(object.items(u"custom_name"), "C\\verifiable=false"));
}

TEST(PdtLoad, LinesMayEndInBothWays) {
    Description unix_ends;
    Description dos_ends;
    unix_ends.strings("DRFX_CUSTOM_CAPABILITY_B3 \"x\"\n")
        .whole(Section::custom_capability, "a\nb\nC\t\tY\n");
    dos_ends.strings("DRFX_CUSTOM_CAPABILITY_B3 \"x\"\r\n")
        .whole(Section::custom_capability, "a\r\nb\r\nC\t\tY\r\n");
    EXPECT_EQ(pm::test::items_of(unix_ends, u""), pm::test::items_of(dos_ends, u""));
}

TEST(PdtLoad, TableOfLessThanThreeLinesHasNoRows) {
    for (const char* content : {"", "a", "a\n", "a\nb", "a\nb\n"}) {
        Description description;
        description.whole(Section::custom_capability, content);
        EXPECT_EQ(Items{}, pm::test::items_of(description, u"custom_name")) << content;
    }
}

TEST(PdtLoad, TablesAreInTheSystemCodePageWhateverTheVariable) {
    Description description;
    description.rows(Section::custom_capability, "Caf\xE9\n")
        .strings("DRFX_CUSTOM_CAPABILITY_B3 \"\xC3\xA9\"\n");
    const pm::test::ScopedVariable variable("CODEP", "65001");
    const Items items = pm::test::items_of(description, u"custom_name");
    EXPECT_TRUE(has_item(items, "Caf\xC3\xA9\\localized_name=\"\xC3\xA9\""));
}

TEST(PdtLoad, StreamIsTheStringFileAndTablesAreInTheCurrentFolder) {
    Description description;
    description.rows(Section::custom_capability, "C\n");
    std::stringstream stream("DRFX_CUSTOM_CAPABILITY_B3 \"from the stream\"\n");
    stream.seekg(0, std::ios::end);
    stream.get();
    ASSERT_TRUE(stream.eof());
    const CurrentFolder here(description.folder().path());
    OpenObject object;
    object.load(stream, PM_Object::FILE_PDT, u"\\");
    EXPECT_TRUE(has_item(object.items(u"custom_name"), "C\\localized_name=\"from the stream\""));
}

TEST(PdtLoad, TablesBesideAStreamAreNamedAlone) {
    const pm::test::TempFolder folder;
    const CurrentFolder here(folder.path());
    std::stringstream stream;
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_PDT, u"\\"); }, PM_ERR_NO_SUCH_FILE,
                             place, u"Custom Capability.pdt");
}

// --- Failures

TEST(PdtLoad, TablesAreOpenedInTheirOrder) {
    for (std::size_t first = 0; first < std::size(loaded_sections); ++first) {
        Description description;
        for (std::size_t each = first; each < std::size(loaded_sections); ++each) {
            description.remove(loaded_sections[each]);
        }
        PM_Object object;
        expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NO_SUCH_FILE, place,
                                 description.path_of(loaded_sections[first]));
    }
}

TEST(PdtLoad, EachTableMustExist) {
    for (const Section section : loaded_sections) {
        Description description;
        description.remove(section);
        PM_Object object;
        expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NO_SUCH_FILE, place,
                                 description.path_of(section));
    }
}

TEST(PdtLoad, TableThatNoLoadReadsMayBeMissing) {
    for (const Section section :
         {Section::baud_rate, Section::media_source_size, Section::global_static_lists}) {
        Description description;
        description.remove(section);
        PM_Object object;
        EXPECT_NO_THROW(description.load(object));
    }
}

TEST(PdtLoad, FolderInPlaceOfATableIsNumber68) {
    Description description;
    description.remove(Section::protocol);
    std::filesystem::create_directory(description.folder() / "Protocol .pdt");
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_IS_A_FOLDER, place,
                             description.path_of(Section::protocol));
}

TEST(PdtLoad, UnreadableTableIsNumber61) {
    const Description description;
    PM_Object object;
    const pm::test::UnreadableFile secret(description.folder() / "Media Cutting.pdt");
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_ACCESS_DENIED, place,
                             description.path_of(Section::media_cutting));
}

TEST(PdtLoad, TooLongLineOfATableIsNumber56) {
    Description description;
    description.rows(Section::media_folding, std::string(2048, 'x') + "\n");
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NOT_OPENED, place,
                             description.path_of(Section::media_folding));
}

TEST(PdtLoad, TooLongHeadingIsNumber56) {
    Description description;
    description.whole(Section::media_folding, std::string(5000, 'x'));
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NOT_OPENED, place,
                             description.path_of(Section::media_folding));
}

TEST(PdtLoad, TooLongLineOfTheStringFileIsNumber56) {
    Description description;
    description.strings(std::string(2048, 'x') + "\n");
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NOT_OPENED, place,
                             description.string_file());
}

TEST(PdtLoad, MissingStringFileIsRefusedByOpen) {
    const pm::test::TempFolder folder;
    PM_Object object;
    expect_thrown<PM_Severe>(
        [&] { object.load(folder.wide("strings.pdt").c_str(), PM_Object::FILE_PDT, u"\\"); },
        PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", folder.wide("strings.pdt"));
}

TEST(PdtLoad, FailuresPassTheHandlerBy) {
    Description description;
    description.remove(Section::media_type);
    pm::test::RecordingHandler handler;
    PM_Object object(&handler);
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NO_SUCH_FILE, place,
                             description.path_of(Section::media_type));
    expect_thrown<PM_Severe>([&] { description.load(object, u""); }, PM_ERR_BAD_PATH, place, u"");
    object.SetProperty(u"\\RASTER\\orientation_prefs", 2.5);
    description.rows(Section::media_type, "");
    expect_thrown<PM_Warning>([&] { description.load(object); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()",
                              u"");
    EXPECT_TRUE(handler.reports.empty());
}

TEST(PdtLoad, ThreadsLoadEachIntoItsOwnTree) {
    const std::u16string sample = pm::to_wide(PM_SAMPLES "/dx4200/strings.pdt");
    const auto load = [&sample](Items& items) {
        for (int time = 0; time < 3; ++time) {
            OpenObject object;
            object.load(sample.c_str(), PM_Object::FILE_PDT, u"\\");
            items = object.items(u"");
        }
    };
    Items first;
    Items second;
    std::thread other(load, std::ref(second));
    load(first);
    other.join();
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(first, second);
}

TEST(PdtLoad, ItemsWrittenBeforeAFailureStay) {
    Description description;
    description.rows(Section::custom_capability, "C\n").remove(Section::dithering_method);
    OpenObject object;
    EXPECT_THROW(description.load(object), PM_Severe);
    EXPECT_TRUE(has_item(object.items(u"custom_name"), "C\\verifiable=false"));
    EXPECT_EQ(Items{}, object.items(u"meta"));
}

TEST(PdtLoad, ObjectMissingIsNumber52) {
    const Description description;
    OpenPdt pdt(description);
    expect_thrown<PM_Severe>([&] { pdt.load(nullptr, u"\\there", PM_Object::FILE_PDT); },
                             PM_ERR_NOTHING_THERE, place, u"\\there");
    expect_thrown<PM_Severe>([&] { pdt.load(nullptr, u"", PM_Object::FILE_PIA); }, PM_ERR_NOTHING_THERE,
                             place, u"");
}

TEST(PdtLoad, EmptyBaseIsNumber51) {
    const Description description;
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object, u""); }, PM_ERR_BAD_PATH, place, u"");
    expect_thrown<PM_Severe>([&] { description.load(object, nullptr); }, PM_ERR_BAD_PATH, place, u"");
    OpenPdt pdt(description);
    expect_thrown<PM_Severe>([&] { pdt.load(&object, u"", PM_Object::FILE_PIA); }, PM_ERR_BAD_PATH, place,
                             u"");
}

TEST(PdtLoad, OtherTypeIsNumber54) {
    const Description description;
    PM_Object object;
    for (const auto type : {PM_Object::FILE_PIA, PM_Object::FILE_DOC, PM_Object::FILE_DPIA}) {
        OpenPdt pdt(description);
        expect_thrown<PM_Severe>([&] { pdt.load(&object, u"\\base", type); }, PM_ERR_WRONG_TYPE, place,
                                 u"\\base");
    }
}

TEST(PdtLoad, StringsAreReadBeforeArgumentsAreLookedAt) {
    Description description;
    description.strings(std::string(2048, 'x'));
    OpenPdt pdt(description);
    expect_thrown<PM_Severe>([&] { pdt.load(nullptr, u"", PM_Object::FILE_PIA); }, PM_ERR_NOT_OPENED, place,
                             description.string_file());
}

TEST(PdtLoad, PropertyOfAnotherTypeStopsTheLoad) {
    Description description;
    description.rows(Section::custom_capability, "C\t\t\t\t\t\tPT_Long\tY\n");
    PM_Object object;
    object.SetProperty(u"\\custom_name\\C\\data_type", 2.5);
    expect_thrown<PM_Warning>([&] { description.load(object); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()",
                              u"");
}

TEST(PdtLoad, PathThatIsTooLongIsNumber51) {
    Description description;
    const std::string name(1100, 'n');
    description.rows(Section::custom_capability, name + "\n");
    PM_Object object;
    const std::u16string path =
        u"\\\\custom_name\\" + std::u16string(name.begin(), name.end()) + u"\\localized_name";
    expect_thrown<PM_Warning>([&] { description.load(object); }, PM_ERR_BAD_PATH, u"PM_Object::SetData()",
                              path.substr(0, 259));
}

TEST(PdtLoad, FailuresCarryTheMarkerOfTheUnit) {
    const Description description;
    PM_Object object;
    const auto e = pm::test::thrown_by([&] { description.load(object, u""); });
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(std::u16string(u"$Workfile: pmpdt.cpp $ $Revision: #1 $"), e->m_source);
}

TEST(PdtLoad, CannotBeSaved) {
    const Description description;
    PM_Object object;
    expect_thrown<PM_Warning>(
        [&] { object.save(description.string_file().c_str(), PM_Object::FILE_PDT, u"", u"\\"); },
        PM_ERR_TYPE_REFUSED, u"PM_Object::save()", u"");
}

// --- Version

std::u16string version_of(const Description& description, std::size_t size = 100) {
    OpenPdt pdt(description);
    char16_t buffer[100];
    std::fill(std::begin(buffer), std::end(buffer), u'?');
    pdt.getVersion(buffer, size);
    return buffer;
}

std::string with_field_62(const std::string& text) {
    return "first line\n" + std::string(61, '\t') + text + "\tbehind\n";
}

TEST(PdtVersion, IsField62OfTheSecondLine) {
    Description description;
    description.whole(Section::global_static_lists, with_field_62("4.2 of May"));
    EXPECT_EQ(u"4.2 of May", version_of(description));
}

TEST(PdtVersion, IsCutToTheBuffer) {
    Description description;
    description.whole(Section::global_static_lists, with_field_62("4.2 of May"));
    EXPECT_EQ(u"4.2", version_of(description, 4));
    EXPECT_EQ(u"", version_of(description, 1));
    EXPECT_EQ(u"4.2 of May", version_of(description, PM_File::unchecked));
}

TEST(PdtVersion, IsEmptyForAShortLineOrFile) {
    Description description;
    EXPECT_EQ(u"", version_of(description));
    description.whole(Section::global_static_lists, "");
    EXPECT_EQ(u"", version_of(description));
}

TEST(PdtVersion, NeedsNoLineEnd) {
    Description description;
    description.whole(Section::global_static_lists, "\n" + std::string(61, '\t') + "4.2");
    EXPECT_EQ(u"4.2", version_of(description));
}

TEST(PdtVersion, MissingTableIsNumber63InThePlaceOfLoad) {
    Description description;
    description.remove(Section::global_static_lists);
    expect_thrown<PM_Severe>([&] { version_of(description); }, PM_ERR_NO_SUCH_FILE, place,
                             description.path_of(Section::global_static_lists));
}

TEST(PdtVersion, OfTheSample) {
    OpenPdt pdt(pm::to_wide(PM_SAMPLES "/dx4200/strings.pdt"));
    char16_t buffer[100] = {};
    pdt.getVersion(buffer, 100);
    EXPECT_EQ(std::u16string(u"DX-4200 description 4.2"), buffer);
}

} // namespace

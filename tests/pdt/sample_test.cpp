#include "pdt/description.h"
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <pm_test_paths.h>
#include <sstream>

// The sample description, whole and cut short at every byte of every table.

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::DescriptionLoad;
using pm::test::has_item;
using pm::test::Items;
using pm::test::OpenObject;

const std::string sample_folder = PM_SAMPLES "/dx4200/";

std::string sample_table(Section section) {
    return pm::test::TempFolder::read_file(sample_folder + Description::file_of(section));
}

// What a table gives: the tree, the counts of the lists and the marks.
struct Outcome {
    std::string tree;
    std::vector<int> counts;
    std::vector<int> media_marks;
    std::vector<int> io_marks;
    std::vector<int> color_marks;
    bool operator==(const Outcome&) const = default;
};

Outcome outcome_of(Section section, const Description& description) {
    DescriptionLoad load(description);
    OpenObject object;
    if (section == Section::media_source) load.load_section_into(object, Section::media_source_entry);
    if (section == Section::io_method) load.load_section_into(object, Section::protocol);
    load.load_section_into(object, section);
    std::stringstream tree;
    object.save(tree, PM_Object::FILE_PIA, u"", u"\\");
    return {tree.str(),
            {load.protocols.count(), load.collating.count(), load.cutting.count(), load.destinations.count(),
             load.folding.count(), load.source_entries.count(), load.stapling.count(),
             load.memory_areas.count(), load.resolutions.count(), load.color_modes.count()},
            load.media_marks(),
            load.io_marks(),
            load.color_marks()};
}

class EverySection : public testing::TestWithParam<Section> {};

// A line counts with its line end only, so that cutting a table within a line is cutting it in front.
TEST_P(EverySection, PrefixIsReadToItsLastLineEnd) {
    const std::string whole = sample_table(GetParam());
    Description description;
    for (const Section needed : {Section::media_source_entry, Section::protocol}) {
        description.whole(needed, sample_table(needed));
    }
    description.whole(GetParam(), "");
    const Outcome nothing = outcome_of(GetParam(), description);
    Outcome lines_before = nothing;
    for (std::size_t byte = 0; byte < whole.size(); ++byte) {
        description.append(GetParam(), whole.substr(byte, 1));
        const Outcome outcome = outcome_of(GetParam(), description);
        if (whole[byte] == '\n') lines_before = outcome;
        ASSERT_EQ(lines_before, outcome) << byte;
    }
    EXPECT_NE(nothing, lines_before);
}

// Tables of a fixed number of rows, whose last one needs no line end.
class EveryForm : public testing::TestWithParam<Section> {};

TEST_P(EveryForm, PrefixIsReadAsIfItHadALineEnd) {
    const std::string whole = sample_table(GetParam());
    Description description;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        if (length > 0 && whole[length - 1] == '\r') continue; // part of a line end
        description.whole(GetParam(), whole.substr(0, length));
        const Outcome without = outcome_of(GetParam(), description);
        description.append(GetParam(), "\n");
        ASSERT_EQ(outcome_of(GetParam(), description), without) << length;
    }
}

bool is_form(Section section) {
    return section == Section::misc_info || section == Section::misc_localizable_info;
}

std::vector<Section> sections(bool forms) {
    std::vector<Section> all;
    std::copy_if(std::begin(pm::test::loaded_sections), std::end(pm::test::loaded_sections),
                 std::back_inserter(all), [forms](Section each) { return is_form(each) == forms; });
    return all;
}

std::string test_name(const testing::TestParamInfo<Section>& each) {
    std::string name = Description::file_of(each.param);
    name.resize(name.size() - 4);
    std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
    return name;
}

INSTANTIATE_TEST_SUITE_P(Sample, EverySection, testing::ValuesIn(sections(false)), test_name);
INSTANTIATE_TEST_SUITE_P(Sample, EveryForm, testing::ValuesIn(sections(true)), test_name);

TEST(Sample, EveryPrefixOfTheStringFileIsReadToItsLastLineEnd) {
    const std::string whole = pm::test::TempFolder::read_file(sample_folder + "strings.pdt");
    std::u16string last_before;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        std::istringstream stream(whole.substr(0, length));
        pm::LineReader reader;
        reader.attach(stream);
        pm::StringTable table;
        table.load_strings(reader, nullptr);
        std::u16string texts;
        for (int row = 3; row < 50; ++row) {
            texts += table.localized(Section::media_size, u'C', row);
            texts += table.localized(Section::media_type, u'B', row);
            texts += table.localized(Section::misc_localizable_info, u'B', row);
        }
        if (length == 0 || whole[length - 1] == '\n') last_before = texts;
        ASSERT_EQ(last_before, texts) << length;
    }
}

class SampleTree : public testing::Test {
protected:
    SampleTree() {
        object.load(pm::to_wide(sample_folder + "strings.pdt").c_str(), PM_Object::FILE_PDT, u"\\");
    }
    OpenObject object;
};

TEST_F(SampleTree, CustomCapabilities) {
    const Items items = object.items(u"custom_name");
    EXPECT_EQ("Ink_Saver\\localized_name=\"Ink saver\"", items.front());
    EXPECT_TRUE(has_item(items, "Feed_Correction\\value_list\\1\\value=-0.125"));
    EXPECT_TRUE(has_item(items, "Head_Clearance\\range_max=4.5"));
    EXPECT_TRUE(has_item(items, "Panel_Unlock\\value_list\\1\\value=<4458343230301B45>"));
    EXPECT_TRUE(has_item(items, "Panel_Unlock\\localized_name=\"Code that unlocks the panel\""));
}

TEST_F(SampleTree, DitheringMethods) {
    const Items items = object.items(u"res_color_mem\\dithering_list");
    EXPECT_TRUE(has_item(items, "Ordered_4x4\\matrix_list\\Bayer4\\15\\data=5"));
    EXPECT_TRUE(has_item(items, "Ordered_8x8\\matrix_list\\Bayer8\\63\\data=21"));
    EXPECT_TRUE(has_item(items, "Line_Art\\threshold=128"));
    EXPECT_TRUE(has_item(items, "Gray_Ramp\\localized_name=\"Grey scale\""));
    EXPECT_TRUE(has_item(items, "Error_Diffusion\\renderers=2"));
}

TEST_F(SampleTree, IoMethods) {
    const Items items = object.items(u"io\\method");
    EXPECT_TRUE(has_item(items, "6\\bidi_flags=14855"));
    EXPECT_TRUE(has_item(items, "4\\handshakes=551"));
    EXPECT_TRUE(has_item(items, "4\\default_handshake=2"));
    EXPECT_TRUE(has_item(items, "4\\protocol\\3\\localized_name=\"7 data bits, odd parity, 2 stop bits\""));
    EXPECT_TRUE(has_item(items, "4\\baudrates\\7\\rate=115200"));
    EXPECT_TRUE(has_item(items, "5\\bidi_flags=14855"));
    EXPECT_FALSE(has_item(items, "2\\bidi_flags=14855"));
}

TEST_F(SampleTree, MediaDescriptions) {
    const Items items = object.items(u"media\\description");
    EXPECT_TRUE(has_item(items, "0\\name=\"ISO_A0_landscape_area\""));
    EXPECT_TRUE(has_item(items, "43\\name=\"Custom_imperial_portrait_area\""));
    EXPECT_TRUE(has_item(items, "43\\dimensional=false"));
    EXPECT_TRUE(has_item(items, "43\\printable_bounds_ury=2484.2"));
    EXPECT_TRUE(has_item(object.items(u"media\\size"), "43\\media_group=14"));
}

TEST_F(SampleTree, MediaSources) {
    const Items items = object.items(u"media\\source");
    EXPECT_EQ("Roll_1\\caps_type=0", items.front());
    EXPECT_TRUE(has_item(items, "Roll_2\\localized_name=\"Lower roll\""));
    EXPECT_TRUE(has_item(items, "Manual_Feed\\feed=1"));
    EXPECT_TRUE(has_item(items, "Roll_1\\entry\\Roll_42_in\\width=1067.0"));
    EXPECT_TRUE(has_item(items, "Sheet_Feeder\\entry\\Cassette_A4\\localized_name=\"Cassette, A4\""));
}

} // namespace

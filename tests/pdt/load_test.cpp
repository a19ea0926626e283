#include "pdt/load.h"

#include "pdt/description.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <sstream>

// Joins multiply: each source has a copy of each entry that it names, each colour mode of each resolution.

namespace {

using pm::LoadStep;
using pm::Section;
using pm::test::Description;
using pm::test::expect_thrown;
using pm::test::OpenObject;

std::uint64_t items_below(const PM_Node& node) {
    std::uint64_t items = 0;
    for (const PM_Property* prop = node.first_prop(); prop != nullptr; prop = prop->next()) {
        ++items;
    }
    for (const PM_Node* child = node.first_child(); child != nullptr; child = child->next_sibling()) {
        items += 1 + items_below(*child);
    }
    return items;
}

// A line for each number below `count`, behind the number.
std::string numbered(int count, const std::string& line) {
    std::string text;
    for (int number = 0; number < count; ++number) {
        text += std::to_string(number) + line;
    }
    return text;
}

std::string repeated(int count, const std::string& line) {
    std::string text;
    for (int time = 0; time < count; ++time) {
        text += line;
    }
    return text;
}

struct SourcesOfOneEntry : Description {
    SourcesOfOneEntry(int sources, int sizes) {
        rows(Section::media_source_entry, "E\n" + repeated(sizes, "\t\t\t\t\tS\n"));
        rows(Section::media_source, numbered(sources, "\t\t\tE\n"));
    }
};

// What a load of the description has joined, and what its tree holds, with the limit of joins set to `limit`.
struct Joined {
    Joined(const Description& description, std::uint32_t limit) {
        pm::test::DescriptionLoad load(description);
        load.join_limit = limit;
        load.load_into(object);
        count = load.joined;
    }
    std::uint64_t items() const { return items_below(object.root()); }

    OpenObject object;
    std::uint32_t count = 0;
};

// Expects that the joins make so many nodes and properties more than `unjoined` has, which is the description
// without what it refers to, and that a limit of one less is passed.
void expect_joined(std::uint32_t count, const Description& description, const Description& unjoined) {
    const Joined joined(description, count);
    EXPECT_EQ(count, joined.count);
    EXPECT_EQ(count, joined.items() - Joined(unjoined, 0).items());
    expect_thrown<PM_Severe>([&] { Joined(description, count - 1); }, PM_ERR_NOT_READ, u"PM_PDTFile::load()",
                             description.string_file());
}

TEST(JoinLimit, CountsEntriesOfSourcesAndTheirSizes) {
    // Of each source the node of entries, that of the entry with five properties and that of the sizes, and a
    // node with two properties for each size.
    const SourcesOfOneEntry description(3, 4);
    SourcesOfOneEntry unjoined(3, 4);
    unjoined.rows(Section::media_source_entry, "");
    expect_joined(3 * (1 + 6 + 1 + 4 * 3), description, unjoined);
}

TEST(JoinLimit, CountsResolutionsOfModesAndTheirMemoryAreas) {
    Description description;
    description.rows(Section::memory_area, "A\nB\n")
        .rows(Section::resolution, "R\t\t1\t\t1\t\t1\t\tD\tA\n\t\t\t\t\t\t\t\t\tB\nS\n")
        .rows(Section::resolution_color_memory, "M\t\t\t\t\t\tR\n\t\t\t\t\t\tS\nN\t\t\t\t\t\tR\n");
    Description unjoined;
    unjoined.rows(Section::memory_area, "A\nB\n")
        .rows(Section::resolution_color_memory, "M\t\t\t\t\t\tR\n\t\t\t\t\t\tS\nN\t\t\t\t\t\tR\n");
    const std::uint32_t r = 3 + 6 + 1 + 2 + 1 + 2 * 3;
    const std::uint32_t s = 3;
    expect_joined((1 + r + s) + (1 + r), description, unjoined);
}

TEST(JoinLimit, CountsFinishingStepsOfDestinations) {
    Description description;
    description.rows(Section::media_collating, "C\n")
        .rows(Section::media_stapling, "S\nT\n")
        .rows(Section::media_folding, "F\n")
        .rows(Section::media_cutting, "K\n")
        .rows(Section::media_destination, "D\t\tC\tS\tK\tF\tC\tS\tK\tF\n\t\t\t\t\t\t\tT\nE\n");
    Description unjoined;
    unjoined.rows(Section::media_destination, "D\t\tC\tS\tK\tF\tC\tS\tK\tF\n\t\t\t\t\t\t\tT\nE\n");
    expect_joined(4 + (1 + 4) + (1 + 6 + 6) + (1 + 5) + (1 + 4), description, unjoined);
}

TEST(JoinLimit, CountsLongTextsByTheirLength) {
    SourcesOfOneEntry description(2, 0);
    description.append(Section::media_source_entry, "\t\t\t\t\t" + std::string(31, 'x') + "\n");
    EXPECT_EQ(2U * (1 + 6 + 1 + 3), Joined(description, 1000).count);
    description.append(Section::media_source_entry, "\t\t\t\t\t" + std::string(32, 'x') + "\n");
    EXPECT_EQ(2U * (1 + 6 + 1 + 3 + 3 + 1), Joined(description, 1000).count);
    description.append(Section::media_source_entry, "\t\t\t\t\t" + std::string(2000, 'x') + "\n");
    EXPECT_EQ(2U * (1 + 6 + 1 + 3 + 3 + 1 + 3 + 62), Joined(description, 1000).count);
}

TEST(JoinLimit, IsTwoMillionNodesAndProperties) {
    EXPECT_EQ(2'000'000U, pm::PdtLoad().join_limit);
    const SourcesOfOneEntry description(1200, 1200);
    OpenObject object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NOT_READ, u"PM_PDTFile::load()",
                             description.string_file());
    EXPECT_GT(items_below(object.root()), 1'990'000U);
    EXPECT_LT(items_below(object.root()), 2'010'000U);
}

TEST(JoinLimit, StreamHasNoFileToTell) {
    pm::PdtLoad load;
    load.join_limit = 5;
    load.count_joined(5);
    expect_thrown<PM_Severe>([&] { load.count_joined(1); }, PM_ERR_NOT_READ, u"PM_PDTFile::load()", u"");
}

// --- The steps

TEST(LoadSteps, AreTheTablesInTheirOrder) {
    std::vector<Section> sections;
    std::vector<std::size_t> without_table;
    for (const LoadStep& step : pm::load_steps()) {
        if (step.convert != nullptr) {
            sections.push_back(step.section);
        } else {
            without_table.push_back(sections.size());
        }
    }
    EXPECT_EQ(
        std::vector<Section>(std::begin(pm::test::loaded_sections), std::end(pm::test::loaded_sections)),
        sections);
    // The join behind the media types, the user flags at the end.
    EXPECT_EQ((std::vector<std::size_t>{14, 21}), without_table);
}

TEST(LoadSteps, StepReadsItsTableAlone) {
    Description description;
    description.rows(Section::media_size, "A\n").rows(Section::media_type, "B\n");
    OpenObject object;
    pm::test::DescriptionLoad(description).load_section_into(object, Section::media_type);
    EXPECT_EQ((pm::test::Items{"media\\type\\0\\name=\"B\"", "media\\type\\0\\caps_type=0",
                               "media\\type\\0\\localized_name=\"\""}),
              object.items(u""));
}

// --- The type of capabilities: 0 in every load, another number here to tell where it goes

// What one table writes below `path`, with 7 in place of 0.
pm::test::Items items_of_caps_type_7(const Description& description, Section section,
                                     std::u16string_view path) {
    pm::test::DescriptionLoad load(description);
    load.caps_type = 7;
    OpenObject object;
    load.load_section_into(object, section);
    return object.items(path);
}

TEST(CapsType, OfACustomCapabilityIsZeroAndOfItsValuesThatOfTheLoad) {
    Description description;
    description.rows(Section::custom_capability, "C\t\t\t\t\t\tPT_Long\tN\t5\n");
    const auto items = items_of_caps_type_7(description, Section::custom_capability, u"custom_name");
    EXPECT_TRUE(pm::test::has_item(items, "C\\custom_caps_type=0"));
    EXPECT_TRUE(pm::test::has_item(items, "C\\value_list\\0\\caps_type=7"));
}

TEST(CapsType, OfADitheringMethodIsZero) {
    Description description;
    description.rows(Section::dithering_method, "M\n");
    EXPECT_TRUE(pm::test::has_item(
        items_of_caps_type_7(description, Section::dithering_method, u"res_color_mem\\dithering_list"),
        "M\\caps_type=0"));
}

TEST(CapsType, OfAMethodItsProtocolsAndRatesIsThatOfTheLoad) {
    Description description;
    description.rows(Section::io_method, "RS232\t\tP\t\t\t\t\t\t\t\t\t\t\t300\n");
    const auto items = items_of_caps_type_7(description, Section::io_method, u"io\\method");
    for (const char* item :
         {"4\\caps_type=7", "4\\protocol\\0\\caps_type=7", "4\\baudrates\\0\\caps_type=7"}) {
        EXPECT_TRUE(pm::test::has_item(items, item)) << item;
    }
}

TEST(CapsType, OfAMediaDescriptionIsThatOfTheLoad) {
    Description description;
    description.rows(Section::media_description, "A\n");
    EXPECT_TRUE(pm::test::has_item(
        items_of_caps_type_7(description, Section::media_description, u"media\\description"),
        "0\\caps_type=7"));
}

TEST(CapsType, OfASourceItsEntriesAndSizesIsThatOfTheLoad) {
    Description description;
    description.rows(Section::media_source_entry, "E\t\t\t\t\tS1\n")
        .rows(Section::media_source, "S\t\t\tE\n");
    pm::test::DescriptionLoad load(description);
    load.caps_type = 7;
    OpenObject object;
    load.load_section_into(object, Section::media_source_entry);
    load.load_section_into(object, Section::media_source);
    const auto items = object.items(u"media\\source");
    for (const char* item :
         {"S\\caps_type=7", "S\\entry\\E\\caps_type=7", "S\\entry\\E\\size_names\\0\\caps_type=7"}) {
        EXPECT_TRUE(pm::test::has_item(items, item)) << item;
    }
}

} // namespace

#include "pdt/description.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>

// Joins multiply: each source has a copy of each entry that it names, each colour mode of each resolution.

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::expect_thrown;
using pm::test::OpenObject;

constexpr std::uint64_t most_joined = 2'000'000;

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

std::string lines(std::size_t count, const std::string& line) {
    std::string text;
    for (std::size_t each = 0; each < count; ++each) {
        text += line;
    }
    return text;
}

std::string named_lines(std::size_t count, const std::string& line) {
    std::string text;
    for (std::size_t each = 0; each < count; ++each) {
        text += std::to_string(each) + line;
    }
    return text;
}

// Each source has one entry, of as many sizes as told. Below a source the join makes the node of the entries,
// that of the entry and its 5 properties, that of the sizes, and a node and two properties for each size.
struct SourcesOfOneEntry : Description {
    SourcesOfOneEntry(std::size_t sources, std::size_t sizes) {
        rows(Section::media_source_entry, "E\n" + lines(sizes, "\t\t\t\t\tS\n"));
        rows(Section::media_source, named_lines(sources, "\t\t\tE\n"));
    }
};

void expect_refused(const Description& description) {
    PM_Object object;
    expect_thrown<PM_Severe>([&] { description.load(object); }, PM_ERR_NOT_READ, u"PM_PDTFile::load()",
                             description.string_file());
}

TEST(JoinLimit, SourcesTimesSizesAboveItAreRefused) {
    expect_refused(SourcesOfOneEntry(1200, 1200));
}

TEST(JoinLimit, JoinsOfExactlyAsMuchAreWritten) {
    // 800 * (8 + 3 * 830) + 2 * (8 + 3 * 264)
    SourcesOfOneEntry description(800, 830);
    description
        .append(Section::media_source_entry, "F\n" + lines(264, "\t\t\t\t\tS\n"))
        .append(Section::media_source, "last\t\t\tF\nlast but one\t\t\tF\n");
    OpenObject object;
    description.load(object);
    OpenObject plain;
    SourcesOfOneEntry(0, 0).append(Section::media_source, named_lines(802, "\n")).load(plain);
    const std::uint64_t sources_alone = items_below(plain.root());
    EXPECT_EQ(sources_alone + most_joined, items_below(object.root()));

    description.append(Section::media_source_entry, lines(1, "\t\t\t\t\tS\n"));
    expect_refused(description);
}

TEST(JoinLimit, RefusedLoadKeepsNoMoreThanTheLimit) {
    const SourcesOfOneEntry description(1200, 1200);
    OpenObject object;
    EXPECT_THROW(description.load(object), PM_Severe);
    EXPECT_LT(items_below(object.root()), most_joined + 5'000);
}

TEST(JoinLimit, ModesTimesMemoryAreasAboveItAreRefused) {
    Description description;
    description.rows(Section::memory_area, "A\n")
        .rows(Section::resolution, "R\n" + lines(1000, "\t\t\t\t\t\t\t\t\tA\n"))
        .rows(Section::resolution_color_memory, named_lines(700, "\t\t\t\t\t\tR\n"));
    expect_refused(description);
}

TEST(JoinLimit, DestinationsCountToo) {
    // 330,000 entries of the limit go to sources; a stapling record of a list makes 6 more.
    SourcesOfOneEntry description(800, 830); // 1,998,400
    description.rows(Section::media_stapling, "S\n")
        .rows(Section::media_destination, named_lines(300, "\t\t\t\t\t\t\tS\n"));
    expect_refused(description);
    description.rows(Section::media_destination, named_lines(100, "\t\t\t\t\t\t\tS\n"));
    PM_Object object;
    EXPECT_NO_THROW(description.load(object));
}

TEST(JoinLimit, StreamHasNoFileToTell) {
    const SourcesOfOneEntry description(1200, 1200);
    const pm::test::CurrentFolder here(description.folder().path());
    std::stringstream strings;
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(strings, PM_Object::FILE_PDT, u"\\"); }, PM_ERR_NOT_READ,
                             u"PM_PDTFile::load()", u"");
}

} // namespace

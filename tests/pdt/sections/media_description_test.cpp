#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::Items;
using Marks = std::vector<int>;

struct Read {
    explicit Read(std::string_view rows) {
        description.rows(Section::media_description, rows);
        pdt.load_into(object);
    }
    Items areas() const { return object.items(u"media\\description"); }
    Items sizes() const { return object.items(u"media\\size"); }

    Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

// A row with texts in some columns.
std::string row(std::initializer_list<std::pair<char, const char*>> cells) {
    std::string text = "A";
    char column = 'A';
    for (const auto& [place, cell] : cells) {
        text.append(static_cast<std::size_t>(place - column), '\t');
        text += cell;
        column = place;
    }
    return text + '\n';
}

TEST(MediaDescription, NameAloneGivesTwoItems) {
    const Read read("A4 area\n");
    EXPECT_EQ((Items{"0\\caps_type=0", "0\\name=\"A4_area\""}), read.areas());
    EXPECT_EQ(Items{}, read.sizes());
    EXPECT_EQ(Marks{9}, read.pdt.media_marks());
}

TEST(MediaDescription, AllCellsInOrder) {
    const Read read(row({{'B', "text"},
                         {'C', "ISO"},
                         {'D', "mm"},
                         {'E', "D"},
                         {'F', "1"},
                         {'G', "2"},
                         {'H', "0.9"},
                         {'I', "3"},
                         {'J', "4"},
                         {'K', "5"},
                         {'L', "6"},
                         {'M', "297"},
                         {'N', "210.5"},
                         {'O', "7"},
                         {'P', "8"},
                         {'Q', "290"},
                         {'R', "200"}}));
    const Items expected = {
        "0\\caps_type=0",
        "0\\name=\"A\"",
        "0\\dimensional=true",
        "0\\printable_area=0.9",
        "0\\media_bounds_urx=297.0",
        "0\\media_bounds_ury=210.5",
        "0\\printable_bounds_llx=7.0",
        "0\\printable_bounds_lly=8.0",
        "0\\printable_bounds_urx=290.0",
        "0\\printable_bounds_ury=200.0",
    };
    EXPECT_EQ(Items{"0\\media_group=4"}, read.sizes());
    EXPECT_EQ(expected, read.areas());
    EXPECT_EQ((Marks{9, 14, 15, 16, 17, 33}), read.pdt.media_marks());
}

TEST(MediaDescription, EachCellHasItsMark) {
    EXPECT_EQ((Marks{9, 33}), Read(row({{'C', "x"}})).pdt.media_marks());
    EXPECT_EQ((Marks{9, 17}), Read(row({{'E', "x"}})).pdt.media_marks());
    EXPECT_EQ((Marks{9, 16}), Read(row({{'H', "x"}})).pdt.media_marks());
    EXPECT_EQ((Marks{9, 14}), Read(row({{'M', "x"}})).pdt.media_marks());
    EXPECT_EQ((Marks{9, 15}), Read(row({{'O', "x"}})).pdt.media_marks());
    for (const char column : {'B', 'D', 'F', 'G', 'I', 'J', 'K', 'L', 'N', 'P', 'Q', 'R'}) {
        const Read read(row({{column, "1"}}));
        EXPECT_EQ(Marks{9}, read.pdt.media_marks()) << column;
        EXPECT_EQ(2U, read.areas().size()) << column;
    }
}

TEST(MediaDescription, UnknownGroupIsZero) {
    EXPECT_EQ(Items{"0\\media_group=0"}, Read(row({{'C', "iso"}})).sizes());
}

TEST(MediaDescription, DimensionalUnlessItBeginsWithU) {
    EXPECT_EQ("0\\dimensional=false", Read(row({{'E', "U"}})).areas().back());
    EXPECT_EQ("0\\dimensional=true", Read(row({{'E', "u"}})).areas().back());
}

TEST(MediaDescription, EmptyUpperRightYIsZero) {
    EXPECT_EQ("0\\media_bounds_ury=0.0", Read(row({{'M', "5"}})).areas().back());
}

TEST(MediaDescription, PrintableBoundsFollowTheFirst) {
    const Read read(row({{'O', "5"}}));
    EXPECT_EQ(
        (Items{"0\\caps_type=0", "0\\name=\"A\"", "0\\printable_bounds_llx=5.0",
               "0\\printable_bounds_lly=0.0", "0\\printable_bounds_urx=0.0", "0\\printable_bounds_ury=0.0"}),
        read.areas());
}

TEST(MediaDescription, RowsWithoutANameLeaveNoGap) {
    const Read read("A\n\n\t\tISO\nB\t\tARCH\n");
    EXPECT_EQ((Items{"0\\caps_type=0", "0\\name=\"A\"", "1\\caps_type=0", "1\\name=\"B\""}), read.areas());
    EXPECT_EQ(Items{"1\\media_group=2"}, read.sizes());
}

TEST(MediaDescription, HeadingsOnlyMarkNothing) {
    const Read read("");
    EXPECT_EQ(Items{}, read.areas());
    EXPECT_EQ(Marks{}, read.pdt.media_marks());
}

// The text would be carried over to the section that is read next.
TEST(MediaDescription, LooksNoTextUp) {
    Description description;
    description.strings("DRFX_MEDIA_DESCRIPTION_B3 \"area\"\n")
        .rows(Section::media_description, "A\n")
        .rows(Section::media_destination, "D\n");
    EXPECT_EQ((Items{"D\\localized_name=\"\"", "D\\caps_type=0"}),
              pm::test::items_of(description, u"media\\destination"));
}

} // namespace

#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::has_item;
using pm::test::Items;
using Marks = std::vector<int>;

struct Read {
    Read(Section section, std::string_view rows, std::string_view strings = "") {
        description.rows(section, rows).strings(strings);
        pdt.load_into(object);
    }
    pm::test::Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

struct Sizes : Read {
    explicit Sizes(std::string_view rows, std::string_view strings = "")
        : Read(Section::media_size, rows, strings) {}
    Items items() const { return object.items(u"media\\size"); }
    bool writes_landscape() const { return has_item(object.items(u"media"), "landscape=true"); }
};

struct Types : Read {
    explicit Types(std::string_view rows, std::string_view strings = "")
        : Read(Section::media_type, rows, strings) {}
    Items items() const { return object.items(u"media\\type"); }
};

// --- Sizes

TEST(MediaSize, HeadingsOnlyGiveNothing) {
    const Sizes sizes("");
    EXPECT_EQ(Items{}, sizes.items());
    EXPECT_EQ(Marks{}, sizes.pdt.media_marks());
}

TEST(MediaSize, AllCellsInOrder) {
    const Sizes sizes("ISO A4 landscape\tISO A4\tnot read\tLong\tISO A4 area\n",
                      "DRFX_MEDIA_SIZE_C3 \"A4\"\nDRFX_MEDIA_SIZE_B3 \"other column\"\n");
    const Items expected = {
        "0\\caps_type=0",
        "0\\name=\"ISO_A4_landscape\"",
        "0\\localized_name=\"A4\"",
        "0\\landscape_mode=true",
        "0\\media_description_name=\"ISO_A4_area\"",
    };
    EXPECT_EQ(expected, sizes.items());
    EXPECT_EQ((Marks{5, 6, 12}), sizes.pdt.media_marks());
}

TEST(MediaSize, NameAloneGivesAnEmptyDescriptionName) {
    const Sizes sizes("A\n");
    const Items expected = {"0\\caps_type=0", "0\\name=\"A\"", "0\\localized_name=\"\"",
                            "0\\media_description_name=\"\""};
    EXPECT_EQ(expected, sizes.items());
    EXPECT_EQ((Marks{5, 6}), sizes.pdt.media_marks());
}

TEST(MediaSize, PortraitIsFalse) {
    const Sizes sizes("A\t\t\tP\n");
    EXPECT_TRUE(has_item(sizes.items(), "0\\landscape_mode=false"));
    EXPECT_EQ((Marks{5, 6, 12}), sizes.pdt.media_marks());
    EXPECT_TRUE(sizes.pdt.portrait_seen);
    EXPECT_FALSE(sizes.pdt.landscape_seen);
    EXPECT_FALSE(sizes.writes_landscape());
}

TEST(MediaSize, LandscapeAloneWritesNoLandscapeItem) {
    const Sizes sizes("A\t\t\tL\n");
    EXPECT_TRUE(sizes.pdt.landscape_seen);
    EXPECT_FALSE(sizes.pdt.portrait_seen);
    EXPECT_FALSE(sizes.writes_landscape());
}

TEST(MediaSize, BothOrientationsWriteTheLandscapeItem) {
    EXPECT_TRUE(Sizes("A\t\t\tL\nB\t\t\tP\n").writes_landscape());
    EXPECT_TRUE(Sizes("A\t\t\tPortrait\nB\t\t\tLandscape\n").writes_landscape());
}

TEST(MediaSize, OtherOrientationsAreNeither) {
    for (const char* text : {"l", "p", "X", " L"}) {
        const Sizes sizes(std::string("A\t\t\t") + text + "\n");
        EXPECT_TRUE(has_item(sizes.items(), "0\\landscape_mode=false")) << text;
        EXPECT_EQ((Marks{5, 6, 12}), sizes.pdt.media_marks()) << text;
        EXPECT_FALSE(sizes.pdt.landscape_seen) << text;
        EXPECT_FALSE(sizes.pdt.portrait_seen) << text;
    }
}

TEST(MediaSize, OrientationOfARowWithoutANameDoesNotCount) {
    const Sizes sizes("\t\t\tL\tarea\nA\t\t\tP\n");
    EXPECT_FALSE(sizes.pdt.landscape_seen);
    EXPECT_EQ(5U, sizes.items().size());
}

TEST(MediaSize, BlankRowMovesTheKeyButNotTheIndex) {
    const Sizes sizes("A\n\nB\n", "DRFX_MEDIA_SIZE_C3 \"first\"\n"
                                  "DRFX_MEDIA_SIZE_C4 \"blank\"\n"
                                  "DRFX_MEDIA_SIZE_C5 \"third\"\n");
    EXPECT_TRUE(has_item(sizes.items(), "0\\localized_name=\"first\""));
    EXPECT_TRUE(has_item(sizes.items(), "1\\localized_name=\"third\""));
    EXPECT_EQ(8U, sizes.items().size());
}

TEST(MediaSize, MissingKeyTakesTheTextBefore) {
    const Sizes sizes("A\nB\n", "DRFX_MEDIA_SIZE_C3 \"first\"\n");
    EXPECT_TRUE(has_item(sizes.items(), "1\\localized_name=\"first\""));
}

TEST(MediaSize, TwoQuotesAreAnEmptyName) {
    const Sizes sizes("\"\"\nB\n");
    EXPECT_TRUE(has_item(sizes.items(), "0\\name=\"\""));
    EXPECT_TRUE(has_item(sizes.items(), "1\\name=\"B\""));
}

TEST(MediaSize, BlanksAloneAreAnEmptyName) {
    EXPECT_TRUE(has_item(Sizes("  \n").items(), "0\\name=\"\""));
}

TEST(MediaSize, DescriptionOfTheSameIndexAddsItsGroupToTheSize) {
    pm::test::Description description;
    description.rows(Section::media_size, "A\n").rows(Section::media_description, "D\t\tISO\nE\t\tARCH\n");
    const Items expected = {"0\\media_group=4",
                            "0\\caps_type=0",
                            "0\\name=\"A\"",
                            "0\\localized_name=\"\"",
                            "0\\media_description_name=\"\"",
                            "1\\media_group=2"};
    EXPECT_EQ(expected, pm::test::items_of(description, u"media\\size"));
}

TEST(MediaSize, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(4U, Sizes("A\nB").items().size());
}

// --- Types

TEST(MediaType, HeadingsOnlyGiveNothing) {
    const Types types("");
    EXPECT_EQ(Items{}, types.items());
    EXPECT_EQ(Marks{}, types.pdt.media_marks());
}

TEST(MediaType, AllCellsInOrder) {
    const Types types("Heavy Bond\tnot read\t600.1\t1200\t15 s\n",
                      "DRFX_MEDIA_TYPE_B3 \"Bond 120\"\nDRFX_MEDIA_TYPE_C3 \"other column\"\n");
    const Items expected = {
        "0\\name=\"Heavy_Bond\"",         "0\\caps_type=0",
        "0\\localized_name=\"Bond 120\"", "0\\max_resolution_x=600.1",
        "0\\max_resolution_y=1200.0",     "0\\drying_time=15",
    };
    EXPECT_EQ(expected, types.items());
    EXPECT_EQ((Marks{10, 11, 30, 31}), types.pdt.media_marks());
}

TEST(MediaType, NameAloneGivesThreeItems) {
    const Types types("A\n");
    EXPECT_EQ((Items{"0\\name=\"A\"", "0\\caps_type=0", "0\\localized_name=\"\""}), types.items());
    EXPECT_EQ((Marks{10, 11}), types.pdt.media_marks());
}

TEST(MediaType, ResolutionInXAloneGivesBoth) {
    const Types types("A\t\t600\n");
    EXPECT_TRUE(has_item(types.items(), "0\\max_resolution_x=600.0"));
    EXPECT_TRUE(has_item(types.items(), "0\\max_resolution_y=0.0"));
    EXPECT_EQ((Marks{10, 11, 31}), types.pdt.media_marks());
}

TEST(MediaType, ResolutionInYAloneGivesNone) {
    const Types types("A\t\t\t600\n");
    EXPECT_EQ(3U, types.items().size());
    EXPECT_EQ((Marks{10, 11}), types.pdt.media_marks());
}

TEST(MediaType, DryingTimeAlone) {
    const Types types("A\t\t\t\tlong\n");
    EXPECT_TRUE(has_item(types.items(), "0\\drying_time=0"));
    EXPECT_EQ((Marks{10, 11, 30}), types.pdt.media_marks());
}

TEST(MediaType, TwoQuotesAreNoName) {
    const Types types("\"\"\t\t600\t600\t1\nB\n");
    EXPECT_EQ((Items{"0\\name=\"B\"", "0\\caps_type=0", "0\\localized_name=\"\""}), types.items());
    EXPECT_EQ((Marks{10, 11}), types.pdt.media_marks());
}

TEST(MediaType, BlankRowMovesTheKeyButNotTheIndex) {
    const Types types("A\n\nB\n", "DRFX_MEDIA_TYPE_B3 \"first\"\nDRFX_MEDIA_TYPE_B5 \"third\"\n");
    EXPECT_TRUE(has_item(types.items(), "1\\localized_name=\"third\""));
    EXPECT_EQ(6U, types.items().size());
}

TEST(MediaType, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(3U, Types("A\nB").items().size());
}

TEST(MediaType, ResolutionsAreNotRounded) {
    const Types types("A\t\t0.1\t0.2\n");
    EXPECT_TRUE(has_item(types.items(), "0\\max_resolution_x=0.1"));
    EXPECT_TRUE(has_item(types.items(), "0\\max_resolution_y=0.2"));
}

} // namespace

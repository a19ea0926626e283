#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::has_item;
using pm::test::Items;
using Marks = std::vector<int>;

struct Read {
    explicit Read(pm::test::Description& description) : pdt(description) { pdt.load_into(object); }
    Items items() const { return object.items(u"media\\destination"); }
    pm::test::DescriptionLoad pdt;
    pm::test::OpenObject object;
};

// --- Staples

struct Staples {
    explicit Staples(std::string_view rows, std::string_view strings = "") {
        description.rows(Section::media_stapling, rows).strings(strings);
        pdt.load_into(object);
    }
    const UC_Media_Stapling& first() const { return *pdt.stapling.head(); }

    pm::test::Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

TEST(MediaStapling, HeadingsOnlyGiveNoRecord) {
    EXPECT_EQ(0, Staples("").pdt.stapling.count());
}

TEST(MediaStapling, BlankRowGivesAnEmptyRecord) {
    const Staples staples("\n");
    ASSERT_EQ(1, staples.pdt.stapling.count());
    EXPECT_EQ(-1, staples.first().name.length());
    EXPECT_EQ(0, staples.first().location);
    EXPECT_EQ(0, staples.first().when);
    EXPECT_EQ(0, staples.first().orientation);
}

TEST(MediaStapling, NamedRowFillsTheRecord) {
    const Staples staples("Upper Left\tx\tPortraitUL\tEndofset\t45 degrees\n",
                          "DRFX_MEDIA_STAPLING_B3 \"corner\"\n");
    ASSERT_EQ(1, staples.pdt.stapling.count());
    EXPECT_EQ(std::u16string(u"Upper_Left"), staples.first().name.text());
    EXPECT_EQ(std::u16string(u"corner"), staples.first().localized_name.text());
    EXPECT_EQ(1, staples.first().location);
    EXPECT_EQ(2, staples.first().when);
    EXPECT_EQ(45, staples.first().orientation);
}

TEST(MediaStapling, EachLocationHasItsCode) {
    const std::pair<const char*, int> locations[] = {
        {"PortraitUL", 1},  {"PortraitUR", 2},      {"PortraitSaddle", 3}, {"LandscapeUL", 4},
        {"LandscapeUR", 5}, {"LandscapeSaddle", 0}, {"portraitul", 0},     {"", 0},
    };
    for (const auto& [text, code] : locations) {
        EXPECT_EQ(code, Staples(std::string("A\t\t") + text + "\n").first().location) << text;
    }
}

TEST(MediaStapling, EachTimeHasItsCode) {
    const std::pair<const char*, int> times[] = {{"None", 0},      {"Endofjob", 1}, {"Endofset", 2},
                                                 {"Endofpage", 3}, {"Later", -1},   {"", -1}};
    for (const auto& [text, code] : times) {
        EXPECT_EQ(code, Staples(std::string("A\t\t\t") + text + "\n").first().when) << text;
    }
}

TEST(MediaStapling, BlankFirstRowGivesAnEmptyRecordInFront) {
    const Staples staples("\nA\n\nB\n");
    ASSERT_EQ(3, staples.pdt.stapling.count());
    EXPECT_EQ(-1, staples.first().name.length());
    EXPECT_EQ(std::u16string(u"B"), staples.pdt.stapling.tail()->name.text());
}

TEST(MediaStapling, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(1, Staples("A\nB").pdt.stapling.count());
}

TEST(MediaStapling, WritesNothingAndMarksNothing) {
    const Staples staples("A\t\tPortraitUL\tNone\t1\n");
    EXPECT_EQ(Marks{}, staples.pdt.media_marks());
    EXPECT_EQ(pm::test::items_of(pm::test::Description(), u"media"), staples.object.items(u"media"));
}

TEST(MediaStapling, NameThatIsEmptyWhenCutIsPassedOver) {
    const Staples staples(
        "A\t\tPortraitUL\tEndofjob\t1\n\"\"\t\tPortraitUR\tEndofset\t2\n  \t\tLandscapeUL\tNone\t3\n");
    ASSERT_EQ(1, staples.pdt.stapling.count());
    EXPECT_EQ(std::u16string(u"A"), staples.first().name.text());
    EXPECT_EQ(1, staples.first().location);
    EXPECT_EQ(1, staples.first().when);
    EXPECT_EQ(1, staples.first().orientation);
}

// --- The join

// A description with a record of each finishing kind.
class Finishing : public pm::test::Description {
public:
    Finishing() {
        rows(Section::media_collating, "C1\t\tRegular\n");
        rows(Section::media_stapling, "S1\t\tPortraitUR\tEndofjob\t90\n");
        rows(Section::media_folding, "F1\t\tZfold\tEndofset\n");
        rows(Section::media_cutting, "K1\t\tEndofpage\n");
    }
    Finishing& destinations(std::string_view text) {
        rows(Section::media_destination, text);
        return *this;
    }
};

Items joined(std::string_view destinations) {
    return Read(Finishing().destinations(destinations)).items();
}
Marks marks(std::string_view destinations) {
    return Read(Finishing().destinations(destinations)).pdt.media_marks();
}

TEST(MediaDestination, WithoutFinishingHasTwoItems) {
    EXPECT_EQ((Items{"Catch_Basket\\localized_name=\"\"", "Catch_Basket\\caps_type=0"}),
              joined("Catch Basket\n"));
    EXPECT_EQ((Marks{7, 8}), marks("Catch Basket\n"));
}

TEST(MediaDestination, EverythingInOrder) {
    Finishing description;
    description.destinations("D\tx\tC1\tS1\tK1\tF1\tC1\tS1\tK1\tF1\n")
        .strings("DRFX_MEDIA_DESTINATION_B3 \"destination\"\nDRFX_MEDIA_COLLATING_B3 \"collating\"\n"
                 "DRFX_MEDIA_STAPLING_B3 \"stapling\"\nDRFX_MEDIA_FOLDING_B3 \"folding\"\n"
                 "DRFX_MEDIA_CUTTING_B3 \"cutting\"\n");
    const Read read(description);
    const Items expected = {
        "D\\localized_name=\"destination\"",
        "D\\caps_type=0",
        "D\\default_collating=\"C1\"",
        "D\\default_stapling=\"S1\"",
        "D\\default_folding=\"F1\"",
        "D\\default_cutting=\"K1\"",
        "D\\collating\\C1\\caps_type=0",
        "D\\collating\\C1\\localized_name=\"collating\"",
        "D\\collating\\C1\\collating_type=1",
        "D\\stapling\\S1\\caps_type=0",
        "D\\stapling\\S1\\localized_name=\"stapling\"",
        "D\\stapling\\S1\\location=2",
        "D\\stapling\\S1\\when=1",
        "D\\stapling\\S1\\orientation=90",
        "D\\folding\\F1\\caps_type=0",
        "D\\folding\\F1\\localized_name=\"folding\"",
        "D\\folding\\F1\\folding_type=1",
        "D\\folding\\F1\\when=2",
        "D\\cutting\\K1\\caps_type=0",
        "D\\cutting\\K1\\localized_name=\"cutting\"",
        "D\\cutting\\K1\\when=3",
    };
    EXPECT_EQ(expected, read.items());
    EXPECT_EQ((Marks{7, 8, 18, 19, 20, 21, 35, 36, 37}), read.pdt.media_marks());
}

TEST(MediaDestination, EachDefaultHasItsMark) {
    EXPECT_EQ((Marks{7, 8, 19}), marks("D\t\tC1\n"));
    EXPECT_EQ((Marks{7, 8, 18}), marks("D\t\t\tS1\n"));
    EXPECT_EQ((Marks{7, 8, 21}), marks("D\t\t\t\tK1\n"));
    EXPECT_EQ((Marks{7, 8, 20}), marks("D\t\t\t\t\tF1\n"));
}

TEST(MediaDestination, EachListButCuttingHasItsMark) {
    EXPECT_EQ((Marks{7, 8, 36}), marks("D\t\t\t\t\t\tC1\n"));
    EXPECT_EQ((Marks{7, 8, 35}), marks("D\t\t\t\t\t\t\tS1\n"));
    EXPECT_EQ((Marks{7, 8}), marks("D\t\t\t\t\t\t\t\tK1\n"));
    EXPECT_EQ((Marks{7, 8, 37}), marks("D\t\t\t\t\t\t\t\t\tF1\n"));
    EXPECT_TRUE(has_item(joined("D\t\t\t\t\t\t\t\tK1\n"), "D\\cutting\\K1\\when=3"));
}

TEST(MediaDestination, DefaultNeedNotStandInTheList) {
    const Items expected = {"D\\localized_name=\"\"", "D\\caps_type=0", "D\\default_stapling=\"S1\""};
    EXPECT_EQ(expected, joined("D\t\t\tS1\n"));
}

TEST(MediaDestination, UnknownNamesAreDropped) {
    const Items expected = {"D\\localized_name=\"\"", "D\\caps_type=0"};
    EXPECT_EQ(expected, joined("D\t\tx\tx\tx\tx\tx\tx\tx\tx\n"));
    EXPECT_EQ((Marks{7, 8}), marks("D\t\tx\tx\tx\tx\tx\tx\tx\tx\n"));
}

TEST(MediaDestination, NameThatDiffersInCaseIsUnknown) {
    EXPECT_EQ(2U, joined("D\t\tc1\n").size());
}

TEST(MediaDestination, DefaultThatFindsTheEmptyRecordIsNotWritten) {
    Finishing description;
    description.destinations("D\n").rows(Section::media_collating, "\nC1\n");
    const Read read(description);
    EXPECT_EQ((Items{"D\\localized_name=\"\"", "D\\caps_type=0"}), read.items());
    EXPECT_EQ((Marks{7, 8}), read.pdt.media_marks());
}

TEST(MediaDestination, WithoutANameIsWrittenBelowTheBranchItself) {
    EXPECT_EQ((Items{"localized_name=\"\"", "caps_type=0"}), joined("\n"));
    const Items expected = {"localized_name=\"\"",
                            "caps_type=0",
                            "cutting\\K1\\caps_type=0",
                            "cutting\\K1\\localized_name=\"\"",
                            "cutting\\K1\\when=3",
                            "D\\localized_name=\"\"",
                            "D\\caps_type=0"};
    EXPECT_EQ(expected, joined("\t\t\t\t\t\t\t\tK1\nD\n"));
}

TEST(MediaDestination, ListCellOfTwoQuotesFindsTheEmptyRecord) {
    Finishing description;
    description.destinations("D\t\t\"\"\t\"\"\t\"\"\t\"\"\t\"\"\t\"\"\t\"\"\t\"\"\n")
        .rows(Section::media_collating, "\nC1\n")
        .rows(Section::media_stapling, "\nS1\n")
        .rows(Section::media_folding, "\nF1\n")
        .rows(Section::media_cutting, "\nK1\n");
    const Read read(description);
    const Items expected = {
        "D\\localized_name=\"\"",
        "D\\caps_type=0",
        "D\\collating\\caps_type=0",
        "D\\collating\\localized_name=\"\"",
        "D\\collating\\collating_type=0",
        "D\\stapling\\caps_type=0",
        "D\\stapling\\localized_name=\"\"",
        "D\\stapling\\location=0",
        "D\\stapling\\when=0",
        "D\\stapling\\orientation=0",
        "D\\folding\\caps_type=0",
        "D\\folding\\localized_name=\"\"",
        "D\\folding\\folding_type=0",
        "D\\folding\\when=0",
        "D\\cutting\\caps_type=0",
        "D\\cutting\\localized_name=\"\"",
        "D\\cutting\\when=0",
    };
    EXPECT_EQ(expected, read.items());
    EXPECT_EQ((Marks{7, 8, 35, 36, 37}), read.pdt.media_marks());
}

TEST(MediaDestination, UnknownTextsGiveTheirNumbers) {
    Finishing description;
    description.destinations("D\t\t\t\t\t\tC\tS\tK\tF\n")
        .rows(Section::media_collating, "C\t\tx\n")
        .rows(Section::media_stapling, "S\t\tLandscapeSaddle\tx\tx\n")
        .rows(Section::media_folding, "F\t\tx\tx\n")
        .rows(Section::media_cutting, "K\t\tx\n");
    const Items items = Read(description).items();
    for (const char* item :
         {"D\\collating\\C\\collating_type=65535", "D\\stapling\\S\\location=0", "D\\stapling\\S\\when=-1",
          "D\\stapling\\S\\orientation=0", "D\\folding\\F\\folding_type=0", "D\\folding\\F\\when=0",
          "D\\cutting\\K\\when=0"}) {
        EXPECT_TRUE(has_item(items, item)) << item;
    }
}

TEST(MediaDestination, ListsFollowTheOrderOfTheirRows) {
    Finishing description;
    description.destinations("D\t\t\t\t\t\t\t\tK2\n\t\t\t\t\t\t\t\tK1\n")
        .rows(Section::media_cutting, "K1\nK2\n");
    const Items items = Read(description).items();
    ASSERT_EQ(8U, items.size());
    EXPECT_EQ("D\\cutting\\K2\\caps_type=0", items[2]);
    EXPECT_EQ("D\\cutting\\K1\\caps_type=0", items[5]);
}

TEST(MediaDestination, NameTwiceInAListGivesTheItemsOfOne) {
    EXPECT_EQ(joined("D\t\t\t\t\t\tC1\n"), joined("D\t\t\t\t\t\tC1\n\t\t\t\t\t\tC1\n"));
}

TEST(MediaDestination, FirstOfTwoRecordsOfANameIsTaken) {
    Finishing description;
    description.destinations("D\t\t\t\t\t\tC\n").rows(Section::media_collating, "C\t\tCustom\nC\t\tNone\n");
    EXPECT_TRUE(has_item(Read(description).items(), "D\\collating\\C\\collating_type=2"));
}

TEST(MediaDestination, EachDestinationHasListsOfItsOwn) {
    const Items expected = {"D\\localized_name=\"\"",
                            "D\\caps_type=0",
                            "D\\cutting\\K1\\caps_type=0",
                            "D\\cutting\\K1\\localized_name=\"\"",
                            "D\\cutting\\K1\\when=3",
                            "E\\localized_name=\"\"",
                            "E\\caps_type=0"};
    EXPECT_EQ(expected, joined("D\t\t\t\t\t\t\t\tK1\nE\n"));
}

TEST(MediaDestination, StaplingIsReadBehindTheDestinations) {
    // The text that a staple without one of its own takes is that of a section read before it.
    Finishing description;
    description.destinations("D\t\t\t\t\t\t\tS1\n").strings("DRFX_MEDIA_SOURCE_B3 \"source\"\n");
    description.rows(Section::media_source, "Roll\n");
    EXPECT_TRUE(has_item(Read(description).items(), "D\\stapling\\S1\\localized_name=\"source\""));
}

} // namespace

#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::DescriptionLoad;

// What a load leaves in the lists.
struct Read {
    Read(Section section, std::string_view rows, std::string_view strings = "") {
        description.rows(section, rows).strings(strings);
        pdt.load_into(object);
    }
    Description description;
    DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

template<class Record>
std::vector<std::string> names(const SimpleList<Record>& list) {
    std::vector<std::string> all;
    for (const Record& record : list)
        all.push_back(pm::test::to_narrow_name(record.name.text()));
    return all;
}
using Names = std::vector<std::string>;

// --- The rule that makes records of rows, shown with cuts

TEST(PendingRecord, HeadingsOnlyGiveNoRecord) {
    EXPECT_EQ(Names{}, names(Read(Section::media_cutting, "").pdt.cutting));
}

TEST(PendingRecord, OneRowGivesOneRecord) {
    EXPECT_EQ(Names{"A"}, names(Read(Section::media_cutting, "A\n").pdt.cutting));
}

TEST(PendingRecord, BlankFirstRowGivesAnEmptyRecordInFront) {
    EXPECT_EQ((Names{"", "A"}), names(Read(Section::media_cutting, "\nA\n").pdt.cutting));
}

TEST(PendingRecord, BlankRowBetweenNamesGivesNone) {
    EXPECT_EQ((Names{"A", "B"}), names(Read(Section::media_cutting, "A\n\n\nB\n\n").pdt.cutting));
}

TEST(PendingRecord, NameThatIsEmptyWhenCutIsNone) {
    EXPECT_EQ((Names{"A", "B"}), names(Read(Section::media_cutting, "A\n\"\"\n  \nB\n").pdt.cutting));
    EXPECT_EQ((Names{"", "A"}), names(Read(Section::media_cutting, "\"\"\nA\n").pdt.cutting));
}

TEST(PendingRecord, RowsWithoutANameGiveOneEmptyRecord) {
    Read read(Section::media_cutting, "\n\n\n");
    ASSERT_EQ(1, read.pdt.cutting.count());
    EXPECT_EQ(-1, read.pdt.cutting.head()->name.length());
    EXPECT_EQ(0, read.pdt.cutting.head()->when);
}

TEST(PendingRecord, EmptyRecordIsFoundByAnEmptyName) {
    Read read(Section::media_cutting, "\nA\n");
    EXPECT_EQ(read.pdt.cutting.head(), read.pdt.cutting.find_by_name(u""));
}

TEST(PendingRecord, NameThatDiffersInCaseIsNotFound) {
    Read read(Section::media_cutting, "Cut\n");
    EXPECT_EQ(nullptr, read.pdt.cutting.find_by_name(u"cut"));
    EXPECT_EQ(read.pdt.cutting.head(), read.pdt.cutting.find_by_name(u"Cut"));
}

TEST(PendingRecord, LastLineWithoutLineEndIsDropped) {
    EXPECT_EQ(Names{"A"}, names(Read(Section::media_cutting, "A\nB").pdt.cutting));
}

TEST(PendingRecord, NamesAreNormalized) {
    EXPECT_EQ(Names{"Cut_all_pages"},
              names(Read(Section::media_cutting, "\"Cut all pages\" \n").pdt.cutting));
}

TEST(PendingRecord, TextsAreLookedUpByTheLine) {
    Read read(Section::media_cutting, "A\n\nB\nC\n",
              "DRFX_MEDIA_CUTTING_B3 \"three\"\nDRFX_MEDIA_CUTTING_B5 \"five\"\n");
    std::vector<std::u16string> texts;
    for (const UC_Media_Cutting& record : read.pdt.cutting)
        texts.emplace_back(record.localized_name.text());
    EXPECT_EQ((std::vector<std::u16string>{u"three", u"five", u"five"}), texts);
}

// --- The three sections

TEST(Finishing, CollatingTypes) {
    Read read(Section::media_collating, "A\tx\tNone\nB\tx\tRegular\nC\tx\tCustom\nD\tx\tcustom\nE\n",
              "DRFX_MEDIA_COLLATING_B3 \"text\"\n");
    std::vector<int> types;
    for (const UC_Media_Collating& record : read.pdt.collating)
        types.push_back(record.collating_type);
    EXPECT_EQ((std::vector<int>{0, 1, 2, 0xFFFF, 0xFFFF}), types);
    EXPECT_EQ(std::u16string(u"text"), read.pdt.collating.head()->localized_name.text());
}

TEST(Finishing, CuttingTimes) {
    Read read(Section::media_cutting, "A\tx\tEndofjob\nB\tx\tEndofset\nC\tx\tEndofpage\nD\tx\tNone\nE\n");
    std::vector<int> times;
    for (const UC_Media_Cutting& record : read.pdt.cutting)
        times.push_back(record.when);
    EXPECT_EQ((std::vector<int>{1, 2, 3, 0, 0}), times);
}

TEST(Finishing, FoldingTypesAndTimes) {
    Read read(
        Section::media_folding,
        "A\tx\tLetter\tEndofjob\nB\tx\tZfold\tEndofset\nC\tx\tDoublegate\tEndofpage\nD\tx\tLeftgate\tNone\n"
        "E\tx\tRightgate\nF\tx\tSaddle\nG\tx\tXfold\nH\tx\tzfold\tEndofset\nI\n",
        "DRFX_MEDIA_FOLDING_B4 \"text\"\n");
    std::vector<std::pair<int, int>> steps;
    for (const UC_Media_Folding& record : read.pdt.folding) {
        steps.emplace_back(record.folding_type, record.when);
    }
    const std::vector<std::pair<int, int>> expected = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 0},
                                                       {5, 0}, {6, 0}, {0, 2}, {0, 0}};
    EXPECT_EQ(expected, steps);
    EXPECT_EQ(std::u16string(u"text"), read.pdt.folding.head()->next->localized_name.text());
}

TEST(Finishing, TwoRowsOfOneNameGiveTwoRecordsAndTheFirstIsFound) {
    Read read(Section::media_folding, "A\tx\tZfold\nA\tx\tXfold\n");
    EXPECT_EQ(2, read.pdt.folding.count());
    EXPECT_EQ(1, read.pdt.folding.find_by_name(u"A")->folding_type);
}

TEST(Finishing, WritesNothingAndMarksNothing) {
    Read read(Section::media_folding, "A\tx\tZfold\n");
    EXPECT_EQ(pm::test::items_of(pm::test::Description(), u"media"), read.object.items(u"media"));
}

} // namespace

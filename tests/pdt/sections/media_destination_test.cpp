#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using Marks = std::vector<int>;
using Names = std::vector<std::u16string>;

struct Read {
    explicit Read(std::string_view rows, std::string_view strings = "") {
        description.rows(Section::media_destination, rows).strings(strings);
        pdt.load_section_into(object, Section::media_destination);
    }
    const UC_Media_Destination& at(int index) const {
        const auto* record = pdt.destinations.head();
        while (index-- > 0)
            record = record->next;
        return *record;
    }

    Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

Names texts(const UC_Name_List& list) {
    Names all;
    for (const ZT_String& name : list)
        all.emplace_back(name.text());
    return all;
}

TEST(MediaDestination, NamedRowFillsTheRecord) {
    const Read read(
        "Catch Basket\tx\tSorted Sets\tUpper Left\tCut Pages\tZ Fold\tSets\tStaple it\tCut it\tFold it\n");
    ASSERT_EQ(1, read.pdt.destinations.count());
    const UC_Media_Destination& record = read.at(0);
    EXPECT_EQ(std::u16string(u"Catch_Basket"), record.name.text());
    EXPECT_EQ(std::u16string(u"Sorted_Sets"), record.default_collating.text());
    EXPECT_EQ(std::u16string(u"Upper_Left"), record.default_stapling.text());
    EXPECT_EQ(std::u16string(u"Cut_Pages"), record.default_cutting.text());
    EXPECT_EQ(std::u16string(u"Z_Fold"), record.default_folding.text());
    EXPECT_EQ(Names{u"Sets"}, texts(record.collating));
    EXPECT_EQ(Names{u"Staple_it"}, texts(record.stapling));
    EXPECT_EQ(Names{u"Cut_it"}, texts(record.cutting));
    EXPECT_EQ(Names{u"Fold_it"}, texts(record.folding));
    EXPECT_EQ((Marks{7, 8}), read.pdt.media_marks());
}

TEST(MediaDestination, RowsWithoutANameAddToTheLists) {
    const Read read("A\t\t\t\t\t\tc1\n\t\t\t\t\t\tc2\ts2\n\n\t\t\t\t\t\t\ts3\tu3\tf3\nB\t\t\t\t\t\tc9\n");
    ASSERT_EQ(2, read.pdt.destinations.count());
    EXPECT_EQ((Names{u"c1", u"c2"}), texts(read.at(0).collating));
    EXPECT_EQ((Names{u"s2", u"s3"}), texts(read.at(0).stapling));
    EXPECT_EQ(Names{u"u3"}, texts(read.at(0).cutting));
    EXPECT_EQ(Names{u"f3"}, texts(read.at(0).folding));
    EXPECT_EQ(Names{u"c9"}, texts(read.at(1).collating));
    EXPECT_EQ(Names{}, texts(read.at(1).stapling));
}

TEST(MediaDestination, ListCellOfTwoQuotesIsAnEmptyName) {
    EXPECT_EQ(Names{u""}, texts(Read("A\t\t\t\t\t\t\"\"\n").at(0).collating));
}

TEST(MediaDestination, DefaultsAreOverwrittenByEachName) {
    const Read read("A\t\tc\ts\tu\tf\nB\n");
    EXPECT_EQ(0, read.at(1).default_collating.length());
    EXPECT_EQ(0, read.at(1).default_stapling.length());
    EXPECT_EQ(0, read.at(1).default_cutting.length());
    EXPECT_EQ(0, read.at(1).default_folding.length());
}

TEST(MediaDestination, ListsInFrontOfTheFirstNameGoToAnEmptyRecord) {
    const Read read("\t\t\t\t\t\tc0\nA\t\t\t\t\t\tc1\n");
    ASSERT_EQ(2, read.pdt.destinations.count());
    EXPECT_EQ(-1, read.at(0).name.length());
    EXPECT_EQ(Names{u"c0"}, texts(read.at(0).collating));
    EXPECT_EQ(Names{u"c1"}, texts(read.at(1).collating));
}

TEST(MediaDestination, RowsWithoutAnyNameMarkNothing) {
    const Read read("\t\t\t\t\t\tc0\n");
    EXPECT_EQ(Marks{}, read.pdt.media_marks());
    EXPECT_EQ(1, read.pdt.destinations.count());
}

} // namespace

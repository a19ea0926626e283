#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::has_item;
using pm::test::Items;
using Marks = std::vector<int>;
using Names = std::vector<std::u16string>;

struct Read {
    explicit Read(std::string_view sources, std::string_view entries, std::string_view strings = "") {
        description.rows(Section::media_source, sources);
        description.rows(Section::media_source_entry, entries).strings(strings);
        pdt.load_into(object);
    }
    Items sources() const { return object.items(u"media\\source"); }
    const UC_Media_Source_Entry& entry(int index) const {
        const auto* record = pdt.source_entries.head();
        while (index-- > 0)
            record = record->next;
        return *record;
    }

    Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

// --- Entries

TEST(MediaSourceEntry, NamedRowFillsTheRecord) {
    const Read read("", "Roll 42 in\tx\tISO A0\t1067.1\t2500.7\tISO A1\n",
                    "DRFX_MEDIA_SOURCE_ENTRY_B3 \"roll\"\n");
    ASSERT_EQ(1, read.pdt.source_entries.count());
    const UC_Media_Source_Entry& record = read.entry(0);
    EXPECT_EQ(std::u16string(u"Roll_42_in"), record.name.text());
    EXPECT_EQ(std::u16string(u"roll"), record.localized_name.text());
    EXPECT_EQ(std::u16string(u"ISO_A0"), record.default_size.text());
    EXPECT_EQ(1067.1F, record.width);
    EXPECT_EQ(2500.7F, record.frame_height);
    ASSERT_EQ(1, record.size_names.count());
    EXPECT_EQ(std::u16string(u"ISO_A1"), record.size_names.head()->text());
    EXPECT_EQ((Marks{3, 48, 49}), read.pdt.media_marks());
}

TEST(MediaSourceEntry, WidthThatIsNoDecimalNumberIsZero) {
    EXPECT_EQ(0.0F, Read("", "A\t\t\tInfinite\t0x10\n").entry(0).width);
    EXPECT_EQ(0.0F, Read("", "A\t\t\tInfinite\t0x10\n").entry(0).frame_height);
}

TEST(MediaSourceEntry, WidthAndHeightHaveMarksOfTheirOwn) {
    EXPECT_EQ(Marks{3}, Read("", "A\n").pdt.media_marks());
    EXPECT_EQ((Marks{3, 48}), Read("", "A\t\t\t1\n").pdt.media_marks());
    EXPECT_EQ((Marks{3, 49}), Read("", "A\t\t\t\t1\n").pdt.media_marks());
    EXPECT_EQ(Marks{}, Read("", "\t\t\t1\t1\tS\n").pdt.media_marks());
}

TEST(MediaSourceEntry, WidthAndHeightGoOnToTheNextEntry) {
    const Read read("", "A\t\t\t5\t6\nB\nC\t\t\t7\n");
    EXPECT_EQ(5.0F, read.entry(1).width);
    EXPECT_EQ(6.0F, read.entry(1).frame_height);
    EXPECT_EQ(7.0F, read.entry(2).width);
    EXPECT_EQ(6.0F, read.entry(2).frame_height);
}

TEST(MediaSourceEntry, SizesOfARecordAreItsOwn) {
    const Read read("", "A\t\t\t\t\ts1\n\t\t\t\t\ts2\nB\n");
    EXPECT_EQ(2, read.entry(0).size_names.count());
    EXPECT_EQ(0, read.entry(1).size_names.count());
}

// --- Sources

TEST(MediaSource, TableWithHeadingsOnlyGivesNothing) {
    EXPECT_EQ(Items{}, Read("", "").sources());
}

TEST(MediaSource, SourceWithAnEntryWritesItsItemsInOrder) {
    const Read read("Roll 1\tx\tRollFeeder\tRoll A\tRoll B\n",
                    "Roll A\tx\tISO A0\t1067.1\t2500\tISO A0\n\t\t\t\t\tISO A1\n",
                    "DRFX_MEDIA_SOURCE_ENTRY_B3 \"entry\"\nDRFX_MEDIA_SOURCE_B3 \"source\"\n");
    const Items expected = {
        "Roll_1\\caps_type=0",
        "Roll_1\\localized_name=\"source\"",
        "Roll_1\\default_entry=\"Roll_B\"",
        "Roll_1\\feed=3",
        "Roll_1\\entry\\Roll_A\\default_size=\"ISO_A0\"",
        "Roll_1\\entry\\Roll_A\\width=1067.0999755859375",
        "Roll_1\\entry\\Roll_A\\frame_height=2500.0",
        "Roll_1\\entry\\Roll_A\\localized_name=\"entry\"",
        "Roll_1\\entry\\Roll_A\\caps_type=0",
        "Roll_1\\entry\\Roll_A\\size_names\\0\\name=\"ISO_A0\"",
        "Roll_1\\entry\\Roll_A\\size_names\\0\\caps_type=0",
        "Roll_1\\entry\\Roll_A\\size_names\\1\\name=\"ISO_A1\"",
        "Roll_1\\entry\\Roll_A\\size_names\\1\\caps_type=0",
    };
    EXPECT_EQ(expected, read.sources());
    EXPECT_EQ((Marks{1, 2, 3, 4, 32, 48, 49}), read.pdt.media_marks());
}

TEST(MediaSource, NameAloneGivesThreeItems) {
    const Read read("S\n", "");
    EXPECT_EQ((Items{"S\\caps_type=0", "S\\localized_name=\"\"", "S\\default_entry=\"\""}), read.sources());
    EXPECT_EQ((Marks{1, 2}), read.pdt.media_marks());
}

TEST(MediaSource, FeedKeywords) {
    EXPECT_EQ("S\\feed=0", Read("S\t\tNone\n", "").sources().back());
    EXPECT_EQ("S\\feed=1", Read("S\t\tManualSheet\n", "").sources().back());
    EXPECT_EQ("S\\feed=2", Read("S\t\tSheetFeeder\n", "").sources().back());
    EXPECT_EQ("S\\feed=3", Read("S\t\tRollFeeder\n", "").sources().back());
}

TEST(MediaSource, UnknownFeedWritesAndMarksNothing) {
    const Read read("S\t\trollfeeder\n", "");
    EXPECT_EQ(3U, read.sources().size());
    EXPECT_EQ((Marks{1, 2}), read.pdt.media_marks());
}

TEST(MediaSource, RowWithoutANameAddsAnEntryToTheSourceAbove) {
    const Read read("S\t\t\tA\n\t\t\tB\n", "A\nB\n");
    EXPECT_TRUE(has_item(read.sources(), "S\\entry\\A\\caps_type=0"));
    EXPECT_TRUE(has_item(read.sources(), "S\\entry\\B\\caps_type=0"));
}

TEST(MediaSource, EntryWithoutSizesHasNoSizeItems) {
    EXPECT_EQ("S\\entry\\A\\caps_type=0", Read("S\t\t\tA\n", "A\n").sources().back());
}

TEST(MediaSource, EntryIsCopiedToEachSource) {
    const Items items = Read("S\t\t\tA\nT\t\t\tA\n", "A\n").sources();
    EXPECT_TRUE(has_item(items, "S\\entry\\A\\caps_type=0"));
    EXPECT_TRUE(has_item(items, "T\\entry\\A\\caps_type=0"));
}

TEST(MediaSource, EntryWithoutARecordIsPassedOver) {
    const Read read("S\t\t\tA\n", "B\n");
    EXPECT_EQ(3U, read.sources().size());
    EXPECT_EQ((Marks{1, 2, 3}), read.pdt.media_marks());
}

TEST(MediaSource, EntryWithoutANameIsPassedOver) {
    const Read read("S\t\t\t\"\"\n", "\nA\n");
    EXPECT_EQ(3U, read.sources().size());
}

TEST(MediaSource, FirstRowWithoutANameWritesBelowTheBranchItself) {
    const Items expected = {
        "entry\\A\\default_size=\"\"",   "entry\\A\\width=0.0",   "entry\\A\\frame_height=0.0",
        "entry\\A\\localized_name=\"\"", "entry\\A\\caps_type=0",
    };
    EXPECT_EQ(expected, Read("\t\t\tA\n", "A\n").sources());
}

TEST(MediaSource, LinesWithoutAnEntryCountInKeys) {
    const Items items = Read("S\n\nT\t\t\tnone\nU\n", "", "DRFX_MEDIA_SOURCE_B6 \"six\"\n").sources();
    EXPECT_TRUE(has_item(items, "T\\localized_name=\"\""));
    EXPECT_TRUE(has_item(items, "U\\localized_name=\"six\""));
}

} // namespace

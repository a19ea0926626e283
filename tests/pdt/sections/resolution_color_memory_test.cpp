#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::has_item;
using pm::test::Items;
using Marks = std::vector<int>;

struct Read {
    Read(std::string_view areas, std::string_view resolutions, std::string_view modes,
         std::string_view strings = "") {
        description.rows(Section::memory_area, areas)
            .rows(Section::resolution, resolutions)
            .rows(Section::resolution_color_memory, modes)
            .strings(strings);
        pdt.load_into(object);
    }
    Marks marks() const { return pdt.color_marks(); }
    Items areas() const { return object.items(u"res_color_mem\\mem_area_list"); }
    Items modes() const { return object.items(u"res_color_mem\\rcm_list"); }
    // Below a resolution "R" of a mode "M".
    Items resolution() const { return object.items(u"res_color_mem\\rcm_list\\M\\resolution_list\\R"); }

    pm::test::Description description;
    pm::test::DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

// A resolution "R" by its cells from column C on, in a mode "M".
Read one_resolution(const std::string& cells, std::string_view areas = "") {
    return Read(areas, "R\t\t" + cells + "\n", "M\t\t\t\t\t\tR\n");
}

template<class Record>
const Record& record(const SimpleList<Record>& list, int index) {
    const auto* found = list.head();
    while (index-- > 0) {
        found = found->next;
    }
    return *found;
}

std::string name_of(const ZT_String& name) {
    return pm::test::to_narrow_name(name.text());
}
Items names(const UC_Name_List& list) {
    Items all;
    for (const ZT_String& name : list) {
        all.push_back(name_of(name));
    }
    return all;
}

// --- Memory areas

TEST(MemoryArea, HeadingsOnlyGiveNothing) {
    const Read read("", "", "");
    EXPECT_EQ(Items{}, read.areas());
    EXPECT_EQ(0, read.pdt.memory_areas.count());
    EXPECT_EQ(Marks{}, read.marks());
}

TEST(MemoryArea, AllCellsInOrder) {
    const Read read("Full memory\tx\t512 MB\t5000.75\n", "", "", "DRFX_MEMORY_AREA_B3 \"full\"\n");
    const Items expected = {"Full_memory\\caps_type=0", "Full_memory\\localized_name=\"full\"",
                            "Full_memory\\device_memory=512", "Full_memory\\printable_area=5000.75"};
    EXPECT_EQ(expected, read.areas());
    EXPECT_EQ(Marks{6}, read.marks());
    const UC_Memory_Area& area = record(read.pdt.memory_areas, 0);
    EXPECT_EQ("Full_memory", name_of(area.name));
    EXPECT_EQ("full", name_of(area.localized_name));
    EXPECT_EQ(512, area.device_memory);
    EXPECT_EQ(5000, area.printable_area);
}

TEST(MemoryArea, NameAloneHasNoPrintableArea) {
    const Read read("A\n", "", "");
    EXPECT_EQ((Items{"A\\caps_type=0", "A\\localized_name=\"\"", "A\\device_memory=0"}), read.areas());
    EXPECT_EQ(Marks{}, read.marks());
}

TEST(MemoryArea, PrintableAreaIsNotRounded) {
    EXPECT_TRUE(has_item(Read("A\t\t\t0.1\n", "", "").areas(), "A\\printable_area=0.1"));
}

TEST(MemoryArea, RowWithoutANameMarksAndWritesNothing) {
    const Read read("\t\t\t5\n", "", "");
    EXPECT_EQ(Items{}, read.areas());
    EXPECT_EQ(Marks{6}, read.marks());
    EXPECT_EQ(1, read.pdt.memory_areas.count());
}

TEST(MemoryArea, BlankFirstRowGivesAnEmptyRecordInFront) {
    const Read read("\nA\nB\n", "", "");
    ASSERT_EQ(3, read.pdt.memory_areas.count());
    EXPECT_EQ(-1, record(read.pdt.memory_areas, 0).name.length());
    EXPECT_EQ("A", name_of(record(read.pdt.memory_areas, 1).name));
}

TEST(MemoryArea, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(3U, Read("A\nB", "", "").areas().size());
}

TEST(MemoryArea, NameOfTwoQuotesIsNone) {
    const Read read("\"\"\t\t1\t5\n", "", "");
    EXPECT_EQ(Items{}, read.areas());
    EXPECT_EQ(Marks{6}, read.marks());
    ASSERT_EQ(1, read.pdt.memory_areas.count());
    EXPECT_EQ(-1, record(read.pdt.memory_areas, 0).name.length());
}

// --- Resolutions as records

TEST(Resolution, NamedRowFillsTheRecord) {
    const Read read("", "600 dpi\tx\t600.1\t601\t602\t603\t604\t605\tLine Art\tFull memory\tremark\n", "",
                    "DRFX_RESOLUTION_B3 \"fine\"\n");
    ASSERT_EQ(1, read.pdt.resolutions.count());
    const UC_Resolution& resolution = record(read.pdt.resolutions, 0);
    EXPECT_EQ("600_dpi", name_of(resolution.name));
    EXPECT_EQ("fine", name_of(resolution.localized_name));
    EXPECT_EQ(600.1F, resolution.physical_x);
    EXPECT_EQ(601.0F, resolution.physical_y);
    EXPECT_EQ(602.0F, resolution.addressable_x);
    EXPECT_EQ(603.0F, resolution.addressable_y);
    EXPECT_EQ(604.0F, resolution.effective_x);
    EXPECT_EQ(605.0F, resolution.effective_y);
    EXPECT_EQ("Line_Art", name_of(resolution.dithering));
    EXPECT_EQ("Full_memory", name_of(resolution.default_mem_area));
    EXPECT_EQ(Items{"Full_memory"}, names(resolution.mem_areas));
}

TEST(Resolution, CellThatIsNoDecimalNumberIsZero) {
    const Read read("", "R\t\tInformal\tnan\t0x258\n", "");
    const UC_Resolution& resolution = record(read.pdt.resolutions, 0);
    EXPECT_EQ(0.0F, resolution.physical_x);
    EXPECT_EQ(0.0F, resolution.physical_y);
    EXPECT_EQ(0.0F, resolution.addressable_x);
}

TEST(Resolution, FurtherRowsAddMemoryAreas) {
    const Read read("", "R\t\t\t\t\t\t\t\t\tA\n\t\t\t\t\t\t\t\t\tB\n\n\t\t\t\t\t\t\t\t\tC\nS\n", "");
    ASSERT_EQ(2, read.pdt.resolutions.count());
    EXPECT_EQ((Items{"A", "B", "C"}), names(record(read.pdt.resolutions, 0).mem_areas));
    EXPECT_EQ("A", name_of(record(read.pdt.resolutions, 0).default_mem_area));
    EXPECT_EQ(Items{}, names(record(read.pdt.resolutions, 1).mem_areas));
}

TEST(Resolution, NothingButTheListIsInheritedByNobody) {
    const Read read("", "R\t\t1\t2\t3\t4\t5\t6\tD\tA\nS\n", "");
    const UC_Resolution& second = record(read.pdt.resolutions, 1);
    EXPECT_EQ(0.0F, second.physical_x + second.addressable_y + second.effective_x);
    EXPECT_EQ(0, second.dithering.length());
    EXPECT_EQ(0, second.default_mem_area.length());
}

TEST(Resolution, RowsBeforeTheFirstNameFillAnEmptyRecord) {
    const Read read("", "\t\t\t\t\t\t\t\t\tA\nR\t\t\t\t\t\t\t\t\tB\n", "");
    ASSERT_EQ(2, read.pdt.resolutions.count());
    EXPECT_EQ(-1, record(read.pdt.resolutions, 0).name.length());
    EXPECT_EQ(Items{"A"}, names(record(read.pdt.resolutions, 0).mem_areas));
    EXPECT_EQ(Items{"B"}, names(record(read.pdt.resolutions, 1).mem_areas));
}

TEST(Resolution, MarksNothingAndWritesNothing) {
    const Read read("", "R\t\t1\t1\t1\t1\t1\t1\tD\tA\n", "");
    EXPECT_EQ(Marks{}, read.marks());
    EXPECT_EQ(pm::test::items_of(pm::test::Description(), u"res_color_mem"),
              read.object.items(u"res_color_mem"));
}

TEST(Resolution, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(1, Read("", "R\nS", "").pdt.resolutions.count());
}

TEST(Resolution, NameOfTwoQuotesGoesOnWithTheRecord) {
    const Read read("", "R\t\t1\n\"\"\t\t9\t\t\t\t\t\tD\tA\n", "");
    ASSERT_EQ(1, read.pdt.resolutions.count());
    const UC_Resolution& resolution = record(read.pdt.resolutions, 0);
    EXPECT_EQ(1.0F, resolution.physical_x);
    EXPECT_EQ(0, resolution.dithering.length());
    EXPECT_EQ(0, resolution.default_mem_area.length());
    EXPECT_EQ(Items{"A"}, names(resolution.mem_areas));
}

TEST(Resolution, MemoryAreaOfANamedRowIsCutOnceForTheDefaultAndAgainForTheList) {
    const Read read("", "R\t\t\t\t\t\t\t\t\t\"\"A\"\"\nS\t\t\t\t\t\t\t\t\t\"\"\n", "");
    EXPECT_EQ("\"A\"", name_of(record(read.pdt.resolutions, 0).default_mem_area));
    EXPECT_EQ(Items{"A"}, names(record(read.pdt.resolutions, 0).mem_areas));
    EXPECT_EQ(0, record(read.pdt.resolutions, 1).default_mem_area.length());
    EXPECT_EQ(Items{}, names(record(read.pdt.resolutions, 1).mem_areas));
}

// --- Colour modes

TEST(ColorMode, HeadingsOnlyGiveNothing) {
    const Read read("", "", "");
    EXPECT_EQ(Items{}, read.modes());
    EXPECT_EQ(0, read.pdt.color_modes.count());
}

TEST(ColorMode, AllCellsInOrder) {
    const Read read("", "", "True Color\tx\t16777216\t24\t8\tDirect_RGB\t300 dpi\t600 dpi\tY\n",
                    "DRFX_RESOLUTION_COLOR_MEMORY_B3 \"colour\"\n");
    const Items expected = {
        "True_Color\\localized_name=\"colour\"",
        "True_Color\\number_of_colors=16777216",
        "True_Color\\color_depth=24",
        "True_Color\\undithered_colors=8",
        "True_Color\\color_system=1",
        "True_Color\\default_resolution=\"600_dpi\"",
        "True_Color\\caps_type=0",
    };
    EXPECT_EQ(expected, read.modes());
    EXPECT_EQ((Marks{0, 1, 2, 23}), read.marks());
    EXPECT_EQ(Items{"300_dpi"}, names(record(read.pdt.color_modes, 0).resolutions));
}

TEST(ColorMode, NameAlone) {
    const Read read("", "", "M\n");
    const Items expected = {"M\\localized_name=\"\"", "M\\number_of_colors=0", "M\\color_depth=0",
                            "M\\undithered_colors=0", "M\\color_system=5",     "M\\caps_type=0"};
    EXPECT_EQ(expected, read.modes());
    EXPECT_EQ((Marks{0, 1}), read.marks());
}

TEST(ColorMode, EachColorSystemHasItsNumber) {
    const std::pair<const char*, int> systems[] = {
        {"Mapped_RGB", 0},  {"Direct_RGB", 1}, {"Bitonal", 2}, {"Gray_Scale", 3},
        {"Direct_CMYK", 4}, {"bitonal", 5},    {"", 5},
    };
    for (const auto& [text, number] : systems) {
        const Read read("", "", std::string("M\t\t\t\t\t") + text + "\n");
        EXPECT_TRUE(has_item(read.modes(), "M\\color_system=" + std::to_string(number))) << text;
    }
}

TEST(ColorMode, ColorControlIsTrueForYOfAnyCase) {
    EXPECT_EQ((Marks{0, 1, 23}), Read("", "", "M\t\t\t\t\t\t\t\tyes\n").marks());
    EXPECT_EQ((Marks{0, 1}), Read("", "", "M\t\t\t\t\t\t\t\tN\n").marks());
    // Only where a record starts.
    EXPECT_EQ((Marks{0, 1}), Read("", "", "M\n\t\t\t\t\t\t\t\tY\n").marks());
}

TEST(ColorMode, ResolutionInAnyRowIsMarked) {
    EXPECT_EQ((Marks{0, 1, 2}), Read("", "", "M\n\t\t\t\t\t\tR\n").marks());
    EXPECT_EQ((Marks{1, 2}), Read("", "", "\t\t\t\t\t\tR\n").marks());
}

TEST(ColorMode, DefaultIsInheritedByModesWithoutOne) {
    const Read read("", "R\nS\n", "M\t\t\t\t\t\tR\tD1\nN\t\t\t\t\t\tS\t\nO\t\t\t\t\t\t\tD2\n");
    EXPECT_TRUE(has_item(read.modes(), "M\\default_resolution=\"D1\""));
    EXPECT_TRUE(has_item(read.modes(), "N\\default_resolution=\"D1\""));
    // A default without a resolution beside it isn't taken.
    EXPECT_TRUE(has_item(read.modes(), "O\\default_resolution=\"D1\""));
    EXPECT_TRUE(has_item(read.modes(), "N\\resolution_list\\S\\caps_type=0"));
}

TEST(ColorMode, OtherCellsAreNotInherited) {
    const Read read("", "", "M\t\t1\t2\t3\tBitonal\tR\nN\n");
    const Items expected = {"N\\localized_name=\"\"", "N\\number_of_colors=0", "N\\color_depth=0",
                            "N\\undithered_colors=0", "N\\color_system=5",     "N\\caps_type=0"};
    const Items items = read.modes();
    EXPECT_EQ(expected, Items(items.end() - 6, items.end()));
    EXPECT_EQ(Items{}, names(record(read.pdt.color_modes, 1).resolutions));
}

TEST(ColorMode, RowsBeforeTheFirstNameFillAnEmptyRecord) {
    const Read read("", "R\n", "\t\t\t\t\t\tR\nM\n");
    const Items expected = {
        "localized_name=\"\"",
        "number_of_colors=0",
        "color_depth=0",
        "undithered_colors=0",
        "color_system=0",
        "caps_type=0",
        "resolution_list\\R\\caps_type=0",
        "resolution_list\\R\\localized_name=\"\"",
        "M\\localized_name=\"\"",
        "M\\number_of_colors=0",
        "M\\color_depth=0",
        "M\\undithered_colors=0",
        "M\\color_system=5",
        "M\\caps_type=0",
    };
    EXPECT_EQ(expected, read.modes());
}

TEST(ColorMode, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(1, Read("", "", "M\nN").pdt.color_modes.count());
}

TEST(ColorMode, NameOfTwoQuotesGoesOnWithTheRecord) {
    const Read read("", "", "M\t\t1\t\t\t\tR\tD\n\"\"\t\t2\t\t\t\tS\tE\tY\n");
    ASSERT_EQ(1, read.pdt.color_modes.count());
    const UC_Resolution_Color_Memory& mode = record(read.pdt.color_modes, 0);
    EXPECT_EQ(1, mode.number_of_colors);
    EXPECT_EQ("D", name_of(mode.default_resolution));
    EXPECT_EQ((Items{"R", "S"}), names(mode.resolutions));
    EXPECT_EQ((Marks{0, 1, 2}), read.marks());
}

// --- Modes, resolutions and memory areas joined

TEST(PublishedResolution, EverythingInOrder) {
    const Read read = one_resolution("1\t2\t3\t4\t5\t6\tDith\tA\n\t\t\t\t\t\t\t\t\tB", "A\nB\n");
    const Items expected = {
        "caps_type=0",
        "localized_name=\"\"",
        "physical_resolution_x=1.0",
        "physical_resolution_y=2.0",
        "addressable_resolution_x=3.0",
        "addressable_resolution_y=4.0",
        "effective_resolution_x=5.0",
        "effective_resolution_y=6.0",
        "default_mem_area=\"A\"",
        "res_color_mem\\dithering_list=\"Dith\"",
        "mem_area\\0\\caps_type=0",
        "mem_area\\0\\name=\"A\"",
        "mem_area\\1\\caps_type=0",
        "mem_area\\1\\name=\"B\"",
    };
    EXPECT_EQ(expected, read.resolution());
    EXPECT_EQ((Marks{0, 1, 2, 3, 4, 7, 8, 9, 10}), read.marks());
}

TEST(PublishedResolution, NameAloneHasTwoItems) {
    const Read read = one_resolution("");
    EXPECT_EQ((Items{"caps_type=0", "localized_name=\"\""}), read.resolution());
    EXPECT_EQ((Marks{0, 1, 2, 3}), read.marks());
}

TEST(PublishedResolution, EachPairHasItsMark) {
    EXPECT_EQ((Marks{0, 1, 2, 3, 8}), one_resolution("1").marks());
    EXPECT_EQ((Marks{0, 1, 2, 3, 9}), one_resolution("\t\t1").marks());
    EXPECT_EQ((Marks{0, 1, 2, 3, 10}), one_resolution("\t\t\t\t1").marks());
    EXPECT_EQ((Marks{0, 1, 2, 3, 4}), one_resolution("\t\t\t\t\t\tD").marks());
    EXPECT_EQ((Marks{0, 1, 2, 3, 7}), one_resolution("\t\t\t\t\t\t\tA", "A\n").marks());
}

TEST(PublishedResolution, PairWithoutXIsDropped) {
    const Read read = one_resolution("0\t600\t\t600\t0.0\t600");
    EXPECT_EQ((Items{"caps_type=0", "localized_name=\"\""}), read.resolution());
    EXPECT_EQ((Marks{0, 1, 2, 3}), read.marks());
}

TEST(PublishedResolution, PairWithoutYHasZero) {
    EXPECT_TRUE(has_item(one_resolution("600").resolution(), "physical_resolution_y=0.0"));
}

TEST(PublishedResolution, NumbersAreRoundedTo32Bits) {
    EXPECT_TRUE(has_item(one_resolution("0.1").resolution(), "physical_resolution_x=0.10000000149011612"));
}

TEST(PublishedResolution, UnknownMemoryAreaUsesUpNoIndex) {
    const Read read = one_resolution("\t\t\t\t\t\t\tX\n\t\t\t\t\t\t\t\t\tA", "A\n");
    const Items expected = {"caps_type=0", "localized_name=\"\"", "default_mem_area=\"X\"",
                            "mem_area\\0\\caps_type=0", "mem_area\\0\\name=\"A\""};
    EXPECT_EQ(expected, read.resolution());
}

TEST(PublishedResolution, MemoryAreaTwiceHasTwoIndices) {
    const Items items = one_resolution("\t\t\t\t\t\t\tA\n\t\t\t\t\t\t\t\t\tA", "A\n").resolution();
    EXPECT_TRUE(has_item(items, "mem_area\\0\\name=\"A\""));
    EXPECT_TRUE(has_item(items, "mem_area\\1\\name=\"A\""));
}

TEST(PublishedResolution, IsWrittenBelowEachModeWithIndicesFromZero) {
    const Read read("A\n", "R\t\t\t\t\t\t\t\t\tA\n", "M\t\t\t\t\t\tR\nN\t\t\t\t\t\tR\n");
    EXPECT_TRUE(has_item(read.modes(), "M\\resolution_list\\R\\mem_area\\0\\name=\"A\""));
    EXPECT_TRUE(has_item(read.modes(), "N\\resolution_list\\R\\mem_area\\0\\name=\"A\""));
}

TEST(PublishedResolution, UnknownNameIsPassedOver) {
    const Read read("", "R\n", "M\t\t\t\t\t\tr\n");
    EXPECT_EQ(6U, read.modes().size());
    EXPECT_EQ((Marks{0, 1, 2}), read.marks());
}

TEST(PublishedResolution, CellsOfTwoQuotesFindTheEmptyRecords) {
    const Read read("\nA\n", "\t\t\t\t\t\t\t\t\t\"\"\nR\n", "M\t\t\t\t\t\t\"\"\n");
    const Items expected = {"M\\localized_name=\"\"",
                            "M\\number_of_colors=0",
                            "M\\color_depth=0",
                            "M\\undithered_colors=0",
                            "M\\color_system=5",
                            "M\\caps_type=0",
                            "M\\resolution_list\\caps_type=0",
                            "M\\resolution_list\\localized_name=\"\"",
                            "M\\resolution_list\\mem_area\\0\\caps_type=0",
                            "M\\resolution_list\\mem_area\\0\\name=\"\""};
    EXPECT_EQ(expected, read.modes());
    EXPECT_EQ((Marks{0, 1, 2, 3, 7}), read.marks());
}

TEST(PublishedResolution, WithoutAModeStaysOut) {
    EXPECT_EQ(Items{}, Read("", "R\t\t600\n", "").modes());
}

TEST(PublishedResolution, FollowsTheOrderOfTheModesRows) {
    const Items items = Read("", "R\nS\n", "M\t\t\t\t\t\tS\n\t\t\t\t\t\tR\n").modes();
    ASSERT_EQ(10U, items.size());
    EXPECT_EQ("M\\resolution_list\\S\\caps_type=0", items[6]);
    EXPECT_EQ("M\\resolution_list\\R\\caps_type=0", items[8]);
}

} // namespace

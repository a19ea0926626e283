#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::has_item;
using pm::test::Items;

Items methods(std::string_view rows, std::string_view strings = "") {
    Description description;
    description.strings(strings).rows(Section::dithering_method, rows);
    return pm::test::items_of(description, u"res_color_mem\\dithering_list");
}

TEST(Dithering, TableWithHeadingsOnlyGivesNothing) {
    EXPECT_EQ(Items{}, methods(""));
}

TEST(Dithering, MethodWithAllCellsWritesItsItemsInOrder) {
    const Items expected = {
        "Ordered_2x1\\localized_name=\"Ordered\"",
        "Ordered_2x1\\pixel_expansion_ratio=2",
        "Ordered_2x1\\source_pixel_ratio=3",
        "Ordered_2x1\\renderers=1",
        "Ordered_2x1\\caps_type=0",
        "Ordered_2x1\\dithering_type=5",
        "Ordered_2x1\\threshold=128",
        "Ordered_2x1\\matrix_size_x=2",
        "Ordered_2x1\\matrix_size_y=1",
        "Ordered_2x1\\matrix_list\\Bayer\\0\\data=7",
        "Ordered_2x1\\matrix_list\\Bayer\\1\\data=9",
    };
    EXPECT_EQ(expected, methods("Ordered 2x1\tx\t2\tCustomMatrixOrderedDithering\t3\t128\tFrameBuffer\t2\t1\t"
                                "Bayer\t7\t9\n",
                                "DRFX_DITHERING_METHOD_B3 \"Ordered\"\n"));
}

TEST(Dithering, EmptyCellsHaveTheirOwnValues) {
    const Items expected = {
        "M\\localized_name=\"\"", "M\\pixel_expansion_ratio=1", "M\\source_pixel_ratio=1", "M\\renderers=0",
        "M\\caps_type=0",         "M\\matrix_size_x=0",         "M\\matrix_size_y=0",
    };
    EXPECT_EQ(expected, methods("M\n"));
}

TEST(Dithering, MethodWithoutSizesReadsNoValues) {
    EXPECT_EQ(methods("M\n"), methods("M\t\t\t\t\t\t\t\t\tBayer\t1\t2\n"));
}

TEST(Dithering, HeightOfZeroReadsNoValues) {
    const Items items = methods("M\t\t\t\t\t\t\t2\t0\tBayer\t1\t2\n");
    EXPECT_TRUE(has_item(items, "M\\matrix_size_x=2"));
    EXPECT_EQ("M\\matrix_size_y=0", items.back());
}

TEST(Dithering, WidthOfZeroReadsNoValuesButUsesUpRows) {
    EXPECT_EQ("M\\matrix_size_y=2", methods("M\t\t\t\t\t\t\t0\t2\tBayer\t1\t2\n").back());
}

TEST(Dithering, WidthBelowZeroReadsNoValues) {
    EXPECT_EQ("M\\matrix_size_y=2", methods("M\t\t\t\t\t\t\t-3\t2\tBayer\t1\t2\n").back());
}

TEST(Dithering, RenderersCells) {
    EXPECT_TRUE(has_item(methods("M\t\t\t\t\t\tNeither\n"), "M\\renderers=0"));
    EXPECT_TRUE(has_item(methods("M\t\t\t\t\t\tFrameBuffer\n"), "M\\renderers=1"));
    EXPECT_TRUE(has_item(methods("M\t\t\t\t\t\tBothDitherAndFB\n"), "M\\renderers=2"));
    EXPECT_TRUE(has_item(methods("M\t\t\t\t\t\tframebuffer\n"), "M\\renderers=-1"));
}

TEST(Dithering, UnknownTypeIsMinusOne) {
    EXPECT_TRUE(has_item(methods("M\t\t\tLineart\n"), "M\\dithering_type=-1"));
}

TEST(Dithering, MatrixTakesOneRowForEachOfItsRows) {
    const Items items = methods("M\t\t\t\t\t\t\t2\t3\tBayer4\t0\t8\n"
                                "\t\t\t\t\t\t\t\t\t\t12\t4\n"
                                "\t\t\t\t\t\t\t\t\t\t3\t11\t99\n"
                                "\t\t\t\t\t\t\t\t\t\t15\t7\n");
    const Items values(items.end() - 6, items.end());
    const Items expected = {
        "M\\matrix_list\\Bayer4\\0\\data=0",  "M\\matrix_list\\Bayer4\\1\\data=8",
        "M\\matrix_list\\Bayer4\\2\\data=12", "M\\matrix_list\\Bayer4\\3\\data=4",
        "M\\matrix_list\\Bayer4\\4\\data=3",  "M\\matrix_list\\Bayer4\\5\\data=11",
    };
    EXPECT_EQ(expected, values);
}

TEST(Dithering, EmptyValueLeavesAGap) {
    const Items items = methods("M\t\t\t\t\t\t\t3\t2\tB\t1\t\t3\n\t\t\t\t\t\t\t\t\t\t\t5\n");
    const Items values(items.end() - 3, items.end());
    const Items expected = {"M\\matrix_list\\B\\0\\data=1", "M\\matrix_list\\B\\2\\data=3",
                            "M\\matrix_list\\B\\4\\data=5"};
    EXPECT_EQ(expected, values);
}

TEST(Dithering, MatrixNamesThatAgreeInSevenCharactersShareOneMatrix) {
    const Items items = methods("M\t\t\t\t\t\t\t1\t1\tMatrix-1\t1\n\t\t\t\t\t\t\t\t\tMatrix-2\t2\n");
    EXPECT_TRUE(has_item(items, "M\\matrix_list\\Matrix-\\0\\data=2"));
    EXPECT_EQ(8U + 1U - 1U, items.size());
}

TEST(Dithering, SecondMatrixOfAMethodStartsAtZeroWithTheSameSizes) {
    const Items items = methods("M\t\t\t\t\t\t\t1\t2\tA\t1\n\t\t\t\t\t\t\t\t\tB\t2\n\t\t\t\t\t\t\t\t\t\t3\n"
                                "\t\t\t\t\t\t\t\t\t\t4\n");
    const Items values(items.end() - 3, items.end());
    const Items expected = {"M\\matrix_list\\A\\0\\data=1", "M\\matrix_list\\B\\0\\data=2",
                            "M\\matrix_list\\B\\1\\data=3"};
    EXPECT_EQ(expected, values);
}

TEST(Dithering, RowsLeftOfAMatrixGoToTheNextMethod) {
    const Items items = methods("M\t\t\t\t\t\t\t1\t2\tA\t1\nN\t\t\t\t\t\t\t1\t\t\t5\n");
    EXPECT_EQ("N\\matrix_list\\A\\1\\data=5", items.back());
}

TEST(Dithering, SecondMethodClearsTheSizesOfTheFirst) {
    const Items items = methods("M\t\t\t\t\t\t\t2\t1\tA\t1\t2\nN\t\t\t\t\t\t\t\t\tB\t3\t4\n");
    const Items expected = {
        "N\\localized_name=\"\"", "N\\pixel_expansion_ratio=1", "N\\source_pixel_ratio=1", "N\\renderers=0",
        "N\\caps_type=0",         "N\\matrix_size_x=0",         "N\\matrix_size_y=0",
    };
    EXPECT_EQ(expected, Items(items.end() - 7, items.end()));
}

TEST(Dithering, HugeWidthReadsWhatIsThere) {
    const Items items = methods("M\t\t\t\t\t\t\t2147483647\t2147483647\tA\t1\t2\n\t\t\t\t\t\t\t\t\t\t3\t4\n");
    EXPECT_TRUE(has_item(items, "M\\matrix_list\\A\\0\\data=1"));
    EXPECT_TRUE(has_item(items, "M\\matrix_list\\A\\1\\data=2"));
    EXPECT_TRUE(has_item(items, "M\\matrix_list\\A\\2147483647\\data=3"));
    EXPECT_TRUE(has_item(items, "M\\matrix_list\\A\\-2147483648\\data=4"));
}

TEST(Dithering, NamedRowMarksTheAbility) {
    Description description;
    pm::test::DescriptionLoad none(description);
    PM_Object object;
    none.load_into(object);
    EXPECT_EQ(std::vector<int>{}, none.color_marks());

    description.rows(Section::dithering_method, "M\n");
    pm::test::DescriptionLoad one(description);
    one.load_into(object);
    EXPECT_EQ(std::vector<int>{5}, one.color_marks());
}

} // namespace

#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Items;

constexpr std::string_view three_texts = "DRFX_MISC_LOCALIZABLE_INFORMATION_B3 \"first\"\n"
                                         "DRFX_MISC_LOCALIZABLE_INFORMATION_B4 \"second\"\n"
                                         "DRFX_MISC_LOCALIZABLE_INFORMATION_B5 \"third\"\n";

// The items of a table, without those that every load has.
Items meta(std::string_view rows, std::string_view strings = three_texts) {
    pm::test::Description description;
    description.rows(Section::misc_localizable_info, rows).strings(strings);
    Items items = pm::test::items_of(description, u"meta");
    std::erase(items, "model_abilities=\"000000000000\"");
    std::erase(items, "toolkit_version=0.0");
    return items;
}

TEST(Meta, AllTexts) {
    const Items expected = {"localized_model_name=\"first\"", "localized_family_name=\"second\"",
                            "driver_tag_line=\"third\""};
    EXPECT_EQ(expected, meta("Model\tx\nFamily\tx\nTag line\tx\n"));
}

TEST(Meta, EmptyFirstCellMovesTheKeysOfTheOthers) {
    const Items expected = {"localized_family_name=\"first\"", "driver_tag_line=\"second\""};
    EXPECT_EQ(expected, meta("Model\nFamily\tx\nTag line\tx\n"));
}

TEST(Meta, EmptyFirstAndSecondCellsMoveTheKeyOfTheThird) {
    EXPECT_EQ(Items{"driver_tag_line=\"first\""}, meta("\n\n\tx\n"));
}

TEST(Meta, EmptySecondCellMovesTheKeyOfTheThird) {
    const Items expected = {"localized_model_name=\"first\"", "driver_tag_line=\"second\""};
    EXPECT_EQ(expected, meta("\tx\n\t\n\tx\n"));
}

TEST(Meta, MissingKeyTakesTheTextBefore) {
    const Items expected = {"localized_model_name=\"first\"", "localized_family_name=\"first\"",
                            "driver_tag_line=\"third\""};
    EXPECT_EQ(expected, meta("\tx\n\tx\n\tx\n", "DRFX_MISC_LOCALIZABLE_INFORMATION_B3 \"first\"\n"
                                                "DRFX_MISC_LOCALIZABLE_INFORMATION_B5 \"third\"\n"));
}

TEST(Meta, MissingFirstKeyTakesTheTextOfAnotherSection) {
    pm::test::Description description;
    description.rows(Section::resolution_color_memory, "M\n")
        .rows(Section::misc_localizable_info, "\tx\n")
        .strings("DRFX_RESOLUTION_COLOR_MEMORY_B3 \"mode\"\n");
    EXPECT_TRUE(
        pm::test::has_item(pm::test::items_of(description, u"meta"), "localized_model_name=\"mode\""));
}

TEST(Meta, CellThatIsOnlyACommentIsEmpty) {
    EXPECT_EQ(Items{"localized_family_name=\"first\""}, meta("Model\t// none\nFamily\tx // some\n"));
}

TEST(Meta, ShortTableWritesWhatItHas) {
    EXPECT_EQ(Items{}, meta(""));
    EXPECT_EQ(Items{"localized_model_name=\"first\""}, meta("\tx\n"));
}

TEST(Meta, LastLineWithoutLineEndCounts) {
    EXPECT_EQ(Items{"localized_model_name=\"first\""}, meta("\tx"));
}

TEST(Meta, FurtherRowsAreNotRead) {
    EXPECT_EQ(Items{"driver_tag_line=\"first\""}, meta("\n\n\tx\n\ty\n\tz\n"));
}

} // namespace

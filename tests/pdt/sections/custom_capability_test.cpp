#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::has_item;
using pm::test::Items;

// The items of the capabilities in a table.
Items capabilities(std::string_view rows, std::string_view strings = "") {
    Description description;
    description.strings(strings).rows(Section::custom_capability, rows);
    return pm::test::items_of(description, u"custom_name");
}

TEST(CustomCapability, TableWithHeadingsOnlyGivesNothing) {
    EXPECT_EQ(Items{}, capabilities(""));
}

TEST(CustomCapability, ListOverThreeRows) {
    const Items expected = {
        "Ink\\localized_name=\"Ink saver\"",
        "Ink\\custom_caps_type=0",
        "Ink\\verifiable=true",
        "Ink\\data_type=0",
        "Ink\\default_value=\"Off\"",
        "Ink\\range_type=false",
        "Ink\\number_of_values=3",
        "Ink\\value_list\\0\\value=\"Off\"",
        "Ink\\value_list\\0\\caps_type=0",
        "Ink\\value_list\\1\\value=\"Low\"",
        "Ink\\value_list\\1\\caps_type=0",
        "Ink\\value_list\\2\\value=\"High\"",
        "Ink\\value_list\\2\\caps_type=0",
    };
    EXPECT_EQ(expected, capabilities("Ink\tx\tY\tOff\t\t\tPT_String\tN\tOff\n"
                                     "\t\t\t\t\t\t\t\tLow\n"
                                     "\t\t\t\t\t\t\t\tHigh\n",
                                     "DRFX_CUSTOM_CAPABILITY_B3 \"Ink saver\"\n"));
}

TEST(CustomCapability, RangeHasBoundsAndNoList) {
    const Items expected = {
        "Fan\\localized_name=\"\"", "Fan\\custom_caps_type=0", "Fan\\verifiable=false", "Fan\\data_type=1",
        "Fan\\default_value=60",    "Fan\\range_type=true",    "Fan\\range_max=100.0",  "Fan\\range_min=-0.5",
    };
    EXPECT_EQ(expected, capabilities("Fan\t\tN\t60\t100\t-.5\tPT_Long\tY\t7\n"));
}

TEST(CustomCapability, BoundThatIsNoDecimalNumberIsZero) {
    const Items items = capabilities("Fan\t\t\t\tInformal\t0x10\tPT_Double\tY\n");
    EXPECT_TRUE(has_item(items, "Fan\\range_max=0.0"));
    EXPECT_TRUE(has_item(items, "Fan\\range_min=0.0"));
}

TEST(CustomCapability, RowsBelowARangeMakeAListFromIndexZero) {
    const Items expected = {
        "Fan\\localized_name=\"\"",    "Fan\\custom_caps_type=0",
        "Fan\\verifiable=false",       "Fan\\data_type=1",
        "Fan\\range_type=true",        "Fan\\range_max=0.0",
        "Fan\\range_min=0.0",          "Fan\\number_of_values=2",
        "Fan\\value_list\\0\\value=5", "Fan\\value_list\\0\\caps_type=0",
        "Fan\\value_list\\1\\value=6", "Fan\\value_list\\1\\caps_type=0",
    };
    EXPECT_EQ(expected, capabilities("Fan\t\t\t\t\t\tPT_Long\tY\t\n"
                                     "\t\t\t\t\t\t\t\t5\n"
                                     "\t\t\t\t\t\t\t\t6\n"));
}

TEST(CustomCapability, EachDataTypeHasItsForm) {
    struct Case {
        const char* type;
        const char* value;
        std::string number;
        std::string stored;
    };
    const Case cases[] = {
        {"PT_String", " as it stands ", "0", "\" as it stands \""},
        {"PT_Long", " -12x", "1", "-12"},
        {"PT_Double", "2.5e1", "2", "25.0"},
        {"PT_Bool", "Yes", "3", "true"},
        {"PT_Bool", "y", "3", "false"},
        {"PT_Raw", "0x0AFF", "4", "<0AFF>"},
    };
    for (const Case& each : cases) {
        const std::string row =
            std::string("C\t\t\t") + each.value + "\t\t\t" + each.type + "\tN\t" + each.value + "\n";
        const Items expected = {
            "C\\localized_name=\"\"",
            "C\\custom_caps_type=0",
            "C\\verifiable=false",
            "C\\data_type=" + each.number,
            "C\\default_value=" + each.stored,
            "C\\range_type=false",
            "C\\number_of_values=1",
            "C\\value_list\\0\\value=" + each.stored,
            "C\\value_list\\0\\caps_type=0",
        };
        EXPECT_EQ(expected, capabilities(row)) << each.type << each.value;
    }
}

TEST(CustomCapability, OnlyTheFourthCharacterTellsTheType) {
    const Items items = capabilities("C\t\t\t\t\t\tabcRaw\tY\nD\t\t\t\t\t\tx  Dxxx\tY\n");
    EXPECT_TRUE(has_item(items, "D\\data_type=2"));
    EXPECT_TRUE(has_item(items, "C\\data_type=4"));
}

TEST(CustomCapability, UnknownTypeKeepsTheOneBefore) {
    const Items items = capabilities("C\t\t\t\t\t\tPT_Long\tY\nD\t\t\t1\t\t\tPT_long\tY\nE\t\t\t2\t\t\tL\tY\n"
                                     "F\t\t\t3\t\t\t\tY\n");
    for (const char* expected : {"D\\data_type=1", "D\\default_value=1", "E\\data_type=1",
                                 "E\\default_value=2", "F\\data_type=1", "F\\default_value=3"}) {
        EXPECT_TRUE(has_item(items, expected)) << expected;
    }
}

TEST(CustomCapability, NoTypeWritesNoValue) {
    const Items expected = {
        "C\\localized_name=\"\"", "C\\custom_caps_type=0", "C\\verifiable=false",           "C\\data_type=-1",
        "C\\range_type=false",    "C\\number_of_values=1", "C\\value_list\\0\\caps_type=0",
    };
    EXPECT_EQ(expected, capabilities("C\t\t\t5\t\t\t?\tN\t5\n"));
}

TEST(CustomCapability, VerifiableTakesBothCasesAndRangeTypeOneOnly) {
    const Items items = capabilities("C\t\ty\t\t\t\tPT_Long\ty\t1\n");
    EXPECT_TRUE(has_item(items, "C\\verifiable=true"));
    EXPECT_TRUE(has_item(items, "C\\range_type=false"));
}

TEST(CustomCapability, EmptyLineBetweenTwoAddsAnEmptyValueToTheFirst) {
    const Items items = capabilities("C\t\t\t\t\t\tPT_String\tN\ta\n\nD\t\t\t\t\t\tPT_String\tN\tb\n");
    const Items expected = {
        "C\\localized_name=\"\"",        "C\\custom_caps_type=0",
        "C\\verifiable=false",           "C\\data_type=0",
        "C\\range_type=false",           "C\\number_of_values=2",
        "C\\value_list\\0\\value=\"a\"", "C\\value_list\\0\\caps_type=0",
        "C\\value_list\\1\\value=\"\"",  "C\\value_list\\1\\caps_type=0",
        "D\\localized_name=\"\"",        "D\\custom_caps_type=0",
        "D\\verifiable=false",           "D\\data_type=0",
        "D\\range_type=false",           "D\\number_of_values=1",
        "D\\value_list\\0\\value=\"b\"", "D\\value_list\\0\\caps_type=0",
    };
    EXPECT_EQ(expected, items);
}

TEST(CustomCapability, EmptyValueOfAListIsWritten) {
    const Items items = capabilities("C\t\t\t\t\t\tPT_Raw\tN\t\n");
    EXPECT_TRUE(has_item(items, "C\\value_list\\0\\value=<>"));
}

TEST(CustomCapability, BlanksOfANameBecomeUnderscores) {
    const Items items = capabilities("Paper Tray\t\t\t\t\t\tPT_Long\tY\n");
    ASSERT_FALSE(items.empty());
    EXPECT_EQ("Paper_Tray\\localized_name=\"\"", items.front());
}

TEST(CustomCapability, FirstRowWithoutANameWritesBelowTheBranchItself) {
    const Items expected = {"number_of_values=1", "value_list\\0\\caps_type=0"};
    EXPECT_EQ(expected, capabilities("\t\t\t\t\t\t\t\t5\n"));
}

TEST(CustomCapability, RowNumbersOfKeysCountAllLines) {
    const Items items = capabilities("A\t\t\t\t\t\tPT_Long\tY\n\n\nB\t\t\t\t\t\tPT_Long\tY\n",
                                     "DRFX_CUSTOM_CAPABILITY_B3 \"first\"\n"
                                     "DRFX_CUSTOM_CAPABILITY_B6 \"second\"\n");
    EXPECT_TRUE(has_item(items, "B\\localized_name=\"second\""));
}

TEST(CustomCapability, CapabilityWithoutATextTakesTheOneBefore) {
    const Items items = capabilities("A\t\t\t\t\t\tPT_Long\tY\nB\t\t\t\t\t\tPT_Long\tY\n",
                                     "DRFX_CUSTOM_CAPABILITY_B3 \"first\"\n");
    EXPECT_TRUE(has_item(items, "B\\localized_name=\"first\""));
}

} // namespace

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <report/picture.h>
#include <report/reading.h>
#include <report/words.h>

namespace {

using namespace pm::kit::report;
using testing::ElementsAre;

TEST(Word, IsThatOfTheNumber) {
    EXPECT_EQ(word(Code::io_type, 6), "Network");
    EXPECT_EQ(word(Code::media_group, 4), "ISO");
    EXPECT_EQ(word(Code::stapling_location, 5), "landscape, upper right");
}

TEST(Word, TellsANumberThatStandsForNothing) {
    EXPECT_EQ(word(Code::io_type, -1), "unknown (-1)");
    EXPECT_EQ(word(Code::color_system, 5), "unknown (5)");
}

TEST(Words, AreThoseOfTheBits) {
    EXPECT_THAT(words(Code::handshake_bit, 0x227),
                ElementsAre("XON/XOFF in", "XON/XOFF out", "CTS", "RTS handshake", "DTR handshake"));
    EXPECT_THAT(words(Code::handshake_bit, 0), ElementsAre("none"));
    EXPECT_THAT(words(Code::duplexing_bit, 0x11), ElementsAre("one side", "unknown (0x10)"));
    EXPECT_THAT(words(Code::selection_bit, -1), ElementsAre("by source", "by size", "unknown (0xFFFFFFFC)"));
}

TEST(Areas, HaveAWordForEachDigitThatADescriptionMarks) {
    const auto all = areas();
    EXPECT_EQ(all[0].node, "media");
    EXPECT_EQ(all[0].abilities.size(), 51U);
    EXPECT_EQ(all[0].settings.size(), 23U);
    EXPECT_EQ(all[1].abilities.size(), 24U);
    EXPECT_EQ(all[1].settings.size(), 14U);
    EXPECT_EQ(all[2].abilities.size(), 12U);
    EXPECT_EQ(all[2].settings.size(), 9U);
    EXPECT_EQ(all[3].abilities.size(), 19U);
    EXPECT_EQ(all[3].settings.size(), 7U);
    EXPECT_EQ(method_abilities().size(), 20U);
}

TEST(ShownNumber, HasFourDecimalsAtMost) {
    EXPECT_EQ(shown(914.4000244140625), "914.4");
    EXPECT_EQ(shown(0.05000000074505806), "0.05");
    EXPECT_EQ(shown(1e-9), "1e-09");
    EXPECT_EQ(shown(1e20), "1e+20");
    EXPECT_EQ(shown(-0.0), "0");
    EXPECT_EQ(shown(600.0), "600");
    EXPECT_EQ(shown(std::numeric_limits<double>::infinity()), "∞");
    EXPECT_EQ(shown(std::numeric_limits<double>::quiet_NaN()), "not a number");
}

TEST(GroupedNumber, HasACommaForEachThousand) {
    EXPECT_EQ(grouped(16777216), "16,777,216");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(-100000), "-100,000");
}

TEST(SpokenName, HasBlanksAndACapital) {
    EXPECT_EQ(spoken("default_source"), "Default source");
    EXPECT_EQ(spoken("zoom_10"), "Zoom 10");
    EXPECT_EQ(spoken("a_z09"), "A z09");
    EXPECT_EQ(spoken("2nd_zoom"), "2nd_zoom");
    EXPECT_EQ(spoken("dmFormName"), "dmFormName");
    EXPECT_EQ(spoken("Roll_1"), "Roll_1");
    EXPECT_EQ(spoken(""), "");
}

TEST(Coordinate, IsAlwaysANumberThatADrawingTakes) {
    EXPECT_EQ(coordinate(1.0 / 3), "0.33");
    EXPECT_EQ(coordinate(-0.001), "0");
    EXPECT_EQ(coordinate(std::numeric_limits<double>::quiet_NaN()), "0");
    EXPECT_EQ(coordinate(std::numeric_limits<double>::infinity()), "1000000");
}

} // namespace

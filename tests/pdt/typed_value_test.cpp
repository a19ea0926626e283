#include "pdt/typed_value.h"

#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<unsigned char>;
using pm::decode_raw_cell;
using pm::test::Items;

Items written(std::u16string text, std::int32_t type, int index = -1) {
    pm::test::OpenObject object;
    pm::Branch branch(object, u"\\a", {});
    pm::set_typed_value(branch, index < 0 ? u"\\v" : u"\\*\\v", text.data(), index, type);
    return object.items(u"");
}

TEST(RawCell, PairsBehindTheMarkAreBytes) {
    EXPECT_EQ((Bytes{0x0A, 0xFF}), decode_raw_cell(u"0x0AFF"));
    EXPECT_EQ((Bytes{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}),
              decode_raw_cell(u"0x0123456789ABCDEF"));
}

TEST(RawCell, MarkIsWhateverStandsThere) {
    EXPECT_EQ(Bytes{0x12}, decode_raw_cell(u"zz12"));
}

TEST(RawCell, LastDigitOfAnOddCountIsDropped) {
    EXPECT_EQ(Bytes{0x12}, decode_raw_cell(u"0x123"));
    EXPECT_EQ(Bytes{}, decode_raw_cell(u"0x1"));
}

TEST(RawCell, ShortTextIsEmpty) {
    EXPECT_EQ(Bytes{}, decode_raw_cell(u""));
    EXPECT_EQ(Bytes{}, decode_raw_cell(u"0"));
    EXPECT_EQ(Bytes{}, decode_raw_cell(u"0x"));
}

TEST(RawCell, OtherCharactersCountAsZero) {
    EXPECT_EQ((Bytes{0x00, 0x10}), decode_raw_cell(u"0xaf1?"));
}

TEST(TypedValue, EachType) {
    EXPECT_EQ(Items{"a\\v=\"text\""}, written(u"text", 0));
    EXPECT_EQ(Items{"a\\v=-12"}, written(u" -12.9", 1));
    EXPECT_EQ(Items{"a\\v=-12.9"}, written(u" -12.9x", 2));
    EXPECT_EQ(Items{"a\\v=true"}, written(u"Y", 3));
    EXPECT_EQ(Items{"a\\v=<0AFF>"}, written(u"0x0AFF", 4));
}

TEST(TypedValue, DoublesAreDecimal) {
    for (const char16_t* text : {u"inf", u"nan", u"Informal", u"0x10"}) {
        EXPECT_EQ(Items{"a\\v=0.0"}, written(text, 2)) << pm::test::to_narrow_name(text);
    }
}

TEST(TypedValue, BoolIsTrueForUppercaseYOnly) {
    EXPECT_EQ(Items{"a\\v=true"}, written(u"Yellow", 3));
    EXPECT_EQ(Items{"a\\v=false"}, written(u"y", 3));
    EXPECT_EQ(Items{"a\\v=false"}, written(u"", 3));
}

TEST(TypedValue, EmptyTextGivesEmptyValues) {
    EXPECT_EQ(Items{"a\\v=\"\""}, written(u"", 0));
    EXPECT_EQ(Items{"a\\v=0"}, written(u"", 1));
    EXPECT_EQ(Items{"a\\v=0.0"}, written(u"", 2));
    EXPECT_EQ(Items{"a\\v=<>"}, written(u"", 4));
}

TEST(TypedValue, OtherTypesWriteNothing) {
    for (const std::int32_t type : {-1, 5, 6, 1000})
        EXPECT_EQ(Items{}, written(u"1", type)) << type;
}

TEST(TypedValue, IndexFillsTheStar) {
    EXPECT_EQ(Items{"a\\7\\v=1"}, written(u"1", 1, 7));
}

} // namespace

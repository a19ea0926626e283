#include "pdt/row.h"

#include "pdt/description.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using pm::normalize_name;
using pm::Row;
using pm::RowLine;
using Fields = std::vector<std::u16string>;

// The first fields of a line.
Fields fields(std::u16string_view text, int count) {
    RowLine line;
    line.assign(text);
    Fields all;
    std::size_t position = 0;
    for (int field = 0; field < count; ++field)
        all.emplace_back(line.next_field(position));
    return all;
}

std::u16string normalized(std::u16string text) {
    normalize_name(text.data());
    return text.c_str();
}

TEST(NextField, FieldsRunToTheNextTab) {
    EXPECT_EQ((Fields{u"A", u"", u" B b ", u"C"}), fields(u"A\t\t B b \tC", 4));
}

TEST(NextField, TabInFrontIsAnEmptyField) {
    EXPECT_EQ((Fields{u"", u"B"}), fields(u"\tB", 2));
}

TEST(NextField, FieldsPastTheEndAreEmpty) {
    EXPECT_EQ((Fields{u"A", u"", u"", u""}), fields(u"A", 4));
    EXPECT_EQ((Fields{u"A", u"", u"", u""}), fields(u"A\t", 4));
}

TEST(NextField, EmptyLineIsARowOfEmptyFields) {
    EXPECT_EQ((Fields{u"", u"", u""}), fields(u"", 3));
}

TEST(NextField, AnyNumberOfFieldsCanBeRead) {
    EXPECT_EQ(u"", fields(u"A\tB", 10'000).back());
    EXPECT_EQ(u"", fields(std::u16string(2047, u'x'), 10'000).back());
    EXPECT_EQ(u"", fields(std::u16string(2047, u'\t'), 10'000).back());
}

TEST(NextField, CommentReachesToTheNextTab) {
    EXPECT_EQ((Fields{u"A", u"C"}), fields(u"A//B\tC", 2));
}

TEST(NextField, CommentTakesTheBlanksInFrontOfIt) {
    EXPECT_EQ((Fields{u"A b", u"C"}), fields(u"A b   // B // c\tC", 2));
}

TEST(NextField, CommentAtTheEndOfTheLine) {
    EXPECT_EQ((Fields{u"A", u"", u""}), fields(u"A//", 3));
    EXPECT_EQ((Fields{u"A", u"", u""}), fields(u"A // the end", 3));
    EXPECT_EQ((Fields{u"A", u"B", u""}), fields(u"A\tB//x/", 3));
}

TEST(NextField, FieldThatBeginsWithACommentIsEmptyAndTheNextBeginsAtItsSecondSlash) {
    EXPECT_EQ((Fields{u"", u"/B", u"C"}), fields(u"//B\tC", 3));
    EXPECT_EQ((Fields{u"A", u"", u"/B", u"C"}), fields(u"A\t//B\tC", 4));
}

TEST(NextField, ThreeSlashesInFront) {
    // The second and third slash are a comment in turn.
    EXPECT_EQ((Fields{u"", u"", u"/B", u"C"}), fields(u"///B\tC", 4));
}

TEST(NextField, BlanksInFrontOfACommentAreEmptyFieldsEach) {
    EXPECT_EQ((Fields{u"", u"", u"", u"/B", u"C"}), fields(u"  //B\tC", 5));
}

TEST(NextField, SingleSlashIsOrdinary) {
    EXPECT_EQ((Fields{u"a/b", u"/", u"c/"}), fields(u"a/b\t/\tc/", 3));
    EXPECT_EQ((Fields{u"a/b", u"c"}), fields(u"a/b//x\tc", 2));
}

TEST(NextField, ZeroInALineEndsAFieldAndTheNextBeginsBehindIt) {
    EXPECT_EQ((Fields{u"A", u"B", u"C"}), fields(std::u16string_view(u"A\0B\tC", 5), 3));
}

TEST(NextField, PositionStaysInTheBuffer) {
    RowLine line;
    line.assign(std::u16string(2047, u'x'));
    std::size_t position = 0;
    for (int field = 0; field < 10; ++field)
        line.next_field(position);
    EXPECT_EQ(2047U, position);
}

TEST(NextField, LongestLine) {
    const std::u16string text = std::u16string(2043, u'x') + u"\t//y";
    EXPECT_EQ((Fields{std::u16string(2043, u'x'), u"", u"/y", u""}), fields(text, 4));
    EXPECT_EQ((Fields{std::u16string(2045, u'x'), u""}), fields(std::u16string(2045, u'x') + u"//", 2));
    EXPECT_EQ((Fields{std::u16string(2046, u'x') + u"/", u""}), fields(std::u16string(2046, u'x') + u"/", 2));
}

TEST(RowLine, ShorterLineLeavesNothingOfTheOneBefore) {
    RowLine line;
    line.assign(u"one\ttwo\tthree");
    line.assign(u"1");
    std::size_t position = 0;
    EXPECT_EQ(u"1", std::u16string(line.next_field(position)));
    for (int field = 0; field < 20; ++field)
        EXPECT_EQ(u"", std::u16string(line.next_field(position)));
}

TEST(RowLine, KeepsAtMost2047Units) {
    RowLine line;
    line.assign(std::u16string(3000, u'x'));
    EXPECT_EQ(std::u16string(2047, u'x'), line.text());
}

TEST(Row, GivesFieldsByColumn) {
    RowLine line;
    line.assign(u"a\t\tc\td e\tnext");
    Row row(line, 4);
    EXPECT_EQ(u"a", std::u16string(row['A']));
    EXPECT_FALSE(row.has('B'));
    EXPECT_TRUE(row.has('C'));
    EXPECT_EQ(u"d_e", std::u16string(row.name('D')));
    EXPECT_EQ(u"next", std::u16string(row.next()));
    EXPECT_FALSE(row.exhausted());
}

TEST(Row, IsExhaustedAtTheEndOfTheBuffer) {
    RowLine line;
    Row row(line, 1);
    for (int field = 1; field < 2046; ++field)
        row.next();
    EXPECT_FALSE(row.exhausted());
    row.next();
    EXPECT_TRUE(row.exhausted());
}

TEST(NormalizeName, BlanksBecomeUnderscores) {
    EXPECT_EQ(u"Paper_Tray_1", normalized(u"Paper Tray 1"));
}

TEST(NormalizeName, TrailingBlanksGoAndLeadingOnesStay) {
    EXPECT_EQ(u"__A", normalized(u"  A   "));
}

TEST(NormalizeName, OneQuoteAtEachEndGoes) {
    EXPECT_EQ(u"A_B", normalized(u"\"A B\""));
    EXPECT_EQ(u"\"A\"", normalized(u"\"\"A\"\""));
    EXPECT_EQ(u"A", normalized(u"A\""));
    EXPECT_EQ(u"A", normalized(u"\"A"));
}

TEST(NormalizeName, BlanksBehindTheQuoteGoAndThoseInFrontOfItStay) {
    EXPECT_EQ(u"A__", normalized(u"\"A  \"  "));
}

TEST(NormalizeName, EmptyAndNearlyEmptyTexts) {
    EXPECT_EQ(u"", normalized(u""));
    EXPECT_EQ(u"", normalized(u"   "));
    EXPECT_EQ(u"", normalized(u"\""));
    EXPECT_EQ(u"", normalized(u"\"\""));
    EXPECT_EQ(u"\"", normalized(u"\"\"\""));
    EXPECT_EQ(u"_", normalized(u"\" \""));
}

TEST(CellNumber, IsTheDecimalNumberAtTheStart) {
    EXPECT_EQ(12.5, pm::cell_number(u" 12.5 mm"));
    EXPECT_EQ(-0.5, pm::cell_number(u"-.5e0x"));
    EXPECT_EQ(250.0, pm::cell_number(u"+2.5E2e3"));
    EXPECT_EQ(0.0, pm::cell_number(u""));
    EXPECT_EQ(0.0, pm::cell_number(u"wide"));
}

TEST(CellNumber, TextsOfInfinityNanAndHexadecimalAreNone) {
    for (const char16_t* cell : {u"inf", u"-inf", u"INF", u"infinity", u"Informal", u"nan", u"NaN(12)",
                                 u"-nan", u"0x10", u"0X1.8p3", u"0x.8"}) {
        EXPECT_EQ(0.0, pm::cell_number(cell)) << pm::test::to_narrow_name(cell);
    }
    EXPECT_EQ(5.0, pm::cell_number(u"5inf"));
}

TEST(NormalizeName, TabsStay) {
    EXPECT_EQ(u"A\t", normalized(u"A\t"));
}

} // namespace

#include "platform/compound_names.h"

#include <gtest/gtest.h>
#include <string>

namespace pm {
namespace {

TEST(CompoundName, OneTo31UnitsAreAllowed) {
    EXPECT_FALSE(compound_name_allowed(u""));
    EXPECT_TRUE(compound_name_allowed(u"n"));
    EXPECT_TRUE(compound_name_allowed(std::u16string(31, u'n')));
    EXPECT_FALSE(compound_name_allowed(std::u16string(32, u'n')));
}

TEST(CompoundName, SurrogatePairCountsAsTwoUnits) {
    std::u16string name(29, u'n');
    name += u"\U0001F600";
    EXPECT_TRUE(compound_name_allowed(name));
    EXPECT_FALSE(compound_name_allowed(name + u"n"));
}

TEST(CompoundName, SeparatorsAreNotAllowed) {
    for (const char16_t unit : std::u16string_view(u"/\\:!")) {
        EXPECT_FALSE(compound_name_allowed(std::u16string(1, unit)));
        EXPECT_FALSE(compound_name_allowed(std::u16string(u"before") + unit + u"behind"));
    }
}

TEST(CompoundName, ZeroUnitIsNotAllowed) {
    EXPECT_FALSE(compound_name_allowed(std::u16string_view(u"a\0b", 3)));
}

TEST(CompoundName, OtherUnitsAreAllowed) {
    EXPECT_TRUE(compound_name_allowed(u"\u0005SummaryInformation"));
    EXPECT_TRUE(compound_name_allowed(u" .*?\"<>|[]{}~"));
    EXPECT_TRUE(compound_name_allowed(u"\u540D\u524D\uFFFF"));
}

TEST(CompoundName, UnpairedSurrogateIsAUnitLikeOthers) {
    for (const char16_t unit : {char16_t{0xD800}, char16_t{0xDBFF}, char16_t{0xDC00}, char16_t{0xDFFF}}) {
        const std::u16string name(1, unit);
        EXPECT_TRUE(compound_name_allowed(name));
        EXPECT_TRUE(compound_name_allowed(u"a" + name + u"b"));
        EXPECT_EQ(u"A" + name + u"B", compound_name_key(u"a" + name + u"b"));
    }
}

TEST(CompoundName, KeyIsEachUnitInUpperCase) {
    EXPECT_EQ(u"GR\u00D6\u00DFE 1", compound_name_key(u"Gr\u00F6\u00DFe 1"));
    EXPECT_EQ(u"\u041C\u041E", compound_name_key(u"\u043C\u043E"));
    EXPECT_EQ(u"\u03A3", compound_name_key(u"\u03C2"));
    EXPECT_EQ(u"\xD801\xDC28", compound_name_key(u"\xD801\xDC28"));
}

TEST(CompoundName, ShorterNamesComeFirst) {
    const CompoundNameOrder before;
    EXPECT_TRUE(before(u"ZZ", u"AAA"));
    EXPECT_FALSE(before(u"AAA", u"ZZ"));
    EXPECT_TRUE(before(u"AB", u"AC"));
    EXPECT_FALSE(before(u"AB", u"AB"));
}

TEST(CompoundName, NamesOfOneLengthGoByUnitsNotCharacters) {
    EXPECT_TRUE(CompoundNameOrder()(u"\xD83D\xDE00", u"\uFF21\uFF21"));
}

// Every mapping of the table's version, told apart from newer ones.
TEST(CompoundName, UpperCaseIsThatOfUnicode5) {
    const auto upper = [](char16_t unit) { return compound_name_key(std::u16string(1, unit))[0]; };
    EXPECT_EQ(u'\u00C0', upper(u'\u00E0'));
    EXPECT_EQ(u'\u00D7', upper(u'\u00D7'));
    EXPECT_EQ(u'\u00F7', upper(u'\u00F7')); // in the middle of a range of letters
    EXPECT_EQ(u'\u0178', upper(u'\u00FF'));
    EXPECT_EQ(u'I', upper(u'\u0131'));
    EXPECT_EQ(u'S', upper(u'\u017F'));
    EXPECT_EQ(u'\u01C4', upper(u'\u01C5'));
    EXPECT_EQ(u'\u0243', upper(u'\u0180')); // of 5.0
    EXPECT_EQ(u'\u2C64', upper(u'\u027D')); // of 5.0
    EXPECT_EQ(u'\u0250', upper(u'\u0250')); // of 5.1
    EXPECT_EQ(u'\u10D0', upper(u'\u10D0')); // of 11
    EXPECT_EQ(u'\uA65B', upper(u'\uA65B')); // of 5.1
    EXPECT_EQ(u'\uFF3A', upper(u'\uFF5A'));
    EXPECT_EQ(u'\uFF5B', upper(u'\uFF5B'));
    EXPECT_EQ(u'\uFFFF', upper(u'\uFFFF'));
    EXPECT_EQ(u'\u0001', upper(u'\u0001'));
}

TEST(CompoundName, UpperCaseMaps891UnitsToOnesThatStay) {
    int mapped = 0;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string name(1, static_cast<char16_t>(unit));
        const std::u16string key = compound_name_key(name);
        EXPECT_EQ(key, compound_name_key(key)) << unit;
        mapped += key != name ? 1 : 0;
    }
    EXPECT_EQ(891, mapped);
}

} // namespace
} // namespace pm

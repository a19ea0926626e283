#include "legacy/pc2_keys.h"

#include "legacy/legacy_support.h"
#include <set>

namespace pm::test {
namespace {

std::string described(const Pc2Key& key) {
    constexpr std::array<const char*, 6> names = {"none", "long", "double", "string", "bool", "void"};
    return to_narrow(key.key) + " " + names.at(static_cast<std::size_t>(key.type)) + " " +
           std::to_string(key.initial) + " " + std::to_string(key.first) + " " + std::to_string(key.last);
}

std::u16string folded(std::u16string_view text) {
    std::u16string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    });
    return lower;
}

TEST(Pc2Keys, AreThoseOfTheListInItsOrder) {
    std::vector<std::string> rows;
    for (const Pc2Key& key : pc2_keys()) {
        rows.push_back(described(key));
    }
    EXPECT_EQ(140U, rows.size());
    EXPECT_EQ(reference_lines("pc2_keys.txt"), rows);
}

TEST(Pc2Keys, OnlyTheFieldsOfAFormAreHexadecimal) {
    for (const Pc2Key& key : pc2_keys()) {
        EXPECT_EQ(key.key == u"Plotter/DriverCustom\\dmFields", key.hexadecimal) << to_narrow(key.key);
    }
}

TEST(Pc2Keys, OnlyRowsWithALastIndexAreIndexed) {
    std::set<std::u16string> indexed;
    for (const Pc2Key& key : pc2_keys()) {
        if (key.indexed()) indexed.emplace(key.key);
    }
    const std::set<std::u16string> expected = {
        u"Plotter/Device/PenTable\\Color",   u"Plotter/Device/WidthTable\\Color",
        u"Plotter/Device/SpeedTable\\Color", u"Plotter/Device/LineTypeTable\\Color",
        u"Plotter/User\\DeviceDriverCell",   u"Plotter/User\\UserWidth",
        u"Plotter/User\\UserHeight",         u"Plotter/DriverCustom\\PEN#"};
    EXPECT_EQ(expected, indexed);
}

TEST(Pc2Keys, EachIsFoundByItsNameInAnyCase) {
    for (const Pc2Key& key : pc2_keys().first(139)) {
        EXPECT_EQ(&key, find_pc2_key(key.key)) << to_narrow(key.key);
        EXPECT_EQ(&key, find_pc2_key(folded(key.key))) << to_narrow(key.key);
    }
}

TEST(Pc2Keys, TheRowWithoutAValueIsNotFound) {
    EXPECT_EQ(nullptr, find_pc2_key(u"Plotter/DriverCustom"));
}

TEST(Pc2Keys, AnIndexedOneMatchesWithAnythingBehindIt) {
    const Pc2Key* color = find_pc2_key(u"Plotter/Device/PenTable\\Color");
    ASSERT_NE(nullptr, color);
    EXPECT_EQ(u"Plotter/Device/PenTable\\Color", color->key);
    EXPECT_EQ(color, find_pc2_key(u"Plotter/Device/PenTable\\Color17"));
    EXPECT_EQ(color, find_pc2_key(u"plotter/device/pentable\\colorless"));
    EXPECT_EQ(color, find_pc2_key(u"Plotter/Device/PenTable\\Color" + std::u16string(600, u'1')));
    EXPECT_EQ(nullptr, find_pc2_key(u"Plotter/Device/PenTable\\Colo"));
}

TEST(Pc2Keys, AnOrdinaryOneMatchesWholeNamesOnly) {
    EXPECT_EQ(nullptr, find_pc2_key(u"PlotDriver\\Typ"));
    EXPECT_EQ(nullptr, find_pc2_key(u"PlotDriver\\Types"));
    EXPECT_EQ(nullptr, find_pc2_key(u"PlotDriver\\Type "));
    EXPECT_EQ(nullptr, find_pc2_key(u"PlotDriver/Type"));
    EXPECT_EQ(nullptr, find_pc2_key(u"\\Type"));
    EXPECT_EQ(nullptr, find_pc2_key(u""));
}

// The comparison ends after 50 units, which no key reaches: a longer name never passes for a key.
TEST(Pc2Keys, NoneIsAsLongAsTheComparison) {
    for (const Pc2Key& key : pc2_keys()) {
        EXPECT_LT(key.key.size(), pc2_key_compared) << to_narrow(key.key);
    }
}

TEST(Pc2Keys, NoNameMatchesTwo) {
    for (const Pc2Key& key : pc2_keys()) {
        const auto matching = std::count_if(pc2_keys().begin(), pc2_keys().end(), [&](const Pc2Key& each) {
            return key.key == each.key || (each.indexed() && key.key.starts_with(each.key));
        });
        EXPECT_EQ(1, matching) << to_narrow(key.key);
    }
}

} // namespace
} // namespace pm::test

#include "base/flags.h"
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

// Makes the operations of a set callable.
template<class Flags>
struct Open : Flags {
    using Flags::Flags;
    using Flags::get_flag;
    using Flags::get_flags;
    using Flags::set_flag;
    using Flags::set_flags;
    std::u16string text() const { return get_flags(); }
};

TEST(Flags, FreshSetIsAllZero) {
    const Open<ZT_Raster_Abilities> flags;
    EXPECT_EQ(u"0000", flags.text());
    EXPECT_EQ(0, flags.get_flag(0));
    EXPECT_EQ(0, flags.get_flag(3));
}

TEST(Flags, EachFlagHasItsDigit) {
    Open<ZT_Raster_Abilities> flags;
    flags.set_flag(1, 5);
    EXPECT_EQ(u"0500", flags.text());
    flags.set_flag(3, 15);
    EXPECT_EQ(u"050F", flags.text());
    EXPECT_EQ(5, flags.get_flag(1));
    EXPECT_EQ(15, flags.get_flag(3));
}

TEST(Flags, AllValuesAreKept) {
    Open<ZT_Flags> flags(16);
    for (int value = 0; value < 16; ++value)
        flags.set_flag(value, value);
    EXPECT_EQ(u"0123456789ABCDEF", flags.text());
    for (int value = 0; value < 16; ++value)
        EXPECT_EQ(value, flags.get_flag(value));
}

TEST(Flags, IndexOutsideTheSetIsIgnoredAndReadsZero) {
    Open<ZT_Raster_Abilities> flags;
    flags.set_flag(-1, 5);
    flags.set_flag(4, 5);
    EXPECT_EQ(u"0000", flags.text());
    EXPECT_EQ(0, flags.get_flag(-1));
    EXPECT_EQ(0, flags.get_flag(4));
}

TEST(Flags, SetFlagsSetsAll) {
    Open<ZT_Raster_Abilities> flags;
    flags.set_flags(3);
    EXPECT_EQ(u"3333", flags.text());
    flags.set_flags(0);
    EXPECT_EQ(u"0000", flags.text());
}

TEST(Flags, AssignmentCopiesAllFlags) {
    Open<UC_Method_Abilties> flags;
    flags.set_flag(7, 5);
    flags = Open<UC_Method_Abilties>();
    EXPECT_EQ(std::u16string(20, u'0'), flags.text());
}

template<class Flags>
std::size_t count_of() {
    return Open<Flags>().text().size();
}

TEST(Flags, SetsHaveTheirCounts) {
    EXPECT_EQ(51U, count_of<ZT_Media_Abilities>());
    EXPECT_EQ(24U, count_of<ZT_ResColorMem_Abilities>());
    EXPECT_EQ(12U, count_of<ZT_Plotter_IO_Abilities>());
    EXPECT_EQ(20U, count_of<UC_Method_Abilties>());
    EXPECT_EQ(4U, count_of<ZT_Raster_Abilities>());
    EXPECT_EQ(5U, count_of<ZT_Linetype_Linefont_Caps>());
    EXPECT_EQ(19U, count_of<ZT_PhysPens_Abilities>());
    EXPECT_EQ(3U, count_of<ZT_InitTerm_Abilities>());
    EXPECT_EQ(12U, count_of<ZT_Model_Ability>());
    EXPECT_EQ(2U, count_of<UC_Linetype_Abilities>());
    EXPECT_EQ(3U, count_of<ZT_InitTerm_UI_Owner>());
    EXPECT_EQ(7U, count_of<ZT_PhysPen_UI_Owner>());
    EXPECT_EQ(14U, count_of<ZT_ResColorMem_UI_Owner>());
    EXPECT_EQ(9U, count_of<ZT_IO_UI_Owner>());
    EXPECT_EQ(23U, count_of<ZT_Media_UI_Owner>());
}

TEST(Flags, SetsBelongToTheirFamilies) {
    EXPECT_TRUE((std::is_base_of_v<ZT_Abilities, UC_Method_Abilties>));
    EXPECT_TRUE((std::is_base_of_v<ZT_UI_Ownership, ZT_Media_UI_Owner>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Boolean_Flags, ZT_Linetype_Linefont_Caps>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Object, ZT_Flags>));
}

template<class Capabilities>
std::u16string fresh_states() {
    return Capabilities().get_abilities();
}

TEST(CapabilityStates, GroupsHaveTheirCounts) {
    EXPECT_EQ(std::u16string(15, u'0'), fresh_states<ZT_Std_ResColorMem_Capabilities>());
    EXPECT_EQ(std::u16string(19, u'0'), fresh_states<ZT_Std_Media_Capabilities>());
    EXPECT_EQ(std::u16string(4, u'0'), fresh_states<ZT_Std_Linetype_Capabilities>());
    EXPECT_EQ(std::u16string(16, u'0'), fresh_states<ZT_Std_PhysPen_Capabilities>());
    EXPECT_EQ(std::u16string(4, u'0'), fresh_states<ZT_Std_Plotter_IO_Capabilities>());
}

TEST(CapabilityStates, EachItemHasItsDigit) {
    ZT_Std_Linetype_Capabilities states;
    states.set_one_caps_state(true, ZT_Linetype_User_Flags::Enum{2});
    EXPECT_EQ(std::u16string(u"0010"), states.get_abilities());
    states.set_one_caps_state(false, ZT_Linetype_User_Flags::Enum{2});
    EXPECT_EQ(std::u16string(u"0000"), states.get_abilities());
}

TEST(CapabilityStates, ItemOutsideTheGroupIsIgnored) {
    ZT_Std_Linetype_Capabilities states;
    states.set_one_caps_state(true, ZT_Linetype_User_Flags::Enum{4});
    states.set_one_caps_state(true, ZT_Linetype_User_Flags::Enum{-1});
    EXPECT_EQ(std::u16string(u"0000"), states.get_abilities());
}

} // namespace

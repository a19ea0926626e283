#pragma once

#include <cstdint>
#include <pm/zt_string.h>
#include <string>

namespace pm {
struct FlagAccess;
}

// A fixed number of flags, each a number from 0 to 15, all 0 at the start. A subclass only tells how many.
class ZT_Flags : public ZT_Object {
public:
    explicit ZT_Flags(int count);
    ZT_Flags(const ZT_Flags&) = default;
    ZT_Flags& operator=(const ZT_Flags&) = default;
    ~ZT_Flags() override;

protected:
    friend struct pm::FlagAccess;

    // An index outside the set is ignored, and reads 0. Of a value the low four bits are kept.
    void set_flag(int index, int value);
    int get_flag(int index) const;
    void set_flags(int value);
    // The text form: one uppercase hexadecimal digit a flag, flag 0 first. Valid while the set lives and
    // isn't changed.
    const char16_t* get_flags() const { return m_digits.c_str(); }

private:
    bool has(int index) const { return index >= 0 && index < static_cast<int>(m_digits.size()); }

    std::u16string m_digits;
};

namespace pm {

// Opens the flags of any set to whoever fills or shows it.
struct FlagAccess {
    static void set(ZT_Flags& flags, int index, int value) { flags.set_flag(index, value); }
    static int get(const ZT_Flags& flags, int index) { return flags.get_flag(index); }
    static const char16_t* text(const ZT_Flags& flags) { return flags.get_flags(); }
};

} // namespace pm

class ZT_Abilities : public ZT_Flags {
public:
    using ZT_Flags::ZT_Flags;
};

class ZT_UI_Ownership : public ZT_Flags {
public:
    using ZT_Flags::ZT_Flags;
};

class ZT_Boolean_Flags : public ZT_Flags {
public:
    explicit ZT_Boolean_Flags(int count) : ZT_Flags(count) { set_flags(0); }
};

struct ZT_Raster_Abilities : ZT_Abilities {
    ZT_Raster_Abilities() : ZT_Abilities(4) {}
};
struct ZT_PhysPens_Abilities : ZT_Abilities {
    ZT_PhysPens_Abilities() : ZT_Abilities(19) {}
};
struct ZT_InitTerm_Abilities : ZT_Abilities {
    ZT_InitTerm_Abilities() : ZT_Abilities(3) {}
};
struct ZT_ResColorMem_Abilities : ZT_Abilities {
    ZT_ResColorMem_Abilities() : ZT_Abilities(24) {}
};
struct ZT_Media_Abilities : ZT_Abilities {
    ZT_Media_Abilities() : ZT_Abilities(51) {}
};
struct ZT_Plotter_IO_Abilities : ZT_Abilities {
    ZT_Plotter_IO_Abilities() : ZT_Abilities(12) {}
};
struct ZT_Model_Ability : ZT_Abilities {
    ZT_Model_Ability() : ZT_Abilities(12) {}
};
struct UC_Method_Abilties : ZT_Abilities {
    UC_Method_Abilties() : ZT_Abilities(20) {}
};
struct UC_Linetype_Abilities : ZT_Abilities {
    UC_Linetype_Abilities() : ZT_Abilities(2) {}
};

struct ZT_PhysPen_UI_Owner : ZT_UI_Ownership {
    ZT_PhysPen_UI_Owner() : ZT_UI_Ownership(7) {}
};
struct ZT_InitTerm_UI_Owner : ZT_UI_Ownership {
    ZT_InitTerm_UI_Owner() : ZT_UI_Ownership(3) {}
};
struct ZT_ResColorMem_UI_Owner : ZT_UI_Ownership {
    ZT_ResColorMem_UI_Owner() : ZT_UI_Ownership(14) {}
};
struct ZT_Media_UI_Owner : ZT_UI_Ownership {
    ZT_Media_UI_Owner() : ZT_UI_Ownership(23) {}
};
struct ZT_IO_UI_Owner : ZT_UI_Ownership {
    ZT_IO_UI_Owner() : ZT_UI_Ownership(9) {}
};

// Four fonts a flag: font c is bit c & 3 of flag c >> 2.
struct ZT_Linetype_Linefont_Caps : ZT_Boolean_Flags {
    ZT_Linetype_Linefont_Caps() : ZT_Boolean_Flags(5) {}
};

// The capabilities of each group that a user may have changed, by number.
struct ZT_ResColorMem_User_Flags {
    static constexpr int count = 15;
    enum Enum : std::int32_t {};
};
struct ZT_Media_User_Flags {
    static constexpr int count = 19;
    enum Enum : std::int32_t {};
};
struct ZT_Linetype_User_Flags {
    static constexpr int count = 4;
    enum Enum : std::int32_t {};
};
struct ZT_Pen_User_Flags {
    static constexpr int count = 16;
    enum Enum : std::int32_t {};
};
struct ZT_Plotter_IO_User_Flags {
    static constexpr int count = 4;
    enum Enum : std::int32_t {};
};

namespace pm {

// Which user flags of a group are set: one digit a flag, "0" or "1", all "0" at the start.
template<class UserFlags>
class CapabilityStates : public ZT_Object {
public:
    // An item outside the group is ignored.
    void set_one_caps_state(bool state, typename UserFlags::Enum item) {
        if (item >= 0 && item < UserFlags::count) {
            m_digits[static_cast<std::size_t>(item)] = state ? u'1' : u'0';
        }
    }
    const char16_t* get_abilities() const { return m_digits.c_str(); }

private:
    std::u16string m_digits = std::u16string(UserFlags::count, u'0');
};

} // namespace pm

class ZT_Std_ResColorMem_Capabilities : public pm::CapabilityStates<ZT_ResColorMem_User_Flags> {};
class ZT_Std_Media_Capabilities : public pm::CapabilityStates<ZT_Media_User_Flags> {};
class ZT_Std_Linetype_Capabilities : public pm::CapabilityStates<ZT_Linetype_User_Flags> {};
class ZT_Std_PhysPen_Capabilities : public pm::CapabilityStates<ZT_Pen_User_Flags> {};
class ZT_Std_Plotter_IO_Capabilities : public pm::CapabilityStates<ZT_Plotter_IO_User_Flags> {};

#include "pdt/sections/capability_states.h"

#include "pdt/branch.h"

namespace pm {

namespace {

template<class Capabilities, class UserFlags>
void write_all_unset(Branch& root, const char16_t* item) {
    Capabilities states;
    for (int flag = 0; flag < UserFlags::count; ++flag) {
        states.set_one_caps_state(false, static_cast<typename UserFlags::Enum>(flag));
    }
    root.set_string(item, states.get_abilities());
}

} // namespace

void write_capability_states(PdtLoad& load) {
    Branch root(load, {});
    write_all_unset<ZT_Std_ResColorMem_Capabilities, ZT_ResColorMem_User_Flags>(
        root, u"\\res_color_mem\\caps_state");
    write_all_unset<ZT_Std_Media_Capabilities, ZT_Media_User_Flags>(root, u"\\media\\caps_state");
    write_all_unset<ZT_Std_Linetype_Capabilities, ZT_Linetype_User_Flags>(root, u"\\linetype\\caps_state");
    write_all_unset<ZT_Std_PhysPen_Capabilities, ZT_Pen_User_Flags>(root, u"\\physical_pen\\caps_state");
    write_all_unset<ZT_Std_Plotter_IO_Capabilities, ZT_Plotter_IO_User_Flags>(root, u"\\io\\caps_state");
    root.set_double(u"\\meta\\toolkit_version", 0.0);
}

} // namespace pm

// Builds a tree, saves it compressed, loads it into another one and reads values back.
//
//     first_tree FILE

#include <cstdio>
#include <pm/pm.h>

namespace {

pm::Tree make_settings() {
    pm::Tree settings;
    settings.set("\\media\\default_size", "ISO_A1_landscape");
    settings.set("\\media\\copies", 2);
    settings.set("\\media\\printable_area", 0.9825);
    // The index takes the place of the "*": \media\size\0\name and \media\size\1\name.
    settings.set("\\media\\size\\*\\name", "ISO_A0", 0);
    settings.set("\\media\\size\\*\\name", "ISO_A1", 1);
    return settings;
}

bool is_complete(const pm::Tree& settings) {
    return settings.get<int>("\\media\\copies") == 2 &&
           settings.at<std::string>("\\media\\size\\*\\name", 1) == "ISO_A1" &&
           settings.get<int>("\\media\\never_set").value_or(-1) == -1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        pm::save(make_settings(), argv[1], {.tag = "EXAMPLE_1.0,compress"});
        const auto [settings, reports] = pm::load(argv[1]);
        return is_complete(settings) && reports.empty() ? 0 : 1;
    } catch (const ZT_Exception& e) {
        std::printf("error %u in %s\n", e.m_number, e.m_place_narrow);
        return 2;
    }
}

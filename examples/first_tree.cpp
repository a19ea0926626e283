// Builds a tree, saves it compressed, loads it into another object and reads a value back.
//
//     first_tree FILE

#include <cstdio>
#include <pm/pm.h>
#include <string>

namespace {

std::u16string widen(const char* ascii) {
    const std::string text = ascii;
    return {text.begin(), text.end()};
}

void save_settings(const std::u16string& file) {
    PM_Object settings;
    settings.SetProperty(u"\\media\\default_size", u"ISO_A1_landscape");
    settings.SetProperty(u"\\media\\copies", 2);
    settings.SetProperty(u"\\media\\printable_area", 0.9825);
    // The index takes the place of the "*": \media\size\0\name and \media\size\1\name.
    settings.SetProperty(u"\\media\\size\\*\\name", u"ISO_A0", 0);
    settings.SetProperty(u"\\media\\size\\*\\name", u"ISO_A1", 1);
    settings.save(file.c_str(), PM_Object::FILE_PIA, u"EXAMPLE_1.0,compress", u"\\");
}

bool check_settings(const std::u16string& file) {
    PM_Object settings;
    settings.load(file.c_str(), PM_Object::FILE_PIA, u"\\");
    int copies = 0;
    char16_t name[32] = {};
    return settings.GetProperty(u"\\media\\copies", copies) && copies == 2 &&
           settings.GetProperty(u"\\media\\size\\*\\name", name, sizeof name, 1) &&
           std::u16string(name) == u"ISO_A1" && !settings.GetProperty(u"\\media\\never_set", copies);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        const std::u16string file = widen(argv[1]);
        save_settings(file);
        return check_settings(file) ? 0 : 1;
    } catch (const ZT_Exception& e) {
        std::printf("error %u in %s\n", e.m_number, e.m_place_narrow);
        return 2;
    }
}

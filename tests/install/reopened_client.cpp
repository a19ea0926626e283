// A part of a host, which comes and goes with the library that it uses.

#include <pm/pm.h>
#include <sstream>

// Saves a tree and loads it, meets a failure, and asks for its text, for which the message library is opened.
extern "C" __attribute__((visibility("default"))) bool use_library() {
    PM_Object object;
    object.SetProperty(u"\\a\\b", u"\u7528");
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_PIA, u"reopened,compress", u"\\");
    PM_Object back;
    back.load(stream, PM_Object::FILE_PIA, u"\\");
    try {
        back.deletePath(u"\\nothing");
    } catch (const PM_Warning& e) {
        ZT_String text;
        pm_error_text(e.m_number, text);
        return text.length() > 0 && back.getPropertySize(u"\\a\\b") == 2 * sizeof(char16_t);
    }
    return false;
}

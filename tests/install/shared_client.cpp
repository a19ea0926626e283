#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <pm/pm.h>
#include <string>

// shared_client FOLDER: a program that shares its C++ runtime with the library, which it doesn't hold itself.
// Exceptions and streams go from one to the other, and an object of the program's saves itself when the
// program ends. Ends with 0 and "done" if all went well.

namespace {

void expect(bool holds, const char* what) {
    if (holds) return;
    std::printf("not so: %s\n", what);
    std::exit(1);
}

std::filesystem::path folder;

// Saves itself at the end of the program.
struct Keeper {
    Keeper() = default;
    ~Keeper() {
        tree.SetProperty(u"kept", true);
        tree.save((folder / "kept.pia").u16string().c_str(), PM_Object::FILE_PIA, u"KEPT_1.0", u"\\");
    }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

    PM_Object tree;
};

void catch_what_the_library_throws() {
    PM_Object tree;
    std::uint32_t number = 0;
    try {
        tree.deletePath(u"nothing\\here");
    } catch (const PM_Warning& e) {
        number = e.m_number;
    }
    expect(number == PM_ERR_BAD_PATH || number == PM_ERR_NOTHING_THERE, "a PM_Warning is caught as one");
    bool is_base = false;
    try {
        tree.load(u"no such file", PM_Object::FILE_PIA, u"\\");
    } catch (const ZT_Exception& e) {
        is_base = e.kind() == 4 && e.m_number == PM_ERR_NO_SUCH_FILE;
    }
    expect(is_base, "a PM_Severe is caught as a ZT_Exception");
    ZT_String text;
    expect(pm_error_text(PM_ERR_NO_SUCH_FILE, text) &&
               std::u16string(u"The file doesn't exist") == text.text(),
           "there is the text of a number");
}

void pass_streams() {
    PM_Object tree;
    tree.SetProperty(u"copies", 3);
    const std::filesystem::path file = folder / "stream.pia";
    {
        std::fstream stream(file, std::ios::out | std::ios::binary);
        tree.save(stream, PM_Object::FILE_PIA, u"STREAM_1.0,compress", u"\\");
    }
    std::fstream stream(file, std::ios::in | std::ios::binary);
    PM_Object loaded;
    loaded.load(stream, PM_Object::FILE_PIA, u"\\");
    int copies = 0;
    expect(loaded.GetProperty(u"copies", copies) && copies == 3, "what a stream took comes back");
    stream.close();
    bool is_told = false;
    try {
        loaded.load(stream, PM_Object::FILE_PIA, u"\\");
    } catch (const PM_Severe&) {
        is_told = true;
    }
    expect(is_told, "a closed stream is told");
}

// A handler of the program's is called by the library, and may throw through it.
void stop_in_a_handler() {
    struct Stop {};
    struct Handler : pm::ReportHandler {
        pm::Answer on_report(int, std::uint32_t, std::u16string_view, std::u16string_view) override {
            throw Stop();
        }
    } handler;
    PM_Object tree(&handler);
    std::ofstream(folder / "bad.pia", std::ios::binary) << "PIAFILEVERSION_2.0,BAD_1.0\r\nb=yes\n";
    bool is_stopped = false;
    try {
        tree.load((folder / "bad.pia").u16string().c_str(), PM_Object::FILE_PIA, u"\\");
    } catch (const Stop&) {
        is_stopped = true;
    }
    expect(is_stopped, "an exception of the program's own passes the library");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    folder = argv[1];
    static Keeper keeper;
    keeper.tree.SetProperty(u"name", u"\u00C4");
    catch_what_the_library_throws();
    pass_streams();
    stop_in_a_handler();
    std::puts("done");
    return 0;
}

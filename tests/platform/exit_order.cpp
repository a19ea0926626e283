#include <cstdio>
#include <cstdlib>
#include <optional>
#include <pm/pm.h>
#include <sstream>
#include <string>
#include <string_view>

// exit_order global|static|thread_local|atexit [early]: something uses the library at the end of the program,
// when other objects are destroyed already. With "early" the library is in use before, else for the first
// time. "kept" goes to the standard output when all went well.

namespace {

void expect(bool holds) {
    if (!holds) std::abort();
}

std::string saved(const PM_Object& tree, const char16_t* tag) {
    std::stringstream stream;
    tree.save(stream, PM_Object::FILE_PIA, tag, u"\\");
    return stream.str();
}

void expect_no_such_file(PM_Object& tree) {
    try {
        tree.load(u"/nowhere/at/all.pia", PM_Object::FILE_PIA, u"\\");
    } catch (const PM_Severe& e) {
        expect(e.m_number == PM_ERR_NO_SUCH_FILE);
        expect(std::string_view(e.m_place_narrow) == "PM_PIAFile::load()");
        return;
    }
    std::abort();
}

void use_library() {
    struct Form {
        unsigned code_page;
        std::string line;
    };
    PM_Object tree;
    tree.SetProperty(u"name", u"\u00C4\u3042");
    for (const Form& form : {Form{1252, "name=\"\xC4?\n"}, Form{932, "name=\"?\x82\xA0\n"},
                             Form{65001, "name=\"\xC3\x84\xE3\x81\x82\n"}}) {
        pm_set_system_code_page(form.code_page);
        expect(saved(tree, u"KEPT_1.0").find(form.line) != std::string::npos);
        expect(!saved(tree, u"KEPT_1.0,compress").empty());
        expect_no_such_file(tree);
    }
    ZT_String text;
    expect(pm_error_text(PM_ERR_NO_SUCH_FILE, text) ==
           (text.length() > 0)); // the texts may be closed already
}

void keep() {
    use_library();
    std::fputs("kept", stdout);
    std::fflush(stdout);
}

struct Keeper {
    Keeper() = default;
    ~Keeper() { keep(); }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
};

std::optional<Keeper> global_keeper;

} // namespace

int main(int argc, char** argv) {
    const std::string_view kind = argc > 1 ? argv[1] : "";
    if (kind == "global") {
        global_keeper.emplace();
    } else if (kind == "static") {
        static const Keeper keeper;
    } else if (kind == "thread_local") {
        thread_local const Keeper keeper;
        static_cast<void>(&keeper);
    } else if (kind != "atexit" || std::atexit(keep) != 0) {
        return 2;
    }
    if (argc > 2) use_library();
    return 0;
}

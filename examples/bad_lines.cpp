// Loads a text with bad lines from a stream, hears of each of them and keeps what is good.

#include <cstdio>
#include <pm/pm.h>
#include <sstream>
#include <string>

namespace {

class Listener : public ZT_Error_Handler {
public:
    void on_kind_0(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    int on_warning(std::uint64_t, std::uint32_t number, const char16_t*, const char16_t*,
                   const char16_t*) override {
        return tell(number);
    }
    void on_severe(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    int on_error(std::uint64_t, std::uint32_t number, const char16_t*, const char16_t*,
                 const char16_t*) override {
        return tell(number);
    }
    int on_kind_3(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
        return 1;
    }
    void on_kind_5(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    void set_arguments(const std::uint64_t*, std::int32_t) override {}

private:
    static int tell(std::uint32_t number) {
        ZT_String text;
        if (pm_error_text(number, text)) {
            const std::u16string_view wide = text.text();
            std::printf("%u: %s\n", number, std::string(wide.begin(), wide.end()).c_str());
        }
        return 1; // nonzero: go on with the next line
    }
};

} // namespace

int main() {
    std::stringstream file("PIAFILEVERSION_2.0,EXAMPLE_1.0\r\n"
                           "width=0.25\n"
                           "height=\n"
                           "color=blue\n");
    Listener listener;
    PM_Object object(&listener);
    object.load(file, PM_Object::FILE_PIA, u"\\");
    double width = 0;
    if (!object.GetProperty(u"\\width", width)) return 1;
    std::printf("and width = %g\n", width);
    return 0;
}

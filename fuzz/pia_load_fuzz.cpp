#include "fuzz_support.h"
#include <cstdlib>
#include <pm/pm.h>
#include <sstream>
#include <string>

namespace {

// Bodies go through memory: no folder of temporary files.
const bool without_folder = setenv("TMPDIR", "/nonexistent", 1) == 0;

// Lets every report pass.
class PassingHandler : public ZT_Error_Handler {
public:
    void on_kind_0(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    int on_warning(std::uint64_t, std::uint32_t, const char16_t* place, const char16_t* detail,
                   const char16_t*) override {
        pm::fuzz::require(place != nullptr && detail != nullptr);
        return 1;
    }
    void on_severe(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    int on_error(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
        return 1;
    }
    int on_kind_3(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
        return 1;
    }
    void on_kind_5(std::uint64_t, std::uint32_t, const char16_t*, const char16_t*, const char16_t*) override {
    }
    void set_arguments(const std::uint64_t*, std::int32_t) override {}
};

void load(PM_Object& object, const std::string& bytes, const char16_t* base) {
    std::stringstream stream(bytes);
    try {
        object.load(stream, PM_Object::FILE_PIA, base);
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
}

std::string save(const PM_Object& object, const char16_t* tag) {
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_PIA, tag, u"\\");
    return stream.str();
}

} // namespace

// Whatever a file gives can be saved, and what was saved can be read to its end or is refused.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pm::fuzz::require(without_folder);
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    PM_Object strict;
    load(strict, bytes, u"\\");

    PassingHandler handler;
    PM_Object lenient(&handler);
    load(lenient, bytes, u"base");
    PM_Object again(&handler);
    load(again, save(lenient, u"fuzz"), u"\\");
    load(again, save(lenient, u"fuzz,compress"), u"other");
    return 0;
}

#include "cost.h"
#include "fuzz_support.h"
#include <pm/pm.h>
#include <sstream>
#include <string>
#include <string_view>

namespace {

// Lets every report pass.
class PassingHandler : public pm::ReportHandler {
public:
    pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view, std::u16string_view) override {
        pm::fuzz::require(kind == 1 || kind == 2 || kind == 4);
        pm::fuzz::require(number != 0);
        return pm::Answer::go_on;
    }
};

void load(PM_Object& object, const std::string& bytes, const char16_t* base) {
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(bytes));
    std::stringstream stream(bytes);
    try {
        object.load(stream, PM_Object::FILE_PIA, base);
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
    bound.require_held();
}

std::string save(const PM_Object& object, const char16_t* tag) {
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_PIA, tag, u"\\");
    return stream.str();
}

} // namespace

// Whatever a file gives can be saved, and what was saved can be read to its end or is refused.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
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

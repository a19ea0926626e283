#include "docs/outcome.h"
#include "docs/page.h"

#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;

// A body behind an ordinary header.
std::string run_body(const std::string& body) {
    return load_outcome("PIAFILEVERSION_2.0,\r\n" + body, PM_Object::FILE_PIA);
}

std::string run_value(const std::string& value) {
    return run_body("a=" + value + '\n');
}

std::string run_file(const std::string& file) {
    return load_outcome(file, PM_Object::FILE_PIA);
}

PM_PAGE_ROWS(pia, (Runs{{"body", run_body}, {"value", run_value}, {"file", run_file}}));

} // namespace

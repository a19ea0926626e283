#pragma once

#include <fmt/format.h>
#include <pm/kit/check.h>
#include <string>
#include <string_view>
#include <vector>

namespace pm::kit::test {

// A diagnostic as one line: "3:5 warning bad-line(57) \path: message", with "section " in front if it has one.
inline std::string line_of(const Diagnostic& each) {
    std::string text = each.place.section.empty() ? std::string() : "[" + each.place.section + "] ";
    text += fmt::format("{}:{} {} {}", each.place.line, each.place.column, severity_name(each.severity), each.rule);
    if (each.number != 0) text += fmt::format("({})", each.number);
    if (!each.path.empty()) text += " " + each.path;
    return text + ": " + each.message;
}

inline std::vector<std::string> lines_of(const std::vector<Diagnostic>& all) {
    std::vector<std::string> lines;
    for (const Diagnostic& each : all) {
        lines.push_back(line_of(each));
    }
    return lines;
}

inline std::vector<std::string> check(std::string_view content, PM_Object::FileType type, CheckOptions options = {}) {
    options.type = type;
    return lines_of(check_content(content, "file", options));
}

} // namespace pm::kit::test

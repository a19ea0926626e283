#include "help/words.h"

#include "formats.h"
#include "text.h"
#include "value.h"
#include <algorithm>
#include <fmt/format.h>

namespace pmtool {

namespace {

std::vector<std::string> split_names(const std::string& names) {
    std::vector<std::string> result;
    for (std::size_t at = 0; at < names.size();) {
        const std::size_t end = std::min(names.find(", ", at), names.size());
        result.push_back(names.substr(at, end - at));
        at = end + 2;
    }
    return result;
}

} // namespace

std::string usage_line(const VerbEntry& entry) {
    std::string line = fmt::format("pmtool {} [OPTIONS]", entry.verb.name);
    for (const OptionWords& option : entry.options) {
        if (!option.is_argument()) continue;
        line += option.is_required ? ' ' + option.term() : " [" + option.term() + ']';
    }
    return line;
}

std::vector<std::string> paragraphs(std::string_view text) {
    std::vector<std::string> all;
    bool in_paragraph = false;
    while (!text.empty()) {
        const std::string line(take_line(text));
        const bool goes_on = in_paragraph && !line.empty() && line.front() != ' ';
        if (goes_on) {
            all.back() += ' ' + line;
        } else if (!line.empty()) {
            all.push_back(line);
        }
        in_paragraph = !line.empty() && line.front() != ' ';
    }
    return all;
}

std::vector<Example> examples_of(std::string_view text) {
    std::vector<Example> all;
    while (!text.empty()) {
        const std::string_view line = trim(take_line(text));
        if (line.empty()) continue;
        const std::size_t end = std::min(line.find("  "), line.size());
        all.push_back({std::string(line.substr(0, end)), std::string(trim(line.substr(end)))});
    }
    return all;
}

std::vector<std::string> values_of(const OptionWords& option) {
    if (option.value == "FORMAT") {
        const bool is_written = std::ranges::find(option.names, "--to") != option.names.end();
        return split_names(format_names(is_written));
    }
    if (option.value == "TYPE") return split_names(type_names());
    if (option.value == "WHEN") return {"always", "never", "auto"};
    if (option.value == "SHELL") return {"bash", "zsh", "fish"};
    return {};
}

} // namespace pmtool

#include "header.h"

#include <algorithm>

namespace pm::kit {

namespace {

constexpr std::string_view version_1 = "PIAFILEVERSION_1.0";
constexpr std::string_view version_2 = "PIAFILEVERSION_2.0";
constexpr std::size_t version_size = version_1.size();

bool starts_with(std::string_view line, std::string_view version) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    return line.size() >= version.size() &&
           std::ranges::equal(line.substr(0, version.size()), version, {}, upper);
}

} // namespace

Header read_header(std::string_view bytes) {
    Header header;
    std::string_view line;
    while (line.empty() && header.end < bytes.size()) {
        const std::size_t end = std::min(bytes.find('\n', header.end), bytes.size());
        line = bytes.substr(header.end, end - header.end);
        header.end = std::min(end + 1, bytes.size());
        if (line.ends_with('\r')) line.remove_suffix(1);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    }
    if (starts_with(line, version_1)) header.version = 1;
    if (starts_with(line, version_2)) header.version = 2;
    const std::size_t comma = line.find(',');
    if (header.version != 0) header.text = line.substr(version_size, comma - version_size);
    if (comma != std::string_view::npos) header.tag = line.substr(comma + 1);
    header.compressed = line.find("compress") != std::string_view::npos;
    return header;
}

} // namespace pm::kit

#pragma once

#include <optional>
#include <report/page.h>
#include <unordered_map>

// What a page says of one value of a configuration, wherever it shows it.
namespace pm::kit::report {

// How a value is taken by the checks of its configuration.
enum class Verdict { not_checked, unspoken, possible, doubtful, impossible };

class Settings {
public:
    explicit Settings(const ReportInput& input);

    [[nodiscard]] Verdict verdict(Origin configuration, const std::string& path) const;
    // The description's text for one of its names.
    [[nodiscard]] std::string translated(const Property& property) const;
    // The value with its meaning, or what is told instead, and its verdict.
    void write(Html& html, Origin configuration, const std::string& path, const Property& property,
               std::string_view instead = {}) const;

private:
    std::vector<std::unordered_map<std::string, Verdict>> m_verdicts; // of each configuration, by path
    std::unordered_map<std::string, std::string> m_texts;             // of the description, by name
};

// What the signs behind values mean.
void write_legend(Html& html);
// Whether a value says nothing: 0, an empty text, no value, bytes that are all 0.
[[nodiscard]] bool says_nothing(const Property& property);
// What a group of settings is called, by the name of its node.
[[nodiscard]] std::string group_title(std::string_view node);
// "Serial › Baud rate" for "\serial\baud_rate".
[[nodiscard]] std::string spoken_path(std::string_view path);

} // namespace pm::kit::report

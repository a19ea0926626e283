#pragma once

#include "check/rules.h"
#include <bitset>
#include <string>
#include <vector>

namespace pm::kit {

// One thing that a scanner found, on its way to a diagnostic.
struct RuleFinding {
    Rule rule;
    Place place = {};
    std::string message = {};
    std::string path = {};
    std::uint32_t number = 0;
    std::optional<Severity> severity = {}; // the rule's own without one
};

// Gathers what the scanners of one check find, but for the rules that the caller doesn't want.
class Findings {
public:
    // Throws Error for the name of a rule that isn't there.
    explicit Findings(const CheckOptions& options);

    [[nodiscard]] bool wants(Rule rule) const { return m_wanted[static_cast<std::size_t>(rule)]; }
    void add(RuleFinding finding);
    [[nodiscard]] bool has_number(std::uint32_t number) const;
    // Everything since `first`, a former count(), in the order of lines and columns.
    void sort_from(std::size_t first);
    [[nodiscard]] std::size_t count() const { return m_numbers.size(); }
    // The numbers of the library that were told since then, wanted or not, with their lines.
    [[nodiscard]] std::vector<std::pair<std::uint32_t, std::uint64_t>> numbers_from(std::size_t first) const;
    [[nodiscard]] std::vector<Diagnostic> take() { return std::move(m_found); }

private:
    static constexpr std::size_t rule_count = static_cast<std::size_t>(Rule::unused_translation) + 1;
    std::bitset<rule_count> m_wanted;
    std::vector<Diagnostic> m_found;
    struct Told {
        std::uint32_t number;
        std::uint64_t line;
        std::size_t found; // how many diagnostics there were before
    };
    std::vector<Told> m_numbers; // of every finding, wanted or not
};

} // namespace pm::kit

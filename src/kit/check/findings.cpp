#include "check/findings.h"

#include <algorithm>
#include <fmt/format.h>
#include <pm/kit/error.h>
#include <pm/kit/stored.h>
#include <tuple>

namespace pm::kit {

Findings::Findings(const CheckOptions& options) {
    if (options.rules.empty()) m_wanted.set();
    const auto mark = [this](const std::vector<std::string>& names, bool wanted) {
        for (const std::string& name : names) {
            const CheckRule* const rule = find_check_rule(name);
            if (rule == nullptr) throw Error(fmt::format("{}: there is no such rule", printable_text(name)));
            m_wanted[static_cast<std::size_t>(rule - check_rules().data())] = wanted;
        }
    };
    mark(options.rules, true);
    mark(options.without, false);
}

void Findings::add(RuleFinding finding) {
    m_numbers.push_back({finding.number, finding.place.line, m_found.size()});
    if (!wants(finding.rule)) return;
    const CheckRule& rule = rule_info(finding.rule);
    m_found.push_back({std::string(rule.name), finding.severity.value_or(rule.severity),
                       std::move(finding.place), std::move(finding.path), std::move(finding.message),
                       finding.number});
}

std::vector<std::pair<std::uint32_t, std::uint64_t>> Findings::numbers_from(std::size_t first) const {
    std::vector<std::pair<std::uint32_t, std::uint64_t>> all;
    for (std::size_t at = first; at < m_numbers.size(); ++at) {
        if (m_numbers[at].number != 0) all.emplace_back(m_numbers[at].number, m_numbers[at].line);
    }
    return all;
}

bool Findings::has_number(std::uint32_t number) const {
    return std::any_of(m_numbers.begin(), m_numbers.end(),
                       [=](const Told& told) { return told.number == number; });
}

void Findings::sort_from(std::size_t first) {
    const std::size_t from = first < m_numbers.size() ? m_numbers[first].found : m_found.size();
    std::stable_sort(m_found.begin() + static_cast<std::ptrdiff_t>(from), m_found.end(),
                     [](const Diagnostic& a, const Diagnostic& b) {
                         return std::tie(a.place.line, a.place.column) <
                                std::tie(b.place.line, b.place.column);
                     });
}

} // namespace pm::kit

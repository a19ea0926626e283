#include "check/rules.h"

#include <algorithm>
#include <array>

namespace pm::kit {

namespace {

using enum Severity;

constexpr std::array rules = {
    CheckRule{"bad-element", error, "DOC", "An element of a compound file is no node and no value."},
    CheckRule{"bad-header", error, "PIA DPIA PC2 PCP", "The header or version line isn't one."},
    CheckRule{"bad-line", error, "PIA DPIA PC2 CFG PCP PDT", "A line isn't valid and isn't read."},
    CheckRule{"carriage-return", warning, "PIA DPIA",
              "A carriage return at the end of a line belongs to its text."},
    CheckRule{"cut-file", error, "PIA DPIA DOC", "The file ends too early."},
    CheckRule{"cut-text", warning, "PIA DPIA PDT",
              "A text, a name or a line is longer than what is read of it."},
    CheckRule{"damaged-compression", error, "PIA DPIA",
              "A compressed body doesn't agree with what is told of it."},
    CheckRule{"damaged-file", error, "all", "The library doesn't load the file."},
    CheckRule{"directory-gap", note, "DPIA", "Bytes between sections belong to none."},
    CheckRule{"directory-overlap", error, "DPIA", "Two sections share bytes."},
    CheckRule{"directory-range", error, "DPIA", "A section lies outside of the file."},
    CheckRule{"empty-table", warning, "PDT", "A table has no rows."},
    CheckRule{"ignored-text", warning, "PIA DPIA PC2 CFG PCP PDT", "A part of a line isn't read."},
    CheckRule{"leftover-stream", note, "DOC", "An element or sector is there that a load doesn't read."},
    CheckRule{"long-row", warning, "PDT", "A row has more fields than its table has columns."},
    CheckRule{"lossy-value", warning, "PIA DPIA PC2 CFG PCP PDT",
              "A value reads as another one than it says."},
    CheckRule{"missing-equals", warning, "PCP", "A line without \"=\" takes its value from an odd place."},
    CheckRule{"missing-table", error, "PDT", "A table of the description isn't there."},
    CheckRule{"missing-translation", warning, "PDT",
              "A text isn't in the string file, and another one is shown."},
    CheckRule{"mixed-encoding", warning, "PIA DPIA PC2 CFG PCP PDT",
              "Text is in another encoding than it is read in, or in two."},
    CheckRule{"odd-boolean", warning, "PIA DPIA PDT", "A truth value is told by its start alone."},
    CheckRule{"odd-name", warning, "PIA DPIA DOC PC2 CFG PCP",
              "A name isn't taken as it stands, or hardly meant so."},
    CheckRule{"partial-number", warning, "PIA DPIA PC2 CFG PCP PDT", "Only the start of a number is read."},
    CheckRule{"random-bytes", error, "PDT", "A table holds bytes that no text has."},
    CheckRule{"repeated-name", warning, "all", "A name stands twice where one counts."},
    CheckRule{"retyped-name", error, "PIA DPIA", "A property is set a second time, with another type."},
    CheckRule{"round-trip", warning, "PIA DPIA DOC", "What is saved doesn't read back as it was loaded."},
    CheckRule{"short-row", warning, "PDT", "A row has fewer fields than its table has columns."},
    CheckRule{"stale-bits", note, "PIA DPIA PC2 CFG", "The exact bits behind a number aren't its own."},
    CheckRule{"trailing-data", warning, "PIA DPIA DOC", "Bytes stand behind what is read."},
    CheckRule{"unclosed-block", warning, "PCP", "A block isn't closed."},
    CheckRule{"unclosed-node", warning, "PIA DPIA", "A node isn't closed."},
    CheckRule{"undecodable-byte", error, "PIA DPIA PC2 CFG PCP PDT", "A byte is no text in the code page."},
    CheckRule{"unknown-key", warning, "PC2 CFG PCP", "A key isn't known and isn't read."},
    CheckRule{"unknown-keyword", warning, "PDT", "A cell holds a keyword that isn't known."},
    CheckRule{"unknown-kind", error, "all", "The content is of no kind that the library reads."},
    CheckRule{"unknown-reference", warning, "PDT", "A cell names a record that isn't there."},
    CheckRule{"unknown-section", warning, "PC2 CFG", "A section isn't known, and its keys aren't read."},
    CheckRule{"unknown-type", error, "PIA DPIA", "A value has the form of no type and isn't read."},
    CheckRule{"unknown-value", warning, "PDT", "A cell holds a value that its column doesn't take."},
    CheckRule{"unopened-block", warning, "PCP", "An END_COLOR closes nothing."},
    CheckRule{"unopened-node", error, "PIA DPIA", "A \"}\" closes nothing."},
    CheckRule{"unread-line", warning, "PDT", "A last line without a line feed isn't read."},
    CheckRule{"unreadable", error, "all", "The file can't be read."},
    CheckRule{"unused-translation", note, "PDT", "A text of the string file belongs to no cell."},
};

constexpr bool by_name = std::is_sorted(
    rules.begin(), rules.end(), [](const CheckRule& a, const CheckRule& b) { return a.name < b.name; });
static_assert(by_name && rules.size() == static_cast<std::size_t>(Rule::unused_translation) + 1);

} // namespace

const CheckRule& rule_info(Rule rule) noexcept {
    return rules[static_cast<std::size_t>(rule)];
}

std::span<const CheckRule> check_rules() noexcept {
    return rules;
}

const CheckRule* find_check_rule(std::string_view name) noexcept {
    const auto* found =
        std::lower_bound(rules.begin(), rules.end(), name,
                         [](const CheckRule& rule, std::string_view wanted) { return rule.name < wanted; });
    return found != rules.end() && found->name == name ? &*found : nullptr;
}

} // namespace pm::kit

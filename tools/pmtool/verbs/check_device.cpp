#include "verbs/check_device.h"
#include "failure.h"
#include "json.h"
#include "system.h"
#include "text.h"
#include "verbs/check_defaults.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/kit/error.h>
#include <pm/kit/stored.h>
#include <system_error>

namespace pmtool {

namespace {

namespace kit = pm::kit;

constexpr std::size_t shown_offers = 8;

kit::CompatibilityMap read_map(const std::string& file) {
    const std::string name = file == "-" ? "standard input" : file;
    std::string text;
    try {
        text = file == "-" ? read_standard_input() : read_whole(file);
    } catch (const std::system_error& e) {
        throw system_failure(name, e.code().value());
    }
    try {
        return kit::load_map(text);
    } catch (const kit::Error& e) {
        throw Failure(e.line() == 0 ? fmt::format("{}: {}", name, e.what())
                                    : fmt::format("{}:{}: {}", name, e.line(), e.what()));
    }
}

std::optional<int> owner_of(const std::string& text) {
    if (text.empty()) return std::nullopt;
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '3') return text[0] - '0';
    throw Mistake(fmt::format("{}: an owner is a number from 0 to 3", text));
}

// What the program shows of a path or a value of a tree.
std::string shown_text(std::string_view text) {
    return printable(shown(pm::to_utf16(text)));
}

// What the description has where the rule looked.
std::string described_text(const kit::Finding& finding) {
    const std::string path = shown_text(finding.description_path);
    return finding.described.empty() ? path : fmt::format("{} = {}", path, shown_text(finding.described));
}

// A tree of a file that is held against the device.
struct Part {
    std::string section; // empty for a file of one tree
    std::string base;
};

std::vector<Part> parts_of(const Source& source, const std::string& section) {
    if (!source.content.by_section) return {{section, "\\"}};
    std::vector<Part> parts;
    for (const kit::Section& part : source.content.sections) {
        parts.push_back({part.name, '\\' + part.node});
    }
    return parts;
}

class DeviceChecker {
public:
    DeviceChecker(const DeviceCheck& check, const kit::CompatibilityMap& map)
        : m_check(check), m_device(read_source({.file = check.device, .keep_going = check.keep_going})) {
        m_options.map = &map;
        m_options.owner = owner_of(check.owner);
        tell_dropped(m_device);
        require_one_description(m_device);
    }

    void run(const std::string& file) {
        const std::optional<Source> source = read(file);
        if (!source) return;
        tell_dropped(*source);
        for (const Part& part : parts_of(*source, m_check.section)) {
            run(*source, part);
        }
    }

    [[nodiscard]] int status() const { return m_status; }
    void finish() {
        if (m_check.json) fmt::print("{}", m_list.dump());
    }

private:
    // Nothing for one that can't be read, which is told.
    std::optional<Source> read(const std::string& file) {
        try {
            return read_source({.file = file,
                                .from = m_check.from,
                                .section = m_check.section,
                                .keep_going = m_check.keep_going});
        } catch (const Mistake&) {
            throw;
        } catch (const Failure& e) {
            std::fflush(stdout);
            complain(e.what());
            m_status = exit_trouble;
            return std::nullopt;
        }
    }

    void run(const Source& source, const Part& part) {
        m_options.configuration_base = part.base;
        kit::ExplainedFindings explained = explain(source);
        std::erase_if(explained.findings,
                      [this](const kit::Finding& finding) { return !is_asked(finding.rule); });
        std::erase_if(explained.looks, [this](const kit::Look& look) { return !is_asked(look.rule); });
        for (const kit::Finding& finding : explained.findings) {
            if (m_status == exit_ok && (m_check.strict || finding.severity != kit::Severity::note)) {
                m_status = exit_negative;
            }
        }
        const std::string name =
            part.section.empty() ? source.file : fmt::format("{}[{}]", source.file, part.section);
        if (m_check.json) {
            append(source.file, part.section, explained);
        } else {
            print(name, explained);
        }
    }

    kit::ExplainedFindings explain(const Source& source) const {
        try {
            return kit::explain_compatibility(source.content.tree, m_device.content.tree, m_options);
        } catch (const kit::Error& e) {
            throw Failure(fmt::format("{}: {}", m_check.device, e.what()));
        }
    }

    [[nodiscard]] bool is_asked(const std::string& rule) const {
        if (std::ranges::find(m_check.without, rule) != m_check.without.end()) return false;
        return m_check.rules.empty() || std::ranges::find(m_check.rules, rule) != m_check.rules.end();
    }

    void print(const std::string& source, const kit::ExplainedFindings& explained) const {
        const std::string name = kit::printable_text(source);
        for (const kit::Finding& finding : explained.findings) {
            fmt::print("{}: {}: {} = {}: {} [{}]\n", name, kit::severity_name(finding.severity),
                       shown_text(finding.configuration_path), shown_text(finding.configured),
                       finding_text(finding), finding.rule);
        }
        if (explained.findings.empty()) fmt::print("{}: possible on the device\n", name);
        if (!m_check.explain) return;
        for (const kit::Look& look : explained.looks) {
            fmt::print("{}: {:18} {:17} {:8} {} -> {}\n", name, look.rule, look.setting, look.outcome,
                       shown_text(look.configuration_path), shown_text(look.description_path));
        }
    }

    void append(const std::string& file, const std::string& section,
                const kit::ExplainedFindings& explained) {
        Json findings = Json::array();
        for (const kit::Finding& finding : explained.findings) {
            findings.append(row_of(finding));
        }
        Json row = Json::object();
        row.text("file", file);
        if (!section.empty()) row.text("section", section);
        row.member("findings", std::move(findings));
        if (m_check.explain) {
            Json looks = Json::array();
            for (const kit::Look& look : explained.looks) {
                looks.append(row_of(look));
            }
            row.member("looks", std::move(looks));
        }
        m_list.append(std::move(row));
    }

    static Json row_of(const kit::Finding& finding) {
        Json offers = Json::array();
        for (const kit::Offer& offer : finding.offers) {
            Json row = Json::object();
            row.text("value", offer.value).text("text", offer.text).text("path", offer.path);
            offers.append(std::move(row));
        }
        Json row = Json::object();
        row.text("rule", finding.rule).text("severity", kit::severity_name(finding.severity));
        row.text("configuration_path", finding.configuration_path)
            .text("description_path", finding.description_path);
        row.text("configured", finding.configured)
            .text("described", finding.described)
            .text("text", finding.text);
        row.member("offers", std::move(offers)).text("message", finding.message);
        return row;
    }

    static Json row_of(const kit::Look& look) {
        Json row = Json::object();
        row.text("rule", look.rule).text("setting", look.setting).text("outcome", look.outcome);
        row.text("configuration_path", look.configuration_path)
            .text("description_path", look.description_path);
        return row;
    }

    const DeviceCheck& m_check;
    Source m_device;
    kit::CompatibilityOptions m_options;
    Json m_list = Json::array();
    int m_status = exit_ok;
};

// Rules of the map count too.
void require_rules(const std::vector<std::string>& names, const kit::CompatibilityMap& map) {
    for (const std::string& name : names) {
        if (is_device_rule(name) ||
            std::ranges::find(map.rules, name, &kit::ValueRule::name) != map.rules.end()) {
            continue;
        }
        throw Failure(fmt::format("{}: there is no such rule for a device; see pmtool check --rules", name));
    }
}

// Standard input is there once.
void require_one_input(const DeviceCheck& check) {
    const auto inputs =
        std::ranges::count(check.files, "-") + (check.device == "-" ? 1 : 0) + (check.map == "-" ? 1 : 0);
    if (inputs > 1) throw Mistake("only one of FILE, DESCRIPTION and MAP can be standard input");
}

} // namespace

int check_on_device(const DeviceCheck& check) {
    require_one_input(check);
    const kit::CompatibilityMap map = check.map.empty() ? kit::built_in_map() : read_map(check.map);
    require_rules(check.rules, map);
    require_rules(check.without, map);
    DeviceChecker checker(check, map);
    for (const std::string& file : check.files) {
        checker.run(file);
    }
    checker.finish();
    return checker.status();
}

bool is_device_rule(std::string_view name) {
    const auto rules = kit::compatibility_rules();
    return std::ranges::find(rules, name, &kit::CompatibilityRule::name) != rules.end();
}

std::string finding_text(const kit::Finding& finding) {
    std::string text = shown_text(finding.message);
    if (!finding.description_path.empty()) {
        if (text.ends_with('.')) text.pop_back();
        text += fmt::format(" ({}).", described_text(finding));
    }
    if (finding.offers.empty()) return text;
    text += " Instead: ";
    for (std::size_t i = 0; i < std::min(finding.offers.size(), shown_offers); ++i) {
        const kit::Offer& offer = finding.offers[i];
        if (i != 0) text += ", ";
        text += shown_text(offer.value);
        if (!offer.text.empty()) text += fmt::format(" ({})", shown_text(offer.text));
    }
    if (finding.offers.size() > shown_offers) {
        text += fmt::format(", and {} more", finding.offers.size() - shown_offers);
    }
    return text + '.';
}

} // namespace pmtool

#include <algorithm>
#include <array>
#include <report/settings.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

struct CodedName {
    std::string_view name;
    Code code;
    bool is_mask;
};

// Settings that are kept as in a description.
constexpr std::array<CodedName, 14> coded_names{{{"default_type", Code::io_type, false},
                                                 {"feed", Code::feed, false},
                                                 {"color_system", Code::color_system, false},
                                                 {"media_group", Code::media_group, false},
                                                 {"dithering_type", Code::dithering_type, false},
                                                 {"max_optimization", Code::optimization, false},
                                                 {"default_optimization", Code::optimization, false},
                                                 {"handshakes", Code::handshake_bit, true},
                                                 {"default_handshake", Code::handshake_bit, true},
                                                 {"selection_methods", Code::selection_bit, true},
                                                 {"default_selection_method", Code::selection_bit, true},
                                                 {"duplexing_modes", Code::duplexing_bit, true},
                                                 {"default_duplexing_mode", Code::duplexing_bit, true},
                                                 {"bidi_flags", Code::status_bit, true}}};

// Notes are about a setting's owner, but for those of what the description doesn't speak of.
Verdict of(const Finding& finding) {
    switch (finding.severity) {
    case Severity::error:
        return Verdict::impossible;
    case Severity::warning:
        return Verdict::doubtful;
    default:
        return finding.rule == "unspoken" ? Verdict::unspoken : Verdict::not_checked;
    }
}

struct VerdictMark {
    std::string_view css_class;
    std::string_view text;
    std::string_view meaning; // of a sign
};

VerdictMark mark_of(Verdict verdict) {
    static constexpr std::array<VerdictMark, 5> marks{
        {{"", "", ""},
         {"sign unspoken", "?", "the device tells nothing of it"},
         {"sign possible", "✓", "possible"},
         {"badge warn", "doubtful", ""},
         {"badge bad", "not possible", ""}}};
    return marks[static_cast<std::size_t>(verdict)];
}

void write_mark(Html& html, Verdict verdict) {
    const VerdictMark mark = mark_of(verdict);
    if (mark.text.empty()) {
        return;
    }
    html.text(" ");
    if (mark.meaning.empty()) {
        html.element("span", {{"class", std::string(mark.css_class)}}, mark.text);
    } else {
        html.element("span",
                     {{"class", std::string(mark.css_class)},
                      {"role", "img"},
                      {"aria-label", std::string(mark.meaning)},
                      {"title", std::string(mark.meaning)}},
                     mark.text);
    }
}

// The word for a number that a setting of this name keeps; empty without one.
std::string coded_word(const Property& property) {
    const std::string name = property.name();
    const auto coded = std::ranges::find(coded_names, name, &CodedName::name);
    const auto number = integer(property);
    if (coded == coded_names.end() || !number) {
        return {};
    }
    return coded->is_mask ? joined(words(coded->code, *number)) : word(coded->code, *number);
}

std::string name_in_description(const Node& node) {
    for (const std::string_view item : {"name", "canonical_name"}) {
        if (std::string name = text(node, item); !name.empty()) {
            return name;
        }
    }
    return node.name();
}

} // namespace

Settings::Settings(const ReportInput& input) {
    for (const ReportConfiguration& configuration : input.configurations) {
        auto& verdicts = m_verdicts.emplace_back();
        for (const Look& look : configuration.check.looks) {
            if (look.outcome == "passed" && look.rule != "owner") {
                verdicts.emplace(look.configuration_path, Verdict::possible);
            }
        }
        for (const Finding& finding : configuration.check.findings) {
            Verdict& verdict = verdicts[finding.configuration_path];
            verdict = std::max(verdict, of(finding));
        }
    }
    if (!input.description) {
        return;
    }
    for (const auto& [node, depth] : input.description->root.walk()) {
        if (const std::string translated = report::text(node, "localized_name"); !translated.empty()) {
            m_texts.emplace(name_in_description(node), translated);
        }
    }
}

Verdict Settings::verdict(Origin configuration, const std::string& path) const {
    const auto& verdicts = m_verdicts[configuration];
    const auto found = verdicts.find(path);
    return found == verdicts.end() ? Verdict::not_checked : found->second;
}

std::string Settings::translated(const Property& property) const {
    const auto found = property.type() == PROP_STRING ? m_texts.find(shown(property)) : m_texts.end();
    return found == m_texts.end() ? std::string() : found->second;
}

void Settings::write(Html& html, Origin configuration, const std::string& path, const Property& property,
                     std::string_view instead) const {
    const std::string word = coded_word(property);
    const std::string value = shown_exactly(property);
    if (value.empty()) {
        html.element("span", {{"class", "muted"}}, "(empty)");
    } else {
        html.element("span", {{"class", "value"}}, word.empty() ? value : word);
    }
    std::string beside(instead);
    if (beside.empty()) {
        beside = word.empty() ? translated(property) : value;
    }
    if (!beside.empty() && (!word.empty() || beside != value)) {
        html.text(" ");
        html.element("span", {{"class", "meaning"}}, beside);
    }
    write_mark(html, verdict(configuration, path));
}

void write_legend(Html& html) {
    const Element line(html, "p", {{"class", "muted"}});
    for (const Verdict verdict : {Verdict::possible, Verdict::unspoken}) {
        html.text(verdict == Verdict::possible ? "" : ";");
        write_mark(html, verdict);
        html.text(" ");
        html.text(mark_of(verdict).meaning);
    }
    html.text(".");
}

std::string group_title(std::string_view node) {
    const auto found = std::ranges::find(areas(), node, &Area::node);
    return found == areas().end() ? spoken(node) : std::string(found->title);
}

bool says_nothing(const Property& property) {
    const auto bytes = property.bytes();
    return property.type() != PROP_BOOL &&
           std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte(0); });
}

std::string spoken_path(std::string_view path) {
    std::string words;
    while (!path.empty()) {
        const std::size_t end = std::min(path.size(), path.find('\\'));
        if (end > 0) {
            words += (words.empty() ? "" : " › ") + spoken(path.substr(0, end));
        }
        path.remove_prefix(std::min(path.size(), end + 1));
    }
    return words;
}

} // namespace pm::kit::report

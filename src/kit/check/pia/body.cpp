#include "check/pia/body.h"

#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/text.h>

namespace pm::kit {

namespace {

constexpr std::size_t longest_name = 511;  // units
constexpr std::size_t longest_path = 1023; // units
constexpr std::size_t most_components = 256;
constexpr std::string_view refused_in_nodes = " *=\"'\t\r\n\v\b\f\a";

// One of the file's own texts, or a kept one.
bool is_plain(std::string_view name) {
    return name.find_first_of("\\*") == std::string_view::npos;
}

} // namespace

PiaBody::PiaBody(SourceText& source, Findings& findings) : m_source(source), m_findings(findings) {
    m_harmless.reserve(source.text().size());
}

void PiaBody::check() {
    SourceLine line;
    while (m_source.next_line(line)) {
        m_instead = {};
        const auto start = std::find_if_not(line.text.begin(), line.text.end(), is_white);
        const std::string_view text = line.text.substr(static_cast<std::size_t>(start - line.text.begin()));
        if (!text.empty()) {
            m_counted.push_back(line.number);
            take_line(line, text);
        }
        const auto offset = static_cast<std::size_t>(line.text.data() - m_source.text().data());
        m_harmless += m_instead.empty() ? m_source.content().substr(offset, line.text.size()) : m_instead;
        if (line.ended) m_harmless += '\n';
    }
    check_unclosed();
}

void PiaBody::take_line(const SourceLine& line, std::string_view text) {
    m_line = line;
    const std::string_view whole = text;
    text = text.substr(0, text.find('\0'));
    check_tail(line, whole.substr(text.size()));
    if (text.empty() || text.front() == ';') return;
    text = cut_end(text, " ");
    const std::size_t name = std::min(text.find_first_of(" ="), text.size());
    if (text.find('=', name) != std::string_view::npos) {
        if (m_skipped == 0) property_line(text, name);
    } else if (text.find('{') != std::string_view::npos) {
        opening_line(text);
    } else if (text.find('}') != std::string_view::npos) {
        closing_line(text);
    } else {
        say(Rule::bad_line, text.data(),
            fmt::format("{} is no property, no node and no comment.", m_source.quoted(text)),
            PM_ERR_BAD_LINE);
        end_load();
    }
}

// What stands behind a zero byte; `tail` begins with it, or is empty.
void PiaBody::check_tail(const SourceLine& line, std::string_view tail) {
    const std::string_view behind = skip(tail, std::string_view("\0 \t\r", 4));
    if (behind.empty()) return;
    m_findings.add({Rule::ignored_text, m_source.place(line, tail.data()),
                    "What stands behind a zero byte in the line isn't read."});
}

void PiaBody::property_line(std::string_view text, std::size_t name_length) {
    const std::string_view name = text.substr(0, name_length);
    if (name.empty()) return say(Rule::bad_line, text.data(), "The property has no name.", PM_ERR_BAD_LINE);
    if (m_source.is_longer(name, longest_name) || !has_room_for(name)) {
        return say(Rule::bad_line, text.data(), "The name or path of the property is too long.",
                   PM_ERR_BAD_LINE);
    }
    const std::string_view value = skip(text.substr(name_length), " =");
    if (value.empty()) {
        say(Rule::bad_line, name.data(), "The property has no value.", PM_ERR_BAD_LINE, path_of(name));
    } else {
        check_name(name);
        property_value(name, text, read_pia_value(value, m_source));
    }
    // A line that ends a load leaves no trace in the working path of what is loaded without it.
    const bool ends_load = !m_instead.empty();
    if (ends_load || (is_plain(name) && !m_path.ends_with('\\'))) return;
    push(name);
    static_cast<void>(pop());
    find_node();
}

void PiaBody::property_value(std::string_view name, std::string_view text, const PiaValue& value) {
    for (const ValueRemark& remark : value.remarks) {
        say(remark.rule, remark.at, remark.message, remark.number, path_of(name));
    }
    if (value.ends_load) return end_load();
    if (value.type == PROP_NONE) return;
    const Target target = target_of(name);
    if (!target.named || target.depth >= most_components) {
        say(Rule::bad_line, text.data(),
            target.named ? "The path has too many components." : "The property has no name.",
            PM_ERR_BAD_PATH);
        return end_load();
    }
    const auto [known, is_new] =
        m_properties.try_emplace({target.node, target.name}, Set{value.type, m_line.number});
    if (is_new) return;
    Set& before = known->second;
    if (before.type != value.type) {
        say(Rule::retyped_name, text.data(),
            fmt::format("{} is {} here and {} on line {}.", m_source.quoted(name), type_words(value.type),
                        type_words(before.type), before.line),
            PM_ERR_WRONG_TYPE, path_of(name));
        return end_load();
    }
    say(Rule::repeated_name, text.data(),
        fmt::format("{} is set on line {} already, and that value is lost.", m_source.quoted(name),
                    before.line),
        0, path_of(name));
    before.line = m_line.number;
}

void PiaBody::check_name(std::string_view name) {
    const std::size_t at = name.find_first_of("\\*{}\t");
    if (at != std::string_view::npos && name[at] == '*') {
        say(Rule::odd_name, &name[at], fmt::format("The \"*\" in {} reads as \"-1\".", m_source.quoted(name)),
            0, path_of(name));
    } else if (at != std::string_view::npos && name[at] == '\\') {
        say(Rule::odd_name, &name[at],
            fmt::format("The \"\\\" in {} separates nodes.", m_source.quoted(name)), 0, path_of(name));
    } else if (at != std::string_view::npos) {
        say(Rule::odd_name, &name[at],
            fmt::format("{} belongs to the name of the property.", m_source.quoted(name.substr(at, 1))), 0,
            path_of(name));
    }
}

void PiaBody::opening_line(std::string_view text) {
    const std::size_t brace = text.find('{');
    const std::string_view name = text.substr(0, brace);
    const std::size_t refused = name.find_first_of(refused_in_nodes);
    if (name.empty() || refused != std::string_view::npos) return refuse_node(text, name, refused);
    const std::string_view behind = skip(text.substr(brace + 1), " \t\r");
    if (!behind.empty()) {
        say(Rule::ignored_text, behind.data(),
            fmt::format("{} behind the \"{{\" isn't read.", m_source.quoted(behind)));
    }
    if (m_skipped == 0 && !m_source.is_longer(name, longest_name) && has_room_for(name)) {
        return open_node(text, name);
    }
    if (m_skipped++ > 0) return;
    say(Rule::bad_line, text.data(), "The name or path of the node is too long, and all in it isn't read.",
        PM_ERR_BAD_LINE);
}

// What stands in such a block belongs to no other node.
void PiaBody::refuse_node(std::string_view text, std::string_view name, std::size_t refused) {
    if (name.empty()) {
        say(Rule::bad_line, text.data(), "The node has no name.", PM_ERR_BAD_LINE);
    } else {
        say(Rule::bad_line, text.data() + refused,
            fmt::format("The name of a node can't hold {}.", m_source.quoted(name.substr(refused, 1))),
            PM_ERR_BAD_LINE);
    }
    end_load("_{");
    if (m_skipped > 0) {
        ++m_skipped;
        return;
    }
    m_open.push_back({m_line, {}}); // told already
    m_path += m_path.ends_with('\\') ? "_" : "\\_";
    find_node();
}

void PiaBody::open_node(std::string_view text, std::string_view name) {
    const bool plain = is_plain(name);
    if (!plain) check_name(name);
    m_open.push_back({m_line, name});
    const std::size_t parent = m_node;
    push(name);
    find_node();
    const auto [block, is_new] = m_blocks.try_emplace({parent, name}, m_line.number);
    if (is_new || !plain) return;
    m_findings.add({.rule = Rule::repeated_name,
                    .place = m_source.place(m_line, text.data()),
                    .message = fmt::format("The node {} is opened on line {} already; both are one node.",
                                           m_source.quoted(name), block->second),
                    .path = m_path,
                    .severity = Severity::note});
}

void PiaBody::closing_line(std::string_view text) {
    const std::size_t brace = text.find('}');
    const std::string_view front = cut_end(text.substr(0, brace), " \t");
    const std::string_view behind = skip(text.substr(brace + 1), " \t\r");
    const std::string_view ignored = front.empty() ? behind : front;
    if (!ignored.empty()) {
        say(Rule::ignored_text, ignored.data(),
            fmt::format("{} beside the \"}}\" isn't read.", m_source.quoted(ignored)));
    }
    if (m_skipped > 0) {
        --m_skipped;
        return;
    }
    const bool popped = pop();
    if (popped) find_node();
    const bool opened = !m_open.empty();
    if (opened) m_open.pop_back();
    // Names that begin with a separator use up the working path, so that even an opened node may be gone.
    if (opened && popped) return;
    say(Rule::unopened_node, text.data() + brace, "The \"}\" closes no node.",
        popped ? 0U : std::uint32_t{PM_ERR_BAD_LINE});
    if (!popped) end_load();
}

void PiaBody::check_unclosed() {
    for (const Opening& opening : m_open) {
        if (opening.name.empty()) continue;
        m_findings.add({Rule::unclosed_node,
                        m_source.place(opening.line, opening.line.text.data() +
                                                         (opening.line.text.find_first_not_of(" \t\r\v\f"))),
                        fmt::format("The node {} isn't closed.", m_source.quoted(opening.name))});
    }
}

// --- the path

bool PiaBody::has_room_for(std::string_view name) const {
    const std::size_t separator = m_path.ends_with('\\') ? 0 : 1;
    if (m_path.size() + separator + name.size() <= longest_path) return true;
    return to_utf16(m_path).size() + separator + m_source.units(name) <= longest_path;
}

void PiaBody::push(std::string_view name) {
    if (!m_path.ends_with('\\')) m_path += '\\';
    m_path += m_source.utf8(name);
}

bool PiaBody::pop() {
    const std::size_t last = m_path.rfind('\\');
    if (last == std::string::npos) return false;
    m_path.resize(last);
    return true;
}

void PiaBody::find_node() {
    m_depth = 0;
    m_node = node_of(m_path, m_depth);
}

// The number of a node, which it is given when it is met first; 0 is the root.
std::size_t PiaBody::node_of(std::string_view path, std::size_t& depth) {
    std::size_t node = 0;
    while (!path.empty()) {
        const std::string_view name = path.substr(0, path.find('\\'));
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        if (name.empty()) continue;
        ++depth;
        auto known = m_nodes.find({node, name});
        if (known == m_nodes.end()) {
            m_names.emplace_back(name);
            known = m_nodes.emplace(NodeKey{node, m_names.back()}, m_nodes.size() + 1).first;
        }
        node = known->second;
    }
    return node;
}

PiaBody::Target PiaBody::target_of(std::string_view name) {
    if (is_plain(name) && m_path.find('*') == std::string::npos) return {m_node, name, true, m_depth};
    std::string path = m_path + '\\' + m_source.utf8(name);
    const std::size_t star = path.find('*');
    if (star != std::string::npos) path.replace(star, 1, "-1");
    while (path.ends_with('\\')) {
        path.pop_back();
    }
    const std::size_t last = path.rfind('\\');
    if (last == std::string::npos) return {};
    const std::string_view kept = m_names.emplace_back(path.substr(last + 1));
    std::size_t depth = 0;
    const std::size_t node = node_of(std::string_view(path).substr(0, last), depth);
    return {node, kept, true, depth};
}

std::string PiaBody::path_of(std::string_view name) const {
    std::string path = m_path;
    if (!path.ends_with('\\')) path += '\\';
    path += m_source.utf8(name);
    // A name that is separators alone is the node's own, beside it.
    return std::string(cut_end(path, "\\"));
}

void PiaBody::say(Rule rule, const char* at, std::string message, std::uint32_t number, std::string path) {
    m_findings.add({rule, m_source.place(m_line, at), std::move(message), std::move(path), number});
}

} // namespace pm::kit

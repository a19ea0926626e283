#include "check/round_trip.h"

#include "check/files.h"
#include "check/library_load.h"
#include "check/narrow_text.h"
#include "string_stream.h"
#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <pm/inspect.h>
#include <pm/kit/file.h>
#include <pm/pm.h>
#include <sstream>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr unsigned utf8 = 65001;

// A property under its path, in the order of a tree.
struct Leaf {
    std::string path;
    Property property;
};

std::vector<Leaf> leaves_of(const Tree& tree) {
    std::vector<Leaf> leaves;
    for (const auto& [node, depth] : tree.walk()) {
        const std::string path = node.is_root() ? std::string() : node.path();
        for (const Property& property : node.properties()) {
            leaves.push_back({path + '\\' + property.name(), property});
        }
    }
    return leaves;
}

std::string shown(const Property& property) {
    const PM_Property_View view = property.view();
    if (view.type == PROP_VOID) return fmt::format("{} {}", view.size, view.size == 1 ? "byte" : "bytes");
    const Value value = property.value();
    if (const auto* text = std::get_if<std::string>(&value)) return in_quotes(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "TRUE" : "FALSE";
    if (const auto* number = std::get_if<double>(&value)) return fmt::format("{}", *number);
    if (const auto* number = std::get_if<std::int32_t>(&value)) return fmt::format("{}", *number);
    return "nothing";
}

bool is_same(const Property& a, const Property& b) {
    const auto left = a.bytes();
    const auto right = b.bytes();
    return a.type() == b.type() && std::equal(left.begin(), left.end(), right.begin(), right.end());
}

class Comparison {
public:
    Comparison(const Place& where, Findings& findings) : m_where(where), m_findings(findings) {}

    void compare(const Tree& loaded, const Tree& read_back);
    void say(std::string path, std::string message, std::uint32_t number = 0) {
        m_findings.add({Rule::round_trip, m_where, std::move(message), std::move(path), number});
    }

private:
    void compare_leaf(const Leaf& leaf, const Property* found);

    const Place& m_where;
    Findings& m_findings;
};

void Comparison::compare(const Tree& loaded, const Tree& read_back) {
    const std::vector<Leaf> before = leaves_of(loaded);
    const std::vector<Leaf> after = leaves_of(read_back);
    std::unordered_map<std::string_view, const Property*> found;
    for (const Leaf& leaf : after) {
        found.emplace(leaf.path, &leaf.property);
    }
    bool same_paths = before.size() == after.size();
    for (const Leaf& leaf : before) {
        const auto match = found.find(leaf.path);
        compare_leaf(leaf, match == found.end() ? nullptr : match->second);
        if (match != found.end()) {
            found.erase(match);
        } else {
            same_paths = false;
        }
    }
    for (const Leaf& leaf : after) {
        if (found.contains(leaf.path)) say(leaf.path, "The property wasn't there before.");
    }
    if (!same_paths) return; // what is lost or new changes the order by itself
    const auto same_path = [](const Leaf& a, const Leaf& b) { return a.path == b.path; };
    const bool ordered = std::equal(before.begin(), before.end(), after.begin(), after.end(), same_path);
    if (ordered) return;
    m_findings.add({.rule = Rule::round_trip,
                    .place = m_where,
                    .message = "Nodes or properties come back in another order.",
                    .severity = Severity::note});
}

void Comparison::compare_leaf(const Leaf& leaf, const Property* found) {
    if (found == nullptr) return say(leaf.path, "The property is lost.");
    if (is_same(leaf.property, *found)) return;
    say(leaf.path, fmt::format("{} comes back as {}.", shown(leaf.property), shown(*found)));
}

using Load = std::function<void(Tree&)>;
using SaveAndLoad = std::function<void(const Tree&, Tree&)>;

// What ends the first load is told by the format's own check; what was read until then counts here.
void compare_round(const Load& load, const SaveAndLoad& save_and_load, const Place& where,
                   Findings& findings) {
    Comparison comparison(where, findings);
    Tree loaded;
    static_cast<void>(hear_of(loaded, load));
    Tree read_back;
    const std::vector<Heard> heard = hear_of(read_back, [&](Tree& target) { save_and_load(loaded, target); });
    if (!heard.empty()) {
        comparison.say({}, "What is saved can't be read whole: " + sentence_of(heard.back().number),
                       heard.back().number);
    }
    comparison.compare(loaded, read_back);
}

void round_trip_pia(std::string_view bytes, const Place& where, Findings& findings) {
    const auto load = [&](Tree& tree) {
        std::stringstream stream{std::string(bytes)};
        tree.load(stream);
    };
    const auto save_and_load = [](const Tree& tree, Tree& read_back) {
        std::stringstream stream;
        save(tree, stream, {.utf8 = pm_system_code_page() == utf8});
        require_memory(stream);
        read_back.load(stream);
    };
    compare_round(load, save_and_load, where, findings);
}

void round_trip_doc(const CheckedContent& content, const Place& where, Findings& findings) {
    const std::unique_ptr<ScratchFile> copy = scratch_file_of(content.bytes);
    const std::unique_ptr<ScratchFile> written = scratch_file_of("");
    if (!copy || !written) return;
    const auto load = [&](Tree& tree) { tree.load(copy->name(), {.type = PM_Object::FILE_DOC}); };
    const auto save_and_load = [&](const Tree& tree, Tree& read_back) {
        save(tree, written->name(), {.type = PM_Object::FILE_DOC});
        read_back.load(written->name(), {.type = PM_Object::FILE_DOC});
    };
    compare_round(load, save_and_load, where, findings);
}

void round_trip_dpia(std::string_view bytes, const Place& where, Findings& findings) {
    const ScopedCodePage scope(utf8);
    std::stringstream stream{std::string(bytes)};
    std::vector<DpiaSection> sections;
    try {
        sections = dpia_sections(stream);
    } catch (const ZT_Exception& e) {
        if (tells_want_of_memory(e)) throw;
        return; // told by the check of the directory
    }
    std::uint64_t left = bytes.size(); // sections may share bytes, again and again
    for (const DpiaSection& section : sections) {
        if (section.offset > bytes.size() || section.size > bytes.size() - section.offset ||
            section.size > left) {
            continue;
        }
        left -= section.size;
        Place place = where;
        place.section = to_utf8(section.name);
        round_trip_pia(bytes.substr(section.offset, section.size), place, findings);
    }
}

} // namespace

void compare_trees(const Tree& loaded, const Tree& read_back, const Place& where, Findings& findings) {
    Comparison(where, findings).compare(loaded, read_back);
}

void check_round_trip(PM_Object::FileType type, const CheckedContent& content, const Place& where,
                      Findings& findings) {
    if (!findings.wants(Rule::round_trip)) return;
    if (type == PM_Object::FILE_PIA) round_trip_pia(content.bytes, where, findings);
    if (type == PM_Object::FILE_DPIA) round_trip_dpia(content.bytes, where, findings);
    if (type == PM_Object::FILE_DOC) round_trip_doc(content, where, findings);
}

} // namespace pm::kit

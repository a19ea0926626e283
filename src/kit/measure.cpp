#include "measure.h"

#include "tree_place.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <pm/detail/utf.h>
#include <pm/kit/difference.h>
#include <pm/kit/pattern.h>
#include <unordered_map>
#include <unordered_set>

namespace pm::kit {

namespace {

std::string_view parent_of(std::string_view path) {
    return path.substr(0, path.rfind('\\') + 1);
}

std::string_view name_of(std::string_view path) {
    return path.substr(path.rfind('\\') + 1);
}

bool is_ascii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The text of a string that is one, as its units; nothing for other values.
std::optional<std::u16string> text_of(const std::optional<Stored>& stored) {
    if (!stored || stored->type != PROP_STRING) return std::nullopt;
    const std::optional<Value> value = exact_value(*stored);
    return value ? std::optional(to_utf16(std::get<std::string>(*value))) : std::nullopt;
}

// ---- what happened to a value

// A character that a code page hasn't is "?", or two where it takes two units.
bool is_re_encoded(const std::u16string& before, const std::u16string& after) {
    std::size_t a = 0;
    std::size_t b = 0;
    bool differs = false;
    while (a < before.size() && b < after.size()) {
        const std::size_t begin = a;
        static_cast<void>(detail::next_code_point(before, a));
        const std::size_t units = a - begin;
        if (before.compare(begin, units, after, b, units) == 0) {
            b += units;
        } else if (after[b] == u'?') {
            differs = true;
            b += after.compare(b, units, u"??", units) == 0 ? units : 1;
        } else {
            return false;
        }
    }
    return differs && a == before.size() && b == after.size();
}

bool is_beginning(const Bytes& part, const Bytes& whole) {
    return part.size() < whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

LossKind kind_of(const Difference& difference, bool guessed) {
    if (difference.change == Change::type) return LossKind::retyped;
    const std::optional<std::u16string> before = text_of(difference.before);
    const std::optional<std::u16string> after = text_of(difference.after);
    if (before && after) {
        if (is_re_encoded(*before, *after)) return LossKind::re_encoded;
        if (before->starts_with(*after)) return LossKind::cut;
        return guessed && !is_ascii(to_utf8(*before)) ? LossKind::re_encoded : LossKind::changed;
    }
    const auto bytes = [](const std::optional<Stored>& side) {
        return side && side->bytes ? *side->bytes : Bytes();
    };
    Bytes shorter = bytes(difference.after);
    // A text that is read back has its terminator.
    if (after && !before) shorter.resize(shorter.size() - sizeof(char16_t));
    return is_beginning(shorter, bytes(difference.before)) ? LossKind::cut : LossKind::changed;
}

// ---- why

struct Case {
    const Loss& loss;
    const ReadBack& back;
};

bool holds(const std::string& path, std::string_view characters) {
    return path.find_first_of(characters) != std::string::npos;
}

bool is_property_text(const Case& c) {
    return c.back.type != PM_Object::FILE_DOC;
}

bool has_no_value(const Case& c) {
    return c.loss.before && (c.loss.before->type == PROP_NONE || !c.loss.before->bytes);
}

bool is_comment(const Case& c) {
    return is_property_text(c) && name_of(c.loss.path).starts_with(';');
}

bool has_odd_name(const Case& c) {
    return is_property_text(c) && holds(c.loss.path, " ={}*\"'\t\r\n\v\b\f\a");
}

bool is_named_version(const Case& c) {
    constexpr std::string_view name = "\\version";
    std::string path = c.loss.path;
    std::ranges::transform(path, path.begin(),
                           [](char a) { return a >= 'A' && a <= 'Z' ? static_cast<char>(a + 32) : a; });
    return c.back.type == PM_Object::FILE_DOC && path.find(name) != std::string::npos;
}

bool is_empty_node(const Case& c) {
    return !c.loss.before && c.loss.path.ends_with('\\');
}

bool is_beside_sections(const Case& c) {
    return c.back.type == PM_Object::FILE_DPIA && c.loss.before && c.loss.path.rfind('\\') == 0;
}

bool was_bool(const Case& c) {
    return c.loss.before->type == PROP_BOOL && c.loss.after->type == PROP_LONG;
}

bool holds_line_end(const Case& c) {
    const std::optional<std::u16string> text = text_of(c.loss.before);
    return text && text->find(u'\n') != std::u16string::npos;
}

bool lost_blanks(const Case& c) {
    const std::optional<std::u16string> before = text_of(c.loss.before);
    const std::optional<std::u16string> after = text_of(c.loss.after);
    return before && after && before->size() > after->size() &&
           before->find_first_not_of(u' ', after->size()) == std::u16string::npos;
}

bool is_inexact(const Case& c) {
    return c.loss.before && !exact_value(*c.loss.before);
}

bool is_negative_zero(const Case& c) {
    const std::optional<Value> value = c.loss.before ? exact_value(*c.loss.before) : std::nullopt;
    const auto* const number = value ? std::get_if<double>(&*value) : nullptr;
    return number != nullptr && *number == 0 && std::signbit(*number);
}

bool is_guessed_name(const Case& c) {
    return c.back.guessed && !is_ascii(c.loss.path);
}

bool is_guessed_text(const Case& c) {
    return c.back.guessed;
}

bool is_behind_the_end(const Case& c) {
    return c.back.stopped;
}

bool is_any(const Case&) {
    return true;
}

struct Why {
    LossKind kind;
    bool (*applies)(const Case&);
    std::string_view text;
};

constexpr std::string_view guess_text = "all that isn't ASCII could be UTF-8, and is read as that";

// The first that applies.
constexpr Why reasons[] = {
    {LossKind::lost, has_no_value, "a property without a value isn't written, nor are those behind it"},
    {LossKind::lost, is_beside_sections, "a dpia file holds nothing beside its sections"},
    {LossKind::lost, is_empty_node, "a node in which there is nothing isn't read back"},
    {LossKind::lost, is_guessed_name, guess_text},
    {LossKind::lost, is_comment, "a line that begins with \";\" is a comment"},
    {LossKind::lost, has_odd_name, "a name isn't one that property text can hold"},
    {LossKind::lost, is_named_version, "a compound file gives nothing back that is named \"Version\""},
    {LossKind::lost, is_behind_the_end, "the reading stops in front of it, at what something else left"},
    {LossKind::lost, is_any, "it doesn't come back"},
    {LossKind::cut, lost_blanks, "blanks at the end of a text aren't kept"},
    {LossKind::cut, holds_line_end, "a text ends at its first line end"},
    {LossKind::cut, is_inexact, "a text that is no wide one with its terminator isn't kept whole"},
    {LossKind::cut, is_any, "the end of the value is missing"},
    {LossKind::retyped, was_bool, "a compound file gives truth values back as numbers"},
    {LossKind::retyped, is_any, "the form in the file is that of another type"},
    {LossKind::re_encoded, is_guessed_text, guess_text},
    {LossKind::re_encoded, is_any, "not all of its characters are in the code page"},
    {LossKind::changed, is_negative_zero, "property text has no negative zero"},
    {LossKind::changed, holds_line_end, "a text ends at its first line end"},
    {LossKind::changed, is_inexact, "a text that is no wide one with its terminator isn't kept"},
    {LossKind::changed, is_any, "another value comes back"},
    {LossKind::renamed, is_guessed_name, guess_text},
    {LossKind::renamed, is_any, "it comes back under another name"},
    {LossKind::moved, is_guessed_name, guess_text},
    {LossKind::moved, is_any, "it comes back in another place"},
    {LossKind::appeared, is_any, "nothing of this path was asked for"},
    {LossKind::order, is_any, "the order isn't kept"},
};

std::string reason_of(const Case& c) {
    const auto* const found = std::ranges::find_if(
        reasons, [&](const Why& why) { return why.kind == c.loss.kind && why.applies(c); });
    std::string text(found->text);
    const bool tells_page = c.loss.kind == LossKind::re_encoded && !c.back.guessed;
    if (tells_page) text += fmt::format(" {}", c.back.code_page);
    return text;
}

// ---- what was lost here and appeared there

// A property with what it is looked for by beside its value.
std::string key_of(std::string_view part, const std::optional<Stored>& value) {
    return fmt::format("{}\n{}", part, value ? value_text(*value) : "");
}

class Appeared {
public:
    explicit Appeared(std::vector<Loss>& losses) : m_losses(losses) {
        // From the end on, so that the first is taken first.
        for (std::size_t i = losses.size(); i-- > 0;) {
            if (losses[i].kind != LossKind::appeared || !losses[i].after) continue;
            m_by_parent[key_of(parent_of(losses[i].path), losses[i].after)].push_back(i);
            m_by_name[key_of(name_of(losses[i].path), losses[i].after)].push_back(i);
        }
        m_taken.resize(losses.size());
    }

    // Makes a lost property one that was renamed or moved, if what it was has appeared elsewhere.
    void pair(Loss& lost) {
        if (!take(m_by_name, key_of(name_of(lost.path), lost.before), lost, LossKind::moved)) {
            take(m_by_parent, key_of(parent_of(lost.path), lost.before), lost, LossKind::renamed);
        }
    }
    void remove_taken() {
        std::vector<Loss> left;
        for (std::size_t i = 0; i < m_losses.size(); ++i) {
            if (!m_taken[i]) left.push_back(std::move(m_losses[i]));
        }
        m_losses = std::move(left);
    }

private:
    using Places = std::unordered_map<std::string, std::vector<std::size_t>>;

    bool take(Places& places, const std::string& key, Loss& lost, LossKind kind) {
        const auto found = places.find(key);
        if (found == places.end()) return false;
        std::vector<std::size_t>& candidates = found->second;
        while (!candidates.empty() && m_taken[candidates.back()]) {
            candidates.pop_back();
        }
        if (candidates.empty()) return false;
        const std::size_t at = candidates.back();
        m_taken[at] = true;
        lost.kind = kind;
        lost.new_path = m_losses[at].path;
        lost.after = m_losses[at].after;
        return true;
    }

    std::vector<Loss>& m_losses;
    std::vector<bool> m_taken;
    Places m_by_parent;
    Places m_by_name;
};

// ---- order

// The children of a node, or its properties.
struct List {
    std::string path; // of the node
    bool of_nodes;
};

std::vector<std::string> paths_in(const Node& top, const List& list) {
    std::vector<std::string> paths;
    for (const Match& match : find_all(top, Pattern(escaped(list.path)))) {
        for (const Node child : match.node.children()) {
            if (list.of_nodes) paths.push_back(fmt::format("{}{}\\", list.path, child.name()));
        }
        for (const Property property : match.node.properties()) {
            if (!list.of_nodes) paths.push_back(list.path + property.name());
        }
    }
    return paths;
}

using NewPaths = std::unordered_map<std::string, std::string>;

NewPaths new_paths(const std::vector<Loss>& losses) {
    NewPaths renamed;
    for (const Loss& loss : losses) {
        if (loss.kind == LossKind::renamed) renamed.emplace(loss.path, loss.new_path);
    }
    return renamed;
}

// Whether what both have stands in the same order.
bool keeps_order(std::vector<std::string> before, std::vector<std::string> after, const NewPaths& renamed) {
    for (std::string& path : before) {
        if (const auto found = renamed.find(path); found != renamed.end()) path = found->second;
    }
    const auto keep_those_of = [](std::vector<std::string>& paths, const std::vector<std::string>& others) {
        const std::unordered_set<std::string> known(others.begin(), others.end());
        std::erase_if(paths, [&known](const std::string& path) { return !known.contains(path); });
    };
    keep_those_of(before, after);
    keep_those_of(after, before);
    return before == after;
}

class Measurement {
public:
    explicit Measurement(const ReadBack& back) : m_back(back) {}

    // `next` is the difference behind it, null at the end.
    void add(const Difference& difference, const Difference* next) {
        switch (difference.change) {
        case Change::removed:
            return add_side(LossKind::lost, difference, next);
        case Change::added:
            return add_side(LossKind::appeared, difference, next);
        case Change::strictness:
            m_strictness = true;
            return;
        case Change::order:
            m_reordered.push_back({difference.path, difference.moved.front().ends_with('\\')});
            return;
        default:
            m_measured.losses.push_back({kind_of(difference, m_back.guessed),
                                         difference.path,
                                         {},
                                         {},
                                         difference.before,
                                         difference.after});
        }
    }

    Measured finish(const Node& intended) {
        Appeared appeared(m_measured.losses);
        for (Loss& loss : m_measured.losses) {
            if (loss.kind == LossKind::lost && loss.before) appeared.pair(loss);
        }
        appeared.remove_taken();
        add_orders(intended);
        for (Loss& loss : m_measured.losses) {
            loss.reason = reason_of({loss, m_back});
        }
        if (m_measured.losses.size() > 1) sort_by(intended);
        if (m_order) {
            m_measured.notes.emplace_back("the order of nodes and properties is that of a compound file");
        }
        if (m_strictness) m_measured.notes.emplace_back("what is read back is strict, whatever it was");
        return std::move(m_measured);
    }

private:
    // Of nodes, those in which there is nothing: others are told by what is in them, which comes next.
    void add_side(LossKind kind, const Difference& difference, const Difference* next) {
        const bool is_node = difference.path.ends_with('\\');
        if (is_node && next != nullptr && next->path.starts_with(difference.path)) return;
        m_measured.losses.push_back({kind, difference.path, {}, {}, difference.before, difference.after});
    }

    // What comes back elsewhere, or was never asked for, is told already and tells nothing of the order.
    void add_orders(const Node& intended) {
        if (m_reordered.empty()) return;
        const NewPaths renamed = new_paths(m_measured.losses);
        for (const List& list : m_reordered) {
            if (keeps_order(paths_in(intended, list), paths_in(m_back.tree, list), renamed)) continue;
            if (m_back.type == PM_Object::FILE_DOC) {
                m_order = true;
            } else {
                m_measured.losses.push_back({LossKind::order, list.path, {}, {}, {}, {}});
            }
        }
    }

    void sort_by(const Node& intended) {
        std::unordered_map<std::string, std::size_t> places;
        for (const Match& match : find_all(intended, Pattern("**"))) {
            places.emplace(match.path, places.size());
        }
        const auto place = [&places](const Loss& loss) {
            const auto found = loss.kind != LossKind::appeared ? places.find(loss.path) : places.end();
            return found != places.end() ? found->second : places.size();
        };
        std::ranges::stable_sort(m_measured.losses, {}, place);
    }

    const ReadBack& m_back;
    Measured m_measured;
    std::vector<List> m_reordered;
    bool m_order = false;
    bool m_strictness = false;
};

} // namespace

Measured measure(const Node& intended, const ReadBack& back) {
    Measurement measurement(back);
    const std::vector<Difference> differences = compare(intended, back.tree);
    for (std::size_t i = 0; i < differences.size(); ++i) {
        measurement.add(differences[i], i + 1 < differences.size() ? &differences[i + 1] : nullptr);
    }
    return measurement.finish(intended);
}

} // namespace pm::kit

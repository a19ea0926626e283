#pragma once

#include <optional>
#include <pm/kit/export.h>
#include <pm/tree.h>
#include <string>
#include <string_view>

// A property's value exactly as a tree stores it, and its form as one line of text.
namespace pm::kit {

// What a property is beside its name. pm::Value shows most values; this also tells narrow texts from wide
// ones, texts without terminator and values of odd sizes, and whether the property is strict.
struct Stored {
    PropType type = PROP_NONE;
    bool strict = true;
    std::optional<Bytes> bytes =
        {}; // as view.h gives them; nothing where there is no value, which isn't empty

    bool operator==(const Stored&) const = default;
};

// A copy of what a property holds.
[[nodiscard]] PM_KIT_API Stored stored(const Property& property);
// What set() would store for a value. A text isn't cut, a value of nothing is PROP_NONE without bytes.
[[nodiscard]] PM_KIT_API Stored make_stored(const Value& value, bool strict = true);
// The value that tells the stored bytes exactly, so that make_stored() of it gives them back; nothing if none
// does, as for narrow texts, texts without terminator, numbers of a wrong size and NaNs other than the usual.
[[nodiscard]] PM_KIT_API std::optional<Value> exact_value(const Stored& stored);

// "long", "double", "string", "bool", "raw", "none".
[[nodiscard]] PM_KIT_API std::string_view type_name(PropType type) noexcept;
// Nothing for another word.
[[nodiscard]] PM_KIT_API std::optional<PropType> type_named(std::string_view name) noexcept;

// One line, TYPE VALUE, that parse_value() reads back to the same bytes; strictness isn't in it.
//
//   long 2             double 0.1 (shortest that reads back; -0.0, inf, -inf, nan)       bool true
//   string "two\nlines" (quoted as JSON does; an unpaired surrogate is "\ud800")         raw 0A0B
//   string bytes 4100  what no value tells exactly: the stored bytes, of any type        long none
//
// "none" stands for a property without a value, and "raw" alone for raw data of no bytes.
[[nodiscard]] PM_KIT_API std::string value_text(const Stored& stored);
// Strict. Blanks around the words don't count, hexadecimal digits are of either case. Throws Error, the
// column being that of the mistake: an unknown type, a number that isn't one or doesn't fit, a text without
// its quotes, anything behind the value, what isn't UTF-8.
[[nodiscard]] PM_KIT_API Stored parse_value(std::string_view text);
// The VALUE alone, as a user types it for a known type: a text without quotes stands for itself. Throws Error
// as above, and for `none` and `bytes` forms there is no way.
[[nodiscard]] PM_KIT_API Stored parse_value(std::string_view text, PropType type);

// A text in double quotes as JSON has it, on one line; never fails: what isn't UTF-8 becomes U+FFFD, an
// unpaired surrogate "\ud800", and what printable_text() doesn't show as it is "\u001b".
[[nodiscard]] PM_KIT_API std::string quoted_text(std::string_view text);

// A text for the eye, on one line: what a terminal takes for a command, ends a line or turns the direction of
// writing as "\x1B" or "\u202E", a byte that isn't part of UTF-8 as "\xE4", an unpaired surrogate as U+FFFD.
// All else, backslashes too, is as it was: what comes out can't be read back.
[[nodiscard]] PM_KIT_API std::string printable_text(std::string_view text);

// Exactly this, whatever was at the path: nodes that are missing are made, a property that is there keeps its
// place and takes type, strictness and bytes. "*" in the path is ordinary. Throws as pm::put_property().
PM_KIT_API void put(Tree& tree, const TextView& path, const Stored& stored);
// Copies all of a node, its properties and what is below, into the node of that path, which is made if
// missing; order, strictness and bytes stay. What is there already is kept, a property of the same name
// replaced. The node may be of the same tree, one of them in the other too. Throws as put() and make_node():
// 51 for what would lie deeper than 256 components.
PM_KIT_API void copy(const Node& from, Tree& tree, const TextView& path);
// An equal tree of its own.
[[nodiscard]] PM_KIT_API Tree copy(const Tree& tree);

} // namespace pm::kit

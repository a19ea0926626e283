#pragma once

#include <iosfwd>
#include <pm/kit/export.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <string>
#include <string_view>

// Trees as JSON (RFC 8259), exact both ways.
//
//   {"pm9": 1,
//    "properties": [
//      {"name": "copies", "type": "long", "value": 2},
//      {"name": "note", "type": "string", "value": "two\nlines", "strict": false}],
//    "nodes": [
//      {"name": "media", "properties": [...], "nodes": [...]}]}
//
// The order is that of the tree. "pm9" is the version of this form. A value is a JSON number for long and
// double, a text, true or false, or the digits of raw bytes in hexadecimal. A double is the shortest text
// that reads back to it and always has a "." or an exponent, "-0.0" too; what JSON has no number for is the
// text "inf", "-inf" or "nan". A property without a value has null. Where a value isn't told exactly so, as
// for narrow texts, texts with an unpaired surrogate or without terminator and numbers of a wrong size,
// "bytes" stands in place of "value": the stored bytes in hexadecimal. A name with an unpaired surrogate is
// "name_units", an array of numbers, in place of "name". "strict" is there where it is false.
namespace pm::kit {

struct JsonOptions {
    int indent = 2; // blanks for each level; -1: all on one line
    int levels = 0; // nodes so deep below the first; 0: all. A node cut so has "more": true, no "nodes"
    // Objects with a member for each property and node, for other programs; types, order among equal names
    // and much else are lost: {"media": {"copies": 2}}. A node of the name of a property has "\" behind it,
    // what isn't UTF-8 is U+FFFD, infinities and NaNs are texts, a property without a value null.
    bool plain = false;
};

// Ends in a line feed.
[[nodiscard]] PM_KIT_API std::string to_json(const Node& node, const JsonOptions& options = {});
[[nodiscard]] PM_KIT_API std::string to_json(const Tree& tree, const JsonOptions& options = {});
// The same piece by piece, for a tree of any size. What the stream can't take shows in its state.
PM_KIT_API void write_json(std::ostream& stream, const Node& node, const JsonOptions& options = {});

// The object of one property on one line, with "pm9" and without a line feed; plain: its value alone.
[[nodiscard]] PM_KIT_API std::string property_json(const Property& property, const JsonOptions& options = {});

// Reads what to_json() writes, not its plain form. Members may stand in any order; missing "properties" and
// "nodes" are empty. Throws Error with the line and column at which it ends: no JSON, another version or
// none, an unknown or repeated member, a value that isn't of its type, a name twice in a node, an empty name
// or one with a backslash or zero, a node that was cut, more than 256 levels. Nothing is half made.
[[nodiscard]] PM_KIT_API Tree from_json(std::string_view text);

} // namespace pm::kit

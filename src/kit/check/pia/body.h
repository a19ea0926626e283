#pragma once

#include "check/findings.h"
#include "check/pia/value.h"
#include "check/source_text.h"
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace pm::kit {

// Walks over the body of a PIA file as a load does, and on behind the lines that end one.
class PiaBody {
public:
    // The source's text is the body. Both are borrowed.
    PiaBody(SourceText& source, Findings& findings);
    void check();

    // The body with the lines that end a load made harmless. Valid after check().
    [[nodiscard]] const std::string& harmless() const { return m_harmless; }
    // The lines that the library counts, in their order.
    [[nodiscard]] const std::vector<std::uint64_t>& counted_lines() const { return m_counted; }

private:
    struct Opening {
        SourceLine line;
        std::string_view name;
    };
    struct Set {
        PropType type;
        std::uint64_t line;
    };
    struct NodeKey {
        std::size_t node;
        std::string_view name;
        bool operator==(const NodeKey&) const = default;
    };
    struct NodeKeyHash {
        std::size_t operator()(const NodeKey& key) const {
            return std::hash<std::string_view>()(key.name) * 31 + key.node;
        }
    };
    // Where a property goes: its node and its last component, both kept.
    struct Target {
        std::size_t node = 0;
        std::string_view name;
        bool named = false;
        std::size_t depth = 0;
    };

    void take_line(const SourceLine& line, std::string_view text);
    void property_line(std::string_view text, std::size_t name_length);
    void property_value(std::string_view name, std::string_view text, const PiaValue& value);
    void opening_line(std::string_view text);
    void refuse_node(std::string_view text, std::string_view name, std::size_t refused);
    void open_node(std::string_view text, std::string_view name);
    void closing_line(std::string_view text);
    void check_name(std::string_view name);
    void check_tail(const SourceLine& line, std::string_view body);
    void check_unclosed();

    void push(std::string_view name);
    bool pop();
    void find_node();
    [[nodiscard]] bool has_room_for(std::string_view name) const;
    [[nodiscard]] std::size_t node_of(std::string_view path, std::size_t& depth);
    [[nodiscard]] Target target_of(std::string_view name);
    [[nodiscard]] std::string path_of(std::string_view name) const;

    void say(Rule rule, const char* at, std::string message, std::uint32_t number = 0, std::string path = {});
    // The line ends a load: the library is to see `instead`.
    void end_load(std::string_view instead = ";") { m_instead = instead; }

    SourceText& m_source;
    Findings& m_findings;
    SourceLine m_line;
    std::string_view m_instead;
    std::string m_harmless;
    std::vector<std::uint64_t> m_counted;

    std::string m_path = "\\"; // as a load keeps it: a last "\" is no level
    std::size_t m_node = 0;
    std::size_t m_depth = 0;
    std::vector<Opening> m_open;
    std::size_t m_skipped = 0; // blocks that are passed over whole
    std::unordered_map<NodeKey, std::size_t, NodeKeyHash> m_nodes;
    std::unordered_map<NodeKey, Set, NodeKeyHash> m_properties;
    std::unordered_map<NodeKey, std::uint64_t, NodeKeyHash> m_blocks; // where a node was opened first
    std::deque<std::string> m_names; // those that the file doesn't hold as they are
};

} // namespace pm::kit

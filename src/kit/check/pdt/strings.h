#pragma once

#include "check/pdt/table.h"
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace pm::kit {

// The string file of a description: its own lines, and which cells of the tables have texts in it.
class StringFile {
public:
    // The content and the code page are borrowed.
    StringFile(std::string_view content, const NarrowText& narrow, const Place& where);

    // Rules of its lines.
    void check(Findings& findings);
    // Rule missing-translation of one table; marks the keys that it uses.
    void check_texts(const TableFile& table, Findings& findings);
    // Rule unused-translation; behind check_texts() of every table.
    void check_unused(Findings& findings) const;

private:
    struct Text {
        Place place;
        bool used = false;
    };
    void take_line(const SourceLine& line, Findings& findings);
    void check_text(const SourceLine& line, std::string_view text, std::string_view behind,
                    Findings& findings);
    void take_key(const SourceLine& line, std::string_view key, Findings& findings);
    void check_form_texts(const TableFile& table, Findings& findings);
    bool use(const std::string& key);

    SourceText m_source;
    std::unordered_map<std::string, Text> m_texts;
    std::vector<std::string> m_order;
};

} // namespace pm::kit

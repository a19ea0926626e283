#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

// Reads pages back, strictly: what isn't well-formed fails the test.
namespace pm_test {

struct MarkupElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text;               // of it and all below it, references resolved
    std::vector<std::string> outer; // names of the elements around it, the outermost first

    [[nodiscard]] std::string attribute(const std::string& attribute_name) const;
    // Whether `class` holds each of these, in any order.
    [[nodiscard]] bool has_classes(std::string_view classes) const;
};

class Markup {
public:
    explicit Markup(std::string_view page);

    [[nodiscard]] const std::vector<MarkupElement>& all() const { return m_elements; }
    // By name, and by classes unless those are empty.
    [[nodiscard]] std::vector<MarkupElement> find(std::string_view name, std::string_view classes = {}) const;
    [[nodiscard]] std::vector<std::string> texts(std::string_view name, std::string_view classes = {}) const;
    // The text of the element with that `id`; empty without one.
    [[nodiscard]] std::string section(std::string_view id) const;

private:
    void read(std::string_view page);

    std::vector<MarkupElement> m_elements;
};

// The text with runs of white space as one blank.
std::string squeezed(std::string_view text);

} // namespace pm_test

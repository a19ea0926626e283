#include <algorithm>
#include <gtest/gtest.h>
#include <kit/report/markup.h>
#include <sstream>

namespace pm_test {

namespace {

const std::map<std::string, std::string> references{
    {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}};

std::string resolved(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        if (text.front() != '&') {
            EXPECT_NE(text.front(), '>') << "a bare > in a text";
            out += text.front();
            text.remove_prefix(1);
            continue;
        }
        const std::size_t end = text.find(';');
        const std::string reference(text.substr(0, end == std::string_view::npos ? end : end + 1));
        const auto found = references.find(reference);
        if (found == references.end()) {
            ADD_FAILURE() << "unknown reference " << reference.substr(0, 20);
            return out;
        }
        out += found->second;
        text.remove_prefix(reference.size());
    }
    return out;
}

// name="value" pairs, of which nothing else may stand in a tag.
std::map<std::string, std::string> read_attributes(std::string_view text) {
    std::map<std::string, std::string> attributes;
    while (!text.empty()) {
        const std::size_t equals = text.find("=\"");
        if (text.front() != ' ' || equals == std::string_view::npos) {
            ADD_FAILURE() << "not an attribute: " << text;
            return attributes;
        }
        const std::size_t end = text.find('"', equals + 2);
        const std::string name(text.substr(1, equals - 1));
        EXPECT_TRUE(attributes.emplace(name, resolved(text.substr(equals + 2, end - equals - 2))).second)
            << "twice " << name;
        text.remove_prefix(end + 1);
    }
    return attributes;
}

} // namespace

std::string MarkupElement::attribute(const std::string& attribute_name) const {
    const auto found = attributes.find(attribute_name);
    return found == attributes.end() ? std::string() : found->second;
}

bool MarkupElement::has_classes(std::string_view classes) const {
    const std::string own = " " + attribute("class") + " ";
    std::istringstream wanted{std::string(classes)};
    for (std::string one; wanted >> one;) {
        if (own.find(" " + one + " ") == std::string::npos) {
            return false;
        }
    }
    return true;
}

Markup::Markup(std::string_view page) {
    read(page);
}

void Markup::read(std::string_view page) {
    constexpr std::string_view type = "<!DOCTYPE html>";
    EXPECT_TRUE(page.starts_with(type));
    page.remove_prefix(type.size());
    std::vector<std::size_t> open;
    while (!page.empty()) {
        const std::size_t tag = page.find('<');
        const std::string text = resolved(page.substr(0, tag));
        for (const std::size_t element : open) {
            m_elements[element].text += text;
        }
        if (tag == std::string_view::npos) {
            EXPECT_EQ(squeezed(text), "");
            break;
        }
        const std::size_t end = page.find('>', tag);
        ASSERT_NE(end, std::string_view::npos) << "an open tag";
        std::string_view inside = page.substr(tag + 1, end - tag - 1);
        page.remove_prefix(end + 1);
        if (inside.starts_with('/')) {
            ASSERT_FALSE(open.empty()) << inside;
            ASSERT_EQ(m_elements[open.back()].name, inside.substr(1));
            open.pop_back();
            continue;
        }
        const bool is_empty = inside.ends_with('/') || inside.starts_with("meta ");
        inside.remove_suffix(inside.ends_with('/') ? 1 : 0);
        const std::size_t name_end = std::min(inside.size(), inside.find(' '));
        MarkupElement element{
            std::string(inside.substr(0, name_end)), read_attributes(inside.substr(name_end)), {}, {}};
        for (const std::size_t outer : open) {
            element.outer.push_back(m_elements[outer].name);
        }
        m_elements.push_back(std::move(element));
        if (m_elements.back().name == "style") {
            page.remove_prefix(page.find("</style>"));
        }
        if (!is_empty) {
            open.push_back(m_elements.size() - 1);
        }
    }
    EXPECT_TRUE(open.empty());
}

std::vector<MarkupElement> Markup::find(std::string_view name, std::string_view classes) const {
    std::vector<MarkupElement> found;
    std::ranges::copy_if(m_elements, std::back_inserter(found), [&](const MarkupElement& element) {
        return element.name == name && element.has_classes(classes);
    });
    return found;
}

std::vector<std::string> Markup::texts(std::string_view name, std::string_view classes) const {
    std::vector<std::string> found;
    for (const MarkupElement& element : find(name, classes)) {
        found.push_back(squeezed(element.text));
    }
    return found;
}

std::string Markup::section(std::string_view id) const {
    const auto found = std::ranges::find_if(
        m_elements, [&](const MarkupElement& element) { return element.attribute("id") == id; });
    return found == m_elements.end() ? std::string() : squeezed(found->text);
}

std::string squeezed(std::string_view text) {
    std::istringstream words{std::string(text)};
    std::string out;
    for (std::string word; words >> word;) {
        out += (out.empty() ? "" : " ") + word;
    }
    return out;
}

} // namespace pm_test

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// Writing HTML with inline SVG: what is opened gets closed, and no text gets out unescaped.
namespace pm::kit::report {

// A text as content or attribute value, in UTF-8 whatever comes: `& < > " '` as references, control
// characters as their pictures (U+2400 and on), each byte that is no UTF-8 and each surrogate as U+FFFD.
[[nodiscard]] std::string escaped(std::string_view text);

struct Attribute {
    std::string_view name; // a literal
    std::string value;     // any text
};
using Attributes = std::initializer_list<Attribute>;

// A page being written, element by element. Names of elements and attributes are literals.
class Html {
public:
    void open(std::string_view name, Attributes attributes = {});
    // Closes what was opened last.
    void close();
    // An element that holds nothing, such as <rect/>; in HTML those that never do.
    void empty(std::string_view name, Attributes attributes = {});
    void text(std::string_view text);
    // An element that holds a text.
    void element(std::string_view name, std::string_view text);
    void element(std::string_view name, Attributes attributes, std::string_view text);
    // As it stands: the head of a page and its style sheet.
    void raw(std::string_view markup) { m_out += markup; }

    [[nodiscard]] std::size_t depth() const noexcept { return m_open.size(); }
    // The page, which ends with this.
    [[nodiscard]] std::string take();

private:
    void begin(std::string_view name, Attributes attributes);

    std::string m_out;
    std::vector<std::string_view> m_open;
};

// An element as long as this lives.
class Element {
public:
    Element(Html& html, std::string_view name, Attributes attributes = {}) : m_html(html) {
        html.open(name, attributes);
    }
    ~Element() { m_html.close(); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

private:
    Html& m_html;
};

} // namespace pm::kit::report

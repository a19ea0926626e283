#include <algorithm>
#include <array>
#include <cstdint>
#include <report/html.h>
#include <utility>

namespace pm::kit::report {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// How many bytes the character at the start of `text` has; 0 if they are no UTF-8. Surrogates aren't.
std::size_t character_length(std::string_view text) {
    struct Form {
        unsigned char first, last, low, high; // of the first byte, and the bounds of the second
        std::size_t length;
    };
    static constexpr std::array<Form, 9> forms{{{0x00, 0x7F, 0x00, 0xFF, 1},
                                                {0xC2, 0xDF, 0x80, 0xBF, 2},
                                                {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                                {0xE1, 0xEC, 0x80, 0xBF, 3},
                                                {0xED, 0xED, 0x80, 0x9F, 3},
                                                {0xEE, 0xEF, 0x80, 0xBF, 3},
                                                {0xF0, 0xF0, 0x90, 0xBF, 4},
                                                {0xF1, 0xF3, 0x80, 0xBF, 4},
                                                {0xF4, 0xF4, 0x80, 0x8F, 4}}};
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    for (const Form& form : forms) {
        if (byte(0) < form.first || byte(0) > form.last) {
            continue;
        }
        if (text.size() < form.length) {
            return 0;
        }
        for (std::size_t at = 1; at < form.length; ++at) {
            const bool second = at == 1;
            if (byte(at) < (second ? form.low : 0x80) || byte(at) > (second ? form.high : 0xBF)) {
                return 0;
            }
        }
        return form.length;
    }
    return 0;
}

// A surrogate in three bytes, as a text may hold one: one character.
bool is_surrogate(std::string_view text) {
    const auto follows = [&](std::size_t at, unsigned char low) {
        const auto byte = static_cast<unsigned char>(text[at]);
        return byte >= low && byte <= 0xBF;
    };
    return text.size() >= 3 && text[0] == '\xED' && follows(1, 0xA0) && follows(2, 0x80);
}

void append_ascii(std::string& out, char character) {
    switch (character) {
    case '&':
        out += "&amp;";
        return;
    case '<':
        out += "&lt;";
        return;
    case '>':
        out += "&gt;";
        return;
    case '"':
        out += "&quot;";
        return;
    case '\'':
        out += "&#39;";
        return;
    case '\n':
        out += character;
        return;
    default:
        break;
    }
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20) {
        out += "\xE2\x90";
        out += static_cast<char>(0x80 + code);
    } else if (code == 0x7F) {
        out += "\xE2\x90\xA1";
    } else {
        out += character;
    }
}

} // namespace

std::string escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const bool surrogate = is_surrogate(text);
        const std::size_t length = surrogate ? 0 : character_length(text);
        const bool is_control =
            length == 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
        if (length == 0 || is_control) {
            out += replacement;
        } else if (length == 1) {
            append_ascii(out, text[0]);
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(surrogate ? 3 : std::max<std::size_t>(length, 1));
    }
    return out;
}

void Html::begin(std::string_view name, Attributes attributes) {
    static constexpr std::array<std::string_view, 12> on_a_line_of_their_own{
        "section", "table", "tr", "figure", "h1", "h2", "h3", "li", "div", "p", "main", "dt"};
    if (std::ranges::find(on_a_line_of_their_own, name) != on_a_line_of_their_own.end()) {
        m_out += '\n';
    }
    m_out += '<';
    m_out += name;
    for (const Attribute& attribute : attributes) {
        m_out += ' ';
        m_out += attribute.name;
        m_out += "=\"";
        m_out += escaped(attribute.value);
        m_out += '"';
    }
}

void Html::open(std::string_view name, Attributes attributes) {
    begin(name, attributes);
    m_out += '>';
    m_open.push_back(name);
}

void Html::close() {
    m_out += "</";
    m_out += m_open.back();
    m_out += ">";
    m_open.pop_back();
}

void Html::empty(std::string_view name, Attributes attributes) {
    begin(name, attributes);
    m_out += "/>";
}

void Html::text(std::string_view text) {
    m_out += escaped(text);
}

void Html::element(std::string_view name, std::string_view text) {
    element(name, {}, text);
}

void Html::element(std::string_view name, Attributes attributes, std::string_view text) {
    open(name, attributes);
    this->text(text);
    close();
}

std::string Html::take() {
    while (!m_open.empty()) {
        close();
    }
    return std::move(m_out);
}

} // namespace pm::kit::report

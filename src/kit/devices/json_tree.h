#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace pm::kit {

// A small JSON text in memory. It goes without asking for memory, which that of the JSON library doesn't.
struct JsonTree {
    using List = std::vector<JsonTree>;
    using Object = std::vector<std::pair<std::string, JsonTree>>; // a name once, in the order of the text

    std::variant<std::monostate, bool, std::int64_t, double, std::string, List, Object> value = {};

    template<class Kind>
    [[nodiscard]] const Kind* as() const noexcept {
        return std::get_if<Kind>(&value);
    }
};

// What is nested deeper counts as null.
inline constexpr std::size_t most_json_levels = 16;

// Nothing if it is no JSON; `mistake` then gets how many bytes were read until that was seen. Of members with
// one name the last counts. An integer that takes more than 64 bits with its sign is a double.
[[nodiscard]] std::optional<JsonTree> parse_json(std::string_view text, std::size_t* mistake = nullptr);

// Writes JSON, a member a line, two blanks a level.
class JsonLines {
public:
    void open(char bracket);
    void close(char bracket);
    void name(std::string_view name);
    void value(std::string_view text); // UTF-8; what isn't is U+FFFD
    void value(bool truth);
    void value(std::int32_t number);

    template<class Value>
    void member(std::string_view of, const Value& is) {
        name(of);
        value(is);
    }
    void open_member(std::string_view of, char bracket) {
        name(of);
        open(bracket);
    }

    [[nodiscard]] std::string take() { return std::move(m_text); }

private:
    void start_value();
    void line();

    std::string m_text;
    std::size_t m_level = 0;
    bool m_is_first = true;  // in its list or object
    bool m_is_named = false; // its name is there already
};

} // namespace pm::kit

#include "devices/json_tree.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

namespace pm::kit {

namespace {

using Json = nlohmann::json;

class Builder : public nlohmann::json_sax<Json> {
public:
    bool null() override { return put({}); }
    bool boolean(bool truth) override { return put({truth}); }
    bool number_integer(std::int64_t number) override { return put({number}); }
    bool number_unsigned(std::uint64_t number) override {
        constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return number <= most ? put({static_cast<std::int64_t>(number)}) : put({static_cast<double>(number)});
    }
    bool number_float(double number, const std::string&) override { return put({number}); }
    bool string(std::string& text) override { return put({std::move(text)}); }
    bool binary(Json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open({JsonTree::Object()}); }
    bool start_array(std::size_t) override { return open({JsonTree::List()}); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string& name) override {
        m_name = std::move(name);
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const Json::exception&) override {
        m_position = position;
        return false;
    }

    JsonTree& root() { return m_root; }
    std::size_t position() const { return m_position; }

private:
    // Where the next value goes. What is open doesn't move: nothing comes into what holds it until it is
    // closed.
    JsonTree& place() {
        if (m_open.empty()) return m_root;
        if (auto* const list = std::get_if<JsonTree::List>(&m_open.back()->value)) {
            return list->emplace_back();
        }
        auto& members = std::get<JsonTree::Object>(m_open.back()->value);
        const auto found = std::ranges::find(members, m_name, &JsonTree::Object::value_type::first);
        return found != members.end() ? found->second : members.emplace_back(m_name, JsonTree()).second;
    }
    bool put(JsonTree item) {
        if (m_too_deep == 0) place() = std::move(item);
        return true;
    }
    bool open(JsonTree item) {
        if (m_open.size() == most_json_levels) {
            if (m_too_deep++ == 0) place() = {};
            return true;
        }
        JsonTree& opened = place();
        opened = std::move(item);
        m_open.push_back(&opened);
        return true;
    }
    bool close() {
        if (m_too_deep > 0) {
            --m_too_deep;
        } else {
            m_open.pop_back();
        }
        return true;
    }

    JsonTree m_root;
    std::vector<JsonTree*> m_open;
    std::size_t m_too_deep = 0;
    std::string m_name;
    std::size_t m_position = 0;
};

} // namespace

std::optional<JsonTree> parse_json(std::string_view text, std::size_t* mistake) {
    Builder builder;
    if (Json::sax_parse(text, &builder)) return std::move(builder.root());
    if (mistake != nullptr) *mistake = builder.position();
    return std::nullopt;
}

void JsonLines::open(char bracket) {
    start_value();
    m_text += bracket;
    ++m_level;
    m_is_first = true;
}

void JsonLines::close(char bracket) {
    --m_level;
    if (!m_is_first) line();
    m_text += bracket;
    m_is_first = false;
}

void JsonLines::name(std::string_view name) {
    value(name);
    m_text += ": ";
    m_is_named = true;
}

void JsonLines::value(std::string_view text) {
    start_value();
    m_text += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

void JsonLines::value(bool truth) {
    start_value();
    m_text += truth ? "true" : "false";
}

void JsonLines::value(std::int32_t number) {
    start_value();
    m_text += std::to_string(number);
}

void JsonLines::start_value() {
    if (!m_is_named && m_level > 0) {
        if (!m_is_first) m_text += ',';
        line();
    }
    m_is_named = false;
    m_is_first = false;
}

void JsonLines::line() {
    m_text += '\n';
    m_text.append(2 * m_level, ' ');
}

} // namespace pm::kit

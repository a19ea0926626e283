#include "json.h"

#include "text.h"
#include <algorithm>
#include <nlohmann/json.hpp>

namespace pmtool {

namespace {

bool is_shown_by_all(char c) {
    return c == '\n' || (c >= ' ' && c <= '~');
}

// Escapes what a terminal would obey and JSON lets stand. All of it stands within texts, and with neither
// quotes nor backslashes.
std::string escape_unseen(std::string_view json) {
    std::string out;
    while (!json.empty()) {
        const auto plain = std::ranges::find_if_not(json, is_shown_by_all) - json.begin();
        out += json.substr(0, static_cast<std::size_t>(plain));
        json.remove_prefix(static_cast<std::size_t>(plain));
        const auto other = std::ranges::find_if(json, is_shown_by_all) - json.begin();
        const std::string quoted = in_quotes(json.substr(0, static_cast<std::size_t>(other)));
        out.append(quoted, 1, quoted.size() - 2);
        json.remove_prefix(static_cast<std::size_t>(other));
    }
    return out;
}

} // namespace

struct Json::Value {
    nlohmann::ordered_json json;
};

Json::Json(std::unique_ptr<Value> value) : m_value(std::move(value)) {}
Json::~Json() = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(Json&& other) noexcept = default;

Json Json::object() {
    return Json(std::make_unique<Value>(Value{nlohmann::ordered_json::object()}));
}

Json Json::array() {
    return Json(std::make_unique<Value>(Value{nlohmann::ordered_json::array()}));
}

Json& Json::text(std::string_view name, std::string_view value) {
    m_value->json[std::string(name)] = value;
    return *this;
}

Json& Json::texts(std::string_view name, const std::vector<std::string>& values) {
    m_value->json[std::string(name)] = values;
    return *this;
}

Json& Json::number(std::string_view name, std::uint64_t value) {
    m_value->json[std::string(name)] = value;
    return *this;
}

Json& Json::truth(std::string_view name, bool value) {
    m_value->json[std::string(name)] = value;
    return *this;
}

Json& Json::null(std::string_view name) {
    m_value->json[std::string(name)] = nullptr;
    return *this;
}

Json& Json::member(std::string_view name, Json value) {
    m_value->json[std::string(name)] = std::move(value.m_value->json);
    return *this;
}

Json& Json::append(Json value) {
    m_value->json.push_back(std::move(value.m_value->json));
    return *this;
}

std::string Json::dump() const {
    constexpr auto replace = nlohmann::ordered_json::error_handler_t::replace;
    return escape_unseen(m_value->json.dump(2, ' ', false, replace)) + '\n';
}

} // namespace pmtool

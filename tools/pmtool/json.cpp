#include "json.h"

#include <nlohmann/json.hpp>

namespace pmtool {

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
    return m_value->json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace pmtool

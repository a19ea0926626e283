#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pmtool {

// A JSON value that is put together: an object with its members in order, or an array. Text that isn't UTF-8
// shows U+FFFD, and what in_quotes() escapes is escaped.
class Json {
public:
    static Json object();
    static Json array();
    ~Json();
    Json(Json&& other) noexcept;
    Json& operator=(Json&& other) noexcept;

    Json& text(std::string_view name, std::string_view value);
    Json& texts(std::string_view name, const std::vector<std::string>& values);
    Json& number(std::string_view name, std::uint64_t value);
    Json& truth(std::string_view name, bool value);
    Json& null(std::string_view name);
    Json& member(std::string_view name, Json value);
    // To an array.
    Json& append(Json value);

    // Indented by two, with a line feed at the end.
    std::string dump() const;

private:
    struct Value;
    explicit Json(std::unique_ptr<Value> value);
    std::unique_ptr<Value> m_value;
};

} // namespace pmtool

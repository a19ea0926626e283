#include "failure.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <pm/exception.h>
#include <pm/kit/error.h>
#include <pm/text.h>
#include <stdexcept>
#include <string_view>

namespace pm::c {

namespace {

// A text of pm9_error, filled a character at a time.
class Room {
public:
    Room(char* text, std::size_t capacity) : m_text(text), m_left(capacity - 1) {}

    // False, with nothing put, where it doesn't fit; nothing fits behind that.
    bool put(std::string_view character) noexcept {
        if (character.size() > m_left) return false;
        std::memcpy(m_text + m_length, character.data(), character.size());
        m_length += character.size();
        m_left -= character.size();
        return true;
    }
    std::size_t finish() noexcept {
        m_text[m_length] = '\0';
        return m_length;
    }

private:
    char* m_text;
    std::size_t m_left;
    std::size_t m_length = 0;
};

std::size_t put_text(std::u16string_view text, char* out, std::size_t capacity) noexcept {
    Room room(out, capacity);
    std::string character; // of at most four bytes: it allocates nothing
    for (std::size_t at = 0; at < text.size();) {
        character.clear();
        detail::append_utf8(detail::next_code_point(text, at), character);
        if (!room.put(character)) break;
    }
    return room.finish();
}

std::size_t put_text(std::string_view text, char* out, std::size_t capacity) noexcept {
    Room room(out, capacity);
    while (!text.empty()) {
        const std::size_t length = detail::read_sequence(text, true).length;
        if (!room.put(text.substr(0, length))) break;
        text.remove_prefix(length);
    }
    return room.finish();
}

bool is_filled(const pm9_error* error) noexcept {
    return error != nullptr && error->size >= sizeof(pm9_error);
}

template<class Place, class Detail>
pm9_status tell(pm9_error* error, pm9_status number, int kind, Place place, Detail detail) noexcept {
    if (!is_filled(error)) return number;
    error->number = number;
    error->kind = kind;
    error->line = 0;
    error->place_length = put_text(place, error->place, sizeof error->place);
    error->detail_length = put_text(detail, error->detail, sizeof error->detail);
    return number;
}

std::u16string_view view(const char16_t* text) noexcept {
    return text != nullptr ? std::u16string_view(text) : std::u16string_view();
}

constexpr int severe = 4;

} // namespace

pm9_status tell_failure(pm9_error* error) noexcept {
    try {
        throw;
    } catch (const ZT_Exception& e) {
        return tell(error, static_cast<pm9_status>(e.m_number), e.kind(), view(e.m_place), view(e.m_detail));
    } catch (const kit::Error& e) {
        const pm9_status status =
            tell(error, PM9_BAD_INPUT, 0, std::string_view("pm9kit"), std::string_view(e.what()));
        if (is_filled(error)) error->line = e.line();
        return status;
    } catch (const std::bad_alloc&) {
        return tell(error, PM9_ERR_NO_MEMORY, severe, std::string_view("pm9c"), std::string_view());
    } catch (const std::length_error&) {
        // A text or list beyond what can be addressed.
        return tell(error, PM9_ERR_NO_MEMORY, severe, std::string_view("pm9c"), std::string_view());
    } catch (const std::exception& e) {
        return tell(error, PM9_UNEXPECTED, 0, std::string_view("pm9c"), std::string_view(e.what()));
    } catch (...) {
        return tell(error, PM9_UNEXPECTED, 0, std::string_view("pm9c"), std::string_view());
    }
}

void refuse(const char16_t* detail, std::uint32_t number) {
    throw PM_Warning(number, u"pm9c", detail, u"$Workfile: failure $ $Revision: #1 $");
}

} // namespace pm::c

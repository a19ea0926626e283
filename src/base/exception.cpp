#include <pm/exception.h>

#include "base/text.h"
#include "platform/code_page.h"
#include <algorithm>
#include <cstring>
#include <new>
#include <pm/error_number.h>

namespace {

void copy_detail(const char16_t* text, char16_t (&detail)[ZT_Exception::detail_capacity]) noexcept {
    const std::u16string_view whole = pm::view(text);
    const std::u16string_view kept = whole.substr(0, ZT_Exception::detail_capacity - 1);
    std::fill(std::copy(kept.begin(), kept.end(), detail), std::end(detail), u'\0');
}

} // namespace

ZT_Exception::ZT_Exception(std::uint32_t number, const char16_t* place, const char16_t* detail,
                           const char16_t* source) noexcept
    : m_res_handle(GetPMErrResHandle()), m_number(number), m_place(place), m_source(source) {
    copy_detail(detail, m_detail);
    try {
        copy_place_narrow(pm::to_narrow(pm::view(place)).c_str());
    } catch (const std::bad_alloc&) {
        m_place_narrow = nullptr;
    }
}

ZT_Exception::ZT_Exception(std::uint32_t number, std::shared_ptr<const char16_t[]> place,
                           const char16_t* detail, const char16_t* source) noexcept
    : ZT_Exception(number, place.get(), detail, source) {
    m_place_owner = std::move(place);
}

ZT_Exception::ZT_Exception(const ZT_Exception& other) noexcept
    : std::exception(other), ZT_Object(other), m_res_handle(other.m_res_handle), m_number(other.m_number),
      m_arg_count(other.m_arg_count), m_place(other.m_place), m_source(other.m_source),
      m_place_owner(other.m_place_owner) {
    copy_detail(other.m_detail, m_detail);
    copy_place_narrow(other.m_place_narrow);
    copy_args(other);
}

ZT_Exception& ZT_Exception::operator=(const ZT_Exception& other) noexcept {
    if (this == &other) return *this;
    m_res_handle = other.m_res_handle;
    m_number = other.m_number;
    m_arg_count = other.m_arg_count;
    m_place = other.m_place;
    m_source = other.m_source;
    m_place_owner = other.m_place_owner;
    copy_detail(other.m_detail, m_detail);
    copy_place_narrow(other.m_place_narrow);
    copy_args(other);
    return *this;
}

ZT_Exception::~ZT_Exception() {
    delete[] m_place_narrow;
}

int ZT_Exception::kind() const noexcept {
    return 2;
}

void ZT_Exception::copy_place_narrow(const char* text) noexcept {
    delete[] m_place_narrow;
    m_place_narrow = nullptr;
    if (text == nullptr) return;
    const std::size_t size = std::strlen(text) + 1;
    m_place_narrow = new (std::nothrow) char[size];
    if (m_place_narrow != nullptr) std::memcpy(m_place_narrow, text, size);
}

void ZT_Exception::copy_args(const ZT_Exception& other) noexcept {
    std::copy_n(other.m_args, std::clamp<int>(other.m_arg_count, 0, arg_capacity), m_args);
}

ZT_Warning::~ZT_Warning() = default;
int ZT_Warning::kind() const noexcept {
    return 1;
}

ZT_Error::~ZT_Error() = default;
int ZT_Error::kind() const noexcept {
    return 2;
}

ZT_Severe_Error::~ZT_Severe_Error() = default;
int ZT_Severe_Error::kind() const noexcept {
    return 4;
}

ZT_Canceled_Error::~ZT_Canceled_Error() = default;
int ZT_Canceled_Error::kind() const noexcept {
    return 6;
}

PM_Warning::~PM_Warning() = default;
PM_Error::~PM_Error() = default;
PM_Severe::~PM_Severe() = default;

PM_Memory_Exception::PM_Memory_Exception(const char16_t* place, const char16_t* detail,
                                         const char16_t* source) noexcept
    : ZT_Severe_Error(PM_ERR_NO_MEMORY, place, detail, source) {}
PM_Memory_Exception::~PM_Memory_Exception() = default;

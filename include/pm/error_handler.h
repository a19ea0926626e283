#pragma once

#include <cstdint>
#include <pm/export.h>

// Implemented by the caller and handed to PM_Object, which borrows it. The library calls it when a filer
// meets something that it can pass over, such as a bad line, and when a codec fails.
//
// Each report is one call of set_arguments() and then one of the on_...() operations, by the kind of the
// exception. The five arguments are the exception's m_res_handle, m_number, m_place, m_detail and m_source;
// the texts are valid during the call only.
class PM_API ZT_Error_Handler {
public:
    virtual ~ZT_Error_Handler();
    virtual void reserved_2() {}
    virtual void reserved_3() {}
    virtual void on_kind_0(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Nonzero: taken, the filer goes on. Zero: the filer stops with a ZT_Canceled_Error.
    virtual int on_warning(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Only tells; the operation goes on as if the answer were nonzero.
    virtual void on_severe(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // As on_warning().
    virtual int on_error(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                         const char16_t* detail, const char16_t* source) = 0;
    virtual int on_kind_3(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                          const char16_t* detail, const char16_t* source) = 0;
    virtual void on_kind_5(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    virtual void reserved_10() {}
    virtual void reserved_11() {}
    virtual void reserved_12() {}
    virtual void reserved_13() {}
    virtual void reserved_14() {}
    virtual void reserved_15() {}
    // `args` holds `count` arguments for the text of the number that is reported next.
    virtual void set_arguments(const std::uint64_t* args, std::int32_t count) = 0;
};

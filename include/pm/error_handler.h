#pragma once

#include <cstdint>
#include <pm/export.h>
#include <string_view>
#include <utility>

// Implemented by the caller and handed to PM_Object, which borrows it: it must outlive the object. The
// library calls it when a filer meets something that it can pass over, such as a bad line, and when a codec
// fails. pm::ReportHandler below asks for one operation in place of seven.
//
// Which kinds occur: warnings and errors out of loads (57 bad lines, 69, 88 values of no known type, 89, 99),
// severe ones out of codecs (55, 90 to 98). Kinds 0, 3 and 5 have no exception in this library, and a
// cancellation is never reported. Saves and getFileVersion() hand no handler on: there a report is thrown.
// Without a handler every report is thrown, as a plain ZT_Exception.
//
// Each report is one call of set_arguments() and then one of the on_...() operations, by the kind of the
// exception, on the thread that called the library. The five arguments are the exception's m_res_handle,
// m_number, m_place, m_detail and m_source; the texts are valid during the call only, and none is null. An
// exception that an operation throws leaves the load as one of the library's own does: what was read stays,
// files are closed. The operation may not use the object that is being loaded.
//
// The order of the virtual operations is fixed: the reserved ones keep the slots that callers' tables have.
class PM_API ZT_Error_Handler {
public:
    virtual ~ZT_Error_Handler();
    // Not called.
    virtual void reserved_2() {}
    virtual void reserved_3() {}
    // Kind 0, which no class has.
    virtual void on_kind_0(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Kind 1. Nonzero: taken, the filer goes on. Zero: the filer stops with a ZT_Canceled_Error of the same
    // number, place and detail. A codec fails whatever the answer is.
    virtual int on_warning(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Kind 4. Only tells: there is no answer.
    virtual void on_severe(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Kind 2, and any that isn't listed here. As on_warning().
    virtual int on_error(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                         const char16_t* detail, const char16_t* source) = 0;
    // Kinds 3 and 5, which no class has.
    virtual int on_kind_3(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                          const char16_t* detail, const char16_t* source) = 0;
    virtual void on_kind_5(std::uint64_t res_handle, std::uint32_t number, const char16_t* place,
                           const char16_t* detail, const char16_t* source) = 0;
    // Not called.
    virtual void reserved_10() {}
    virtual void reserved_11() {}
    virtual void reserved_12() {}
    virtual void reserved_13() {}
    virtual void reserved_14() {}
    virtual void reserved_15() {}
    // `args` holds `count` arguments for the text of the number that is reported next; this library's texts
    // take none, so that `count` is 0.
    virtual void set_arguments(const std::uint64_t* args, std::int32_t count) = 0;
};

namespace pm {

// What a handler answers to a report. A report that only tells (severe) goes on whatever the answer is.
enum class Answer : int { stop = 0, go_on = 1 };

// ZT_Error_Handler with one operation in place of seven:
//
//     class Log : public pm::ReportHandler {
//         pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
//                              std::u16string_view detail) override { ...; return pm::Answer::go_on; }
//     } log;
//     PM_Object object(&log);
//
// A pm::Tree (tree.h) has one of its own and gives the reports as a list.
class ReportHandler : public ZT_Error_Handler {
public:
    // `kind` is that of the exception: 1 warning, 2 error, 4 severe; the library has no others. `number` is
    // one of error_number.h. `place` names the operation that met it, `detail` what it concerns, such as the
    // line with its number and file; both are valid during the call only. May throw: the exception leaves
    // the load, and what was read stays.
    virtual Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                             std::u16string_view detail) = 0;

    // What the library calls; a program needn't. Each calls on_report() with its kind; the texts of this
    // library take no arguments.
    void on_kind_0(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t*) final;
    int on_warning(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t*) final;
    int on_error(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                 const char16_t*) final;
    int on_kind_3(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                  const char16_t*) final;
    void on_severe(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t*) final;
    void on_kind_5(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t*) final;
    void set_arguments(const std::uint64_t*, std::int32_t) override {}

private:
    int tell(int kind, std::uint32_t number, const char16_t* place, const char16_t* detail);
};

// A handler that calls a function: ReportCall handler([&](int kind, std::uint32_t number, auto place,
// auto detail) { ...; return pm::Answer::go_on; });
template<class Function>
class ReportCall final : public ReportHandler {
public:
    // The function takes what on_report() takes and gives a pm::Answer. What it refers to must outlive this.
    explicit ReportCall(Function function) : m_function(std::move(function)) {}
    Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                     std::u16string_view detail) override {
        return m_function(kind, number, place, detail);
    }

private:
    Function m_function;
};

} // namespace pm

#include <pm/detail/error_handler.h>

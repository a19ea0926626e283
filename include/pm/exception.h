#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <pm/export.h>
#include <pm/zt_string.h>

// The handle of the message library pmres9, opened when this library starts and closed when it ends; 0 if it
// couldn't be opened. Without it everything works and numbers have no text.
PM_API std::uint64_t GetPMErrResHandle();

// Every failure of the library is one of the classes below, thrown by value. Which number comes with which
// class and place is told in docs/errors.md; catching ZT_Exception catches all.
//
//   ZT_Warning         PM_Warning           kind 1   a wrong argument, or something that isn't there
//   ZT_Error           PM_Error             kind 2   a value or line that isn't valid
//   ZT_Severe_Error    PM_Severe            kind 4   a file that can't be read or written
//                      PM_Memory_Exception  kind 4   number 55, no memory
//   ZT_Canceled_Error                       kind 6   a handler answered a report with 0
//   ZT_Exception                            kind 2   a report without a handler, its own class lost
//
// Only these leave the library, but for std::bad_alloc out of ZT_String and ZT_Object and what a handler
// throws; codecs throw nothing. An exception carries a number and no message: what() tells nothing,
// pm_error_text() gives the text of a number. Fields are public and read-only by convention. An exception
// owns all it shows, or points to static text: it can be copied, kept and handed to another thread.
//
// Catch by reference; the classes tell how bad it is, the number what it is:
//
//     try {
//         object.load(file, PM_Object::FILE_PIA, u"\\");
//     } catch (const ZT_Canceled_Error&) {
//         // a handler said so
//     } catch (const ZT_Exception& e) {
//         if (e.m_number != PM_ERR_NO_SUCH_FILE) throw;
//     }
class PM_API ZT_Exception : public std::exception, public ZT_Object {
public:
    static constexpr int detail_capacity = 260;
    static constexpr int arg_capacity = 32;

    // Never throws: without memory the narrow place is missing, nothing else. `place` and `source` must be
    // static texts. `detail` is copied, cut to 259 units; null counts as empty.
    ZT_Exception(std::uint32_t number, const char16_t* place, const char16_t* detail,
                 const char16_t* source) noexcept;
    // For the one report whose place name is a line of a file: the place is kept alive by the exception and
    // its copies.
    ZT_Exception(std::uint32_t number, std::shared_ptr<const char16_t[]> place, const char16_t* detail,
                 const char16_t* source) noexcept;
    ZT_Exception(const ZT_Exception& other) noexcept;
    ZT_Exception& operator=(const ZT_Exception& other) noexcept;
    ~ZT_Exception() override;

    // Severity code: 1 warning, 2 error, 4 severe, 6 cancelled. It decides which operation of a handler is
    // called.
    virtual int kind() const noexcept;

    // Which of them tell what is in docs/errors.md, number by number.
    std::uint64_t m_res_handle;           // GetPMErrResHandle() at the time of the throw
    std::uint32_t m_number;               // index into the texts of pmres9
    std::int32_t m_arg_count = 0;         // entries of m_args in use
    const char16_t* m_place;              // where it was raised, such as u"PM_Object::SetData()"; not owned
    char* m_place_narrow = nullptr;       // m_place in the system's code page; owned, null without memory
    char16_t m_detail[detail_capacity]{}; // what it concerns: a path, a file, a line; may be empty
    const char16_t* m_source;             // marker of the source unit; not owned
    std::uint64_t m_args[arg_capacity]{}; // arguments for the text of the number

private:
    void copy_place_narrow(const char* text) noexcept;
    void copy_args(const ZT_Exception& other) noexcept;

    std::shared_ptr<const char16_t[]> m_place_owner;
};

// The bases, shared with sibling libraries; this library throws only the PM_ classes that derive from them.
class PM_API ZT_Warning : public ZT_Exception {
public:
    using ZT_Exception::ZT_Exception;
    ~ZT_Warning() override;
    int kind() const noexcept override;
};

class PM_API ZT_Error : public ZT_Exception {
public:
    using ZT_Exception::ZT_Exception;
    ~ZT_Error() override;
    int kind() const noexcept override;
};

class PM_API ZT_Severe_Error : public ZT_Exception {
public:
    using ZT_Exception::ZT_Exception;
    ~ZT_Severe_Error() override;
    int kind() const noexcept override;
};

// Thrown when a handler answers a report with 0: the load has ended, what was read stays.
class PM_API ZT_Canceled_Error : public ZT_Exception {
public:
    using ZT_Exception::ZT_Exception;
    // With everything that the reported exception carries.
    explicit ZT_Canceled_Error(const ZT_Exception& reported) noexcept : ZT_Exception(reported) {}
    ~ZT_Canceled_Error() override;
    int kind() const noexcept override;
};

// A wrong argument, an absent thing, a bad value: nothing is broken, and the operation can be tried
// otherwise.
class PM_API PM_Warning : public ZT_Warning {
public:
    using ZT_Warning::ZT_Warning;
    ~PM_Warning() override;
};

// A value, a line or a file header that isn't valid.
class PM_API PM_Error : public ZT_Error {
public:
    using ZT_Error::ZT_Error;
    ~PM_Error() override;
};

// A file or a stream that can't be used, or a tree that can't.
class PM_API PM_Severe : public ZT_Severe_Error {
public:
    using ZT_Severe_Error::ZT_Severe_Error;
    ~PM_Severe() override;
};

// Always number 55; the detail names what was to be allocated.
class PM_API PM_Memory_Exception : public ZT_Severe_Error {
public:
    PM_Memory_Exception(const char16_t* place, const char16_t* detail, const char16_t* source) noexcept;
    ~PM_Memory_Exception() override;
};

#pragma once

#include <cstddef>
#include <fstream>
#include <memory>
#include <pm/error_handler.h>
#include <pm/exception.h>
#include <pm/object.h>
#include <string>

namespace pm {
class TreeCursor;
}

// The abstract filer: moves a tree to or from one format on disk. Made for one call of PM_Object, driven
// through open or attach, then load, save or getVersion, then close, and destroyed.
class PM_File {
public:
    // As `size` of getVersion(): the buffer is trusted.
    static constexpr std::size_t unchecked = static_cast<std::size_t>(-1);

    explicit PM_File(ZT_Error_Handler* handler) : m_handler(handler) {}
    virtual ~PM_File();
    PM_File(const PM_File&) = delete;
    PM_File& operator=(const PM_File&) = delete;

    // Filers come from the library's allocator: null when there is no memory.
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* block) noexcept;

    virtual void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) = 0;
    virtual void save(const PM_Object* source, const char16_t* subtree, PM_Object::FileType type,
                      const char16_t* tag) = 0;
    // Use a caller's stream in place of a file; it stays the caller's and open.
    virtual void attach(std::iostream* stream) = 0;
    virtual void open(const char16_t* name, bool write) = 0;
    virtual void close() = 0;
    // Fills the buffer of `size` wide units with the file's version text, cut to fit.
    virtual void getVersion(char16_t* buffer, std::size_t size) = 0;
    // Tells of something that can be passed over. Returns if the handler lets the work go on, else throws a
    // ZT_Canceled_Error of the same content; without a handler throws a copy as a plain ZT_Exception.
    virtual int report(const ZT_Exception& exception);

protected:
    // Write the tree; always strict.
    static void set_data(PM_Object& target, const char16_t* path, const void* data, std::size_t size,
                         PropType type, int index = -1);
    static void set_long(PM_Object& target, const char16_t* path, std::int32_t value, int index = -1);
    static void set_double(PM_Object& target, const char16_t* path, double value, int index = -1);
    static void set_bool(PM_Object& target, const char16_t* path, bool value, int index = -1);
    // At most 4096 units are looked at for the end of the text; a longer one is cut to 4097 units.
    static void set_string(PM_Object& target, const char16_t* path, const char16_t* text, int index = -1);

    // Copies a version text with the capacity rule of getVersion().
    static void copy_version(std::u16string_view text, char16_t* buffer, std::size_t size);

    // Throws PM_Severe with `place` and `name` if the stream's state isn't clear (end of file counts). The
    // number follows from errno, 82 for a code without one.
    static void check_stream(const char16_t* place, const char16_t* name, const std::ios& stream,
                             const char16_t* source);
    // What the exceptions of open_file() carry.
    struct OpenPlaces {
        const char16_t* missing;
        const char16_t* failed;
        const char16_t* source;
    };
    // Makes `owned` the stream in use, opened in binary mode, and keeps the name; does nothing if it is open
    // already. Number 63 (PM_Severe) for a file to read that doesn't exist, then the stream errors.
    void open_file(std::unique_ptr<std::fstream>& owned, const char16_t* name, bool write,
                   const OpenPlaces& places);
    // The number for an errno value.
    static std::uint32_t stream_error_number(int code);

    // The file name as exceptions tell it: null when a stream is attached.
    const char16_t* file_name() const { return m_filename.empty() ? nullptr : m_filename.c_str(); }

    ZT_Error_Handler* m_handler;
    pm::TreeCursor* m_cursor = nullptr; // of a load that is under way; a handler may change the tree
    std::u16string m_filename;
    std::iostream* m_stream = nullptr;
};

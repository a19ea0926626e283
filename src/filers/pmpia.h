#pragma once

#include "filers/line_reader.h"
#include "filers/pmfile.h"
#include "store/tree_cursor.h"
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace pm {
class CompressedBody;
class WideText;
} // namespace pm

// Reads and writes PIA files, and gives the readers of older text formats their stream handling, save and
// line services. The format is told in docs/pia.md.
class PM_PIAFile : public PM_File {
public:
    explicit PM_PIAFile(ZT_Error_Handler* handler) : PM_File(handler) {}
    ~PM_PIAFile() override;

    // Numbers: 89 not a PIA file (reported), 57 and 88 bad lines (reported or thrown), 84 a compressed body
    // that doesn't decode, 53, 54, 51 from a value, 55, and the stream errors.
    void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) override;
    void save(const PM_Object* source, const char16_t* subtree, PM_Object::FileType type,
              const char16_t* tag) override;
    void attach(std::iostream* stream) override;
    void open(const char16_t* name, bool write) override;
    void close() override;
    void getVersion(char16_t* buffer, std::size_t size) override;
    // Whether text goes out, or is read, as UTF-8 in place of the system's code page.
    virtual void set_utf8(bool utf8) { m_utf8 = utf8; }

    // The value form that the first characters tell, as a number of PropType; 0 for none.
    static PropType classify_value(std::u16string_view value);

protected:
    // check_stream of PM_File on m_stream with this unit's source marker.
    void check_stream(const char16_t* place, const char16_t* name) const;

    // A bad line as exceptions tell it: line feed, line number, ", ", the line, ", ", the file name.
    std::u16string format_line_context(std::u16string_view line) const;
    // Back to the start of m_stream, for reading through m_reader.
    void rewind_reader();
    unsigned text_code_page() const;

    PM_Object::FileType m_file_type = PM_Object::FILE_PIA;
    std::int32_t m_line_number = 0;
    std::unique_ptr<std::fstream> m_owned_file;
    std::int32_t m_indent = 1;
    bool m_utf8 = false;
    pm::LineReader m_reader;

private:
    // Points m_reader at the plain text of a compressed file, which lives as long as what is given; null,
    // with m_stream at its end, if `header` tells no version.
    std::unique_ptr<pm::CompressedBody> attach_body(std::u16string_view header);
    void load_body(PM_Object& target, const char16_t* base, bool from_stream);
    void load_plain_lines(pm::TreeCursor& place);
    bool read_line(pm::WideText& line, bool from_stream);
    void load_line(pm::TreeCursor& place, pm::WideText& line);
    void property_line(pm::TreeCursor& place, const pm::TreeCursor::Name& name, pm::WideText& line);
    void opening_line(pm::TreeCursor& place, std::u16string_view line);
    void closing_line(pm::TreeCursor& place, std::u16string_view line);
    // `value` is the end of `line`.
    void store_value(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::u16string_view value,
                     pm::WideText& line);
    void store_double(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::u16string_view value,
                      std::u16string_view line);
    void store_raw(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::u16string_view value,
                   pm::WideText& line);
    void report_unknown_value(pm::WideText& line);
    template<class E>
    void report_bad_line(std::u16string_view line);
    [[noreturn]] void raise_bad_line(std::u16string_view line) const;

    void write_header(std::u16string_view tag);
    void encode_body(std::string_view text);

    int m_unopened = 0; // depth inside a block that is passed over
};

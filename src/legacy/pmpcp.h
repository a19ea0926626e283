#pragma once

#include "filers/pmpia.h"
#include "store/working_path.h"
#include <cstddef>
#include <string>
#include <string_view>

// Reads a list of plot parameters with a block for each pen colour. The format is told in docs/pcp.md.
class PM_PCPFile : public PM_PIAFile {
public:
    using PM_PIAFile::PM_PIAFile;

    // Reads from where the stream stands to its end. Numbers: 69 a line in front of the marker comment, 57
    // bad lines (all reported), 51 a base of 1023 units or more, 56 no stream, 61, 64 and 66 stream errors,
    // and those of setting a value.
    void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) override;
    // The value of the file's last VERSION line, whatever stands around it; the buffer is left alone if
    // there is none.
    void getVersion(char16_t* buffer, std::size_t size) override;

    // The value form, as a number of PropType; 0 for none. A number with a point is no integer, nor an
    // integer a number with a point.
    static PropType classify_pcp_value(std::u16string_view text);

private:
    struct Keyword;
    struct KeywordLine;
    struct Reading;
    struct NumberPair;
    enum class Outcome { store, done, bad };
    static const Keyword keywords[];

    void load_line(Reading& reading, const std::u16string& line);
    void comment_line(Reading& reading, const std::u16string& line);
    void keyword_line(Reading& reading, std::u16string_view line);
    // Handles one line. True if its value is to be stored as m_expected_type, false if all is done.
    bool pcpkeys(PM_Object& object, std::u16string_view line, pm::WorkingPath& path, std::u16string_view key);
    bool store_value(PM_Object& object, const char16_t* path, std::u16string_view value) const;
    void cut_path(pm::WorkingPath& path, std::u16string_view line);
    template<class E>
    void report_bad_line(const char16_t* place, std::u16string_view line);
    void version_line(std::u16string_view line, char16_t* buffer, std::size_t size);

    Outcome plain_value(const KeywordLine& at);
    Outcome one_letter(const KeywordLine& at);
    Outcome begin_color(const KeywordLine& at);
    Outcome end_color(const KeywordLine& at);
    Outcome pen_number(const KeywordLine& at);
    Outcome pen_value(const KeywordLine& at);
    Outcome origin(const KeywordLine& at);
    Outcome size(const KeywordLine& at);
    Outcome scale(const KeywordLine& at);

    template<class Setter>
    static Outcome set_for_each_color(const KeywordLine& at, Setter set);
    static Outcome set_pair(const KeywordLine& at, const NumberPair& pair, std::u16string_view subkey = {});
    static bool set_member(const KeywordLine& at, const NumberPair& pair, std::u16string_view name,
                           std::u16string_view number);

    // Between the start and the end of a default block. Kept: it outlives a load, so that a file which ends
    // inside such a block leaves the next load of the same thread in it.
    static thread_local bool s_default_block;

    PropType m_expected_type = PROP_NONE; // of the line at hand
};

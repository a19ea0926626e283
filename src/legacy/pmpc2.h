#pragma once

#include "filers/pmpia.h"
#include "legacy/pc2_keys.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <pm/inspect.h>
#include <string>
#include <string_view>
#include <vector>

// Reads the text description of one configured plotter: a fixed set of keys with types and defaults. The
// format is told in docs/pc2.md.
class PM_PC2File : public PM_PIAFile {
public:
    // What the first line begins with that is neither blank nor a comment.
    static constexpr std::u16string_view version_start = u"PC2Version";

    using PM_PIAFile::PM_PIAFile;

    // Sets all keys to their defaults and then to what the file says. Numbers: 69 no version line, 57 and 99
    // bad lines (all reported), 56 no stream, 61, 64 and 66 stream errors, and those of setting a value.
    // Lines are counted from the one behind the version line.
    void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) override;
    // The version line. Leaves the buffer alone if there is none and the handler lets the work go on.
    void getVersion(char16_t* buffer, std::size_t size) override;

protected:
    // What a load works on.
    struct Reading {
        PM_Object& target;
        std::optional<std::int32_t> plotter; // the one asked for, in a file of several
        std::u16string path;                 // begins with the base, which ends in "\"
        std::size_t base_length;
        std::u16string section;
    };

    static Reading begin(PM_Object& target, const char16_t* base, std::optional<std::int32_t> plotter);
    // `base` ends in "\".
    static void set_defaults(PM_Object& target, std::u16string_view base);
    // Reads on from where m_reader stands to the end of the stream, whose failures are told of at `place`.
    void load_lines(Reading& reading, const char16_t* place);
    void require_stream(const char16_t* place) const;

private:
    void load_line(Reading& reading, std::u16string_view line);
    void section_line(Reading& reading, std::u16string_view line);
    void key_line(Reading& reading, std::u16string_view line, std::size_t equals);
    // False if the value isn't of the key's form.
    static bool set_value(const Reading& reading, const pm::Pc2Key& key, std::u16string_view value);
    static bool set_long_value(const Reading& reading, std::u16string_view value, bool hexadecimal);
    static bool set_double_value(const Reading& reading, std::u16string_view value);
    static void set_string_value(const Reading& reading, std::u16string_view value);
    static bool set_raw_value(const Reading& reading, std::u16string_view value);
    static bool scans_hexadecimal(const Reading& reading, const pm::Pc2Key& key);
    void report_bad_line(std::u16string_view line);
    void report_bad_line(std::u16string_view line, std::uint32_t number);
};

// Reads one plotter out of a configuration file of several: sections may carry the number of the plotter
// that they are for.
class PM_CFGFile : public PM_PC2File {
public:
    using PM_PC2File::PM_PC2File;

    // As load() of PM_PC2File, but without a version line, for plotter `n` and the sections without a
    // number. Reads from where the stream stands.
    virtual void load_section(PM_Object* target, const char16_t* base, std::int32_t n);
    // The plotters whose numbers stand in sections, by rising number. Fails as load_section() for a stream
    // that does; bad lines are passed over. Reads from where the stream stands.
    std::vector<pm::CfgPlotter> list_plotters();
};

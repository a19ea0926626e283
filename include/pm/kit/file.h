#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <pm/inspect.h>
#include <pm/kit/export.h>
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <vector>

// Reading a file of any kind whole, as one tree.
namespace pm::kit {

// What to read and how.
struct Input {
    // The bytes that the system knows the file by; "-" is standard input. A folder stands for the string file
    // in it. Of content at hand, the name that reports and failures show.
    std::string file;
    std::optional<PM_Object::FileType> type = {}; // nothing: by content
    // The one section of a DPIA file by name, or the plotter of a CFG file by number; empty: all of them.
    std::string section = {};
    // What narrow text is read as, 65001 for UTF-8; 0 leaves the page that is set. Another is set while the
    // file is read, for the calling thread alone.
    unsigned code_page = 0;
    OnReport on_report = {}; // asked as by a load of tree.h
    // Whether a DOC file is opened as the library opens one: for this process alone and for writing too,
    // which fails with 56 while another has it open. Otherwise its bytes are read first, so that any number
    // may read it at once, and one that can only be read; what is written to meanwhile without being replaced
    // is then read half.
    bool exclusive = false;
    // What ends the reading of a section, or of a file of one tree, is its last report, and what was read
    // before it stays; the other sections are read. Want of memory, number 55, ends all.
    bool keep_going = false;
};

// What a load passed over, and of which part of the file; the section as in Section::name, empty for a whole
// file. A line of a CFG file that is bad for several plotters is told once, for the first of them.
struct FileReport : Report {
    std::string section = {};
    bool ends = false; // it ended the reading of that part; what stands behind it isn't read
};

// A part of a file that holds several trees.
struct Section {
    std::string name = {}; // of a DPIA file as its directory has it, of a CFG file the plotter's number
    std::string info = {}; // of a DPIA file its info text, of a CFG file the plotter's menu name
    // The name of its node below the root: `name`, but with "/" for each backslash, "section" for an empty
    // one, and "#2", "#3"... behind one that is taken. Empty if only one section was read.
    std::string node = {};

    bool operator==(const Section&) const = default;
};

struct FileContent {
    // A file of one tree as it is. A DPIA file without a section that was asked for, and a CFG file of
    // several plotters, have a node for each section, empty ones too, and below it what the section holds.
    Tree tree = {};
    PM_Object::FileType type = PM_Object::FILE_PIA;
    std::vector<FileReport> reports = {};
    // All that the file has, read or not, in its order. A second section of a name can't be read: it has its
    // node, which stays empty, and is told in `unread`. Sections of a DPIA file may share bytes; one with
    // which more than four times the file's own would be read is number 82.
    std::vector<Section> sections = {};
    std::vector<std::string> unread = {}; // names of such sections
    bool by_section = false;              // the tree has a node for each section
    bool stopped = false; // with Input::keep_going: something ended the reading of the file or of a section

    // Of the header, where the format has one: 1 or 2 (PIA, DPIA), else 0; of a PIA file what stands behind
    // the version and its comma, and whether its body is compressed.
    int version = 0;
    std::string tag = {};
    bool compressed = false;
    // The bytes of a PIA file, which tell what a rewrite changes in form; empty for other formats.
    std::string bytes = {};
};

// Reads a file. Bad lines become reports. A file that isn't a regular one, such as a pipe, is read to its end
// first, and so is standard input. A DOC file, and DPIA and CFG content that isn't in a file, goes through a
// temporary one, whose name no report shows.
//
// Throws Error: a file of no known kind, a folder without a string file, a section of a file that has none, a
// section or plotter that isn't there (the message names those that are), a number that isn't one, more than
// 1000 plotters at once, no place for a temporary file. The library's exceptions pass, with the name as it
// was given in their detail; what was read before is lost with them, unless read_into() is used.
[[nodiscard]] PM_KIT_API FileContent read_file(const Input& input);
// The same, filling `content` as far as it gets.
PM_KIT_API void read_into(FileContent& content, const Input& input);
// Content at hand.
[[nodiscard]] PM_KIT_API FileContent read_content(std::string_view bytes, const Input& input);
PM_KIT_API void read_content_into(FileContent& content, std::string_view bytes, const Input& input);
// From where a stream stands to its end; Error if it fails.
[[nodiscard]] PM_KIT_API FileContent read_stream(std::istream& stream, const Input& input);

// "pia", "dpia", "doc", "pc2", "cfg", "pcp", "pdt": the names of formats, and back in any case.
[[nodiscard]] PM_KIT_API std::string_view format_name(PM_Object::FileType type) noexcept;
[[nodiscard]] PM_KIT_API std::optional<PM_Object::FileType> format_named(std::string_view name) noexcept;
// Whether the library writes it.
[[nodiscard]] PM_KIT_API bool is_written(PM_Object::FileType type) noexcept;

// A code page that is set for the calling thread as long as this lives; 0 changes nothing. Throws as
// pm_set_thread_code_page().
class PM_KIT_API ScopedCodePage {
public:
    explicit ScopedCodePage(unsigned code_page);
    ~ScopedCodePage();
    ScopedCodePage(const ScopedCodePage&) = delete;
    ScopedCodePage& operator=(const ScopedCodePage&) = delete;

private:
    std::optional<unsigned> m_before;
};

} // namespace pm::kit

#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <pm/export.h>
#include <pm/object.h>
#include <string>
#include <string_view>
#include <vector>

// What programs that show files and trees ask before and beside a load: what kind a file is, what it holds
// that is loaded by name or number, and what stands at a path.
//
// File names are as those of PM_Object::load(); one that holds a zero is number 51 (PM_Warning), detail what
// stands before it. Streams stay the caller's and open; they are read from their start. Texts and vectors are
// the caller's own. Nothing here calls a handler: what a load would report is thrown, as it is by a load
// without one (ZT_Exception). Want of memory is number 55, or 64 where the system has none for the file.
namespace pm {

// --- files

// By what a kind of file is known.
enum class Evidence {
    signature,   // FILE_DOC: the file begins with the eight bytes of a compound file
    directory,   // FILE_DPIA: a version word of 1.0 or 2.0 and a directory that lies whole within the file
    first_line,  // FILE_PIA: the first line that isn't blank begins with "PIAFILEVERSION_", in any case;
                 // FILE_PC2: the first one that is no comment either begins with "PC2Version"
    comment,     // FILE_PCP: a comment begins with ";Created by Draftex", in any case
    sections,    // FILE_CFG: the first line that isn't blank or a comment is a [section]
    string_keys, // FILE_PDT: a line with a key that begins with "DRFX_" and a double quote
    string_file  // FILE_PDT: a folder that holds a string file
};

struct FileIdentity {
    PM_Object::FileType type = PM_Object::FILE_PIA; // to be loaded as; a folder by its string file
    Evidence evidence = Evidence::first_line;
    // Of first_line and comment: the line, without the white space around it. The bytes are those of the
    // file, since nothing there tells their code page.
    std::string line;
    int version = 0;                    // of directory: 1 or 2
    std::uint32_t section_count = 0;    // of directory
    std::vector<std::int32_t> plotters; // of sections: the numbers, rising, each once
    std::u16string string_file;         // of string_file: its name, the folder's in front
};

// What the content of a file is, whatever it is called; nothing if it is of no known kind. The kinds are
// looked for in the order of Evidence; a damaged file may well be known. A folder is FILE_PDT if it holds a
// string file.
//
// Throws PM_Severe, place u"pm::identify()", detail the name of what can't be read: number 63 (no such file),
// 61 (access denied), 68 (a folder without a string file), 62, 64, 72, 73 and 78 as the system says, 82 for
// anything else.
PM_API std::optional<FileIdentity> identify(std::u16string_view file);
// The same for content at hand. Throws nothing but number 55.
PM_API std::optional<FileIdentity> identify_content(std::string_view content);

// The string file of a device description in a folder, as PM_Object::load() takes it: "strings.pdt" in any
// case, or else the first file in the order of names that ends in ".pdt" and holds such lines. Nothing if
// there is none, or if the folder can't be listed. Throws as identify() for a file that can't be read.
PM_API std::optional<std::u16string> find_string_file(std::u16string_view folder);

// An entry in the directory of a DPIA file.
struct DpiaSection {
    std::u16string name; // as PM_Object::load_section() takes it; the first of equals is loaded
    std::optional<std::u16string> info; // nothing in a file of version 1.0
    std::uint64_t offset = 0;           // from the start of the file, in bytes; may lie outside of it
    std::uint32_t size = 0;             // in bytes
};

// The directory of a DPIA file, in its order. Fails as PM_Object::load() of FILE_DPIA: 63, 69 for an unknown
// version (ZT_Exception), 55, and the numbers of a stream, 82 for a directory that ends too early. The
// exceptions() of a stream are off meanwhile.
PM_API std::vector<DpiaSection> dpia_sections(std::u16string_view file);
PM_API std::vector<DpiaSection> dpia_sections(std::iostream& stream);

// A plotter that a CFG file describes.
struct CfgPlotter {
    std::int32_t number = 0; // as PM_Object::load_cfg_section() takes it
    // The text of the key MenuName in its own section Plotter/Device, the last if there are several; empty
    // if there is none.
    std::u16string name;
};

// The plotters whose numbers stand in the section lines of a CFG file, by rising number, each once. Lines and
// numbers are read as load_cfg_section() reads them: a "#" without digits behind it is number 0, one beyond
// 32 bits the nearest that fits. Bad lines are passed over. Fails as load_cfg_section() for a file that can't
// be read: 63, 61, 64, 66, 82.
PM_API std::vector<CfgPlotter> cfg_plotters(std::u16string_view file);
PM_API std::vector<CfgPlotter> cfg_plotters(std::iostream& stream);

// --- trees

// What is known of a property besides its value.
struct PropertyInfo {
    PropType type = PROP_NONE;
    std::size_t size = 0; // of the value in bytes, terminator of a text included; 0 without a value
    bool strict = true;   // whether it takes and gives only its own type
};

// Both operations only look and throw nothing: what can't be there, such as a path of more than 256
// components, isn't. A null path counts as an empty one. Who wants the node or the property itself, with its
// value or its neighbours, asks pm_find_node() and pm_find_property() of view.h, on which these stand.

// Whether there is a node of that path, in which a "*" is an ordinary character; "\" or an empty path is the
// root.
PM_API bool node_exists(const PM_Object& object, const char16_t* path) noexcept;
// The property that PM_Object::GetProperty() reads with this path and index, or nothing.
PM_API std::optional<PropertyInfo> property_at(const PM_Object& object, const char16_t* path,
                                               int index = -1) noexcept;

// Makes the node of that path, and those above it, where they are missing; "*" is an ordinary character. A
// new node is the last child of its parent and empty: saves to a compound file keep it, and a DPIA file has a
// section for it. The root is there already. Numbers: 51 for more than 256 components, with nothing made; 50;
// 55, with the nodes made on the way staying.
PM_API void make_node(PM_Object& object, const char16_t* path);

} // namespace pm

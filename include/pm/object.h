#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <pm/error_handler.h>
#include <pm/mem_obj.h>

class PM_File;
class PM_Iterator;
class PM_Node;
class PM_PathStrings;
class PM_Property;

class PM_Object;
namespace pm {
class TreeBuilder;
class TreeCursor;
void make_node(PM_Object& object, const char16_t* path); // inspect.h
} // namespace pm

// Type of a stored value.
enum PropType : std::int32_t {
    PROP_NONE,   // no value
    PROP_LONG,   // signed 32-bit integer, 4 bytes
    PROP_DOUBLE, // 64-bit float, 8 bytes
    PROP_STRING, // text, terminator included; wide unless it was set from narrow bytes
    PROP_BOOL,   // 1 byte, zero or nonzero
    PROP_VOID    // raw bytes
};

// A tree of named nodes and typed properties.
//
// Paths: components separated by "\"; all but the last name nodes, the last names a property (in SetProperty
// and its kin) or a node or property (in deletePath). Names are case-sensitive; "/" and all other characters
// are ordinary. A path has at most 256 components. Nodes and properties keep the order of their creation.
//
// Index: where an operation takes one, the first "*" of the path is replaced by it in decimal; without a "*"
// an index other than -1 names one more level. The resolved path has at most 1023 units.
//
// Failures are exceptions (exception.h); docs/errors.md has all numbers. A failed operation leaves what it
// had done: nodes made on the way stay, and so does what a load had read.
//
// What isn't there, and a path that names nothing:
//
//   operation                 no components        unknown name   known, elsewhere
//   SetProperty, setVoid...   51                   made           made
//   GetProperty, getVoid...   false                false          false
//   getPropertySize           51                   51             86 node, 87 property
//   pathExists                false                false          see there
//   deletePath                51                   51             52
//   newIterator               51, but "\" is root  51             an iterator at its end
//   duplicate, source         51, but "\" is root  copies nothing copies nothing
//
// "Unknown" is a name that no node and no property of this object has, wherever. All of these numbers are
// PM_Warning. Beside them each operation raises
//
//   50  PM_Severe             the object's tree is gone; only a derived class can bring that about
//   51  PM_Warning            more than 256 components, counted up to the first unknown name where nothing is
//                             made; a resolved path of more than 1023 units in SetProperty, GetProperty,
//                             getPropertySize and their kin; the detail is the path
//   55  PM_Memory_Exception   no memory
//
// Threads: an object, its iterators and what a load or save of it uses belong to one thread at a time, also
// for reading, since a look-up counts references. Different objects may be used by different threads at the
// same time. What they share is the system's code page (code_page.h) and the message library, both safe, and
// what the process has once: its current folder and its environment ("CODEP", which device descriptions
// read). A handler is called by the thread that loads; one that serves two objects has to protect itself.
// Loads and saves set the thread's errno to 0. A PCP file that ends within its default block leaves it open
// for the next one that the thread loads, into whatever object.
//
// Null texts count as empty ones.
class PM_API PM_Object : public PM_Mem_Obj {
public:
    // How a step of PM_Iterator went.
    enum NodeType : std::int32_t { NODE_SIBLING = 0, NODE_CHILD = 2, NODE_PARENT = 3 };

    enum FileType : std::int32_t { FILE_PIA, FILE_PCP, FILE_PC2, FILE_DOC, FILE_PDT, FILE_DPIA, FILE_CFG };

    PM_Object();
    // The handler is borrowed and hears of what loads pass over; it may be null.
    explicit PM_Object(ZT_Error_Handler* handler);
    ~PM_Object() override;
    PM_Object(const PM_Object&) = delete;
    PM_Object& operator=(const PM_Object&) = delete;

    // Set a value, making nodes and the property where missing. A property that was last written with
    // `strict` true takes only its own type: another raises number 54 (PM_Warning) and the value stays.
    void SetProperty(const char16_t* path, int value, int index = -1, bool strict = true);
    // The low 32 bits of `value`.
    void SetProperty(const char16_t* path, long value, int index = -1, bool strict = true);
    void SetProperty(const char16_t* path, bool value, int index = -1, bool strict = true);
    void SetProperty(const char16_t* path, const double& value, int index = -1, bool strict = true);
    // Stored as a double.
    void SetProperty(const char16_t* path, const float& value, int index = -1, bool strict = true);
    // Stored with its terminator. A text of more than 4096 units is cut to 4097 units, without terminator.
    void SetProperty(const char16_t* path, const char16_t* const& value, int index = -1, bool strict = true);
    // Stored as the narrow bytes they are, terminator included, at most 4096 characters of the system's
    // code page and one byte; only the narrow GetProperty gives the text back.
    void SetProperty(const char16_t* path, const unsigned char* const& value, int index = -1,
                     bool strict = true);
    // Null data has no bytes.
    void setVoidProperty(const char16_t* path, const void* data, unsigned size, int index = -1,
                         bool strict = true);

    // Read a value. False if there is no such property; `out` is then untouched, but for float (0) and int
    // (unspecified). Nothing is converted: a strict property of another type raises number 54, a value
    // larger than `out` number 58, a property without a value number 59 (all PM_Warning; 58 and 59 with the
    // property's name); a null buffer has no room. The bytes of a non-strict property are copied as they are
    // under any type.
    bool GetProperty(const char16_t* path, double& out, int index = -1) const;
    bool GetProperty(const char16_t* path, float& out, int index = -1) const;
    bool GetProperty(const char16_t* path, long& out, int index = -1) const;
    bool GetProperty(const char16_t* path, int& out, int index = -1) const;
    bool GetProperty(const char16_t* path, bool& out, int index = -1) const;
    // `size` is the buffer's size in bytes, also for the wide form; all bits set gives false at once. No
    // terminator is added.
    bool GetProperty(const char16_t* path, unsigned char* buffer, std::size_t size, int index = -1) const;
    bool GetProperty(const char16_t* path, char16_t* buffer, std::size_t size, int index = -1) const;
    bool getVoidProperty(const char16_t* path, void* buffer, unsigned size, int index = -1) const;

    // Size of the stored value in bytes, terminator of a text included. Raises (PM_Warning) number 51 for a
    // name that no node or property of this object has, 86 for a missing node, 87 for a missing property,
    // the latter two with the resolved path.
    std::size_t getPropertySize(const char16_t* path, int index = -1) const;

    // Whether the nodes of the path exist and its last name is in use somewhere in this object: the last
    // component itself isn't looked for. Use getPropertySize() to ask for a property. "*" is ordinary.
    bool pathExists(const char16_t* path) const;

    // Removes the property of that path or, if there is none, the node with all below it. Nothing there:
    // number 52 (PM_Warning), or 51 if a name is unknown.
    void deletePath(const char16_t* path);

    // Copies the properties and children of the node `source` into the node `destination`, which is made if
    // missing. Properties that are there already stay. Number 70 (PM_Severe) if the last name of `source`
    // occurs anywhere in `destination`; 51, with what was copied staying, if a path grows past 256 components
    // on the way; 59 for a property without a value.
    void duplicate(const char16_t* source, const char16_t* destination);

    // An iterator (iterator.h) at the node `path`, u"\\" for the root, that goes down `depth` levels, 0 for
    // all. The caller owns it and deletes it before this object dies. Null without memory. A missing node
    // whose names are all known gives an iterator that is at its end.
    PM_Iterator* newIterator(const char16_t* path, int depth) const;

    // Read a file into the node `base` ("\" or empty for the root). What was read before a failure stays.
    // `path` is a file name; numbers of failures are told in the page of each format. A type that can't be
    // read this way is number 67 (PM_Warning). A stream stays the caller's and open; while it is read or
    // written its exceptions() are off, so that its failures come as numbers.
    void load(const char16_t* path, FileType type, const char16_t* base);
    void load(std::iostream& stream, FileType type, const char16_t* base);
    // One section of a DPIA file, by name; number 83 (PM_Severe) if there is none.
    void load_section(const char16_t* path, FileType type, const char16_t* base, const char16_t* name);
    // Plotter `n` of a CFG file.
    void load_cfg_section(const char16_t* path, FileType type, const char16_t* base, int n);

    // Write the node `subtree` to a file: FILE_PIA, FILE_DOC and FILE_DPIA from a path, FILE_PIA and
    // FILE_DPIA to a stream, others are number 67. `tag` stands in the header of a PIA file; the word
    // "compress" in it asks for a compressed body. `utf8` counts for FILE_PIA only: text outside ASCII goes
    // out as UTF-8 in place of the system's code page.
    void save(const char16_t* path, FileType type, const char16_t* tag, const char16_t* subtree) const;
    void save(const char16_t* path, FileType type, const char16_t* tag, const char16_t* subtree,
              bool utf8) const;
    void save(std::iostream& stream, FileType type, const char16_t* tag, const char16_t* subtree) const;
    void save(std::iostream& stream, FileType type, const char16_t* tag, const char16_t* subtree,
              bool utf8) const;

    // The version line of a file, cut to `size` wide units with its terminator. Type FILE_PCP reads the
    // header of a PIA file, FILE_DOC the version number of a compound file; any other is number 67. Nothing
    // goes into a null buffer. The form without a size trusts `buffer`.
    void getFileVersion(const char16_t* path, char16_t* buffer, std::size_t size, FileType type) const;
    void getFileVersion(const char16_t* path, char16_t* buffer, FileType type) const;

protected:
    // Ends each write above: stores `size` bytes as `type`. Filers reach it through PM_File.
    void setData(const char16_t* path, const void* data, std::size_t size, PropType type, int index,
                 bool strict);

    PM_PathStrings* m_strings = nullptr;
    PM_Node* m_root = nullptr;
    ZT_Error_Handler* m_handler = nullptr;

private:
    friend class PM_File;
    friend class PM_Iterator;
    friend const PM_Property* pm_find_property(const PM_Object& object, const char16_t* path, int index);
    friend const PM_Node* pm_find_node(const PM_Object& object, const char16_t* path);
    friend void pm::make_node(PM_Object& object, const char16_t* path);
    friend class pm::TreeBuilder;
    friend class pm::TreeCursor;

    bool getData(const char16_t* path, void* buffer, std::size_t size, PropType type, int index) const;
    void make_root();
};

#ifndef PM_PM_C_H
#define PM_PM_C_H

#include <pm/c/export.h>
#include <stddef.h>
#include <stdint.h>

// The property manager for programs in C, and for languages that call C. Link libpm9c.
//
//     pm9_tree* tree = NULL;
//     pm9_error error = {sizeof error};
//     if (pm9_tree_new(&tree, &error) != PM9_OK ||
//         pm9_tree_set_long(tree, "\\media\\copies", PM9_Z, 2, &error) != PM9_OK) {
//         fprintf(stderr, "%d: %s\n", error.number, error.detail);
//     }
//     pm9_tree_delete(tree);
//
// Failures. Every function that can fail gives a pm9_status: PM9_OK or a number, and fills the pm9_error that
// its last argument points to; that may be NULL, and one that is too small is left alone as if it were.
// Beside what each function tells, all of them give PM9_ERR_INVALID_ARGUMENT for a handle or a result that is
// NULL, for a struct or an item size that is too small, and for a number that names no type; the detail is
// the argument's name. Without memory it is PM9_ERR_NO_MEMORY. No C++ exception leaves the library. What a
// failed call was to give is left alone; a tree is as a failed call of the library leaves it: usable, with
// what was made or read before.
//
// Texts are UTF-8. One that goes in is a pointer and a length in bytes, or PM9_Z for "up to its zero"; it is
// read during the call only, NULL is an empty text. What isn't UTF-8 becomes U+FFFD. An unpaired surrogate is
// the three bytes that its number gives, so that every text of a tree comes out and goes in as it is. Names
// of files are the system's bytes, on Windows UTF-8. A zero in one, or in a path, is PM9_ERR_BAD_PATH.
//
// What comes out is the caller's. Every text, block of bytes or array that a function gives through a pointer
// is one block, which the caller releases by pm9_free(). Behind a text or block stands a zero that its length
// doesn't count. The texts that the structs of an array point to lie in the array's own block. An empty text
// and an array of nothing are blocks, too.
//
// Stability. Every struct begins with its size: the caller sets it to sizeof (of an array, it tells the size
// of an item as an argument), and the library reads and writes no more than that. Structs grow at their end
// only, and what isn't told counts as 0; functions and numbers never change or go as long as the number in
// the library's file name stays. So a program runs with every library of that number whose
// pm9_abi_version() isn't below the PM9_ABI_VERSION that it was compiled with, if it uses all; struct members
// beyond what an older library knows are ignored by it.
//
// Threads: as with the library, a tree belongs to one thread at a time; different trees may belong to
// different ones. There is no state but the system's code page.

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using): C has no other.

#define PM9_ABI_VERSION 2

// As a length: the text ends at its first zero.
#define PM9_Z SIZE_MAX

// ---------------------------------------------------------------- failures

typedef int32_t pm9_status;

// The numbers of failures. Up to 99 they are the library's; docs/errors.md tells each.
enum {
    PM9_OK = 0,
    PM9_ERR_NO_ROOT = 50,       // the object has no tree
    PM9_ERR_BAD_PATH = 51,      // a path that is empty, too long, too deep, or holds a name that nothing has
    PM9_ERR_NOTHING_THERE = 52, // nothing to delete at the path
    PM9_ERR_BAD_RAW_DATA = 53,  // raw data that doesn't convert to or from hexadecimal digits
    PM9_ERR_WRONG_TYPE = 54,    // a strictly typed property is accessed with another type
    PM9_ERR_NO_MEMORY = 55,     // no memory; the detail says for what
    PM9_ERR_NOT_OPENED = 56,    // a file that can't be opened, or isn't of the expected kind
    PM9_ERR_BAD_LINE = 57,      // a line that isn't valid; the detail holds the line, its number and the file
    PM9_ERR_VALUE_TOO_LARGE = 58,    // a value larger than the space provided for it
    PM9_ERR_NO_VALUE = 59,           // a property that was never given a value
    PM9_ERR_NOT_WRITTEN = 60,        // a part of a compound file that can't be written
    PM9_ERR_ACCESS_DENIED = 61,      // access to a file is denied
    PM9_ERR_TOO_MANY_FILES = 62,     // too many files are open
    PM9_ERR_NO_SUCH_FILE = 63,       // a file that doesn't exist
    PM9_ERR_NO_MEMORY_FOR_FILE = 64, // no memory to read or write a file
    PM9_ERR_DISK_FULL = 65,          // no space left on the disk
    PM9_ERR_NOT_READ = 66,           // a file that can't be read, or whose content is damaged
    PM9_ERR_TYPE_REFUSED = 67,       // an operation that isn't available for this type of file
    PM9_ERR_IS_A_FOLDER = 68,        // a folder where a file is expected
    PM9_ERR_UNKNOWN_VERSION = 69,    // a file of an unknown version, or not of the expected type
    PM9_ERR_COPY_INTO_ITSELF = 70,   // a part of the tree that would be copied into itself
    PM9_ERR_ARGUMENTS_TOO_LONG = 71, // an argument list that the system refuses as too long
    PM9_ERR_TRY_AGAIN = 72,          // a file that is in use for the moment
    PM9_ERR_FILE_NOT_OPEN = 73,      // a file that isn't open any more
    PM9_ERR_NO_CHILD_PROCESS = 74,   // the system waits for a process that doesn't exist
    PM9_ERR_DEADLOCK = 75,           // a lock that would be waited for without end
    PM9_ERR_OUT_OF_DOMAIN = 76,      // a number outside the range that the system works with
    PM9_ERR_FILE_EXISTS = 77,        // a file of that name that exists already
    PM9_ERR_INVALID_ARGUMENT = 78,   // an argument that isn't valid
    PM9_ERR_NOT_EXECUTABLE = 79,     // a file whose format the system can't run
    PM9_ERR_RESULT_TOO_LARGE = 80,   // a result that is too large for the system
    PM9_ERR_OTHER_DRIVE = 81,        // a file that can't be moved to another drive
    PM9_ERR_STREAM_FAILED = 82,    // reading or writing failed for another reason, or the file ends too early
    PM9_ERR_NO_SUCH_SECTION = 83,  // a section that the file doesn't have
    PM9_ERR_NOT_DECODED = 84,      // a compressed content that is damaged
    PM9_ERR_NOT_ENCODED = 85,      // a content that can't be compressed
    PM9_ERR_NO_SUCH_NODE = 86,     // a node of the path that doesn't exist
    PM9_ERR_NO_SUCH_PROPERTY = 87, // a property that the node doesn't have
    PM9_ERR_UNKNOWN_VALUE = 88,    // a value of no known type
    PM9_ERR_NOT_A_HEADER = 89,     // a file that doesn't begin like a PIA file
    PM9_ERR_NO_HUFFMAN_SYMBOL = 90,    // Huffman data with a code that isn't in its table
    PM9_ERR_HUFFMAN_SYMBOL_TAKEN = 91, // a Huffman table that gives two codes to one byte
    PM9_ERR_NO_BLOCK = 92,             // data without a compressed block
    PM9_ERR_DEFLATE_START = 93,        // compression that can't be started
    PM9_ERR_DEFLATE = 94,              // compression that failed: the result doesn't fit
    PM9_ERR_DEFLATE_END = 95,          // compression that can't be ended
    PM9_ERR_INFLATE_START = 96,        // decompression that can't be started
    PM9_ERR_INFLATE = 97,              // decompression that failed: data damaged or larger than announced
    PM9_ERR_INFLATE_END = 98,          // decompression that can't be ended
    PM9_ERR_NOT_HEXADECIMAL = 99,      // a dmFields value that isn't a hexadecimal number
    PM9_BAD_INPUT = 200,               // a JSON text, a script or another input of the kit that isn't valid
    PM9_UNEXPECTED = 201               // anything else; the detail has the words of who raised it
};

// What a failed call tells. Texts are cut to what there is room for, at the end of a character.
typedef struct pm9_error {
    size_t size;         // sizeof(pm9_error), set by the caller
    pm9_status number;   // what the call gave
    int32_t kind;        // 1 warning, 2 error, 4 severe, 6 ended by the caller's own on_report; 0 for 200 on
    uint64_t line;       // of PM9_BAD_INPUT, from 1; 0 if there is none
    size_t place_length; // in bytes
    size_t detail_length;
    char place[512];   // the operation that met it, such as "PM_Object::SetData()"
    char detail[1024]; // what it concerns: a path, a file, a line of a file, an argument
} pm9_error;

// The text of a number, one line of English; empty without the message library or for an unknown number.
PM9_API pm9_status pm9_error_text(pm9_status number, char** text, size_t* length, pm9_error* error);

// Releases what a function gave; NULL is nothing.
PM9_API void pm9_free(const void* block);

// PM_VERSION of the library that the program runs with: 90000 for 9.0.0.
PM9_API int32_t pm9_version(void);
// Grows with every function, number or struct member that is added.
PM9_API int32_t pm9_abi_version(void);

// The process's narrow code page, see <pm/code_page.h>: 1252 until it is set, 0 sets that of the locale.
// PM9_ERR_INVALID_ARGUMENT for one that the machine can't convert.
PM9_API pm9_status pm9_set_code_page(uint32_t code_page, pm9_error* error);
PM9_API uint32_t pm9_code_page(void);

// ---------------------------------------------------------------- values

enum { // type of a value
    PM9_NONE = 0,
    PM9_LONG = 1,   // signed, 32 bits
    PM9_DOUBLE = 2, // 64 bits
    PM9_STRING = 3,
    PM9_BOOL = 4,
    PM9_RAW = 5 // bytes
};

// A value of any type. On the way in `size`, `type` and the member of that type count.
typedef struct pm9_value {
    size_t size; // sizeof(pm9_value), set by the caller on both ways
    int32_t type;
    int32_t number; // of PM9_LONG; of PM9_BOOL 0 or 1
    double real;    // of PM9_DOUBLE
    // Of PM9_STRING in UTF-8, of PM9_RAW; on the way out the caller's, NULL for the others.
    const char* data;
    size_t length; // of data in bytes; on the way in PM9_Z is allowed for a text
} pm9_value;

// As an index: a "*" in the path is an ordinary character, and nothing but the path is looked for.
#define PM9_EXACT INT32_MIN

// How a property is found and written; NULL counts as {sizeof(pm9_access), -1, 0}, which makes the first "*"
// of a path "-1".
typedef struct pm9_access {
    size_t size;
    int32_t index; // takes the place of the first "*" of the path or, without one, is one more level; or
                   // PM9_EXACT
    int32_t loose; // not 0: the property takes values of other types later
} pm9_access;

// ---------------------------------------------------------------- trees

// A tree of named nodes and typed properties. Paths name nodes and, last, a property: "\media\copies".
typedef struct pm9_tree pm9_tree;

// An empty tree, the caller's until pm9_tree_delete(). Whatever is read into it later, the handle stays.
PM9_API pm9_status pm9_tree_new(pm9_tree** tree, pm9_error* error);
// With all that is in it; NULL is nothing. Blocks that functions gave of it aren't part of it.
PM9_API void pm9_tree_delete(pm9_tree* tree);

// Set a value, making the nodes and the property where they are missing. PM9_ERR_WRONG_TYPE if the property
// is there with another type and isn't loose; PM9_ERR_VALUE_TOO_LARGE for a text of more than 4096 units;
// PM9_ERR_INVALID_ARGUMENT for a text that holds a zero; PM9_ERR_BAD_PATH for a path without components, of
// more than 256 or of more than 1023 units; PM9_ERR_NO_VALUE for PM9_NONE. When one is refused, no node is
// made for it. A property that is there keeps its place among the others.
PM9_API pm9_status pm9_tree_set(pm9_tree* tree, const char* path, size_t path_length,
                                const pm9_access* access, const pm9_value* value, pm9_error* error);
PM9_API pm9_status pm9_tree_set_long(pm9_tree* tree, const char* path, size_t path_length, int32_t value,
                                     pm9_error* error);
PM9_API pm9_status pm9_tree_set_double(pm9_tree* tree, const char* path, size_t path_length, double value,
                                       pm9_error* error);
// Not 0 is true.
PM9_API pm9_status pm9_tree_set_bool(pm9_tree* tree, const char* path, size_t path_length, int32_t value,
                                     pm9_error* error);
PM9_API pm9_status pm9_tree_set_string(pm9_tree* tree, const char* path, size_t path_length,
                                       const char* value, size_t value_length, pm9_error* error);
// NULL is no bytes, whatever the length.
PM9_API pm9_status pm9_tree_set_raw(pm9_tree* tree, const char* path, size_t path_length, const void* value,
                                    size_t value_length, pm9_error* error);

// Get a value; pm9_tree_get() as its own type, the others PM9_ERR_WRONG_TYPE for one of another type: nothing
// is converted, a long is no double. `value` stays as it is where there is a failure. Where there is no
// property: PM9_ERR_BAD_PATH for a name that nothing in the tree has, PM9_ERR_NO_SUCH_NODE,
// PM9_ERR_NO_SUCH_PROPERTY; with PM9_EXACT only the last two, whatever else has the name.
// pm9_tree_contains() asks without a failure.
PM9_API pm9_status pm9_tree_get(const pm9_tree* tree, const char* path, size_t path_length,
                                const pm9_access* access, pm9_value* value, pm9_error* error);
PM9_API pm9_status pm9_tree_get_long(const pm9_tree* tree, const char* path, size_t path_length,
                                     int32_t* value, pm9_error* error);
PM9_API pm9_status pm9_tree_get_double(const pm9_tree* tree, const char* path, size_t path_length,
                                       double* value, pm9_error* error);
// 0 or 1.
PM9_API pm9_status pm9_tree_get_bool(const pm9_tree* tree, const char* path, size_t path_length,
                                     int32_t* value, pm9_error* error);
PM9_API pm9_status pm9_tree_get_string(const pm9_tree* tree, const char* path, size_t path_length,
                                       char** value, size_t* value_length, pm9_error* error);
PM9_API pm9_status pm9_tree_get_raw(const pm9_tree* tree, const char* path, size_t path_length, char** value,
                                    size_t* value_length, pm9_error* error);

enum { // what stands at a path, and what an item of a list is
    PM9_NOTHING = 0,
    PM9_PROPERTY = 1,
    PM9_NODE = 2
};

// PM9_PROPERTY if there is a property of that path, else PM9_NODE or PM9_NOTHING. A path without components
// is that of the root; one that nothing can have is no failure, there is nothing.
PM9_API pm9_status pm9_tree_contains(const pm9_tree* tree, const char* path, size_t path_length,
                                     const pm9_access* access, int32_t* what, pm9_error* error);
// Removes the property of that path or, if there is none, the node with all below it; `what`, which may be
// NULL, tells which. Where there was neither it tells PM9_NOTHING, which is no failure. PM9_ERR_BAD_PATH for
// the root.
PM9_API pm9_status pm9_tree_erase(pm9_tree* tree, const char* path, size_t path_length,
                                  const pm9_access* access, int32_t* what, pm9_error* error);
// Makes an empty node, and those above it, where they are missing; one that is there is left as it is. A node
// and a property may have the same path.
PM9_API pm9_status pm9_tree_make_node(pm9_tree* tree, const char* path, size_t path_length, pm9_error* error);
// Copies what is in the node `source` into the node `target`, which is made if it is missing; properties that
// are there already stay. A source that isn't there is no failure: nothing is copied.
// PM9_ERR_COPY_INTO_ITSELF if the last name of `source` is in `target`. With what was copied by then staying:
// PM9_ERR_NO_VALUE for a property that was never given a value, and raw data of no bytes is one to this
// function; PM9_ERR_BAD_PATH where a path grows past 256 names, as it does when the root, which has no name,
// is copied below itself.
PM9_API pm9_status pm9_tree_copy_node(pm9_tree* tree, const char* source, size_t source_length,
                                      const char* target, size_t target_length, pm9_error* error);

// A node or a property, with its value.
typedef struct pm9_item {
    size_t size;    // of what the library filled in
    int32_t what;   // PM9_PROPERTY or PM9_NODE
    int32_t depth;  // below the node that was listed, which has 0
    int32_t type;   // of a property, as the members below
    int32_t strict; // of a property: whether it takes only this type
    int32_t number;
    int32_t problem; // 0, or the number for which a damaged value isn't given; data then has its bytes
    double real;
    const char* name; // "Root" for the root
    size_t name_length;
    const char* data; // NULL but for PM9_STRING, PM9_RAW and a damaged value
    size_t length;
} pm9_item;

typedef struct pm9_list_options {
    size_t size;
    int32_t levels;  // items down to this depth; 0: all
    int32_t omitted; // PM9_PROPERTY or PM9_NODE: only the others are listed; 0: both
} pm9_list_options;

// The node of that path and what is below it, in the order of the tree: a node comes before its properties,
// those before its children. `item_size` is sizeof(pm9_item), `options` may be NULL. PM9_ERR_NO_SUCH_NODE.
PM9_API pm9_status pm9_tree_list(const pm9_tree* tree, const char* path, size_t path_length,
                                 const pm9_list_options* options, size_t item_size, pm9_item** items,
                                 size_t* count, pm9_error* error);

// ---------------------------------------------------------------- files

enum { // type of a file
    PM9_FILE_PIA = 0,
    PM9_FILE_PCP = 1,
    PM9_FILE_PC2 = 2,
    PM9_FILE_DOC = 3,
    PM9_FILE_PDT = 4,
    PM9_FILE_DPIA = 5,
    PM9_FILE_CFG = 6,
    PM9_FILE_ANY = -1 // in a load: what the content is; PM9_ERR_NOT_OPENED if it is of no known kind
};

// Something that a load passed over.
typedef struct pm9_report {
    size_t size;
    int32_t kind;   // 1 warning, 2 error, 4 severe
    int32_t number; // as that of a failure
    const char* place;
    size_t place_length;
    const char* detail; // of a bad line its number, the line and the file
    size_t detail_length;
} pm9_report;

// Asked at each report, before the load goes on: 0 ends it, with the report's number and kind 6. The report
// is valid during the call only. The tree that is being loaded may not be used, and nothing may leave the
// function but its answer. A line of PIA text without "=", "{" and "}" is no report: it ends the load.
typedef int32_t (*pm9_on_report)(void* context, const pm9_report* report);

// How to read; NULL counts as {sizeof(pm9_load_options), PM9_FILE_ANY}.
typedef struct pm9_load_options {
    size_t size;
    int32_t type;
    int32_t plotter;  // of a CFG file; PM9_ERR_TYPE_REFUSED for another than 0 with other types
    const char* base; // the node to load into; NULL for the root
    size_t base_length;
    const char* section; // of a DPIA file, the only one to load; NULL for its directory
    size_t section_length;
    pm9_on_report on_report; // NULL: the load goes on at every report
    void* context;
} pm9_load_options;

// Read a file into the tree. What was read before a failure stays, and pm9_tree_reports() gives what was
// reported by then. A folder is a device description. PM9_ERR_TYPE_REFUSED for a section or another plotter
// than 0 that is asked of bytes in memory, and for a device description there.
PM9_API pm9_status pm9_tree_load(pm9_tree* tree, const char* file, size_t file_length,
                                 const pm9_load_options* options, pm9_error* error);
PM9_API pm9_status pm9_tree_load_memory(pm9_tree* tree, const void* data, size_t length,
                                        const pm9_load_options* options, pm9_error* error);
// Of the last load or reading of this tree, whatever its end. A call that is refused for a handle, a struct,
// a type or a zero in a text is none. `item_size` is sizeof(pm9_report).
PM9_API pm9_status pm9_tree_reports(const pm9_tree* tree, size_t item_size, pm9_report** reports,
                                    size_t* count, pm9_error* error);

// How to write; NULL counts as {sizeof(pm9_save_options)}: the whole tree as a PIA file.
typedef struct pm9_save_options {
    size_t size;
    int32_t type;    // PM9_FILE_PIA, PM9_FILE_DPIA or PM9_FILE_DOC; PM9_ERR_TYPE_REFUSED for others
    int32_t utf8;    // of a PIA file: not 0 for UTF-8 in place of the code page
    const char* tag; // stands in the header of a PIA file; "compress" in it compresses
    size_t tag_length;
    const char* subtree; // the node to save; NULL for the root
    size_t subtree_length;
} pm9_save_options;

// Write the tree. What the format can't hold is left out or changed without a word; pm9_prepare() tells it
// before anything is written. PM9_ERR_BAD_PATH for a subtree that isn't there. In memory a DOC file is
// PM9_ERR_TYPE_REFUSED.
PM9_API pm9_status pm9_tree_save(const pm9_tree* tree, const char* file, size_t file_length,
                                 const pm9_save_options* options, pm9_error* error);
PM9_API pm9_status pm9_tree_save_memory(const pm9_tree* tree, const pm9_save_options* options, char** data,
                                        size_t* length, pm9_error* error);

// What a file is, by its content.
typedef struct pm9_identity {
    size_t size;            // sizeof(pm9_identity), set by the caller
    int32_t type;           // PM9_FILE_ANY: of no known kind
    int32_t version;        // of a DPIA file: 1 or 2
    uint32_t section_count; // of a DPIA file
    uint32_t plotter_count; // of a CFG file
} pm9_identity;

// Content of no known kind is no failure. PM9_ERR_NO_SUCH_FILE and the like for what can't be read,
// PM9_ERR_IS_A_FOLDER for a folder that holds no device description.
PM9_API pm9_status pm9_identify(const char* file, size_t file_length, pm9_identity* identity,
                                pm9_error* error);
PM9_API pm9_status pm9_identify_memory(const void* data, size_t length, pm9_identity* identity,
                                       pm9_error* error);

// An entry in the directory of a DPIA file.
typedef struct pm9_section {
    size_t size;
    const char* name; // what pm9_load_options takes
    size_t name_length;
    const char* info; // NULL in a file of version 1
    size_t info_length;
    uint64_t offset; // from the start of the file, in bytes; may lie outside of it
    uint64_t bytes;
} pm9_section;

// The directory of a DPIA file, in its order. PM9_ERR_UNKNOWN_VERSION for a file of another kind.
PM9_API pm9_status pm9_sections(const char* file, size_t file_length, size_t item_size,
                                pm9_section** sections, size_t* count, pm9_error* error);

// A plotter that a CFG file describes.
typedef struct pm9_plotter {
    size_t size;
    int32_t number; // what pm9_load_options takes
    int32_t reserved;
    const char* name; // its MenuName, or empty
    size_t name_length;
} pm9_plotter;

// By rising number, each once. A file of another kind that can be read has none, which is no failure.
PM9_API pm9_status pm9_plotters(const char* file, size_t file_length, size_t item_size,
                                pm9_plotter** plotters, size_t* count, pm9_error* error);

// ---------------------------------------------------------------- the kit

// Values in the kit's structs are one line of text, TYPE VALUE: long 2, double 0.1, bool true, string "A0"
// (as JSON quotes), raw 0A0B; string bytes 4100 for stored bytes that no value tells exactly; long none for
// no value. Paths are patterns where it says so: "*" stands for any characters of a name, "**" for any names.

// How to read a whole file; NULL counts as {sizeof(pm9_read_options), PM9_FILE_ANY}.
typedef struct pm9_read_options {
    size_t size;
    int32_t type;
    uint32_t code_page;  // of narrow text while the file is read; 0: as it is set
    const char* section; // of a DPIA file by name, or a plotter of a CFG file by number; NULL: all of them
    size_t section_length;
    pm9_on_report on_report;
    void* context;
} pm9_read_options;

// Reads a file of any kind whole, in place of what was in the tree: several sections or plotters are a node
// each. pm9_tree_reports() gives what was reported, pm9_prepare() knows the sections' names and info texts.
// PM9_BAD_INPUT for a file of no known kind and a section that isn't there. When it fails, the tree stays.
PM9_API pm9_status pm9_tree_read(pm9_tree* tree, const char* file, size_t file_length,
                                 const pm9_read_options* options, pm9_error* error);

// What is known of the file that a tree was read from whole.
typedef struct pm9_source {
    size_t size;        // sizeof(pm9_source), set by the caller
    int32_t type;       // PM9_FILE_ANY: not made by pm9_tree_read(), or a load got to the tree since
    int32_t by_section; // 1: the tree has a node for each section or plotter
    int32_t version;    // of the header: 1 or 2; 0 where the format has none
    int32_t compressed; // of a PIA file
    const char* tag;    // of its header, behind the version and its comma; the caller's, NULL if it is empty
    size_t tag_length;
} pm9_source;

// What changes in the tree by other functions than a load leaves this as it is. The tag is a block of its
// own, also of each call.
PM9_API pm9_status pm9_tree_source(const pm9_tree* tree, pm9_source* source, pm9_error* error);

enum {                  // what narrow texts are in, where nothing in the file tells it
    PM9_TEXT_ASCII = 0, // every code page reads the same
    PM9_TEXT_UTF8 = 1,  // all that is outside ASCII: read it again with code page 65001
    PM9_TEXT_OTHER = 2, // none of it is UTF-8
    PM9_TEXT_MIXED = 3
};

// Of the names and texts of a tree that was read with code page 1252.
PM9_API pm9_status pm9_tree_encoding(const pm9_tree* tree, int32_t* encoding, pm9_error* error);

typedef struct pm9_json_options {
    size_t size;
    int32_t one_line; // not 0: no line ends and blanks within
    int32_t levels;   // nodes so deep below the first; 0: all
    int32_t plain;    // not 0: nested objects for other programs, without types; not read back
    int32_t reserved;
} pm9_json_options;

// The node of that path as JSON, exact; <pm/kit/json.h> tells the form. `options` may be NULL.
PM9_API pm9_status pm9_tree_to_json(const pm9_tree* tree, const char* path, size_t path_length,
                                    const pm9_json_options* options, char** text, size_t* length,
                                    pm9_error* error);
// Reads that form, in place of what was in the tree. PM9_BAD_INPUT with the line of a mistake; the tree then
// stays.
PM9_API pm9_status pm9_tree_from_json(pm9_tree* tree, const char* text, size_t length, pm9_error* error);

enum { // kind of a difference
    PM9_ADDED = 0,
    PM9_REMOVED = 1,
    PM9_OTHER_TYPE = 2,
    PM9_OTHER_VALUE = 3,
    PM9_OTHER_STRICTNESS = 4,
    PM9_OTHER_ORDER = 5
};

typedef struct pm9_difference {
    size_t size;
    int32_t kind;
    int32_t reserved;
    const char* path; // a node's ends in a backslash
    size_t path_length;
    const char* before; // a value; NULL for nodes and where there is none
    size_t before_length;
    const char* after;
    size_t after_length;
} pm9_difference;

typedef struct pm9_compare_options {
    size_t size;
    double tolerance;    // doubles that differ by no more are the same; 0: their bits count
    const char* exclude; // patterns, one a line: what matches doesn't count
    size_t exclude_length;
    int32_t any_order;      // not 0: order doesn't count
    int32_t any_strictness; // not 0: strictness doesn't count
} pm9_compare_options;

// What turns `first` into `second`, in the order of `second`; none: they are the same. `options` may be NULL.
PM9_API pm9_status pm9_compare(const pm9_tree* first, const pm9_tree* second,
                               const pm9_compare_options* options, size_t item_size,
                               pm9_difference** differences, size_t* count, pm9_error* error);
// The same as a script for pm9_tree_apply(), empty for trees that are the same; <pm/kit/edit.h> tells the
// form.
PM9_API pm9_status pm9_script(const pm9_tree* first, const pm9_tree* second,
                              const pm9_compare_options* options, char** text, size_t* length,
                              pm9_error* error);
// Changes the tree by a script, all or nothing. PM9_BAD_INPUT, with the line, for one that can't be applied.
PM9_API pm9_status pm9_tree_apply(pm9_tree* tree, const char* script, size_t length, pm9_error* error);

// Two sides changed the same, and not alike. Values as above; NULL where there is none.
typedef struct pm9_conflict {
    size_t size;
    const char* path;
    size_t path_length;
    const char* base;
    size_t base_length;
    const char* first;
    size_t first_length;
    const char* second;
    size_t second_length;
} pm9_conflict;

// Puts into `merged`, in place of what is there, what both sides made of `base`; a conflict comes out as the
// first side has it, or the second if `prefer_second` isn't 0. `merged` may be one of the others.
PM9_API pm9_status pm9_merge(pm9_tree* merged, const pm9_tree* base, const pm9_tree* first,
                             const pm9_tree* second, int32_t prefer_second, size_t item_size,
                             pm9_conflict** conflicts, size_t* count, pm9_error* error);

enum { PM9_NOTE = 0, PM9_WARNING = 1, PM9_ERROR = 2 }; // how bad

// What a check says of a file.
typedef struct pm9_diagnostic {
    size_t size;
    int32_t severity;
    pm9_status number; // if the library said it; else 0
    uint64_t line;     // as an editor counts; 0: none
    uint64_t column;
    const char* rule; // small letters and hyphens
    size_t rule_length;
    const char* file;
    size_t file_length;
    const char* section; // empty if there is none, as the path
    size_t section_length;
    const char* path; // of the node or property
    size_t path_length;
    const char* message;
    size_t message_length;
} pm9_diagnostic;

typedef struct pm9_check_options {
    size_t size;
    int32_t type; // PM9_FILE_ANY: by content
    uint32_t code_page;
    const char* rules; // the only rules, one a line; NULL: all
    size_t rules_length;
    const char* without; // rules that are left out, one a line
    size_t without_length;
    int32_t round_trip; // not 0: also save, load again and compare
    int32_t reserved;
} pm9_check_options;

// What there is to say of a file, or of each file in a folder. What can't be read is a diagnostic, too.
// `options` may be NULL. PM9_BAD_INPUT for the name of a rule that isn't there.
PM9_API pm9_status pm9_check(const char* file, size_t file_length, const pm9_check_options* options,
                             size_t item_size, pm9_diagnostic** diagnostics, size_t* count, pm9_error* error);

// What a file that is written doesn't give back, or one that is read doesn't give. Values as above; NULL
// where there is none.
typedef struct pm9_loss {
    size_t size;
    const char* kind; // "lost", "cut", "retyped", "re-encoded"...: <pm/kit/loss.h>
    size_t kind_length;
    const char* path;
    size_t path_length;
    const char* new_path; // of "renamed" and "moved"; else empty
    size_t new_path_length;
    const char* reason; // in words
    size_t reason_length;
    const char* before;
    size_t before_length;
    const char* after;
    size_t after_length;
} pm9_loss;

// What a whole reading of a file changes or leaves out and doesn't report: repeated names, cut texts, words
// and sections that nothing is made of. All are of kind "source". With pm9_tree_reports() these are all that
// the file couldn't give. Reads as pm9_tree_read() and fails as it.
PM9_API pm9_status pm9_unreported(const char* file, size_t file_length, const pm9_read_options* options,
                                  size_t item_size, pm9_loss** losses, size_t* count, pm9_error* error);

typedef struct pm9_write_options {
    size_t size;
    int32_t type;    // PM9_FILE_PIA, PM9_FILE_DPIA or PM9_FILE_DOC
    int32_t utf8;    // of a PIA file: not 0 for UTF-8 in place of the code page
    const char* tag; // as in pm9_save_options
    size_t tag_length;
    const char* subtree;
    size_t subtree_length;
    uint32_t code_page; // of narrow text; 0: as it is set
    uint32_t reserved;
    // Of a DPIA file: all of the subtree is this one section, with the info text of the section of that name
    // in the file that the tree was read from whole. NULL: a section for each node below the subtree. Since
    // interface 2.
    const char* section;
    size_t section_length;
} pm9_write_options;

// Makes the bytes of a file in memory, of any format that is written, and tells by reading them back what
// they don't hold. `options` NULL counts as {sizeof(pm9_write_options)}. PM9_BAD_INPUT for a type that isn't
// written and a subtree that isn't there.
PM9_API pm9_status pm9_prepare(const pm9_tree* tree, const pm9_write_options* options, char** data,
                               size_t* length, size_t item_size, pm9_loss** losses, size_t* count,
                               pm9_error* error);

typedef struct pm9_compatibility_options {
    size_t size;
    const char* description_base; // the node of the description; NULL: where one is found
    size_t description_base_length;
    const char* configuration_base; // NULL: the root
    size_t configuration_base_length;
    const char* map; // JSON that tells where a configuration keeps its settings; NULL: the built-in one
    size_t map_length;
    int32_t owner;   // 0 to 3: number of whoever made the configuration; -1: none
    int32_t explain; // not 0: which rule looked where, too
} pm9_compatibility_options;

// Whether a configuration is possible on the device of a description, as JSON: an object whose "findings" is
// empty if it is; findings_to_json() of <pm/kit/compatibility.h> tells the form. `options` NULL counts as
// {sizeof(pm9_compatibility_options), NULL, 0, NULL, 0, NULL, 0, -1}. PM9_BAD_INPUT for a base that isn't
// there, a tree that is no description and a map that isn't valid.
PM9_API pm9_status pm9_compatibility(const pm9_tree* configuration, const pm9_tree* description,
                                     const pm9_compatibility_options* options, char** text, size_t* length,
                                     pm9_error* error);

// A tree on a page to look at.
typedef struct pm9_page_part {
    size_t size;
    const pm9_tree* tree;
    const char* name; // as the page shows it, such as a file name
    size_t name_length;
    const char* base; // its node; NULL: of a description where one is found, of a configuration the root
    size_t base_length;
} pm9_page_part;

// How the page's configurations are held against its description; NULL counts as {sizeof(pm9_page_options),
// NULL, 0, -1}.
typedef struct pm9_page_options {
    size_t size;
    const char* map; // as in pm9_compatibility_options, as the owner
    size_t map_length;
    int32_t owner;
    int32_t reserved;
} pm9_page_options;

// One HTML document in UTF-8, with style and pictures inside: what a device can do, what configurations ask
// of it, and whether that fits; docs/report.md tells what stands on it. The same trees give the same bytes.
// `description` may be NULL, or `count` 0, in which case `configurations` may be NULL; both at once are
// PM9_ERR_INVALID_ARGUMENT. Configurations lie `item_size` bytes apart, which is sizeof(pm9_page_part), and
// each tells that size as its own. PM9_BAD_INPUT as for pm9_compatibility(). Values of other types than those
// of a description are no failure; the page shows them as missing.
PM9_API pm9_status pm9_report_page(const pm9_page_part* description, const pm9_page_part* configurations,
                                   size_t item_size, size_t count, const pm9_page_options* options,
                                   char** html, size_t* length, pm9_error* error);

// NOLINTEND(modernize-use-using)

#ifdef __cplusplus
}
#endif

#endif

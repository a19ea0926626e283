#pragma once

#include <cstdint>

// The number of every failure, as ZT_Exception::m_number carries it and ZT_Error_Handler is told it. The
// numbers are fixed: files of message texts and callers in use know them. pm_error_text() gives the text that
// a person reads; docs/errors.md tells who raises each number, when, and what can be done about it.
enum PM_Error_Number : std::uint32_t {
    PM_ERR_NO_ROOT = 50,       // the object has no tree
    PM_ERR_BAD_PATH = 51,      // a path that is empty, too long, too deep, or holds a name that nothing has
    PM_ERR_NOTHING_THERE = 52, // nothing to delete at the path
    PM_ERR_BAD_RAW_DATA = 53,  // raw data that doesn't convert to or from hexadecimal digits
    PM_ERR_WRONG_TYPE = 54,    // a strictly typed property is accessed with another type
    PM_ERR_NO_MEMORY = 55,     // no memory; the detail says for what
    PM_ERR_NOT_OPENED = 56,    // a file that can't be opened, or isn't of the expected kind
    PM_ERR_BAD_LINE = 57,      // a line that isn't valid; the detail holds the line, its number and the file
    PM_ERR_VALUE_TOO_LARGE = 58,    // a value larger than the space provided for it
    PM_ERR_NO_VALUE = 59,           // a property that was never given a value
    PM_ERR_NOT_WRITTEN = 60,        // a part of a compound file that can't be written
    PM_ERR_ACCESS_DENIED = 61,      // access to a file is denied
    PM_ERR_TOO_MANY_FILES = 62,     // too many files are open
    PM_ERR_NO_SUCH_FILE = 63,       // a file that doesn't exist
    PM_ERR_NO_MEMORY_FOR_FILE = 64, // no memory to read or write a file
    PM_ERR_DISK_FULL = 65,          // no space left on the disk
    PM_ERR_NOT_READ = 66,           // a file that can't be read, or whose content is damaged
    PM_ERR_TYPE_REFUSED = 67,       // an operation that isn't available for this type of file
    PM_ERR_IS_A_FOLDER = 68,        // a folder where a file is expected
    PM_ERR_UNKNOWN_VERSION = 69,    // a file of an unknown version, or not of the expected type
    PM_ERR_COPY_INTO_ITSELF = 70,   // a part of the tree that would be copied into itself
    PM_ERR_ARGUMENTS_TOO_LONG = 71, // an argument list that the system refuses as too long
    PM_ERR_TRY_AGAIN = 72,          // a file that is in use for the moment
    PM_ERR_FILE_NOT_OPEN = 73,      // a file that isn't open any more
    PM_ERR_NO_CHILD_PROCESS = 74,   // the system waits for a process that doesn't exist
    PM_ERR_DEADLOCK = 75,           // a lock that would be waited for without end
    PM_ERR_OUT_OF_DOMAIN = 76,      // a number outside the range that the system works with
    PM_ERR_FILE_EXISTS = 77,        // a file of that name that exists already
    PM_ERR_INVALID_ARGUMENT = 78,   // an argument that isn't valid
    PM_ERR_NOT_EXECUTABLE = 79,     // a file whose format the system can't run
    PM_ERR_RESULT_TOO_LARGE = 80,   // a result that is too large for the system
    PM_ERR_OTHER_DRIVE = 81,        // a file that can't be moved to another drive
    PM_ERR_STREAM_FAILED = 82,     // reading or writing failed for another reason, or the file ends too early
    PM_ERR_NO_SUCH_SECTION = 83,   // a section that the file doesn't have
    PM_ERR_NOT_DECODED = 84,       // a compressed content that is damaged
    PM_ERR_NOT_ENCODED = 85,       // a content that can't be compressed
    PM_ERR_NO_SUCH_NODE = 86,      // a node of the path that doesn't exist
    PM_ERR_NO_SUCH_PROPERTY = 87,  // a property that the node doesn't have
    PM_ERR_UNKNOWN_VALUE = 88,     // a value of no known type
    PM_ERR_NOT_A_HEADER = 89,      // a file that doesn't begin like a PIA file
    PM_ERR_NO_HUFFMAN_SYMBOL = 90, // Huffman data with a code that isn't in its table
    PM_ERR_HUFFMAN_SYMBOL_TAKEN = 91, // a Huffman table that gives two codes to one byte
    PM_ERR_NO_BLOCK = 92,             // data without a compressed block
    PM_ERR_DEFLATE_START = 93,        // compression that can't be started
    PM_ERR_DEFLATE = 94,              // compression that failed: the result doesn't fit
    PM_ERR_DEFLATE_END = 95,          // compression that can't be ended
    PM_ERR_INFLATE_START = 96,        // decompression that can't be started
    PM_ERR_INFLATE = 97,              // decompression that failed: data damaged or larger than announced
    PM_ERR_INFLATE_END = 98,          // decompression that can't be ended
    PM_ERR_NOT_HEXADECIMAL = 99       // a dmFields value that isn't a hexadecimal number
};

// Every number from the first to the last is in use.
inline constexpr std::uint32_t PM_ERR_FIRST = PM_ERR_NO_ROOT;
inline constexpr std::uint32_t PM_ERR_LAST = PM_ERR_NOT_HEXADECIMAL;

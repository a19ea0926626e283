#include "messages.h"

#include <algorithm>
#include <pm/error_number.h>

namespace pmres {

namespace {

struct Message {
    std::uint32_t number;
    const char16_t* text;
};

// The detail of a failure is shown beside its text, so that no text holds a placeholder. A number with
// several uses has a text that is true for all of them.
constexpr Message table[] = {
    {PM_ERR_NO_ROOT, u"The property tree has no root"},
    {PM_ERR_BAD_PATH, u"The path is empty, has too many levels or holds an unknown name"},
    {PM_ERR_NOTHING_THERE, u"There is nothing at this path"},
    {PM_ERR_BAD_RAW_DATA, u"Raw data can't be converted to or from hexadecimal digits"},
    {PM_ERR_WRONG_TYPE, u"The type doesn't match: another one is required here"},
    {PM_ERR_NO_MEMORY, u"There is not enough memory"},
    {PM_ERR_NOT_OPENED, u"The file can't be opened, or it isn't a file of the expected kind"},
    {PM_ERR_BAD_LINE, u"The line isn't valid"},
    {PM_ERR_VALUE_TOO_LARGE, u"The value is larger than the space provided for it"},
    {PM_ERR_NO_VALUE, u"The property has no value"},
    {PM_ERR_NOT_WRITTEN, u"The compound file can't be written"},
    {PM_ERR_ACCESS_DENIED, u"Access to the file is denied"},
    {PM_ERR_TOO_MANY_FILES, u"Too many files are open"},
    {PM_ERR_NO_SUCH_FILE, u"The file doesn't exist"},
    {PM_ERR_NO_MEMORY_FOR_FILE, u"There is not enough memory to read or write the file"},
    {PM_ERR_DISK_FULL, u"There is no space left on the disk"},
    {PM_ERR_NOT_READ, u"The file can't be read, or its content is damaged"},
    {PM_ERR_TYPE_REFUSED, u"This operation isn't available for this type of file"},
    {PM_ERR_IS_A_FOLDER, u"A file is expected here, but this is a folder"},
    {PM_ERR_UNKNOWN_VERSION, u"The file's version isn't known, or the file isn't of the expected type"},
    {PM_ERR_COPY_INTO_ITSELF, u"A part of the tree can't be copied into itself"},
    {PM_ERR_ARGUMENTS_TOO_LONG, u"The system refused an argument list that is too long"},
    {PM_ERR_TRY_AGAIN, u"The file is in use for the moment; try again later"},
    {PM_ERR_FILE_NOT_OPEN, u"The file isn't open any more"},
    {PM_ERR_NO_CHILD_PROCESS, u"The system is waiting for a process that doesn't exist"},
    {PM_ERR_DEADLOCK, u"The file is locked, and waiting for it would never end"},
    {PM_ERR_OUT_OF_DOMAIN, u"A number is outside the range that the system can work with"},
    {PM_ERR_FILE_EXISTS, u"A file of this name exists already"},
    {PM_ERR_INVALID_ARGUMENT, u"An argument isn't valid"},
    {PM_ERR_NOT_EXECUTABLE, u"The system can't run a file of this format"},
    {PM_ERR_RESULT_TOO_LARGE, u"A result is too large for the system"},
    {PM_ERR_OTHER_DRIVE, u"The file can't be moved to another drive"},
    {PM_ERR_STREAM_FAILED, u"Reading or writing failed, or the file ends too early"},
    {PM_ERR_NO_SUCH_SECTION, u"The file has no section of this name"},
    {PM_ERR_NOT_DECODED, u"The compressed content of the file is damaged"},
    {PM_ERR_NOT_ENCODED, u"The content of the file can't be compressed"},
    {PM_ERR_NO_SUCH_NODE, u"A node of this path doesn't exist"},
    {PM_ERR_NO_SUCH_PROPERTY, u"The node has no property of this name"},
    {PM_ERR_UNKNOWN_VALUE, u"The value is of no known type"},
    {PM_ERR_NOT_A_HEADER, u"The file doesn't begin like a PIA file"},
    {PM_ERR_NO_HUFFMAN_SYMBOL, u"The Huffman data holds a code that isn't in its table"},
    {PM_ERR_HUFFMAN_SYMBOL_TAKEN, u"The Huffman table gives two codes to the same byte"},
    {PM_ERR_NO_BLOCK, u"The data holds no compressed block"},
    {PM_ERR_DEFLATE_START, u"Compression can't be started"},
    {PM_ERR_DEFLATE, u"Compression failed: the result doesn't fit"},
    {PM_ERR_DEFLATE_END, u"Compression can't be ended"},
    {PM_ERR_INFLATE_START, u"Decompression can't be started"},
    {PM_ERR_INFLATE, u"Decompression failed: the data is damaged or larger than announced"},
    {PM_ERR_INFLATE_END, u"Decompression can't be ended"},
    {PM_ERR_NOT_HEXADECIMAL, u"The value of dmFields isn't a hexadecimal number"},
};

constexpr bool every_number_has_a_text() {
    std::uint32_t number = PM_ERR_FIRST;
    return std::ranges::all_of(table, [&](const Message& each) { return each.number == number++; }) &&
           number == PM_ERR_LAST + 1;
}
static_assert(every_number_has_a_text());

} // namespace

const char16_t* find_message(std::uint32_t number) {
    return number >= PM_ERR_FIRST && number <= PM_ERR_LAST ? table[number - PM_ERR_FIRST].text : nullptr;
}

} // namespace pmres

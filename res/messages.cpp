#include "messages.h"

#include <algorithm>

namespace pmres {

namespace {

struct Message {
    std::uint32_t number;
    const char16_t* text;
};

// The detail of a failure is shown beside its text, so that no text holds a placeholder. A number with
// several uses has a text that is true for all of them.
constexpr Message table[] = {
    {50, u"The property tree has no root"},
    {51, u"The path is empty, has too many levels or holds an unknown name"},
    {52, u"There is nothing at this path"},
    {53, u"Raw data can't be converted to or from hexadecimal digits"},
    {54, u"The type doesn't match: another one is required here"},
    {55, u"There is not enough memory"},
    {56, u"The file can't be opened, or it isn't a file of the expected kind"},
    {57, u"The line isn't valid"},
    {58, u"The value is larger than the space provided for it"},
    {59, u"The property has no value"},
    {60, u"The compound file can't be written"},
    {61, u"Access to the file is denied"},
    {62, u"Too many files are open"},
    {63, u"The file doesn't exist"},
    {64, u"There is not enough memory to read or write the file"},
    {65, u"There is no space left on the disk"},
    {66, u"The file can't be read, or its content is damaged"},
    {67, u"This operation isn't available for this type of file"},
    {68, u"A file is expected here, but this is a folder"},
    {69, u"The file's version isn't known, or the file isn't of the expected type"},
    {70, u"A part of the tree can't be copied into itself"},
    {71, u"The system refused an argument list that is too long"},
    {72, u"The file is in use for the moment; try again later"},
    {73, u"The file isn't open any more"},
    {74, u"The system is waiting for a process that doesn't exist"},
    {75, u"The file is locked, and waiting for it would never end"},
    {76, u"A number is outside the range that the system can work with"},
    {77, u"A file of this name exists already"},
    {78, u"An argument isn't valid"},
    {79, u"The system can't run a file of this format"},
    {80, u"A result is too large for the system"},
    {81, u"The file can't be moved to another drive"},
    {82, u"Reading or writing failed, or the file ends too early"},
    {83, u"The file has no section of this name"},
    {84, u"The compressed content of the file is damaged"},
    {85, u"The content of the file can't be compressed"},
    {86, u"A node of this path doesn't exist"},
    {87, u"The node has no property of this name"},
    {88, u"The value is of no known type"},
    {89, u"The file doesn't begin like a PIA file"},
    {90, u"The Huffman data holds a code that isn't in its table"},
    {91, u"The Huffman table gives two codes to the same byte"},
    {92, u"The data holds no compressed block"},
    {93, u"Compression can't be started"},
    {94, u"Compression failed: the result doesn't fit"},
    {95, u"Compression can't be ended"},
    {96, u"Decompression can't be started"},
    {97, u"Decompression failed: the data is damaged or larger than announced"},
    {98, u"Decompression can't be ended"},
    {99, u"The value of dmFields isn't a hexadecimal number"},
};

constexpr bool numbers_rise() {
    return std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &Message::number) ==
           std::ranges::end(table);
}
static_assert(numbers_rise());

} // namespace

const char16_t* find_message(std::uint32_t number) {
    const auto* found = std::ranges::lower_bound(table, number, {}, &Message::number);
    return found != std::ranges::end(table) && found->number == number ? found->text : nullptr;
}

} // namespace pmres

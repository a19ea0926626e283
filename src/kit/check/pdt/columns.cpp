#include "check/pdt/columns.h"

#include <algorithm>
#include <iterator>

namespace pm::kit {

namespace {

using enum Cell;
namespace words = keywords;

constexpr Column custom_capability[] = {{'C', yes},
                                        {'D', typed},
                                        {'E', number},
                                        {'F', number},
                                        {'G', data_type},
                                        {'H', big_yes},
                                        {'I', typed, nullptr, {}, true}};
constexpr Column dithering_method[] = {
    {'C', integer}, {'D', keyword, &words::dithering_types}, {'E', integer},
    {'F', integer}, {'G', keyword, &words::renderers},       {'H', integer},
    {'I', integer}, {'J', matrix, nullptr, {}, true}};
constexpr Column matrix_cells = {'K', integer, nullptr, {}, true};
constexpr Column protocol[] = {
    {'C', keyword, &words::data_bits}, {'D', keyword, &words::stop_bits}, {'E', keyword, &words::parity}};
constexpr Column io_method[] = {{'A', keyword, &words::io_types, {}, true},
                                {'B', keyword, &words::status, {}, true},
                                {'C', raw_reference, nullptr, "Protocol ", true},
                                {'D', integer},
                                {'E', integer},
                                {'F', integer},
                                {'G', integer},
                                {'H', integer},
                                {'I', integer},
                                {'J', keyword, &words::handshakes, {}, true},
                                {'K', integer},
                                {'M', keyword, &words::handshakes, {}, true},
                                {'N', integer, nullptr, {}, true}};
constexpr Column collating[] = {{'C', keyword, &words::collating_types}};
constexpr Column cutting[] = {{'C', keyword, &words::cutting_times}};
constexpr Column media_description[] = {{'C', keyword, &words::media_groups},
                                        {'H', number},
                                        {'M', number},
                                        {'N', number},
                                        {'O', number},
                                        {'P', number},
                                        {'Q', number},
                                        {'R', number}};
constexpr Column media_destination[] = {
    {'C', reference, nullptr, "Media Collating"},       {'D', reference, nullptr, "Media Stapling"},
    {'E', reference, nullptr, "Media Cutting"},         {'F', reference, nullptr, "Media Folding"},
    {'G', reference, nullptr, "Media Collating", true}, {'H', reference, nullptr, "Media Stapling", true},
    {'I', reference, nullptr, "Media Cutting", true},   {'J', reference, nullptr, "Media Folding", true}};
constexpr Column folding[] = {{'C', keyword, &words::folding_types}, {'D', keyword, &words::folding_times}};
constexpr Column media_size[] = {{'D', landscape}, {'E', reference, nullptr, "Media Description"}};
constexpr Column source_entry[] = {{'C', reference, nullptr, "Media Size"},
                                   {'D', number},
                                   {'E', number},
                                   {'F', reference, nullptr, "Media Size", true}};
constexpr Column media_source[] = {{'C', keyword, &words::feeds},
                                   {'D', reference, nullptr, "Media Source Entry", true},
                                   {'E', reference, nullptr, "Media Source Entry"}};
constexpr Column stapling[] = {
    {'C', keyword, &words::stapling_locations}, {'D', keyword, &words::stapling_times}, {'E', integer}};
constexpr Column media_type[] = {{'C', number}, {'D', number}, {'E', integer}};
constexpr Column memory_area[] = {{'C', integer}, {'D', number}};
constexpr Column raster[] = {{'A', named_keyword, &words::raster_abilities, {}, true},
                             {'B', keyword, &words::raster_orientations, {}, true}};
constexpr Column resolution[] = {{'C', number},
                                 {'D', number},
                                 {'E', number},
                                 {'F', number},
                                 {'G', number},
                                 {'H', number},
                                 {'I', reference, nullptr, "Dithering Method"},
                                 {'J', reference, nullptr, "Memory Area", true}};
constexpr Column color_memory[] = {{'C', integer},
                                   {'D', integer},
                                   {'E', integer},
                                   {'F', keyword, &words::color_systems},
                                   {'G', reference, nullptr, "Resolution", true},
                                   {'H', reference, nullptr, "Resolution"},
                                   {'I', yes}};
constexpr Column line_types[] = {{'A', named_keyword, &words::line_types, {}, true}, {'B', number}};

constexpr Table tables[] = {
    {"Custom Capability", "DRFX_CUSTOM_CAPABILITY_", custom_capability, std::size(custom_capability)},
    {"Dithering Method", "DRFX_DITHERING_METHOD_", dithering_method, std::size(dithering_method), 'B', true,
     false, &matrix_cells},
    {"Protocol ", "DRFX_PROTOCOL__", protocol, std::size(protocol)},
    {"IO Method", {}, io_method, std::size(io_method)},
    {"Media Collating", "DRFX_MEDIA_COLLATING_", collating, std::size(collating)},
    {"Media Cutting", "DRFX_MEDIA_CUTTING_", cutting, std::size(cutting)},
    {"Media Description", {}, media_description, std::size(media_description)},
    {"Media Destination", "DRFX_MEDIA_DESTINATION_", media_destination, std::size(media_destination)},
    {"Media Folding", "DRFX_MEDIA_FOLDING_", folding, std::size(folding)},
    {"Media Size", "DRFX_MEDIA_SIZE_", media_size, std::size(media_size), 'C'},
    {"Media Source Entry", "DRFX_MEDIA_SOURCE_ENTRY_", source_entry, std::size(source_entry)},
    {"Media Source", "DRFX_MEDIA_SOURCE_", media_source, std::size(media_source)},
    {"Media Stapling", "DRFX_MEDIA_STAPLING_", stapling, std::size(stapling)},
    {"Media Type", "DRFX_MEDIA_TYPE_", media_type, std::size(media_type)},
    {"Memory Area", "DRFX_MEMORY_AREA_", memory_area, std::size(memory_area)},
    {"Raster Capability", {}, raster, std::size(raster)},
    {"Resolution", "DRFX_RESOLUTION_", resolution, std::size(resolution)},
    {"Resolution Color Memory", "DRFX_RESOLUTION_COLOR_MEMORY_", color_memory, std::size(color_memory)},
    {"Misc Non-Localizable Info", {}, nullptr, 0, 'B', true, true},
    {"Misc Localizable Information", "DRFX_MISC_LOCALIZABLE_INFORMATION_", nullptr, 0, 'B', true, true},
    {"Line Type Capabilities", {}, line_types, std::size(line_types)},
};

constexpr FormLine lines[] = {
    {3, integer},
    {4, integer},
    {5, number},
    {6, number},
    {7, keyword, &words::selection_methods, {}, true},
    {8, keyword, &words::selection_methods, {}, true},
    {9, number},
    {10, integer},
    {11, keyword, &words::duplexing_modes, {}, true},
    {12, keyword, &words::duplexing_modes, {}, true},
    {13, big_yes},
    {14, big_yes},
    {15, big_yes},
    {17, yes},
    {18, yes},
    {19, yes},
    {20, yes},
    {21, number},
    {22, number},
    {23, number},
    {24, keyword, &words::optimizations},
    {25, number},
    {26, keyword, &words::optimizations},
    {29, big_yes},
    {30, reference, nullptr, "Resolution Color Memory"},
    {31, reference, nullptr, "Media Source"},
    {32, reference, nullptr, "Media Size"},
    {33, reference, nullptr, "Media Destination"},
    {34, reference, nullptr, "Media Type"},
    {36, big_yes},
    {40, number},
    {41, number},
    {42, number},
    {43, keyword, &words::line_type_abilities, {}, true},
    {44, keyword, &words::start_string_owners, {}, true, true},
    {45, keyword, &words::start_string_owners, {}, true, true},
    {46, keyword, &words::start_string_owners, {}, true, true},
    {47, keyword, &words::start_string_owners, {}, true, true},
    {48, keyword, &words::pen_owners, {}, true, true},
    {49, keyword, &words::pen_owners, {}, true, true},
    {50, keyword, &words::pen_owners, {}, true, true},
    {51, keyword, &words::pen_owners, {}, true, true},
    {52, keyword, &words::color_owners, {}, true, true},
    {53, keyword, &words::color_owners, {}, true, true},
    {54, keyword, &words::color_owners, {}, true, true},
    {55, keyword, &words::color_owners, {}, true, true},
    {56, keyword, &words::io_owners, {}, true, true},
    {57, keyword, &words::io_owners, {}, true, true},
    {58, keyword, &words::io_owners, {}, true, true},
    {59, keyword, &words::io_owners, {}, true, true},
    {60, keyword, &words::media_owners, {}, true, true},
    {61, keyword, &words::media_owners, {}, true, true},
    {62, keyword, &words::media_owners, {}, true, true},
    {63, keyword, &words::media_owners, {}, true, true},
    {64, named_keyword, &words::io_types},
    {66, big_yes},
    {67, big_yes},
    {68, big_yes},
};

} // namespace

std::span<const Table> description_tables() noexcept {
    return tables;
}

const Table* find_table(std::string_view name) noexcept {
    const auto* found = std::find_if(std::begin(tables), std::end(tables),
                                     [&](const Table& each) { return each.name == name; });
    return found != std::end(tables) ? found : nullptr;
}

std::span<const FormLine> form_lines() noexcept {
    return lines;
}

} // namespace pm::kit

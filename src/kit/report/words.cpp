#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

struct Row {
    Code code;
    long number;
    std::string_view word;
};

constexpr std::array rows{
    Row{Code::io_type, 0, "None"},
    Row{Code::io_type, 1, "Connection of the driver's own"},
    Row{Code::io_type, 2, "File"},
    Row{Code::io_type, 3, "System printer"},
    Row{Code::io_type, 4, "Serial port (RS-232)"},
    Row{Code::io_type, 5, "Parallel port"},
    Row{Code::io_type, 6, "Network"},
    Row{Code::parity, 0, "none"},
    Row{Code::parity, 1, "odd"},
    Row{Code::parity, 2, "even"},
    Row{Code::parity, 3, "mark"},
    Row{Code::parity, 4, "space"},
    Row{Code::data_bits, 0, "5"},
    Row{Code::data_bits, 1, "6"},
    Row{Code::data_bits, 2, "7"},
    Row{Code::data_bits, 3, "8"},
    Row{Code::data_bits, 4, "16"},
    Row{Code::data_bits, 5, "16X"},
    Row{Code::stop_bits, 0, "1"},
    Row{Code::stop_bits, 1, "1.5"},
    Row{Code::stop_bits, 2, "2"},
    Row{Code::dithering_type, 0, "No dithering, colours must match"},
    Row{Code::dithering_type, 1, "No dithering, nearest colour"},
    Row{Code::dithering_type, 2, "Ordered"},
    Row{Code::dithering_type, 3, "Clustered ordered"},
    Row{Code::dithering_type, 4, "Dispersed ordered"},
    Row{Code::dithering_type, 5, "Ordered by a matrix of its own"},
    Row{Code::dithering_type, 6, "Fine"},
    Row{Code::dithering_type, 7, "Line art"},
    Row{Code::dithering_type, 8, "Error diffusion"},
    Row{Code::dithering_type, 9, "Grey scale"},
    Row{Code::dithering_type, 10, "By the device"},
    Row{Code::renderer, 0, "neither"},
    Row{Code::renderer, 1, "frame buffer"},
    Row{Code::renderer, 2, "dithering and frame buffer"},
    Row{Code::media_group, 0, "ANSI"},
    Row{Code::media_group, 1, "ANSI expanded"},
    Row{Code::media_group, 2, "Architectural"},
    Row{Code::media_group, 3, "Architectural expanded"},
    Row{Code::media_group, 4, "ISO"},
    Row{Code::media_group, 5, "ISO expanded"},
    Row{Code::media_group, 6, "ISO oversize"},
    Row{Code::media_group, 7, "Business"},
    Row{Code::media_group, 8, "Business expanded"},
    Row{Code::media_group, 9, "JIS"},
    Row{Code::media_group, 10, "ANSI envelopes"},
    Row{Code::media_group, 11, "ISO envelopes"},
    Row{Code::media_group, 12, "Defined by the user"},
    Row{Code::media_group, 13, "Raster"},
    Row{Code::media_group, 14, "Defined by the user, imperial"},
    Row{Code::media_group, 15, "Defined by the user, metric"},
    Row{Code::media_group, 16, "Defined by the user, raster"},
    Row{Code::feed, 0, "None"},
    Row{Code::feed, 1, "Single sheets by hand"},
    Row{Code::feed, 2, "Sheet feeder"},
    Row{Code::feed, 3, "Roll feeder"},
    Row{Code::collating_type, 0, "none"},
    Row{Code::collating_type, 1, "regular"},
    Row{Code::collating_type, 2, "custom"},
    Row{Code::stapling_location, 0, "no known place"},
    Row{Code::stapling_location, 1, "portrait, upper left"},
    Row{Code::stapling_location, 2, "portrait, upper right"},
    Row{Code::stapling_location, 3, "portrait, saddle"},
    Row{Code::stapling_location, 4, "landscape, upper left"},
    Row{Code::stapling_location, 5, "landscape, upper right"},
    Row{Code::stapling_time, 0, "never"},
    Row{Code::stapling_time, 1, "at the end of the job"},
    Row{Code::stapling_time, 2, "after each set"},
    Row{Code::stapling_time, 3, "after each page"},
    Row{Code::folding_type, 0, "letter"},
    Row{Code::folding_type, 1, "Z"},
    Row{Code::folding_type, 2, "double gate"},
    Row{Code::folding_type, 3, "left gate"},
    Row{Code::folding_type, 4, "right gate"},
    Row{Code::folding_type, 5, "saddle"},
    Row{Code::folding_type, 6, "cross"},
    Row{Code::finishing_time, 0, "at no known time"},
    Row{Code::finishing_time, 1, "at the end of the job"},
    Row{Code::finishing_time, 2, "after each set"},
    Row{Code::finishing_time, 3, "after each page"},
    Row{Code::raster_orientation, 0, "rows from left to right, top first"},
    Row{Code::raster_orientation, 1, "rows from left to right, bottom first"},
    Row{Code::raster_orientation, 2, "rows from right to left, top first"},
    Row{Code::raster_orientation, 3, "rows from right to left, bottom first"},
    Row{Code::raster_orientation, 4, "columns from top to bottom, left first"},
    Row{Code::raster_orientation, 5, "columns from top to bottom, right first"},
    Row{Code::raster_orientation, 6, "columns from bottom to top, left first"},
    Row{Code::raster_orientation, 7, "columns from bottom to top, right first"},
    Row{Code::color_system, 0, "RGB by a palette"},
    Row{Code::color_system, 1, "RGB, direct"},
    Row{Code::color_system, 2, "Black and white"},
    Row{Code::color_system, 3, "Grey scale"},
    Row{Code::color_system, 4, "CMYK, direct"},
    Row{Code::optimization, 0, "none"},
    Row{Code::optimization, 1, "swaps end points"},
    Row{Code::optimization, 2, "sorts by pen"},
    Row{Code::optimization, 3, "limited optimization of motion"},
    Row{Code::optimization, 4, "full optimization of motion"},
    Row{Code::optimization, 5, "drops overlapping horizontal and vertical lines"},
    Row{Code::optimization, 6, "drops overlapping diagonal lines"},
    Row{Code::line_type, 0, "Solid"},
    Row{Code::line_type, 1, "Dashed"},
    Row{Code::line_type, 2, "Dotted"},
    Row{Code::line_type, 3, "Dash dot"},
    Row{Code::line_type, 4, "Short dash"},
    Row{Code::line_type, 5, "Medium dash"},
    Row{Code::line_type, 6, "Long dash"},
    Row{Code::line_type, 7, "Short dash, double"},
    Row{Code::line_type, 8, "Medium dash, double"},
    Row{Code::line_type, 9, "Long dash, double"},
    Row{Code::line_type, 10, "Medium and long dash"},
    Row{Code::line_type, 11, "Medium dash, two short dashes"},
    Row{Code::line_type, 12, "Long dash, short dash"},
    Row{Code::line_type, 13, "Long dash, two dots"},
    Row{Code::line_type, 14, "Long dash, dot"},
    Row{Code::line_type, 15, "Medium dash, dot, short dash, dot"},
    Row{Code::line_type, 16, "Sparse dot"},
    Row{Code::line_type, 17, "Defined by the user"},
    Row{Code::data_type, 0, "text"},
    Row{Code::data_type, 1, "integer"},
    Row{Code::data_type, 2, "number"},
    Row{Code::data_type, 3, "yes or no"},
    Row{Code::data_type, 4, "bytes"},
    Row{Code::handshake_bit, 0, "none"},
    Row{Code::handshake_bit, 0x1, "XON/XOFF in"},
    Row{Code::handshake_bit, 0x2, "XON/XOFF out"},
    Row{Code::handshake_bit, 0x4, "CTS"},
    Row{Code::handshake_bit, 0x8, "RTS off"},
    Row{Code::handshake_bit, 0x10, "RTS on"},
    Row{Code::handshake_bit, 0x20, "RTS handshake"},
    Row{Code::handshake_bit, 0x40, "RTS toggle"},
    Row{Code::handshake_bit, 0x80, "DTR off"},
    Row{Code::handshake_bit, 0x100, "DTR on"},
    Row{Code::handshake_bit, 0x200, "DTR handshake"},
    Row{Code::handshake_bit, 0x400, "DSR"},
    Row{Code::handshake_bit, 0x800, "RLSD"},
    Row{Code::status_bit, 0, "nothing"},
    Row{Code::status_bit, 0x1, "model"},
    Row{Code::status_bit, 0x2, "source"},
    Row{Code::status_bit, 0x4, "size"},
    Row{Code::status_bit, 0x8, "sources there are"},
    Row{Code::status_bit, 0x10, "sizes there are"},
    Row{Code::status_bit, 0x20, "orientation"},
    Row{Code::status_bit, 0x40, "cartridge fonts"},
    Row{Code::status_bit, 0x80, "soft fonts"},
    Row{Code::status_bit, 0x100, "internal fonts"},
    Row{Code::status_bit, 0x200, "memory"},
    Row{Code::status_bit, 0x400, "free memory"},
    Row{Code::status_bit, 0x800, "out of media"},
    Row{Code::status_bit, 0x1000, "out of ink"},
    Row{Code::status_bit, 0x2000, "jams"},
    Row{Code::selection_bit, 0, "none"},
    Row{Code::selection_bit, 0x1, "by source"},
    Row{Code::selection_bit, 0x2, "by size"},
    Row{Code::duplexing_bit, 0, "no known one"},
    Row{Code::duplexing_bit, 0x1, "one side"},
    Row{Code::duplexing_bit, 0x2, "both sides, long edge"},
    Row{Code::duplexing_bit, 0x4, "both sides, short edge"},
};

using Names = std::string_view;

// An empty name: what the digit tells isn't known.
constexpr std::array<Names, 51> media_abilities{"Ways to select a size",
                                                "Sources",
                                                "Sources",
                                                "What a source can be loaded with",
                                                "Entries of sources",
                                                "Sizes",
                                                "Sizes",
                                                "Outputs",
                                                "Outputs",
                                                "Bounds of media",
                                                "Media types",
                                                "Media types",
                                                "Landscape and portrait",
                                                "",
                                                "Media bounds",
                                                "Printable bounds",
                                                "Printable part",
                                                "Dimensional media",
                                                "Stapling by default",
                                                "Collating by default",
                                                "Folding by default",
                                                "Cutting by default",
                                                "Duplexing modes",
                                                "Copies made by the device",
                                                "Media settings",
                                                "Long plot reduction",
                                                "",
                                                "",
                                                "",
                                                "",
                                                "Drying times",
                                                "Best resolution of a type",
                                                "Feeds",
                                                "Media groups",
                                                "Size by default",
                                                "Stapling",
                                                "Collating",
                                                "Folding",
                                                "",
                                                "Most copies",
                                                "Source by default",
                                                "",
                                                "Output by default",
                                                "Type by default",
                                                "",
                                                "Way to select by default",
                                                "Duplexing mode by default",
                                                "",
                                                "Width of a loaded medium",
                                                "Frame height",
                                                "Longest piece of a roll"};

constexpr std::array<Names, 24> color_abilities{"Colour modes listed",
                                                "Colour modes",
                                                "Resolutions listed",
                                                "Resolutions",
                                                "Dithering of resolutions",
                                                "Dithering methods",
                                                "Printable area by memory",
                                                "Memory areas",
                                                "Physical resolution",
                                                "Addressable resolution",
                                                "Effective resolution",
                                                "Pure colours kept",
                                                "Mixed layers",
                                                "",
                                                "",
                                                "Lines drawn over rasters",
                                                "",
                                                "",
                                                "Memory changes the printable area",
                                                "",
                                                "",
                                                "",
                                                "Colour mode by default",
                                                "Colour control"};

constexpr std::array<Names, 12> io_abilities{"Connections",
                                             "Plot file extension by default",
                                             "Kinds of connection",
                                             "Connection by default",
                                             "Serial or parallel port",
                                             "Protocol by default",
                                             "Baud rate by default",
                                             "Handshakes",
                                             "Output timeout by default",
                                             "Input timeout by default",
                                             "Plots to a file",
                                             "File name"};

constexpr std::array<Names, 19> pen_abilities{"Number of pens",
                                              "Hardware fills",
                                              "Correction of area fills",
                                              "Widths",
                                              "Speeds",
                                              "Pens",
                                              "Optimization",
                                              "Narrowest width",
                                              "Widest width",
                                              "Lowest speed",
                                              "Highest speed",
                                              "Width by default",
                                              "Speed by default",
                                              "Number of pens by default",
                                              "Optimization by default",
                                              "",
                                              "Pens of its own",
                                              "Widths can be set",
                                              "Speeds can be set"};

constexpr std::array<Names, 3> string_settings{"Before initialization", "After initialization", "At the end"};
constexpr std::array<Names, 2> line_abilities{"Scale of line types", "Adaptive line types"};
constexpr std::array<Names, 4> raster_abilities{"Takes rasters", "Draws rasters as rasters",
                                                "Draws rasters as vectors", "Prefers an orientation"};
constexpr std::array<Names, 12> model_abilities{};

constexpr std::array<Names, 20> of_methods{"Output timeout by default",
                                           "Longest output timeout",
                                           "Shortest output timeout",
                                           "Input timeout by default",
                                           "Longest input timeout",
                                           "Shortest input timeout",
                                           "Protocol by default",
                                           "Protocols",
                                           "Baud rate by default",
                                           "Baud rates",
                                           "Described",
                                           "Reports of the device",
                                           "Handshakes",
                                           "Output timeout",
                                           "Input timeout",
                                           "Protocol to choose",
                                           "Port",
                                           "Baud rate to choose",
                                           "Handshake to choose",
                                           "Handshake by default"};

constexpr std::array<Names, 7> pen_settings{
    "Number of pens",           "Pen colour",       "Pen width",     "Pen speed",
    "Correction of area fills", "Pen optimization", "Change of pens"};
constexpr std::array<Names, 14> color_settings{"Resolution",
                                               "Physical memory",
                                               "Colour depth",
                                               "Colour system",
                                               "Memory for rasters",
                                               "Memory for objects",
                                               "Dithering by hardware, software or none",
                                               "Colour or monochrome",
                                               "Colour of rasters or resolution",
                                               "Installed memory",
                                               "Colour matching method",
                                               "Colour matching intent",
                                               "Colour of the system's dialog",
                                               "Lines overwrite"};
constexpr std::array<Names, 9> io_settings{"Port name",      "Kind of connection", "Protocol",
                                           "Baud rate",      "Handshake",          "Input timeout",
                                           "Output timeout", "Plot to a file",     "Path of the file"};
constexpr std::array<Names, 23> media_settings{"Way to select a size",
                                               "Media type",
                                               "Source",
                                               "Feed",
                                               "Stapling",
                                               "Cutting",
                                               "Folding",
                                               "Collating",
                                               "Size",
                                               "Bounds",
                                               "Printable area",
                                               "Dimensional media",
                                               "Landscape mode",
                                               "Copies at an output",
                                               "Duplexing mode",
                                               "Margins",
                                               "Long plot reduction",
                                               "Orientation of the system's dialog",
                                               "Form of the system's dialog",
                                               "Actual bounds",
                                               "Takes rasters",
                                               "Draws rasters as rasters",
                                               ""};

constexpr std::array<Area, 8> all_areas{{
    {"media", "Media", "abilities", media_abilities, media_settings},
    {"res_color_mem", "Colour, resolution and memory", "abilities", color_abilities, color_settings},
    {"io", "Connections", "abilities", io_abilities, io_settings},
    {"physical_pen", "Pens", "abilities", pen_abilities, pen_settings},
    {"init_term", "Start and end strings", "abilities", string_settings, string_settings},
    {"linetype", "Line types", "abilities", line_abilities, {}},
    {"RASTER", "Rasters", "abilities", raster_abilities, {}},
    {"meta", "Model", "model_abilities", model_abilities, {}},
}};

const Row* find(Code code, long number) {
    const auto found =
        std::ranges::find_if(rows, [&](const Row& row) { return row.code == code && row.number == number; });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

std::string word(Code code, long number) {
    const Row* row = find(code, number);
    return row ? std::string(row->word) : fmt::format("unknown ({})", number);
}

std::vector<std::string> words(Code code, long bits) {
    if (bits == 0) {
        return {word(code, 0)};
    }
    std::vector<std::string> found;
    auto rest = static_cast<std::uint32_t>(bits);
    for (const Row& row : rows) {
        const auto bit = static_cast<std::uint32_t>(row.number);
        if (row.code == code && bit != 0 && (rest & bit) != 0) {
            found.emplace_back(row.word);
            rest &= ~bit;
        }
    }
    if (rest != 0) {
        found.push_back(fmt::format("unknown (0x{:X})", rest));
    }
    return found;
}

std::vector<long> numbers(Code code) {
    std::vector<long> found;
    for (const Row& row : rows) {
        if (row.code == code) {
            found.push_back(row.number);
        }
    }
    return found;
}

std::string joined(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, ", "));
}

std::span<const Area> areas() {
    return all_areas;
}

std::span<const std::string_view> method_abilities() {
    return of_methods;
}

} // namespace pm::kit::report

#include <array>
#include <pm/kit/compatibility.h>

namespace pm::kit {

namespace {

using enum SettingForm;

// What holds of a path beside its form.
enum : unsigned {
    plain = 0,
    zero = 1,      // zero_is_unset
    any_case = 2,  // as the legacy readers keep the file's own spelling
    by_default = 4 // is_default
};
constexpr unsigned legacy = zero | any_case;

struct Row {
    std::string_view setting;
    std::string_view path;
    SettingForm form = as_is;
    unsigned flags = plain;
    std::string_view key = {};
};

constexpr std::string_view serial = "4"; // the method RS232

// Laid out like a description; what a description itself has by default is marked.
constexpr std::array common = std::to_array<Row>({
    {"family", "\\meta\\canonical_family_name"},
    {"family", "\\meta\\localized_family_name"},
    {"model", "\\meta\\canonical_model_name"},
    {"model", "\\meta\\localized_model_name"},
    {"driver_version", "\\meta\\driver_version"},
    {"size", "\\media\\default_size", name, zero | by_default},
    {"source", "\\media\\default_source", name, zero | by_default},
    {"destination", "\\media\\default_destination", name, zero | by_default},
    {"type", "\\media\\default_type", name, zero | by_default},
    {"selection_method", "\\media\\default_selection_method", as_is, by_default},
    {"duplex", "\\media\\default_duplexing_mode", as_is, by_default},
    {"copies", "\\media\\copies"},
    {"landscape", "\\media\\landscape", orientation},
    {"printable_part", "\\media\\printable_area"},
    {"margin_left", "\\media\\margin_left"},
    {"margin_bottom", "\\media\\margin_bottom"},
    {"margin_right", "\\media\\margin_right"},
    {"margin_top", "\\media\\margin_top"},
    {"size_entry", "\\media\\size\\*\\name", name, zero},
    {"size_width", "\\media\\size\\*\\width"},
    {"size_height", "\\media\\size\\*\\height"},
    {"landscape", "\\media\\size\\*\\landscape_mode", orientation},
    {"loaded", "\\media\\source\\*\\loaded", name, zero},
    {"loaded", "\\media\\source\\*\\default_entry", name, zero | by_default},
    {"entry_size", "\\media\\source\\*\\entry\\*\\default_size", name, zero | by_default},
    {"feed", "\\media\\source\\*\\feed"},
    {"loaded_width", "\\media\\source\\*\\width"},
    {"collating", "\\media\\finishing\\collating", name, zero},
    {"cutting", "\\media\\finishing\\cutting", name, zero},
    {"folding", "\\media\\finishing\\folding", name, zero},
    {"stapling", "\\media\\finishing\\stapling", name, zero},
    {"collate", "\\media\\finishing\\collate", yes_no},
    {"collating", "\\media\\destination\\*\\default_collating", name, zero | by_default},
    {"cutting", "\\media\\destination\\*\\default_cutting", name, zero | by_default},
    {"folding", "\\media\\destination\\*\\default_folding", name, zero | by_default},
    {"stapling", "\\media\\destination\\*\\default_stapling", name, zero | by_default},
    {"mode", "\\res_color_mem\\default_name", name, zero | by_default},
    {"colour_depth", "\\res_color_mem\\color_depth"},
    {"resolution_x", "\\res_color_mem\\resolution_x"},
    {"resolution_y", "\\res_color_mem\\resolution_y"},
    {"resolution", "\\res_color_mem\\rcm_list\\*\\default_resolution", name, zero | by_default},
    {"memory", "\\res_color_mem\\installed_memory"},
    {"memory_area", "\\res_color_mem\\rcm_list\\*\\resolution_list\\*\\default_mem_area", name,
     zero | by_default},
    {"dithering", "\\res_color_mem\\dithering", name, zero},
    {"dithering", "\\res_color_mem\\rcm_list\\*\\resolution_list\\*\\res_color_mem\\dithering_list", name,
     zero | by_default},
    {"pen_count", "\\physical_pen\\count"},
    {"pen_count", "\\physical_pen\\default_npens", as_is, by_default},
    {"pen_width", "\\physical_pen\\table\\*\\width"},
    {"pen_width", "\\physical_pen\\default_width", as_is, by_default},
    {"pen_speed", "\\physical_pen\\table\\*\\speed"},
    {"pen_speed", "\\physical_pen\\default_speed", as_is, by_default},
    {"pen_enabled", "\\physical_pen\\table\\*\\enabled"},
    {"pen_color", "\\physical_pen\\table\\*\\color"},
    {"pen_optimization", "\\physical_pen\\default_optimization", as_is, by_default},
    {"io_type", "\\io\\default_type", as_is, by_default},
    {"port", "\\io\\port"},
    {"output_timeout", "\\io\\output_timeout"},
    {"input_timeout", "\\io\\input_timeout"},
    {"plot_to_file", "\\io\\plot_to_file", yes_no},
    {"file_extension", "\\io\\file_extension", as_is, zero},
    {"baud_rate", "\\io\\serial\\baud_rate", as_is, plain, serial},
    {"protocol", "\\io\\serial\\protocol", as_is, zero, serial},
    {"handshake", "\\io\\serial\\handshake", as_is, plain, serial},
    {"output_timeout", "\\io\\method\\*\\default_output_timeout", as_is, by_default},
    {"input_timeout", "\\io\\method\\*\\default_input_timeout", as_is, by_default},
    {"baud_rate", "\\io\\method\\*\\default_baud_rate", as_is, by_default},
    {"protocol", "\\io\\method\\*\\default_protocol", as_is, zero | by_default},
    {"handshake", "\\io\\method\\*\\default_handshake", as_is, by_default},
    {"pre_init", "\\init_term\\pre_init"},
    {"post_init", "\\init_term\\post_init"},
    {"termination", "\\init_term\\termination"},
    {"custom", "\\custom_name\\*"},
    {"custom", "\\custom_name\\*\\value"},
    {"custom", "\\custom_name\\*\\default_value", as_is, by_default},
    {"custom", "\\custom_name\\*\\*\\default_value", as_is, by_default},
});

// What the readers of PC2 and CFG make. They set every key, most to nothing.
constexpr std::array plotters = std::to_array<Row>({
    {"metric", "\\Plotter/User\\IsMetric", unit, any_case},
    {"pen_count", "\\Plotter/Device\\Pens", as_is, legacy},
    {"pen_count", "\\Plotter/Device/PenTable\\Pens", as_is, legacy},
    {"pen_count", "\\Plotter/DriverCustom/pen\\count", as_is, legacy},
    {"pen_number", "\\Plotter/Device/PenTable\\Color*", as_is, legacy},
    {"pen_width", "\\Plotter/Device/WidthTable\\Color*", length, legacy},
    {"pen_width", "\\Plotter/User\\LineWidth", length, legacy},
    {"pen_speed", "\\Plotter/Device/SpeedTable\\Color*", as_is, legacy},
    {"pen_speed", "\\Plotter/Device/SpeedTable\\MaxSpeed", as_is, legacy},
    {"line_type", "\\Plotter/Device/LineTypeTable\\Color*", as_is, legacy},
    {"line_type_count", "\\Plotter/Device/LineTypeTable\\Types", as_is, legacy},
    {"pen_optimization", "\\Plotter/User\\OptimizationLevel", as_is, legacy},
    {"pen_optimization", "\\Plotter/User\\MaxOptlevel", as_is, legacy},
    {"io_type", "\\Plotter/Port\\IOType", as_is, legacy},
    {"port", "\\Plotter/Port\\PortName", as_is, legacy},
    {"input_timeout", "\\Plotter/Port\\ReadTimeOut", as_is, legacy},
    {"output_timeout", "\\Plotter/Port\\WriteTimeOut", as_is, legacy},
    {"input_timeout", "\\Plotter/Port\\ReceiveTimeOut", as_is, legacy},
    {"output_timeout", "\\Plotter/Port\\TransmitTimeOut", as_is, legacy},
    {"handshake", "\\Plotter/Port\\Handshaking", as_is, legacy, serial},
    {"handshake", "\\Plotter/User\\Handshaking", as_is, legacy, serial},
    {"baud_rate", "\\Plotter/User\\BaudRate", as_is, legacy, serial},
    {"data_bits", "\\Plotter/User\\DataBits", as_is, legacy, serial},
    {"stop_bits", "\\Plotter/User\\StopBits", as_is, legacy, serial},
    {"parity", "\\Plotter/User\\Parity", as_is, legacy, serial},
    {"file_extension", "\\Plotter/User\\DefaultExtension", as_is, legacy},
    {"plot_width", "\\Plotter/User\\PlotWidth", length, legacy},
    {"plot_height", "\\Plotter/User\\PlotHeight", length, legacy},
    {"extent_width", "\\Plotter/User\\MaxWidth", length, legacy, "most"},
    {"extent_height", "\\Plotter/User\\MaxHeight", length, legacy, "most"},
    {"extent_width", "\\Plotter/User\\UserWidth*", length, legacy},
    {"extent_height", "\\Plotter/User\\UserHeight*", length, legacy},
    {"margin_left", "\\Plotter/User\\WidthOrigin", length, legacy},
    {"margin_bottom", "\\Plotter/User\\HeightOrigin", length, legacy},
    {"long_plot", "\\Plotter/User\\LongPlotSize", length, legacy},
    {"landscape", "\\Plotter/DriverCustom\\dmOrientation", orientation, legacy},
    {"size", "\\Plotter/DriverCustom\\dmFormName", name, legacy},
    {"size_width", "\\Plotter/DriverCustom\\dmPaperWidth", as_is, legacy},
    {"size_height", "\\Plotter/DriverCustom\\dmPaperLength", as_is, legacy},
    {"copies", "\\Plotter/DriverCustom\\dmCopies", as_is, legacy},
    {"duplex", "\\Plotter/DriverCustom\\dmDuplex", as_is, legacy},
    {"collate", "\\Plotter/DriverCustom\\dmCollate", yes_no, legacy},
    {"resolution_x", "\\Plotter/DriverCustom\\dmPrintQuality", as_is, legacy},
    {"resolution_y", "\\Plotter/DriverCustom\\dmYResolution", as_is, legacy},
    {"colour", "\\Plotter/DriverCustom\\dmColor", colour, legacy},
    {"colour_depth", "\\Plotter/DriverCustom\\dmBitsPerPel", as_is, legacy},
    {"model", "\\Plotter/DriverCustom\\dmDeviceName", as_is, legacy},
});

// What the reader of PCP makes.
constexpr std::array plots = std::to_array<Row>({
    {"metric", "\\UNITS", unit, any_case},
    {"family", "\\FAMILY", as_is, zero},
    {"model", "\\MODEL", as_is, zero},
    {"extent_width", "\\SIZE\\*\\X", length, any_case},
    {"extent_height", "\\SIZE\\*\\Y", length, any_case},
    {"rotate", "\\ROTATE", as_is, any_case},
    {"plot_file", "\\PLOT_FILE", as_is, any_case},
    {"fill_correction", "\\FILL_ADJUST", yes_no, any_case},
    {"pen_optimization", "\\OPTIMIZE_LEVEL", as_is, any_case},
    {"pen_width", "\\PEN_WIDTH", length, any_case},
    {"pen_number", "\\*\\PEN_NUMBER", as_is, any_case},
    {"line_type", "\\*\\HW_LINETYPE", as_is, any_case},
    {"pen_speed", "\\*\\PEN_SPEED", as_is, any_case},
    {"pen_width", "\\*\\PEN_WEIGHT", length, any_case},
});

// Numbers that a file counts otherwise than a description.
struct Code {
    std::string_view path;
    std::int32_t file;
    std::int32_t description;
};
constexpr std::array codes = std::to_array<Code>({
    {"\\Plotter/DriverCustom\\dmDuplex", 1, 1}, // none
    {"\\Plotter/DriverCustom\\dmDuplex", 2, 2}, // along the long side
    {"\\Plotter/DriverCustom\\dmDuplex", 3, 4}, // along the short side
    {"\\Plotter/User\\DataBits", 5, 0},
    {"\\Plotter/User\\DataBits", 6, 1},
    {"\\Plotter/User\\DataBits", 7, 2},
    {"\\Plotter/User\\DataBits", 8, 3},
    {"\\Plotter/User\\DataBits", 16, 4},
    {"\\Plotter/User\\StopBits", 1, 0},
    {"\\Plotter/User\\StopBits", 2, 2},
});

struct FormOwner {
    std::string_view path;
    int digit;
};
// Settings that have an owner of their own where Windows keeps them.
constexpr std::array form_owners = std::to_array<FormOwner>(
    {{"\\Plotter/DriverCustom\\dmOrientation", 17}, {"\\Plotter/DriverCustom\\dmFormName", 18}});

struct Quiet {
    std::string_view path;
    std::array<std::string_view, 3> values;
    std::size_t count;
    unsigned flags = any_case;
};
// The defaults of PC2 and CFG say nothing. The first path that matches counts.
constexpr std::array quiet = std::to_array<Quiet>({
    {"\\meta\\toolkit_version", {"0"}, 1, plain},
    {"\\PlotDriver\\*", {"", "0"}, 2},
    {"\\Plotter/Device\\*", {"", "0", "00"}, 3},
    {"\\Plotter/Device/*\\*", {"0"}, 1},
    {"\\Plotter/Port\\Link", {"-1"}, 1},
    {"\\Plotter/Port\\*", {"", "0", "00"}, 3},
    {"\\Plotter/User\\*", {"", "0"}, 2},
    {"\\Plotter/DriverCustom\\fDither", {"1"}, 1},
    {"\\Plotter/DriverCustom\\*", {"", "0"}, 2},
    {"\\Plotter/DriverCustom/pen\\*", {"0"}, 1},
});

SettingPath path_of(const Row& row) {
    SettingPath path;
    path.setting = row.setting;
    path.path = row.path;
    path.key = row.key;
    path.form = row.form;
    path.zero_is_unset = (row.flags & zero) != 0;
    path.any_case = (row.flags & any_case) != 0;
    path.is_default = (row.flags & by_default) != 0;
    for (const Code& code : codes) {
        if (code.path == row.path) path.codes.emplace(code.file, code.description);
    }
    for (const FormOwner& owner : form_owners) {
        if (owner.path != row.path) continue;
        path.owner = "\\media\\ui_owner";
        path.owner_digit = owner.digit;
    }
    return path;
}

CompatibilityMap make_map() {
    CompatibilityMap map;
    for (const Row& row : common) {
        map.settings.push_back(path_of(row));
    }
    for (const Row& row : plotters) {
        map.settings.push_back(path_of(row));
    }
    for (const Row& row : plots) {
        map.settings.push_back(path_of(row));
    }
    for (const Quiet& row : quiet) {
        map.quiet.push_back({std::string(row.path),
                             {row.values.begin(), row.values.begin() + row.count},
                             (row.flags & any_case) != 0});
    }
    return map;
}

} // namespace

const CompatibilityMap& built_in_map() {
    static const CompatibilityMap map = make_map();
    return map;
}

} // namespace pm::kit

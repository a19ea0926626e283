#include "kit/devices/small_device.h"
#include <gtest/gtest.h>
#include <limits>

// What the rules say where they can't compare.
namespace {

using namespace pm::test;

const Item of_mono{"\\res_color_mem\\default_name", text("Mono")};
const Item of_a4{"\\media\\default_size", text("A4")};
const Item of_a4_wide{"\\media\\default_size", text("A4_wide")}; // whose description has no printable bounds
const Item metric{"\\Plotter/User\\IsMetric", 1};

// The first item is what is told of.
struct Silence {
    std::vector<Item> asked;
    const char* gone; // from the description; null for nothing
    const char* told; // "\path: what"
};

std::string shown(const pm::Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "true" : "false";
    return std::get<std::string>(value);
}

void expect_silences(std::initializer_list<Silence> rows, const pm::kit::CompatibilityOptions& options = {}) {
    for (const Silence& row : rows) {
        pm::Tree device = small_device();
        if (row.gone != nullptr) device.erase(row.gone);
        const std::string told(row.told);
        const std::size_t cut = told.find(": ");
        const Lines expected{std::string("warning ") + row.asked[0].first + " = " +
                             shown(row.asked[0].second) + " @ " + told.substr(0, cut) +
                             " = : The description tells no " + told.substr(cut + 2) + "."};
        EXPECT_EQ(answer_of("unspoken", tree_of(row.asked), device, options).findings, expected);
    }
}

TEST(Silence, OfMediaIsUnspoken) {
    const Item source{"\\media\\default_source", text("Roll")};
    expect_silences({
        {{source}, "\\media\\source", "\\media\\source: media sources"},
        {{{"\\media\\default_destination", text("Basket")}},
         "\\media\\destination",
         "\\media\\destination: media destinations"},
        {{{"\\media\\default_type", text("Plain")}}, "\\media\\type", "\\media\\type: media types"},
        {{{"\\media\\default_duplexing_mode", 1}},
         "\\media\\duplexing_modes",
         "\\media\\duplexing_modes: duplexing mode"},
        {{{"\\media\\default_selection_method", 1}},
         "\\media\\selection_methods",
         "\\media\\selection_methods: selection method"},
        {{{"\\media\\source\\Roll\\feed", 3}},
         "\\media\\source\\Roll\\feed",
         "\\media\\source\\Roll\\feed: feed of this source"},
        {{{"\\media\\source\\Roll\\width", 300}},
         "\\media\\source\\Roll\\entry\\Wide\\width",
         "\\media\\source\\Roll\\entry\\Wide\\width: width of this entry"},
        {{of_a4}, "\\media\\source\\Roll\\entry", "\\media\\source\\Roll\\entry: entries of this source"},
        {{source}, "\\media\\source\\Roll\\entry", "\\media\\source\\Roll\\entry: entries of this source"},
    });
}

TEST(Silence, OfLengthsIsUnspoken) {
    const Item width{"\\media\\size\\7\\width", 210};
    const Item entry{"\\media\\size\\7\\name", text("A4")};
    const Item plot{"\\Plotter/User\\PlotWidth", 100};
    const Item plot_height{"\\Plotter/User\\PlotHeight", 100};
    const Item part{"\\media\\printable_area", 1};
    const Item margin{"\\media\\margin_top", 20};
    const char* const no_bounds = "\\media\\description\\0: bounds of this media size";
    const char* const no_part = "\\media\\description\\1\\printable_area: printable part of this media size";
    expect_silences({
        {{width, entry}, "\\media\\description\\0", "\\media\\size\\0: bounds of this media size"},
        {{width, entry}, "\\media\\description\\0\\media_bounds_urx", no_bounds},
        {{width, entry}, "\\media\\description\\0\\media_bounds_ury", no_bounds},
        {{width}, "\\media\\size_max_x", "\\media\\size_max_x: largest size"},
        {{width}, "\\media\\size_max_y", "\\media\\size_max_x: largest size"},
        {{{"\\media\\size\\7\\height", 210}}, "\\media\\size_max_x", "\\media\\size_max_y: largest size"},
        {{{"\\Plotter/User\\LongPlotSize", 9}},
         "\\media\\max_roll_height",
         "\\media\\max_roll_height: limits of it"},
        {{plot, metric}, "\\media\\description", "\\media\\description: printable bounds"},
        {{plot, metric, of_a4_wide}, nullptr, "\\media\\size\\1: printable bounds of this media size"},
        {{plot_height, metric, of_a4},
         "\\media\\description\\0\\printable_bounds_urx",
         "\\media\\size\\0: printable bounds of this media size"},
        {{plot, metric, of_a4},
         "\\media\\size\\0\\media_description_name",
         "\\media\\size\\0: printable bounds of this media size"},
        {{part, of_a4_wide}, nullptr, no_part},
        {{part}, "\\media\\default_size", "\\media\\description: printable part of this media size"},
        {{margin}, "\\media\\default_size", "\\media\\description: printable bounds of this media size"},
        {{margin, of_a4_wide},
         nullptr,
         "\\media\\description\\1\\printable_bounds_ury: printable bounds of this media size"},
        {{margin},
         "\\media\\description\\0\\printable_bounds_lly",
         "\\media\\description\\0\\printable_bounds_ury: printable bounds of this media size"},
        {{margin},
         "\\media\\description\\0\\media_bounds_ury",
         "\\media\\description\\0\\printable_bounds_ury: printable bounds of this media size"},
    });
}

TEST(Silence, OfRotationsIsUnspoken) {
    const Item landscape{"\\media\\landscape", true};
    expect_silences({
        {{landscape}, "\\media\\size", "\\media\\size: rotation of its media sizes"},
        {{landscape, of_a4},
         "\\media\\size\\0\\landscape_mode",
         "\\media\\size\\0\\landscape_mode: rotation of this media size"},
        {{{"\\ROTATE", 90}}, "\\media\\size", "\\media\\landscape: rotation of its media sizes"},
    });
}

TEST(Silence, OfColoursIsUnspoken) {
    const Item dots{"\\res_color_mem\\resolution_x", 600};
    const char* const modes = "\\res_color_mem\\rcm_list";
    const char* const of_mono_list = "\\res_color_mem\\rcm_list\\Mono\\resolution_list";
    expect_silences({
        {{of_mono}, modes, "\\res_color_mem\\rcm_list: colour modes"},
        {{{"\\Plotter/DriverCustom\\dmColor", text("mono")}},
         modes,
         "\\res_color_mem\\rcm_list: colour modes"},
        {{dots}, modes, "\\res_color_mem\\rcm_list: resolutions"},
        {{dots, of_mono}, of_mono_list, "\\res_color_mem\\rcm_list\\Mono\\resolution_list: resolutions"},
        {{dots, of_mono},
         "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\physical_resolution_y",
         "\\res_color_mem\\rcm_list\\Mono\\resolution_list: resolutions"},
        {{{"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("300_dpi")}},
         of_mono_list,
         "\\res_color_mem\\rcm_list\\Mono\\resolution_list: resolutions of this colour mode"},
        {{{"\\res_color_mem\\installed_memory", 64}},
         "\\res_color_mem\\mem_area_list",
         "\\res_color_mem\\mem_area_list: sizes of memory"},
    });
}

TEST(Silence, OfOutputAndPensIsUnspoken) {
    expect_silences({
        {{{"\\io\\serial\\baud_rate", 9600}},
         "\\io\\method\\4\\baudrates",
         "\\io\\method\\4\\baudrates: baud rates of this method"},
        {{{"\\io\\serial\\protocol", text("8N1")}},
         "\\io\\method\\4\\protocol",
         "\\io\\method\\4\\protocol: protocols of this method"},
        {{{"\\Plotter/User\\DataBits", 8}},
         "\\io\\method\\4\\protocol",
         "\\io\\method\\4\\protocol: protocols of this method"},
        {{{"\\io\\serial\\handshake", 2}},
         "\\io\\method\\4\\handshakes",
         "\\io\\method\\4\\handshakes: handshake"},
        {{{"\\io\\output_timeout", 5}}, "\\io\\default_type", "\\io\\method: methods of output"},
        {{{"\\1\\HW_LINETYPE", 2}}, "\\linetype\\capabilities", "\\linetype\\capabilities: line types"},
        {{{"\\3\\PEN_NUMBER", 2}}, "\\physical_pen\\max_npens", "\\physical_pen\\max_npens: limits of it"},
        {{{"\\init_term\\termination", text("x")}},
         "\\init_term\\abilities",
         "\\init_term\\abilities: start strings"},
    });
}

TEST(Silence, OfTheModelIsUnspoken) {
    expect_silences({
        {{{"\\MODEL", text("DX-1")}}, "\\meta", "\\meta\\canonical_model_name: model"},
        {{{"\\FAMILY", text("DX")}}, nullptr, "\\meta\\canonical_family_name: family"},
        {{{"\\meta\\driver_version", text("1")}}, nullptr, "\\meta\\driver_version: version of its driver"},
    });
}

// A text where a number belongs, and what it is no one of.
TEST(Unreadable, IsWhatIsInWords) {
    const struct {
        std::vector<Item> asked;
        const char* wanted;
    } rows[] = {
        {{{"\\media\\default_duplexing_mode", text("some")}}, "integer"},
        {{{"\\media\\default_selection_method", text("some")}}, "integer"},
        {{{"\\media\\size\\7\\width", text("some")}, {"\\media\\size\\7\\name", text("A4")}}, "number"},
        {{{"\\media\\size\\7\\width", text("some")}}, "number"},
        {{{"\\Plotter/User\\LongPlotSize", text("some")}}, "number"},
        {{{"\\Plotter/User\\PlotHeight", text("some")}}, "number"},
        {{{"\\media\\printable_area", text("some")}}, "number"},
        {{{"\\media\\margin_left", text("some")}}, "number"},
        {{{"\\media\\landscape", text("tilted")}}, "rotation"},
        {{{"\\ROTATE", text("some")}}, "number"},
        {{{"\\media\\finishing\\collate", text("some")}}, "truth value"},
        {{{"\\media\\source\\Roll\\feed", text("some")}}, "integer"},
        {{{"\\media\\source\\Roll\\width", text("some")}}, "number"},
        {{{"\\res_color_mem\\resolution_x", text("some")}}, "resolution"},
        {{{"\\res_color_mem\\resolution_y", text("some")}}, "resolution"},
        {{{"\\res_color_mem\\resolution_x", -600}}, "resolution"},
        {{{"\\res_color_mem\\resolution_y", text("some")}, {"\\res_color_mem\\resolution_x", 600}},
         "resolution"},
        {{{"\\Plotter/DriverCustom\\dmColor", text("some")}}, "choice of colour"},
        {{{"\\res_color_mem\\installed_memory", text("some")}}, "number"},
        {{{"\\io\\output_timeout", text("some")}}, "number"},
        {{{"\\io\\serial\\baud_rate", text("some")}}, "number"},
        {{{"\\io\\serial\\handshake", text("some")}}, "integer"},
        {{{"\\Plotter/User\\Parity", text("some")}}, "integer"},
        {{{"\\1\\HW_LINETYPE", text("some")}}, "integer"},
        {{{"\\1\\PEN_WEIGHT", text("some")}}, "number"},
    };
    for (const auto& [asked, wanted] : rows) {
        EXPECT_EQ(answer_of("unspoken", tree_of(asked), small_device()).findings,
                  Lines{std::string("warning ") + asked[0].first + " = " + shown(asked[0].second) +
                        " @  = : The value is no " + wanted + ", so that it can't be compared."});
    }
}

TEST(Unreadable, IsWhatIsNoNumberThoughItsTypeIs) {
    const struct {
        const char* path;
        const char* wanted;
    } rows[] = {{"\\media\\copies", "number"},
                {"\\media\\printable_area", "number"},
                {"\\media\\margin_left", "number"},
                {"\\media\\size\\7\\width", "number"},
                {"\\ROTATE", "number"},
                {"\\FILL_ADJUST", "truth value"},
                {"\\physical_pen\\table\\1\\width", "number"},
                {"\\res_color_mem\\resolution_x", "resolution"},
                {"\\io\\serial\\baud_rate", "number"}};
    for (const auto& [path, wanted] : rows) {
        EXPECT_EQ(found("unspoken", {{path, std::numeric_limits<double>::quiet_NaN()}}),
                  Lines{std::string("warning ") + path + " = nan @  = : The value is no " + wanted +
                        ", so that it can't be compared."});
    }
}

TEST(Silence, OfADefaultIsUnspoken) {
    const char* const none = "\\media\\default_destination: default destination";
    expect_silences({
        {{{"\\media\\finishing\\cutting", text("Pages")}}, "\\media\\default_destination", none},
        {{{"\\media\\finishing\\collate", true}}, "\\media\\default_destination", none},
        {{{"\\media\\source\\Roll\\width", 300}},
         "\\media\\source\\Roll\\default_entry",
         "\\media\\source\\Roll\\default_entry: default entry of this source"},
    });
}

TEST(Silence, OfADefaultThatTheDescriptionHasNotIsUnspoken) {
    const char* const basket = "\\media\\destination\\Basket";
    const char* const none = "\\media\\default_destination: destination \"Basket\", which is its default";
    expect_silences({{{{"\\media\\finishing\\cutting", text("Pages")}}, basket, none},
                     {{{"\\media\\finishing\\collate", true}}, basket, none}});
}

TEST(Silence, OfTheChoiceOfWhatNamesNoneIsUnspoken) {
    const auto map = pm::kit::load_map(R"({"settings": [
        {"setting": "loaded", "path": "\\loaded"}, {"setting": "feed", "path": "\\feed"},
        {"setting": "loaded_width", "path": "\\width"}, {"setting": "memory_area", "path": "\\memory"},
        {"setting": "resolution", "path": "\\dots"}]})");
    const Item memory{"\\memory", text("Small")};
    const Item dots{"\\dots", text("600_dpi")};
    const char* const mode = "\\res_color_mem\\rcm_list\\Colour";
    const char* const no_mode = "\\res_color_mem\\default_name: default colour mode";
    const char* const mode_gone =
        "\\res_color_mem\\default_name: colour mode \"Colour\", which is its default";
    expect_silences({{{{"\\loaded", text("Wide")}},
                      "\\media\\default_source",
                      "\\media\\default_source: default media source"},
                     {{{"\\feed", 3}},
                      "\\media\\source\\Roll",
                      "\\media\\default_source: media source \"Roll\", which is its default"},
                     {{{"\\width", 300}}, "\\media\\source", "\\media\\source: media sources"},
                     {{memory}, "\\res_color_mem\\default_name", no_mode},
                     {{memory}, mode, mode_gone},
                     {{memory}, "\\res_color_mem\\rcm_list", "\\res_color_mem\\rcm_list: colour modes"},
                     {{memory},
                      "\\res_color_mem\\rcm_list\\Colour\\default_resolution",
                      "\\res_color_mem\\rcm_list\\Colour\\default_resolution: default resolution of this "
                      "colour mode"},
                     {{memory},
                      "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi",
                      "\\res_color_mem\\rcm_list\\Colour\\default_resolution: resolution \"600_dpi\", which "
                      "is its default"},
                     {{dots}, "\\res_color_mem\\default_name", no_mode},
                     {{dots}, mode, mode_gone}},
                    {.map = &map});
}

// The choice is what is found.
TEST(Silence, OfWhatTheConfigurationChoosesIsNotTold) {
    const auto map = pm::kit::load_map(R"({"settings": [{"setting": "memory_area", "path": "\\memory"}]})");
    const pm::Tree asked = tree_of({{"\\memory", text("Small")}, {"\\res_color_mem\\resolution_x", 7}});
    EXPECT_EQ(answer_of("unspoken", asked, small_device(), {.map = &map}).findings, Lines());
    EXPECT_EQ(found("unspoken", {{"\\media\\finishing\\cutting", text("Pages")},
                                 {"\\media\\default_destination", text("Bin")}}),
              Lines());
}

// Below an item that the description hasn't.
TEST(Unspoken, IsADefaultOfWhatTheDescriptionHasNot) {
    const Item rows[] = {
        {"\\media\\destination\\Bin\\default_cutting", text("Pages")},
        {"\\media\\source\\Bin\\entry\\Wide\\default_size", text("A4")},
        {"\\media\\source\\Roll\\entry\\Sheet\\default_size", text("A4")},
        {"\\res_color_mem\\rcm_list\\Gray\\default_resolution", text("300_dpi")},
        {"\\res_color_mem\\rcm_list\\Gray\\resolution_list\\300_dpi\\default_mem_area", text("Small")},
        {"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\900_dpi\\default_mem_area", text("Small")},
    };
    for (const Item& item : rows) {
        EXPECT_EQ(found("unspoken", {item}),
                  Lines{std::string("note ") + item.first + " = " + shown(item.second) +
                        " @  = : Nothing in the description speaks of it."});
    }
}

} // namespace

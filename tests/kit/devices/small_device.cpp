#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace pm::test {

namespace {

void add_media(Tree& tree) {
    add(tree, {
                  {"\\media\\abilities", text("5")},
                  {"\\media\\max_number_of_copies", 9},
                  {"\\media\\duplexing_modes", 3},
                  {"\\media\\selection_methods", 1},
                  {"\\media\\default_source", text("Roll")},
                  {"\\media\\default_size", text("A4")},
                  {"\\media\\default_destination", text("Basket")},
                  {"\\media\\default_type", text("Plain")},
                  {"\\media\\size_max_x", 500.0},
                  {"\\media\\size_max_y", 300.0},
                  {"\\media\\max_roll_height", 1000.0},
                  {"\\media\\landscape", true},
                  {"\\media\\size\\0\\name", text("A4")},
                  {"\\media\\size\\0\\localized_name", text("DIN A4")},
                  {"\\media\\size\\0\\landscape_mode", false},
                  {"\\media\\size\\0\\media_description_name", text("A4_area")},
                  {"\\media\\size\\1\\name", text("A4_wide")},
                  {"\\media\\size\\1\\localized_name", text("DIN A4 quer")},
                  {"\\media\\size\\1\\landscape_mode", true},
                  {"\\media\\size\\1\\media_description_name", text("A4_wide_area")},
                  {"\\media\\size\\2\\name", text("Free")},
                  {"\\media\\size\\2\\localized_name", text("Frei")},
                  {"\\media\\size\\2\\landscape_mode", false},
                  {"\\media\\size\\2\\media_description_name", text("Free_area")},
                  {"\\media\\description\\0\\name", text("A4_area")},
                  {"\\media\\description\\0\\dimensional", true},
                  {"\\media\\description\\0\\printable_area", 0.9},
                  {"\\media\\description\\0\\media_bounds_urx", 210.0},
                  {"\\media\\description\\0\\media_bounds_ury", 297.0},
                  {"\\media\\description\\0\\printable_bounds_llx", 5.0},
                  {"\\media\\description\\0\\printable_bounds_lly", 6.0},
                  {"\\media\\description\\0\\printable_bounds_urx", 203.0},
                  {"\\media\\description\\0\\printable_bounds_ury", 289.0},
                  {"\\media\\description\\1\\name", text("A4_wide_area")},
                  {"\\media\\description\\1\\media_bounds_urx", 297.0},
                  {"\\media\\description\\1\\media_bounds_ury", 210.0},
                  {"\\media\\description\\2\\name", text("Free_area")},
                  {"\\media\\description\\2\\dimensional", false},
                  {"\\media\\description\\2\\media_bounds_urx", 300.0},
                  {"\\media\\description\\2\\media_bounds_ury", 500.0},
                  {"\\media\\description\\2\\printable_bounds_llx", 10.0},
                  {"\\media\\description\\2\\printable_bounds_lly", 10.0},
                  {"\\media\\description\\2\\printable_bounds_urx", 290.0},
                  {"\\media\\description\\2\\printable_bounds_ury", 490.0},
                  {"\\media\\type\\0\\name", text("Plain")},
                  {"\\media\\type\\0\\max_resolution_x", 600.0},
                  {"\\media\\type\\0\\max_resolution_y", 600.0},
                  {"\\media\\type\\1\\name", text("Photo")},
                  {"\\media\\type\\1\\localized_name", text("Fotopapier")},
                  {"\\media\\type\\1\\max_resolution_x", 1200.0},
                  {"\\media\\type\\1\\max_resolution_y", 1200.0},
              });
}

void add_sources(Tree& tree) {
    add(tree, {
                  {"\\media\\source\\Roll\\localized_name", text("Rolle")},
                  {"\\media\\source\\Roll\\default_entry", text("Wide")},
                  {"\\media\\source\\Roll\\feed", 3},
                  {"\\media\\source\\Roll\\entry\\Wide\\localized_name", text("breit")},
                  {"\\media\\source\\Roll\\entry\\Wide\\default_size", text("A4")},
                  {"\\media\\source\\Roll\\entry\\Wide\\width", 300.0},
                  {"\\media\\source\\Roll\\entry\\Wide\\size_names\\0\\name", text("A4")},
                  {"\\media\\source\\Roll\\entry\\Wide\\size_names\\1\\name", text("Free")},
                  {"\\media\\source\\Roll\\entry\\Narrow\\localized_name", text("schmal")},
                  {"\\media\\source\\Roll\\entry\\Narrow\\default_size", text("A4")},
                  {"\\media\\source\\Roll\\entry\\Narrow\\width", 210.0},
                  {"\\media\\source\\Roll\\entry\\Narrow\\size_names\\0\\name", text("A4")},
                  {"\\media\\source\\Tray\\localized_name", text("Fach")},
                  {"\\media\\source\\Tray\\default_entry", text("Sheet")},
                  {"\\media\\source\\Tray\\feed", 2},
                  {"\\media\\source\\Tray\\entry\\Sheet\\localized_name", text("Bogen")},
                  {"\\media\\source\\Tray\\entry\\Sheet\\default_size", text("A4_wide")},
                  {"\\media\\source\\Tray\\entry\\Sheet\\width", 297.0},
                  {"\\media\\source\\Tray\\entry\\Sheet\\size_names\\0\\name", text("A4_wide")},
                  {"\\media\\destination\\Basket\\localized_name", text("Korb")},
                  {"\\media\\destination\\Basket\\default_cutting", text("Pages")},
                  {"\\media\\destination\\Basket\\cutting\\Pages\\localized_name", text("Seiten")},
                  {"\\media\\destination\\Basket\\cutting\\Pages\\when", 3},
                  {"\\media\\destination\\Finisher\\localized_name", text("Hefter")},
                  {"\\media\\destination\\Finisher\\cutting\\Pages\\when", 3},
                  {"\\media\\destination\\Finisher\\cutting\\Sets\\localized_name", text("Saetze")},
                  {"\\media\\destination\\Finisher\\cutting\\Sets\\when", 2},
                  {"\\media\\destination\\Finisher\\collating\\Sets\\collating_type", 1},
                  {"\\media\\destination\\Finisher\\folding\\Z\\when", 3},
                  {"\\media\\destination\\Finisher\\stapling\\Corner\\when", 2},
                  {"\\media\\destination\\Finisher\\stapling\\Bare\\when", 0},
              });
}

void add_colours(Tree& tree) {
    add(tree,
        {
            {"\\res_color_mem\\default_name", text("Colour")},
            {"\\res_color_mem\\memory_changes_print_area", true},
            {"\\res_color_mem\\dithering_list\\Fine\\localized_name", text("fein")},
            {"\\res_color_mem\\dithering_list\\Coarse\\localized_name", text("grob")},
            {"\\res_color_mem\\mem_area_list\\Small\\localized_name", text("64 MB")},
            {"\\res_color_mem\\mem_area_list\\Small\\device_memory", 64},
            {"\\res_color_mem\\mem_area_list\\Small\\printable_area", 300.0},
            {"\\res_color_mem\\mem_area_list\\Large\\localized_name", text("256 MB")},
            {"\\res_color_mem\\mem_area_list\\Large\\device_memory", 256},
            {"\\res_color_mem\\mem_area_list\\Large\\printable_area", 600.0},
            {"\\res_color_mem\\rcm_list\\Colour\\localized_name", text("bunt")},
            {"\\res_color_mem\\rcm_list\\Colour\\color_depth", 24},
            {"\\res_color_mem\\rcm_list\\Colour\\color_system", 1},
            {"\\res_color_mem\\rcm_list\\Colour\\default_resolution", text("600_dpi")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\localized_name", text("mittel")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\addressable_resolution_x", 600.0},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\addressable_resolution_y", 600.0},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area", text("Small")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area\\0\\name", text("Small")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area\\1\\name", text("Large")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_mem\\dithering_list",
             text("Fine")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\physical_resolution_x", 1200.0},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\physical_resolution_y", 1200.0},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\default_mem_area", text("Large")},
            {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\mem_area\\0\\name",
             text("Large")},
            {"\\res_color_mem\\rcm_list\\Mono\\localized_name", text("schwarz")},
            {"\\res_color_mem\\rcm_list\\Mono\\color_depth", 1},
            {"\\res_color_mem\\rcm_list\\Mono\\color_system", 2},
            {"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("300_dpi")},
            {"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\physical_resolution_x", 300.0},
            {"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\physical_resolution_y", 300.0},
            {"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\default_mem_area", text("Small")},
            {"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\mem_area\\0\\name", text("Small")},
        });
}

void add_pens(Tree& tree) {
    add(tree, {
                  {"\\physical_pen\\max_npens", 8},
                  {"\\physical_pen\\min_width", double{0.1F}},
                  {"\\physical_pen\\max_width", double{1.4F}},
                  {"\\physical_pen\\programmable_widths", true},
                  {"\\physical_pen\\min_speed", 10.0},
                  {"\\physical_pen\\max_speed", 500.0},
                  {"\\physical_pen\\max_optimization", 2},
                  {"\\physical_pen\\area_fill_corr", false},
                  {"\\linetype\\capabilities", text("50000")}, // types 0 and 2
                  {"\\linetype\\font\\2\\width", double{0.2F}},
              });
}

void add_io(Tree& tree) {
    add(tree, {
                  {"\\io\\default_type", 4},
                  {"\\io\\default_plot_file_extension", text("plt")},
                  {"\\io\\method\\4\\min_output_timeout", 5},
                  {"\\io\\method\\4\\max_output_timeout", 300},
                  {"\\io\\method\\4\\min_input_timeout", 5},
                  {"\\io\\method\\4\\max_input_timeout", 200},
                  {"\\io\\method\\4\\handshakes", 6},
                  {"\\io\\method\\4\\baudrates\\0\\rate", 9600},
                  {"\\io\\method\\4\\baudrates\\1\\rate", 19200},
                  {"\\io\\method\\4\\protocol\\0\\canonical_name", text("8N1")},
                  {"\\io\\method\\4\\protocol\\0\\localized_name", text("acht Bits")},
                  {"\\io\\method\\4\\protocol\\0\\data_bits", 3},
                  {"\\io\\method\\4\\protocol\\0\\stop_bits", 0},
                  {"\\io\\method\\4\\protocol\\0\\parity", 0},
                  {"\\io\\method\\4\\protocol\\1\\canonical_name", text("7E1")},
                  {"\\io\\method\\4\\protocol\\1\\data_bits", 2},
                  {"\\io\\method\\4\\protocol\\1\\stop_bits", 0},
                  {"\\io\\method\\4\\protocol\\1\\parity", 2},
                  {"\\io\\method\\6\\caps_type", 0},
                  {"\\init_term\\abilities", text("505")},
              });
}

void add_the_rest(Tree& tree) {
    add(tree, {
                  {"\\meta\\canonical_model_name", text("DX-1")},
                  {"\\meta\\localized_model_name", text("Draftex 1")},
                  {"\\custom_name\\Fan_Speed\\localized_name", text("Luefter")},
                  {"\\custom_name\\Fan_Speed\\data_type", 1},
                  {"\\custom_name\\Fan_Speed\\range_type", true},
                  {"\\custom_name\\Fan_Speed\\range_min", 0.0},
                  {"\\custom_name\\Fan_Speed\\range_max", 100.0},
                  {"\\custom_name\\Ink\\localized_name", text("Tinte")},
                  {"\\custom_name\\Ink\\data_type", 0},
                  {"\\custom_name\\Ink\\range_type", false},
                  {"\\custom_name\\Ink\\value_list\\0\\value", text("Off")},
                  {"\\custom_name\\Ink\\value_list\\1\\value", text("Low")},
              });
}

} // namespace

Tree small_device() {
    Tree tree;
    add_media(tree);
    add_sources(tree);
    add_colours(tree);
    add_pens(tree);
    add_io(tree);
    add_the_rest(tree);
    return tree;
}

Lines findings_of(const std::vector<kit::Finding>& findings, std::string_view rule) {
    Lines lines;
    for (const kit::Finding& finding : findings) {
        if (finding.rule != rule) continue;
        std::string line = std::string(kit::severity_name(finding.severity)) + ' ' +
                           finding.configuration_path + " = " + finding.configured + " @ " +
                           finding.description_path + " = " + finding.described + ": " + finding.message;
        std::string offers;
        for (const kit::Offer& offer : finding.offers) {
            offers +=
                (offers.empty() ? " (" : "; ") + offer.value + (offer.text.empty() ? "" : ", " + offer.text);
        }
        lines.push_back(line + offers + (offers.empty() ? "" : ")"));
    }
    return lines;
}

Lines looks_of(const std::vector<kit::Look>& looks, std::string_view rule) {
    Lines lines;
    for (const kit::Look& look : looks) {
        if (look.rule != rule || look.outcome == "not set") continue;
        lines.push_back(look.outcome + ' ' + look.configuration_path + " @ " + look.description_path);
    }
    return lines;
}

Answer answer_of(std::string_view rule, const Tree& configuration, const Tree& device,
                 const kit::CompatibilityOptions& options) {
    const auto explained = kit::explain_compatibility(configuration, device, options);
    return {findings_of(explained.findings, rule), looks_of(explained.looks, rule)};
}

void expect_said(std::string_view rule, const std::vector<Case>& cases,
                 const kit::CompatibilityOptions& options) {
    for (const Case& row : cases) {
        Tree device = small_device();
        for (const char* const path : row.gone)
            device.erase(path);
        for (const auto& [path, value] : row.more)
            device.set(path, value);
        auto [said, looks] = answer_of(rule, tree_of(row.asked), device, options);
        for (const std::string& look : looks) {
            if (!look.starts_with("found ")) said.push_back(look);
        }
        EXPECT_EQ(said, row.said) << "row " << &row - cases.data();
    }
}

Lines found(std::string_view rule, std::initializer_list<Item> configuration) {
    return answer_of(rule, tree_of(configuration), small_device()).findings;
}

Lines looked(std::string_view rule, std::initializer_list<Item> configuration) {
    return answer_of(rule, tree_of(configuration), small_device()).looks;
}

} // namespace pm::test

#include "pdt/misc_info_rows.h"

// The data of the form, a line each; makers of rows keep them short.
std::span<const PM_PDTFile::MiscRow> PM_PDTFile::MiscRow::all() {
    using enum CellForm;
    using pm::Keywords;
    struct Make {
        static constexpr MiscRow cell(const char16_t* item, CellForm form, Set set = Set::pens,
                                      Marks marks = {}) {
            return {Form::cell, set, marks, item, form};
        }
        static constexpr MiscRow marking(Form form, Set set, Marks marks, const char16_t* item = nullptr) {
            return {form, set, marks, item};
        }
        static constexpr MiscRow coded(Form form, const char16_t* item, Keywords keywords, Set set,
                                       Marks marks, std::int32_t miss = 0) {
            return {form, set, marks, item, text, keywords, miss};
        }
        static constexpr MiscRow owners(Set set, Keywords keywords, int owner,
                                        const char16_t* item = nullptr) {
            return {Form::owners, set, {}, item, text, keywords, 0, owner};
        }
    };
    static constexpr MiscRow rows[] = {
        // 1 and 2, the headings
        {},
        {},
        // 3
        Make::marking(Form::pen_count, Set::pens, {0, 16, 5}, u"\\physical_pen\\max_npens"),
        Make::cell(u"\\physical_pen\\default_npens", integer, Set::pens, {13}),
        Make::cell(u"\\physical_pen\\max_speed", narrow_number, Set::pens, {10}),
        Make::cell(u"\\physical_pen\\default_speed", narrow_number, Set::pens, {12, 4}),
        Make::coded(Form::keyword_list, u"\\media\\selection_methods", Keywords::selection_method, Set::media,
                    {0}),
        Make::coded(Form::keyword_list, u"\\media\\default_selection_method", Keywords::selection_method,
                    Set::media, {45}),
        Make::cell(u"\\media\\default_longplot_reduction", narrow_number, Set::media, {25}),
        // 10
        Make::cell(u"\\media\\max_number_of_copies", integer, Set::media, {39}),
        Make::coded(Form::keyword_list, u"\\media\\duplexing_modes", Keywords::duplexing_mode, Set::media,
                    {22}),
        Make::coded(Form::keyword_list, u"\\media\\default_duplexing_mode", Keywords::duplexing_mode,
                    Set::media, {46}),
        Make::marking(Form::yes, Set::start_strings, {0}),
        Make::marking(Form::yes, Set::start_strings, {1}),
        Make::marking(Form::yes, Set::start_strings, {2}),
        Make::cell(u"\\meta\\canonical_family_name", text),
        Make::cell(u"\\physical_pen\\programmable_widths", any_case_yes, Set::pens, {17}),
        Make::cell(u"\\physical_pen\\programmable_speeds", any_case_yes, Set::pens, {18}),
        Make::cell(u"\\physical_pen\\hardware_fills", any_case_yes, Set::pens, {1}),
        // 20
        Make::cell(u"\\physical_pen\\area_fill_corr", any_case_yes, Set::pens, {2}),
        Make::cell(u"\\physical_pen\\max_width", narrow_number, Set::pens, {8}),
        Make::cell(u"\\physical_pen\\min_width", narrow_number, Set::pens, {7}),
        Make::cell(u"\\physical_pen\\min_speed", narrow_number, Set::pens, {9}),
        Make::coded(Form::keyword, u"\\physical_pen\\max_optimization", Keywords::pen_optimization, Set::pens,
                    {6}),
        Make::cell(u"\\physical_pen\\default_width", narrow_number, Set::pens, {11, 3}),
        Make::coded(Form::keyword, u"\\physical_pen\\default_optimization", Keywords::pen_optimization,
                    Set::pens, {14}),
        // 27 and 28
        {},
        {},
        Make::cell(u"\\res_color_mem\\memory_changes_print_area", exact_yes, Set::res_color_mem, {18}),
        // 30
        Make::cell(u"\\res_color_mem\\default_name", name, Set::res_color_mem, {22}),
        Make::cell(u"\\media\\default_source", name, Set::media, {40}),
        Make::cell(u"\\media\\default_size", name, Set::media, {34}),
        Make::cell(u"\\media\\default_destination", name, Set::media, {42}),
        Make::cell(u"\\media\\default_type", name, Set::media, {43}),
        {},
        Make::cell(u"\\media\\mediacopies", exact_yes, Set::media, {23}),
        {},
        Make::cell(u"\\meta\\driver_version", text),
        Make::cell(u"\\meta\\canonical_model_name", text),
        // 40
        Make::cell(u"\\media\\size_max_x", number),
        Make::cell(u"\\media\\size_max_y", number),
        Make::cell(u"\\media\\max_roll_height", number, Set::media, {50}),
        Make::coded(Form::linetypes, u"\\linetype\\abilities", Keywords::linetype_user_flags, Set::linetypes,
                    {}),
        // 44 to 47
        Make::owners(Set::start_string_owners, Keywords::init_term_user_flags, 0),
        Make::owners(Set::start_string_owners, Keywords::init_term_user_flags, 1),
        Make::owners(Set::start_string_owners, Keywords::init_term_user_flags, 2),
        Make::owners(Set::start_string_owners, Keywords::init_term_user_flags, 3, u"\\init_term\\ui_owner"),
        // 48 to 51
        Make::owners(Set::pen_owners, Keywords::pen_user_flags, 0),
        Make::owners(Set::pen_owners, Keywords::pen_user_flags, 1),
        Make::owners(Set::pen_owners, Keywords::pen_user_flags, 2),
        Make::owners(Set::pen_owners, Keywords::pen_user_flags, 3, u"\\physical_pen\\ui_owner"),
        // 52 to 55
        Make::owners(Set::res_color_mem_owners, Keywords::res_color_mem_user_flags, 0),
        Make::owners(Set::res_color_mem_owners, Keywords::res_color_mem_user_flags, 1),
        Make::owners(Set::res_color_mem_owners, Keywords::res_color_mem_user_flags, 2),
        Make::owners(Set::res_color_mem_owners, Keywords::res_color_mem_user_flags, 3,
                     u"\\res_color_mem\\ui_owner"),
        // 56 to 59
        Make::owners(Set::io_owners, Keywords::io_user_flags, 0),
        Make::owners(Set::io_owners, Keywords::io_user_flags, 1),
        Make::owners(Set::io_owners, Keywords::io_user_flags, 2),
        Make::owners(Set::io_owners, Keywords::io_user_flags, 3, u"\\io\\ui_owner"),
        // 60 to 63
        Make::owners(Set::media_owners, Keywords::media_user_flags, 0),
        Make::owners(Set::media_owners, Keywords::media_user_flags, 1),
        Make::owners(Set::media_owners, Keywords::media_user_flags, 2),
        Make::owners(Set::media_owners, Keywords::media_user_flags, 3, u"\\media\\ui_owner"),
        // 64
        Make::coded(Form::keyword_name, u"\\io\\default_type", Keywords::io_type, Set::io, {3}, -1),
        Make::cell(u"\\io\\default_plot_file_extension", text, Set::io, {1}),
        Make::marking(Form::yes, Set::res_color_mem, {15}),
        Make::marking(Form::yes_kept, Set::res_color_mem, {11}),
        Make::marking(Form::yes_at_kept, Set::res_color_mem, {12}),
    };
    static_assert(std::size(rows) == 68);
    return rows;
}

#include "docs/addition.h"
#include "docs/outcome.h"
#include "docs/page.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <pm_test_paths.h>
#include <regex>
#include <sstream>

namespace {

using namespace pm::test;

void load_pc2(PM_Object& object, const std::string& file) {
    std::stringstream stream(file);
    object.load(stream, PM_Object::FILE_PC2, u"\\");
}

const AdditionTo& defaults() {
    static const AdditionTo addition = [] {
        PM_Object plain;
        load_pc2(plain, "PC2Version 2.0\n");
        return AdditionTo(plain);
    }();
    return addition;
}

std::string run_pc2(const std::string& file) {
    return outcome_of([&](PM_Object& object) {
        defaults().load_and_compare(object, [&](PM_Object& each) { load_pc2(each, file); });
    });
}

// Lines of one section; the first of them is line 3 of the file.
std::string run_lines(const std::string& lines) {
    return run_pc2("PC2Version 2.0\n[Plotter/DriverCustom]\n" + lines);
}

// The value of a key of that section.
template<const char* key>
std::string run_value(const std::string& value) {
    return run_lines(std::string(key) + '=' + value);
}

constexpr char integer_key[] = "dmScale";
constexpr char hexadecimal_key[] = "dmFields";
constexpr char number_key[] = "dmPaperLength";
constexpr char text_key[] = "dmFormName";

std::string run_raw(const std::string& value) {
    return run_pc2("PC2Version 2.0\n[Plotter/Device]\nDriverData=" + value);
}

void load_cfg(PM_Object& object, const std::string& file, int plotter) {
    const TempFolder folder;
    object.load_cfg_section(folder.write("plotters.cfg", file).c_str(), PM_Object::FILE_CFG, u"\\", plotter);
}

std::string run_plotter_3(const std::string& file) {
    return outcome_of([&](PM_Object& object) {
        defaults().load_and_compare(object, [&](PM_Object& each) { load_cfg(each, file, 3); });
    });
}

PM_PAGE_ROWS(pc2, (Runs{{"PC2 file", run_pc2},
                        {"lines", run_lines},
                        {"integer", run_value<integer_key>},
                        {"`dmFields`", run_value<hexadecimal_key>},
                        {"number", run_value<number_key>},
                        {"text", run_value<text_key>},
                        {"raw", run_raw},
                        {"CFG file", run_plotter_3}}));

std::vector<std::string> told_tree(const Page& page, const std::string& name) {
    const auto found = page.trees.find(name);
    return found != page.trees.end() ? found->second : std::vector<std::string>{"no such block"};
}

std::string told_bytes(const Page& page, const std::string& name) {
    const auto found = page.bytes.find(name);
    return found != page.bytes.end() ? found->second : "no such block";
}

TEST(Pc2Page, ExampleOfOnePlotterIsDecodedAsTold) {
    const Page page = read_page("pc2");
    PM_Object object;
    defaults().load_and_compare(object,
                                [&](PM_Object& each) { load_pc2(each, told_bytes(page, "office.pc2")); });
    EXPECT_EQ(tree_lines(object), told_tree(page, "office.pc2"));
}

TEST(Pc2Page, ExampleOfThreePlottersIsDecodedAsTold) {
    const Page page = read_page("pc2");
    for (const int plotter : {2, 3}) {
        PM_Object object;
        defaults().load_and_compare(
            object, [&](PM_Object& each) { load_cfg(each, told_bytes(page, "three.cfg"), plotter); });
        EXPECT_EQ(tree_lines(object), told_tree(page, "three.cfg-" + std::to_string(plotter)));
    }
}

// The part of the page's text behind a heading.
std::string section_of_page(const std::string& heading) {
    const std::string text = TempFolder::read_file(std::filesystem::path(PM_DOCS) / "pc2.md");
    const std::size_t start = text.find("\n## " + heading + "\n");
    if (start == std::string::npos) return "";
    return text.substr(start + 1, text.find("\n## ", start + 1) - start);
}

std::vector<std::string> code_spans(const std::string& text) {
    std::vector<std::string> spans;
    const std::regex span("`([^`]*)`");
    for (std::sregex_iterator at(text.begin(), text.end(), span), end; at != end; ++at) {
        spans.push_back((*at)[1]);
    }
    return spans;
}

// "Color1" to "Color255", or "Opaque_A" to "Opaque_Z".
std::vector<std::string> names_of_range(const std::string& first, const std::string& last) {
    std::vector<std::string> names;
    if (const std::size_t digit = first.find_first_of("0123456789"); digit != std::string::npos) {
        for (int n = std::stoi(first.substr(digit)); n <= std::stoi(last.substr(digit)); ++n) {
            names.push_back(first.substr(0, digit) + std::to_string(n));
        }
    } else {
        for (char letter = first.back(); letter <= last.back(); ++letter) {
            names.push_back(first.substr(0, first.size() - 1) + letter);
        }
    }
    return names;
}

// The names that a cell as "`Pens`, `Color1` to `Color255`" stands for.
std::vector<std::string> names_of_cell(const std::string& cell) {
    std::vector<std::string> names;
    const std::regex part("`([^`]*)`( to `([^`]*)`)?");
    for (std::sregex_iterator at(cell.begin(), cell.end(), part), end; at != end; ++at) {
        if ((*at)[2].matched) {
            const std::vector<std::string> range = names_of_range((*at)[1], (*at)[3]);
            names.insert(names.end(), range.begin(), range.end());
        } else {
            names.push_back((*at)[1]);
        }
    }
    return names;
}

std::string told_default(const std::string& type, const std::string& value) {
    static const std::map<std::string, std::string> types = {{"integer", "long"},
                                                             {"hexadecimal", "long"},
                                                             {"number", "double"},
                                                             {"text", "string"},
                                                             {"raw", "void"}};
    const std::string shown = value == "empty" ? "\"\"" : value == "one zero byte" ? "00" : value;
    return types.at(type) + " = " + shown;
}

// The tables of keys as the lines of a tree: names stored, type and default in each row.
std::vector<std::string> told_defaults() {
    std::vector<std::string> lines;
    std::istringstream text(section_of_page("Keys"));
    std::string section;
    const std::regex row(R"(\| (`.*`) \| (\w+) \| ([^|]*) \|)");
    for (std::string line; std::getline(text, line);) {
        std::smatch cells;
        if (line.starts_with("### ")) section = code_spans(line).at(0);
        if (!std::regex_match(line, cells, row)) continue;
        for (const std::string& name : names_of_cell(cells[1])) {
            lines.push_back(section + "\\\\" + name + ": " + told_default(cells[2], cells[3]));
        }
    }
    return lines;
}

TEST(Pc2Page, TablesOfKeysTellTheDefaultsInTheirOrder) {
    PM_Object object;
    load_pc2(object, "PC2Version 2.0\n");
    EXPECT_EQ(tree_lines(object), told_defaults());
}

} // namespace

#include <array>
#include <fstream>
#include <iostream>
#include <pm/kit/report.h>
#include <pm_test_paths.h>
#include <string>

// report_pages DIR: writes there the pages that browser_test.py looks at.

namespace {

using pm::Tree;
using namespace pm::kit;

Tree sample(const std::string& name, PM_Object::FileType type) {
    return pm::load(std::string(PM_SAMPLES "/") + name, {.type = type}).tree;
}

Look passed(const std::string& rule, const std::string& setting, const std::string& path,
            const std::string& capability) {
    return {rule, setting, path, capability, "passed"};
}

ExplainedFindings check() {
    ExplainedFindings made;
    made.looks = {passed("media-size", "size", "\\media\\default_size", "\\media\\size\\1"),
                  passed("media-type", "type", "\\media\\default_type", "\\media\\type\\0"),
                  passed("media-source", "source", "\\media\\default_source", "\\media\\source\\Roll_1"),
                  passed("cutting", "cutting", "\\media\\finishing\\cutting",
                         "\\media\\destination\\Catch_Basket\\cutting\\Cut_Pages"),
                  passed("io-method", "io_type", "\\io\\default_type", "\\io\\method\\6")};
    Finding folding;
    folding.rule = "folding";
    folding.configuration_path = "\\media\\finishing\\folding";
    folding.description_path = "\\media\\destination\\Catch_Basket\\folding";
    folding.configured = "Z_Fold";
    folding.text = "Z fold";
    folding.offers = {{"Folder", "Folding unit", "\\media\\destination\\Folder"}};
    folding.message = "The output \"Catch_Basket\" doesn't fold.";
    Finding colour;
    colour.rule = "dithering";
    colour.severity = Severity::warning;
    colour.configuration_path = "\\res_color_mem\\dithering";
    colour.description_path = "\\res_color_mem\\dithering_list\\Ordered_8x8";
    colour.configured = "Ordered_8x8";
    colour.message = "The resolution isn't dithered so.";
    Finding note;
    note.rule = "unspoken";
    note.severity = Severity::note;
    note.configuration_path = "\\calibration\\date";
    note.message = "Nothing in the description speaks of it.";
    made.findings = {folding, colour, note};
    return made;
}

void write(const std::string& folder, const std::string& name, const ReportInput& input) {
    std::ofstream(folder + "/" + name + ".html", std::ios::binary) << report_page(input);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "report_pages DIR\n";
        return 2;
    }
    const std::string folder = arguments[1];
    const Tree device = sample("dx4200/strings.pdt", PM_Object::FILE_PDT);
    const Tree office = sample("plotter.pia", PM_Object::FILE_PIA);
    const Tree pens = sample("office.pc2", PM_Object::FILE_PC2);
    const ReportDescription description{"dx4200", device.root()};
    const ReportConfiguration configuration{"plotter.pia", office.root(), check()};
    write(folder, "device", {description, {}});
    write(folder, "fit", {description, {configuration}});
    write(folder, "two", {description, {configuration, {"office.pc2", pens.root()}}});
    write(folder, "alone", {{}, {{"office.pc2", pens.root()}}});
    return 0;
}

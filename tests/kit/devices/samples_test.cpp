#include "kit/devices/small_device.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <pm_test_paths.h>

// What the samples' own answers are, worked out from the files.
namespace {

using namespace pm::test;
using namespace pm::kit;

const std::string samples = PM_SAMPLES "/";

pm::Tree dx4200() {
    return pm::load(samples + "dx4200/strings.pdt", {.type = PM_Object::FILE_PDT}).tree;
}

struct SampleAnswer {
    Lines findings; // but those of `unspoken` and `owner`: "severity rule \path = value: first three offers"
    Lines unspoken; // paths
    Lines owned;    // "owner \path", sorted
};

SampleAnswer answer_of_sample(const std::string& file, const pm::LoadOptions& options) {
    SampleAnswer answer;
    for (const Finding& finding : check_compatibility(pm::load(samples + file, options).tree, dx4200())) {
        const std::string& path = finding.configuration_path;
        if (finding.rule == "unspoken") {
            answer.unspoken.push_back(path);
        } else if (finding.rule == "owner") {
            answer.owned.push_back(finding.message.substr(std::size("Owner ") - 1, 1) + ' ' + path);
        } else {
            std::string line(severity_name(finding.severity));
            line += ' ' + finding.rule + ' ' + path + " = " + finding.configured + ':';
            for (std::size_t i = 0; i < std::min<std::size_t>(finding.offers.size(), 3); ++i)
                line += ' ' + finding.offers[i].value;
            answer.findings.push_back(line);
        }
    }
    std::ranges::sort(answer.owned);
    std::ranges::sort(answer.unspoken);
    return answer;
}

// The office plots on A0 from the upper roll with 36 inch paper, which is all there. It asks for 0.9825 of
// the sheet, where the device prints 0.9798, and for collating and a Z fold, which the default catch basket
// doesn't do.
const Lines office_findings{"error media-printable \\media\\printable_area = 0.9825: up to 0.9798",
                            "error collating \\media\\finishing\\collate = true: Stacker Folder Finisher",
                            "error folding \\media\\finishing\\folding = Z_Fold: Folder"};

TEST(Samples, DescriptionIsPossible) {
    EXPECT_EQ(check_description(dx4200()), std::vector<Finding>{});
}

TEST(Samples, Plotter) {
    const auto answer = answer_of_sample("plotter.pia", {});
    EXPECT_EQ(answer.findings, office_findings);
    EXPECT_EQ(answer.unspoken, (Lines{"\\calibration\\date",
                                      "\\calibration\\history\\largest",
                                      "\\calibration\\history\\last",
                                      "\\calibration\\history\\runs",
                                      "\\calibration\\offset_x",
                                      "\\calibration\\offset_y",
                                      "\\calibration\\rotation",
                                      "\\calibration\\scale_x",
                                      "\\calibration\\scale_y",
                                      "\\calibration\\valid",
                                      "\\created",
                                      "\\init_term\\send",
                                      "\\io\\network\\address",
                                      "\\io\\network\\retries",
                                      "\\io\\network\\retry_wait",
                                      "\\io\\network\\tcp_port",
                                      "\\io\\port",
                                      "\\io\\serial\\dcb",
                                      "\\locked",
                                      "\\media\\source\\Roll_1\\remaining",
                                      "\\media\\source\\Roll_2\\remaining",
                                      "\\meta\\notes",
                                      "\\meta\\show_custom_first",
                                      "\\meta\\true_type_as_text",
                                      "\\name",
                                      "\\physical_pen\\table\\1\\color",
                                      "\\physical_pen\\table\\1\\enabled",
                                      "\\physical_pen\\table\\2\\color",
                                      "\\physical_pen\\table\\2\\enabled",
                                      "\\physical_pen\\table\\3\\color",
                                      "\\physical_pen\\table\\3\\enabled",
                                      "\\physical_pen\\table\\4\\color",
                                      "\\physical_pen\\table\\4\\enabled",
                                      "\\physical_pen\\table\\5\\color",
                                      "\\physical_pen\\table\\5\\enabled",
                                      "\\physical_pen\\table\\6\\color",
                                      "\\physical_pen\\table\\6\\enabled",
                                      "\\physical_pen\\table\\7\\color",
                                      "\\physical_pen\\table\\7\\enabled",
                                      "\\physical_pen\\table\\8\\color",
                                      "\\physical_pen\\table\\8\\enabled",
                                      "\\res_color_mem\\black_generation",
                                      "\\res_color_mem\\gamma",
                                      "\\res_color_mem\\intent",
                                      "\\res_color_mem\\merge_lines",
                                      "\\res_color_mem\\profile",
                                      "\\revision",
                                      "\\user_scale"}));
}

TEST(Samples, CompressedPlotterIsThePlotter) {
    EXPECT_EQ(answer_of_sample("plotter-compressed.pia", {}).findings, office_findings);
}

TEST(Samples, OfficeSectionIsThePlotter) {
    EXPECT_EQ(answer_of_sample("sections.dpia", {.type = PM_Object::FILE_DPIA, .section = "Office"}).findings,
              office_findings);
}

// The lower roll takes 36 and 24 inches; ARCH E1 landscape needs the 42 inches that only the upper one takes.
TEST(Samples, WorkshopSection) {
    const auto answer =
        answer_of_sample("sections.dpia", {.type = PM_Object::FILE_DPIA, .section = "Workshop"});
    EXPECT_EQ(answer.findings,
              Lines{"error media-size-source \\media\\default_size = ARCH_E1_landscape: Roll_1\\Roll_42_in"});
    EXPECT_EQ(answer.unspoken, (Lines{"\\io\\port", "\\name", "\\revision"}));
    // Paper: source and size are in group 1, copies in 2, rotation and margins in 3; connections: all of the
    // serial line in 1, port and type in 0.
    EXPECT_EQ(answer.owned, (Lines{"1 \\io\\serial\\baud_rate", "1 \\io\\serial\\protocol",
                                   "1 \\media\\default_size", "1 \\media\\default_source",
                                   "2 \\media\\copies", "3 \\media\\landscape", "3 \\media\\margin_left"}));
}

TEST(Samples, ArchiveSection) {
    const auto answer =
        answer_of_sample("sections.dpia", {.type = PM_Object::FILE_DPIA, .section = "Archive"});
    EXPECT_EQ(answer.findings, Lines{});
    EXPECT_EQ(answer.unspoken, (Lines{"\\enabled", "\\io\\folder", "\\name", "\\stamp\\bits", "\\stamp\\text",
                                      "\\stamp\\x", "\\stamp\\y"}));
    EXPECT_EQ(answer.owned, Lines{});
}

// A0 portrait with margins of 5, 600 dpi on bond, 8N1 at 9600 on COM1, 15 line types: all there.
TEST(Samples, Pc2File) {
    const auto answer = answer_of_sample("office.pc2", {.type = PM_Object::FILE_PC2});
    EXPECT_EQ(answer.findings, Lines{});
    EXPECT_EQ(answer.unspoken.size(), 53U);
    EXPECT_EQ(std::ranges::count(answer.unspoken, "\\Plotter/User\\StandardSize"), 1);
    EXPECT_EQ(std::ranges::count(answer.unspoken, "\\Plotter/DriverCustom\\dmDitherType"), 1);
    EXPECT_EQ(std::ranges::count_if(answer.unspoken,
                                    [](const std::string& path) { return path.starts_with("\\PlotDriver"); }),
              7);
    EXPECT_EQ(std::ranges::count_if(answer.unspoken,
                                    [](const std::string& path) { return path.find("PEN#") != path.npos; }),
              8);
}

// "ISO A0", "ARCH D" and "ISO A3" are formats; the device's sizes tell the rotation too.
TEST(Samples, CfgPlotters) {
    const auto findings = [](int plotter) {
        return answer_of_sample("three-plotters.cfg", {.type = PM_Object::FILE_CFG, .plotter = plotter})
            .findings;
    };
    EXPECT_EQ(findings(1),
              Lines{"error media-size \\Plotter/DriverCustom\\dmFormName = ISO A0: ISO_A0_landscape "
                    "ISO_A0_portrait ISO_A1_landscape"});
    EXPECT_EQ(findings(2),
              Lines{"error media-size \\Plotter/DriverCustom\\dmFormName = ARCH D: ARCH_D_landscape "
                    "ARCH_D_portrait ARCH_E1_landscape"});
    EXPECT_EQ(findings(3),
              Lines{"error media-size \\Plotter/DriverCustom\\dmFormName = ISO A3: ISO_A3_landscape "
                    "ISO_A3_portrait ISO_A0_landscape"});
}

TEST(Samples, CfgPlotterInTheReception) {
    const auto answer = answer_of_sample("three-plotters.cfg", {.type = PM_Object::FILE_CFG, .plotter = 3});
    EXPECT_EQ(
        answer.unspoken,
        (Lines{"\\PlotDriver\\Configured", "\\PlotDriver\\MenuName", "\\PlotDriver\\PlotterId",
               "\\PlotDriver\\Type", "\\PlotDriver\\XDI_Level", "\\Plotter/Device/WidthTable\\Widths",
               "\\Plotter/Device\\ConfigRecord", "\\Plotter/Device\\DriverData",
               "\\Plotter/Device\\DriverName", "\\Plotter/Device\\MenuName", "\\Plotter/Device\\ModelIndex",
               "\\Plotter/DriverCustom\\dmFields", "\\Plotter/Port\\Enabled", "\\Plotter/Port\\Link",
               "\\Plotter/Port\\PortName", "\\Plotter/User\\PlotScale"}));
}

// The device doesn't correct filled areas, and colour 8 draws dash dots, which need 0.1, with 0.09.
TEST(Samples, PcpFile) {
    const auto answer = answer_of_sample("pens.pcp", {.type = PM_Object::FILE_PCP});
    EXPECT_EQ(answer.findings, (Lines{"error pen-fill \\FILL_ADJUST = Y:",
                                      "error line-width \\8\\PEN_WEIGHT = 0.09: from 0.1"}));
    EXPECT_EQ(answer.unspoken, (Lines{"\\HIDE", "\\ORIGIN\\X", "\\ORIGIN\\Y", "\\PLOT_FILE",
                                      "\\SCALE\\DUNITS", "\\SCALE\\MUNITS", "\\VERSION"}));
    EXPECT_EQ(answer.owned, (Lines{"1 \\1\\PEN_SPEED", "1 \\PEN_WIDTH", "2 \\FILL_ADJUST",
                                   "2 \\OPTIMIZE_LEVEL", "3 \\PLOT_FILE"}));
}

} // namespace

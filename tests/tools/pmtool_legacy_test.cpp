#include "tools/run_tool.h"

namespace pm::test {

namespace {

using PmToolLegacy = ToolTest;

TEST_F(PmToolLegacy, Pc2FileIsShownWithItsDefaults) {
    expect_output({"tree", sample_folder + "/office.pc2", "\\PlotDriver"},
                  "Configured: long = 1\n"
                  "Type: long = 2\n"
                  "External: long = 0\n"
                  "Alias: long = 0\n"
                  "XDI_Level: long = 3\n"
                  "MenuName: string = \"Draftex Series\"\n"
                  "PathName: string = \"drivers\\\\draftex\"\n"
                  "PlotterId: string = \"DX4200-OFFICE\"\n"
                  "Stream: string = \"plot\"\n");
}

TEST_F(PmToolLegacy, SlashIsPartOfAName) {
    expect_output({"get", sample_folder + "/office.pc2", "\\Plotter/Device\\Pens"}, "8\n");
}

TEST_F(PmToolLegacy, PcpFileIsShown) {
    expect_output({"tree", sample_folder + "/pens.pcp", "\\ORIGIN"}, "X: double = 12.5\nY: double = 10.0\n");
}

TEST_F(PmToolLegacy, Pc2FileIsConvertedToPia) {
    copy_sample("office.pc2", "a.pc2");
    expect_output({"convert", "a.pc2", "b.pia", "--tag", "from pc2"}, "");
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,from pc2\r\n"));
    expect_output({"compare", "a.pc2", "b.pia"}, "a.pc2 and b.pia hold equal trees.\n");
}

TEST_F(PmToolLegacy, PlotterOfACfgFileIsChosenByNumber) {
    const std::string file = sample_folder + "/three-plotters.cfg";
    expect_output({"get", file, "\\PlotDriver\\PlotterId", "--section", "2"}, "DX4200-2\n");
    expect_output({"get", file, "\\2\\PlotDriver\\PlotterId"}, "DX4200-2\n");
    expect_trouble({"convert", file, "one.pia"},
                   file + ": the file holds several plotters; choose one with --section (1, 2, 3)");
    expect_trouble({"tree", file, "--section", "two"},
                   file + ": a plotter is told by its number, not by \"two\"");
}

TEST_F(PmToolLegacy, OnlyPlotterOfACfgFileNeedsNoNumber) {
    folder.write("a.cfg", "[PlotDriver]\nAlias=7\n[PlotDriver#5]\nType=3\n");
    expect_output({"get", "a.cfg", "\\PlotDriver\\Type"}, "3\n");
    folder.write("b.cfg", "[PlotDriver]\nAlias=7\n");
    expect_output({"get", "b.cfg", "\\PlotDriver\\Alias"}, "7\n");
}

TEST_F(PmToolLegacy, PlotterIsExtracted) {
    copy_sample("three-plotters.cfg", "a.cfg");
    expect_output({"extract", "a.cfg", "3", "-o", "b.pia"}, "");
    expect_output({"get", "b.pia", "\\PlotDriver\\PlotterId"}, "DX4200-3\n");
}

TEST_F(PmToolLegacy, EachPlotterBecomesASectionByName) {
    copy_sample("three-plotters.cfg", "a.cfg");
    expect_output({"extract", "a.cfg", "1", "-o", "1.pia"}, "");
    expect_output({"extract", "a.cfg", "2", "-o", "2.pia"}, "");
    expect_output({"bundle", "-o", "all.dpia", "One=1.pia", "Two=2.pia"}, "");
    expect_output({"get", "all.dpia", "\\PlotDriver\\PlotterId", "--section", "Two"}, "DX4200-2\n");
}

TEST_F(PmToolLegacy, GoodSamplesHaveNoBadLines) {
    for (const std::string sample : {"office.pc2", "three-plotters.cfg", "pens.pcp"}) {
        const std::string file = sample_folder + "/" + sample;
        expect_output({"check", file}, file + ": no bad lines\n");
    }
}

TEST_F(PmToolLegacy, RepeatedVersionLineIsToldWithItsLineInTheFile) {
    folder.write("bad.pc2", "; one\n\nPC2Version 2.0\nPC2Version 2.0\n[PlotDriver]\nType=1\n");
    expect_no({"check", "bad.pc2"},
              "bad.pc2:4:1: error: \"PC2Version 2.0\" is no key, no section and no comment. "
              "[bad-line] (error 57)\n");
    expect_trouble({"get", "bad.pc2", "PlotDriver\\Type"},
                   "bad.pc2:4: The line isn't valid (error 57): PC2Version 2.0; all bad lines are listed by: "
                   "pmtool check");
}

TEST_F(PmToolLegacy, LineCutByAZeroByteIsToldWithItsLineInTheFile) {
    using namespace std::string_literals;
    folder.write("bad.pc2", "PC2Version 2.0\n[PlotDriver]\nType\0=5\nType=x\n"s);
    const std::string zero =
        ": warning: What stands behind a zero byte in the line isn't read. [ignored-text]\n";
    expect_no({"check", "bad.pc2"},
              "bad.pc2:3:1: error: \"Type\" is no key, no section and no comment. [bad-line] (error 57)\n"
              "bad.pc2:3:5" +
                  zero + "bad.pc2:4:6: error: \"x\" is no whole number. [bad-line] (error 57)\n");
    folder.write("bad.pcp", ";Created by Draftex\nROTATE=1\nROT\0ATE=5\n"s);
    expect_no({"check", "bad.pcp"},
              "bad.pcp:3:1: error: \"ROT\" is no keyword and isn't read. [unknown-key] (error 57)\n"
              "bad.pcp:3:4" +
                  zero);
    folder.write("bad.cfg", "[PlotDriver#2]\n[PlotDriver]\nType\0=5\n"s);
    expect_no({"check", "bad.cfg"},
              "bad.cfg:3:1: error: \"Type\" is no key, no section and no comment. [bad-line] (error 57)\n"
              "bad.cfg:3:5" +
                  zero);
}

TEST_F(PmToolLegacy, RawPropertyWithoutBytesIsShownWithItsName) {
    folder.write("a.pc2", "PC2Version 2.0\n[Plotter/Device]\nDriverData=\"P,$\"\n");
    expect_output({"tree", "a.pc2", "Plotter/Device\\DriverData"}, "DriverData: raw = \n");
}

TEST_F(PmToolLegacy, InfiniteNumberIsATextInJson) {
    folder.write("a.pc2", "PC2Version 2.0\n[Plotter/User]\nPlotWidth=1e999\nPlotHeight=-1e999\n");
    const std::string json = run({"tree", "a.pc2", "Plotter/User", "--json"}).out;
    EXPECT_NE(json.find("\"name\": \"PlotWidth\", \"type\": \"double\", \"value\": \"inf\""),
              std::string::npos);
    EXPECT_NE(json.find("\"name\": \"PlotHeight\", \"type\": \"double\", \"value\": \"-inf\""),
              std::string::npos);
}

TEST_F(PmToolLegacy, BadLinesOfAPc2FileAreListed) {
    folder.write("bad.pc2", "PC2Version 2.0\r\n[PlotDriver]\r\nType=x\r\nfoo\r\n\r\n[]\r\n"
                            "[Plotter/DriverCustom]\r\ndmFields=zz\r\ndmColor=\r\n");
    expect_no({"check", "bad.pc2"},
              "bad.pc2:3:6: error: \"x\" is no whole number. [bad-line] (error 57)\n"
              "bad.pc2:4:1: error: \"foo\" is no key, no section and no comment. [bad-line] (error 57)\n"
              "bad.pc2:6:1: error: The section has no name. [bad-line] (error 57)\n"
              "bad.pc2:8:10: error: \"zz\" is no hexadecimal number. [bad-line] (error 99)\n"
              "bad.pc2:9:1: error: The key has no value. [bad-line] (error 57)\n");
}

TEST_F(PmToolLegacy, BadLinesOfAllPlottersAreListedOnceInTheOrderOfTheFile) {
    folder.write("bad.cfg", "[PlotDriver#2]\nType=x\nfoo\n\n[PlotDriver#1]\nType=y\n");
    const std::string foo =
        "bad.cfg[2]:3:1: error: \"foo\" is no key, no section and no comment. [bad-line] (error 57)\n";
    const std::string last = "bad.cfg[1]:6:6: error: \"y\" is no whole number. [bad-line] (error 57)\n";
    expect_no({"check", "bad.cfg"},
              "bad.cfg[2]:2:6: error: \"x\" is no whole number. [bad-line] (error 57)\n" + foo + last);
    expect_no({"check", "bad.cfg", "--section", "1"}, foo + last);
}

TEST_F(PmToolLegacy, BadLinesOfAPcpFileAreListed) {
    folder.write("bad.pcp", ";Created by Draftex\nVERSION=2\n\nUNITS=X\nFOO=1\n");
    expect_no({"check", "bad.pcp"},
              "bad.pcp:2:1: error: \"VERSION\" takes a number with a point. [bad-line] (error 57)\n"
              "bad.pcp:4:1: error: \"UNITS\" takes \"I\" or \"M\". [bad-line] (error 57)\n"
              "bad.pcp:5:1: error: \"FOO\" is no keyword and isn't read. [unknown-key] (error 57)\n");
}

TEST_F(PmToolLegacy, FirstBadLineStopsOtherCommands) {
    folder.write("bad.pc2", "PC2Version 2.0\n\n[PlotDriver]\nType=x\n");
    expect_trouble(
        {"tree", "bad.pc2"},
        "bad.pc2:4: The line isn't valid (error 57): Type=x; all bad lines are listed by: pmtool check");
}

} // namespace

} // namespace pm::test

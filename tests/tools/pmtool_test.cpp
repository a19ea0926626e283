#include "tools/run_tool.h"

namespace pm::test {

namespace {

using PmTool = ToolTest;

constexpr std::string_view small_file = "PIAFILEVERSION_2.0,small\r\n"
                                        "title=\"a \"quoted\" text\n"
                                        "count=7\n"
                                        "pens{\n"
                                        " width=0.25\n"
                                        " third=0.33333333333 (55555555U3_#T@)\n"
                                        " first{\n"
                                        "  on=TRUE\n"
                                        "  data=\\00FF\\\n"
                                        " }\n"
                                        " second{\n"
                                        "  on=FALSE\n"
                                        " }\n"
                                        "}\n";

constexpr std::string_view small_tree = "title: string = \"a \\\"quoted\\\" text\"\n"
                                        "count: long = 7\n"
                                        "pens\\\n"
                                        "  width: double = 0.25\n"
                                        "  third: double = 0.3333333333333333\n"
                                        "  first\\\n"
                                        "    on: bool = true\n"
                                        "    data: raw = 00FF\n"
                                        "  second\\\n"
                                        "    on: bool = false\n";

TEST_F(PmTool, TreeShowsValuesAndTypesInFileOrder) {
    folder.write("small.pia", small_file);
    expect_output({"tree", "small.pia"}, std::string(small_tree));
}

TEST_F(PmTool, TreeStartsAtAPath) {
    folder.write("small.pia", small_file);
    expect_output({"tree", "small.pia", "\\pens\\first"}, "on: bool = true\ndata: raw = 00FF\n");
}

TEST_F(PmTool, TreePathNeedsNoLeadingBackslash) {
    folder.write("small.pia", small_file);
    expect_output({"tree", "small.pia", "pens\\second\\"}, "on: bool = false\n");
}

TEST_F(PmTool, TreeOfAPropertyIsItsLine) {
    folder.write("small.pia", small_file);
    expect_output({"tree", "small.pia", "\\pens\\width"}, "width: double = 0.25\n");
}

TEST_F(PmTool, DepthLimitsTheTree) {
    folder.write("small.pia", small_file);
    expect_output({"tree", "small.pia", "--depth", "1"}, "title: string = \"a \\\"quoted\\\" text\"\n"
                                                         "count: long = 7\n"
                                                         "pens\\\n"
                                                         "  width: double = 0.25\n"
                                                         "  third: double = 0.3333333333333333\n"
                                                         "  \xE2\x80\xA6\n");
}

TEST_F(PmTool, JsonHoldsPropertiesAndNodesInOrder) {
    folder.write("small.pia", "PIAFILEVERSION_2.0,\nb=1\na=2.5\nx{\n t=TRUE\n d=\\0A\\\n}\n");
    expect_output({"tree", "small.pia", "--json"}, R"({
  "pm9": 1,
  "properties": [
    {"name": "b", "type": "long", "value": 1},
    {"name": "a", "type": "double", "value": 2.5}
  ],
  "nodes": [
    {
      "name": "x",
      "properties": [
        {"name": "t", "type": "bool", "value": true},
        {"name": "d", "type": "raw", "value": "0A"}
      ],
      "nodes": []
    }
  ]
}
)");
}

TEST_F(PmTool, OutputIsUtf8WhateverTheCodePageOfTheFile) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\nnotes=\"Gro\xDF\n");
    expect_output({"get", "a.pia", "notes"}, "Gro\xC3\x9F\n");
}

TEST_F(PmTool, CodePageIsTakenBeforeAndAfterTheCommand) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\nnotes=\"Gro\xC3\x9F\n");
    expect_output({"--code-page", "65001", "get", "a.pia", "notes"}, "Gro\xC3\x9F\n");
    expect_output({"get", "a.pia", "notes", "--code-page", "65001"}, "Gro\xC3\x9F\n");
}

TEST_F(PmTool, CodePageThatTheMachineLacksIsTrouble) {
    expect_trouble({"tree", "a.pia", "--code-page", "12345"}, "12345: this machine has no such code page");
    for (const std::string text : {"", "x", "-1"}) {
        expect_trouble({"tree", "a.pia", "--code-page", text},
                       "--code-page: \"" + text + "\" is no number from 0 on; see pmtool tree --help");
    }
}

TEST_F(PmTool, GetPrintsBareValues) {
    folder.write("small.pia", small_file);
    expect_output({"get", "small.pia", "title"}, "a \"quoted\" text\n");
    expect_output({"get", "small.pia", "\\count"}, "7\n");
    expect_output({"get", "small.pia", "\\pens\\third"}, "0.3333333333333333\n");
    expect_output({"get", "small.pia", "\\pens\\first\\on"}, "true\n");
    expect_output({"get", "small.pia", "\\pens\\first\\data"}, "00FF\n");
}

TEST_F(PmTool, WholeDoubleIsToldFromALong) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\nd=5.0\n");
    expect_output({"get", "a.pia", "d"}, "5.0\n");
}

TEST_F(PmTool, GetOfANodeIsTrouble) {
    folder.write("small.pia", small_file);
    expect_trouble({"get", "small.pia", "pens"},
                   "small.pia: \\pens: this is a node, not a property; show it with: pmtool tree");
}

TEST_F(PmTool, PathThatIsNotThereIsANegativeAnswer) {
    folder.write("small.pia", small_file);
    const std::string nothing = "there is no such property or node";
    expect_not_found({"get", "small.pia", "\\pens\\count"}, "small.pia: \\pens\\count: " + nothing);
    expect_not_found({"get", "small.pia", "\\never\\seen"}, "small.pia: \\never\\seen: " + nothing);
    expect_not_found({"tree", "small.pia", "\\count\\on"}, "small.pia: \\count\\on: " + nothing);
}

TEST_F(PmTool, MissingFileIsTrouble) {
    expect_trouble({"tree", "no.pia"}, "no.pia: The file doesn't exist (error 63)");
}

TEST_F(PmTool, MissingFileOfAToldFormatIsTrouble) {
    expect_trouble({"tree", "no.pia", "--from", "pia"}, "no.pia: The file doesn't exist (error 63)");
}

TEST_F(PmTool, FolderIsTrouble) {
    const std::string text = ".: A file is expected here, but this is a folder (error 68)";
    expect_trouble({"tree", "."}, text);
    expect_trouble({"tree", ".", "--from", "pia"}, text);
}

TEST_F(PmTool, UnknownContentIsTrouble) {
    folder.write("a.txt", "hello\n");
    expect_trouble({"tree", "a.txt"},
                   "a.txt: the content is of no known format; say which with --from (doc, dpia, "
                   "pia, pcp, pc2, cfg, pdt, json)");
}

TEST_F(PmTool, VerbWithoutTheOptionDoesNotAdviseIt) {
    folder.write("a.json", "{}\n");
    const std::string line = "a.json: the content is of no known format";
    expect_trouble({"merge", "a.json", "a.json", "a.json", "-o", "b.json"}, line);
    expect_trouble({"bundle", "-o", "b.dpia", "A=a.json"}, line);
}

TEST_F(PmTool, EmptyFileIsOfNoFormat) {
    folder.write("a.pia", "");
    expect_trouble({"tree", "a.pia"},
                   "a.pia: the content is of no known format; say which with --from (doc, dpia, "
                   "pia, pcp, pc2, cfg, pdt, json)");
}

TEST_F(PmTool, UnknownFormatNameIsTrouble) {
    folder.write("small.pia", small_file);
    expect_trouble(
        {"tree", "small.pia", "--from", "pla"},
        "pla: no such format; there are doc, dpia, pia, pcp, pc2, cfg, pdt, json; see pmtool tree --help");
}

TEST_F(PmTool, FormatThatIsToldCountsMoreThanTheContent) {
    folder.write("a.txt", "hello\n");
    expect_trouble({"tree", "a.txt", "--from", "pia"},
                   "a.txt: The file doesn't begin like a PIA file (error 89)");
}

TEST_F(PmTool, CommandLineMistakesAreOneLineEach) {
    expect_trouble({}, "a verb is missing; see pmtool --help");
    expect_trouble({"foo"}, "foo: there is no such verb; see pmtool --help");
    expect_trouble({"tree"}, "FILE is required; see pmtool tree --help");
    expect_trouble({"tree", "a.pia", "--bogus"},
                   "The following argument was not expected: --bogus; see pmtool tree --help");
    expect_trouble({"tree", "a.pia", "--depth", "-1"},
                   "--depth: Value -1 not in range 0 to 256; see pmtool tree --help");
}

TEST_F(PmTool, SectionOfAFileWithoutSectionsIsTrouble) {
    folder.write("small.pia", small_file);
    expect_trouble({"tree", "small.pia", "--section", "x"}, "small.pia: a pia file has no sections");
    expect_trouble({"sections", "small.pia"}, "small.pia: a pia file has no sections");
}

TEST_F(PmTool, VersionIsShown) {
    expect_output({"--version"}, "pmtool 9.0.0\n");
}

TEST_F(PmTool, HelpShowsCommandsAndExamples) {
    const ToolRun result = run({"--help"});
    EXPECT_EQ(0, result.status);
    for (const std::string text :
         {"\n  tree ", "\n  get ", "\n  set ", "\n  diff ", "\n  convert ", "\n  check ", "\n  identify ",
          "\n  sections ", "\n  extract ", "\n  bundle ", "\n  codec ", "--code-page", "--version",
          "pmtool get plotter.pia '\\media\\default_size'"}) {
        EXPECT_NE(std::string::npos, result.out.find(text)) << text;
    }
}

TEST_F(PmTool, IdentifyTellsFormatAndEvidence) {
    const auto expect_identity = [&](const std::string& sample, const std::string& identity) {
        const std::string file = sample_folder + "/" + sample;
        const std::string out = run({"identify", file}).out;
        EXPECT_EQ(file + ": " + identity, out.substr(0, out.find('\n')));
    };
    expect_identity("plotter.pia", "pia (property text, plain or compressed): first line "
                                   "\"PIAFILEVERSION_2.0,DX4200CFG_1.0\"");
    expect_identity("plotter-compressed.pia", "pia (property text, plain or compressed): first line "
                                              "\"PIAFILEVERSION_2.0,DX4200CFG_1.0,compress\"");
    expect_identity("sections.dpia",
                    "dpia (sections of PIA text in one file): version 2.0, directory of 3 sections");
    expect_identity("office.pc2", "pc2 (configuration of one plotter): first line \"PC2Version 2.0\"");
    expect_identity("three-plotters.cfg",
                    "cfg (configuration of several plotters): sections of plotters 1, 2, 3");
    expect_identity("pens.pcp", "pcp (plot parameters): comment \";Created by Draftex\"");
    expect_identity("dx4200", "pdt (folder of driver tables): folder with strings.pdt");
    expect_identity("dx4200/strings.pdt", "pdt (folder of driver tables): string file with DRFX_ keys");
}

TEST_F(PmTool, IdentifyTellsWhatTheContentSays) {
    const auto expect_details = [&](const std::string& sample, const std::string& details) {
        const std::string out = run({"identify", sample_folder + "/" + sample}).out;
        EXPECT_EQ(details, out.substr(out.find('\n') + 1)) << sample;
    };
    expect_details("plotter.pia", "  version 2.0, plain, text in code page 1252\n");
    expect_details("plotter-compressed.pia", "  version 2.0, compressed, text in code page 1252\n");
    expect_details("sections.dpia", "  version 2.0, text in UTF-8, sections Office, Workshop, Archive\n");
    expect_details("three-plotters.cfg", "  text in ASCII, sections 1, 2, 3\n");
    expect_details("pens.pcp", "  text in ASCII\n");
    expect_details("dx4200", "");
    folder.write("u.pia", "PIAFILEVERSION_1.0,\na=\"\xC3\x9F\nb=yes\n");
    const std::string out = run({"identify", "u.pia"}).out;
    EXPECT_TRUE(out.ends_with("\n  version 1.0, plain, text in UTF-8, damaged\n")) << out;
}

TEST_F(PmTool, IdentifySeesThroughBlankLinesAndCase) {
    const auto expect_first_line = [&](const std::string& file, const std::string& line) {
        const std::string out = run({"identify", file}).out;
        EXPECT_EQ(line, out.substr(0, out.find('\n') + 1));
    };
    folder.write("a", "\n \t\n  piafileversion_1.0,x\r\na=1\n");
    expect_first_line("a",
                      "a: pia (property text, plain or compressed): first line \"piafileversion_1.0,x\"\n");
    folder.write("b", "; text\n;CREATED BY DRAFTEX 7\n");
    expect_first_line("b", "b: pcp (plot parameters): comment \";CREATED BY DRAFTEX 7\"\n");
    folder.write("c", "; text\n\n[PlotDriver]\nType=1\n");
    expect_first_line("c", "c: cfg (configuration of several plotters): sections without a version line\n");
    folder.write("d", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    expect_first_line("d", "d: doc (compound file): compound file signature\n");
}

TEST_F(PmTool, IdentifyReadsStandardInput) {
    const ToolRun text = run_with_input({"identify", "-"}, std::string(small_file));
    EXPECT_EQ(0, text.status) << text.err;
    EXPECT_EQ("-: pia (property text, plain or compressed): first line \"PIAFILEVERSION_2.0,small\"\n"
              "  version 2.0, plain, text in ASCII\n",
              text.out);
    const ToolRun json = run_with_input({"identify", "-", "--json"}, std::string(small_file));
    EXPECT_NE(std::string::npos, json.out.find("\"tag\": \"small\"")) << json.out;
    const ToolRun other = run_with_input({"identify", "-"}, "hello\n");
    EXPECT_EQ(2, other.status);
    EXPECT_EQ("pmtool: -: the content is of no known format\n", other.err); // it has no --from
}

TEST_F(PmTool, IdentifyGoesOnBehindAFileOfNoFormat) {
    folder.write("a.txt", "hello\n");
    folder.write("small.pia", small_file);
    const ToolRun result = run({"identify", "a.txt", "small.pia"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("small.pia: pia (property text, plain or compressed): first line \"PIAFILEVERSION_2.0,small\"\n"
              "  version 2.0, plain, text in ASCII\n",
              result.out);
    EXPECT_EQ("pmtool: a.txt: the content is of no known format\n", result.err);
}

TEST_F(PmTool, DpiaDirectoryThatDoesNotFitItsFileIsNone) {
    const std::string head("\0\0\2\0\1\0\0\0", 8);
    const std::string entry("\1\0\0\0A\0\0\0\0\0\0\0\0\2\0\0\0", 17);
    // A section that is cut off is told when it is loaded.
    for (const std::string& bytes : {head + entry + "xy", head + entry + "x", head + entry}) {
        folder.write("good", bytes);
        EXPECT_TRUE(
            run({"identify", "good"})
                .out.starts_with("good: dpia (sections of PIA text in one file): version 2.0, directory of "
                                 "1 section\n"));
    }
    for (const std::string& bytes :
         {head, head + entry.substr(0, 16), std::string("\0\0\2\0\xFF\xFF\xFF\xFF", 8),
          std::string("\0\0\2\0\1\0\0\0\xFF\xFF\xFF\x7F", 12)}) {
        folder.write("bad", bytes);
        EXPECT_EQ(2, run({"identify", "bad"}).status);
    }
}

TEST_F(PmTool, CompareOfEqualTreesSaysSo) {
    const std::string plain = sample_folder + "/plotter.pia";
    const std::string compressed = sample_folder + "/plotter-compressed.pia";
    expect_output({"compare", plain, compressed}, plain + " and " + compressed + " hold equal trees.\n");
}

TEST_F(PmTool, CompareListsEachDifference) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\na=1\nb=2\nx{\n c=3\n}\nonly_a{\n d=4\n}\n");
    folder.write("b.pia", "PIAFILEVERSION_2.0,\nb=2.0\na=1\nx{\n c=3\n e=\"new\n}\n");
    expect_no({"compare", "a.pia", "b.pia"}, "~ \\b: long 2 -> double 2.0\n"
                                             "order of \\\n"
                                             "- \\only_a\\\n"
                                             "- \\only_a\\d: long 4\n"
                                             "+ \\x\\e: string \"new\"\n");
}

TEST_F(PmTool, CompareTakesNoteOfTheLastBitOfADouble) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\na=0.33333333333 (55555555U3_#T@)\n");
    folder.write("b.pia", "PIAFILEVERSION_2.0,\na=0.33333333333\n");
    expect_no({"compare", "a.pia", "b.pia"}, "~ \\a: double 0.3333333333333333 -> double 0.33333333333\n");
}

TEST_F(PmTool, CompareWithAMissingFileIsTrouble) {
    folder.write("small.pia", small_file);
    expect_trouble({"compare", "small.pia", "no.pia"}, "no.pia: The file doesn't exist (error 63)");
}

} // namespace

} // namespace pm::test

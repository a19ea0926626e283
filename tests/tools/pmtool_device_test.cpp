#include "tools/run_tool.h"
#include <nlohmann/json.hpp>

namespace pm::test {

namespace {

const std::string device = sample_folder + "/dx4200";
const std::vector<std::string> quiet{"--without", "unspoken", "--without", "owner"};

std::vector<std::string> with(std::vector<std::string> words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

class PmToolDevice : public ToolTest {
protected:
    void copy_with_bad_default(const std::string& name) const {
        std::filesystem::copy(device, folder / name, std::filesystem::copy_options::recursive);
        const std::string file = name + "/Custom Capability.pdt";
        std::string table = folder.read(file);
        table[1206 / 8] = static_cast<char>(table[1206 / 8] ^ (1 << (1206 % 8)));
        folder.write(file, table);
    }
    void save_with_too_many_pens(const std::string& file) const {
        ASSERT_EQ(run({"convert", device, file, "--utf8"}).status, 0);
        ASSERT_EQ(run({"set", file, "\\physical_pen\\default_npens", "300"}).status, 0);
    }
    const std::string bad_default =
        ": error: \\custom_name\\Ink_Saver\\default_value = \\x0Fff: \"Ink_Saver\" (Ink saver) has no value "
        "\"\\x0Fff\" (\\custom_name\\Ink_Saver\\value_list). Instead: Off, Low, High. [custom]\n";
    const std::string too_many_pens =
        ": error: \\physical_pen\\default_npens = 300: The number of pens, 300, is above the most, 255 "
        "(\\physical_pen\\max_npens = 255). Instead: 0 to 255. [pen-count]\n";
};

TEST_F(PmToolDevice, PossibleConfigurationIsTold) {
    const std::string file = sample_folder + "/office.pc2";
    expect_output(with({"check", file, "--device", device}, quiet), file + ": possible on the device\n");
}

TEST_F(PmToolDevice, ControlCharactersOfADescriptionAreShownAsNumbers) {
    copy_with_bad_default("dx");
    const ToolRun result = run({"check", "dx"});
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos,
              result.out.find("dx: error: \\custom_name\\Ink_Saver\\default_value = \\x0Fff: \"Ink_Saver\" "
                              "(Ink saver) has no value \"\\x0Fff\" (\\custom_name\\Ink_Saver\\value_list)."))
        << result.out;
}

TEST_F(PmToolDevice, NotesDoNotCountUnlessStrict) {
    const std::string file = sample_folder + "/office.pc2";
    EXPECT_EQ(run({"check", file, "--device", device}).status, 0);
    EXPECT_EQ(run({"check", file, "--device", device, "--strict"}).status, 1);
}

TEST_F(PmToolDevice, FindingsTellWhatIsOfferedInstead) {
    const std::string file = sample_folder + "/plotter.pia";
    expect_no(
        with({"check", file, "--device", device}, quiet),
        file +
            ": error: \\media\\printable_area = 0.9825: Only 0.9798 of the area \"ISO_A0_portrait_area\" can "
            "be "
            "printed (\\media\\description\\1\\printable_area = 0.9798). Instead: up to 0.9798. "
            "[media-printable]\n" +
            file +
            ": error: \\media\\finishing\\collate = true: The destination \"Catch_Basket\" (Catch basket), "
            "the "
            "device's default, doesn't collate (\\media\\destination\\Catch_Basket\\collating). Instead: "
            "Stacker (Stacker), Folder (Folding unit), Finisher "
            "(Finisher with stapler). [collating]\n" +
            file +
            ": error: \\media\\finishing\\folding = Z_Fold: The destination \"Catch_Basket\" (Catch basket), "
            "the "
            "device's default, doesn't fold by \"Z_Fold\" (\\media\\destination\\Catch_Basket\\folding). "
            "Instead: Folder (Folding unit). [folding]\n");
}

TEST_F(PmToolDevice, EachSectionIsAConfiguration) {
    const std::string file = sample_folder + "/sections.dpia";
    expect_no(
        {"check", file, "--device", device, "--rule", "media-size-source"},
        file + "[Office]: possible on the device\n" + file +
            "[Workshop]: error: \\Workshop\\media\\default_size = ARCH_E1_landscape: The media size "
            "\"ARCH_E1_landscape\" (ARCH E1 \xE2\x80\x93 landscape (1066.8 \xC3\x97 762 mm)) isn't one that "
            "the source "
            "\"Roll_2\" (Lower roll) takes (\\media\\source\\Roll_2\\entry). Instead: Roll_1\\Roll_42_in "
            "(Upper roll: Roll, 1067 mm (42 in)). "
            "[media-size-source]\n" +
            file + "[Archive]: possible on the device\n");
    expect_no(
        {"check", file, "--device", device, "--rule", "media-size-source", "--section", "Workshop"},
        file +
            "[Workshop]: error: \\media\\default_size = ARCH_E1_landscape: The media size "
            "\"ARCH_E1_landscape\" (ARCH E1 \xE2\x80\x93 landscape (1066.8 \xC3\x97 762 mm)) isn't one that "
            "the source "
            "\"Roll_2\" (Lower roll) takes (\\media\\source\\Roll_2\\entry). Instead: Roll_1\\Roll_42_in "
            "(Upper roll: Roll, 1067 mm (42 in)). "
            "[media-size-source]\n");
}

TEST_F(PmToolDevice, DescriptionMayBeSavedInAnotherFormat) {
    ASSERT_EQ(run({"convert", device, "device.pia", "--utf8"}).status, 0);
    const std::string file = sample_folder + "/pens.pcp";
    expect_no({"check", file, "--device", "device.pia", "--rule", "line-width"},
              file + ": error: \\8\\PEN_WEIGHT = 0.09: The line type 3 (Dash_Dot) needs a width of at least "
                     "0.1 (\\linetype\\font\\3\\width = 0.1). Instead: from "
                     "0.1 (Dash_Dot). [line-width]\n");
}

TEST_F(PmToolDevice, DescriptionIsTheOneOfItsFile) {
    ASSERT_EQ(run({"convert", device, "device.pia", "--utf8"}).status, 0);
    folder.write("mine.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=1\n}\n");
    ASSERT_EQ(run({"bundle", "-o", "one.dpia", "Mine=mine.pia", "Device=device.pia"}).status, 0);
    expect_output({"check", "mine.pia", "--device", "one.dpia", "--rule", "copies"},
                  "mine.pia: possible on the device\n");
    ASSERT_EQ(run({"bundle", "-o", "two.dpia", "A=device.pia", "Mine=mine.pia", "B=device.pia"}).status, 0);
    expect_trouble({"check", "mine.pia", "--device", "two.dpia"},
                   "two.dpia: the file describes several devices; write one to a file of its own with pmtool "
                   "extract (A, B)");
}

TEST_F(PmToolDevice, ExplainsWhereARuleLooked) {
    const std::string file = sample_folder + "/plotter.pia";
    expect_output({"check", file, "--device", device, "--rule", "copies", "--explain"},
                  file + ": possible on the device\n" + file +
                      ": copies             copies            passed   \\media\\copies -> "
                      "\\media\\max_number_of_copies\n");
}

TEST_F(PmToolDevice, MapTellsWhereAConfigurationKeepsWhat) {
    folder.write("mine.pia", "PIAFILEVERSION_2.0,\npaper=\"A9\npens=7\n");
    folder.write("map.json",
                 R"({"settings": [{"setting": "size", "path": "\\paper"}, {"setting": "p", "path": "\\pens"}],
        "rules": [{"rule": "few-pens", "severity": "warning", "setting": "p", "test": "at-most", "capability": "\\physical_pen\\default_npens"}]})");
    expect_no(
        {"check", "mine.pia", "--device", device, "--map", "map.json", "--rule", "media-size", "--rule",
         "few-pens", "--explain"},
        "mine.pia: error: \\paper = A9: The device has no media size \"A9\" (\\media\\size). Instead: "
        "ANSI_E_landscape (ANSI "
        "E \xE2\x80\x93 "
        "landscape (1117.6 \xC3\x97 863.6 mm)), ANSI_E_portrait (ANSI E \xE2\x80\x93 portrait (863.6 "
        "\xC3\x97 1117.6 mm)), "
        "ANSI_D_landscape (ANSI D \xE2\x80\x93 landscape (863.6 \xC3\x97 558.8 mm)), ANSI_D_portrait (ANSI D "
        "\xE2\x80\x93 "
        "portrait (558.8 \xC3\x97 863.6 mm)), ANSI_C_landscape (ANSI C \xE2\x80\x93 landscape (558.8 "
        "\xC3\x97 431.8 mm)), "
        "ANSI_C_portrait (ANSI C \xE2\x80\x93 portrait (431.8 \xC3\x97 558.8 mm)), ANSI_B_landscape (ANSI B "
        "\xE2\x80\x93 "
        "landscape (431.8 \xC3\x97 279.4 mm)), ANSI_B_portrait (ANSI B \xE2\x80\x93 portrait (279.4 \xC3\x97 "
        "431.8 mm)), and "
        "36 more. [media-size]\n"
        "mine.pia: media-size         size              found    \\paper -> \\media\\size\n"
        "mine.pia: media-size         size_entry        not set  \\media\\size\\*\\name -> "
        "\\media\\size\\*\\name\n"
        "mine.pia: few-pens           p                 passed   \\pens -> \\physical_pen\\default_npens\n");
}

TEST_F(PmToolDevice, OwnerTellsWhoMadeTheConfiguration) {
    folder.write("mine.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=1\n}\n");
    expect_no({"check", "mine.pia", "--device", device, "--owner", "1"},
              "mine.pia: warning: \\media\\copies = 1: Owner 2 has this setting (\\media\\ui_owner = "
              "11112222133332333333330). [owner]\n");
    expect_output({"check", "mine.pia", "--device", device, "--owner", "2"},
                  "mine.pia: possible on the device\n");
}

TEST_F(PmToolDevice, FindingsAsJson) {
    folder.write("mine.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=100\n}\n");
    const ToolRun told =
        run({"check", "mine.pia", "--device", device, "--rule", "copies", "--explain", "--json"});
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(nlohmann::json::parse(told.out),
              nlohmann::json::parse(R"([{"file": "mine.pia", "findings": [{"rule": "copies",
        "severity": "error", "configuration_path": "\\media\\copies", "description_path": "\\media\\max_number_of_copies",
        "configured": "100", "described": "99", "text": "",
        "offers": [{"value": "1 to 99", "text": "", "path": "\\media\\max_number_of_copies"}],
        "message": "The number of copies, 100, is above the most, 99."}],
        "looks": [{"rule": "copies", "setting": "copies", "outcome": "found", "configuration_path": "\\media\\copies",
        "description_path": "\\media\\max_number_of_copies"}]}])"));
}

TEST_F(PmToolDevice, DefaultsOfADescriptionAreChecked) {
    expect_output({"check", device, "--rule", "media-size"}, device + ": no bad lines\n");
    ASSERT_EQ(run({"convert", device, "device.pia", "--utf8"}).status, 0);
    ASSERT_EQ(run({"set", "device.pia", "\\media\\default_type", "Wallpaper"}).status, 0);
    expect_no({"check", "device.pia", "--rule", "media-type"},
              "device.pia: error: \\media\\default_type = Wallpaper: The device has no media type "
              "\"Wallpaper\" (\\media\\type). Instead: Bond "
              "(Bond 80 g/m\xC2\xB2), Heavy_Bond (Bond 120 g/m\xC2\xB2), Coated (Coated paper), Glossy_Photo "
              "(Glossy photo "
              "paper), Vellum (Vellum), Clear_Film (Clear film), Matte_Film (Matte film), Canvas (Canvas). "
              "[media-type]\n");
}

TEST_F(PmToolDevice, DefaultsOfEachDescriptionInAFolderAreChecked) {
    std::filesystem::create_directories(folder / "fold/below");
    copy_with_bad_default("fold/dx");
    save_with_too_many_pens("fold/below/saved.pia");
    ASSERT_EQ(run({"convert", device, "fold/good.pia", "--utf8"}).status, 0);
    folder.write("fold/note.txt", "a text");
    folder.write("fold/cut.pia", "PIA");
    expect_no({"check", "fold", "--rule", "custom", "--rule", "pen-count"},
              as_found("fold/below/saved.pia") + too_many_pens + as_found("fold/dx") + bad_default);
    expect_no({"check", "fold", "--rule", "custom", "--rule", "pen-count", "--from", "pia"},
              as_found("fold/below/saved.pia") + too_many_pens);
}

TEST_F(PmToolDevice, DefaultsOfEachDescriptionInADpiaFileAreChecked) {
    ASSERT_EQ(run({"convert", device, "good.pia", "--utf8"}).status, 0);
    save_with_too_many_pens("bad.pia");
    ASSERT_EQ(run({"bundle", "-o", "two.dpia", "Good=good.pia", "Bad=bad.pia"}).status, 0);
    expect_no({"check", "two.dpia"}, "two.dpia[Bad]" + too_many_pens);
    expect_no({"check", "two.dpia", "--section", "Bad"}, "two.dpia[Bad]" + too_many_pens);
    expect_output({"check", "two.dpia", "--section", "Good"}, "two.dpia: no bad lines\n");
}

TEST_F(PmToolDevice, DefaultsOfADescriptionOnStandardInputAreChecked) {
    ASSERT_EQ(run({"convert", device, "device.pia", "--utf8"}).status, 0);
    ASSERT_EQ(run({"set", "device.pia", "\\media\\default_type", "Wallpaper"}).status, 0);
    const ToolRun named = run({"check", "device.pia", "--rule", "media-type"});
    const ToolRun given = run_with_input({"check", "-", "--rule", "media-type"}, folder.read("device.pia"));
    EXPECT_EQ(1, given.status);
    EXPECT_EQ("standard input" + named.out.substr(std::string("device.pia").size()), given.out);
}

TEST_F(PmToolDevice, BadLineEndsTheCheckUnlessItIsToGoOn) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=1\n feed=yes\n}\n");
    const std::string bad = "bad.pia:4: The value is of no known type (error 88): feed=yes";
    expect_trouble(with({"check", "bad.pia", "--device", device}, quiet),
                   bad + "; all bad lines are listed by: pmtool check");
    const ToolRun told = run(with({"check", "bad.pia", "--device", device, "--keep-going"}, quiet));
    EXPECT_EQ(0, told.status);
    EXPECT_EQ("bad.pia: possible on the device\n", told.out);
    EXPECT_EQ("pmtool: dropped: " + bad + "\n", told.err);
}

TEST_F(PmToolDevice, ConfigurationThatCannotBeReadKeepsNoOtherFromBeingChecked) {
    folder.write("good.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=1\n}\n");
    folder.write("many.pia", "PIAFILEVERSION_2.0,\nmedia{\n copies=100\n}\n");
    const std::vector<std::string> words{"check",    "good.pia", "no.pia", "many.pia",
                                         "--device", device,     "--rule", "copies"};
    const ToolRun shown = run(words);
    EXPECT_EQ(2, shown.status);
    EXPECT_EQ("good.pia: possible on the device\n"
              "many.pia: error: \\media\\copies = 100: The number of copies, 100, is above the most, 99 "
              "(\\media\\max_number_of_copies = 99). Instead: 1 to 99. [copies]\n",
              shown.out);
    EXPECT_EQ("pmtool: no.pia: The file doesn't exist (error 63)\n", shown.err);

    const ToolRun told = run(with(words, {"--json"}));
    EXPECT_EQ(2, told.status);
    const nlohmann::json list = nlohmann::json::parse(told.out);
    ASSERT_EQ(2U, list.size());
    EXPECT_EQ("good.pia", list[0]["file"]);
    EXPECT_EQ(0U, list[0]["findings"].size());
    EXPECT_EQ("many.pia", list[1]["file"]);
    EXPECT_EQ(1U, list[1]["findings"].size());
}

TEST_F(PmToolDevice, BadLineOfTheDescriptionIsDroppedWhenItIsToGoOn) {
    ASSERT_EQ(run({"convert", device, "device.pia", "--utf8"}).status, 0);
    std::string text = folder.read("device.pia");
    folder.write("device.pia", text.insert(text.find('\n') + 1, "bad=yes\n"));
    const std::string file = sample_folder + "/office.pc2";
    EXPECT_EQ(2, run(with({"check", file, "--device", "device.pia"}, quiet)).status);
    EXPECT_EQ(0, run(with({"check", file, "--device", "device.pia", "--keep-going"}, quiet)).status);
}

TEST_F(PmToolDevice, MapOnStandardInputIsReadOnce) {
    const std::vector<std::string> words{"check", "mine.pia", "--device", device,
                                         "--map", "-",        "--rule",   "few-pens"};
    folder.write("mine.pia", "PIAFILEVERSION_2.0,\npens=7\n");
    const ToolRun told =
        run_with_input(words, R"({"settings": [{"setting": "p", "path": "\\pens"}], "rules": [
        {"rule": "few-pens", "setting": "p", "test": "at-most", "capability": "\\physical_pen\\default_npens"}]})");
    EXPECT_EQ("", told.err);
    EXPECT_EQ("mine.pia: possible on the device\n", told.out);
    EXPECT_EQ("pmtool: standard input:2: The map is no JSON.\n", run_with_input(words, "{\n{").err);
    expect_trouble({"check", "-", "--device", device, "--map", "-"},
                   "only one of FILE, DESCRIPTION and MAP can be standard input; see pmtool check --help");
}

TEST_F(PmToolDevice, TroubleIsToldInOneLine) {
    const std::string file = sample_folder + "/plotter.pia";
    folder.write("map.json", "{\n{");
    expect_trouble({"check", file, "--device", device, "--map", "map.json"},
                   "map.json:2: The map is no JSON.");
    expect_trouble({"check", file, "--device", device, "--owner", "4"},
                   "4: an owner is a number from 0 to 3; see pmtool check --help");
    expect_trouble({"check", file, "--device", device, "--rule", "nothing"},
                   "nothing: there is no such rule for a device; see pmtool check --rules");
    expect_trouble({"check", file, "--device", file},
                   file +
                       ": The tree describes no device: no group of capabilities has a text \"abilities\".");
    expect_trouble({"check", file, "--explain"},
                   "--map, --owner and --explain go with --device; see pmtool check --help");
    expect_trouble({"check", file, "--device", device, "--roundtrip"},
                   "--roundtrip doesn't go with --device; see pmtool check --help");
}

} // namespace

} // namespace pm::test

#include "kit/errors.h"
#include "kit/random_tree.h"
#include "pm_test_paths.h"
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/inspect.h>
#include <pm/kit/check.h>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/loss.h>

namespace pm::kit::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto pia = PM_Object::FILE_PIA;
constexpr auto dpia = PM_Object::FILE_DPIA;
constexpr auto doc = PM_Object::FILE_DOC;

Tree tree_of(const std::string& script) {
    return applied(Tree(), parse_script(script));
}

std::vector<std::string> texts(const std::vector<Loss>& losses) {
    std::vector<std::string> lines;
    for (const Loss& loss : losses) {
        lines.push_back(loss_text(loss));
    }
    return lines;
}

std::vector<std::string> losses(const std::string& script, const WriteOptions& options) {
    return texts(prepare(tree_of(script), options).losses);
}

FileContent sample(const std::string& name) {
    return read_file({.file = std::string(PM_SAMPLES) + '/' + name});
}

// ---- nothing is lost

TEST(Prepare, GivesBytesThatReadBack) {
    const FileContent source = sample("plotter.pia");
    for (const auto type : {pia, doc}) {
        const Prepared prepared = prepare(source.tree, {.type = type});
        const FileContent back = read_content(prepared.bytes, {.file = "x"});
        EXPECT_EQ(type, back.type);
        EXPECT_EQ(2, back.tree.get<int>("\\media\\copies").value_or(0) + 1);
    }
    const Prepared prepared = prepare(source.tree, {.tag = source.tag});
    EXPECT_THAT(texts(prepared.losses), IsEmpty());
    EXPECT_THAT(prepared.notes, IsEmpty());
    EXPECT_EQ(source.bytes, prepared.bytes);
}

TEST(Prepare, SamplesLoseNothingAsPropertyText) {
    for (const auto& entry : std::filesystem::directory_iterator(PM_SAMPLES)) {
        const FileContent content = read_file({.file = entry.path().string()});
        if (content.type == dpia) continue;
        for (const char* tag : {"", "T,compress"}) {
            const std::vector<std::string> lost = texts(prepare(content.tree, {.tag = tag}).losses);
            for (const std::string& line : lost) {
                EXPECT_THAT(line, ::testing::HasSubstr("a node in which there is nothing")) << entry.path();
            }
        }
    }
}

TEST(Prepare, SectionsOfDpiaKeepNamesAndInfos) {
    const FileContent source = sample("sections.dpia");
    const Prepared prepared = prepare(source.tree, options_of(source));
    EXPECT_THAT(texts(prepared.losses), IsEmpty());
    const FileContent back = read_content(prepared.bytes, {.file = "x"});
    EXPECT_TRUE(identical(source.tree, back.tree));
    EXPECT_EQ(source.sections, back.sections);
}

TEST(Prepare, PlottersOfCfgGoToSections) {
    const FileContent source = sample("three-plotters.cfg");
    const Prepared prepared = prepare(source.tree, {.type = dpia, .sections = source.sections});
    EXPECT_THAT(texts(prepared.losses), IsEmpty());
    EXPECT_EQ(source.sections, read_content(prepared.bytes, {.file = "x"}).sections);
}

TEST(Prepare, TakesASubtree) {
    const Prepared prepared =
        prepare(tree_of("set \\a\\[*]\\p long 1\nset \\q long 2"), {.subtree = "\\a\\*"});
    EXPECT_THAT(prepared.losses, IsEmpty());
    EXPECT_EQ("PIAFILEVERSION_2.0,\r\np=1\n", prepared.bytes.substr(0, prepared.bytes.size() - 1));
}

// ---- property text

TEST(PiaLosses, ValuesThatTextCannotHold) {
    EXPECT_THAT(
        losses("set \\a string \"two\\nlines\"\nset \\b long 1", {}),
        ElementsAre(
            "\\a: cut: a text ends at its first line end: string \"two\\nlines\" -> string \"two\"",
            "\\b: lost: the reading stops in front of it, at what something else left: long 1 -> nothing"));
    EXPECT_THAT(
        losses("set \\a string \"x  \"", {}),
        ElementsAre("\\a: cut: blanks at the end of a text aren't kept: string \"x  \" -> string \"x\""));
    EXPECT_THAT(losses("set \\a string bytes 616200", {}),
                ElementsAre("\\a: changed: a text that is no wide one with its terminator isn't kept: "
                            "string bytes 616200 -> string \"?\""));
}

TEST(PiaLosses, ValueWithALineEndDoesNotInjectANode) {
    EXPECT_THAT(
        losses("set \\a string \"x\\nevil{\\np=1\\n}\"", {}),
        ElementsAre(
            "\\a: cut: a text ends at its first line end: string \"x\\nevil{\\np=1\\n}\" -> string \"x\"",
            "\\evil\\p: appeared: nothing of this path was asked for: nothing -> long 1"));
}

TEST(PiaLosses, CharactersThatTheCodePageHasNot) {
    EXPECT_THAT(losses("set \\name string \"a\u0416\U0001F600\"", {}),
                ElementsAre("\\name: re-encoded: not all of its characters are in the code page 1252: "
                            "string \"a\u0416\U0001F600\" -> string \"a???\""));
    EXPECT_THAT(losses("set \\name string \"\u0416\"", {.utf8 = true}), IsEmpty());
    EXPECT_THAT(losses("set \\name string \"\u0416\"", {.code_page = 1251}), IsEmpty());
    EXPECT_EQ(1252U, pm_system_code_page());
}

TEST(PiaLosses, NamesThatTextCannotHold) {
    EXPECT_THAT(losses("set \\;x long 5", {}),
                ElementsAre("\\;x: lost: a line that begins with \";\" is a comment: long 5 -> nothing"));
    EXPECT_THAT(losses("set \\x{y\\z long 1", {}),
                ElementsAre("\\x{y\\z: moved: it comes back in another place: \\x\\z"));
    EXPECT_THAT(
        losses("set \"\\\\a b\" bool true", {}),
        ElementsAre("\\a b: lost: a name isn't one that property text can hold: bool true -> nothing"));
    EXPECT_THAT(losses("set \\\u0416 long 1", {}),
                ElementsAre("\\\u0416: renamed: it comes back under another name: \\?"));
    EXPECT_THAT(losses("set \\1st long 1\nset \\2nd\\p long 1\nset \\x{ long 3", {}), IsEmpty());
}

TEST(PiaLosses, WhatComesBackElsewhereIsThatOfOnePropertyAlone) {
    const std::string moved = "set \\x{y\\z long 1\n";
    const std::string renamed = "set \\x\\\u0416 long 1\n";
    const char* const told[] = {"\\x{y\\z: moved: it comes back in another place: \\x\\z",
                                "\\x\\\u0416: renamed: it comes back under another name: \\x\\?"};
    EXPECT_THAT(losses(moved + renamed, {}), ElementsAre(told[0], told[1]));
    EXPECT_THAT(losses(renamed + moved, {}), ElementsAre(told[1], told[0]));
}

TEST(PiaLosses, OrderIsThatOfWhatComesBack) {
    EXPECT_THAT(losses("set \\\u0416 long 1\nset \\o long 2", {}),
                ElementsAre("\\\u0416: renamed: it comes back under another name: \\?"));
    EXPECT_THAT(losses("set \\x{y\\z long 1\nset \\n\\o long 2\nset \\x\\p long 3", {}),
                ElementsAre("\\x{y\\z: moved: it comes back in another place: \\x\\z",
                            "\\: order: the order isn't kept"));
}

TEST(PiaLosses, TextThatIsTakenForUtf8) {
    const std::string script = "set \\name string \"\u00C3\u00BC\"\nset \\\u00C3\u00A4 long 1\n"
                               "set \\n\u00C3\u00B6\\p long 2";
    EXPECT_THAT(losses(script, {}), IsEmpty());
    EXPECT_THAT(losses(script, {.utf8 = true, .guessed = true}), IsEmpty());
    EXPECT_THAT(losses(script + "\nset \\q string \"\u00FC\"", {.guessed = true}), IsEmpty());
    EXPECT_THAT(
        losses(script, {.guessed = true}),
        ElementsAre("\\name: re-encoded: all that isn't ASCII could be UTF-8, and is read as that: "
                    "string \"\u00C3\u00BC\" -> string \"\u00FC\"",
                    "\\\u00C3\u00A4: renamed: all that isn't ASCII could be UTF-8, and is read as that: "
                    "\\\u00E4",
                    "\\n\u00C3\u00B6\\p: moved: all that isn't ASCII could be UTF-8, and is read as "
                    "that: \\n\u00F6\\p"));
}

TEST(PiaLosses, UnpairedSurrogateIsNotInUtf8) {
    EXPECT_THAT(losses("set \\a string \"\\ud800\"", {.utf8 = true}),
                ElementsAre("\\a: re-encoded: not all of its characters are in the code page 65001: "
                            "string \"\\ud800\" -> string \"?\""));
}

TEST(PiaLosses, WhatTheFormatHasNoFormFor) {
    EXPECT_THAT(losses("set \\e\\f\\\nset \\g\\p long 1", {}),
                ElementsAre("\\e\\f\\: lost: a node in which there is nothing isn't read back"));
    EXPECT_THAT(
        losses("set \\a long 1\nset \\n none\nset \\b long 2", {}),
        ElementsAre(
            "\\n: lost: a property without a value isn't written, nor are those behind it: none -> nothing",
            "\\b: lost: it doesn't come back: long 2 -> nothing"));
    EXPECT_THAT(losses("set \\a long 1\nset \\r raw\nset \\b long 2", {}),
                ElementsAre("\\r: lost: it can't be written to a pia file: Raw data can't be converted to or "
                            "from hexadecimal digits (53): "
                            "raw -> nothing"));
}

TEST(PiaLosses, DoublesComeBackToTheBit) {
    EXPECT_THAT(losses("set \\b double 5e-324\nset \\c double 0.1\nset \\d double 1e300", {}), IsEmpty());
}

TEST(PiaLosses, NegativeZeroBecomesZero) {
    EXPECT_THAT(losses("set \\a double -0.0", {}),
                ElementsAre("\\a: changed: property text has no negative zero: double -0.0 -> double 0.0"));
    EXPECT_THAT(losses("set \\a double -0.0", {.type = doc}), IsEmpty());
}

TEST(PiaLosses, NumbersThatTextCannotHold) {
    const std::string script = "set \\a double nan\nset \\b double inf\nset \\c double 0.0";
    EXPECT_THAT(losses(script, {}), ElementsAre("\\a: lost: it doesn't come back: double nan -> nothing",
                                                "\\b: lost: it doesn't come back: double inf -> nothing"));
    EXPECT_THAT(losses(script, {.type = doc}), IsEmpty());
}

TEST(PiaLosses, StrictnessIsANote) {
    const Prepared prepared = prepare(tree_of("set \\a loose long 1"), {});
    EXPECT_THAT(prepared.losses, IsEmpty());
    EXPECT_THAT(prepared.notes, ElementsAre("what is read back is strict, whatever it was"));
}

TEST(PiaLosses, TagThatTheHeaderCannotHold) {
    EXPECT_THAT(losses("set \\a long 1", {.tag = "x\ny"}).front(),
                "changed: the header's tag isn't kept: string \"x\\ny\" -> string \"x\"");
}

// ---- compound files

TEST(DocLosses, TruthValuesBecomeNumbers) {
    EXPECT_THAT(
        losses("set \\a bool true", {.type = doc}),
        ElementsAre("\\a: retyped: a compound file gives truth values back as numbers: bool true -> long 1"));
}

TEST(DocLosses, DeviceDescriptionRetypesEachOfItsTruthValues) {
    const FileContent source = sample("dx4200");
    const Prepared prepared = prepare(source.tree, {.type = doc});
    const auto retyped = std::ranges::count(prepared.losses, LossKind::retyped, &Loss::kind);
    std::ptrdiff_t bools = 0;
    for (const auto& [node, depth] : source.tree.walk()) {
        bools += std::ranges::count(node.properties(), PROP_BOOL, &Property::type);
    }
    EXPECT_EQ(117, bools);
    EXPECT_EQ(117, retyped);
}

TEST(DocLosses, WhatCannotBeWrittenIsLeftOut) {
    const std::string text(600, 'x');
    const Prepared prepared = prepare(
        tree_of("set \\a long 1\nset \\b\\c string \"" + text + "\"\nset \\b\\d long 2\nset \\x/y long 3"),
        {.type = doc});
    ASSERT_EQ(2U, prepared.losses.size());
    EXPECT_EQ("\\x/y", prepared.losses[0].path);
    EXPECT_EQ("it can't be written to a doc file: The compound file can't be written (60)",
              prepared.losses[0].reason);
    EXPECT_EQ("\\b\\c", prepared.losses[1].path);
    EXPECT_THAT(prepared.losses[1].reason, ::testing::EndsWith("(58)"));
    EXPECT_EQ(2, read_content(prepared.bytes, {.file = "x"}).tree.get<int>("\\b\\d"));
}

TEST(DocLosses, PropertiesOfATypeWithoutAValueAreLeftOut) {
    EXPECT_THAT(
        losses("set \\a raw 00\nset \\b long none\nset \\c string none", {.type = doc}),
        ElementsAre(
            "\\b: lost: it can't be written to a doc file: The property has no value (59): long none -> "
            "nothing",
            "\\c: lost: it can't be written to a doc file: The property has no value (59): string none -> "
            "nothing"));
}

TEST(DocLosses, EmptyNodeThatCannotBeWrittenIsLeftOut) {
    const Prepared prepared = prepare(tree_of("set \\a long 1\nset \\x/y\\"), {.type = doc});
    EXPECT_THAT(
        texts(prepared.losses),
        ElementsAre(
            "\\x/y\\: lost: it can't be written to a doc file: The compound file can't be written (60)"));
    EXPECT_EQ(1, read_content(prepared.bytes, {.file = "x"}).tree.get<int>("\\a"));
}

TEST(DocLosses, NamesThatDoNotComeBack) {
    EXPECT_THAT(losses("set \\copies long 1\nset \\COPIES long 2", {.type = doc}),
                ElementsAre("\\copies: lost: it doesn't come back: long 1 -> nothing"));
    EXPECT_THAT(losses("set \\n\\version long 1", {.type = doc}),
                ElementsAre("\\n\\version: lost: a compound file gives nothing back that is named "
                            "\"Version\": long 1 -> nothing"));
}

TEST(DocLosses, OrderIsANote) {
    const Prepared prepared = prepare(tree_of("set \\long_name long 1\nset \\a long 2"), {.type = doc});
    EXPECT_THAT(prepared.losses, IsEmpty());
    EXPECT_THAT(prepared.notes, ElementsAre("the order of nodes and properties is that of a compound file"));
}

TEST(DocLosses, EmptyNodesDoNotComeBack) {
    EXPECT_THAT(losses("set \\e\\f\\", {.type = doc}),
                ElementsAre("\\e\\f\\: lost: a node in which there is nothing isn't read back"));
}

// ---- sections

TEST(DpiaLosses, WhatIsBesideSections) {
    EXPECT_THAT(losses("set \\p long 1\nset \\s\\p long 2", {.type = dpia}),
                ElementsAre("\\p: lost: a dpia file holds nothing beside its sections: long 1 -> nothing"));
}

TEST(DpiaLosses, EmptySectionComesBack) {
    EXPECT_THAT(losses("set \\s\\", {.type = dpia}), IsEmpty());
}

TEST(DpiaLosses, NamesOfSectionsThatAreNotAscii) {
    const std::vector<std::string> lines = losses("set \\\u0416\\p long 2", {.type = dpia});
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.front(),
                ::testing::HasSubstr("\\\u0416\\p: lost: nothing of the file can be read back"));
}

TEST(DpiaLosses, NameThatANodeCannotHave) {
    EXPECT_THAT(
        losses("set \\a/b\\p long 2", {.type = dpia, .sections = {{"a\\b", "", "a/b"}}}),
        ElementsAre("\\a/b\\: renamed: a section can't be written under its name, \"a\\\\b\": \\a/b\\"));
}

TEST(DpiaLosses, InfoTextThatDoesNotComeBack) {
    EXPECT_THAT(
        losses("set \\[*]\\p long 2", {.type = dpia, .sections = {{"*", "text", "*"}}}),
        ElementsAre("\\*\\: changed: the section's info text isn't kept: string \"text\" -> string \"\""));
}

// ---- any tree

TEST(Prepare, OfAnyTreeTellsAllThatIsLost) {
    RandomTree random(31);
    for (int i = 0; i < 20; ++i) {
        const Tree tree = random.make(25);
        for (const auto type : {pia, dpia, doc}) {
            const Prepared prepared = prepare(tree, {.type = type});
            FileContent back;
            bool readable = true;
            try {
                read_content_into(back, prepared.bytes, {.file = "x", .type = type, .keep_going = true});
            } catch (const ZT_Exception&) {
                readable = false;
            }
            const bool same =
                readable && compare(tree, back.tree, {.order = false, .strictness = false}).empty();
            EXPECT_EQ(same, prepared.losses.empty()) << to_utf8(u"") << format_name(type) << ' ' << i;
        }
    }
}

TEST(Prepare, DeepTreesAndLongTextsAreNoCrash) {
    std::string deep;
    for (int i = 0; i < 255; ++i) {
        deep += "\\n";
    }
    const std::string text(5000, 'x');
    const Tree tree = tree_of("set " + deep + "\\p long 1\nset \\t string \"" + text + "\"");
    EXPECT_THAT(texts(prepare(tree, {}).losses), ElementsAre(::testing::StartsWith("\\t: cut: ")));
    EXPECT_EQ(1U, prepare(tree, {.type = doc}).losses.size());
}

TEST(Prepare, RefusesWhatIsNotWritten) {
    EXPECT_EQ("pc2 files are read only; pia, dpia and doc are written",
              error_of([] { (void)prepare(Tree(), {.type = PM_Object::FILE_PC2}); }));
    EXPECT_EQ("\\x: there is no such node", error_of([] { (void)prepare(Tree(), {.subtree = "\\x"}); }));
}

// ---- sources

TEST(SourceLosses, AreReportsUnreadSectionsAndDiagnostics) {
    const FileContent source =
        read_content("PIAFILEVERSION_2.0,\r\na=\nb=truely\nc=yes\n", {.file = "x.pia"});
    EXPECT_THAT(texts(source_losses(source)),
                ElementsAre("source: The line isn't valid (57): 2, a=, ",
                            "source: The value is of no known type (88): c=yes"));
    FileContent with_unread;
    with_unread.unread = {"a"};
    const std::vector<Diagnostic> diagnostics{
        {"repeated-name", Severity::warning, {"x", "", 3, 1}, "\\a", "The name is there twice.", 0},
        {"unclosed-node", Severity::warning, {}, "", "The node isn't closed.", 0},
        {"cut-text", Severity::note, {}, "", "A text is cut.", 0}};
    EXPECT_THAT(texts(source_losses(with_unread, diagnostics)),
                ElementsAre("source: another section named \"a\" stands in front of it",
                            "\\a: source: line 3, The name is there twice."));
}

std::vector<std::string> silent_losses(const std::string& bytes, const std::string& name = "x") {
    FileContent silent;
    return texts(source_losses(silent, check_content(bytes, name)));
}

TEST(SourceLosses, AreSectionsThatAreNotKnown) {
    EXPECT_THAT(silent_losses("PC2Version 2.0\n[Plotter/Usr]\nBaudRate=9600\n", "x.pc2"),
                ElementsAre("source: line 2, \"Plotter/Usr\" is no section, and its keys aren't read."));
}

TEST(SourceLosses, AreBytesBehindWhatIsRead) {
    const std::string text = prepare(tree_of("set \\a long 1"), {.tag = "compress"}).bytes;
    EXPECT_THAT(silent_losses(text), IsEmpty());
    EXPECT_THAT(silent_losses(text + "tail"),
                ElementsAre("source: line 2, 4 bytes behind the compressed body aren't read."));
    const std::string sections = prepare(tree_of("set \\a\\b long 1"), {.type = dpia}).bytes;
    EXPECT_THAT(silent_losses(sections), IsEmpty());
    EXPECT_THAT(silent_losses(sections + "tail"),
                ElementsAre("source: 4 bytes behind the last section aren't read."));
}

TEST(SourceLosses, AreBodiesThatTheHeaderKeepsFromBeingRead) {
    std::string text = prepare(tree_of("set \\a long 1"), {.tag = "compress"}).bytes;
    text[0] = 'p';
    EXPECT_THAT(silent_losses(text),
                ElementsAre("source: line 1, A compressed body needs the version in capital "
                            "letters, and isn't read."));
}

TEST(SourceLosses, AreReferencesThatAreDropped) {
    const std::vector<Diagnostic> diagnostics{
        {"unknown-reference", Severity::warning, {"x", "", 3, 1}, "", "\"Full\" is no name.", 0}};
    EXPECT_THAT(texts(source_losses({}, diagnostics)), ElementsAre("source: line 3, \"Full\" is no name."));
}

TEST(SourceLosses, TellSectionNumberAndWhatIsWrong) {
    const auto report = [](std::uint32_t number, std::string place, std::string detail, std::string section) {
        return FileReport{{2, number, std::move(place), std::move(detail)}, std::move(section)};
    };
    FileContent source;
    source.reports = {report(PM_ERR_BAD_LINE, "load", "\n2, a=", "Fir\nst"),
                      report(PM_ERR_BAD_LINE, "load", "", ""), report(PM_ERR_UNKNOWN_VALUE, "c=yes", "", "2"),
                      report(PM_ERR_UNKNOWN_VALUE, "c=yes", "d=no", ""), report(9999, "", "", "")};
    EXPECT_THAT(texts(source_losses(source)),
                ElementsAre("source: section Fir\\x0Ast, The line isn't valid (57): 2, a=",
                            "source: The line isn't valid (57)",
                            "source: section 2, The value is of no known type (88): c=yes",
                            "source: The value is of no known type (88): d=no", "source: error 9999"));
}

TEST(SourceLosses, AreOfDiagnosticsWhatNoReportTells) {
    const std::vector<Diagnostic> diagnostics{
        {"cut-text", Severity::warning, {"x", "S", 0, 0}, "", "A text is cut.", 0},
        {"bad-line", Severity::error, {"x", "S", 7, 1}, "", "The line is bad.", PM_ERR_BAD_LINE}};
    FileContent source;
    EXPECT_THAT(
        texts(source_losses(source, diagnostics)),
        ElementsAre("source: section S, A text is cut.", "source: section S, line 7, The line is bad."));
    source.reports = {{{2, PM_ERR_BAD_LINE, "load", "7"}, "S"}};
    EXPECT_THAT(
        texts(source_losses(source, diagnostics)),
        ElementsAre("source: section S, The line isn't valid (57): 7", "source: section S, A text is cut."));
}

TEST(FormChanges, AreToldALineEach) {
    const auto changes = [](const std::string& bytes, const WriteOptions& options) {
        return form_changes(read_content(bytes, {.file = "x"}), options);
    };
    EXPECT_THAT(changes("PIAFILEVERSION_2.0,T\r\na=1\n", {.tag = "T"}), IsEmpty());
    EXPECT_THAT(changes("PIAFILEVERSION_1.0,T\r\na=1\n", {.tag = "T"}),
                ElementsAre("version 1.0 becomes 2.0"));
    EXPECT_THAT(changes("PIAFILEVERSION_2.0,T\na = 01\n", {.tag = "T"}),
                ElementsAre("numbers, blanks or line ends are written in another form"));
    EXPECT_THAT(changes("PIAFILEVERSION_2.0,T\n;x\na=1\n  ; y", {.tag = "T"}),
                ElementsAre("comments aren't kept"));
    EXPECT_THAT(
        changes("PIAFILEVERSION_2.0,T\n; x\na=01\n", {.tag = "T"}),
        ElementsAre("comments aren't kept", "numbers, blanks or line ends are written in another form"));
    EXPECT_THAT(changes("PIAFILEVERSION_2.0;x,T\na=\";1\n", {.tag = "T"}),
                ElementsAre("the header's text \";x\" isn't kept"));
    EXPECT_THAT(changes("PIAFILEVERSION_1.0 ;x\r\na=1\n", {}),
                ElementsAre("version 1.0 becomes 2.0", "the header's text \" ;x\" isn't kept"));
    EXPECT_THAT(changes("PIAFILEVERSION_2.0 \na=1\n", {}), IsEmpty());
    EXPECT_THAT(changes("PIAFILEVERSION_2.0,T\r\na=1\n", {.tag = "U,compress"}),
                ElementsAre("the body is compressed now", "the header's tag \"T\" becomes \"U\""));
    EXPECT_THAT(changes("PIAFILEVERSION_2.0,T\r\na=1\n", {.type = doc}),
                ElementsAre("the header's tag \"T\" isn't kept"));
}

TEST(FormChanges, OfCompressionAreToldWithoutThoseOfTheText) {
    const FileContent source =
        read_content(prepare(tree_of("set \\a long 1"), {.tag = "T,U,compress"}).bytes, {.file = "x"});
    EXPECT_THAT(form_changes(source, {.tag = "T,U,compress"}), IsEmpty());
    EXPECT_THAT(form_changes(source, {.tag = "T,U"}), ElementsAre("the body is no longer compressed"));
    EXPECT_THAT(form_changes(source, {.tag = "U"}),
                ElementsAre("the body is no longer compressed", "the header's tag \"T,U\" becomes \"U\""));
}

TEST(FormChanges, OfATreeWithoutAFileAreThoseOfItsHeader) {
    FileContent source;
    source.tag = "T";
    EXPECT_THAT(form_changes(source, {.tag = "T"}), IsEmpty());
    EXPECT_THAT(form_changes(source, {.type = dpia}), ElementsAre("the header's tag \"T\" isn't kept"));
    source.tag = "compress";
    EXPECT_THAT(form_changes(source, {.type = dpia}), IsEmpty());
    source.type = PM_Object::FILE_PCP;
    source.tag = "T";
    EXPECT_THAT(form_changes(source, {.type = pia}), IsEmpty());
}

TEST(OptionsOf, KeepWhatTheFormatOfTheSourceCanKeep) {
    FileContent source;
    source.tag = "T";
    source.sections = {{"a", "", "a"}};
    EXPECT_EQ("T", options_of(source).tag);
    EXPECT_THAT(options_of(source).sections, IsEmpty());
    source.type = dpia;
    source.by_section = true;
    EXPECT_EQ(dpia, options_of(source).type);
    EXPECT_EQ("", options_of(source).tag);
    EXPECT_EQ(source.sections, options_of(source).sections);
    source.type = PM_Object::FILE_PC2;
    EXPECT_EQ(pia, options_of(source).type);
}

TEST(DocLosses, OfASubtreeAreToldBelowIt) {
    const Tree tree = tree_of("set \\a\\x/y long 1\nset \\a\\b long 2");
    EXPECT_THAT(texts(prepare(tree, {.type = doc, .subtree = "\\a"}).losses),
                ElementsAre("\\x/y: lost: it can't be written to a doc file: The compound file can't be "
                            "written (60): long 1 -> nothing"));
}

} // namespace
} // namespace pm::kit::test

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/pages.h>
#include <pm/value.h>
#include <report/html.h>
#include <report/marks.h>
#include <report/picture.h>
#include <report/reading.h>

// What a page says of configurations: findings, marks, settings, and those of several side by side.
namespace {

using pm::Tree;
using pm::kit::ReportConfiguration;
using pm::kit::ReportDescription;
using pm::kit::ReportInput;
using pm::kit::Severity;
using pm_test::finding;
using pm_test::Markup;
using pm_test::passed;
using pm_test::settings_of;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

Tree device_of_types() {
    Tree tree;
    tree.set("\\media\\type\\0\\name", "Bond");
    tree.set("\\media\\type\\1\\name", "Film");
    return tree;
}

// The page of a device and one configuration with these findings.
Markup page_with(const std::vector<pm::kit::Finding>& findings) {
    const Tree device = device_of_types();
    Tree office;
    office.set("\\media\\default_type", "Wool");
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    input.configurations[0].check.findings = findings;
    return Markup(pm::kit::report_page(input));
}

pm::kit::Finding no_wool() {
    return finding(Severity::error, "media-type", "\\media\\default_type", "\\media\\type", "No wool.");
}

TEST(FindingOnAPage, ShowsEightOffersAtMost) {
    auto type = no_wool();
    const auto offers = [&](int count) {
        type.offers.clear();
        for (int at = 1; at <= count; ++at) {
            type.offers.push_back({fmt::format("T{}", at), "", ""});
        }
        return page_with({type}).texts("p", "offers");
    };
    EXPECT_THAT(offers(0), IsEmpty());
    EXPECT_THAT(offers(8), ElementsAre("Offered instead: T1, T2, T3, T4, T5, T6, T7, T8"));
    EXPECT_THAT(offers(9), ElementsAre("Offered instead: T1, T2, T3, T4, T5, T6, T7, T8 and 1 more"));
}

TEST(FindingOnAPage, ShowsTheTextOfAValueWhereItIsAnother) {
    auto type = no_wool();
    const auto where = [&](std::string configured, std::string text) {
        type.configured = std::move(configured);
        type.text = std::move(text);
        return page_with({type}).texts("p", "where").at(0);
    };
    EXPECT_EQ("office.pia · \\media\\default_type · rule media-type", where("", "Sheep"));
    EXPECT_EQ("office.pia · \\media\\default_type = Wool · rule media-type", where("Wool", ""));
    EXPECT_EQ("office.pia · \\media\\default_type = Wool · rule media-type", where("Wool", "Wool"));
    EXPECT_EQ("office.pia · \\media\\default_type = Wool (Sheep) · rule media-type", where("Wool", "Sheep"));
}

TEST(FindingOnAPage, MoreThanThreeOfOneKindAreFolded) {
    const auto summaries = [](Severity severity, std::size_t count) {
        return page_with(std::vector(count, finding(severity, "r", "\\a", "\\media\\type", "Odd.")))
            .texts("summary");
    };
    EXPECT_THAT(summaries(Severity::note, 3), IsEmpty());
    EXPECT_THAT(summaries(Severity::note, 4), ElementsAre("4 notes"));
    EXPECT_THAT(summaries(Severity::warning, 4), ElementsAre("4 doubtful"));
    EXPECT_THAT(summaries(Severity::error, 4), IsEmpty());
}

TEST(FindingOnAPage, VerdictCountsEachKind) {
    const auto verdict = [](const std::vector<Severity>& kinds) {
        std::vector<pm::kit::Finding> findings;
        for (const Severity kind : kinds) {
            findings.push_back(finding(kind, "r", "\\a", "\\media\\type", "Odd."));
        }
        return page_with(findings).texts("td").at(1);
    };
    using enum Severity;
    EXPECT_EQ("fits", verdict({}));
    EXPECT_EQ("1 thing not possible, 1 doubtful, 1 note", verdict({note, warning, error}));
    EXPECT_EQ("2 things not possible, 2 doubtful, 2 notes",
              verdict({note, warning, error, note, warning, error}));
}

TEST(FindingOnAPage, SettingHasTheWorstVerdictOfItsFindings) {
    const auto setting = [](const std::vector<pm::kit::Finding>& findings) {
        return page_with(findings).texts("tr", "setting").at(0);
    };
    const auto found = [](Severity severity, std::string rule) {
        return finding(severity, std::move(rule), "\\media\\default_type", "\\media\\type", "Odd.");
    };
    using enum Severity;
    EXPECT_EQ("Default typeWool", setting({found(note, "owner")}));
    EXPECT_EQ("Default typeWool ?", setting({found(note, "unspoken")}));
    EXPECT_EQ("Default typeWool doubtful", setting({found(warning, "a"), found(note, "unspoken")}));
    EXPECT_EQ("Default typeWool not possible", setting({found(warning, "a"), found(error, "b")}));
}

TEST(MarkOnAPage, ChoiceThatIsNotPossibleIsNoChoice) {
    const Tree device = device_of_types();
    const Tree office;
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    auto& check = input.configurations[0].check;
    check.looks.push_back(passed("media-type", "type", "\\a", "\\media\\type\\0\\name"));
    check.looks.push_back(passed("media-type", "size", "\\a", "\\media\\type\\1")); // no choice of the rule
    check.looks.push_back({"media-type", "type", "\\a", "\\media\\type\\1", "not set"});
    const auto rows = [&] { return Markup(pm::kit::report_page(input)).texts("tr", "type-row"); };
    EXPECT_THAT(rows(), ElementsAre("Bond chosenBond––", "FilmFilm––"));
    check.looks[1].setting = "custom";
    EXPECT_THAT(rows(), ElementsAre("Bond chosenBond––", "Film chosenFilm––"));
    check.looks[1].setting = "line_type";
    EXPECT_THAT(rows(), ElementsAre("Bond chosenBond––", "Film chosenFilm––"));
    check.findings.push_back(finding(Severity::error, "r", "\\a", "\\media\\type\\0", "No."));
    check.findings.push_back(finding(Severity::error, "r", "\\b", "\\media\\type\\0", "No."));
    EXPECT_THAT(rows(), ElementsAre("Bond not possibleBond––", "Film chosenFilm––"));
}

TEST(MarkOnAPage, OfADescriptionsDefaultsSaysSo) {
    const Tree device = device_of_types();
    ReportInput input{ReportDescription{"device", device.root()}, {}};
    input.description->check.looks.push_back(passed("media-type", "type", "\\a", "\\media\\type\\1"));
    input.description->check.findings.push_back(
        finding(Severity::error, "r", "\\a", "\\media\\type\\0", "No."));
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("tr", "type-row"), ElementsAre("Bond default not possibleBond––", "FilmFilm––"));
    EXPECT_EQ("badge bad c0", page.find("span", "badge").at(0).attribute("class"));
    EXPECT_EQ("Defaults of the device: not possible", page.find("span", "badge").at(0).attribute("title"));
}

TEST(MarkOnAPage, SizeIsMarkedAsChosenOrNotPossible) {
    Tree device;
    device.set("\\media\\size\\0\\name", "A4");
    const Tree office;
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    auto& check = input.configurations[0].check;
    const auto marks = [&] { return Markup(pm::kit::report_page(input)).texts("p", "marks"); };
    EXPECT_THAT(marks(), IsEmpty());
    check.findings.push_back(finding(Severity::error, "r", "\\a", "\\media\\size\\0", "No."));
    EXPECT_THAT(marks(), ElementsAre("not possible"));
    check.findings.clear();
    check.looks.push_back(passed("media-size", "size", "\\a", "\\media\\size\\0"));
    EXPECT_THAT(marks(), ElementsAre("chosen"));
}

TEST(MarkOnAPage, ResolutionToldByItsHeightAloneIsChosen) {
    const Tree device = device_of_types();
    const Tree office;
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    input.configurations[0].check.looks.push_back(
        passed("resolution", "resolution_y", "\\a", "\\res_color_mem\\b"));
    EXPECT_THAT(pm::kit::report::Marks(input).at("\\res_color_mem\\b").chosen, ElementsAre(0U));
}

TEST(LineSample, OfALineTypeThatIsNoneIsSolid) {
    const auto dashes = [](long line_type) {
        pm::kit::report::Html html;
        pm::kit::report::write_line_sample(html, line_type, 2, "sample");
        return Markup("<!DOCTYPE html>" + html.take()).find("line").at(0).attribute("stroke-dasharray");
    };
    EXPECT_EQ("12 6", dashes(1));
    EXPECT_EQ("3 3 9 3", dashes(17));
    EXPECT_EQ("", dashes(18));
    EXPECT_EQ("", dashes(-1));
}

TEST(EscapedText, HasTheMarkOfASurrogateAloneReplaced) {
    using pm::kit::report::escaped;
    EXPECT_EQ("\uFFFDAz", escaped("\xED"
                                  "Az"));
    EXPECT_EQ("\uFFFD\uFFFDz", escaped("\xED\xC0z"));
    EXPECT_EQ("\uFFFD\uFFFD", escaped("\xED\xA0"));
}

TEST(SpokenText, BeginsWithASmallLetter) {
    using pm::kit::report::spoken;
    EXPECT_EQ("{a_b", spoken("{a_b"));
    EXPECT_EQ("1_b", spoken("1_b"));
    EXPECT_EQ("a-b", spoken("a-b"));
    EXPECT_EQ("Z b2", spoken("z_b2"));
}

TEST(MarkOnAPage, ConfigurationsAreLettersThenNumbers) {
    EXPECT_EQ("A", pm::kit::report::letter(0));
    EXPECT_EQ("Z", pm::kit::report::letter(25));
    EXPECT_EQ("27", pm::kit::report::letter(26));
}

TEST(PageTitle, IsThatOfWhatIsShown) {
    const Tree tree = device_of_types();
    const auto titles = [](const ReportInput& input) {
        return Markup(pm::kit::report_page(input)).texts("title");
    };
    EXPECT_EQ("Nothing to show", titles({}).at(0));
    EXPECT_EQ("a.pia", titles({{}, {{"a.pia", tree.root()}}}).at(0));
    EXPECT_EQ("a.pia, b.pia", titles({{}, {{"a.pia", tree.root()}, {"b.pia", tree.root()}}}).at(0));
    const ReportDescription device{"device", tree.root()};
    EXPECT_EQ("device – a.pia", titles({device, {{"a.pia", tree.root()}}}).at(0));
}

TEST(SettingsOnAPage, TableOfRecordsJoinsEqualOnesOfNumbersInARow) {
    const auto heads = [](const std::vector<std::pair<std::string, int>>& records) {
        Tree tree;
        for (const auto& [name, width] : records) {
            tree.set("\\pens\\table\\" + name + "\\width", width);
        }
        Texts found;
        for (const auto& each : settings_of(tree).find("th")) {
            if (each.attribute("scope") == "row") found.push_back(each.text);
        }
        return found;
    };
    EXPECT_EQ((Texts{"1 to 3"}), heads({{"1", 5}, {"2", 5}, {"3", 5}}));
    EXPECT_EQ((Texts{"1", "3"}), heads({{"1", 5}, {"3", 5}}));
    EXPECT_EQ((Texts{"1", "2"}), heads({{"1", 5}, {"2", 6}}));
    EXPECT_EQ((Texts{"a", "b"}), heads({{"a", 5}, {"b", 5}}));
    EXPECT_EQ((Texts{"1", "2x"}), heads({{"1", 5}, {"2x", 5}}));
}

TEST(SettingsOnAPage, MostNumerousRecordsAreTheTable) {
    Tree tree;
    for (const char* const record : {"1", "2", "3"}) {
        tree.set(std::string("\\pens\\table\\") + record + "\\width", 5);
    }
    for (const char* const record : {"4", "5"}) {
        tree.set(std::string("\\pens\\table\\") + record + "\\speed", 5);
    }
    const Markup page = settings_of(tree);
    EXPECT_THAT(page.texts("h4"), ElementsAre("Table"));
    EXPECT_THAT(page.texts("tr", "setting"), ElementsAre("Table › 4 › Speed5", "Table › 5 › Speed5"));
}

TEST(SettingsOnAPage, EmptyNodeIsNoRecord) {
    Tree tree;
    tree.set("\\pens\\1\\width", 5);
    tree.set("\\pens\\2\\width", 5);
    tree.set("\\pens\\3\\width", 5);
    tree.erase("\\pens\\3\\width");
    EXPECT_THAT(settings_of(tree).texts("tr"), ElementsAre("EntryWidth", "1 to 25"));
}

TEST(SettingsOnAPage, RootOfManyRecordsIsATable) {
    const auto page_of = [](int count) {
        Tree tree;
        for (int at = 1; at <= count; ++at) {
            tree.set(fmt::format("\\{}\\width", at), 5);
        }
        return settings_of(tree);
    };
    EXPECT_THAT(page_of(25).texts("summary"), ElementsAre("General: 25 entries"));
    EXPECT_THAT(page_of(2).texts("h3"), ElementsAre("1", "2"));
}

TEST(SettingsOnAPage, NumberedPropertiesBelowANodeHaveItsName) {
    Tree tree;
    for (int pen = 1; pen <= 8; ++pen) {
        tree.set(fmt::format("\\pens\\inks\\Color{}", pen), pen == 3 ? "red" : "");
    }
    EXPECT_THAT(settings_of(tree).texts("tr", "setting"),
                ElementsAre("Inks › Color 1 to 8 1 to 2: (empty) 3: red 4 to 8: (empty)"));
}

TEST(SettingsOnAPage, SevenNumberedPropertiesAreRowsEach) {
    Tree tree;
    for (int pen = 1; pen <= 7; ++pen) {
        tree.set(fmt::format("\\pens\\Color{}", pen), 0);
    }
    tree.set("\\pens\\Width8", 0);
    tree.set("\\pens\\9", 0);
    const Texts rows = settings_of(tree).texts("tr", "setting");
    ASSERT_EQ(9U, rows.size());
    EXPECT_EQ("Color70", rows[6]);
    EXPECT_EQ("Width80", rows[7]);
    EXPECT_EQ("90", rows[8]);
}

TEST(SettingsOnAPage, NumberedPropertyOfAnotherVerdictStandsByItself) {
    const Tree device = device_of_types();
    Tree office;
    for (int pen = 1; pen <= 8; ++pen) {
        office.set(fmt::format("\\pens\\Color{}", pen), 5);
    }
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    input.configurations[0].check.findings.push_back(
        finding(Severity::error, "r", "\\pens\\Color3", "\\media\\type", "No."));
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("tr", "setting"), ElementsAre("Color 1 to 8 1 to 2: 5 3: 5 4 to 8: 5"));
    EXPECT_THAT(page.texts("li", "chip impossible"), ElementsAre("3: 5"));
}

TEST(SettingsOnAPage, RecordThatIsNotPossibleIsRed) {
    const Tree device = device_of_types();
    Tree office;
    office.set("\\pens\\1\\width", 5);
    office.set("\\pens\\2\\width", 6);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    input.configurations[0].check.findings.push_back(
        finding(Severity::error, "r", "\\pens\\2\\width", "\\media\\type", "No."));
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("td", "impossible"), ElementsAre("6 not possible"));
}

TEST(SettingsOnAPage, CodedNumbersAreWords) {
    const auto row = [](const std::string& name, const pm::Value& value) {
        Tree tree;
        tree.set("\\io\\" + name, value);
        return settings_of(tree).texts("tr", "setting").at(0);
    };
    EXPECT_EQ("HandshakesXON/XOFF in, CTS 5", row("handshakes", 5));
    EXPECT_EQ("Handshakesnone 0", row("handshakes", 0));
    EXPECT_EQ("Handshakesmany", row("handshakes", "many"));
    EXPECT_EQ("Default typeNetwork 6", row("default_type", 6));
    EXPECT_EQ("Other6", row("other", 6));
    EXPECT_EQ("Other(empty)", row("other", ""));
    EXPECT_EQ("Otheryes", row("other", true));
    EXPECT_EQ("Other0A (1 byte)", row("other", pm::Bytes(1, std::byte{10})));
    EXPECT_EQ("Other" + std::string(64, '0') + " (32 bytes)", row("other", pm::Bytes(32)));
    EXPECT_EQ("Other" + std::string(64, '0') + "… (33 bytes)", row("other", pm::Bytes(33)));
    EXPECT_EQ("Other−∞", row("other", -std::numeric_limits<double>::infinity()));
}

class RawObject : public PM_Object {
public:
    using PM_Object::setData;
};

// What a damaged file can leave.
TEST(SettingsOnAPage, NumberOfAnotherSizeIsUnreadable) {
    RawObject object;
    object.setData(u"\\media\\copies", "12345", 5, PROP_LONG, -1, true);
    const ReportInput input{{}, {{"office.pia", pm::root_of(object)}}};
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("tr", "setting"), ElementsAre("Copiesunreadable"));
    object.setData(u"\\media\\size_max_x", "12345", 5, PROP_LONG, -1, true);
    object.setData(u"\\media\\size_max_y", "1", 1, PROP_LONG, -1, true);
    object.setData(u"\\media\\type\\0\\name", "A\0", 2, PROP_STRING, -1, true);
    const ReportInput device{ReportDescription{"device", pm::root_of(object)}, {}};
    EXPECT_THAT(Markup(pm::kit::report_page(device)).texts("div", "fact"), ElementsAre("Descriptiondevice"));
}

Markup side_by_side(const pm::Node& a, const pm::Node& b) {
    return Markup(pm::kit::report_page({{}, {{"a", a}, {"b", b}}}));
}

TEST(Comparison, OfEqualOnesHasNothingThatDiffers) {
    Tree tree;
    tree.set("\\media\\copies", 2);
    tree.set("\\name", "Office");
    const Markup page = side_by_side(tree.root(), tree.root());
    EXPECT_THAT(page.texts("h3"), IsEmpty());
    EXPECT_THAT(page.texts("summary"), ElementsAre("2 settings that are alike"));
    EXPECT_THAT(page.texts("tr", "group"), ElementsAre("General", "Media"));
}

// Neither says what it holds: only that they differ.
TEST(Comparison, TellsApartWhatCannotBeRead) {
    RawObject a;
    RawObject b;
    a.setData(u"\\copies", "12345", 5, PROP_LONG, -1, true);
    b.setData(u"\\copies", "1234567", 7, PROP_BOOL, -1, true);
    EXPECT_THAT(side_by_side(pm::root_of(a), pm::root_of(b)).texts("tr", "setting differs"),
                ElementsAre("≠ Copiesunreadable otherwiseunreadable otherwise"));
}

TEST(Comparison, OfOnesThatAgreeInNothingHasNothingAlike) {
    Tree a;
    Tree b;
    a.set("\\copies", 2);
    b.set("\\copies", "2");
    const Markup page = side_by_side(a.root(), b.root());
    EXPECT_THAT(page.texts("tr", "setting differs"), ElementsAre("≠ Copies2 integer2 text"));
    EXPECT_THAT(page.texts("summary"), IsEmpty());
    EXPECT_THAT(page.section("configuration"), testing::Not(testing::HasSubstr("Not shown")));
}

TEST(Comparison, TakesPathsBelowTheNodesThatAreShown) {
    Tree tree;
    tree.set("\\a\\media\\copies", 2);
    tree.set("\\b\\media\\copies", 3);
    const Markup page = side_by_side(*tree.node("\\a"), *tree.node("\\b"));
    EXPECT_THAT(page.texts("tr", "setting differs"), ElementsAre("≠ Copies23"));
    EXPECT_THAT(page.texts("tr", "group"), ElementsAre("Media"));
}

} // namespace

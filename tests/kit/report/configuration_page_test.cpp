#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/pages.h>

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
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Tree two_types() {
    Tree tree;
    tree.set("\\media\\type\\0\\name", "Bond");
    tree.set("\\media\\type\\0\\localized_name", "Plain paper");
    tree.set("\\media\\type\\1\\name", "Film");
    tree.set("\\media\\max_number_of_copies", 5);
    return tree;
}

Tree wants(std::string_view type, int copies) {
    Tree tree;
    tree.set("\\media\\default_type", std::string(type));
    tree.set("\\media\\copies", copies);
    return tree;
}

ReportConfiguration bond(const Tree& tree, const std::string& name) {
    ReportConfiguration made{name, tree.root()};
    made.check.looks.push_back(passed("media-type", "type", "\\media\\default_type", "\\media\\type\\0"));
    return made;
}

TEST(ConfigurationPage, MarksWhatIsChosen) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {bond(office, "office.pia")}};
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("tr", "type-row chosen"), ElementsAre("Plain paper chosenBond––"));
    EXPECT_THAT(page.find("tr", "type-row impossible"), IsEmpty());
    EXPECT_THAT(page.texts("span", "badge good"), ElementsAre("possible"));
}

TEST(ConfigurationPage, MarksNoBoundOfASettingAsChosen) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    input.configurations[0].check.looks.push_back(
        passed("copies", "copies", "\\media\\copies", "\\media\\max_number_of_copies"));
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("div", "fact chosen"), IsEmpty());
    EXPECT_THAT(page.texts("div", "fact"), testing::Contains("Most copies5"));
}

TEST(ConfigurationPage, ShowsAnImpossibleChoiceInItsPlace) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 9);
    ReportInput input{ReportDescription{"device", device.root()}, {bond(office, "office.pia")}};
    auto copies =
        finding(Severity::error, "copies", "\\media\\copies", "\\media\\max_number_of_copies", "Too many.");
    copies.configured = "9";
    copies.offers.push_back({"1 to 5", "", "\\media\\max_number_of_copies"});
    input.configurations[0].check.findings.push_back(copies);
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("li", "finding error"),
                ElementsAre("Not possible Too many. office.pia · \\media\\copies = 9 · rule copies "
                            "Offered instead: 1 to 5"));
    EXPECT_THAT(page.section("media"), HasSubstr("Too many."));
    EXPECT_THAT(page.texts("div", "fact impossible"), ElementsAre("Most copies5 not possible"));
    EXPECT_THAT(page.texts("tr", "setting impossible"), ElementsAre("Copies9 not possible"));
    EXPECT_THAT(page.section("fit"), HasSubstr("1 thing not possible"));
}

TEST(ConfigurationPage, ShowsTheValueOfAnOfferBehindItsText) {
    const Tree device = two_types();
    const Tree office = wants("Wool", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    auto type = finding(Severity::error, "media-type", "\\media\\default_type", "\\media\\type", "No wool.");
    type.configured = "Wool";
    type.offers = {{"Bond", "Plain paper", "\\media\\type\\0"}, {"Film", "Film", "\\media\\type\\1"}};
    input.configurations[0].check.findings.push_back(type);
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("p", "offers"),
                ElementsAre("Offered instead: Plain paper Bond, Film"));
}

TEST(ConfigurationPage, ShowsWhatBelongsToNoSectionAtTheTop) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {bond(office, "office.pia")}};
    input.configurations[0].check.findings.push_back(
        finding(Severity::note, "unspoken", "\\media\\copies", "", "Nothing is known of it."));
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.section("fit"), HasSubstr("Note Nothing is known of it."));
    EXPECT_THAT(page.texts("span", "sign unspoken"), ElementsAre("?", "?")); // the first is the legend's
}

TEST(ConfigurationPage, TellsWhatTheSignsMean) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("p", "muted"),
                testing::Contains("✓ possible; ? the device tells nothing of it."));
}

TEST(ConfigurationPage, FoldsMoreThanThreeNotes) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    auto& findings = input.configurations[0].check.findings;
    findings.assign(3, finding(Severity::note, "unspoken", "\\media\\copies", "", "Unknown."));
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("summary"), IsEmpty());
    findings.push_back(findings.back());
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("summary"), ElementsAre("4 notes"));
}

TEST(ConfigurationPage, MarksWhatIsImpossibleWhereItIsShown) {
    Tree device = two_types();
    device.set("\\media\\size\\0\\name", "Card");
    device.set("\\io\\method\\4\\min_output_timeout", 5);
    device.set("\\io\\method\\4\\max_output_timeout", 105);
    device.set("\\io\\method\\4\\default_output_timeout", 30);
    device.set("\\custom_name\\Fan\\value_list\\0\\value", "Off");
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    for (const std::string place :
         {"\\media\\size\\0", "\\io\\method\\4\\min_output_timeout", "\\custom_name\\Fan\\value_list\\0"}) {
        input.configurations[0].check.findings.push_back(
            finding(Severity::error, "any", "\\media\\copies", place, "Bad."));
    }
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("p", "marks"), ElementsAre("not possible"));
    EXPECT_THAT(page.texts("figcaption"),
                ElementsAre("Output timeout: 30 s by default, 5 to 105 s not possible"));
    EXPECT_THAT(page.texts("tr", "custom"), ElementsAre("Fan not possibleFan–– Off not possible"));
}

TEST(ConfigurationPage, HasTheDeviceAndItsConfigurationsAsItsTitle) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()},
                      {{"a.pia", office.root()}, {"b.pia", office.root()}}};
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("title"), ElementsAre("device – a.pia, b.pia"));
}

TEST(ConfigurationPage, ShowsTheFindingsOfTheDevicesOwnDefaults) {
    const Tree device = two_types();
    ReportInput input{ReportDescription{"device", device.root()}, {}};
    input.description->check.findings.push_back(
        finding(Severity::error, "media-type", "\\media\\default_type", "\\media\\type", "No such type."));
    EXPECT_THAT(Markup(pm::kit::report_page(input)).section("media"),
                HasSubstr("Not possible No such type. Defaults of the device"));
}

TEST(ConfigurationPage, ShowsTheTextsOfTheDescriptionBesideNames) {
    const Tree device = two_types();
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {{"office.pia", office.root()}}};
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("tr", "setting"),
                ElementsAre("Default typeBond Plain paper", "Copies1"));
}

TEST(ConfigurationPage, OfADescriptionBelowANodeTakesPathsWithThatNode) {
    Tree device;
    device.set("\\device\\media\\type\\0\\name", "Bond");
    const Tree office = wants("Bond", 1);
    ReportInput input{ReportDescription{"device", *device.node("\\device")}, {{"office.pia", office.root()}}};
    input.configurations[0].check.looks.push_back(
        passed("media-type", "type", "\\media\\default_type", "\\device\\media\\type\\0"));
    input.configurations[0].check.findings.push_back(
        finding(Severity::warning, "media-type", "\\media\\copies", "\\device\\media\\type", "Odd."));
    const Markup page(pm::kit::report_page(input));
    EXPECT_EQ(page.find("tr", "type-row chosen").size(), 1U);
    EXPECT_THAT(page.section("media"), HasSubstr("Doubtful Odd."));
}

TEST(ConfigurationAlone, StandsInGroupsByItsNodes) {
    Tree tree;
    tree.set("\\name", "Office");
    tree.set("\\io\\default_type", 6);
    tree.set("\\io\\serial\\baud_rate", 9600);
    tree.set("\\site_notes\\floor", "third");
    const Markup page = settings_of(tree);
    EXPECT_THAT(page.texts("h3"), ElementsAre("General", "Connections", "Site notes"));
    EXPECT_THAT(page.texts("tr", "setting"),
                ElementsAre("NameOffice", "Default typeNetwork 6", "Serial › Baud rate9600", "Floorthird"));
}

TEST(ConfigurationAlone, TellsCodesAndMasksInWords) {
    Tree tree;
    tree.set("\\io\\handshakes", 6);
    tree.set("\\media\\media_group", 4);
    tree.set("\\media\\color_system", 3);
    EXPECT_THAT(settings_of(tree).texts("tr", "setting"),
                ElementsAre("HandshakesXON/XOFF out, CTS 6", "Media groupISO 4", "Color systemGrey scale 3"));
}

TEST(ConfigurationAlone, ShowsNodesOfOneKindAsATable) {
    Tree tree;
    tree.set("\\pens\\table\\1\\width", 0.25);
    tree.set("\\pens\\table\\1\\speed", 400);
    tree.set("\\pens\\table\\2\\width", 0.25);
    tree.set("\\pens\\table\\2\\speed", 400);
    tree.set("\\pens\\table\\3\\width", 0.5);
    tree.set("\\pens\\table\\3\\speed", 300);
    const Markup page = settings_of(tree);
    EXPECT_THAT(page.texts("h4"), ElementsAre("Table"));
    EXPECT_THAT(page.texts("tr"), testing::IsSupersetOf({"1 to 20.25400", "30.5300"}));
}

TEST(ConfigurationAlone, ShowsNumberedPropertiesInOneRow) {
    Tree tree;
    for (int pen = 1; pen <= 9; ++pen) {
        tree.set("\\pens\\Color" + std::to_string(pen), pen < 3 ? pen : 0);
    }
    EXPECT_THAT(settings_of(tree).texts("tr", "setting"), ElementsAre("Color 1 to 9 1: 1 2: 2 3 to 9: 0"));
}

TEST(ConfigurationAlone, ShowsAPropertyWithoutANumberBesideTheNumberedOnes) {
    Tree tree;
    tree.set("\\pens\\Color", 7);
    for (int pen = 1; pen <= 9; ++pen) {
        tree.set("\\pens\\Color" + std::to_string(pen), 0);
    }
    EXPECT_THAT(settings_of(tree).texts("tr", "setting"), ElementsAre("Color7", "Color 1 to 9 1 to 9: 0"));
}

TEST(Comparison, ShowsWhatDiffersSideBySide) {
    Tree a = wants("Bond", 1);
    Tree b = wants("Bond", 2);
    a.set("\\media\\scale", 0);
    b.set("\\media\\note", "only here");
    ReportInput input;
    input.configurations = {{"a.pia", a.root()}, {"b.pia", b.root()}};
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("tr", "setting differs"), ElementsAre("≠ Copies12", "≠ Notenot thereonly here"));
    EXPECT_THAT(page.texts("tr", "setting"), testing::Contains("Default typeBondBond"));
    EXPECT_THAT(page.section("configuration"), HasSubstr("2 settings differ, 1 are alike."));
    EXPECT_THAT(page.section("configuration"), HasSubstr("Not shown: 1 settings"));
}

TEST(Comparison, MarksEachConfigurationsChoicesAndWhatIsImpossible) {
    const Tree device = two_types();
    const Tree a = wants("Bond", 1);
    const Tree b = wants("Wool", 1);
    ReportInput input{ReportDescription{"device", device.root()}, {bond(a, "a.pia"), {"b.pia", b.root()}}};
    input.configurations[1].check.findings.push_back(
        finding(Severity::error, "media-type", "\\media\\default_type", "\\media\\type\\1", "No wool."));
    const Markup page(pm::kit::report_page(input));
    EXPECT_THAT(page.texts("tr", "type-row chosen"), ElementsAre("Plain paper ABond––"));
    EXPECT_THAT(page.texts("tr", "type-row impossible"), ElementsAre("Film B not possibleFilm––"));
    EXPECT_THAT(page.texts("td", "impossible"), ElementsAre("Wool not possible"));
    EXPECT_THAT(page.section("fit"), HasSubstr("B: b.pia"));
}

TEST(ConfigurationAlone, ShowsAllDigitsOfANumber) {
    Tree tree;
    tree.set("\\scale_x", 1.0002441);
    tree.set("\\scale_y", 0.25);
    tree.set("\\width", double{0.1F});
    EXPECT_THAT(settings_of(tree).texts("tr", "setting"),
                ElementsAre("Scale x1.0002441", "Scale y0.25", "Width0.1"));
}

TEST(Comparison, TellsApartWhatLooksAlike) {
    Tree a;
    Tree b;
    a.set("\\near", 1.80001);
    b.set("\\near", 1.80002);
    a.set("\\kind", "5");
    b.set("\\kind", 5);
    a.set("\\whole", 5);
    b.set("\\whole", 5.0);
    a.set("\\digits", double{0.1F});
    b.set("\\digits", 0.1);
    ReportInput input;
    input.configurations = {{"a.pia", a.root()}, {"b.pia", b.root()}};
    EXPECT_THAT(Markup(pm::kit::report_page(input)).texts("tr", "setting differs"),
                ElementsAre("≠ Near1.800011.80002", "≠ Kind5 text5 integer", "≠ Whole5 integer5 number",
                            "≠ Digits0.1 0.100000001490116120.1"));
}

} // namespace

#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

const Item finisher{"\\media\\default_destination", text("Finisher")};

TEST(Collating, OfTheDestinationPasses) {
    EXPECT_EQ(looked("collating", {finisher,
                                   {"\\media\\finishing\\collating", text("Sets")},
                                   {"\\media\\finishing\\collate", true}}),
              (Lines{"passed \\media\\finishing\\collating @ \\media\\destination\\Finisher\\collating\\Sets",
                     "passed \\media\\finishing\\collate @ \\media\\destination\\Finisher\\collating"}));
}

TEST(Collating, ThatTheDefaultDestinationHasNotIsFoundWithAnotherThatHas) {
    EXPECT_EQ(found("collating", {{"\\media\\finishing\\collate", true}}),
              Lines{"error \\media\\finishing\\collate = true @ \\media\\destination\\Basket\\collating = : "
                    "The destination "
                    "\"Basket\" (Korb), the device's default, doesn't collate. (Finisher, Hefter)"});
}

TEST(Collating, ThatADestinationCanNotLeaveIsFound) {
    EXPECT_EQ(
        found("collating", {finisher, {"\\media\\finishing\\collate", false}}),
        Lines{"error \\media\\finishing\\collate = false @ \\media\\destination\\Finisher\\collating = : The "
              "destination \"Finisher\" (Hefter) always collates. (Sets; Basket, Korb)"});
}

TEST(Cutting, OfTheDestinationPasses) {
    EXPECT_EQ(looked("cutting", {{"\\media\\finishing\\cutting", text("Pages")}}),
              Lines{"passed \\media\\finishing\\cutting @ \\media\\destination\\Basket\\cutting\\Pages"});
}

TEST(Cutting, ThatTheDestinationHasNotIsFoundWithItsOwnInFront) {
    EXPECT_EQ(found("cutting", {{"\\media\\finishing\\cutting", text("Sets")}}),
              Lines{"error \\media\\finishing\\cutting = Sets @ \\media\\destination\\Basket\\cutting = : "
                    "The destination "
                    "\"Basket\" (Korb), the device's default, doesn't cut by \"Sets\". (Pages, Seiten; "
                    "Finisher, Hefter)"});
}

TEST(Folding, OfTheDestinationPasses) {
    EXPECT_EQ(looked("folding", {finisher, {"\\media\\finishing\\folding", text("Z")}}),
              Lines{"passed \\media\\finishing\\folding @ \\media\\destination\\Finisher\\folding\\Z"});
}

TEST(Folding, ThatTheDestinationHasNotIsFound) {
    EXPECT_EQ(found("folding", {finisher, {"\\media\\finishing\\folding", text("W")}}),
              Lines{"error \\media\\finishing\\folding = W @ \\media\\destination\\Finisher\\folding = : The "
                    "destination "
                    "\"Finisher\" (Hefter) doesn't fold by \"W\". (Z)"});
}

TEST(Stapling, OfTheDestinationPasses) {
    EXPECT_EQ(
        looked("stapling", {finisher, {"\\media\\finishing\\stapling", text("Corner")}}),
        Lines{"passed \\media\\finishing\\stapling @ \\media\\destination\\Finisher\\stapling\\Corner"});
}

TEST(Stapling, ThatTheDestinationHasNotIsFound) {
    EXPECT_EQ(
        found("stapling", {{"\\media\\finishing\\stapling", text("Corner")}}),
        Lines{"error \\media\\finishing\\stapling = Corner @ \\media\\destination\\Basket\\stapling = : The "
              "destination \"Basket\" (Korb), the device's default, doesn't staple by \"Corner\". (Finisher, "
              "Hefter)"});
}

TEST(Stapling, OfNothingPassesWhereThereIsNone) {
    EXPECT_EQ(looked("stapling", {{"\\media\\finishing\\stapling", text("Bare")}}),
              Lines{"passed \\media\\finishing\\stapling @ \\media\\destination\\Basket\\stapling"});
}

TEST(Finishing, AtADestinationThatIsNotThereIsLeftToItsRule) {
    const auto configuration =
        tree_of({{"\\media\\default_destination", text("Bin")}, {"\\media\\finishing\\folding", text("Z")}});
    EXPECT_EQ(answer_of("folding", configuration, small_device()).looks, Lines{});
    EXPECT_EQ(answer_of("unspoken", configuration, small_device()).findings, Lines{});
}

TEST(Cutting, ByDefaultIsThatOfItsDestination) {
    expect_said("cutting", {{{{"\\media\\destination\\Basket\\default_cutting", text("Pages")}},
                             {},
                             {},
                             {"passed \\media\\destination\\Basket\\default_cutting @ "
                              "\\media\\destination\\Basket\\cutting\\Pages"}},
                            {{{"\\media\\destination\\Basket\\default_cutting", text("Sets")}},
                             {},
                             {},
                             {"error \\media\\destination\\Basket\\default_cutting = Sets @ "
                              "\\media\\destination\\Basket\\cutting = : The destination \"Basket\" (Korb) "
                              "doesn't cut by \"Sets\". (Pages, Seiten; Finisher, Hefter)"}},
                            {{{"\\media\\destination\\Bin\\default_cutting", text("Pages")}}, {}, {}, {}}});
}

TEST(Collating, OfADestinationThatCanDoBothPasses) {
    const Item neither{"\\media\\destination\\Finisher\\collating\\None\\collating_type", 0};
    expect_said("collating",
                {{{finisher, {"\\media\\finishing\\collate", false}},
                  {},
                  {neither},
                  {"passed \\media\\finishing\\collate @ \\media\\destination\\Finisher\\collating"}},
                 {{finisher, {"\\media\\finishing\\collate", true}},
                  {},
                  {neither},
                  {"passed \\media\\finishing\\collate @ \\media\\destination\\Finisher\\collating"}},
                 {{{"\\media\\finishing\\collate", true}},
                  {"\\media\\destination\\Finisher\\collating"},
                  {},
                  {"error \\media\\finishing\\collate = true @ \\media\\destination\\Basket\\collating = : "
                   "The destination \"Basket\" (Korb), the device's default, doesn't collate."}},
                 {{{"\\media\\default_destination", text("Bin")}, {"\\media\\finishing\\collate", true}},
                  {},
                  {},
                  {}}});
}

} // namespace

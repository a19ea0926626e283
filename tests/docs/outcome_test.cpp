#include "docs/outcome.h"

#include <gmock/gmock.h>

namespace {

using namespace pm::test;
using testing::ElementsAre;

std::string body_outcome(const std::string& body) {
    return load_outcome("PIAFILEVERSION_2.0,\r\n" + body, PM_Object::FILE_PIA);
}

TEST(OutcomeText, ShowsEveryTypeOfValue) {
    EXPECT_EQ(body_outcome("a=1\nb=2.5\nc=\"x\nd=TRUE\ne=\\0AFF\\\nn{\nf=3.0\n"),
              R"(`a: long = 1`, `b: double = 2.5`, `c: string = "x"`, `d: bool = true`, `e: void = 0AFF`, )"
              R"(`n\\f: double = 3.0`)");
}

TEST(OutcomeText, EscapesWhatATableCantHold) {
    EXPECT_EQ(body_outcome("a=\"\\\t`|\x81\xE9\n"), "`a: string = \"\\\\\\x09\\x60\\x7C\\x81\u00E9\"`");
}

TEST(OutcomeText, ShowsDoublesExactly) {
    PM_Object object;
    object.SetProperty(u"a", 0.1);
    object.SetProperty(u"b", -0.0);
    object.SetProperty(u"c", 1e300);
    EXPECT_THAT(tree_lines(object), ElementsAre("a: double = 0.1", "b: double = -0.0", "c: double = 1e+300"));
}

TEST(OutcomeText, TellsReportsAndStopsWithTheirLines) {
    EXPECT_EQ(body_outcome("a=\nb=x\nc=1\nd\ne=1\n"),
              "`c: long = 1`, reports 57 at line 2, reports 88, stops with 57 at line 5");
}

TEST(OutcomeText, IsNothingForNothing) {
    EXPECT_EQ(body_outcome(""), "nothing");
}

} // namespace

#include "support/exceptions.h"
#include "support/expect_report.h"
#include "support/tree_dump.h"
#include "support/tree_text.h"
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/pm.h>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

using pm::test::expect_report;
using pm::test::expect_thrown;
using testing::ElementsAre;

void throw_error() {
    throw PM_Error(PM_ERR_BAD_LINE, u"here", u"a detail", u"");
}

// Loads a file whose only line is bad.
void load_bad_line(PM_Object& object) {
    std::stringstream stream("PIAFILEVERSION_2.0,test\r\n=1\n");
    object.load(stream, PM_Object::FILE_PIA, u"\\");
}

} // namespace

TEST(ExpectThrown, TakesExactlyWhatIsExpected) {
    expect_thrown<PM_Error>(throw_error, PM_ERR_BAD_LINE, u"here", u"a detail");
}

TEST(ExpectThrown, ShowsWhatWasThrownInstead) {
    const char* met = "met: PM_Error 57 at \"here\" with \"a detail\"";
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Warning>(throw_error, PM_ERR_BAD_LINE, u"here", u"a detail"),
                            met);
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Error>(throw_error, PM_ERR_NO_MEMORY, u"here", u"a detail"),
                            met);
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Error>(throw_error, PM_ERR_BAD_LINE, u"there", u"a detail"),
                            met);
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Error>(throw_error, PM_ERR_BAD_LINE, u"here", u""), met);
}

TEST(ExpectThrown, ShowsExceptionsOfOtherFamilies) {
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Error>([] { throw std::runtime_error("a broken thing"); },
                                                    PM_ERR_BAD_LINE, u"here", u""),
                            "a broken thing");
}

TEST(ExpectThrown, ShowsThatNothingWasThrown) {
    EXPECT_NONFATAL_FAILURE(expect_thrown<PM_Error>([] {}, PM_ERR_BAD_LINE, u"here", u""),
                            "nothing was thrown");
}

TEST(ExpectReport, LooksAtAllThreeOutcomes) {
    std::vector<bool> looks;
    expect_report({"", 1, PM_ERR_BAD_LINE, u"PM_PIAFile::load()", u"\n2, =1, "}, load_bad_line,
                  [&](const PM_Object&, bool whole) { looks.push_back(whole); });
    EXPECT_THAT(looks, ElementsAre(false, true, false));
}

TEST(ExpectReport, FailsOnAnotherKind) {
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter catching(&failures);
        expect_report({"", 2, PM_ERR_BAD_LINE, u"PM_PIAFile::load()", u"\n2, =1, "}, load_bad_line);
    }
    ASSERT_EQ(2, failures.size());
    for (const int at : {0, 1}) {
        EXPECT_THAT(failures.GetTestPartResult(at).message(),
                    testing::HasSubstr("kind 1, 57 at \"PM_PIAFile::load()\" with"));
    }
}

TEST(TreeDump, ShowsEachTypeInTheTreesOrder) {
    PM_Object object;
    object.SetProperty(u"\\n\\m\\text", u"a\u20AC");
    object.SetProperty(u"\\n\\third", 1.0 / 3);
    object.SetProperty(u"\\long", -12);
    object.SetProperty(u"\\whole", 2.0);
    object.SetProperty(u"\\yes", true);
    const std::array<unsigned char, 2> raw = {0x0A, 0xFF};
    object.setVoidProperty(u"\\raw", raw.data(), raw.size());
    EXPECT_THAT(pm::test::tree_dump(object),
                ElementsAre("long=-12", "whole=2.0", "yes=true", "raw=<0AFF>", "n\\third=0.33333333333333331",
                            "n\\m\\text=\"a\u20AC\""));
    EXPECT_THAT(pm::test::tree_dump(object, u"\\n\\m"), ElementsAre("text=\"a\u20AC\""));
}

TEST(TreeText, ShowsTypesAndBytes) {
    PM_Object object;
    object.SetProperty(u"\\n\\text", u"a");
    object.SetProperty(u"\\n\\double", 1.0);
    object.SetProperty(u"\\n\\yes", true);
    EXPECT_THAT(pm::test::tree_text(object),
                ElementsAre("n\\text string a", "n\\double double 000000000000F03F", "n\\yes bool 01"));
}

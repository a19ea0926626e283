#include "base/module.h"

#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/error_text.h>
#include <pm/exception.h>

namespace {

std::uint64_t handle_of_a_throw() {
    return PM_Error(PM_ERR_BAD_RAW_DATA, u"place", u"", u"source").m_res_handle;
}

} // namespace

TEST(Module, EntryAlwaysGivesOne) {
    EXPECT_EQ(1, pm::module_entry(1, 2));
    EXPECT_EQ(1, pm::module_entry(1, pm::process_end));
    EXPECT_EQ(1, pm::module_entry(1, pm::process_end));
    EXPECT_EQ(1, pm::module_entry(1, pm::process_start));
}

TEST(Module, OtherReasonsDoNothing) {
    const std::uint64_t before = GetPMErrResHandle();
    ASSERT_NE(0U, before);
    pm::module_entry(1, 2);
    pm::module_entry(1, 3);
    EXPECT_EQ(before, GetPMErrResHandle());
}

TEST(Module, EndClearsTheHandleAndStartOpensTheLibraryAgain) {
    pm::module_entry(1, pm::process_end);
    EXPECT_EQ(0U, GetPMErrResHandle());
    EXPECT_EQ(0U, handle_of_a_throw());
    ZT_String text(u"old");
    EXPECT_FALSE(pm_error_text(PM_ERR_NO_ROOT, text));
    EXPECT_EQ(std::u16string(u"old"), text.text());

    pm::module_entry(1, pm::process_start);
    EXPECT_NE(0U, GetPMErrResHandle());
    EXPECT_EQ(GetPMErrResHandle(), handle_of_a_throw());
}

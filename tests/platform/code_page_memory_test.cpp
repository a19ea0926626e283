#include "platform/code_page.h"

#include "support/exceptions.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <unicode/uclean.h>

// A program of its own, in which each test can use a page of two bytes for the first time.

namespace {

bool fails = false;

void* U_CALLCONV allocate(const void*, std::size_t size) {
    return fails ? nullptr : std::malloc(size);
}
void* U_CALLCONV reallocate(const void*, void* block, std::size_t size) {
    return fails ? nullptr : std::realloc(block, size);
}
void U_CALLCONV release(const void*, void* block) {
    std::free(block);
}

// The system has no memory for converters while one lives.
class NoMemory {
public:
    NoMemory() {
        UErrorCode status = U_ZERO_ERROR;
        u_setMemoryFunctions(nullptr, allocate, reallocate, release, &status);
        EXPECT_TRUE(U_SUCCESS(status));
        fails = true;
    }
    ~NoMemory() { fails = false; }
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

// With ICU in use already: it doesn't recover from a lack of memory in its very first use.
class CodePageMemory : public testing::Test {
protected:
    CodePageMemory() { EXPECT_EQ(932U, pm::code_page(932).number()); }
    ~CodePageMemory() override { pm_set_system_code_page(1252); }
};

} // namespace

TEST_F(CodePageMemory, SettingAPageWithoutMemoryIsNumber55AndTheSettingStays) {
    {
        const NoMemory none;
        pm::test::expect_thrown<PM_Memory_Exception>([] { pm_set_system_code_page(950); }, PM_ERR_NO_MEMORY,
                                                     u"pm_set_system_code_page()", u"");
    }
    EXPECT_EQ(1252U, pm_system_code_page());
    pm_set_system_code_page(950);
    EXPECT_EQ("\xB0\xA1", pm::to_narrow(u"\u965B"));
}

TEST_F(CodePageMemory, PageThatCouldNotBeLearnedIsLearnedLater) {
    {
        const NoMemory none;
        EXPECT_THROW(pm::code_page(949), std::bad_alloc);
    }
    EXPECT_EQ(949U, pm::code_page(949).number());
    EXPECT_EQ(u"\uAC00", pm::to_wide("\xB0\xA1", 949));
}

TEST_F(CodePageMemory, PageThatWasSetNeedsNoMoreMemory) {
    pm_set_system_code_page(932);
    const NoMemory none;
    EXPECT_STREQ("\x82\xA0", PM_Error(PM_ERR_BAD_LINE, u"\u3042", u"", u"").m_place_narrow);
}

#include "support/scoped_settings.h"
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <windows.h>

TEST(NativeCodePage, ZeroSetsThatOfTheSystem) {
    const pm::test::ScopedCodePage before(866);
    pm_set_system_code_page(0);
    EXPECT_EQ(GetACP(), pm_system_code_page());
}

TEST(NativeCodePage, IsNotTakenUntilItIsAskedFor) {
    EXPECT_EQ(1252U, pm_system_code_page());
}

#include <gtest/gtest.h>
#include <pm/pm.h>
#include <string>

// Linked without a way to the message library.

TEST(NoMessageLibrary, HandleIsNull) {
    EXPECT_EQ(0U, GetPMErrResHandle());
}

TEST(NoMessageLibrary, ExceptionsCarryANullHandle) {
    try {
        pm_set_system_code_page(12345);
        FAIL() << "nothing was thrown";
    } catch (const PM_Error& e) {
        EXPECT_EQ(0U, e.m_res_handle);
        EXPECT_EQ(PM_ERR_INVALID_ARGUMENT, e.m_number);
        EXPECT_EQ(std::u16string(u"12345"), e.m_detail);
    }
}

TEST(NoMessageLibrary, NumbersHaveNoText) {
    for (std::uint32_t number = 0; number < 200; ++number) {
        ZT_String text(u"untouched");
        EXPECT_FALSE(pm_error_text(number, text));
        EXPECT_EQ(std::u16string(u"untouched"), text.text());
    }
}

TEST(NoMessageLibrary, TheLibraryWorks) {
    PM_Object object;
    object.SetProperty(u"pens\\width", 2.5);
    double width = 0;
    EXPECT_TRUE(object.GetProperty(u"pens\\width", width));
    EXPECT_EQ(2.5, width);
}

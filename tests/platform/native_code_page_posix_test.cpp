#include "platform/native_code_page.h"

#include "support/scoped_settings.h"
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <string>
#include <utility>

namespace {

using pm::test::ScopedCodePage;
using pm::test::ScopedVariable;

// What the environment says of the locale, while one lives.
struct Environment {
    Environment(const std::string& all, const std::string& ctype, const std::string& lang)
        : m_all("LC_ALL", all), m_ctype("LC_CTYPE", ctype), m_lang("LANG", lang) {}

private:
    ScopedVariable m_all;
    ScopedVariable m_ctype;
    ScopedVariable m_lang;
};

unsigned page_set_by_zero(const std::string& locale) {
    const Environment environment("", "", locale);
    const ScopedCodePage before(866);
    pm_set_system_code_page(0);
    return pm_system_code_page();
}

} // namespace

TEST(NativeCodePage, ZeroSetsThatOfTheLocale) {
    for (const auto& [locale, page] :
         {std::pair("C.UTF-8", 65001U), std::pair("xx_XX.utf8", 65001U),
          std::pair("xx_XX.UTF-8@euro", 65001U), std::pair("xx_XX.ISO-8859-1", 28591U),
          std::pair("xx_XX.iso885915@euro", 28605U), std::pair("xx_XX.ISO8859-7", 28597U),
          std::pair("xx_XX.ISO-8859-11", 874U), std::pair("xx_XX.CP1251", 1251U),
          std::pair("xx_XX.windows-1257", 1257U), std::pair("xx_XX.IBM850", 850U),
          std::pair("xx_XX.KOI8-R", 20866U), std::pair("xx_XX.KOI8-U", 21866U),
          std::pair("xx_XX.TIS-620", 874U), std::pair("xx_XX.SJIS", 932U),
          std::pair("xx_XX.Windows-31J", 932U), std::pair("xx_XX.GBK", 936U), std::pair("xx_XX.gb2312", 936U),
          std::pair("xx_XX.EUC-KR", 949U), std::pair("xx_XX.Big5", 950U)}) {
        EXPECT_EQ(page, page_set_by_zero(locale)) << locale;
    }
}

TEST(NativeCodePage, ZeroSets1252WhereTheLocaleSaysNothing) {
    for (const char* locale : {"C", "POSIX", "", "xx_XX", "xx_XX.EUC-JP", "xx_XX.IBM999", "xx_XX.CP0",
                               "xx_XX.CPx", "xx_XX.", "xx_XX.99999999999999"}) {
        EXPECT_EQ(1252U, page_set_by_zero(locale)) << locale;
    }
}

TEST(NativeCodePage, FirstVariableThatIsNotEmptyCounts) {
    const auto page = [](const char* all, const char* ctype, const char* lang) {
        const Environment environment(all, ctype, lang);
        return pm::native_code_page();
    };
    EXPECT_EQ(1251U, page("x.CP1251", "x.CP866", "x.CP437"));
    EXPECT_EQ(866U, page("", "x.CP866", "x.CP437"));
    EXPECT_EQ(437U, page("", "", "x.CP437"));
    EXPECT_EQ(0U, page("", "", ""));
}

TEST(NativeCodePage, IsNotTakenUntilItIsAskedFor) {
    const Environment environment("C.UTF-8", "", "");
    EXPECT_EQ(1252U, pm_system_code_page());
}

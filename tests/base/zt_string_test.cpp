#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <memory>
#include <pm/zt_string.h>
#include <random>
#include <string>
#include <utility>

namespace {

std::u16string wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

template<class... Arguments>
std::u16string formatted(const char16_t* format, Arguments... arguments) {
    ZT_String text;
    text.Format(format, arguments...);
    EXPECT_EQ(std::u16string(text.text()).size(), static_cast<std::size_t>(text.length()));
    return text.text();
}

// Expects what the C library's printf makes of a format without %s and %c.
template<class... Arguments>
void expect_as_printf(const std::string& format, Arguments... arguments) {
    char text[2048];
    std::snprintf(text, sizeof text, format.c_str(), arguments...);
    EXPECT_EQ(wide(text), formatted(wide(format).c_str(), arguments...)) << format;
}

} // namespace

TEST(ZtString, NeverSetHasNoLengthAndAnEmptyText) {
    const ZT_String text;
    EXPECT_EQ(-1, text.length());
    EXPECT_EQ(std::u16string(), text.text());
}

TEST(ZtString, HoldsACopyOfItsText) {
    std::u16string original = u"pen";
    const ZT_String text(original.c_str());
    original[0] = u'x';
    EXPECT_EQ(std::u16string(u"pen"), text.text());
    EXPECT_EQ(3, text.length());
}

TEST(ZtString, NullCountsAsEmpty) {
    const ZT_String text(nullptr);
    EXPECT_EQ(0, text.length());
    EXPECT_EQ(std::u16string(), text.text());
    ZT_String other(u"x");
    other.copy(nullptr);
    EXPECT_EQ(0, other.length());
}

TEST(ZtString, KeepsUnpairedSurrogates) {
    const char16_t units[] = {0xD800, u'a', 0xDC00, 0xFFFF, 0};
    EXPECT_EQ(std::u16string(units), ZT_String(units).text());
}

TEST(ZtString, CopyIsIndependent) {
    ZT_String first(u"first");
    const ZT_String second(first);
    first.copy(u"changed");
    EXPECT_EQ(std::u16string(u"first"), second.text());
    EXPECT_EQ(std::u16string(u"changed"), first.text());
}

TEST(ZtString, CopyOfNeverSetIsNeverSet) {
    const ZT_String never;
    ZT_String text(u"x");
    text.copy(never);
    EXPECT_EQ(-1, text.length());
    EXPECT_EQ(-1, ZT_String(never).length());
    text.copy(u"y");
    text = never;
    EXPECT_EQ(-1, text.length());
}

TEST(ZtString, CopyTakesItselfAndItsOwnInside) {
    ZT_String text(u"abcdef");
    text.copy(text);
    EXPECT_EQ(std::u16string(u"abcdef"), text.text());
    const ZT_String& same = text;
    text = same;
    EXPECT_EQ(std::u16string(u"abcdef"), text.text());
    text.copy(text.text() + 2);
    EXPECT_EQ(std::u16string(u"cdef"), text.text());
    EXPECT_EQ(4, text.length());
}

TEST(ZtString, MoveTakesTheText) {
    ZT_String first(u"text");
    ZT_String second(std::move(first));
    EXPECT_EQ(std::u16string(u"text"), second.text());
    ZT_String third(u"old");
    third = std::move(second);
    EXPECT_EQ(std::u16string(u"text"), third.text());
}

TEST(ZtString, Concatenates) {
    const ZT_String a(u"ab");
    EXPECT_EQ(std::u16string(u"abcd"), (a + u"cd").text());
    EXPECT_EQ(std::u16string(u"abab"), (a + a).text());
    EXPECT_EQ(std::u16string(u"ab"), (a + nullptr).text());
    EXPECT_EQ(std::u16string(u"ab"), (a + ZT_String()).text());
    EXPECT_EQ(std::u16string(u"ab"), (ZT_String() + a).text());
    EXPECT_EQ(0, (ZT_String() + ZT_String()).length());
    EXPECT_EQ(std::u16string(u"ab"), a.text());
}

TEST(ZtStringFormat, CopiesPlainTextAndPercentSigns) {
    EXPECT_EQ(u"", formatted(u""));
    EXPECT_EQ(u"", formatted(nullptr));
    EXPECT_EQ(u"100% \u4E00", formatted(u"100%% \u4E00"));
}

TEST(ZtStringFormat, ReplacesTheContentAndMayReadIt) {
    ZT_String text(u"inner");
    text.Format(u"<%s>", text.text());
    EXPECT_EQ(std::u16string(u"<inner>"), text.text());
}

TEST(ZtStringFormat, WritesTexts) {
    EXPECT_EQ(u"[pen \u20AC]", formatted(u"[%s]", u"pen \u20AC"));
    EXPECT_EQ(u"[pen]", formatted(u"[%ls]", u"pen"));
    EXPECT_EQ(u"[]", formatted(u"[%s]", static_cast<const char16_t*>(nullptr)));
    EXPECT_EQ(u"[  pen]", formatted(u"[%5s]", u"pen"));
    EXPECT_EQ(u"[pen  ]", formatted(u"[%-5s]", u"pen"));
    EXPECT_EQ(u"[pens]", formatted(u"[%2s]", u"pens"));
    EXPECT_EQ(u"[pe]", formatted(u"[%.2s]", u"pens"));
    EXPECT_EQ(u"[]", formatted(u"[%.0s]", u"pens"));
    EXPECT_EQ(u"[   pe]", formatted(u"[%*.*s]", 5, 2, u"pens"));
    EXPECT_EQ(u"[pe   ]", formatted(u"[%*.*s]", -5, 2, u"pens"));
    EXPECT_EQ(u"[pens]", formatted(u"[%.*s]", -1, u"pens"));
}

TEST(ZtStringFormat, WritesUnits) {
    EXPECT_EQ(u"[x\u4E00]", formatted(u"[%c%c]", u'x', u'\u4E00'));
    EXPECT_EQ(u"[  x]", formatted(u"[%3c]", u'x'));
    EXPECT_EQ(u"[x  ]", formatted(u"[%-3c]", u'x'));
}

TEST(ZtStringFormat, WritesIntegers) {
    const std::string flags[] = {"", "-", "+", " ", "0", "#", "+-", "#0", "-0", "+0"};
    for (const std::string& flag : flags) {
        for (const std::string size : {"", "1", "12", ".0", ".3", "12.5"}) {
            for (const int value : {0, 1, -1, 12345, std::numeric_limits<int>::min()}) {
                for (const std::string letter : {"d", "i", "u", "x", "X", "o"}) {
                    expect_as_printf("[%" + flag + size + letter + "]", value);
                    expect_as_printf("[%" + flag + size + "l" + letter + "]", 1'000'000'000L * value);
                    expect_as_printf("[%" + flag + size + "ll" + letter + "]", 1'000'000'000LL * value);
                }
            }
        }
    }
}

TEST(ZtStringFormat, WritesTheDecimalsOfANumber) {
    EXPECT_EQ(u"2.0005", formatted(u"%ld.%0*d", 2L, 4, 5));
    EXPECT_EQ(u"5.0", formatted(u"%ld.%0*d", 5L, 0, 0));
    EXPECT_EQ(u"DRFX_MEDIA_007", formatted(u"DRFX_%s_%03d", u"MEDIA", 7));
}

TEST(ZtStringFormat, WritesDoubles) {
    const std::string flags[] = {"", "-", "+", " ", "0", "#", "+-", "#0", "-0", "+0", " 0"};
    for (const std::string& flag : flags) {
        for (const std::string size : {"", "1", "20", ".0", ".3", "20.5", ".17", ".40"}) {
            for (const double value :
                 {0.0, -0.0, 1.0, -2.5, 1234567.891, 1e-7, 1e300, std::numeric_limits<double>::infinity(),
                  -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
                for (const std::string letter : {"f", "e", "g", "F", "E", "G"}) {
                    expect_as_printf("[%" + flag + size + letter + "]", value);
                    expect_as_printf("[%" + flag + size + "l" + letter + "]", value);
                }
            }
        }
    }
    expect_as_printf("%*.*f|%-*.*e", 12, 3, 1.5, 12, 3, 1.5);
}

TEST(ZtStringFormat, TakesArgumentsInOrder) {
    EXPECT_EQ(u"a 1 2.5 b -3", formatted(u"%s %d %g %c %lld", u"a", 1, 2.5, u'b', -3LL));
}

TEST(ZtStringFormat, UnknownConversionIsItsLetter) {
    EXPECT_EQ(u"[y]", formatted(u"[%y]"));
    EXPECT_EQ(u"[", formatted(u"[%"));
    EXPECT_EQ(u"[", formatted(u"[%-5"));
    EXPECT_EQ(u"[", formatted(u"[%.3l"));
}

TEST(ZtStringFormat, EnormousWidthIsHeld) {
    EXPECT_EQ(1'000'000U, formatted(u"%99999999999s", u"x").size());
    EXPECT_EQ(1'000'000U, formatted(u"%*d", std::numeric_limits<int>::min(), 1).size());
    EXPECT_EQ(1'000'000U, formatted(u"%*d", std::numeric_limits<int>::max(), 1).size());
    EXPECT_EQ(1'000'002U, formatted(u"%.*f", std::numeric_limits<int>::max(), 1.0).size());
}

TEST(ZtStringFormat, LocaleOfTheProcessChangesNothing) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(u"1234567.25 1234567", formatted(u"%.2f %d", 1234567.25, 1234567));
    std::locale::global(before);
}

TEST(ZtObject, IsDeletedThroughItsBase) {
    struct Counted : ZT_Object {
        explicit Counted(int& given_count) : count(given_count) { ++count; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;
        ~Counted() override { --count; }
        int& count;
    };
    int alive = 0;
    ZT_Object* object = new Counted(alive);
    EXPECT_EQ(1, alive);
    delete object;
    EXPECT_EQ(0, alive);
}

#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm_test_paths.h>
#include <random>

namespace {

using pm::test::Lines;
using pm::test::load_bytes;
using pm::test::loaded_bytes;
using pm::test::RecordingHandler;
using pm::test::saved;
using pm::test::TempFolder;
using pm::test::tree_text;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSubsetOf;

// Makes trees of everything that a file can hold; the same number makes the same tree.
class TreeMaker {
public:
    explicit TreeMaker(unsigned seed) : m_random(seed) {}

    void fill(PM_Object& object) {
        const int count = between(1, 150);
        for (int i = 0; i < count; ++i) {
            set_value(object, path());
        }
    }

private:
    static constexpr std::u16string_view raw_units{u"\0\u0001\u7FFF\u8000\uFFFF", 5};

    int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    std::u16string units_of(std::u16string_view set, int shortest, int longest) {
        std::u16string text;
        for (int left = between(shortest, longest); left > 0; --left) {
            text += set[static_cast<std::size_t>(between(0, static_cast<int>(set.size()) - 1))];
        }
        return text;
    }

    std::u16string path() {
        std::u16string path;
        for (int depth = between(0, 4); depth > 0; --depth) {
            path += units_of(u"ab_-.}/\u00E4;", 1, 2) + u'\\';
        }
        std::replace(path.begin(), path.end(), u';', u'y');
        return path + units_of(u"pqrPQ09_.{}\"'\u00FC\u20AC", 1, 3);
    }

    double any_double() {
        if (between(0, 1) == 0) return between(-2'000'000, 2'000'000) / 10000.0;
        double value = 0;
        do {
            value = std::bit_cast<double>(std::uniform_int_distribution<std::uint64_t>()(m_random));
        } while (!std::isfinite(value));
        return value;
    }

    // A property that has another type already stays.
    void set_value(PM_Object& object, const std::u16string& path) {
        pm::test::thrown_by([&] {
            switch (between(1, 5)) {
            case PROP_LONG:
                object.SetProperty(path.c_str(), between(INT32_MIN, INT32_MAX));
                break;
            case PROP_DOUBLE:
                object.SetProperty(path.c_str(), any_double());
                break;
            case PROP_BOOL:
                object.SetProperty(path.c_str(), between(0, 1) == 1);
                break;
            case PROP_STRING: {
                const std::u16string text =
                    units_of(u" ab\"={};\\\t\r\u00DF\u201E", 0, between(0, 9) == 0 ? 4095 : 20) + u'.';
                const char16_t* const value = text.c_str();
                object.SetProperty(path.c_str(), value);
                break;
            }
            default: {
                const std::u16string bytes = units_of(raw_units, 1, 40);
                object.setVoidProperty(path.c_str(), bytes.data(), static_cast<unsigned>(bytes.size()));
            }
            }
        });
    }

    std::mt19937 m_random;
};

Lines under(const std::string& base, Lines lines) {
    for (std::string& line : lines) {
        line.insert(0, base);
    }
    return lines;
}

// Properties at the top of a tree stand there in one list, those of nodes behind them: the order of
// tree_text() is that of the file.
void expect_round_trip(const PM_Object& object, const char16_t* tag, bool utf8) {
    const Lines tree = tree_text(object);
    const std::string bytes = saved(object, tag, u"\\", utf8);
    const pm::test::ScopedCodePage page(utf8 ? 65001 : 1252);

    PM_Object at_root;
    load_bytes(at_root, bytes);
    EXPECT_EQ(tree, tree_text(at_root));
    EXPECT_EQ(bytes, saved(at_root, tag, u"\\", utf8));

    PM_Object at_base;
    load_bytes(at_base, bytes, u"q");
    EXPECT_EQ(under("q\\", tree), tree_text(at_base));
    EXPECT_EQ(bytes, saved(at_base, tag, u"q", utf8));
}

TEST(PiaRoundTrip, TreesSurvive) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        PM_Object object;
        TreeMaker(seed).fill(object);
        expect_round_trip(object, u"test", false);
        expect_round_trip(object, u"test", true);
    }
}

TEST(PiaRoundTrip, TreesSurviveCompressed) {
    for (unsigned seed = 101; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        PM_Object object;
        TreeMaker(seed).fill(object);
        expect_round_trip(object, u"test,compress", false);
        expect_round_trip(object, u"test,compress", true);
    }
}

TEST(PiaRoundTrip, EveryDoubleKeepsItsBits) {
    std::mt19937_64 random(7);
    PM_Object object;
    for (int i = 0; i < 5000; ++i) {
        double value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) value = i / 3.0;
        object.SetProperty(pm::to_wide("d" + std::to_string(i)).c_str(), value);
    }
    for (const double value :
         {5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 214748.3647, 214748.3648, 0.0001, 0.00001,
          123456789012345.0, -1e15, 0.1, 9999999999.5, 99999999999.5}) {
        object.SetProperty(pm::to_wide("e" + std::to_string(std::bit_cast<std::uint64_t>(value))).c_str(),
                           value);
    }
    expect_round_trip(object, u"test", false);
}

TEST(PiaRoundTrip, LongestNamesPathsAndStringsSurvive) {
    const std::u16string node(500, u'n');
    const std::u16string name(511, u'p');
    const std::u16string text(4096, u'\u00E4');
    const char16_t* const value = text.c_str();
    PM_Object object;
    object.SetProperty((node + u"\\" + name).c_str(), value);
    object.SetProperty((std::u16string(511, u'm') + u"\\" + std::u16string(509, u'p')).c_str(), 1);
    expect_round_trip(object, u"test", false);
}

// What a beginning of a file gives: its tree, and the numbers that are reported and, at last, thrown.
struct PrefixOutcome {
    Lines tree;
    std::vector<std::uint32_t> numbers;
};

// Loads it with a handler that goes on, and without; the object serves on after a failure.
PrefixOutcome load_prefix(const std::string& bytes) {
    RecordingHandler handler;
    PM_Object heard(&handler);
    const auto thrown = pm::test::thrown_by([&] { load_bytes(heard, bytes); });
    PrefixOutcome outcome{tree_text(heard), handler.numbers()};
    if (thrown) outcome.numbers.push_back(thrown->m_number);

    PM_Object object;
    const auto first = pm::test::thrown_by([&] { load_bytes(object, bytes); });
    EXPECT_EQ(!outcome.numbers.empty(), first.has_value());
    object.SetProperty(u"still\\usable", 1);
    EXPECT_EQ(4U, object.getPropertySize(u"still\\usable"));
    return outcome;
}

TEST(PiaPrefixes, OfThePlainSampleGiveTheirWholeLines) {
    const std::string bytes = TempFolder::read_file(PM_SAMPLES "/plotter.pia");
    const std::size_t header = bytes.find('\n') + 1;
    Lines whole_lines;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE(size);
        const PrefixOutcome prefix = load_prefix(bytes.substr(0, size));
        if (size < header) {
            EXPECT_THAT(prefix.tree, IsEmpty());
            EXPECT_THAT(prefix.numbers, ElementsAre(PM_ERR_STREAM_FAILED));
            continue;
        }
        if (bytes[size - 1] == '\n') {
            EXPECT_THAT(prefix.numbers, IsEmpty());
            EXPECT_GE(prefix.tree.size(), whole_lines.size());
            EXPECT_LE(prefix.tree.size(), whole_lines.size() + 1);
            whole_lines = prefix.tree;
        } else {
            // The line that was cut gives a property, nothing, or its failure.
            EXPECT_THAT(prefix.numbers,
                        AnyOf(IsEmpty(), ElementsAre(AnyOf(PM_ERR_BAD_LINE, PM_ERR_UNKNOWN_VALUE))));
            EXPECT_GE(1U, prefix.tree.size() - whole_lines.size());
        }
        EXPECT_THAT(whole_lines, IsSubsetOf(prefix.tree));
    }
    EXPECT_EQ(loaded_bytes(bytes), whole_lines);
}

TEST(PiaPrefixes, OfTheCompressedSampleAreNotDecoded) {
    const std::string bytes = TempFolder::read_file(PM_SAMPLES "/plotter-compressed.pia");
    const std::size_t header = bytes.find('\n') + 1;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        SCOPED_TRACE(size);
        const PrefixOutcome prefix = load_prefix(bytes.substr(0, size));
        EXPECT_THAT(prefix.tree, IsEmpty());
        ASSERT_FALSE(prefix.numbers.empty());
        EXPECT_EQ(size < header ? PM_ERR_STREAM_FAILED : PM_ERR_NOT_DECODED, prefix.numbers.back());
    }
    const PrefixOutcome whole = load_prefix(bytes);
    EXPECT_THAT(whole.numbers, IsEmpty());
    EXPECT_EQ(loaded_bytes(TempFolder::read_file(PM_SAMPLES "/plotter.pia")), whole.tree);
}

} // namespace

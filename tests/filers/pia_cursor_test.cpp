#include "base/text.h"
#include "filers/line_reader.h"
#include "filers/pia_blocks.h"
#include "filers/pia_text.h"
#include "filers/plain_lines.h"
#include "platform/code_page.h"
#include "store/tree_cursor.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <random>

namespace {

using pm::test::Lines;
using pm::test::tree_text;

// Takes a node away at some reports, as a handler may.
class MeddlingHandler : public pm::test::RecordingHandler {
public:
    pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override {
        if (kind == 1 && reports.size() % 2 == 0) pm::test::thrown_by([&] { object->deletePath(u"x"); });
        return RecordingHandler::on_report(kind, number, place, detail);
    }

    PM_Object* object = nullptr;
};

// All that can be seen of a load.
struct Seen {
    Lines tree;
    std::string names;
    std::vector<std::u16string> reports;
    std::string raised;
    bool operator==(const Seen&) const = default;
};

// How a load takes lines and properties.
enum class Way {
    plain,  // lines from their bytes
    wide,   // all lines as wide text
    by_path // the same, and all properties by their paths
};

Seen load_bytes(const std::string& bytes, const char16_t* base, Way way) {
    MeddlingHandler handler;
    PM_Object object(&handler);
    handler.object = &object;
    Seen seen;
    pm::TreeCursor::always_by_path = way == Way::by_path;
    pm::PlainLines::none_is_plain = way != Way::plain;
    const auto e = pm::test::thrown_by([&] { pm::test::load_bytes(object, bytes, base); });
    pm::TreeCursor::always_by_path = false;
    pm::PlainLines::none_is_plain = false;
    if (e) seen.raised = std::to_string(e->m_number) + pm::to_narrow(e->m_place) + pm::to_narrow(e->m_detail);
    for (const auto& report : handler.reports)
        seen.reports.push_back(report.place + u" " + report.detail);
    for (const char16_t* name : {u"x", u"y", u"node", u"a", u"b", u"c d", u"p", u"q", u"-1", u"base", u"t"})
        seen.names += object.pathExists(name) ? '1' : '0';
    seen.tree = pm::test::tree_text(object);
    return seen;
}

Seen load(const std::string& body, const char16_t* base, Way way) {
    return load_bytes(pm::test::pia_header + body, base, way);
}

// Takes a text to tell with a failure.
void expect_as_wide(const std::string& body, const char16_t* base = u"base") {
    ASSERT_EQ(load(body, base, Way::wide), load(body, base, Way::plain)) << body;
}

std::string random_body(std::mt19937& random) {
    static const std::string lines[] = {
        "x{",    "y{",     "node{",      "}",       "}",        "}",    "a=1",  "b=\"text", "a=2",
        "p=2.5", "q=TRUE", "t=\\0102\\", " ; text", "x {",      "b=no", "p=",   "c=\\0\\",  "p\\q=1",
        "x\\y{", "*{",     "q*=1",       "a=TRUE",  "nonsense", "=1",   "\\=1", "\\x\\\\{", "p=1.2.3"};
    std::string body;
    for (std::size_t count = random() % 40; count > 0; --count) {
        const std::size_t range = random() % 8 == 0 ? std::size(lines) : 13;
        body += lines[random() % range] + "\n";
    }
    return body;
}

TEST(PiaCursor, GivesWhatPathsGive) {
    std::mt19937 random(1);
    std::size_t raised = 0;
    for (int run = 0; run < 5000; ++run) {
        const char16_t* const base =
            std::array<const char16_t*, 5>{u"\\", u"base", u"x", u"\\x\\y\\", u"*"}.at(random() % 5);
        const std::string body = random_body(random);
        const Seen expected = load(body, base, Way::by_path);
        ASSERT_EQ(expected, load(body, base, Way::plain)) << body;
        raised += expected.raised.empty() ? 0 : 1;
    }
    EXPECT_GT(raised, 500U);
    EXPECT_LT(raised, 4500U);
}

// Nodes of one kind, each with a node of the name of a property that may follow.
std::string random_kind(std::mt19937& random) {
    static const std::string names[] = {"x", "y", "z", "w"};
    static const std::string odd_names[] = {"\\", "\\\\", "x\\", "\\x", "*", "y\\\\"};
    const auto one_in = [&](unsigned count) { return random() % count == 0; };
    std::string body;
    for (int node = 0; node < 4; ++node) {
        body += "n" + std::to_string(node) + "{\n";
        for (const std::string& name : names) {
            if (one_in(4)) {
                body += names[random() % 4] + "{\n";
                if (one_in(2)) body += odd_names[random() % std::size(odd_names)] + "=5\n";
                if (one_in(2)) body += "q=1\n";
                body += "}\n";
            }
            if (!one_in(4)) body += name + (one_in(8) ? "=\"text\n" : "=1\n");
        }
        body += "}\n";
    }
    return body;
}

TEST(PiaCursor, GivesWhatPathsGiveForNodesOfOneKind) {
    std::mt19937 random(1);
    std::size_t raised = 0;
    for (int run = 0; run < 5000; ++run) {
        const std::string body = random_kind(random);
        const Seen expected = load(body, u"\\", Way::by_path);
        ASSERT_EQ(expected, load(body, u"\\", Way::plain)) << body;
        ASSERT_EQ(expected, load(body, u"\\", Way::wide)) << body;
        raised += expected.raised.empty() ? 0 : 1;
    }
    EXPECT_GT(raised, 100U);
    EXPECT_LT(raised, 4500U);
}

// A name of separators alone is no further component: the property is that of the node above.
TEST(PiaCursor, NameOfSeparatorsSetsThePropertyOfTheNodeAbove) {
    PM_Object object;
    pm::test::load_body(object, "n1{\nx=1\ny=2\n}\nn2{\nx=1\ny{\n\\=5\nq=1\n}\ny=6\n}\n");
    EXPECT_EQ((Lines{"n1\\x long 1", "n1\\y long 2", "n2\\x long 1", "n2\\y long 6", "n2\\y\\q long 1"}),
              tree_text(object));
}

TEST(PiaCursor, PropertySetFromTheNodeBelowHasItsType) {
    PM_Object object;
    pm::test::expect_thrown<PM_Warning>(
        [&] { pm::test::load_body(object, "n1{\nx=1\ny=2\n}\nn2{\nx=1\ny{\n\\=5\nq=1\n}\ny=\"t\n}\n"); },
        PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"");
}

// Nodes of one kind with lines as the writer makes them, and something to report at the end, which tells its
// line's number.
const std::string written = "x{\n  a=1\n  bb=-2147483648\n  ccc=\"\n  dddd=\"short\n  p=2.5\n  }\n"
                            "y{\n  a=22\n  bb=2147483647\n  ccc=\"a text of more than eight bytes\n"
                            "  dddd=\"1234567\n  p=0.33333333333 (55555555U3_#T@)\n  t=TRUE\n  }\n"
                            "z{\n  a=0\n  bb=7\n  ccc=\"12345678\n  dddd=\"\"\n  p=-0.0001\n  t=FALSE\n"
                            "  a_name_of_sixty_four_bytes_"
                            "_____________________________________=123456789.50 (    5C1OG4$1TP)\n }\nend=\n";

// Bytes that mean something somewhere, and some that mean nothing.
constexpr char odd_bytes[] =
    "\0\x01\a\b\t\n\v\f\r\x1F !\"'()*+,-./0179;<=>@ETF[\\]^_`aetrux{|}~\x7F\x80\x85\xA0\xE9\xFF";

TEST(PiaPlainLines, LoadsWhatIsWritten) {
    EXPECT_EQ((Lines{"base\\x\\a long 1", "base\\x\\bb long -2147483648", "base\\x\\ccc string ",
                     "base\\x\\dddd string short", "base\\x\\p double 0000000000000440"}),
              load(written.substr(0, written.find("y{")), u"base", Way::plain).tree);
    expect_as_wide(written);
}

TEST(PiaPlainLines, AllLinesThatTheWriterMakesArePlain) {
    PM_Object object;
    pm::TreeCursor place(object, u"base");
    const std::string lines = written.substr(0, written.find("end="));
    const std::string text = lines + std::string(pm::PlainLines::margin, '\0');
    const pm::PlainLines loaded = pm::load_plain_lines(place, {text.data(), lines.size()});
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), loaded.count);
    EXPECT_EQ(text.data() + lines.size(), loaded.end);
}

TEST(PiaPlainLines, OtherLinesAreLeftAlone) {
    const auto expect_none = [](const std::string& line) {
        PM_Object object;
        pm::TreeCursor place(object, u"base\\x");
        const std::string text = line + "\n" + std::string(pm::PlainLines::margin, '\0');
        const pm::PlainLines loaded = pm::load_plain_lines(place, {text.data(), line.size() + 1});
        EXPECT_EQ(0, loaded.count) << line;
        EXPECT_EQ(text.data(), loaded.end) << line;
        EXPECT_EQ(u"base\\x", std::u16string(place.text())) << line;
        EXPECT_EQ(Lines{}, tree_text(object)) << line;
    };
    for (const char* line :
         {"",         ";a=1",   "a =1",   "a= 1",     "a==1",   "a",      "a=",      "=1",
          "a*=1",     "a\\b=1", "a=1 ",   "a=\"1 ",   "a=yes",  "a=true", "a=TRUE ", "a=1\r",
          "a=\\01\\", "a=1.50", "a=\"\t", "a=\"\xE9", "\xE9=1", "a{ ",    "a {",     "a{b",
          "a{b=1",    "a}",     "}}",     "} ",       "a{}"})
        expect_none(line);
    expect_none(std::string(65, 'a') + "=1");
    expect_none("a=\"" + std::string(257, 'a'));
}

TEST(PiaPlainLines, AnyByteAtAnyPlaceDoesWhatItDoesInWideLines) {
    for (std::size_t at = 0; at <= written.size(); ++at) {
        // A quarter of them at each place.
        for (std::size_t turn = at % 4; turn < sizeof odd_bytes; turn += 4) {
            const char odd = odd_bytes[turn];
            std::string body = written;
            ASSERT_NO_FATAL_FAILURE(expect_as_wide(body.insert(at, 1, odd)));
            if (at == written.size()) continue;
            body = written;
            body[at] = odd;
            ASSERT_NO_FATAL_FAILURE(expect_as_wide(body));
        }
    }
}

TEST(PiaPlainLines, TextMayEndAnywhere) {
    for (std::size_t size = 0; size <= written.size(); ++size)
        ASSERT_NO_FATAL_FAILURE(expect_as_wide(written.substr(0, size)));
}

TEST(PiaPlainLines, CodePageOfAllCharactersCounts) {
    for (const unsigned page : {1252U, 932U, 65001U}) {
        const pm::test::ScopedCodePage scope(page);
        for (const char* const text : {"\xE9", "\x83\x5C", "\xC3\xA9", "\x81{", "\x80"}) {
            for (const std::size_t at : {0U, 5U, 20U, 40U, 60U}) {
                std::string body = written;
                ASSERT_NO_FATAL_FAILURE(expect_as_wide(body.insert(at, text)));
            }
        }
    }
}

// The same unit comes from one byte in one code page and from two in another.
TEST(PiaPlainLines, NameBeyondAsciiIsNotKnownByItsBytes) {
    const pm::test::ScopedCodePage scope(65001);
    for (const std::string start : {"", "abc", "abcdefgh"}) {
        ASSERT_NO_FATAL_FAILURE(
            expect_as_wide("x{\n" + start + "\xC3\xA9=1\n}\ny{\n" + start + "\xE9=1\n}\n"));
        ASSERT_NO_FATAL_FAILURE(
            expect_as_wide("x{\na=1\n" + start + "\xC3\xA9s=1\n}\ny{\na=1\n" + start + "\xE9s=1\n}\n"));
    }
}

TEST(PiaPlainLines, LinesOfAnyLengthAreLoaded) {
    for (const std::size_t length :
         {1U,   3U,   4U,   7U,   8U,    9U,    63U,   64U,   65U,    255U,   256U,   257U,
          264U, 510U, 511U, 512U, 1023U, 4095U, 4096U, 4097U, 65535U, 65536U, 131072U}) {
        const std::string run(length, 'x');
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\n" + run + "=1\n}\nm{\n" + run + "=2\n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide(run + "{\n" + run + "=1\n}\n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\na=\"" + run + "\nb=\"" + run + " \n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\n" + std::string(length, ' ') + "a=1\n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\na=" + std::string(length, '1') + "\n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\na=1." + std::string(length, '0') + "5\n" + written));
        ASSERT_NO_FATAL_FAILURE(expect_as_wide("n{\n" + run + "\n" + written));
    }
}

TEST(PiaPlainLines, BlockMayEndAnywhereInALine) {
    constexpr std::size_t block = pm::LineReader::block_size;
    for (std::size_t shift = 0; shift <= written.size() + 40; ++shift) {
        const std::string comment =
            ";" + std::string(block - pm::test::pia_header.size() - shift, 'x') + "\n";
        ASSERT_NO_FATAL_FAILURE(expect_as_wide(comment + written));
    }
}

TEST(PiaPlainLines, CompressedTextMayEndAnywhere) {
    for (std::size_t size = 0; size <= written.size(); ++size) {
        const std::string bytes =
            "PIAFILEVERSION_2.0,compress\r\n" + pm::test::block_of(written.substr(0, size)).bytes();
        ASSERT_EQ(load_bytes(bytes, u"base", Way::wide), load_bytes(bytes, u"base", Way::plain)) << size;
    }
}

TEST(PiaPlainLines, PathHasRoomForAsMuchAsInWideLines) {
    for (std::size_t length = 480; length <= 512; ++length) {
        const std::string nodes = std::string(511, 'n') + "{\n" + std::string(length, 'm') + "{\n";
        ASSERT_NO_FATAL_FAILURE(
            expect_as_wide(nodes + "a=1\nname_of_twenty_bytes=1\nx{\nb=1\n}\n}\n}\n" + written));
    }
}

TEST(PiaPlainLines, PropertiesThatAreThereKeepTheirTypes) {
    const std::string twice = "x{\na=1\nb=2.5\nc=\"text\nd=TRUE\n}\n";
    ASSERT_NO_FATAL_FAILURE(expect_as_wide(twice + "x{\na=2\nb=3.5\nc=\"other\nd=FALSE\n}\n"));
    for (const char* const line : {"a=1.5", "b=1", "c=TRUE", "d=\"text"})
        ASSERT_NO_FATAL_FAILURE(expect_as_wide(twice + "x{\n" + line + "\n}\n"));
}

TEST(PiaPlainLines, NameWithAStarIsNeverExpected) {
    for (const Way way : {Way::plain, Way::by_path}) {
        PM_Object object;
        object.SetProperty(u"x\\q**", 1, 3);
        pm::TreeCursor::always_by_path = way == Way::by_path;
        pm::PlainLines::none_is_plain = way == Way::by_path;
        pm::test::load_body(object, "x{\na=1\n}\ny{\nq3*=2\n}\nz{\nq3*=2\n}\n");
        pm::TreeCursor::always_by_path = pm::PlainLines::none_is_plain = false;
        EXPECT_EQ((Lines{"x\\q3* long 1", "x\\a long 1", "y\\q3-1 long 2", "z\\q3-1 long 2"}),
                  tree_text(object));
    }
}

// A tree of doubles of all sizes, as a file.
std::string written_doubles(std::mt19937_64& random) {
    PM_Object object;
    for (int index = 0; index < 200; ++index) {
        double value = std::bit_cast<double>(random());
        if (index % 4 == 1) value = static_cast<double>(random() % 1'000'000'000) / 7000.0;
        if (index % 4 == 2)
            value = static_cast<double>(static_cast<std::int64_t>(random() % 100'000)) / 10000.0 - 4;
        if (index % 4 == 3)
            value = std::ldexp(static_cast<double>(random() % 2048), static_cast<int>(random() % 60) - 30);
        object.SetProperty((u"x\\a" + pm::to_decimal(index)).c_str(), value);
    }
    return pm::test::saved(object);
}

TEST(PiaPlainLines, DoublesAreReadToTheBit) {
    std::mt19937_64 random(5);
    for (int run = 0; run < 10; ++run) {
        const std::string bytes = written_doubles(random);
        ASSERT_EQ(load_bytes(bytes, u"base", Way::wide), load_bytes(bytes, u"base", Way::plain));
        for (int edit = 0; edit < 25; ++edit) {
            std::string edited = bytes;
            edited[pm::test::pia_header.size() + random() % 5000] = static_cast<char>(' ' + random() % 64);
            ASSERT_EQ(load_bytes(edited, u"base", Way::wide), load_bytes(edited, u"base", Way::plain))
                << edited;
        }
    }
}

} // namespace

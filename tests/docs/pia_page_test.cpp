#include "docs/outcome.h"
#include "docs/page.h"

#include "platform/code_page.h"
#include "store/value_text.h"
#include "support/scoped_settings.h"
#include "support/tree_dump.h"
#include <bit>
#include <charconv>
#include <cstring>
#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;
using testing::ElementsAre;
using testing::Key;

constexpr const char* header = "PIAFILEVERSION_2.0,\r\n";

std::string run_file(const std::string& file) {
    return load_outcome(file, PM_Object::FILE_PIA);
}

std::string run_body(const std::string& body) {
    return run_file(header + body);
}

std::string run_value(const std::string& value) {
    return run_body("a=" + value + '\n');
}

std::string run_utf8_value(const std::string& value) {
    const ScopedCodePage utf8_page(pm::utf8_code_page);
    return run_value(value);
}

std::string saved(const PM_Object& object, const char16_t* tag = u"") {
    std::stringstream stream;
    stream.put('\0'); // so that there is a start to go to
    object.save(stream, PM_Object::FILE_PIA, tag, u"\\");
    return stream.str();
}

// The body of a file of one property, without the zero byte.
std::string saved_line(double value) {
    PM_Object object;
    object.SetProperty(u"a", value);
    const std::string file = saved(object).substr(std::strlen(header));
    return file.substr(0, file.size() - 1);
}

std::string run_double(const std::string& number) {
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    std::string text = shown_bytes(saved_line(value).substr(2));
    text.resize(text.size() - 4); // the line feed, as it is shown
    const std::size_t bits = text.find('(');
    for (std::size_t at = text.find(' ', bits); at != std::string::npos; at = text.find(' ', at)) {
        text.replace(at, 1, "\\x20");
    }
    return '`' + text + '`';
}

std::string run_text(const std::string& text) {
    PM_Object object;
    const std::u16string wide = pm::to_wide(text, pm::utf8_code_page);
    const char16_t* value = wide.c_str();
    object.SetProperty(u"a", value);
    return run_file(saved(object));
}

std::string run_property_name(const std::string& name) {
    PM_Object object;
    object.SetProperty(pm::to_wide(name).c_str(), 1);
    return run_file(saved(object));
}

std::string run_node_name(const std::string& name) {
    return run_property_name(name + "\\a");
}

PM_PAGE_ROWS(pia, (Runs{{"file", run_file},
                        {"body", run_body},
                        {"value", run_value},
                        {"UTF-8 value", run_utf8_value},
                        {"double", run_double},
                        {"text", run_text},
                        {"node name", run_node_name},
                        {"property name", run_property_name}}));

// The tree of the page's file.
void make_demo(PM_Object& object) {
    const char16_t* name = u"A1";
    object.SetProperty(u"name", name);
    object.SetProperty(u"copies", 2);
    object.SetProperty(u"media\\width", 594.0);
    object.SetProperty(u"media\\roll", true);
}

TEST(PiaPage, HasBytesOfTheseNames) {
    EXPECT_THAT(read_page("pia").bytes,
                ElementsAre(Key("compressed"), Key("demo"), Key("third"), Key("third-line")));
}

TEST(PiaPage, FileIsWhatTheLibraryWritesAndReads) {
    const Page page = read_page("pia");
    PM_Object demo;
    make_demo(demo);
    for (const auto& [name, tag] : {std::pair("demo", u"demo"), std::pair("compressed", u"demo,compress")}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(saved(demo, tag), page.bytes.at(name));
        PM_Object loaded;
        std::stringstream stream(page.bytes.at(name));
        loaded.load(stream, PM_Object::FILE_PIA, u"\\");
        EXPECT_EQ(tree_lines(loaded), page.trees.at("demo"));
    }
}

// The page's four steps, on its bytes.
std::string armoured(const std::string& bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t bits = 0;
        for (std::size_t i = at; i < at + 3; ++i) {
            bits = bits << 8 | static_cast<unsigned char>(bytes[i]);
        }
        for (int shift = 18; shift >= 0; shift -= 6) {
            text += static_cast<char>((bits >> shift & 0x3F) + 32);
        }
    }
    return text.substr(0, 14);
}

// The page's check value.
std::uint32_t check_value(std::string_view bytes) {
    std::uint32_t crc = 0xC0C1;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
        }
    }
    return crc;
}

TEST(PiaPage, ExactBitsAreWhatTheLibraryWritesAndReads) {
    const Page page = read_page("pia");
    const std::string& bytes = page.bytes.at("third");
    ASSERT_EQ(12U, bytes.size());
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes.data(), sizeof bits);
    EXPECT_EQ(0x3FD5555555555555U, bits);
    EXPECT_EQ(0xC3D2U, check_value(bytes.substr(0, 8)));
    EXPECT_EQ("\xC3\xD2", bytes.substr(8, 2));

    const std::string& line = page.bytes.at("third-line");
    EXPECT_EQ("a=0.33333333333 (" + armoured(bytes) + ")\n", line);
    EXPECT_EQ(saved_line(std::bit_cast<double>(bits)), line);

    PM_Object loaded;
    std::stringstream stream(header + line);
    loaded.load(stream, PM_Object::FILE_PIA, u"\\");
    double value = 0;
    ASSERT_TRUE(loaded.GetProperty(u"a", value));
    EXPECT_EQ(bits, std::bit_cast<std::uint64_t>(value));
}

} // namespace

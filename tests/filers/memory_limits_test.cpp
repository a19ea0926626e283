#include "filers/pia_blocks.h"
#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/memory_child.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <streambuf>

namespace {

using pm::test::ChildOutcome;
using pm::test::run_in_child;
using pm::test::thrown_by;
using pm::test::word;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

// A file of some bytes, `filled` times an "x", and some more bytes, none of which are held.
class LargeBuffer : public std::streambuf {
public:
    LargeBuffer(std::string head, std::size_t filled, std::string tail)
        : m_head(std::move(head)), m_filled(filled), m_tail(std::move(tail)) {}

protected:
    std::streamsize xsgetn(char* out, std::streamsize count) override {
        const std::size_t given = std::min(static_cast<std::size_t>(count), size() - m_at);
        for (std::size_t i = 0; i < given; ++i)
            out[i] = at(m_at + i);
        m_at += given;
        return static_cast<std::streamsize>(given);
    }
    pos_type seekoff(off_type offset, std::ios::seekdir from, std::ios::openmode) override {
        const std::size_t start = from == std::ios::beg ? 0 : from == std::ios::cur ? m_at : size();
        m_at = start + static_cast<std::size_t>(offset);
        return static_cast<off_type>(m_at);
    }
    pos_type seekpos(pos_type position, std::ios::openmode mode) override {
        return seekoff(position, std::ios::beg, mode);
    }

private:
    std::size_t size() const { return m_head.size() + m_filled + m_tail.size(); }
    char at(std::size_t place) const {
        if (place < m_head.size()) return m_head[place];
        place -= m_head.size();
        return place < m_filled ? 'x' : m_tail[place - m_filled];
    }

    std::string m_head;
    std::size_t m_filled;
    std::string m_tail;
    std::size_t m_at = 0;
};

// Loads a directory under 500 MB of address space: 0 if it raises number 55 with this detail.
int load_directory(const std::string& head, std::size_t filled, const std::u16string& detail) {
    LargeBuffer buffer(head, filled, word(0) + word(0));
    std::iostream stream(&buffer);
    PM_Object object;
    const std::type_info* type = nullptr;
    const auto e = thrown_by([&] { object.load(stream, PM_Object::FILE_DPIA, u"\\"); }, &type);
    const bool told = e && e->m_number == PM_ERR_NO_MEMORY && detail == e->m_detail &&
                      e->m_place == std::u16string(u"PM_DPIAFile::load()") &&
                      *type == typeid(PM_Memory_Exception);
    return told ? 0 : 1;
}

TEST(MemoryLimits, DescriptorWithoutRoomIs55) {
    constexpr std::uint32_t length = 200'000'000;
    const std::string head = word(0x00010000) + word(1) + word(length);
    EXPECT_EQ(0,
              run_in_child([&] { return load_directory(head, length, u"descriptor"); }, 500'000'000).status);
}

TEST(MemoryLimits, InfoTextWithoutRoomIs55) {
    constexpr std::uint32_t length = 200'000'000;
    const std::string head = word(0x00020000) + word(1) + word(3) + "One" + word(length);
    EXPECT_EQ(0, run_in_child([&] { return load_directory(head, length, u"info"); }, 500'000'000).status);
}

TEST(MemoryLimits, LineWithoutRoomIs55) {
    const auto work = [] {
        LargeBuffer buffer(pm::test::pia_header + "a=\"", 200'000'000, "");
        std::iostream stream(&buffer);
        PM_Object object;
        const auto e = thrown_by([&] { object.load(stream, PM_Object::FILE_PIA, u"\\"); });
        return e && e->m_number == PM_ERR_NO_MEMORY && e->m_detail == std::u16string(u"line") ? 0 : 1;
    };
    EXPECT_EQ(0, run_in_child(work, 300'000'000).status);
}

// Lets this process take so many bytes of addresses beside those that it has.
void limit_growth(std::size_t bytes) {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
    const rlimit both{limit, limit};
    if (setrlimit(RLIMIT_AS, &both) != 0) throw std::runtime_error("no limit");
}

TEST(MemoryLimits, RawDataWithoutRoomForItsDigitsIs55) {
    const auto work = [] {
        PM_Object object;
        {
            const std::string data(100 * mebibyte, 'x');
            object.setVoidProperty(u"a", data.data(), static_cast<unsigned>(data.size()));
        }
        std::stringstream stream = pm::test::byte_stream("");
        limit_growth(50 * mebibyte);
        const std::type_info* type = nullptr;
        const auto e = thrown_by([&] { object.save(stream, PM_Object::FILE_PIA, u"test", u"\\"); }, &type);
        const bool told = e && e->m_number == PM_ERR_NO_MEMORY && e->m_detail == std::u16string(u"buffer") &&
                          *type == typeid(PM_Memory_Exception);
        return told ? 0 : 1;
    };
    EXPECT_EQ(0, run_in_child(work).status);
}

// A compressed body of one line.
constexpr std::size_t expanded = 40 * mebibyte;

std::string compressed_line(const std::string& start, char filling, const std::string& end) {
    std::string text = start;
    text.resize(expanded - end.size(), filling);
    return "PIAFILEVERSION_2.0,compress\r\n" + pm::test::block_of(text + end).bytes();
}

// Expects that a load of one long line, which gives `number` or none, takes 2.2 times its text at most beside
// what a process takes anyway.
void expect_sparing(const std::string& bytes, std::uint32_t number) {
    const auto load = [&](const std::string& file) {
        const auto work = [&] {
            PM_Object object;
            const auto e = thrown_by([&] { pm::test::load_bytes(object, file); });
            return (e ? e->m_number : 0) == number ? 0 : 1;
        };
        return run_in_child(work);
    };
    const std::size_t before = run_in_child([] { return 0; }).peak_memory;
    const ChildOutcome outcome = load(bytes);
    EXPECT_EQ(0, outcome.status);
    EXPECT_LE(outcome.peak_memory - before, expanded * 22 / 10);
}

TEST(MemoryLimits, LongStringIsHeldOnce) {
    expect_sparing(compressed_line("a=\"", 'x', ""), 0);
}

TEST(MemoryLimits, LongNumberIsHeldOnce) {
    expect_sparing(compressed_line("a=1.", '1', ""), 0);
}

TEST(MemoryLimits, LongRawDataIsMadeInPlace) {
    expect_sparing(compressed_line("a=\\", 'A', "\\"), 0);
}

TEST(MemoryLimits, LongBadLineIsHeldOnce) {
    expect_sparing(compressed_line("", 'x', "\n"), PM_ERR_BAD_LINE);
    expect_sparing(compressed_line("a=1.", 'x', "\n"), PM_ERR_BAD_LINE);
}

TEST(MemoryLimits, LongLineBeyondAsciiIsHeldOnce) {
    expect_sparing(compressed_line("a=\"\xE4", '\xE4', ""), 0);
}

} // namespace

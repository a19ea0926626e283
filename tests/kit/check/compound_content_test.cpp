#include "platform/compound_writer.h"
#include <cstring>
#include <fmt/format.h>
#include <functional>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;
using Lines = std::vector<std::string>;
using pm::CompoundElement;
using pm::CompoundKind;
using pm::CompoundTree;

void put(CompoundTree& tree, CompoundElement& storage, std::u16string_view name, std::string_view record) {
    CompoundElement* const stream = tree.create(storage, name, CompoundKind::stream);
    const auto* const bytes = reinterpret_cast<const std::byte*>(record.data());
    stream->data.assign(bytes, bytes + record.size());
}

std::string file_of(const CompoundTree& tree) {
    const auto bytes = pm::write_compound_file(tree);
    return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
}

// A file with a stream for the version and what `fill` adds.
std::string file_with(const std::function<void(CompoundTree&)>& fill) {
    CompoundTree tree;
    put(tree, tree.root(), u"Version", "\0\0\x80\x3F"sv);
    fill(tree);
    return file_of(tree);
}

std::string file_with_record(std::string_view record) {
    return file_with([&](CompoundTree& tree) { put(tree, tree.root(), u"value", record); });
}

Lines said_of(const std::string& file) {
    Lines lines;
    for (const pm::kit::Diagnostic& each :
         pm::kit::check_content(file, "a.doc", {.type = PM_Object::FILE_DOC})) {
        lines.push_back(fmt::format("{} {}: {}", each.rule, each.path, each.message));
    }
    return lines;
}

TEST(CompoundContent, EachRecordThatIsNoneIsTold) {
    const struct {
        std::string_view record;
        Lines said;
    } rows[] = {
        {"\1\0\0\0\4\0\0\0\7\0\0\0"sv, {}},
        {"\1\0\0\0\4\0\0"sv,
         {"bad-element \\value: The stream has 7 bytes, and a value has eight in front."}},
        {"\1\0\0\0\4\0\0\0\7\0\0"sv, {"bad-element \\value: The value tells of 4 bytes, and 3 are there."}},
        {"\3\0\0\0\4\0\0\0a\0b\0"sv,
         {"ignored-text \\value: What stands behind a zero byte in the text isn't read."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.said, said_of(file_with_record(row.record)));
    }
}

TEST(CompoundContent, AVersionBelowTheRootIsLeftOver) {
    const std::string file = file_with([](CompoundTree& tree) {
        CompoundElement* const node = tree.create(tree.root(), u"node", CompoundKind::storage);
        put(tree, *node, u"version", "\1\0\0\0\4\0\0\0\7\0\0\0"sv);
    });
    EXPECT_EQ(Lines{"leftover-stream \\node\\version: An element called \"Version\" isn't read."},
              said_of(file));
}

// Where the words of a header and of an entry stand.
constexpr std::size_t byte_order_at = 28;
constexpr std::size_t sector_shift_at = 30;
constexpr std::size_t left_at = 68;
constexpr std::size_t size_at = 120;

// The entry of the stream "value".
std::size_t entry_of_value(const std::string& file) {
    return file.find("v\0a\0l\0u\0e\0"sv);
}

TEST(CompoundContent, AHeaderThatNoCompoundFileHasIsTold) {
    const std::string sound = file_with_record("\1\0\0\0\4\0\0\0\7\0\0\0"sv);
    std::string other = sound;
    other[byte_order_at] = '\0';
    EXPECT_EQ(Lines{"damaged-file : The header tells another byte order, mini sector or limit than compound "
                    "files have."},
              said_of(other));
    other = sound;
    other[sector_shift_at] = '\x0A';
    EXPECT_EQ(Lines{"damaged-file : The header tells a size of sectors that compound files don't have."},
              said_of(other));
}

TEST(CompoundContent, ALinkToAnElementThatWasMetIsTold) {
    std::string file = file_with_record("\1\0\0\0\4\0\0\0\7\0\0\0"sv);
    std::memcpy(&file[entry_of_value(file) + left_at], "\0\0\0", 4); // the root
    EXPECT_EQ(Lines{"bad-element : 1 links of the storage lead nowhere, or to an element met before."},
              said_of(file));
}

TEST(CompoundContent, AStreamWhoseChainIsShorterThanItsSizeIsTold) {
    std::string file = file_with_record("\1\0\0\0\4\0\0\0\7\0\0\0"sv);
    std::memcpy(&file[entry_of_value(file) + size_at], "\0\x0F\0", 4);
    EXPECT_EQ(Lines{"bad-element \\value: The stream is shorter than its size, or its chain is broken."},
              said_of(file));
}

void put_word(std::string& bytes, std::size_t at, std::uint32_t word) {
    for (std::size_t byte = 0; byte < 4; ++byte) {
        bytes[at + byte] = static_cast<char>(word >> 8 * byte);
    }
}

constexpr std::size_t sector_size = 512;
constexpr std::uint32_t table_sectors = 110; // one more than a header has room for
constexpr std::uint32_t no_more = 0xFFFFFFFE;

// A file of a root alone whose table goes on behind the list of the header, in sectors that are told in the
// sector `list`.
std::string file_of_long_table(std::uint32_t list) {
    std::string file = file_with([](CompoundTree&) {}).substr(0, sector_size);
    put_word(file, 44, table_sectors);
    put_word(file, 48, table_sectors + 1); // the directory
    put_word(file, 60, no_more);           // no mini stream
    put_word(file, 64, 0);
    put_word(file, 68, list);
    put_word(file, 72, 1);
    for (std::uint32_t sector = 0; sector + 1 < table_sectors; ++sector) {
        put_word(file, 76 + 4 * std::size_t{sector}, sector);
    }
    std::string sectors((table_sectors + 2) * sector_size, '\xFF');
    for (std::uint32_t sector = 0; sector < table_sectors; ++sector) {
        put_word(sectors, 4 * std::size_t{sector}, 0xFFFFFFFD);
    }
    put_word(sectors, 4 * table_sectors, 0xFFFFFFFC);
    put_word(sectors, 4 * (table_sectors + 1), no_more);
    const std::size_t list_at = table_sectors * sector_size;
    put_word(sectors, list_at, table_sectors - 1);
    put_word(sectors, list_at + sector_size - 4, no_more);
    std::string root("R\0o\0o\0t\0 \0E\0n\0t\0r\0y\0\0\0"sv);
    root.resize(sector_size);
    root[64] = 22; // bytes of the name
    root[66] = 5;
    for (const std::size_t link : {68U, 72U, 76U}) {
        put_word(root, link, 0xFFFFFFFF);
    }
    put_word(root, 116, no_more);
    return file + sectors.replace(list_at + sector_size, sector_size, root);
}

TEST(CompoundContent, ATableThatGoesOnBehindTheHeaderIsRead) {
    EXPECT_EQ(Lines{"bad-element : There is no stream \"Version\" in the root."},
              said_of(file_of_long_table(table_sectors)));
    EXPECT_EQ(Lines{"damaged-file : The allocation table lies outside of the file."},
              said_of(file_of_long_table(table_sectors + 2)));
}

} // namespace

#include "limits/scale.h"
#include "pdt/description.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <pm/error_number.h>
#include <pm/pm.h>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

// What is as large as a hostile file, or a patient caller, can make it, on a stack of 256 KB. With PM_TORTURE
// set the sizes are the full ones.

namespace {

using pm::test::expect_linear;
using pm::test::RecordingHandler;
using pm::test::run_on_small_stack;
using pm::test::scaled;
using pm::test::TempFolder;
using pm::test::thrown_by;

std::u16string numbered(const char16_t* name, std::size_t number) {
    std::u16string text = name;
    for (const char digit : std::to_string(number)) {
        text += static_cast<char16_t>(digit);
    }
    return text;
}

struct Counts {
    std::size_t nodes = 0;
    std::size_t properties = 0;

    bool operator==(const Counts&) const = default;
    friend void PrintTo(const Counts& counts, std::ostream* out) {
        *out << counts.nodes << " nodes, " << counts.properties << " properties";
    }
};

// Walks with the iterator that filers use.
Counts counts(const PM_Object& object) {
    Counts result;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    do {
        if (step == PM_Object::NODE_PARENT) continue;
        ++result.nodes;
        while (walk->nextProp(value, size, type) != nullptr) {
            ++result.properties;
        }
    } while (walk->nextNode(step) != nullptr);
    return result;
}

std::stringstream saved(const PM_Object& object, PM_Object::FileType type, const char16_t* tag) {
    std::stringstream stream;
    object.save(stream, type, tag, u"\\");
    return stream;
}

// Saves the tree as property text, plain and compressed, and loads that.
void expect_comes_back(const PM_Object& object) {
    const Counts before = counts(object);
    for (const char16_t* const tag : {u"limits", u"limits,compress"}) {
        std::stringstream stream = saved(object, PM_Object::FILE_PIA, tag);
        PM_Object back;
        back.load(stream, PM_Object::FILE_PIA, u"\\");
        EXPECT_EQ(before, counts(back));
    }
}

// ---- many

TEST(Limits, NodeTakesAMillionProperties) {
    expect_linear(scaled(80'000, 1'000'000), [](std::size_t count) {
        PM_Object object;
        for (std::size_t i = 0; i < count; ++i) {
            object.SetProperty(numbered(u"\\node\\p", i).c_str(), static_cast<int>(i));
        }
        int value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(object.GetProperty(numbered(u"\\node\\p", i).c_str(), value));
            ASSERT_EQ(static_cast<int>(i), value);
        }
        expect_comes_back(object);
        object.duplicate(u"\\node", u"\\copy");
        EXPECT_EQ((Counts{3, 2 * count}), counts(object));
        object.deletePath(u"\\node");
        EXPECT_EQ((Counts{2, count}), counts(object));
    });
}

TEST(Limits, NodeTakesAMillionChildren) {
    expect_linear(scaled(40'000, 1'000'000), [](std::size_t count) {
        PM_Object object;
        for (std::size_t i = 0; i < count; ++i) {
            object.SetProperty((numbered(u"\\node\\n", i) + u"\\v").c_str(), static_cast<int>(i));
        }
        expect_comes_back(object);
        object.duplicate(u"\\node", u"\\copy");
        EXPECT_EQ((Counts{3 + 2 * count, 2 * count}), counts(object));
        object.deletePath(u"\\node");
        EXPECT_EQ((Counts{2 + count, count}), counts(object));
    });
}

// As the properties of one node are deleted one by one, from the end that is looked for last.
TEST(Limits, PropertiesAreDeletedOneByOne) {
    expect_linear(scaled(10'000, 40'000), [](std::size_t count) {
        PM_Object object;
        for (std::size_t i = 0; i < count; ++i) {
            object.SetProperty(numbered(u"\\node\\p", i).c_str(), true);
        }
        for (std::size_t i = 0; i < count; ++i) {
            object.deletePath(numbered(u"\\node\\p", i).c_str());
        }
        EXPECT_EQ((Counts{2, 0}), counts(object));
    });
}

// ---- deep

std::u16string deep_path(std::size_t components) {
    std::u16string path;
    for (std::size_t i = 0; i < components; ++i) {
        path += u"\\n";
    }
    return path;
}

TEST(Limits, PathOf256ComponentsGoesThroughEveryFormatThatIsWritten) {
    run_on_small_stack([] {
        const std::u16string path = deep_path(256);
        PM_Object object;
        object.SetProperty(path.c_str(), 7);
        EXPECT_EQ((Counts{256, 1}), counts(object));
        expect_comes_back(object);
        const TempFolder folder;
        const std::u16string file = folder.wide("deep.doc");
        object.save(file.c_str(), PM_Object::FILE_DOC, u"", u"\\");
        PM_Object back;
        back.load(file.c_str(), PM_Object::FILE_DOC, u"\\");
        int value = 0;
        EXPECT_TRUE(back.GetProperty(path.c_str(), value));
        EXPECT_EQ(7, value);
    });
}

TEST(Limits, PathOf257ComponentsIsRefused) {
    run_on_small_stack([] {
        PM_Object object;
        const auto e = thrown_by([&] { object.SetProperty(deep_path(257).c_str(), 7); });
        ASSERT_TRUE(e);
        EXPECT_EQ(PM_ERR_BAD_PATH, e->m_number);
    });
}

// A file of so many blocks, one in the other, and a property in the last.
std::stringstream nested_blocks(std::size_t blocks) {
    std::stringstream stream;
    stream << "PIAFILEVERSION_2.0,limits\r\na=1\n";
    for (std::size_t i = 0; i < blocks; ++i) {
        stream << "n{\n";
    }
    stream << "b=2\n";
    return stream;
}

TEST(Limits, PropertyBelow256LevelsOfBlocksEndsTheLoad) {
    run_on_small_stack([] {
        std::stringstream stream = nested_blocks(256);
        RecordingHandler handler(1);
        PM_Object object(&handler);
        const auto e = thrown_by([&] { object.load(stream, PM_Object::FILE_PIA, u"\\"); });
        ASSERT_TRUE(e);
        EXPECT_EQ(PM_ERR_BAD_PATH, e->m_number);
    });
}

// A path of 1023 units has room for 511 such names.
TEST(Limits, BlockForWhichAPathHasNoRoomIsOneBadLineWithAllThatIsInIt) {
    run_on_small_stack([] {
        std::stringstream stream = nested_blocks(scaled(100'000, 10'000'000));
        RecordingHandler handler(1);
        PM_Object object(&handler);
        object.load(stream, PM_Object::FILE_PIA, u"\\");
        EXPECT_EQ(std::vector<std::uint32_t>{PM_ERR_BAD_LINE}, handler.numbers());
        EXPECT_EQ((Counts{1, 1}), counts(object));
    });
}

// ---- long

constexpr std::size_t mebibyte = std::size_t{1} << 20;

std::size_t long_line() {
    return scaled(4 * mebibyte, 100 * mebibyte);
}

struct LineRow {
    const char* name;
    PM_Object::FileType type;
    std::string before; // the long line's start
    std::string after;  // and what follows behind its end
    std::vector<std::uint32_t> reports;
    Counts counts; // with the values that a PC2 file has without a line for them

    friend void PrintTo(const LineRow& row, std::ostream* out) { *out << row.name; }
};

class LongLine : public testing::TestWithParam<LineRow> {};

TEST_P(LongLine, IsReadToItsEnd) {
    const LineRow& row = GetParam();
    expect_linear(long_line(), [&](std::size_t length) {
        std::stringstream stream(row.before + std::string(length, 'x') + row.after);
        RecordingHandler handler(1);
        PM_Object object(&handler);
        object.load(stream, row.type, u"\\");
        EXPECT_EQ(row.reports, handler.numbers());
        EXPECT_EQ(row.counts, counts(object));
    });
}

INSTANTIATE_TEST_SUITE_P(
    Formats, LongLine,
    testing::Values(
        LineRow{"PiaValue", PM_Object::FILE_PIA, "PIAFILEVERSION_2.0,t\r\na=\"", "\nb=1\n", {}, {1, 2}},
        LineRow{"PiaName", PM_Object::FILE_PIA, "PIAFILEVERSION_2.0,t\r\n", "=1\nb=1\n", {57}, {1, 1}},
        LineRow{"PiaComment", PM_Object::FILE_PIA, "PIAFILEVERSION_2.0,t\r\n;", "\nb=1\n", {}, {1, 1}},
        LineRow{"Pc2",
                PM_Object::FILE_PC2,
                "PC2Version 2.0\n[PlotDriver]\nMenuName=\"",
                "\nType=2\n",
                {57},
                {11, 1418}},
        LineRow{"Pcp",
                PM_Object::FILE_PCP,
                ";Created by Draftex\nVERSION=1.0\nPLOT_FILE=",
                "\nROTATE=1\n",
                {57},
                {1, 2}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Limits, ValueOf100MegabytesComesBack) {
    expect_linear(long_line(), [](std::size_t size) {
        std::string bytes(size, 'x');
        bytes.back() = 'y';
        PM_Object object;
        object.setVoidProperty(u"\\a", bytes.data(), static_cast<unsigned>(size));
        for (const char16_t* const tag : {u"limits", u"limits,compress"}) {
            std::stringstream stream = saved(object, PM_Object::FILE_PIA, tag);
            PM_Object back;
            back.load(stream, PM_Object::FILE_PIA, u"\\");
            std::string read(size, '?');
            ASSERT_TRUE(back.getVoidProperty(u"\\a", read.data(), static_cast<unsigned>(size)));
            EXPECT_TRUE(read == bytes);
        }
    });
}

TEST(Limits, ValueOf100MegabytesIsRefusedByDoc) {
    run_on_small_stack([] {
        const std::string bytes(long_line(), 'x');
        PM_Object object;
        object.setVoidProperty(u"\\a", bytes.data(), static_cast<unsigned>(bytes.size()));
        const TempFolder folder;
        const auto e = thrown_by(
            [&] { object.save(folder.wide("large.doc").c_str(), PM_Object::FILE_DOC, u"", u"\\"); });
        ASSERT_TRUE(e);
        EXPECT_EQ(PM_ERR_VALUE_TOO_LARGE, e->m_number);
    });
}

// ---- containers

TEST(Limits, DpiaFileTakes100000Sections) {
    expect_linear(scaled(8'000, 100'000), [](std::size_t count) {
        PM_Object object;
        for (std::size_t i = 0; i < count; ++i) {
            const std::u16string section = numbered(u"\\s", i);
            object.SetProperty((section + u"\\info").c_str(), u"about it");
            object.SetProperty((section + u"\\data\\v").c_str(), static_cast<int>(i));
        }
        const TempFolder folder;
        const std::u16string file = folder.wide("many.dpia");
        object.save(file.c_str(), PM_Object::FILE_DPIA, u"", u"\\");
        EXPECT_EQ(count, pm::dpia_sections(file).size());
        PM_Object directory;
        directory.load(file.c_str(), PM_Object::FILE_DPIA, u"\\");
        PM_Object last;
        last.load_section(file.c_str(), PM_Object::FILE_DPIA, u"\\", numbered(u"s", count - 1).c_str());
        int value = 0;
        EXPECT_TRUE(last.GetProperty(u"\\v", value));
        EXPECT_EQ(static_cast<int>(count - 1), value);
    });
}

// Names in a table that lead to records of another, or to none.
std::string references(const std::string& of_row, std::size_t count) {
    std::string rows;
    for (std::size_t i = 0; i < count; ++i) {
        rows += of_row + "none" + std::to_string(i) + "\n";
    }
    return rows + of_row + "record" + std::to_string(count - 1) + "\n";
}

std::string records(std::size_t count) {
    std::string rows;
    for (std::size_t i = 0; i < count; ++i) {
        rows += "record" + std::to_string(i) + "\n";
    }
    return rows;
}

TEST(Limits, DescriptionTakes200000ReferencesToAsManyRecords) {
    expect_linear(scaled(16'000, 200'000), [](std::size_t count) {
        pm::test::Description description;
        description.rows(pm::Section::media_source_entry, records(count))
            .rows(pm::Section::media_source, "S\n" + references("\t\t\t", count))
            .rows(pm::Section::media_collating, records(count))
            .rows(pm::Section::media_destination, "D\n" + references("\t\t\t\t\t\t", count))
            .rows(pm::Section::memory_area, records(count))
            .rows(pm::Section::resolution, "R\n" + references("\t\t\t\t\t\t\t\t\t", count))
            .rows(pm::Section::resolution_color_memory, "M\t\t\t\t\t\tR\n");
        PM_Object object;
        description.load(object);
        const std::u16string name = numbered(u"record", count - 1);
        EXPECT_TRUE(object.pathExists((u"\\media\\source\\S\\entry\\" + name).c_str()));
        EXPECT_TRUE(object.pathExists((u"\\media\\destination\\D\\collating\\" + name).c_str()));
        char16_t area[32] = {};
        EXPECT_TRUE(object.GetProperty(u"\\res_color_mem\\rcm_list\\M\\resolution_list\\R\\mem_area\\0\\name",
                                       area, sizeof area));
        EXPECT_EQ(name, area);
    });
}

TEST(Limits, DocFileTakes100000Elements) {
    expect_linear(scaled(16'000, 100'000), [](std::size_t count) {
        PM_Object object;
        for (std::size_t i = 0; i < count / 2; ++i) {
            object.SetProperty((numbered(u"\\n", i) + u"\\v").c_str(), static_cast<int>(i));
        }
        const TempFolder folder;
        const std::u16string file = folder.wide("many.doc");
        object.save(file.c_str(), PM_Object::FILE_DOC, u"", u"\\");
        PM_Object back;
        back.load(file.c_str(), PM_Object::FILE_DOC, u"\\");
        EXPECT_EQ((Counts{1 + count / 2, count / 2}), counts(back));
    });
}

TEST(Limits, DocFileAbove2GiBIsRefused) {
    run_on_small_stack([] {
        const TempFolder folder;
        const std::u16string file = folder.wide("large.doc");
        PM_Object object;
        object.SetProperty(u"\\a", 1);
        object.save(file.c_str(), PM_Object::FILE_DOC, u"", u"\\");
        std::filesystem::resize_file(folder.path() / "large.doc", (std::uintmax_t{1} << 31) + 512);
        PM_Object back;
        const auto e = thrown_by([&] { back.load(file.c_str(), PM_Object::FILE_DOC, u"\\"); });
        ASSERT_TRUE(e);
        EXPECT_EQ(PM_ERR_NOT_OPENED, e->m_number);
        EXPECT_EQ((Counts{1, 0}), counts(back));
    });
}

// Elements of 1 KB each, as many as would make a file above 2 GiB, or at the small size a sound one.
TEST(Limits, DocFileThatWouldBeAbove2GiBIsNotWritten) {
    run_on_small_stack([] {
        const bool too_large = pm::test::full_size();
        PM_Object object;
        const std::string bytes(1024, 'x');
        for (std::size_t i = 0; i < scaled(2'000, 2'000'000); ++i) {
            object.setVoidProperty(numbered(u"\\p", i).c_str(), bytes.data(), 1024);
        }
        const TempFolder folder;
        const auto e = thrown_by(
            [&] { object.save(folder.wide("large.doc").c_str(), PM_Object::FILE_DOC, u"", u"\\"); });
        ASSERT_EQ(too_large, e.has_value());
        if (too_large) {
            EXPECT_EQ(PM_ERR_NOT_WRITTEN, e->m_number);
        }
    });
}

} // namespace

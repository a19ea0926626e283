#include "faults/small_disk.h"
#include "support/exceptions.h"
#include "support/tree_dump.h"
#include "tools/run_tool.h"
#include <gmock/gmock.h>
#include <pm/pm.h>

namespace {

using namespace pm::test;

// Two hundred units that no codec makes much smaller.
std::u16string long_text(char16_t start) {
    std::u16string text;
    std::uint32_t state = start;
    while (text.size() < 200) {
        state = state * 1103515245U + 12345U;
        text += static_cast<char16_t>(u' ' + (state >> 16) % 90);
    }
    return text;
}

struct SavedAs {
    const char* name;
    PM_Object::FileType type;
    const char16_t* tag;
    std::uint32_t number; // of a disk that is full; 0: that of the disk

    friend void PrintTo(const SavedAs& row, std::ostream* out) { *out << row.name; }
};

class SmallDiskSave : public testing::TestWithParam<SavedAs> {
protected:
    SmallDiskSave() {
        for (int index = 0; index < 600; ++index) {
            object.SetProperty(u"\\s\\data\\*\\text", long_text(static_cast<char16_t>(index)).c_str(), index);
        }
    }
    void save(const TempFolder& folder) const {
        const SavedAs& row = GetParam();
        object.save(folder.wide("saved").c_str(), row.type, row.tag,
                    row.type == PM_Object::FILE_DPIA ? u"\\" : u"\\s");
    }

    PM_Object object;
};

TEST_P(SmallDiskSave, IsToldAndTheTreeIsSavedElsewhere) {
    const std::vector<std::string> before = tree_dump(object);
    {
        const SmallDisk disk;
        const auto thrown = thrown_by([&] { save(disk.folder()); });
        ASSERT_TRUE(thrown);
        EXPECT_EQ(GetParam().number != 0 ? GetParam().number : disk.number(), thrown->m_number);
    }
    EXPECT_EQ(before, tree_dump(object));
    const TempFolder elsewhere;
    save(elsewhere);
    EXPECT_LT(SmallDisk::size, elsewhere.read("saved").size());
}

INSTANTIATE_TEST_SUITE_P(Formats, SmallDiskSave,
                         testing::Values(SavedAs{"Pia", PM_Object::FILE_PIA, u"", 0},
                                         SavedAs{"CompressedPia", PM_Object::FILE_PIA, u"compress", 0},
                                         SavedAs{"Dpia", PM_Object::FILE_DPIA, u"", 0},
                                         SavedAs{"Doc", PM_Object::FILE_DOC, u"", 60}),
                         [](const auto& row) { return std::string(row.param.name); });

class SmallDiskTool : public ToolTest {};

TEST_F(SmallDiskTool, EditThatDoesNotFitLeavesTheOldFileAlone) {
    const SmallDisk disk;
    const std::string file = (disk.folder() / "a.pia").string();
    const std::string raw(2 * 20'000, 'A');
    const std::string old_content = "PIAFILEVERSION_2.0,\r\nlarge=\\" + raw + "\\\n";
    disk.folder().write("a.pia", old_content);
    const ToolRun result = run({"set", file, "larger", "--type", "raw", raw});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("pmtool: " + file + ": " + disk.text() + "\n", result.err);
    EXPECT_EQ(old_content, disk.folder().read("a.pia"));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(disk.folder().path()), {}));
}

} // namespace

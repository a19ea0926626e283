#include "platform/compound_reader.h"

#include "platform/compound_bytes.h"
#include "platform/compound_manifest.h"
#include "support/temp_folder.h"
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace pm {
namespace {

using namespace compound;
using test::Bytes;
using test::entry_at;
using test::entry_number;
using Names = std::vector<std::u16string>;

class WrittenByOthers : public testing::TestWithParam<const char*> {
protected:
    WrittenByOthers() {
        const std::string path = std::string(PM_TEST_DATA "/compound/") + GetParam();
        manifest = test::read_manifest(path + ".txt");
        file = test::bytes_of(test::TempFolder::read_file(path + ".doc"));
    }

    test::Tree manifest;
    Bytes file;
};

TEST_P(WrittenByOthers, EveryElementIsReadAsItWasWritten) {
    const auto root = StgOpenStorageOnBytes(file);
    ASSERT_NE(nullptr, root);
    EXPECT_TRUE(manifest == test::read_tree(*root));
}

void expect_in_order(IStorage& storage) {
    const auto elements = storage.EnumElements();
    STATSTG element;
    std::u16string last;
    while (elements->Next(element) == IEnumSTATSTG::Result::element) {
        const std::u16string key = compound_name_key(element.name);
        EXPECT_TRUE(CompoundNameOrder()(last, key));
        last = key;
        if (element.is_storage) expect_in_order(*storage.OpenStorage(element.name));
    }
}

TEST_P(WrittenByOthers, ElementsAreEnumeratedInTheOrderOfTheFormat) {
    const auto root = StgOpenStorageOnBytes(file);
    ASSERT_NE(nullptr, root);
    expect_in_order(*root);
}

INSTANTIATE_TEST_SUITE_P(Files, WrittenByOthers,
                         testing::Values("cfb_names", "cfb_sizes", "cfb_many", "cfb_deep", "gsf_createole",
                                         "gsf_large_sectors"),
                         [](const auto& file) { return std::string(file.param); });

TEST(WrittenByAnother, NamesComeByLengthAndThenUpperCase) {
    const auto tree = read_compound_file(
        test::bytes_of(test::TempFolder::read_file(PM_TEST_DATA "/compound/cfb_names.doc")));
    ASSERT_NE(nullptr, tree);
    std::vector<std::u16string> names;
    for (const auto& child : tree->root().children)
        names.emplace_back(child.second->name);
    const std::vector<std::u16string> expected{u"A",
                                               u"b",
                                               u"ÿ",
                                               u"aB",
                                               u"AC",
                                               u"aZ",
                                               u"a[",
                                               u"a_",
                                               u"Zy",
                                               u"zz",
                                               u"äp",
                                               u"ÄÖ",
                                               u"Σς",
                                               u"名前",
                                               u"😀",
                                               u"ＡＡ",
                                               u"abc",
                                               u"😁x",
                                               u"Größe",
                                               u"Москва",
                                               u"москвб",
                                               u"Version",
                                               u"\u0001Sh33tJ5",
                                               u"a b.c (d)",
                                               u"\u0005SummaryInformation",
                                               std::u16string(31, u'n')};
    EXPECT_EQ(expected, names);
}

// One element of each sort: small and large streams, an empty one, a storage with a stream.
class Broken : public testing::Test {
protected:
    Broken() {
        CompoundTree made;
        test::add_stream(made, made.root(), u"small", small);
        test::add_stream(made, made.root(), u"large", large);
        test::add_stream(made, made.root(), u"empty", "");
        CompoundElement& storage = test::add_storage(made, made.root(), u"storage");
        test::add_stream(made, storage, u"inner", small);
        test::add_stream(made, storage, u"other", small);
        file = test::file_of(made);
    }

    void put_entry(std::u16string_view name, std::size_t at, std::uint32_t value) {
        put32(file, entry_at(file, name) + at, value);
    }
    void read() { tree = read_compound_file(file); }
    bool is_sound(std::u16string_view name) {
        const CompoundElement* element = tree->find(tree->root(), name);
        return element != nullptr && element->sound;
    }
    std::string content(std::u16string_view name) {
        return test::text_of(tree->find(tree->root(), name)->data);
    }
    CompoundElement& storage() { return *tree->find(tree->root(), u"storage"); }
    static Names names(const CompoundElement& storage) {
        Names found;
        for (const auto& child : storage.children)
            found.emplace_back(child.second->name);
        return found;
    }
    // That stream is not sound and empty, and all else is read.
    void expect_only_broken(std::u16string_view name) {
        ASSERT_NE(nullptr, tree);
        EXPECT_TRUE(tree->root().complete);
        EXPECT_EQ((Names{u"empty", u"large", u"small", u"storage"}), names(tree->root()));
        for (const std::u16string each : {u"small", u"large", u"empty", u"storage"}) {
            EXPECT_EQ(each != name, is_sound(each));
        }
        EXPECT_EQ("", content(name));
        EXPECT_TRUE(storage().complete);
        EXPECT_EQ((Names{u"inner", u"other"}), names(storage()));
    }
    // That element of the storage can't be opened; the other one, and all else, is read.
    void expect_inner_broken(const std::u16string& name) {
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ(large, content(u"large"));
        EXPECT_TRUE(is_sound(u"storage"));
        EXPECT_TRUE(storage().complete);
        ASSERT_EQ(2U, storage().children.size());
        ASSERT_NE(nullptr, tree->find(storage(), name));
        EXPECT_FALSE(tree->find(storage(), name)->sound);
        EXPECT_EQ(small, test::text_of(tree->find(storage(), u"other")->data));
    }
    // The storage holds these, and something that has no name or is out of reach.
    void expect_incomplete(const Names& left) {
        ASSERT_NE(nullptr, tree);
        EXPECT_TRUE(tree->root().complete);
        EXPECT_EQ(large, content(u"large"));
        EXPECT_TRUE(is_sound(u"storage"));
        EXPECT_FALSE(storage().complete);
        EXPECT_EQ(left, names(storage()));
        for (const auto& child : storage().children)
            EXPECT_EQ(small, test::text_of(child.second->data));
    }

    const std::string small = test::stream_content(100);
    const std::string large = test::stream_content(5000);
    Bytes file;
    std::unique_ptr<CompoundTree> tree;
};

TEST_F(Broken, NothingIsBeforeItIsBroken) {
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(small, content(u"small"));
    EXPECT_EQ(large, content(u"large"));
    EXPECT_EQ("", content(u"empty"));
    for (const char16_t* name : {u"small", u"large", u"empty", u"storage"})
        EXPECT_TRUE(is_sound(name));
}

TEST_F(Broken, EveryPrefixOfTheFileIsRefusedOrGivesNothingElse) {
    const Bytes whole = file;
    std::size_t refused = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        file.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        read();
        if (!tree) {
            refused = size;
            continue;
        }
        for (const auto& [name, expected] :
             {std::pair(u"small", small), {u"large", large}, {u"empty", std::string()}}) {
            CompoundElement* element = tree->find(tree->root(), name);
            ASSERT_TRUE(element != nullptr || !tree->root().complete) << size;
            if (element != nullptr && element->sound) {
                ASSERT_EQ(expected, test::text_of(element->data)) << size;
            }
        }
    }
    // Header, table and the beginning of the directory's last sector have to be there.
    EXPECT_EQ(3U * 512, refused);
}

TEST_F(Broken, ChainLongerThanTheStreamIsTakenAsFarAsTheSizeAsks) {
    const std::uint32_t start = get32(file, entry_at(file, u"large") + start_at);
    for (const std::uint32_t next : {start, get32(file, difat_at), 0x7FFFFFFFU, free_sector}) {
        put32(file, test::successor_at(file, start + 9), next);
        read();
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ(large, content(u"large"));
    }
    put_entry(u"large", size_at, 4096);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(large.substr(0, 4096), content(u"large"));
}

TEST_F(Broken, MiniChainLongerThanTheStreamIsTakenAsFarAsTheSizeAsks) {
    const std::uint32_t start = get32(file, entry_at(file, u"small") + start_at);
    const std::size_t mini_table = 512 * (std::size_t{get32(file, mini_fat_start_at)} + 1);
    for (const std::uint32_t next : {start, 0U, 0x7FFFFFFFU, free_sector}) {
        put32(file, mini_table + 4 * (start + 1), next);
        read();
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ(small, content(u"small"));
    }
    put_entry(u"small", size_at, 64);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(small.substr(0, 64), content(u"small"));
}

TEST_F(Broken, ChainOfTheMiniStreamMayBeLongerThanItsSize) {
    const std::uint32_t start = get32(file, entry_at(file, u"Root Entry") + start_at);
    for (const std::uint32_t next : {start, get32(file, difat_at), 0x7FFFFFFFU, free_sector}) {
        put32(file, test::successor_at(file, start), next);
        read();
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ(small, content(u"small"));
    }
}

TEST_F(Broken, ChainOfTheMiniTableMayBeLongerThanNeeded) {
    const std::uint32_t start = get32(file, mini_fat_start_at);
    for (const std::uint32_t next : {start, get32(file, difat_at), 0x7FFFFFFFU, free_sector}) {
        put32(file, test::successor_at(file, start), next);
        read();
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ(small, content(u"small"));
    }
}

TEST_F(Broken, ChainOfTheDirectoryMayEndInAFreeMark) {
    const std::uint32_t second = get32(file, directory_start_at) + 1;
    ASSERT_EQ(end_of_chain, get32(file, test::successor_at(file, second)));
    put32(file, test::successor_at(file, second), free_sector);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(small, content(u"small"));
    EXPECT_EQ((Names{u"inner", u"other"}), names(storage()));
}

TEST_F(Broken, ColoursAndTheRootsNameAreNotLookedAt) {
    for (const char16_t* name : {u"Root Entry", u"small", u"large", u"empty", u"storage", u"inner", u"other"})
        file[entry_at(file, name) + colour_at] ^= std::byte{1};
    const std::size_t root = entry_at(file, u"Root Entry");
    for (const unsigned size : {0U, 2U, 12U, 64U, 0xFFFFU}) {
        test::put16(file, root, u'/');
        test::put16(file, root + name_size_at, size);
        read();
        ASSERT_NE(nullptr, tree);
        EXPECT_EQ((Names{u"empty", u"large", u"small", u"storage"}), names(tree->root()));
        EXPECT_EQ((Names{u"inner", u"other"}), names(storage()));
    }
}

TEST_F(Broken, SiblingsOutOfOrderAreFoundAll) {
    const std::size_t inner = entry_at(file, u"inner");
    const std::size_t other = entry_at(file, u"other");
    for (std::size_t at = 0; at < name_room; ++at)
        std::swap(file[inner + at], file[other + at]);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(storage().complete);
    EXPECT_EQ((Names{u"inner", u"other"}), names(storage()));
}

TEST_F(Broken, SizeBeyondTheChainBreaksTheStream) {
    put_entry(u"large", size_at, 5121);
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, SizeUpToTheEndOfTheChainIsTaken) {
    put_entry(u"large", size_at, 5120);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(large + std::string(120, '\0'), content(u"large"));
}

TEST_F(Broken, SizeOfFourGigabytesBreaksTheStream) {
    put_entry(u"large", size_at, 0xFFFFFFFF);
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, UpperHalfOfTheSizeIsRubbishInFilesOfSmallSectors) {
    put_entry(u"large", size_at + 4, 0xCCCCCCCC);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(large, content(u"large"));
}

TEST_F(Broken, SizeBeyondTheMiniChainBreaksTheStream) {
    put_entry(u"small", size_at, 129);
    read();
    expect_only_broken(u"small");
}

TEST_F(Broken, SmallSizeOfALargeStreamIsLookedForInTheMiniStream) {
    put_entry(u"large", size_at, 4095);
    put_entry(u"large", start_at, 1000);
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, StartOfAnEmptyStreamIsNotLookedAt) {
    put_entry(u"empty", start_at, 12345);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(is_sound(u"empty"));
}

TEST_F(Broken, StartOutsideTheFileBreaksTheStream) {
    for (const std::uint32_t start : {1000U, 0x7FFFFFFFU, 0xFFFFFFFBU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        put_entry(u"large", start_at, start);
        read();
        expect_only_broken(u"large");
    }
}

TEST_F(Broken, MiniStartOutsideTheMiniStreamBreaksTheStream) {
    for (const std::uint32_t start : {1000U, 0x7FFFFFFFU, 0xFFFFFFFBU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        put_entry(u"small", start_at, start);
        read();
        expect_only_broken(u"small");
    }
}

TEST_F(Broken, ChainWithACycleBreaksTheStream) {
    const std::uint32_t start = get32(file, entry_at(file, u"large") + start_at);
    put32(file, test::successor_at(file, start + 3), start);
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, ChainThatLeavesTheFileBreaksTheStream) {
    const std::uint32_t start = get32(file, entry_at(file, u"large") + start_at);
    put32(file, test::successor_at(file, start), static_cast<std::uint32_t>(file.size() / 512 - 1));
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, ChainIntoTheAllocationTableBreaksTheStream) {
    put_entry(u"large", start_at, get32(file, difat_at));
    read();
    expect_only_broken(u"large");
}

TEST_F(Broken, MiniChainWithACycleBreaksTheStream) {
    const std::uint32_t start = get32(file, entry_at(file, u"small") + start_at);
    const std::size_t mini_table = 512 * (std::size_t{get32(file, mini_fat_start_at)} + 1);
    put32(file, mini_table + 4 * start, start);
    read();
    expect_only_broken(u"small");
}

TEST_F(Broken, OfStreamsThatShareAChainTheFirstIsRead) {
    put_entry(u"inner", start_at, get32(file, entry_at(file, u"other") + start_at));
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(small, test::text_of(tree->find(storage(), u"inner")->data));
    EXPECT_FALSE(tree->find(storage(), u"other")->sound);
}

TEST_F(Broken, RootsStreamOutsideTheFileBreaksEverySmallStream) {
    put_entry(u"Root Entry", start_at, 1000);
    read();
    expect_only_broken(u"small");
    EXPECT_FALSE(tree->find(storage(), u"inner")->sound);
    EXPECT_FALSE(tree->find(storage(), u"other")->sound);
}

TEST_F(Broken, RootsStreamOfFourGigabytesBreaksEverySmallStream) {
    put_entry(u"Root Entry", size_at, 0xFFFFFFFF);
    read();
    expect_only_broken(u"small");
}

TEST_F(Broken, MiniTableOutsideTheFileBreaksEverySmallStream) {
    put32(file, mini_fat_start_at, 1000);
    read();
    expect_only_broken(u"small");
}

TEST_F(Broken, DirectoryOutsideTheFileIsRefused) {
    for (const std::uint32_t start : {1000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        put32(file, directory_start_at, start);
        read();
        EXPECT_EQ(nullptr, tree);
    }
}

TEST_F(Broken, DirectoryWithACycleOfSectorsIsRefused) {
    const std::uint32_t start = get32(file, directory_start_at);
    put32(file, test::successor_at(file, start), start);
    read();
    EXPECT_EQ(nullptr, tree);
}

TEST_F(Broken, DirectoryWithoutARootIsRefused) {
    for (const int type : {0, 1, 2, 3, 255}) {
        file[entry_at(file, u"Root Entry") + type_at] = std::byte(type);
        read();
        EXPECT_EQ(nullptr, tree);
    }
}

TEST_F(Broken, SiblingOutsideTheDirectoryHidesNothingElse) {
    put_entry(u"other", right_at, 1000);
    read();
    expect_incomplete({u"inner", u"other"});
}

TEST_F(Broken, CycleOfSiblingsHidesNothingElse) {
    for (const char16_t* name : {u"Root Entry", u"small", u"storage", u"other"}) {
        put_entry(u"other", right_at, entry_number(file, name));
        read();
        expect_incomplete({u"inner", u"other"});
    }
}

TEST_F(Broken, SiblingsBehindABrokenLinkAreOutOfReach) {
    put_entry(u"storage", child_at, entry_number(file, u"other"));
    put_entry(u"other", left_at, 1000);
    read();
    expect_incomplete({u"other"});
}

TEST_F(Broken, RootAmongItsOwnChildrenIsOutOfReach) {
    put_entry(u"Root Entry", child_at, 0);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_FALSE(tree->root().complete);
    EXPECT_TRUE(tree->root().children.empty());
}

TEST_F(Broken, StorageBelowItselfIsOutOfReach) {
    put_entry(u"storage", child_at, entry_number(file, u"storage"));
    read();
    expect_incomplete({});
}

TEST_F(Broken, ChildOutsideTheDirectoryIsOutOfReach) {
    put_entry(u"storage", child_at, 0x7FFFFFFF);
    read();
    expect_incomplete({});
}

TEST_F(Broken, StorageWithoutAChildIsEmpty) {
    put_entry(u"storage", child_at, no_entry);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(is_sound(u"storage"));
    EXPECT_TRUE(storage().complete);
    EXPECT_TRUE(storage().children.empty());
}

TEST_F(Broken, ElementOfAnUnknownTypeHidesNothingElse) {
    for (const int type : {0, 3, 4, 5, 255}) {
        file[entry_at(file, u"inner") + type_at] = std::byte(type);
        read();
        expect_inner_broken(u"inner");
    }
}

TEST_F(Broken, SecondElementOfOneNameIsARepeatOfTheFirst) {
    const std::size_t at = entry_at(file, u"inner");
    for (std::size_t unit = 0; unit < 5; ++unit)
        test::put16(file, at + 2 * unit, u"OTHER"[unit]);
    put_entry(u"storage", child_at, entry_number(file, u"other"));
    put_entry(u"other", left_at, entry_number(file, u"OTHER"));
    put_entry(u"OTHER", right_at, no_entry);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(storage().complete);
    EXPECT_EQ(Names{u"other"}, names(storage()));
    EXPECT_EQ(1U, storage().children.begin()->second->repeats);
    EXPECT_EQ(small, test::text_of(storage().children.begin()->second->data));
}

TEST_F(Broken, NameOfABrokenLengthHidesNothingElse) {
    const std::size_t at = entry_at(file, u"inner");
    for (const unsigned size : {0U, 1U, 2U, 11U, 13U, 65U, 66U, 1000U, 0xFFFFU}) {
        test::put16(file, at + name_size_at, size);
        read();
        expect_incomplete({u"other"});
    }
}

TEST_F(Broken, NameWithoutItsTerminatorCannotBeOpened) {
    test::put16(file, entry_at(file, u"inner") + 10, u'x');
    read();
    expect_inner_broken(u"inner");
}

TEST_F(Broken, NameThatIsNotAllowedCannotBeOpened) {
    const std::size_t at = entry_at(file, u"inner");
    for (const char16_t unit : {u'/', u'\\', u':', u'!', u'\0'}) {
        test::put16(file, at + 2, unit);
        read();
        expect_inner_broken(std::u16string(u"i") + unit + u"ner");
    }
}

TEST_F(Broken, UnpairedSurrogateInANameIsAUnitLikeOthers) {
    const std::size_t at = entry_at(file, u"inner");
    for (const char16_t unit : {char16_t{0xD83D}, char16_t{0xDE00}}) {
        test::put16(file, at + 2, unit);
        read();
        ASSERT_NE(nullptr, tree);
        const CompoundElement* element = tree->find(storage(), std::u16string(u"i") + unit + u"ner");
        ASSERT_NE(nullptr, element);
        EXPECT_TRUE(element->sound);
        EXPECT_EQ(small, test::text_of(element->data));
    }
}

// Puts the directory behind all else, as some writers do, in reach of the table's one sector.
Bytes with_directory_last(const Bytes& before) {
    Bytes file = before;
    const std::uint32_t first = get32(file, directory_start_at);
    const auto last = static_cast<std::uint32_t>(file.size() / 512 - 1);
    const auto from = file.begin() + 512 * (static_cast<std::ptrdiff_t>(first) + 1);
    const Bytes directory(from, from + 1024);
    file.insert(file.end(), directory.begin(), directory.end());
    put32(file, directory_start_at, last);
    put32(file, test::successor_at(file, last), last + 1);
    put32(file, test::successor_at(file, last + 1), end_of_chain);
    std::fill(file.begin() + 512 * (static_cast<std::ptrdiff_t>(first) + 1),
              file.begin() + 512 * (static_cast<std::ptrdiff_t>(first) + 3), std::byte{});
    return file;
}

TEST_F(Broken, DirectoryWhoseLastSectorIsCutShortIsRead) {
    file = with_directory_last(file);
    const Bytes whole = file;
    const std::size_t end_of_entries = entry_at(file, u"Root Entry") + 7 * entry_size;
    for (std::size_t size = end_of_entries; size <= whole.size(); ++size) {
        file.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        read();
        ASSERT_NE(nullptr, tree) << size;
        EXPECT_TRUE(tree->root().complete);
        EXPECT_EQ(large, content(u"large"));
        EXPECT_EQ((Names{u"inner", u"other"}), names(storage()));
    }
}

TEST_F(Broken, EntryThatTheFilesEndCutsOffIsOutOfReach) {
    file = with_directory_last(file);
    const Bytes whole = file;
    const std::size_t end_of_entries = entry_at(file, u"Root Entry") + 7 * entry_size;
    for (std::size_t cut = 1; cut <= entry_size; ++cut) {
        file.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(end_of_entries - cut));
        read();
        expect_incomplete({}); // the last one is `other`, with `inner` below it
    }
}

TEST_F(Broken, MiniTableThatIsCutShortIsReadAsFarAsItGoes) {
    const std::uint32_t before = get32(file, mini_fat_start_at);
    const auto last = static_cast<std::uint32_t>(file.size() / 512 - 1);
    const std::size_t used = get32(file, entry_at(file, u"Root Entry") + size_at) / 64 * 4;
    const auto from = file.begin() + 512 * (static_cast<std::ptrdiff_t>(before) + 1);
    const Bytes table(from, from + static_cast<std::ptrdiff_t>(used));
    file.insert(file.end(), table.begin(), table.end());
    put32(file, mini_fat_start_at, last);
    put32(file, test::successor_at(file, last), end_of_chain);
    read();
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(small, content(u"small"));
    EXPECT_EQ(small, test::text_of(tree->find(storage(), u"inner")->data));
}

TEST(CompoundReader, StreamInTheCutLastSectorIsRead) {
    CompoundTree made;
    test::add_stream(made, made.root(), u"large", test::stream_content(5000));
    Bytes file = test::file_of(made);
    // The stream's last sector goes to the end of the file, where nothing needs its rest.
    const std::uint32_t start = get32(file, entry_at(file, u"large") + start_at);
    const auto last = static_cast<std::uint32_t>(file.size() / 512 - 1);
    put32(file, test::successor_at(file, start + 8), last);
    put32(file, test::successor_at(file, last), end_of_chain);
    const std::string content = test::stream_content(5000);
    for (std::size_t at = 9 * 512; at < content.size(); ++at)
        file.push_back(std::byte(content[at]));
    auto tree = read_compound_file(file);
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(content, test::text_of(tree->find(tree->root(), u"large")->data));
    file.pop_back();
    tree = read_compound_file(file);
    ASSERT_NE(nullptr, tree);
    EXPECT_FALSE(tree->find(tree->root(), u"large")->sound);
}

TEST(CompoundReader, SixtyFourBitsOfTheSizeCountInFilesOfLargeSectors) {
    Bytes file = test::bytes_of(test::TempFolder::read_file(PM_TEST_DATA "/compound/gsf_large_sectors.doc"));
    put32(file, entry_at(file, u"size4096") + size_at + 4, 1);
    const auto tree = read_compound_file(file);
    ASSERT_NE(nullptr, tree);
    EXPECT_FALSE(tree->find(tree->root(), u"size4096")->sound);
    EXPECT_TRUE(tree->find(tree->root(), u"size8192")->sound);
}

// 40000 entries that are each other's right sibling or child, which a reader can't follow by recursion.
Bytes file_of_one_line(std::size_t link_at, std::uint8_t type) {
    constexpr std::uint32_t count = 40000;
    constexpr std::uint32_t table_sectors = 80;
    constexpr std::uint32_t directory_sectors = (count + 1 + 3) / 4;
    Bytes file(512 * (1 + table_sectors + directory_sectors));
    CompoundTree tree;
    const Bytes header = test::file_of(tree);
    std::copy(header.begin(), header.begin() + header_size, file.begin());
    put32(file, fat_count_at, table_sectors);
    put32(file, directory_start_at, table_sectors);
    const auto link = [&file](std::uint32_t sector, std::uint32_t next) {
        put32(file, 512 + 4 * sector, next);
    };
    for (std::uint32_t place = 0; place < table_sectors; ++place) {
        put32(file, difat_at + 4 * place, place);
        link(place, 0xFFFFFFFD);
    }
    for (std::uint32_t place = 0; place < directory_sectors; ++place) {
        link(table_sectors + place, place + 1 < directory_sectors ? table_sectors + place + 1 : end_of_chain);
    }
    for (std::uint32_t number = 0; number <= count; ++number) {
        const std::size_t at = 512 * (1 + table_sectors) + entry_size * number;
        test::put16(file, at, 0x4E00 + number % 10007);
        test::put16(file, at + 2, u'a' + number / 10007);
        test::put16(file, at + name_size_at, 6);
        for (const std::size_t other : {left_at, right_at, child_at})
            put32(file, at + other, no_entry);
        put32(file, at + (number == 0 ? child_at : link_at), number < count ? number + 1 : no_entry);
        file[at + type_at] = std::byte(number == 0 ? root_entry : type);
    }
    return file;
}

TEST(CompoundReader, LongListOfSiblingsIsReadWithoutRecursion) {
    const auto tree = read_compound_file(file_of_one_line(right_at, stream_entry));
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(tree->root().sound);
    EXPECT_EQ(40000U, tree->root().children.size());
}

TEST(CompoundReader, DeepNestingIsReadWithoutRecursion) {
    const auto tree = read_compound_file(file_of_one_line(child_at, storage_entry));
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(tree->root().sound);
    EXPECT_EQ(1U, tree->root().children.size());
}

// Pairs of names and whether they are storages, and how the list ends.
std::pair<std::vector<STATSTG>, IEnumSTATSTG::Result> listed(IStorage& storage) {
    std::pair<std::vector<STATSTG>, IEnumSTATSTG::Result> list;
    const auto elements = storage.EnumElements();
    STATSTG element;
    while ((list.second = elements->Next(element)) == IEnumSTATSTG::Result::element)
        list.first.push_back(element);
    return list;
}

TEST(CompoundReader, WhatCannotBeOpenedIsListedInItsPlace) {
    CompoundTree made;
    for (const char16_t* name : {u"a", u"bxc", u"cut", u"typ", u"zzz"})
        test::add_stream(made, made.root(), name, "content");
    Bytes file = test::file_of(made);
    put32(file, entry_at(file, u"cut") + start_at, 1000);
    file[entry_at(file, u"typ") + type_at] = std::byte{3};
    test::put16(file, entry_at(file, u"bxc") + 2, u'/');
    const auto root = StgOpenStorageOnBytes(file);
    ASSERT_NE(nullptr, root);
    const auto [elements, end] = listed(*root);
    EXPECT_EQ(IEnumSTATSTG::Result::end, end);
    Names found;
    for (const STATSTG& element : elements) {
        found.push_back(element.name);
        EXPECT_FALSE(element.is_storage || element.repeated);
    }
    EXPECT_EQ((Names{u"a", u"b/c", u"cut", u"typ", u"zzz"}), found);
    for (const char16_t* name : {u"b/c", u"cut", u"typ"})
        EXPECT_EQ(nullptr, root->OpenStream(name));
    for (const char16_t* name : {u"a", u"zzz"})
        EXPECT_NE(nullptr, root->OpenStream(name));
}

TEST(CompoundReader, RepeatedNameIsListedAgain) {
    CompoundTree made;
    for (const char16_t* name : {u"a", u"b", u"c", u"d"})
        test::add_stream(made, made.root(), name, "content");
    Bytes file = test::file_of(made);
    test::put16(file, entry_at(file, u"c"), u'B');
    const auto root = StgOpenStorageOnBytes(file);
    ASSERT_NE(nullptr, root);
    const auto [elements, end] = listed(*root);
    EXPECT_EQ(IEnumSTATSTG::Result::end, end);
    ASSERT_EQ(4U, elements.size());
    EXPECT_EQ((std::vector{false, false, true, false}),
              (std::vector{elements[0].repeated, elements[1].repeated, elements[2].repeated,
                           elements[3].repeated}));
    EXPECT_EQ(elements[1].name, elements[2].name);
    EXPECT_EQ(u"d", elements[3].name);
}

TEST(CompoundReader, ListOfAnIncompleteStorageEndsInAFailure) {
    CompoundTree made;
    for (const char16_t* name : {u"a", u"b", u"c"})
        test::add_stream(made, made.root(), name, "content");
    Bytes file = test::file_of(made);
    test::put16(file, entry_at(file, u"c") + name_size_at, 1);
    const auto root = StgOpenStorageOnBytes(file);
    ASSERT_NE(nullptr, root);
    const auto [elements, end] = listed(*root);
    EXPECT_EQ(IEnumSTATSTG::Result::failure, end);
    EXPECT_EQ(2U, elements.size());
}

} // namespace
} // namespace pm

#include "platform/compound_storage.h"

#include "platform/compound_bytes.h"
#include "platform/compound_manifest.h"
#include "platform/compound_storage_fixture.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <pm_test_paths.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace pm {
namespace {

using Result = IEnumSTATSTG::Result;

// Names

TEST_F(CompoundStorage, NamesThatAreNotAllowedAreRefused) {
    const Names refused{u"",    std::u16string(32, u'n'),  u"a/b", u"a\\b", u"a:b",
                        u"a!b", std::u16string(u"a\0b", 3)};
    for (const std::u16string& each : refused) {
        EXPECT_EQ(nullptr, root->CreateStream(each));
        EXPECT_EQ(nullptr, root->CreateStorage(each));
        EXPECT_EQ(nullptr, root->OpenStream(each));
        EXPECT_EQ(nullptr, root->OpenStorage(each));
    }
    EXPECT_EQ(Names{}, names(*root));
}

TEST_F(CompoundStorage, NamesOfAllLengthsAndScriptsComeBack) {
    const Names expected{u"n",
                         u"\xDE00",
                         u"名前",
                         u"Größe",
                         u"Москва",
                         u"a b.c (d)",
                         u"\u0005SummaryInformation",
                         std::u16string(28, u'n') + u"\xD83D",
                         std::u16string(29, u'n') + u"😀",
                         std::u16string(31, u'\uFFFF')};
    for (const auto& each : expected)
        write(*root, each, "content");
    reopen();
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(expected, names(*root));
    for (const auto& each : expected)
        EXPECT_EQ("content", read(*root, each));
}

TEST_F(CompoundStorage, ElementsAreOpenedInAnyCase) {
    write(*root, u"Größe", "content");
    EXPECT_NE(nullptr, root->CreateStorage(u"Folder"));
    reopen();
    EXPECT_EQ("content", read(*root, u"gRÖßE"));
    EXPECT_NE(nullptr, root->OpenStorage(u"FOLDER"));
}

TEST_F(CompoundStorage, SameNameInOtherStoragesIsAnotherElement) {
    write(*root, u"name", "above");
    write(*root->CreateStorage(u"storage"), u"name", "below");
    EXPECT_EQ("above", read(*root, u"name"));
    EXPECT_EQ("below", read(*root->OpenStorage(u"storage"), u"name"));
}

// Creating and replacing

TEST_F(CompoundStorage, StreamReplacesStream) {
    write(*root, u"name", "first content");
    write(*root, u"NAME", "second");
    reopen();
    EXPECT_EQ(Names{u"NAME"}, names(*root));
    EXPECT_EQ("second", read(*root, u"name"));
}

TEST_F(CompoundStorage, StorageReplacesStream) {
    write(*root, u"name", "content");
    EXPECT_NE(nullptr, root->CreateStorage(u"Name"));
    EXPECT_EQ(nullptr, root->OpenStream(u"name"));
    reopen();
    EXPECT_EQ(Names{u"Name/"}, names(*root));
}

TEST_F(CompoundStorage, StreamReplacesStorageWithAllBelow) {
    write(*root->CreateStorage(u"name"), u"below", "content");
    write(*root, u"Name", "content");
    EXPECT_EQ(nullptr, root->OpenStorage(u"name"));
    reopen();
    EXPECT_EQ(Names{u"Name"}, names(*root));
}

TEST_F(CompoundStorage, StorageReplacesStorageWithAllBelow) {
    write(*root->CreateStorage(u"name"), u"below", "content");
    EXPECT_EQ(Names{}, names(*root->CreateStorage(u"name")));
}

TEST_F(CompoundStorage, ReplacedElementOnlyFails) {
    const auto stream = root->CreateStream(u"stream");
    const auto storage = root->CreateStorage(u"storage");
    const auto below = storage->CreateStream(u"below");
    const auto elements = storage->EnumElements();
    ASSERT_TRUE(stream->Write("ab", 2));
    ASSERT_NE(nullptr, root->CreateStream(u"stream"));
    ASSERT_NE(nullptr, root->CreateStorage(u"storage"));
    STATSTG element;
    EXPECT_FALSE(stream->Write("c", 1));
    EXPECT_FALSE(below->Write("c", 1));
    EXPECT_EQ(nullptr, storage->CreateStream(u"other"));
    EXPECT_EQ(nullptr, storage->CreateStorage(u"other"));
    EXPECT_EQ(nullptr, storage->OpenStream(u"below"));
    EXPECT_EQ(nullptr, storage->EnumElements());
    EXPECT_FALSE(storage->Commit());
    EXPECT_EQ(Result::failure, elements->Next(element));
}

TEST_F(CompoundStorage, MissingElementIsNotOpened) {
    EXPECT_EQ(nullptr, root->OpenStream(u"name"));
    EXPECT_EQ(nullptr, root->OpenStorage(u"name"));
}

TEST_F(CompoundStorage, ElementOfTheOtherKindIsNotOpened) {
    write(*root, u"stream", "content");
    ASSERT_NE(nullptr, root->CreateStorage(u"storage"));
    EXPECT_EQ(nullptr, root->OpenStorage(u"stream"));
    EXPECT_EQ(nullptr, root->OpenStream(u"storage"));
}

// Streams

TEST_F(CompoundStorage, ReadIsAllOrNothing) {
    write(*root, u"name", "abcde");
    const auto stream = root->OpenStream(u"name");
    char buffer[6] = "-----";
    EXPECT_FALSE(stream->Read(buffer, 6));
    EXPECT_STREQ("-----", buffer);
    EXPECT_TRUE(stream->Read(buffer, 3));
    EXPECT_STREQ("abc--", buffer);
    EXPECT_FALSE(stream->Read(buffer, 3));
    EXPECT_FALSE(stream->Read(buffer, static_cast<std::size_t>(-1)));
    EXPECT_TRUE(stream->Read(buffer, 2));
    EXPECT_STREQ("dec--", buffer);
    EXPECT_TRUE(stream->Read(buffer, 0));
    EXPECT_FALSE(stream->Read(buffer, 1));
}

TEST_F(CompoundStorage, WriteGoesOnBehindTheLast) {
    const auto stream = root->CreateStream(u"name");
    EXPECT_TRUE(stream->Write("abc", 3));
    EXPECT_TRUE(stream->Write("", 0));
    EXPECT_TRUE(stream->Write("de", 2));
    EXPECT_EQ("abcde", read(*root, u"name"));
}

TEST_F(CompoundStorage, WriteIntoAnOpenedStreamOverwrites) {
    write(*root, u"name", "abcde");
    const auto stream = root->OpenStream(u"name");
    char byte = 0;
    EXPECT_TRUE(stream->Read(&byte, 1));
    EXPECT_TRUE(stream->Write("xy", 2));
    EXPECT_EQ("axyde", read(*root, u"name"));
    EXPECT_TRUE(stream->Write("zzz", 3));
    EXPECT_EQ("axyzzz", read(*root, u"name"));
}

TEST_F(CompoundStorage, StreamThatNoFileHoldsIsRefused) {
    const auto stream = root->CreateStream(u"name");
    EXPECT_FALSE(stream->Write("", static_cast<std::size_t>(0x80000000)));
    EXPECT_EQ("", read(*root, u"name"));
}

TEST_F(CompoundStorage, ContentOfAllSizesComesBack) {
    constexpr std::size_t sizes[] = {0, 1, 63, 64, 65, 4095, 4096, 4097, 9000, 100000};
    for (const std::size_t size : sizes) {
        write(*root, u"size" + to_wide(std::to_string(size)), test::stream_content(size));
    }
    reopen();
    for (const std::size_t size : sizes) {
        EXPECT_EQ(test::stream_content(size), read(*root, u"size" + to_wide(std::to_string(size))));
    }
}

// Enumeration

TEST_F(CompoundStorage, ElementsComeInTheOrderOfTheFormat) {
    for (const char16_t* each :
         {u"zz", u"Version", u"b", u"abc", u"aZ", u"A", u"a_", u"Zy", u"ÿ", u"äp", u"ÄÖ"}) {
        write(*root, each, "");
    }
    ASSERT_NE(nullptr, root->CreateStorage(u"AC"));
    ASSERT_NE(nullptr, root->CreateStorage(u"aB"));
    const Names expected{u"A",  u"b",  u"ÿ",  u"aB/", u"AC/", u"aZ",     u"a_",
                         u"Zy", u"zz", u"äp", u"ÄÖ",  u"abc", u"Version"};
    EXPECT_EQ(expected, names(*root));
    reopen();
    EXPECT_EQ(expected, names(*root));
}

TEST_F(CompoundStorage, EnumerationEndsAndStaysAtItsEnd) {
    write(*root, u"name", "");
    const auto elements = root->EnumElements();
    STATSTG element;
    EXPECT_EQ(Result::element, elements->Next(element));
    EXPECT_EQ(Result::end, elements->Next(element));
    EXPECT_EQ(Result::end, elements->Next(element));
    EXPECT_EQ(u"name", element.name);
    EXPECT_FALSE(element.is_storage);
}

TEST_F(CompoundStorage, EnumerationBearsChanges) {
    for (const char16_t* each : {u"a", u"b", u"d"})
        write(*root, each, "");
    const auto elements = root->EnumElements();
    STATSTG element;
    ASSERT_EQ(Result::element, elements->Next(element));
    write(*root, u"A", "");
    write(*root, u"c", "");
    ASSERT_NE(nullptr, root->CreateStorage(u"B"));
    Names rest;
    while (elements->Next(element) == Result::element)
        rest.push_back(element.name);
    EXPECT_EQ((Names{u"B", u"c", u"d"}), rest);
}

TEST_F(CompoundStorage, ElementJustEnumeratedIsOpenedAsItStands) {
    write(*root, u"name", "before");
    const auto elements = root->EnumElements();
    STATSTG element;
    ASSERT_EQ(Result::element, elements->Next(element));
    EXPECT_EQ("before", read(*root, u"name"));
    EXPECT_EQ(nullptr, root->OpenStorage(u"name"));
    write(*root, u"NAME", "behind");
    EXPECT_EQ("behind", read(*root, u"name"));
    ASSERT_NE(nullptr, root->CreateStorage(u"name"));
    EXPECT_EQ(nullptr, root->OpenStream(u"name"));
    EXPECT_NE(nullptr, root->OpenStorage(u"name"));
}

// Trees

TEST_F(CompoundStorage, ThousandElementsOfOneStorageComeBack) {
    for (int number = 0; number < 1000; ++number) {
        write(*root, u"name" + to_wide(std::to_string(number * 7919 % 1009)), std::to_string(number));
    }
    reopen();
    EXPECT_EQ(1000U, names(*root).size());
    for (int number = 0; number < 1000; ++number) {
        EXPECT_EQ(std::to_string(number),
                  read(*root, u"NAME" + to_wide(std::to_string(number * 7919 % 1009))));
    }
}

TEST_F(CompoundStorage, NestingOf255LevelsComesBack) {
    std::vector<std::unique_ptr<IStorage>> levels;
    IStorage* storage = root.get();
    for (int level = 0; level < 255; ++level) {
        write(*storage, u"value", std::to_string(level));
        storage = levels.emplace_back(storage->CreateStorage(u"level")).get();
    }
    levels.clear();
    reopen();
    storage = root.get();
    for (int level = 0; level < 255; ++level) {
        EXPECT_EQ((Names{u"level/", u"value"}), names(*storage));
        EXPECT_EQ(std::to_string(level), read(*storage, u"value"));
        storage = levels.emplace_back(storage->OpenStorage(u"level")).get();
        ASSERT_NE(nullptr, storage);
    }
    EXPECT_EQ(Names{}, names(*storage));
}

TEST_F(CompoundStorage, EmptyStoragesAndStreamsComeBack) {
    write(*root, u"stream", "");
    ASSERT_NE(nullptr, root->CreateStorage(u"storage"));
    reopen();
    EXPECT_EQ((Names{u"stream", u"storage/"}), names(*root));
    EXPECT_EQ("", read(*root, u"stream"));
    EXPECT_EQ(Names{}, names(*root->OpenStorage(u"storage")));
}

// The file

TEST_F(CompoundStorage, CreatedFileIsACompoundFileAtOnce) {
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(StorageFile::yes, StgIsStorageFile(name));
    EXPECT_NE(nullptr, StgOpenStorageOnBytes(test::bytes_of(folder.read("file.doc"))));
}

TEST_F(CompoundStorage, CreatedFileReplacesOneThatIsThere) {
    write(*root, u"name", std::string(100000, 'x'));
    root.reset();
    root = StgCreateDocfile(name);
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(Names{}, names(*root));
    reopen();
    EXPECT_EQ(Names{}, names(*root));
    EXPECT_EQ(1536U, std::filesystem::file_size(folder / "file.doc"));
}

TEST_F(CompoundStorage, AnyFileIsReplaced) {
    ASSERT_NE(nullptr, StgCreateDocfile(folder.write("text", "some text")));
    EXPECT_EQ(StorageFile::yes, StgIsStorageFile(folder.wide("text")));
}

TEST_F(CompoundStorage, CommitWritesWhatStandsAndGoesOn) {
    write(*root, u"first", "1");
    EXPECT_TRUE(root->Commit());
    auto so_far = StgOpenStorageOnBytes(test::bytes_of(folder.read("file.doc")));
    EXPECT_EQ(Names{u"first"}, names(*so_far));
    write(*root, u"second", "2");
    reopen();
    EXPECT_EQ((Names{u"first", u"second"}), names(*root));
}

TEST_F(CompoundStorage, CommitBelowTheRootWritesNothing) {
    const auto storage = root->CreateStorage(u"storage");
    const std::string before = folder.read("file.doc");
    EXPECT_TRUE(storage->Commit());
    EXPECT_EQ(before, folder.read("file.doc"));
}

TEST_F(CompoundStorage, WhatWasWrittenStandsInTheFileAfterAnException) {
    root.reset();
    try {
        const auto writing = StgCreateDocfile(name);
        write(*writing->CreateStorage(u"storage"), u"stream", "content");
        throw std::runtime_error("stops the writing");
    } catch (const std::runtime_error&) {
        root = StgOpenStorage(name);
    }
    ASSERT_NE(nullptr, root);
    EXPECT_EQ("content", read(*root->OpenStorage(u"storage"), u"stream"));
}

TEST_F(CompoundStorage, FileThatWasOnlyReadStaysAsItIs) {
    const std::string fixture = test::TempFolder::read_file(PM_TEST_DATA "/compound/cfb_names.doc");
    const auto other = folder.write("other.doc", fixture);
    {
        const auto opened = StgOpenStorage(other);
        ASSERT_NE(nullptr, opened);
        EXPECT_EQ(test::stream_content(11), read(*opened, u"Größe"));
        EXPECT_TRUE(opened->Commit());
    }
    EXPECT_EQ(fixture, folder.read("other.doc"));
}

TEST_F(CompoundStorage, OpenedFileIsChanged) {
    write(*root, u"first", "1");
    write(*root, u"second", "2");
    reopen();
    write(*root, u"first", "new");
    write(*root, u"third", "3");
    reopen();
    EXPECT_EQ((Names{u"first", u"third", u"second"}), names(*root));
    EXPECT_EQ("new", read(*root, u"first"));
    EXPECT_EQ("2", read(*root, u"second"));
}

TEST_F(CompoundStorage, BrokenFileIsNotRewritten) {
    write(*root, u"stream", "content");
    root.reset();
    auto file = test::bytes_of(folder.read("file.doc"));
    compound::put32(file, test::entry_at(file, u"stream") + compound::start_at, 1000);
    folder.write("file.doc", test::text_of(file));
    root = StgOpenStorage(name);
    ASSERT_NE(nullptr, root);
    write(*root, u"other", "content");
    EXPECT_FALSE(root->Commit());
    root.reset();
    EXPECT_EQ(test::text_of(file), folder.read("file.doc"));
}

TEST_F(CompoundStorage, BrokenFileIsRewrittenOnceTheBrokenIsReplaced) {
    write(*root, u"stream", "content");
    root.reset();
    auto file = test::bytes_of(folder.read("file.doc"));
    compound::put32(file, test::entry_at(file, u"stream") + compound::start_at, 1000);
    folder.write("file.doc", test::text_of(file));
    root = StgOpenStorage(name);
    write(*root, u"stream", "new");
    EXPECT_TRUE(root->Commit());
    reopen();
    EXPECT_EQ("new", read(*root, u"stream"));
}

// Lifetime and exclusive use

TEST_F(CompoundStorage, SecondRootOfAFileIsRefused) {
    EXPECT_EQ(nullptr, StgOpenStorage(name));
    EXPECT_EQ(nullptr, StgCreateDocfile(name));
    EXPECT_EQ(nullptr, StgOpenStorage(folder.wide("./file.doc")));
    reopen();
    EXPECT_EQ(nullptr, StgOpenStorage(name));
    EXPECT_EQ(nullptr, StgCreateDocfile(name));
    root.reset();
    EXPECT_NE(nullptr, StgOpenStorage(name));
}

TEST_F(CompoundStorage, RefusedCreationLeavesTheFileAsItIs) {
    write(*root, u"name", "content");
    ASSERT_TRUE(root->Commit());
    EXPECT_EQ(nullptr, StgCreateDocfile(name));
    reopen();
    EXPECT_EQ("content", read(*root, u"name"));
}

TEST_F(CompoundStorage, ElementsOfADeadRootOnlyFail) {
    const auto storage = root->CreateStorage(u"storage");
    const auto stream = storage->CreateStream(u"stream");
    const auto elements = root->EnumElements();
    ASSERT_TRUE(stream->Write("content", 7));
    reopen();
    ASSERT_NE(nullptr, root);
    STATSTG element;
    EXPECT_FALSE(stream->Write("x", 1));
    EXPECT_FALSE(stream->Read(&element, 0));
    EXPECT_EQ(nullptr, storage->CreateStream(u"other"));
    EXPECT_EQ(nullptr, storage->OpenStream(u"stream"));
    EXPECT_EQ(Result::failure, elements->Next(element));
    EXPECT_EQ("content", read(*root->OpenStorage(u"storage"), u"stream"));
}

// Files that can't be had

TEST_F(CompoundStorage, FileIsNotCreatedWhereThereIsNone) {
    EXPECT_EQ(nullptr, StgCreateDocfile(folder.wide("missing/file.doc")));
    EXPECT_EQ(nullptr, StgCreateDocfile(folder.wide(".")));
    EXPECT_EQ(nullptr, StgCreateDocfile(u""));
}

TEST_F(CompoundStorage, WhatIsNoCompoundFileIsNotOpened) {
    EXPECT_EQ(nullptr, StgOpenStorage(folder.wide("missing.doc")));
    EXPECT_EQ(nullptr, StgOpenStorage(folder.write("text", "plain text\n")));
    EXPECT_EQ(nullptr, StgOpenStorage(folder.write("empty", "")));
    EXPECT_EQ(nullptr, StgOpenStorage(folder.wide(".")));
    EXPECT_EQ("plain text\n", folder.read("text"));
}

TEST_F(CompoundStorage, FileThatMayNotBeWrittenIsNotOpened) {
    reopen();
    root.reset();
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder / "file.doc", std::filesystem::perms(0444));
    const test::DroppedPrivileges scope;
    EXPECT_EQ(StorageFile::yes, StgIsStorageFile(name));
    EXPECT_EQ(nullptr, StgOpenStorage(name));
    EXPECT_EQ(nullptr, StgCreateDocfile(name));
}

TEST_F(CompoundStorage, SignatureMakesAStorageFile) {
    EXPECT_EQ(StorageFile::yes, StgIsStorageFile(name));
    EXPECT_EQ(StorageFile::yes, StgIsStorageFile(folder.write("start", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")));
    EXPECT_EQ(StorageFile::no, StgIsStorageFile(folder.write("short", "\xD0\xCF\x11\xE0\xA1\xB1\x1A")));
    EXPECT_EQ(StorageFile::no, StgIsStorageFile(folder.write("text", "plain text\n")));
    EXPECT_EQ(StorageFile::no, StgIsStorageFile(folder.write("empty", "")));
}

TEST_F(CompoundStorage, FileThatCannotBeReadIsNeither) {
    EXPECT_EQ(StorageFile::unreadable, StgIsStorageFile(folder.wide("missing")));
    EXPECT_EQ(StorageFile::unreadable, StgIsStorageFile(folder.wide(".")));
}

} // namespace
} // namespace pm

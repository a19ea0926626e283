#include "filers/pmdoc.h"

#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/file_size_limit.h"
#include "support/temp_folder.h"
#include <bit>
#include <memory>
#include <pm/pm.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using pm::test::expect_thrown;
using pm::test::TempFolder;

constexpr const char16_t* open_place = u"PM_DOCFile::open()";
constexpr const char16_t* load_place = u"PM_DOCFile::load()";
constexpr const char16_t* save_place = u"PM_DOCFile::save()";
constexpr const char16_t* version_place = u"PM_DOCFile::getVersion()";

std::string word(std::uint32_t value) {
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte)
        bytes += static_cast<char>(value >> (8 * byte));
    return bytes;
}

std::string record(PropType type, const std::string& value) {
    return word(static_cast<std::uint32_t>(type)) + word(static_cast<std::uint32_t>(value.size())) + value;
}

void put(pm::IStorage& storage, std::u16string_view name, const std::string& bytes) {
    const auto stream = storage.CreateStream(name);
    ASSERT_TRUE(stream && stream->Write(bytes.data(), bytes.size()));
}

// The bytes of a stream of at most 2000 bytes.
std::string bytes_of(pm::IStorage& storage, std::u16string_view name) {
    const auto stream = storage.OpenStream(name);
    EXPECT_TRUE(stream);
    std::string bytes;
    char byte = 0;
    while (stream && stream->Read(&byte, 1))
        bytes += byte;
    return bytes;
}

std::vector<std::u16string> names_in(const PM_Object& object, const char16_t* path) {
    std::vector<std::u16string> names;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(path, 1));
    PM_Object::NodeType step{};
    while (const char16_t* name = walk->nextNode(step)) {
        if (step != PM_Object::NODE_PARENT) names.emplace_back(name);
    }
    return names;
}

std::vector<std::u16string> properties_in(const PM_Object& object, const char16_t* path) {
    std::vector<std::u16string> names;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(path, 0));
    char* value = nullptr;
    std::size_t size = 0;
    PropType type{};
    while (const char16_t* name = walk->nextProp(value, size, type))
        names.emplace_back(name);
    return names;
}

using Names = std::vector<std::u16string>;

class DocTest : public testing::Test {
protected:
    DocTest() : path(folder.wide("f.doc")) {}

    void save(const char16_t* subtree = u"\\") {
        object.save(path.c_str(), PM_Object::FILE_DOC, u"", subtree);
    }
    void load(PM_Object& into, const char16_t* base = u"\\") {
        into.load(path.c_str(), PM_Object::FILE_DOC, base);
    }
    std::unique_ptr<pm::IStorage> open() { return pm::StgOpenStorage(path); }
    // A file as a stranger would write it: "Version" and what `fill` adds.
    template<class Fill>
    void make(Fill fill) {
        const auto storage = pm::StgCreateDocfile(path);
        ASSERT_TRUE(storage);
        put(*storage, u"Version", std::string("\0\0\x80\x3F", 4));
        fill(*storage);
    }
    std::u16string version() {
        char16_t buffer[64] = {};
        object.getFileVersion(path.c_str(), buffer, 64, PM_Object::FILE_DOC);
        return buffer;
    }

    TempFolder folder;
    std::u16string path;
    PM_Object object;
    PM_Object again;
};

TEST_F(DocTest, AnEmptySubtreeIsAFileWithVersionOnly) {
    save();
    const auto storage = open();
    pm::STATSTG element;
    const auto elements = storage->EnumElements();
    ASSERT_EQ(pm::IEnumSTATSTG::Result::element, elements->Next(element));
    EXPECT_EQ(u"Version", element.name);
    EXPECT_FALSE(element.is_storage);
    EXPECT_EQ(pm::IEnumSTATSTG::Result::end, elements->Next(element));
    EXPECT_EQ(std::string("\0\0\x80\x3F", 4), bytes_of(*storage, u"Version"));
}

TEST_F(DocTest, ValueRecordsAreTypeSizeAndBytes) {
    object.SetProperty(u"l", -2);
    object.SetProperty(u"d", 2.5);
    object.SetProperty(u"s", u"\u20ACx");
    object.SetProperty(u"t", true);
    object.setVoidProperty(u"v", "\1\2\3", 3);
    save();
    const auto storage = open();
    EXPECT_EQ(record(PROP_LONG, "\xFE\xFF\xFF\xFF"), bytes_of(*storage, u"l"));
    EXPECT_EQ(record(PROP_DOUBLE, std::string("\0\0\0\0\0\0\x04\x40", 8)), bytes_of(*storage, u"d"));
    EXPECT_EQ(record(PROP_STRING, "\x80x"), bytes_of(*storage, u"s"));
    EXPECT_EQ(record(PROP_BOOL, "\1"), bytes_of(*storage, u"t"));
    EXPECT_EQ(record(PROP_VOID, "\1\2\3"), bytes_of(*storage, u"v"));
}

TEST_F(DocTest, NodesAreStoragesAndTheSubtreeIsTheRoot) {
    object.SetProperty(u"q\\a\\b\\p", 1);
    object.SetProperty(u"q\\a\\c\\p", 2);
    object.SetProperty(u"q\\d\\p", 3);
    object.SetProperty(u"q\\p", 4);
    save(u"q");
    const auto root = open();
    const auto a = root->OpenStorage(u"a");
    ASSERT_TRUE(a);
    EXPECT_EQ(record(PROP_LONG, word(1)), bytes_of(*a->OpenStorage(u"b"), u"p"));
    EXPECT_EQ(record(PROP_LONG, word(2)), bytes_of(*a->OpenStorage(u"c"), u"p"));
    EXPECT_EQ(record(PROP_LONG, word(3)), bytes_of(*root->OpenStorage(u"d"), u"p"));
    EXPECT_EQ(record(PROP_LONG, word(4)), bytes_of(*root, u"p"));
    EXPECT_FALSE(a->OpenStream(u"Version"));
    EXPECT_FALSE(root->OpenStorage(u"q"));
}

TEST_F(DocTest, ValuesComeBackWithTheirTypes) {
    object.SetProperty(u"n\\l", -2);
    object.SetProperty(u"n\\d", 0.1);
    object.SetProperty(u"n\\s", u"text \u00FC");
    object.setVoidProperty(u"n\\v", "\1\2\3", 3);
    save();
    load(again);
    int number = 0;
    double real = 0;
    char16_t text[20] = {};
    unsigned char raw[3] = {};
    EXPECT_TRUE(again.GetProperty(u"n\\l", number));
    EXPECT_TRUE(again.GetProperty(u"n\\d", real));
    EXPECT_TRUE(again.GetProperty(u"n\\s", text, sizeof text));
    EXPECT_TRUE(again.getVoidProperty(u"n\\v", raw, sizeof raw));
    EXPECT_EQ(-2, number);
    EXPECT_EQ(0.1, real);
    EXPECT_EQ(u"text \u00FC", std::u16string(text));
    EXPECT_EQ(14U, again.getPropertySize(u"n\\s"));
    EXPECT_EQ(3, raw[2]);
    EXPECT_EQ(3U, again.getPropertySize(u"n\\v"));
}

TEST_F(DocTest, ABooleanComesBackAsALong) {
    object.SetProperty(u"yes", true);
    object.SetProperty(u"no", false);
    save();
    load(again);
    int value = -1;
    EXPECT_TRUE(again.GetProperty(u"yes", value));
    EXPECT_EQ(1, value);
    EXPECT_TRUE(again.GetProperty(u"no", value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(4U, again.getPropertySize(u"no"));
}

TEST_F(DocTest, LoadGoesBelowItsBase) {
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"z", 2);
    save();
    load(again, u"q\\r");
    EXPECT_EQ(4U, again.getPropertySize(u"q\\r\\a\\p"));
    EXPECT_EQ(4U, again.getPropertySize(u"q\\r\\z"));
    EXPECT_EQ((Names{u"q"}), names_in(again, u"\\"));
}

TEST_F(DocTest, ElementsComeInTheOrderOfTheFormat) {
    for (const char16_t* name : {u"ccc", u"b", u"AA", u"a", u"B1", u"dd"}) {
        object.SetProperty(name, 1);
        object.SetProperty((std::u16string(u"n") + name + u"\\p").c_str(), 1);
    }
    save();
    load(again);
    EXPECT_EQ((Names{u"a", u"b", u"AA", u"B1", u"dd", u"ccc"}), properties_in(again, u"\\"));
    EXPECT_EQ((Names{u"na", u"nb", u"nAA", u"nB1", u"ndd", u"nccc"}), names_in(again, u"\\"));
}

TEST_F(DocTest, APropertyCalledVersionReplacesTheStream) {
    object.SetProperty(u"Version", 7);
    object.SetProperty(u"a", 1);
    save();
    EXPECT_EQ(record(PROP_LONG, word(7)), bytes_of(*open(), u"Version"));
    EXPECT_EQ(u"0.000000", version()); // the type word 1 as a float
    load(again);
    EXPECT_EQ((Names{u"a"}), properties_in(again, u"\\"));
}

TEST_F(DocTest, VersionIsPassedOverInAnyCaseAtAnyLevelAndAsANode) {
    object.SetProperty(u"n\\VERSION", 1);
    object.SetProperty(u"n\\version\\p", 1);
    object.SetProperty(u"n\\m\\Version\\p", 1);
    object.SetProperty(u"n\\m\\p", 1);
    save();
    load(again);
    EXPECT_EQ(4U, again.getPropertySize(u"n\\m\\p"));
    EXPECT_EQ(Names{}, properties_in(again, u"n"));
    EXPECT_EQ((Names{u"m"}), names_in(again, u"n"));
    EXPECT_EQ(Names{}, names_in(again, u"n\\m"));
}

TEST_F(DocTest, ANodeCalledVersionInTheRootTakesTheStreamsPlace) {
    object.SetProperty(u"version\\p", 1);
    save();
    expect_thrown<PM_Severe>([&] { load(again); }, 66, version_place, path);
}

TEST_F(DocTest, ANodeReplacesThePropertyOfItsName) {
    object.SetProperty(u"a", 1);
    object.SetProperty(u"A\\p", 2);
    save();
    load(again);
    EXPECT_EQ(Names{}, properties_in(again, u"\\"));
    EXPECT_EQ(4U, again.getPropertySize(u"A\\p"));
}

TEST_F(DocTest, AStringOf511UnitsIsTheLongest) {
    object.SetProperty(u"s", std::u16string(511, u'x').c_str());
    save();
    load(again);
    EXPECT_EQ(1024U, again.getPropertySize(u"s"));
    object.SetProperty(u"s", std::u16string(512, u'x').c_str());
    expect_thrown<PM_Warning>([&] { save(); }, 58, u"PM_Property::GetData()", u"s");
}

TEST_F(DocTest, RawDataOf1024BytesIsTheLargest) {
    const std::string bytes(1025, 'x');
    object.setVoidProperty(u"v", bytes.data(), 1024);
    save();
    load(again);
    EXPECT_EQ(1024U, again.getPropertySize(u"v"));
    object.setVoidProperty(u"v", bytes.data(), 1025);
    expect_thrown<PM_Warning>([&] { save(); }, 58, u"PM_Property::GetData()", u"v");
}

TEST_F(DocTest, AFailedSaveLeavesAValidFileWithWhatWasWritten) {
    object.SetProperty(u"a", 1);
    object.SetProperty(u"b", std::u16string(600, u'x').c_str());
    object.SetProperty(u"c", 3);
    expect_thrown<PM_Warning>([&] { save(); }, 58, u"PM_Property::GetData()", u"b");
    load(again);
    EXPECT_EQ((Names{u"a"}), properties_in(again, u"\\"));
}

TEST_F(DocTest, NamesThatTheFormatRefusesRaise60) {
    for (const char16_t* name : {u"a/b", u"a:b", u"a!b", u"a23456789b123456789c123456789d12"}) {
        PM_Object prop;
        prop.SetProperty(name, 1);
        expect_thrown<PM_Severe>([&] { prop.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); }, 60,
                                 save_place, path);
        PM_Object node;
        node.SetProperty((std::u16string(name) + u"\\p").c_str(), 1);
        expect_thrown<PM_Severe>([&] { node.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); }, 60,
                                 save_place, path);
    }
}

TEST_F(DocTest, ANameOf31UnitsIsTheLongest) {
    object.SetProperty(u"a23456789b123456789c123456789d1", 1);
    save();
    load(again);
    EXPECT_EQ(4U, again.getPropertySize(u"a23456789b123456789c123456789d1"));
}

TEST_F(DocTest, VersionIsTheFloatAsText) {
    save();
    EXPECT_EQ(u"1.000000", version());
    {
        const auto storage = pm::StgCreateDocfile(path);
        put(*storage, u"Version", std::string("\0\0\x20\xC0", 4));
    }
    EXPECT_EQ(u"-2.500000", version());
}

TEST_F(DocTest, AShortVersionReadsAsZero) {
    {
        const auto storage = pm::StgCreateDocfile(path);
        put(*storage, u"Version", "\x01");
    }
    EXPECT_EQ(u"0.000000", version());
    load(again);
}

TEST_F(DocTest, AVersionTextIsCutToItsBuffer) {
    save();
    char16_t buffer[6] = u"xxxxx";
    object.getFileVersion(path.c_str(), buffer, 4, PM_Object::FILE_DOC);
    EXPECT_EQ(u"1.0", std::u16string(buffer));
}

TEST_F(DocTest, AFileWithoutVersionRaises66) {
    { const auto storage = pm::StgCreateDocfile(path); }
    expect_thrown<PM_Severe>([&] { version(); }, 66, version_place, path);
    expect_thrown<PM_Severe>([&] { load(again); }, 66, version_place, path);
}

TEST_F(DocTest, AMissingFileRaises56) {
    expect_thrown<PM_Severe>([&] { load(again); }, 56, open_place, path);
    expect_thrown<PM_Severe>([&] { version(); }, 56, open_place, path);
}

TEST_F(DocTest, ATextFileRaises56) {
    folder.write("f.doc", "PIAFILEVERSION_2.0,plain\r\na=1\n");
    expect_thrown<PM_Severe>([&] { load(again); }, 56, open_place, path);
}

TEST_F(DocTest, AFileThatCannotBeMadeRaises56) {
    const std::u16string nowhere = folder.wide("no folder/f.doc");
    expect_thrown<PM_Severe>([&] { object.save(nowhere.c_str(), PM_Object::FILE_DOC, u"", u"\\"); }, 56,
                             open_place, nowhere);
}

TEST_F(DocTest, ASecondOpenFailsWhileTheFirstLives) {
    save();
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), false);
    expect_thrown<PM_Severe>([&] { load(again); }, 56, open_place, path);
    expect_thrown<PM_Severe>([&] { save(); }, 56, open_place, path);
    first.close();
    load(again);
}

TEST_F(DocTest, ASecondOpenInAnotherProcessFails) {
    save();
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), false);
    const pid_t child = fork();
    if (child == 0) {
        const auto e = pm::test::thrown_by([&] {
            PM_DOCFile second(nullptr);
            second.open(path.c_str(), false);
        });
        _exit(e && e->m_number == 56 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

TEST_F(DocTest, OpeningAgainAndAttachingDoNothing) {
    save();
    PM_DOCFile filer(nullptr);
    filer.open(path.c_str(), false);
    filer.open(u"another name", false);
    filer.attach(nullptr);
    filer.load(&again, u"\\", PM_Object::FILE_DOC);
}

TEST_F(DocTest, AnUnknownTypeRaises66) {
    for (const std::uint32_t type : {0U, 6U, 0xFFFFFFFFU}) {
        make([&](pm::IStorage& root) { put(root, u"x", word(type) + word(1) + "a"); });
        expect_thrown<PM_Severe>([&] { load(again); }, 66, load_place, path);
    }
}

TEST_F(DocTest, ASizeBeyond1024Raises66) {
    for (const std::uint32_t size : {1025U, 0xFFFFFFFFU}) {
        make([&](pm::IStorage& root) {
            put(root, u"x", word(PROP_VOID) + word(size) + std::string(1025, 'a'));
        });
        expect_thrown<PM_Severe>([&] { load(again); }, 66, load_place, path);
    }
}

TEST_F(DocTest, EveryCutRecordRaises66AndKeepsWhatCameBefore) {
    const std::string whole = record(PROP_VOID, "abc");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        make([&](pm::IStorage& root) {
            put(root, u"a", record(PROP_LONG, word(1)));
            put(root, u"x", whole.substr(0, length));
        });
        PM_Object target;
        expect_thrown<PM_Severe>([&] { load(target); }, 66, load_place, path);
        EXPECT_EQ((Names{u"a"}), properties_in(target, u"\\"));
    }
}

TEST_F(DocTest, BytesBehindARecordAreIgnored) {
    make([&](pm::IStorage& root) { put(root, u"x", record(PROP_VOID, "abc") + "more"); });
    load(again);
    EXPECT_EQ(3U, again.getPropertySize(u"x"));
}

TEST_F(DocTest, ForeignSizesOfFixedTypesAreTakenAsTheTypes) {
    make([&](pm::IStorage& root) {
        put(root, u"l", record(PROP_LONG, "\x05"));
        put(root, u"b", record(PROP_BOOL, "\x01\x02"));
        put(root, u"d", record(PROP_DOUBLE, ""));
        put(root, u"s", record(PROP_STRING, std::string("ab\0cd", 5)));
    });
    load(again);
    int number = 0;
    double real = 1;
    EXPECT_TRUE(again.GetProperty(u"l", number));
    EXPECT_EQ(5, number);
    EXPECT_TRUE(again.GetProperty(u"b", number));
    EXPECT_EQ(1, number);
    EXPECT_TRUE(again.GetProperty(u"d", real));
    EXPECT_EQ(0.0, real);
    EXPECT_EQ(6U, again.getPropertySize(u"s"));
}

TEST_F(DocTest, TextDoesNotRunOnFromTheElementBefore) {
    make([&](pm::IStorage& root) {
        put(root, u"a", record(PROP_STRING, "long text"));
        put(root, u"b", record(PROP_STRING, "xy"));
    });
    load(again);
    char16_t text[20] = {};
    EXPECT_TRUE(again.GetProperty(u"b", text, sizeof text));
    EXPECT_EQ(u"xy", std::u16string(text));
}

TEST_F(DocTest, APathThatGrowsTooLongRaises66) {
    make([&](pm::IStorage& root) {
        std::vector<std::unique_ptr<pm::IStorage>> levels;
        pm::IStorage* at = &root;
        for (int level = 0; level < 40; ++level) {
            levels.push_back(at->CreateStorage(std::u16string(31, u'x')));
            at = levels.back().get();
        }
        put(*at, u"p", record(PROP_LONG, word(1)));
    });
    expect_thrown<PM_Severe>([&] { load(again); }, 66, load_place, path);
}

TEST_F(DocTest, AnotherTypeOfAKnownPropertyRaises54) {
    object.SetProperty(u"a", 1);
    save();
    again.SetProperty(u"a", u"text");
    expect_thrown<PM_Warning>([&] { load(again); }, 54, u"PM_Object::SetData()", u"");
}

TEST_F(DocTest, SavingWithoutMemoryForTheWalkIsTold) {
    object.SetProperty(u"a", 1);
    const pm::test::FailingAllocation failing(1); // behind that of the filer
    expect_thrown<PM_Memory_Exception>([&] { save(); }, 55, save_place, u"piter");
}

TEST_F(DocTest, EachFailingAllocationLeavesAUsableObject) {
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"a\\s", u"text");
    const int failures = pm::test::fail_each_allocation([&](int) {
        (void)pm::test::thrown_by([&] { save(); });
        (void)pm::test::thrown_by([&] {
            PM_Object target;
            load(target);
        });
    });
    EXPECT_GT(failures, 10);
    save();
    load(again);
    EXPECT_EQ((Names{u"p", u"s"}), properties_in(again, u"a"));
}

TEST_F(DocTest, AMissingSubtreeOfKnownNamesIsAnEmptyFile) {
    object.SetProperty(u"a\\b", 1);
    save(u"b");
    load(again);
    EXPECT_EQ(Names{}, names_in(again, u"\\"));
    expect_thrown<PM_Warning>([&] { save(u"unknown"); }, 51, u"PM_Iterator::PM_Iterator()", u"unknown");
}

TEST_F(DocTest, AFileThatCannotGrowRaises60) {
    for (int node = 0; node < 50; ++node)
        object.SetProperty(u"n*\\p", std::u16string(500, u'x').c_str(), node);
    const pm::test::FileSizeLimit limit(8192);
    expect_thrown<PM_Severe>([&] { save(); }, 60, save_place, path);
}

} // namespace

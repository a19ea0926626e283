#include "filers/pmdoc.h"

#include "platform/compound_bytes.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include "support/tree_text.h"
#include <bit>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <pm/error_number.h>
#include <pm/pm.h>
#include <sstream>
#include <string>
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

Names elements_of(pm::IStorage& storage) {
    Names names;
    const auto elements = storage.EnumElements();
    pm::STATSTG element;
    while (elements->Next(element) == pm::IEnumSTATSTG::Result::element)
        names.push_back(element.name + (element.is_storage ? u"/" : u""));
    return names;
}

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
    // Changes bytes of the file.
    template<class Change>
    void change(Change change_bytes) {
        pm::test::Bytes bytes = pm::test::bytes_of(folder.read("f.doc"));
        change_bytes(bytes);
        folder.write("f.doc", pm::test::text_of(bytes));
    }
    // The load fails behind these properties of the root, and "Version" can be read all the same.
    void expect_loaded_before_the_failure(const Names& properties) {
        PM_Object target;
        expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
        EXPECT_EQ(properties, properties_in(target, u"\\"));
        EXPECT_EQ(u"1.000000", version());
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
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_READ, version_place, path);
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
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"s");
}

// What the narrow code page makes of a text counts too: no load would take it back.
TEST_F(DocTest, AStringWhoseNarrowTextIsAbove1024BytesRaises58) {
    const pm::test::ScopedCodePage utf8(65001);
    object.SetProperty(u"s", (std::u16string(341, u'\u20AC') + u"x").c_str());
    save();
    load(again);
    EXPECT_EQ(2U * 343, again.getPropertySize(u"s"));
    object.SetProperty(u"s", (std::u16string(341, u'\u20AC') + u"xy").c_str());
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"s");
    EXPECT_EQ(word(PROP_STRING), bytes_of(*open(), u"s"));
    for (const char16_t unit : {u'\u20AC', u'\u3042', u'\u07FF'}) {
        object.SetProperty(u"s", std::u16string(unit == u'\u07FF' ? 513 : 511, unit).c_str());
        expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"s");
    }
}

class DocCodePage : public DocTest, public testing::WithParamInterface<std::pair<unsigned, std::string>> {};

TEST_P(DocCodePage, MultiByteTextGoesOutAndComesBack) {
    const auto& [code_page, narrow] = GetParam();
    const pm::test::ScopedCodePage scope(code_page);
    const std::u16string text = u"a\u6F22z";
    object.SetProperty(u"s", text.c_str());
    object.SetProperty(u"long", std::u16string(340, u'\u6F22').c_str());
    save();
    EXPECT_EQ(record(PROP_STRING, narrow), bytes_of(*open(), u"s"));
    load(again);
    char16_t buffer[600] = {};
    EXPECT_TRUE(again.GetProperty(u"s", buffer, sizeof buffer));
    EXPECT_EQ(text, buffer);
    EXPECT_TRUE(again.GetProperty(u"long", buffer, sizeof buffer));
    EXPECT_EQ(std::u16string(340, u'\u6F22'), buffer);
}

INSTANTIATE_TEST_SUITE_P(Pages, DocCodePage,
                         testing::Values(std::pair(932U, std::string("a\x8A\xBFz")),
                                         std::pair(936U, std::string("a\x9D\x68z")),
                                         std::pair(949U, std::string("a\xF9\xD3z")),
                                         std::pair(950U, std::string("a\xBA\x7Ez")),
                                         std::pair(65001U, std::string("a\xE6\xBC\xA2z"))),
                         [](const auto& page) { return std::to_string(page.param.first); });

TEST_F(DocTest, AMultiByteTextOf1024BytesIsRead) {
    const pm::test::ScopedCodePage scope(932);
    make([&](pm::IStorage& root) {
        std::string text;
        for (int character = 0; character < 512; ++character)
            text += "\x82\xA0";
        put(root, u"s", record(PROP_STRING, text));
    });
    load(again);
    EXPECT_EQ(2U * 513, again.getPropertySize(u"s"));
}

TEST_F(DocTest, RawDataOf1024BytesIsTheLargest) {
    const std::string bytes(1025, 'x');
    object.setVoidProperty(u"v", bytes.data(), 1024);
    save();
    load(again);
    EXPECT_EQ(1024U, again.getPropertySize(u"v"));
    object.setVoidProperty(u"v", bytes.data(), 1025);
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"v");
}

TEST_F(DocTest, AFailedStringLeavesItsTypeAndWhatWasWrittenBefore) {
    object.SetProperty(u"a", 1);
    object.SetProperty(u"b", std::u16string(600, u'x').c_str());
    object.SetProperty(u"c", 3);
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"b");
    {
        const auto root = open();
        ASSERT_TRUE(root);
        EXPECT_EQ((Names{u"a", u"b", u"Version"}), elements_of(*root));
        EXPECT_EQ(word(PROP_STRING), bytes_of(*root, u"b"));
    }
    expect_loaded_before_the_failure({u"a"});
}

TEST_F(DocTest, AFailedRawValueLeavesItsTypeAndSize) {
    const std::string bytes(1025, 'x');
    object.setVoidProperty(u"v", bytes.data(), 1025);
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"v");
    EXPECT_EQ(word(PROP_VOID) + word(1025), bytes_of(*open(), u"v"));
}

TEST_F(DocTest, AFailedValueBelowANodeLeavesTheNodesAbove) {
    object.SetProperty(u"n\\m\\b", std::u16string(600, u'x').c_str());
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"b");
    const auto root = open();
    EXPECT_EQ((Names{u"n/", u"Version"}), elements_of(*root));
    EXPECT_EQ(word(PROP_STRING), bytes_of(*root->OpenStorage(u"n")->OpenStorage(u"m"), u"b"));
}

TEST_F(DocTest, AFailedValueHasReplacedTheElementOfItsName) {
    object.SetProperty(u"x", 1);
    object.SetProperty(u"X", std::u16string(600, u'x').c_str());
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"X");
    const auto root = open();
    EXPECT_EQ((Names{u"X", u"Version"}), elements_of(*root));
    EXPECT_EQ(word(PROP_STRING), bytes_of(*root, u"x"));
}

TEST_F(DocTest, AFailedPropertyCalledVersionIsBegun) {
    object.SetProperty(u"Version", std::u16string(600, u'x').c_str());
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"Version");
    EXPECT_EQ(word(PROP_STRING), bytes_of(*open(), u"Version"));
    EXPECT_EQ(u"0.000000", version()); // the type word 3 as a float
}

TEST_F(DocTest, ARefusedNameIsMetBeforeItsValue) {
    object.SetProperty(u"a:b", std::u16string(600, u'x').c_str());
    expect_thrown<PM_Severe>([&] { save(); }, PM_ERR_NOT_WRITTEN, save_place, path);
    EXPECT_EQ((Names{u"Version"}), elements_of(*open()));
}

TEST_F(DocTest, AValueNeverGivenIsMetBeforeItsStream) {
    object.SetProperty(u"a", 1);
    object.setVoidProperty(u"v", "", 0);
    expect_thrown<PM_Warning>([&] { save(); }, PM_ERR_NO_VALUE, u"PM_Property::GetData()", u"v");
    EXPECT_EQ((Names{u"a", u"Version"}), elements_of(*open()));
}

TEST_F(DocTest, ARawValueThatWasEmptiedIsMetBeforeItsStream) {
    object.SetProperty(u"a", 1);
    object.setVoidProperty(u"v", "abc", 3);
    object.setVoidProperty(u"v", "", 0);
    expect_thrown<PM_Error>([&] { save(); }, PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value");
    EXPECT_EQ((Names{u"a", u"Version"}), elements_of(*open()));
}

TEST_F(DocTest, ANumberOfTooManyBytesIsMetBeforeItsStream) {
    struct OpenObject : PM_Object {
        using PM_Object::setData;
    };
    for (const auto& [type, size] :
         {std::pair(PROP_LONG, 5U), std::pair(PROP_DOUBLE, 9U), std::pair(PROP_BOOL, 9U)}) {
        OpenObject odd;
        odd.SetProperty(u"a", 1);
        odd.setData(u"x", "123456789", size, type, -1, true);
        expect_thrown<PM_Warning>([&] { odd.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); },
                                  PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", u"x");
        EXPECT_EQ((Names{u"a", u"Version"}), elements_of(*open()));
    }
}

TEST_F(DocTest, VersionBelowTheRootIsWritten) {
    object.SetProperty(u"n\\VERSION", 1);
    object.SetProperty(u"n\\m\\version\\p", 2);
    save();
    const auto root = open();
    const auto n = root->OpenStorage(u"n");
    ASSERT_TRUE(n);
    EXPECT_EQ((Names{u"m/", u"VERSION"}), elements_of(*n));
    EXPECT_EQ(record(PROP_LONG, word(1)), bytes_of(*n, u"VERSION"));
    const auto m = n->OpenStorage(u"m");
    EXPECT_EQ(Names{u"version/"}, elements_of(*m));
    EXPECT_EQ(record(PROP_LONG, word(2)), bytes_of(*m->OpenStorage(u"version"), u"p"));
}

TEST_F(DocTest, NamesThatTheFormatRefusesRaise60) {
    for (const char16_t* name : {u"a/b", u"a:b", u"a!b", u"a23456789b123456789c123456789d12"}) {
        PM_Object prop;
        prop.SetProperty(name, 1);
        expect_thrown<PM_Severe>([&] { prop.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); },
                                 PM_ERR_NOT_WRITTEN, save_place, path);
        PM_Object node;
        node.SetProperty((std::u16string(name) + u"\\p").c_str(), 1);
        expect_thrown<PM_Severe>([&] { node.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); },
                                 PM_ERR_NOT_WRITTEN, save_place, path);
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

TEST_F(DocTest, AVersionTextIsWholeWhereNoSizeIsGiven) {
    save();
    char16_t buffer[20] = {};
    object.getFileVersion(path.c_str(), buffer, PM_Object::FILE_DOC);
    EXPECT_EQ(u"1.000000", std::u16string(buffer));
}

TEST_F(DocTest, AFileWithoutVersionRaises66) {
    { const auto storage = pm::StgCreateDocfile(path); }
    expect_thrown<PM_Severe>([&] { version(); }, PM_ERR_NOT_READ, version_place, path);
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_READ, version_place, path);
}

TEST_F(DocTest, AMissingFileRaises56) {
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_OPENED, open_place, path);
    expect_thrown<PM_Severe>([&] { version(); }, PM_ERR_NOT_OPENED, open_place, path);
}

TEST_F(DocTest, ATextFileRaises56) {
    folder.write("f.doc", "PIAFILEVERSION_2.0,plain\r\na=1\n");
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_OPENED, open_place, path);
}

TEST_F(DocTest, AFileThatCannotBeMadeRaises56) {
    const std::u16string nowhere = folder.wide("no folder/f.doc");
    expect_thrown<PM_Severe>([&] { object.save(nowhere.c_str(), PM_Object::FILE_DOC, u"", u"\\"); },
                             PM_ERR_NOT_OPENED, open_place, nowhere);
}

TEST_F(DocTest, ASecondOpenFailsWhileTheFirstLives) {
    save();
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), false);
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_OPENED, open_place, path);
    expect_thrown<PM_Severe>([&] { save(); }, PM_ERR_NOT_OPENED, open_place, path);
    first.close();
    load(again);
}

TEST_F(DocTest, TheVersionIsNotToldWhileAnotherHoldsTheFile) {
    save();
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), false);
    expect_thrown<PM_Severe>([&] { version(); }, PM_ERR_NOT_OPENED, open_place, path);
    first.close();
    EXPECT_EQ(u"1.000000", version());
}

TEST_F(DocTest, ASecondOpenFailsWhileTheFirstWrites) {
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), true);
    expect_thrown<PM_Severe>([&] { version(); }, PM_ERR_NOT_OPENED, open_place, path);
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_OPENED, open_place, path);
    expect_thrown<PM_Severe>([&] { save(); }, PM_ERR_NOT_OPENED, open_place, path);
}

TEST_F(DocTest, OpeningAgainAndAttachingDoNothing) {
    object.SetProperty(u"a", 1);
    save();
    PM_DOCFile filer(nullptr);
    filer.open(path.c_str(), false);
    filer.open(u"another name", false);
    filer.attach(nullptr);
    filer.load(&again, u"\\", PM_Object::FILE_DOC);
    EXPECT_EQ(Names{u"a"}, properties_in(again, u"\\"));
    EXPECT_FALSE(std::filesystem::exists("another name"));
}

TEST_F(DocTest, AnUnknownTypeRaises66) {
    for (const std::uint32_t type : {0U, 6U, 0xFFFFFFFFU}) {
        make([&](pm::IStorage& root) { put(root, u"x", word(type) + word(1) + "a"); });
        expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_READ, load_place, path);
    }
}

TEST_F(DocTest, ASizeBeyond1024Raises66) {
    for (const std::uint32_t size : {1025U, 0xFFFFFFFFU}) {
        make([&](pm::IStorage& root) {
            put(root, u"x", word(PROP_VOID) + word(size) + std::string(1025, 'a'));
        });
        expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_READ, load_place, path);
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
        expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
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

// Files with an entry that can't be opened

class DocOddEntry : public DocTest {
protected:
    DocOddEntry() {
        make([&](pm::IStorage& root) {
            for (const char16_t* name : {u"a", u"bxc", u"d1234"})
                put(root, name, record(PROP_LONG, word(1)));
            const auto node = root.CreateStorage(u"node");
            put(*node, u"p", record(PROP_LONG, word(2)));
            put(*node, u"large", record(PROP_VOID, std::string(8, 'x')) + std::string(5000, '-'));
        });
    }
    static std::size_t at(const pm::test::Bytes& file, const char16_t* name) {
        return pm::test::entry_at(file, name);
    }
};

TEST_F(DocOddEntry, NothingIsBeforeItIsMade) {
    load(again);
    EXPECT_EQ((Names{u"a", u"bxc", u"d1234"}), properties_in(again, u"\\"));
    EXPECT_EQ((Names{u"p", u"large"}), properties_in(again, u"node"));
}

TEST_F(DocOddEntry, AnUnknownTypeRaises66InItsTurn) {
    change([](auto& file) { file[at(file, u"d1234") + pm::compound::type_at] = std::byte{4}; });
    expect_loaded_before_the_failure({u"a", u"bxc"});
}

TEST_F(DocOddEntry, ARefusedNameRaises66InItsTurn) {
    for (const char16_t unit : {u'/', u'\\', u':', u'!'}) {
        change([unit](auto& file) { pm::test::put16(file, at(file, u"bxc") + 2, unit); });
        expect_loaded_before_the_failure({u"a"});
        const std::u16string name = std::u16string(u"b") + unit + u"c";
        change([&name](auto& file) { pm::test::put16(file, at(file, name.c_str()) + 2, u'x'); });
    }
}

TEST_F(DocOddEntry, ASecondElementOfOneNameRaises66InItsTurn) {
    change([](auto& file) {
        const std::size_t entry = at(file, u"bxc");
        pm::test::put16(file, entry, u'A');
        pm::test::put16(file, entry + 2, 0);
        pm::test::put16(file, entry + pm::compound::name_size_at, 4);
    });
    expect_loaded_before_the_failure({u"A"}); // the one nearer to the root of the tree of siblings
}

TEST_F(DocOddEntry, AnEntryWithoutANameRaises66BehindAllOthers) {
    change([](auto& file) { pm::test::put16(file, at(file, u"bxc") + pm::compound::name_size_at, 0); });
    PM_Object target;
    expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
    EXPECT_EQ((Names{u"a", u"d1234"}), properties_in(target, u"\\"));
    EXPECT_EQ((Names{u"p", u"large"}), properties_in(target, u"node"));
    EXPECT_EQ(u"1.000000", version());
}

TEST_F(DocOddEntry, ASiblingOutsideTheDirectoryRaises66BehindAllOthers) {
    change([](auto& file) { pm::compound::put32(file, at(file, u"p") + pm::compound::left_at, 1000); });
    PM_Object target;
    expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
    EXPECT_EQ((Names{u"p", u"large"}), properties_in(target, u"node"));
    EXPECT_EQ(Names{u"node"}, names_in(target, u"\\"));
    EXPECT_EQ((Names{u"a", u"bxc"}), properties_in(target, u"\\")); // "d1234" comes behind "node"
}

TEST_F(DocOddEntry, ACycleOfSiblingsRaises66BehindAllOthers) {
    change([](auto& file) {
        const std::uint32_t self = pm::test::entry_number(file, u"p");
        pm::compound::put32(file, at(file, u"p") + pm::compound::left_at, self);
    });
    PM_Object target;
    expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
    EXPECT_EQ((Names{u"p", u"large"}), properties_in(target, u"node"));
}

TEST_F(DocOddEntry, AStorageBelowItselfRaises66) {
    change([](auto& file) {
        const std::uint32_t self = pm::test::entry_number(file, u"node");
        pm::compound::put32(file, at(file, u"node") + pm::compound::child_at, self);
    });
    expect_loaded_before_the_failure({u"a", u"bxc"});
}

TEST_F(DocOddEntry, AStorageOfARefusedNameRaises66InItsTurn) {
    change([](auto& file) { pm::test::put16(file, at(file, u"node"), u':'); });
    expect_loaded_before_the_failure({u"a", u"bxc"});
}

TEST_F(DocOddEntry, ABrokenChainRaises66InItsTurn) {
    change([](auto& file) {
        const std::uint32_t start = pm::compound::get32(file, at(file, u"large") + pm::compound::start_at);
        pm::compound::put32(file, pm::test::successor_at(file, start + 3), 1000);
    });
    PM_Object target;
    expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
    EXPECT_EQ(Names{u"p"}, properties_in(target, u"node"));
}

TEST_F(DocOddEntry, AChainWithACycleRaises66InItsTurn) {
    change([](auto& file) {
        const std::uint32_t start = pm::compound::get32(file, at(file, u"large") + pm::compound::start_at);
        pm::compound::put32(file, pm::test::successor_at(file, start + 3), start);
    });
    PM_Object target;
    expect_thrown<PM_Severe>([&] { load(target); }, PM_ERR_NOT_READ, load_place, path);
    EXPECT_EQ(Names{u"p"}, properties_in(target, u"node"));
}

TEST_F(DocOddEntry, AMiniChainWithACycleRaises66InItsTurn) {
    change([](auto& file) {
        const std::uint32_t table = pm::compound::get32(file, pm::compound::mini_fat_start_at);
        const std::uint32_t start = pm::compound::get32(file, at(file, u"bxc") + pm::compound::start_at);
        pm::compound::put32(file, 512 * (table + std::size_t{1}) + 4 * start, start);
        pm::compound::put32(file, at(file, u"bxc") + pm::compound::size_at, 65);
    });
    expect_loaded_before_the_failure({u"a"});
}

TEST_F(DocOddEntry, AnOddVersionIsPassedOverByLoadOnceOneCanBeRead) {
    change([](auto& file) {
        const std::size_t entry = at(file, u"d1234");
        for (std::size_t unit = 0; unit < 7; ++unit)
            pm::test::put16(file, entry + 2 * unit, u"VERSION"[unit]);
        pm::test::put16(file, entry + 14, 0);
        pm::test::put16(file, entry + pm::compound::name_size_at, 16);
        // The entry nearer to the tree's root counts.
        pm::compound::put32(file, entry + pm::compound::left_at, 0xFFFFFFFF);
    });
    load(again);
    EXPECT_EQ((Names{u"a", u"bxc"}), properties_in(again, u"\\"));
}

TEST_F(DocTest, EveryPrefixOfAFileRaises56Or66OrHasAllThatIsNeeded) {
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"b", 2);
    save();
    const std::string whole = folder.read("f.doc");
    const auto tree = pm::test::tree_text(object);
    std::size_t failed = 0;
    for (std::size_t size = 0; size < whole.size(); size += 5) {
        folder.write("f.doc", whole.substr(0, size));
        PM_Object target;
        const auto e = pm::test::thrown_by([&] { load(target); });
        if (e) {
            EXPECT_THAT(e->m_number, testing::AnyOf(PM_ERR_NOT_OPENED, PM_ERR_NOT_READ)) << size;
            failed = size;
        } else {
            EXPECT_THAT(pm::test::tree_text(target), testing::UnorderedElementsAreArray(tree)) << size;
        }
    }
    // The mini stream comes last: three mini sectors, the last of which ends behind the sector's 140 bytes.
    EXPECT_THAT(failed, testing::AllOf(testing::Gt(whole.size() - 512), testing::Lt(whole.size() - 300)));
}

// Names and nodes

TEST_F(DocTest, NamesWithUnpairedSurrogatesAreNamesLikeOthers) {
    const std::u16string lead = u"a\xD83D";
    const std::u16string trail = u"\xDE00";
    object.SetProperty((lead + u"\\" + trail).c_str(), 1);
    object.SetProperty((trail + lead).c_str(), 2);
    save();
    {
        const auto root = open();
        EXPECT_EQ((Names{lead + u"/", trail + lead, u"Version"}), elements_of(*root));
    }
    load(again);
    EXPECT_EQ(Names{lead}, names_in(again, u"\\"));
    EXPECT_EQ(Names{trail}, properties_in(again, lead.c_str()));
    EXPECT_EQ(Names{trail + lead}, properties_in(again, u"\\"));
}

TEST_F(DocTest, NodesWithoutPropertiesAreStoragesAndDoNotComeBack) {
    object.SetProperty(u"a\\b\\p", 1);
    object.SetProperty(u"c\\p", 1);
    object.deletePath(u"a\\b\\p");
    object.deletePath(u"c\\p");
    object.SetProperty(u"z", 1);
    save();
    {
        const auto root = open();
        EXPECT_EQ((Names{u"a/", u"c/", u"z", u"Version"}), elements_of(*root));
        EXPECT_EQ(Names{u"b/"}, elements_of(*root->OpenStorage(u"a")));
        EXPECT_EQ(Names{}, elements_of(*root->OpenStorage(u"a")->OpenStorage(u"b")));
        EXPECT_EQ(Names{}, elements_of(*root->OpenStorage(u"c")));
    }
    load(again);
    EXPECT_EQ(Names{}, names_in(again, u"\\"));
    EXPECT_EQ(Names{u"z"}, properties_in(again, u"\\"));
}

TEST_F(DocTest, AStreamFormDoesNotExist) {
    std::stringstream stream;
    expect_thrown<PM_Warning>([&] { object.load(stream, PM_Object::FILE_DOC, u"\\"); }, PM_ERR_TYPE_REFUSED,
                              u"PM_Object::load()", u"");
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_DOC, u"", u"\\"); },
                              PM_ERR_TYPE_REFUSED, u"PM_Object::save()", u"");
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
    expect_thrown<PM_Severe>([&] { load(again); }, PM_ERR_NOT_READ, load_place, path);
}

TEST_F(DocTest, AnotherTypeOfAKnownPropertyRaises54) {
    object.SetProperty(u"a", 1);
    save();
    again.SetProperty(u"a", u"text");
    expect_thrown<PM_Warning>([&] { load(again); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"");
}

TEST_F(DocTest, SavingWithoutMemoryForTheWalkIsTold) {
    object.SetProperty(u"a", 1);
    const pm::test::FailingAllocation failing(1); // behind that of the filer
    expect_thrown<PM_Memory_Exception>([&] { save(); }, PM_ERR_NO_MEMORY, save_place, u"piter");
}

TEST_F(DocTest, EachFailingAllocationLeavesAUsableObject) {
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"a\\s", u"text");
    EXPECT_GE(pm::test::count_memory_exceptions([&] { save(); }), 2); // the filer, the walk
    save();
    const int told = pm::test::count_memory_exceptions([&] {
        PM_Object target;
        load(target);
    });
    EXPECT_GT(told, 10);
    load(again);
    EXPECT_EQ((Names{u"p", u"s"}), properties_in(again, u"a"));
}

TEST_F(DocTest, AMissingSubtreeOfKnownNamesIsAnEmptyFile) {
    object.SetProperty(u"a\\b", 1);
    save(u"b");
    load(again);
    EXPECT_EQ(Names{}, names_in(again, u"\\"));
    expect_thrown<PM_Warning>([&] { save(u"unknown"); }, PM_ERR_BAD_PATH, u"PM_Iterator::PM_Iterator()",
                              u"unknown");
}

} // namespace

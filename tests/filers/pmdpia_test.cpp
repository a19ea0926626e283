#include "filers/pmdpia.h"

#include "platform/files.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/temp_folder.h"
#include <cerrno>
#include <pm/error_number.h>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using pm::test::expect_thrown;
using pm::test::RecordingHandler;
using pm::test::SourceRecordingHandler;
using pm::test::TempFolder;

constexpr const char16_t* load_place = u"PM_DPIAFile::load()";
constexpr const char16_t* version_place = u"PM_DPIAFile::getVersion()";
constexpr const char16_t* section_place = u"load_section";

std::string word(std::uint32_t value) {
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte)
        bytes += static_cast<char>(value >> (8 * byte));
    return bytes;
}

std::string counted(const std::string& text) {
    return word(static_cast<std::uint32_t>(text.size())) + text;
}

std::string version_1_entry(const std::string& name, std::uint32_t offset, std::uint32_t size) {
    return counted(name) + word(offset) + word(size);
}

std::string version_2_entry(const std::string& name, const std::string& info, std::uint32_t offset,
                            std::uint32_t size) {
    return counted(name) + counted(info) + word(offset) + word(size);
}

const std::string version_1 = word(0x00010000);
const std::string version_2 = word(0x00020000);
const std::string plain_section = "PIAFILEVERSION_2.0,plain\r\na=1\n";

std::u16string string_at(const PM_Object& object, const char16_t* path) {
    char16_t buffer[300] = {};
    EXPECT_TRUE(object.GetProperty(path, buffer, sizeof buffer));
    return buffer;
}

int long_at(const PM_Object& object, const char16_t* path) {
    int value = -999;
    EXPECT_TRUE(object.GetProperty(path, value));
    return value;
}

bool has(const PM_Object& object, const char16_t* path) {
    try {
        (void)object.getPropertySize(path);
        return true;
    } catch (const PM_Warning&) {
        return false;
    }
}

void add_section(PM_Object& object, const std::u16string& name, const char16_t* info, int value) {
    if (info != nullptr) object.SetProperty((u"s\\" + name + u"\\info").c_str(), info);
    object.SetProperty((u"s\\" + name + u"\\data\\value").c_str(), value);
}

std::string saved(const PM_Object& object, const char16_t* subtree = u"s") {
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_DPIA, u"", subtree);
    return stream.str();
}

std::string zlib_section(const PM_Object& object, const char16_t* subtree) {
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_PIA, u"DPIA_SECTION_1.0,compress", subtree, true);
    return stream.str();
}

class DpiaTest : public testing::Test {
protected:
    void load(const std::string& content) {
        std::stringstream stream(content);
        object.load(stream, PM_Object::FILE_DPIA, u"\\");
    }
    void load_section(const std::string& content, const char16_t* name, const char16_t* base = u"\\") {
        const std::u16string path = folder.write("f.dpia", content);
        object.load_section(path.c_str(), PM_Object::FILE_DPIA, base, name);
    }

    TempFolder folder;
    PM_Object object;
};

TEST_F(DpiaTest, NoSectionsAreAFileOf8Bytes) {
    object.SetProperty(u"s\\p", 1);
    EXPECT_EQ(version_2 + word(0), saved(object));
}

TEST_F(DpiaTest, AFileWithoutSectionsSetsNothing) {
    load(version_2 + word(0));
    EXPECT_FALSE(object.pathExists(u"DPIA_directory"));
}

TEST_F(DpiaTest, ANegativeCountIsNone) {
    load(version_2 + word(0xFFFFFFFF));
    EXPECT_FALSE(object.pathExists(u"DPIA_directory"));
}

TEST_F(DpiaTest, WritesDirectoryAndPackedSections) {
    add_section(object, u"One", u"first", 1);
    add_section(object, u"Two", u"second one", 2);
    const std::string one = zlib_section(object, u"s\\One\\data");
    const std::string two = zlib_section(object, u"s\\Two\\data");
    ASSERT_EQ("PIAFILEVERSION_2.0,DPIA_SECTION_1.0,compress\r\npmzlibcodec", one.substr(0, 57));
    const auto size_1 = static_cast<std::uint32_t>(one.size());
    const auto size_2 = static_cast<std::uint32_t>(two.size());
    EXPECT_EQ(version_2 + word(2) + version_2_entry("One", "first", 0, size_1) +
                  version_2_entry("Two", "second one", size_1, size_2) + one + two,
              saved(object));
}

TEST_F(DpiaTest, TheTagOfASaveIsNotUsed) {
    add_section(object, u"One", u"first", 1);
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_DPIA, u"anything", u"s");
    EXPECT_EQ(saved(object), stream.str());
}

TEST_F(DpiaTest, SavingToAPathGivesTheSameBytes) {
    add_section(object, u"One", u"first", 1);
    object.save(folder.wide("out.dpia").c_str(), PM_Object::FILE_DPIA, u"", u"s");
    EXPECT_EQ(saved(object), folder.read("out.dpia"));
}

TEST_F(DpiaTest, ASectionWithoutInfoHasAnEmptyOne) {
    add_section(object, u"One", nullptr, 1);
    EXPECT_EQ(version_2 + word(1) + counted("One") + word(0) + word(0), saved(object).substr(0, 23));
}

TEST_F(DpiaTest, AnInfoThatIsNoTextIsRefused) {
    object.SetProperty(u"s\\One\\info", 5);
    object.SetProperty(u"s\\One\\data\\value", 5);
    expect_thrown<PM_Warning>([&] { saved(object); }, PM_ERR_WRONG_TYPE, u"PM_Object::GetData()", u"");
}

TEST_F(DpiaTest, LengthWordsCountWideUnitsNotBytes) {
    add_section(object, u"B\u00FCro", u"gro\u00DF", 1);
    EXPECT_EQ(version_2 + word(1) + word(4) + "B\xC3\xBCro" + word(4) + "gro\xC3\x9F" + word(0),
              saved(object).substr(0, 30));
}

TEST_F(DpiaTest, ANameBeyondAsciiReadsBackWrong) {
    add_section(object, u"B\u00FCro", u"", 1);
    PM_Object again;
    std::stringstream stream(saved(object));
    // Four bytes are taken for the name; the fifth begins the length of the info.
    expect_thrown<PM_Severe>([&] { again.load(stream, PM_Object::FILE_DPIA, u"\\"); }, PM_ERR_STREAM_FAILED,
                             load_place, u"");
}

TEST_F(DpiaTest, LoadMirrorsTheDirectoryOfVersion2) {
    load(version_2 + word(2) + version_2_entry("One", "first", 0, 0) + version_2_entry("Two", "", 0, 0));
    EXPECT_EQ(u"One", string_at(object, u"DPIA_directory\\0\\descriptor"));
    EXPECT_EQ(u"first", string_at(object, u"DPIA_directory\\0\\info"));
    EXPECT_EQ(u"Two", string_at(object, u"DPIA_directory\\1\\descriptor"));
    EXPECT_EQ(u"", string_at(object, u"DPIA_directory\\1\\info"));
    EXPECT_FALSE(object.pathExists(u"DPIA_directory\\2"));
}

TEST_F(DpiaTest, LoadOfVersion1SetsDescriptorsOnly) {
    load(version_1 + word(1) + version_1_entry("One", 0, 0));
    EXPECT_EQ(u"One", string_at(object, u"DPIA_directory\\0\\descriptor"));
    EXPECT_FALSE(has(object, u"DPIA_directory\\0\\info"));
}

TEST_F(DpiaTest, LoadGoesBelowItsBase) {
    std::stringstream stream(version_1 + word(1) + version_1_entry("One", 0, 0));
    object.load(stream, PM_Object::FILE_DPIA, u"q\\r");
    EXPECT_EQ(u"One", string_at(object, u"q\\r\\DPIA_directory\\0\\descriptor"));
}

TEST_F(DpiaTest, TextsAreUtf8) {
    load(version_2 + word(1) + version_2_entry("B\xC3\xBCro", "\xE2\x82\xAC", 0, 0));
    EXPECT_EQ(u"B\u00FCro", string_at(object, u"DPIA_directory\\0\\descriptor"));
    EXPECT_EQ(u"\u20AC", string_at(object, u"DPIA_directory\\0\\info"));
}

TEST_F(DpiaTest, LoadDoesNotTouchTheSections) {
    load(version_2 + word(1) + version_2_entry("One", "", 0xFFFFFFF0, 0xFFFFFFFF));
    EXPECT_EQ(u"One", string_at(object, u"DPIA_directory\\0\\descriptor"));
}

TEST_F(DpiaTest, LoadLeavesTheStreamBehindTheDirectory) {
    const std::string directory = version_2 + word(1) + version_2_entry("One", "first", 0, 3);
    std::stringstream stream(directory + "???");
    object.load(stream, PM_Object::FILE_DPIA, u"\\");
    EXPECT_EQ(static_cast<std::streamoff>(directory.size()), static_cast<std::streamoff>(stream.tellg()));
    EXPECT_TRUE(stream.good());
}

TEST_F(DpiaTest, LastOfManySectionsIsFound) {
    constexpr int sections = 3000; // a directory of some blocks
    const auto size = static_cast<std::uint32_t>(plain_section.size());
    std::string directory = version_2 + word(sections);
    for (int section = 0; section < sections; ++section)
        directory += version_2_entry("section" + std::to_string(section), "info",
                                     section + 1 == sections ? 3 : 0, section + 1 == sections ? size : 0);
    load_section(directory + "???" + plain_section, u"section2999");
    EXPECT_EQ(1, long_at(object, u"a"));
}

// Entries that differ in shape from the one in front, some of them across blocks.
TEST_F(DpiaTest, SectionAmongEntriesOfManyShapesIsFound) {
    constexpr int sections = 1000;
    const auto size = static_cast<std::uint32_t>(plain_section.size());
    for (const bool with_info : {false, true}) {
        std::string directory = (with_info ? version_2 : version_1) + word(sections + 1);
        for (int section = 0; section < sections; ++section) {
            const std::string name(static_cast<std::size_t>(section % 50), 'n');
            const std::string info(static_cast<std::size_t>(section % 7 == 0 ? 40 : 0), 'i');
            directory += with_info ? version_2_entry(name, info, 0, 0) : version_1_entry(name, 0, 0);
        }
        directory += with_info ? version_2_entry("wanted", "", 3, size) : version_1_entry("wanted", 3, size);
        load_section(directory + "???" + plain_section, u"wanted", with_info ? u"second" : u"first");
    }
    EXPECT_EQ(1, long_at(object, u"first\\a"));
    EXPECT_EQ(1, long_at(object, u"second\\a"));
}

TEST_F(DpiaTest, SectionIsFoundByItsNameBeyondAscii) {
    const auto size = static_cast<std::uint32_t>(plain_section.size());
    load_section(version_1 + word(2) + version_1_entry("Buro", 0, 0) +
                     version_1_entry("B\xC3\xBCro", 0, size) + plain_section,
                 u"B\u00FCro");
    EXPECT_EQ(1, long_at(object, u"a"));
}

TEST_F(DpiaTest, SectionWhoseNameGoesOnIsAnother) {
    expect_thrown<PM_Severe>(
        [&] {
            load_section(version_1 + word(2) + version_1_entry("OneMore", 0, 0) +
                             version_1_entry("On", 0, 0) + plain_section,
                         u"One");
        },
        PM_ERR_NO_SUCH_SECTION, section_place, u"One");
}

TEST_F(DpiaTest, SectionsLoadAlone) {
    add_section(object, u"One", u"first", 1);
    add_section(object, u"Two", u"second", 2);
    const std::string content = saved(object);
    PM_Object two;
    const std::u16string path = folder.write("f.dpia", content);
    two.load_section(path.c_str(), PM_Object::FILE_DPIA, u"here", u"Two");
    EXPECT_EQ(2, long_at(two, u"here\\value"));
    EXPECT_FALSE(two.pathExists(u"DPIA_directory"));
    two.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
    EXPECT_EQ(1, long_at(two, u"value"));
}

TEST_F(DpiaTest, SectionsOfVersion1LoadLikeThoseOf2) {
    const auto size = static_cast<std::uint32_t>(plain_section.size());
    load_section(version_1 + word(2) + version_1_entry("No", 0, 0) + version_1_entry("Yes", 3, size) + "???" +
                     plain_section,
                 u"Yes");
    EXPECT_EQ(1, long_at(object, u"a"));
}

TEST_F(DpiaTest, SectionsAreReadAsUtf8) {
    const std::string section = "PIAFILEVERSION_2.0,x\r\ns=\"\xE2\x82\xAC\n";
    load_section(version_1 + word(1) + version_1_entry("One", 0, static_cast<std::uint32_t>(section.size())) +
                     section,
                 u"One");
    EXPECT_EQ(u"\u20AC", string_at(object, u"s"));
}

TEST_F(DpiaTest, TextBeyondTheCodePageSurvivesASection) {
    object.SetProperty(u"s\\One\\data\\text", u"\u65E5\u672C");
    PM_Object again;
    const std::u16string path = folder.write("f.dpia", saved(object));
    again.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
    EXPECT_EQ(u"\u65E5\u672C", string_at(again, u"text"));
}

TEST_F(DpiaTest, OfTwoSectionsOfOneNameTheFirstIsLoaded) {
    const std::string other = "PIAFILEVERSION_2.0,plain\r\na=2\n";
    const auto size = static_cast<std::uint32_t>(plain_section.size());
    load_section(version_1 + word(2) + version_1_entry("S", 0, size) + version_1_entry("S", size, size) +
                     plain_section + other,
                 u"S");
    EXPECT_EQ(1, long_at(object, u"a"));
}

TEST_F(DpiaTest, SectionNameThatDiffersInCaseIsNotFound) {
    expect_thrown<PM_Severe>(
        [&] { load_section(version_1 + word(1) + version_1_entry("One", 0, 0), u"one"); },
        PM_ERR_NO_SUCH_SECTION, section_place, u"one");
}

TEST_F(DpiaTest, NullArgumentsAreSectionsNotFound) {
    const std::string content = version_1 + word(1) + version_1_entry("One", 0, 0);
    expect_thrown<PM_Severe>([&] { load_section(content, nullptr); }, PM_ERR_NO_SUCH_SECTION, section_place,
                             u"");
    expect_thrown<PM_Severe>([&] { load_section(content, u"One", nullptr); }, PM_ERR_NO_SUCH_SECTION,
                             section_place, u"One");
    PM_DPIAFile filer(nullptr);
    std::stringstream stream(content);
    filer.attach(&stream);
    expect_thrown<PM_Severe>([&] { filer.load_section(nullptr, u"\\", u"One"); }, PM_ERR_NO_SUCH_SECTION,
                             section_place, u"One");
}

TEST_F(DpiaTest, ABadLineOfASectionIsToldWithoutAFileName) {
    const std::string section = "PIAFILEVERSION_2.0,x\r\nbad line\n";
    const std::string content =
        version_1 + word(1) + version_1_entry("One", 0, static_cast<std::uint32_t>(section.size())) + section;
    expect_thrown<PM_Error>([&] { load_section(content, u"One"); }, PM_ERR_BAD_LINE, u"PM_PIAFile::load()",
                            u"\n2, bad line, ");
}

TEST_F(DpiaTest, TheHandlerHearsOfASectionsBadLines) {
    RecordingHandler handler(1);
    PM_Object heard(&handler);
    const std::string section = "PIAFILEVERSION_2.0,x\r\na=yes\nb=1\n";
    const std::u16string path = folder.write(
        "f.dpia", version_1 + word(1) +
                      version_1_entry("One", 0, static_cast<std::uint32_t>(section.size())) + section);
    heard.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE}), handler.numbers());
    EXPECT_EQ(1, long_at(heard, u"b"));
}

TEST_F(DpiaTest, ASectionBeyondTheFileFailsInItsRead) {
    for (const auto& entry : {version_1_entry("One", 0, 100), version_1_entry("One", 0, 0xFFFFFFFF),
                              version_1_entry("One", 0xFFFFFFFF, 1)}) {
        expect_thrown<PM_Severe>([&] { load_section(version_1 + word(1) + entry + plain_section, u"One"); },
                                 PM_ERR_STREAM_FAILED, section_place, u"One");
    }
}

TEST_F(DpiaTest, WithoutMemoryForASectionNothingHappens) {
    // The last allocations of a load are those of the temporary filer's work; the section's block stands
    // behind those of the directory: filer, descriptor, block.
    const std::u16string path = folder.write(
        "f.dpia", version_1 + word(1) +
                      version_1_entry("One", 0, static_cast<std::uint32_t>(plain_section.size())) +
                      plain_section);
    {
        const pm::test::FailingAllocation failing(2);
        object.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
        EXPECT_TRUE(pm::test::FailingAllocation::was_hit());
    }
    EXPECT_FALSE(object.pathExists(u"a"));
}

TEST_F(DpiaTest, TextsOfTheDirectoryWithoutMemoryAreTold) {
    const std::string content = version_2 + word(1) + version_2_entry("One", "info", 0, 0);
    for (const auto& [place, detail] : {std::pair(1, u"descriptor"), std::pair(2, u"info")}) {
        std::stringstream stream(content);
        const pm::test::FailingAllocation failing(place);
        expect_thrown<PM_Memory_Exception>([&] { object.load(stream, PM_Object::FILE_DPIA, u"\\"); },
                                           PM_ERR_NO_MEMORY, load_place, detail);
    }
}

TEST_F(DpiaTest, SavingWithoutMemoryForTheWalkIsTold) {
    std::stringstream stream;
    object.SetProperty(u"s\\p", 1);
    const pm::test::FailingAllocation failing(1);
    expect_thrown<PM_Memory_Exception>([&] { object.save(stream, PM_Object::FILE_DPIA, u"", u"s"); },
                                       PM_ERR_NO_MEMORY, u"PM_DPIAFile::save()", u"pIter");
}

TEST_F(DpiaTest, EachFailingAllocationLeavesAUsableObject) {
    add_section(object, u"One", u"first", 1);
    const std::u16string path = folder.write("f.dpia", saved(object));
    const int failures = pm::test::fail_each_allocation([&](int) {
        std::stringstream stream;
        (void)pm::test::thrown_by([&] { object.save(stream, PM_Object::FILE_DPIA, u"", u"s"); });
        (void)pm::test::thrown_by([&] {
            PM_Object other;
            other.load(path.c_str(), PM_Object::FILE_DPIA, u"\\");
        });
        (void)pm::test::thrown_by([&] {
            PM_Object other;
            other.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
        });
    });
    EXPECT_GT(failures, 20);
    EXPECT_EQ(1, long_at(object, u"s\\One\\data\\value"));
}

TEST_F(DpiaTest, AnUnknownVersionIsReported) {
    const std::string content = word(0x00030000) + word(1) + version_1_entry("One", 0, 0);
    expect_thrown<ZT_Exception>([&] { load(content); }, PM_ERR_UNKNOWN_VERSION, version_place, u"");
    const std::u16string path = folder.write("f.dpia", content);
    expect_thrown<ZT_Exception>([&] { object.load(path.c_str(), PM_Object::FILE_DPIA, u"\\"); },
                                PM_ERR_UNKNOWN_VERSION, version_place, path);
}

TEST_F(DpiaTest, AnUnknownVersionThatIsLetPassIsReadAsVersion1) {
    SourceRecordingHandler handler;
    PM_Object heard(&handler);
    std::stringstream stream(word(0x00030000) + word(1) + version_1_entry("One", 0, 0));
    heard.load(stream, PM_Object::FILE_DPIA, u"\\");
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(PM_ERR_UNKNOWN_VERSION, handler.reports[0].number);
    EXPECT_EQ(u"$Workfile: pmdpia $ $Revision: #1 $", handler.sources[0]);
    EXPECT_EQ(u"One", string_at(heard, u"DPIA_directory\\0\\descriptor"));
    EXPECT_FALSE(has(heard, u"DPIA_directory\\0\\info"));
}

TEST_F(DpiaTest, AnUnknownVersionThatIsNotLetPassCancels) {
    RecordingHandler handler(0);
    PM_Object heard(&handler);
    std::stringstream stream(word(0x00030000) + word(0));
    expect_thrown<ZT_Canceled_Error>([&] { heard.load(stream, PM_Object::FILE_DPIA, u"\\"); },
                                     PM_ERR_UNKNOWN_VERSION, version_place, u"");
}

TEST_F(DpiaTest, VersionTextsAreThoseOfTheWords) {
    RecordingHandler handler(1);
    for (const auto& [content, text] :
         {std::pair(version_1, u"DPIA_VERSION_1.0"), std::pair(version_2, u"DPIA_VERSION_2.0"),
          std::pair(word(7), u"untouched")}) {
        char16_t buffer[40] = u"untouched";
        std::stringstream stream(content);
        PM_DPIAFile filer(&handler);
        filer.attach(&stream);
        filer.getVersion(buffer, PM_File::unchecked);
        EXPECT_EQ(std::u16string(text), buffer);
    }
}

TEST_F(DpiaTest, AVersionTextIsCutToItsBuffer) {
    char16_t buffer[6] = u"xxxxx";
    std::stringstream stream(version_2);
    PM_DPIAFile filer(nullptr);
    filer.attach(&stream);
    filer.getVersion(buffer, 5);
    EXPECT_EQ(u"DPIA", std::u16string(buffer));
}

TEST_F(DpiaTest, AMissingFileRaises63) {
    const std::u16string path = folder.wide("none.dpia");
    expect_thrown<PM_Severe>([&] { object.load(path.c_str(), PM_Object::FILE_DPIA, u"\\"); },
                             PM_ERR_NO_SUCH_FILE, load_place, path);
    expect_thrown<PM_Severe>([&] { object.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One"); },
                             PM_ERR_NO_SUCH_FILE, load_place, path);
}

TEST_F(DpiaTest, AFileThatCannotBeMadeFailsInOpen) {
    object.SetProperty(u"s\\p", 1);
    const std::u16string path = folder.wide("no folder/f.dpia");
    expect_thrown<PM_Severe>([&] { object.save(path.c_str(), PM_Object::FILE_DPIA, u"", u"s"); },
                             PM_ERR_NO_SUCH_FILE, u"PM_DPIAFile::open()", path);
}

TEST_F(DpiaTest, AShortVersionWordRaises82) {
    for (const std::string& content : {std::string(), std::string("\0\0", 2)}) {
        expect_thrown<PM_Severe>([&] { load(content); }, PM_ERR_STREAM_FAILED, version_place, u"");
    }
}

TEST_F(DpiaTest, EveryCutDirectoryRaises82) {
    const std::string content =
        version_2 + word(2) + version_2_entry("One", "first", 0, 0) + version_2_entry("Two", "second", 0, 0);
    for (std::size_t length = 4; length < content.size(); ++length) {
        expect_thrown<PM_Severe>([&] { load(content.substr(0, length)); }, PM_ERR_STREAM_FAILED, load_place,
                                 u"");
    }
    load(content);
}

TEST_F(DpiaTest, EveryCutDirectoryRaises82ForASection) {
    const std::string content =
        version_2 + word(2) + version_2_entry("One", "first", 0, 0) + version_2_entry("Two", "second", 0, 0);
    for (std::size_t length = 4; length < content.size(); ++length) {
        expect_thrown<PM_Severe>([&] { load_section(content.substr(0, length), u"One"); },
                                 PM_ERR_STREAM_FAILED, load_place, folder.wide("f.dpia").c_str());
    }
}

TEST_F(DpiaTest, CountsAndLengthsThatCannotFitTakeNoMemory) {
    for (const std::string& content :
         {version_2 + word(0x7FFFFFFF) + version_2_entry("One", "", 0, 0),
          version_2 + word(1) + word(0x7FFFFFFF) + "One", version_2 + word(1) + word(0xFFFFFFFF) + "One",
          version_2 + word(1) + counted("One") + word(0xFFFFFFF0) + std::string(8, '\0')}) {
        expect_thrown<PM_Severe>([&] { load(content); }, PM_ERR_STREAM_FAILED, load_place, u"");
    }
}

TEST_F(DpiaTest, ASaveThatFailsInTheSecondSectionLeavesTheFirst) {
    add_section(object, u"One", u"first", 1);
    add_section(object, u"Two", nullptr, 2);
    object.setVoidProperty(u"s\\Two\\data\\v", nullptr, 0);
    std::stringstream stream;
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_DPIA, u"", u"s"); }, PM_ERR_NO_VALUE,
                              u"PM_Property::GetData()", u"v");
    EXPECT_EQ(version_2 + word(2) + version_2_entry("One", "first", 0, 0) + version_2_entry("Two", "", 0, 0) +
                  zlib_section(object, u"s\\One\\data"),
              stream.str());
}

TEST_F(DpiaTest, ASectionBehindAnUnknownVersionThatIsLetPassIsReadInTheOldLayout) {
    RecordingHandler handler(1);
    PM_Object heard(&handler);
    const std::u16string path = folder.write(
        "f.dpia", word(0x00030000) + word(1) +
                      version_1_entry("One", 0, static_cast<std::uint32_t>(plain_section.size())) +
                      plain_section);
    heard.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One");
    EXPECT_EQ(1, long_at(heard, u"a"));
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(PM_ERR_UNKNOWN_VERSION, handler.reports[0].number);
    EXPECT_EQ(version_place, handler.reports[0].place);
    EXPECT_EQ(path, handler.reports[0].detail);
}

TEST_F(DpiaTest, ABrokenBodyOfASectionIsTheReadersFailure) {
    object.SetProperty(u"s\\value", 1);
    std::string section = zlib_section(object, u"s");
    section.back() = static_cast<char>(section.back() ^ 1);
    const std::string content = version_2 + word(1) +
                                version_2_entry("One", "", 0, static_cast<std::uint32_t>(section.size())) +
                                section;
    RecordingHandler handler(1);
    PM_Object heard(&handler);
    const std::u16string path = folder.write("f.dpia", content);
    expect_thrown<PM_Severe>([&] { heard.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", u"One"); },
                             PM_ERR_NOT_DECODED, u".\\pmpia", u"decompression of PIA data failed");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_INFLATE}), handler.numbers());
    EXPECT_FALSE(heard.pathExists(u"value"));
}

// Reads some bytes and then fails with an error code of the system's.
class FailingBuffer : public std::stringbuf {
public:
    FailingBuffer(const std::string& content, std::size_t readable, int code)
        : std::stringbuf(content, std::ios::in), m_left(readable), m_code(code) {}

protected:
    std::streamsize xsgetn(char* out, std::streamsize count) override {
        if (static_cast<std::size_t>(count) > m_left) {
            errno = m_code;
            throw std::runtime_error("the device failed");
        }
        m_left -= static_cast<std::size_t>(count);
        return std::stringbuf::xsgetn(out, count);
    }

private:
    std::size_t m_left;
    int m_code;
};

TEST_F(DpiaTest, AReadThatFailsHasTheNumberOfItsCode) {
    struct Case {
        int code;
        std::uint32_t number;
    };
    for (const Case& each : {Case{EACCES, PM_ERR_ACCESS_DENIED}, Case{EBADF, PM_ERR_FILE_NOT_OPEN},
                             Case{ENOENT, PM_ERR_NO_SUCH_FILE}, Case{EMFILE, PM_ERR_TOO_MANY_FILES},
                             Case{EIO, PM_ERR_STREAM_FAILED}, Case{0, PM_ERR_STREAM_FAILED}}) {
        const std::string content = version_2 + word(1) + version_2_entry("One", "info", 0, 0);
        for (std::size_t readable = 4; readable < content.size(); ++readable) {
            FailingBuffer buffer(content, readable, each.code);
            std::iostream stream(&buffer);
            expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_DPIA, u"\\"); }, each.number,
                                     load_place, u"");
        }
        FailingBuffer none(content, 3, each.code);
        std::iostream empty(&none);
        expect_thrown<PM_Severe>([&] { object.load(empty, PM_Object::FILE_DPIA, u"\\"); }, each.number,
                                 version_place, u"");
    }
}

// Takes so many bytes in all, and then no more.
class FullBuffer : public std::stringbuf {
public:
    explicit FullBuffer(std::size_t room) : m_left(room) {}

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        if (static_cast<std::size_t>(count) > m_left) {
            errno = ENOSPC;
            return 0;
        }
        m_left -= static_cast<std::size_t>(count);
        return std::stringbuf::xsputn(bytes, count);
    }

private:
    std::size_t m_left;
};

TEST_F(DpiaTest, AWriteThatFailsIsToldWithItsPlaceAndSection) {
    constexpr const char16_t* save_place = u"PM_DPIAFile::save()";
    constexpr const char16_t* directory_place = u"PM_DPIAFile::write_directory";
    add_section(object, u"One", u"first", 1);
    const std::size_t section = zlib_section(object, u"s\\One\\data").size();
    struct Case {
        std::size_t room;
        const char16_t* place;
        const char16_t* detail;
    };
    // Version and count take 8 bytes, the entry 24, then the section; the directory is written again.
    for (const Case& each :
         {Case{0, save_place, u""}, Case{3, save_place, u""}, Case{4, directory_place, u""},
          Case{8, directory_place, u"One"}, Case{31, directory_place, u"One"}, Case{32, save_place, u""},
          Case{31 + section, save_place, u""}, Case{32 + section, directory_place, u""},
          Case{36 + section, directory_place, u"One"}, Case{59 + section, directory_place, u"One"}}) {
        SCOPED_TRACE(each.room);
        FullBuffer buffer(each.room);
        std::iostream stream(&buffer);
        expect_thrown<PM_Severe>([&] { object.save(stream, PM_Object::FILE_DPIA, u"", u"s"); },
                                 PM_ERR_DISK_FULL, each.place, each.detail);
    }
    FullBuffer buffer(60 + section);
    std::iostream stream(&buffer);
    object.save(stream, PM_Object::FILE_DPIA, u"", u"s");
    EXPECT_EQ(saved(object), buffer.str());
}

TEST_F(DpiaTest, AShortFileIsToldWithItsName) {
    const std::u16string path = folder.write("f.dpia", "ab");
    expect_thrown<PM_Severe>([&] { object.load(path.c_str(), PM_Object::FILE_DPIA, u"\\"); },
                             PM_ERR_STREAM_FAILED, version_place, path);
    folder.write("f.dpia", version_2 + word(1));
    expect_thrown<PM_Severe>([&] { object.load(path.c_str(), PM_Object::FILE_DPIA, u"\\"); },
                             PM_ERR_STREAM_FAILED, load_place, path);
}

TEST_F(DpiaTest, TextsOfMoreThan4096UnitsAreCutTo4097) {
    load(version_2 + word(1) + version_2_entry(std::string(5000, 'd'), std::string(4096, 'i'), 0, 0));
    EXPECT_EQ(2 * 4097U, object.getPropertySize(u"DPIA_directory\\0\\descriptor"));
    EXPECT_EQ(2 * 4097U, object.getPropertySize(u"DPIA_directory\\0\\info"));
    std::vector<char16_t> text(4097);
    ASSERT_TRUE(object.GetProperty(u"DPIA_directory\\0\\descriptor", text.data(), 2 * text.size()));
    EXPECT_EQ(std::u16string(4097, u'd'), std::u16string(text.begin(), text.end()));
    ASSERT_TRUE(object.GetProperty(u"DPIA_directory\\0\\info", text.data(), 2 * text.size()));
    EXPECT_EQ(std::u16string(4096, u'i') + u'\0', std::u16string(text.begin(), text.end()));
}

TEST_F(DpiaTest, ASectionWithALongNameIsFound) {
    const std::string name(5000, 'd');
    load_section(version_1 + word(1) +
                     version_1_entry(name, 0, static_cast<std::uint32_t>(plain_section.size())) +
                     plain_section,
                 std::u16string(5000, u'd').c_str());
    EXPECT_EQ(1, long_at(object, u"a"));
}

TEST_F(DpiaTest, EachNumber55IsAMemoryException) {
    add_section(object, u"One", u"first", 1);
    const std::u16string path = folder.write("f.dpia", saved(object));
    const auto check = [](const auto& work) {
        const std::type_info* type = nullptr;
        const auto e = pm::test::thrown_by(work, &type);
        if (e && e->m_number == PM_ERR_NO_MEMORY) {
            EXPECT_EQ(typeid(PM_Memory_Exception), *type);
        }
    };
    for (const char16_t* section : {u"", u"One"}) {
        PM_Object target;
        EXPECT_GT(pm::test::fail_each_allocation([&](int) {
                      check([&] {
                          if (section[0] == u'\0') {
                              target.load(path.c_str(), PM_Object::FILE_DPIA, u"\\");
                          } else {
                              target.load_section(path.c_str(), PM_Object::FILE_DPIA, u"\\", section);
                          }
                      });
                  }),
                  2);
    }
    EXPECT_GT(pm::test::fail_each_allocation([&](int) { check([&] { (void)saved(object); }); }), 5);
}

TEST_F(DpiaTest, SectionsOfTheSampleLoad) {
    const std::u16string path = std::filesystem::path(PM_SAMPLES "/sections.dpia").u16string();
    object.load(path.c_str(), PM_Object::FILE_DPIA, u"\\");
    EXPECT_EQ(u"Office", string_at(object, u"DPIA_directory\\0\\descriptor"));
    EXPECT_EQ(u"Drawing office, third floor", string_at(object, u"DPIA_directory\\0\\info"));
    EXPECT_EQ(u"Workshop", string_at(object, u"DPIA_directory\\1\\descriptor"));
    EXPECT_EQ(u"Plotter beside the paint shop", string_at(object, u"DPIA_directory\\1\\info"));
    EXPECT_EQ(u"Archive", string_at(object, u"DPIA_directory\\2\\descriptor"));
    EXPECT_EQ(u"", string_at(object, u"DPIA_directory\\2\\info"));
    for (const char16_t* name : {u"Office", u"Workshop", u"Archive"}) {
        object.load_section(path.c_str(), PM_Object::FILE_DPIA, name, name);
        EXPECT_TRUE(object.pathExists(name));
    }
    EXPECT_EQ(u"DX-4200 in the drawing office", string_at(object, u"Office\\name"));
}

TEST_F(DpiaTest, ASubtreeThatIsNotThereSavesAsNoSections) {
    object.SetProperty(u"a\\b", 1);
    EXPECT_EQ(version_2 + word(0), saved(object, u"b"));
    expect_thrown<PM_Warning>([&] { saved(object, u"unknown"); }, PM_ERR_BAD_PATH,
                              u"PM_Iterator::PM_Iterator()", u"unknown");
}

TEST_F(DpiaTest, AnInfoTextThatNoPathReachesEndsTheSave) {
    const std::u16string section(500, u'n');
    const std::u16string top(600, u'd');
    object.SetProperty((u"src\\" + section + u"\\info").c_str(), u"Info text");
    object.duplicate(u"src", top.c_str());
    const std::u16string path = top + u'\\' + section + u"\\info";
    expect_thrown<PM_Warning>([&] { saved(object, top.c_str()); }, PM_ERR_BAD_PATH,
                              u"PM_Object::getPropertySize()", path.substr(0, 259));
}

TEST_F(DpiaTest, CloseLeavesAnAttachedStreamOpen) {
    std::fstream stream(folder / "f.dpia", std::ios::in | std::ios::out | std::ios::trunc | std::ios::binary);
    object.SetProperty(u"s\\p", 1);
    object.save(stream, PM_Object::FILE_DPIA, u"", u"s");
    EXPECT_TRUE(stream.is_open());
}

} // namespace

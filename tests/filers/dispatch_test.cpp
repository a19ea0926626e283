#include "filers/pia_text.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/temp_folder.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <pm/error_number.h>

namespace {

using pm::test::expect_thrown;
using pm::test::FailingAllocation;
using pm::test::pia_header;
using pm::test::RecordingHandler;
using pm::test::TempFolder;
using pm::test::thrown_by;

constexpr const char16_t* load_place = u"PM_Object::load()";
constexpr const char16_t* save_place = u"PM_Object::save()";
constexpr const char16_t* version_place = u"PM_Object::getFileVersion()";

using FileType = PM_Object::FileType;

// One call of each operation with a file type. What an accepted type makes of the call depends on its filer:
// there is no such file, the stream is empty, the folder to write into is missing.
using Operation = std::function<void(PM_Object&, FileType)>;

void load_from_path(PM_Object& object, FileType type) {
    object.load(u"/missing/file", type, u"\\");
}
void load_from_stream(PM_Object& object, FileType type) {
    std::stringstream stream = pm::test::byte_stream("");
    object.load(stream, type, u"\\");
}
void load_a_section(PM_Object& object, FileType type) {
    object.load_section(u"/missing/file", type, u"\\", u"name");
}
void load_a_cfg_section(PM_Object& object, FileType type) {
    object.load_cfg_section(u"/missing/file", type, u"\\", 1);
}
void save_to_path(PM_Object& object, FileType type) {
    object.save(u"/missing/file", type, u"", u"\\");
}
void save_to_path_in_utf8(PM_Object& object, FileType type) {
    object.save(u"/missing/file", type, u"", u"\\", true);
}
void save_to_stream(PM_Object& object, FileType type) {
    std::stringstream stream = pm::test::byte_stream("");
    object.save(stream, type, u"", u"\\");
}
void save_to_stream_in_utf8(PM_Object& object, FileType type) {
    std::stringstream stream = pm::test::byte_stream("");
    object.save(stream, type, u"", u"\\", true);
}
void version_of_path(PM_Object& object, FileType type) {
    char16_t buffer[16];
    object.getFileVersion(u"/missing/file", buffer, 16, type);
}
void unchecked_version_of_path(PM_Object& object, FileType type) {
    char16_t buffer[16];
    object.getFileVersion(u"/missing/file", buffer, type);
}

struct OperationRow {
    const char* name;
    Operation call;
    const char16_t* place;
    std::vector<FileType> accepted;
};

constexpr FileType PIA = PM_Object::FILE_PIA;
constexpr FileType PCP = PM_Object::FILE_PCP;
constexpr FileType PC2 = PM_Object::FILE_PC2;
constexpr FileType DOC = PM_Object::FILE_DOC;
constexpr FileType PDT = PM_Object::FILE_PDT;
constexpr FileType DPIA = PM_Object::FILE_DPIA;
constexpr FileType CFG = PM_Object::FILE_CFG;

const OperationRow operations[] = {
    {"load from a path", load_from_path, load_place, {PIA, PCP, PC2, DOC, PDT, DPIA}},
    {"load from a stream", load_from_stream, load_place, {PIA, PCP, PC2, PDT, DPIA}},
    {"load_section", load_a_section, load_place, {DPIA}},
    {"load_cfg_section", load_a_cfg_section, load_place, {CFG}},
    {"save to a path", save_to_path, save_place, {PIA, DOC, DPIA}},
    {"save to a path in UTF-8", save_to_path_in_utf8, save_place, {PIA, DOC, DPIA}},
    {"save to a stream", save_to_stream, save_place, {PIA, DPIA}},
    {"save to a stream in UTF-8", save_to_stream_in_utf8, save_place, {PIA, DPIA}},
    {"getFileVersion", version_of_path, version_place, {PCP, DOC}},
    {"getFileVersion, unchecked", unchecked_version_of_path, version_place, {PCP, DOC}},
};

constexpr int first_type = PM_Object::FILE_PIA;
constexpr int last_type = PM_Object::FILE_CFG;

bool accepts(const OperationRow& row, int type) {
    return std::find(row.accepted.begin(), row.accepted.end(), type) != row.accepted.end();
}

TEST(Dispatch, TypeThatIsNotAcceptedIs67) {
    for (const OperationRow& row : operations) {
        for (int type = first_type - 1; type <= last_type + 1; ++type) {
            if (accepts(row, type)) continue;
            SCOPED_TRACE(std::string(row.name) + ", type " + std::to_string(type));
            PM_Object object;
            expect_thrown<PM_Warning>([&] { row.call(object, static_cast<FileType>(type)); },
                                      PM_ERR_TYPE_REFUSED, row.place, u"");
        }
    }
}

TEST(Dispatch, AcceptedTypeReachesItsFiler) {
    for (const OperationRow& row : operations) {
        for (const FileType type : row.accepted) {
            SCOPED_TRACE(std::string(row.name) + ", type " + std::to_string(type));
            PM_Object object;
            const auto e = thrown_by([&] { row.call(object, type); });
            EXPECT_TRUE(!e || e->m_number != PM_ERR_TYPE_REFUSED);
        }
    }
}

// An object whose root is gone.
class Rootless : public PM_Object {
public:
    Rootless() { std::swap(m_root, m_kept); }
    ~Rootless() override { std::swap(m_root, m_kept); }
    Rootless(const Rootless&) = delete;
    Rootless& operator=(const Rootless&) = delete;

private:
    PM_Node* m_kept = nullptr;
};

TEST(Dispatch, ObjectWithoutRootIs50ForEveryType) {
    Rootless object;
    for (const OperationRow& row : operations) {
        for (int type = first_type; type <= last_type; ++type) {
            SCOPED_TRACE(std::string(row.name) + ", type " + std::to_string(type));
            expect_thrown<PM_Severe>([&] { row.call(object, static_cast<FileType>(type)); }, PM_ERR_NO_ROOT,
                                     row.place, u"m_root");
        }
    }
}

TEST(Dispatch, NoMemoryForTheFilerIs55) {
    for (const OperationRow& row : operations) {
        for (const FileType type : row.accepted) {
            SCOPED_TRACE(std::string(row.name) + ", type " + std::to_string(type));
            PM_Object object;
            const FailingAllocation failing(0);
            expect_thrown<PM_Memory_Exception>([&] { row.call(object, type); }, PM_ERR_NO_MEMORY, row.place,
                                               u"pFiler");
        }
    }
}

TEST(Dispatch, LoadGivesTheObjectsHandlerToTheFiler) {
    RecordingHandler handler;
    PM_Object object(&handler);
    pm::test::load_body(object, "a=yes\n");
    EXPECT_EQ(std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE}, handler.numbers());
}

TEST(Dispatch, VersionIsReadWithoutAHandler) {
    const TempFolder folder;
    const std::u16string name = folder.write("other.txt", "something else\n");
    RecordingHandler handler;
    const PM_Object object(&handler);
    char16_t buffer[32] = {u'x'};
    expect_thrown<ZT_Exception>([&] { object.getFileVersion(name.c_str(), buffer, 32, PM_Object::FILE_PCP); },
                                PM_ERR_NOT_A_HEADER, u"PM_PIAFile::getVersion()", name);
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(u'x', buffer[0]);
}

TEST(Dispatch, SaveIsDoneWithoutAHandler) {
    RecordingHandler handler;
    const PM_Object object(&handler);
    int failures_of_codec = 0;
    pm::test::fail_each_allocation([&](int) {
        std::stringstream stream = pm::test::byte_stream("");
        const auto e = thrown_by([&] { object.save(stream, PIA, u"compress", u"\\"); });
        if (e && e->m_number == PM_ERR_NOT_ENCODED) ++failures_of_codec;
    });
    EXPECT_GT(failures_of_codec, 0);
    EXPECT_TRUE(handler.reports.empty());
}

TEST(Dispatch, Utf8CountsForPia) {
    PM_Object object;
    const char16_t* text = u"\u00E4";
    object.SetProperty(u"a", text);
    EXPECT_EQ("PIAFILEVERSION_2.0,test\r\na=\"\xC3\xA4\n" + std::string(1, '\0'),
              pm::test::saved(object, u"test", u"\\", true));
    EXPECT_EQ("PIAFILEVERSION_2.0,test\r\na=\"\xE4\n" + std::string(1, '\0'),
              pm::test::saved(object, u"test", u"\\", false));
}

TEST(Dispatch, CallersStreamStaysOpen) {
    const TempFolder folder;
    folder.write("a.pia", pia_header + "a=1\n");
    std::fstream stream(folder / "a.pia", std::ios::in | std::ios::out | std::ios::binary);
    PM_Object object;
    object.load(stream, PIA, u"\\");
    EXPECT_TRUE(stream.is_open());
    stream.clear();
    object.save(stream, PIA, u"again", u"\\");
    EXPECT_TRUE(stream.is_open());
    EXPECT_TRUE(stream.good());
    stream.close();
    EXPECT_EQ("PIAFILEVERSION_2.0,again\r\na=1\n" + std::string(1, '\0'), folder.read("a.pia"));
}

TEST(Dispatch, StreamCanBeLoadedAgain) {
    std::stringstream stream = pm::test::byte_stream(pia_header + "a=1\n");
    PM_Object first;
    PM_Object second;
    first.load(stream, PIA, u"\\");
    second.load(stream, PIA, u"\\");
    EXPECT_EQ(pm::test::tree_text(first), pm::test::tree_text(second));
    EXPECT_EQ(pm::test::Lines{"a long 1"}, pm::test::tree_text(second));
}

// Streams that are told to throw by themselves.
constexpr std::ios::iostate all_states = std::ios::eofbit | std::ios::failbit | std::ios::badbit;

TEST(Dispatch, StreamThatThrowsByItselfIsLoaded) {
    for (const auto& [type, content] :
         {std::pair{PIA, pia_header + "a=1\n"},
          std::pair{PC2, std::string("PC2Version 2\n[PlotDriver]\nType=2\n")}}) {
        SCOPED_TRACE(type);
        std::stringstream quiet = pm::test::byte_stream(content);
        std::stringstream throwing = pm::test::byte_stream(content);
        throwing.exceptions(all_states);
        PM_Object expected;
        PM_Object object;
        expected.load(quiet, type, u"\\");
        object.load(throwing, type, u"\\");
        EXPECT_EQ(pm::test::tree_text(expected), pm::test::tree_text(object));
        EXPECT_EQ(quiet.rdstate(), throwing.rdstate());
        EXPECT_EQ(all_states, throwing.exceptions());
    }
}

TEST(Dispatch, FailureOfAStreamThatThrowsByItselfHasItsNumber) {
    std::stringstream stream = pm::test::byte_stream("");
    stream.exceptions(all_states);
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(stream, PIA, u"\\"); }, PM_ERR_STREAM_FAILED,
                             u"PM_PIAFile::getVersion()", u"");
    EXPECT_EQ(all_states, stream.exceptions());
    EXPECT_FALSE(stream.good());
}

TEST(Dispatch, SaveToAStreamThatThrowsByItselfHasItsNumber) {
    for (const FileType type : {PIA, DPIA}) {
        SCOPED_TRACE(type);
        std::stringstream stream;
        stream.setstate(std::ios::badbit);
        EXPECT_THROW(stream.exceptions(all_states), std::ios::failure);
        PM_Object object;
        object.SetProperty(u"\\s\\a", 1);
        EXPECT_EQ(PM_ERR_STREAM_FAILED,
                  thrown_by([&] { object.save(stream, type, u"", u"\\"); }).value().m_number);
        EXPECT_EQ(all_states, stream.exceptions());
    }
}

TEST(Dispatch, FileIsClosedWhenAnExceptionPasses) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", pia_header + "bad line\n");
    PM_Object object;
    for (int count = 0; count < 2000; ++count) {
        expect_thrown<PM_Error>([&] { object.load(name.c_str(), PIA, u"\\"); }, PM_ERR_BAD_LINE,
                                u"PM_PIAFile::load()", u"\n2, bad line, " + name);
    }
}

TEST(Dispatch, LoadAndSaveByPath) {
    const TempFolder folder;
    PM_Object object;
    object.SetProperty(u"x\\a", 1);
    object.save(folder.wide("\u00FCber.pia").c_str(), PIA, u"test", u"\\");
    EXPECT_EQ(pia_header + "x{\n a=1\n}\n" + std::string(1, '\0'), folder.read("\u00FCber.pia"));
    PM_Object again;
    again.load(folder.wide("\u00FCber.pia").c_str(), PIA, u"base");
    EXPECT_EQ(pm::test::Lines{"base\\x\\a long 1"}, pm::test::tree_text(again));
}

TEST(Dispatch, SavingReplacesALongerFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", std::string(5000, 'x'));
    const PM_Object object;
    object.save(name.c_str(), PIA, u"test", u"\\");
    EXPECT_EQ(pia_header + std::string(1, '\0'), folder.read("a.pia"));
}

} // namespace

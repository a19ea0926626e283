#include "filers/pmfile.h"

#include "filers/failing_file.h"
#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <sstream>

namespace {

using pm::test::expect_thrown;
using pm::test::FailingFile;
using pm::test::open_place;
using pm::test::RecordingHandler;
using pm::test::SourceRecordingHandler;
using pm::test::TempFolder;
using pm::test::thrown_by;

constexpr const char16_t* place = u"a place";
constexpr const char16_t* source = u"$Workfile: pmfile_test $ $Revision: #1 $";

class TestFiler : public PM_File {
public:
    explicit TestFiler(ZT_Error_Handler* handler = nullptr) : PM_File(handler) {}
    void load(PM_Object*, const char16_t*, PM_Object::FileType) override {}
    void save(const PM_Object*, const char16_t*, PM_Object::FileType, const char16_t*) override {}
    void attach(std::iostream*) override {}
    void open(const char16_t*, bool) override {}
    void close() override {}
    void getVersion(char16_t*, std::size_t) override {}

    using PM_File::check_stream;
    using PM_File::copy_version;
    using PM_File::set_bool;
    using PM_File::set_data;
    using PM_File::set_double;
    using PM_File::set_long;
    using PM_File::set_string;
    using PM_File::stream_error_number;
};

PM_Error an_error() {
    return {PM_ERR_BAD_LINE, place, u"a detail", source};
}

void expect_an_error(const ZT_Exception& e) {
    EXPECT_EQ(PM_ERR_BAD_LINE, e.m_number);
    EXPECT_EQ(std::u16string(place), e.m_place);
    EXPECT_STREQ("a place", e.m_place_narrow);
    EXPECT_EQ(std::u16string(u"a detail"), e.m_detail);
    EXPECT_EQ(std::u16string(source), e.m_source);
    EXPECT_EQ(GetPMErrResHandle(), e.m_res_handle);
}

TEST(FilerReport, WithoutHandlerThrowsAPlainExceptionOfTheSameContent) {
    TestFiler filer;
    const std::type_info* type = nullptr;
    const auto e = thrown_by([&] { filer.report(an_error()); }, &type);
    ASSERT_TRUE(e);
    EXPECT_EQ(typeid(ZT_Exception), *type);
    expect_an_error(*e);
}

TEST(FilerReport, WithoutHandlerAWarningLosesItsClassToo) {
    TestFiler filer;
    const PM_Warning warning(PM_ERR_UNKNOWN_VALUE, place, u"", source);
    expect_thrown<ZT_Exception>([&] { filer.report(warning); }, PM_ERR_UNKNOWN_VALUE, place, u"");
}

TEST(FilerReport, HandlersAnswerIsGivenBack) {
    for (const int answer : {1, 2, -1, 77}) {
        RecordingHandler handler(answer);
        TestFiler filer(&handler);
        EXPECT_EQ(answer, filer.report(an_error()));
    }
}

TEST(FilerReport, HandlerHearsTheContentByTheKindOfTheClass) {
    SourceRecordingHandler handler;
    TestFiler filer(&handler);
    filer.report(an_error());
    filer.report(PM_Warning(PM_ERR_UNKNOWN_VALUE, u"a line", u"", u""));
    EXPECT_EQ(2, filer.report(PM_Severe(PM_ERR_NOT_DECODED, place, u"", source)));
    ASSERT_EQ(3U, handler.reports.size());
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[0].number);
    EXPECT_EQ(place, handler.reports[0].place);
    EXPECT_EQ(u"a detail", handler.reports[0].detail);
    EXPECT_EQ(source, handler.sources[0]);
    EXPECT_EQ(1, handler.reports[1].kind);
    EXPECT_EQ(4, handler.reports[2].kind);
    EXPECT_EQ((std::vector<std::int32_t>{0, 0, 0}), handler.argument_counts);
}

TEST(FilerReport, AnswerOfZeroCancelsWithTheSameContent) {
    RecordingHandler handler(0);
    TestFiler filer(&handler);
    const std::type_info* type = nullptr;
    const auto e = thrown_by([&] { filer.report(an_error()); }, &type);
    ASSERT_TRUE(e);
    EXPECT_EQ(typeid(ZT_Canceled_Error), *type);
    expect_an_error(*e);
    EXPECT_EQ(1U, handler.reports.size());
}

TEST(FilerReport, SevereErrorPassesWhateverTheHandlerAnswers) {
    RecordingHandler handler(0);
    TestFiler filer(&handler);
    EXPECT_EQ(2, filer.report(PM_Severe(PM_ERR_NOT_DECODED, place, u"", source)));
}

TEST(FilerReport, CancellationIsThrownOnWithoutAskingTheHandler) {
    SourceRecordingHandler handler;
    TestFiler filer(&handler);
    const ZT_Canceled_Error cancelled(an_error());
    expect_thrown<ZT_Canceled_Error>([&] { filer.report(cancelled); }, PM_ERR_BAD_LINE, place, u"a detail");
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_TRUE(handler.argument_counts.empty());
}

struct ErrorNumberRow {
    int code;
    std::uint32_t number;
};

constexpr ErrorNumberRow error_numbers[] = {
    {ENOENT, PM_ERR_NO_SUCH_FILE},
    {E2BIG, PM_ERR_ARGUMENTS_TOO_LONG},
    {ENOEXEC, PM_ERR_NOT_EXECUTABLE},
    {EBADF, PM_ERR_FILE_NOT_OPEN},
    {ECHILD, PM_ERR_NO_CHILD_PROCESS},
    {EAGAIN, PM_ERR_TRY_AGAIN},
    {ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE},
    {EACCES, PM_ERR_ACCESS_DENIED},
    {EEXIST, PM_ERR_FILE_EXISTS},
    {EXDEV, PM_ERR_OTHER_DRIVE},
    {EINVAL, PM_ERR_INVALID_ARGUMENT},
    {EMFILE, PM_ERR_TOO_MANY_FILES},
    {ENOSPC, PM_ERR_DISK_FULL},
    {EDOM, PM_ERR_OUT_OF_DOMAIN},
    {ERANGE, PM_ERR_RESULT_TOO_LARGE},
    {EDEADLK, PM_ERR_DEADLOCK},
    // Everything else.
    {0, PM_ERR_STREAM_FAILED},
    {EPERM, PM_ERR_STREAM_FAILED},
    {EINTR, PM_ERR_STREAM_FAILED},
    {EIO, PM_ERR_STREAM_FAILED},
    {ENXIO, PM_ERR_STREAM_FAILED},
    {EISDIR, PM_ERR_STREAM_FAILED},
    {ENAMETOOLONG, PM_ERR_STREAM_FAILED},
    {ELOOP, PM_ERR_STREAM_FAILED},
    {-1, PM_ERR_STREAM_FAILED},
};

TEST(FilerStreamCheck, NumberFollowsFromTheErrorCode) {
    for (const ErrorNumberRow& row : error_numbers) {
        EXPECT_EQ(row.number, TestFiler::stream_error_number(row.code)) << row.code;
    }
}

TEST(FilerStreamCheck, FailedStreamThrowsTheNumberOfTheLastErrorCode) {
    for (const ErrorNumberRow& row : error_numbers) {
        std::stringstream stream;
        stream.setstate(std::ios::failbit);
        expect_thrown<PM_Severe>(
            [&] {
                errno = row.code;
                TestFiler::check_stream(place, u"a file", stream, source);
            },
            row.number, place, u"a file");
    }
}

TEST(FilerStreamCheck, EveryStateButGoodCounts) {
    for (const std::ios::iostate state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        std::stringstream stream;
        stream.setstate(state);
        errno = 0;
        expect_thrown<PM_Severe>([&] { TestFiler::check_stream(place, nullptr, stream, source); },
                                 PM_ERR_STREAM_FAILED, place, u"");
    }
}

TEST(FilerStreamCheck, GoodStreamPassesWhateverTheErrorCode) {
    const std::stringstream stream;
    errno = ENOSPC;
    EXPECT_NO_THROW(TestFiler::check_stream(place, u"a file", stream, source));
}

TEST(FilerVersionCopy, TextIsCutToTheBuffer) {
    char16_t buffer[5] = {u'x', u'x', u'x', u'x', u'x'};
    TestFiler::copy_version(u"version", buffer, 4);
    EXPECT_EQ(std::u16string(u"ver"), buffer);
    EXPECT_EQ(u'x', buffer[4]);
}

TEST(FilerVersionCopy, TextThatFitsEndsInATerminator) {
    char16_t buffer[9] = {};
    buffer[8] = u'x';
    TestFiler::copy_version(u"version", buffer, 8);
    EXPECT_EQ(std::u16string(u"version"), buffer);
    EXPECT_EQ(u'x', buffer[8]);
}

TEST(FilerVersionCopy, BufferOfNoUnitsIsLeftAlone) {
    char16_t buffer[1] = {u'x'};
    TestFiler::copy_version(u"version", buffer, 0);
    EXPECT_EQ(u'x', buffer[0]);
}

TEST(FilerVersionCopy, UncheckedBufferTakesTheWholeText) {
    char16_t buffer[600] = {};
    const std::u16string text(599, u'v');
    TestFiler::copy_version(text, buffer, PM_File::unchecked);
    EXPECT_EQ(text, buffer);
}

TEST(FilerWriting, ValuesAreStrict) {
    PM_Object object;
    TestFiler::set_long(object, u"l", -7);
    TestFiler::set_double(object, u"d", 2.5);
    TestFiler::set_bool(object, u"b", true);
    TestFiler::set_string(object, u"s", u"text");
    TestFiler::set_data(object, u"v", "\x01\x02", 2, PROP_VOID);
    EXPECT_EQ((pm::test::Lines{"l long -7", "d double 0000000000000440", "b bool 01", "s string text",
                               "v void 0102"}),
              pm::test::tree_text(object));
    for (const char16_t* path : {u"l", u"d", u"b", u"s"}) {
        expect_thrown<PM_Warning>([&] { TestFiler::set_data(object, path, "", 1, PROP_VOID); },
                                  PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"");
    }
}

TEST(FilerWriting, IndexGoesIntoThePath) {
    PM_Object object;
    TestFiler::set_long(object, u"pen*\\width", 1, 3);
    TestFiler::set_string(object, u"list", u"text", 0);
    EXPECT_EQ((pm::test::Lines{"pen3\\width long 1", "list\\0 string text"}), pm::test::tree_text(object));
}

// Streams that fail for the system's reasons.

TEST_F(FailingFile, MissingFileIs63AtLoad) {
    expect_load_failure(folder.wide("missing.pia"), PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()");
}

TEST_F(FailingFile, FileInAMissingFolderIs63AtLoad) {
    expect_load_failure(folder.wide("missing/a.pia"), PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()");
}

TEST_F(FailingFile, EmptyAndNullNamesAre63AtLoad) {
    expect_load_failure(u"", PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()");
    expect_thrown<PM_Severe>(
        [&] { object.load(static_cast<const char16_t*>(nullptr), PM_Object::FILE_PIA, u"\\"); },
        PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", u"");
}

TEST_F(FailingFile, MissingFileForItsVersionIs63AtLoad) {
    const std::u16string name = folder.wide("missing.pia");
    char16_t buffer[8] = {u'x'};
    expect_thrown<PM_Severe>([&] { object.getFileVersion(name.c_str(), buffer, 8, PM_Object::FILE_PCP); },
                             PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", name);
    EXPECT_EQ(u'x', buffer[0]);
}

TEST_F(FailingFile, MissingFolderIs63AtOpenWhenSaving) {
    expect_save_failure(folder.wide("missing/a.pia"), PM_ERR_NO_SUCH_FILE, open_place);
}

TEST_F(FailingFile, UnreadableFileIs61) {
    const std::u16string name = folder.write("secret.pia", pm::test::pia_header);
    const pm::test::UnreadableFile secret(folder / "secret.pia");
    expect_load_failure(name, PM_ERR_ACCESS_DENIED, open_place);
}

TEST_F(FailingFile, UnwritableFileIs61) {
    const std::u16string name = folder.write("fixed.pia", pm::test::pia_header);
    std::filesystem::permissions(folder / "fixed.pia", std::filesystem::perms(0444));
    {
        const pm::test::DroppedPrivileges dropped;
        expect_save_failure(name, PM_ERR_ACCESS_DENIED, open_place);
    }
    EXPECT_EQ(pm::test::pia_header, folder.read("fixed.pia"));
}

TEST_F(FailingFile, ShortFileIs82WhateverFailedBefore) {
    const std::u16string name = folder.write("empty.pia", "");
    errno = ENOENT;
    expect_load_failure(name, PM_ERR_STREAM_FAILED, u"PM_PIAFile::getVersion()");
}

TEST_F(FailingFile, ShortStreamIs82WithoutAName) {
    std::stringstream stream;
    errno = ENOENT;
    expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_PIA, u"\\"); }, PM_ERR_STREAM_FAILED,
                             u"PM_PIAFile::getVersion()", u"");
}

TEST_F(FailingFile, StreamThatHasFailedIs82) {
    std::stringstream stream = pm::test::byte_stream(pm::test::pia_header);
    stream.setstate(std::ios::failbit);
    errno = EACCES;
    expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_PIA, u"\\"); }, PM_ERR_STREAM_FAILED,
                             u"PM_PIAFile::getVersion()", u"");
    expect_thrown<PM_Severe>([&] { object.save(stream, PM_Object::FILE_PIA, u"", u"\\"); },
                             PM_ERR_STREAM_FAILED, u"PM_PIAFile::save()", u"");
}

} // namespace

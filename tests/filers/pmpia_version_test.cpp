#include "filers/pmpia.h"

#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/recording_handler.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace {

using pm::test::expect_thrown;
using pm::test::load_bytes;
using pm::test::RecordingHandler;
using pm::test::SourceRecordingHandler;
using pm::test::TempFolder;

constexpr const char16_t* place = u"PM_PIAFile::getVersion()";

// The version line of a file of these bytes.
std::u16string version_of(const std::string& bytes) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", bytes);
    const PM_Object object;
    char16_t buffer[2048] = {};
    object.getFileVersion(name.c_str(), buffer, PM_Object::FILE_PCP);
    return buffer;
}

void expect_no_version(const std::string& bytes) {
    SCOPED_TRACE(bytes.substr(0, 40));
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", bytes);
    const PM_Object object;
    char16_t buffer[2048] = {u'x'};
    expect_thrown<PM_Severe>([&] { object.getFileVersion(name.c_str(), buffer, PM_Object::FILE_PCP); },
                             PM_ERR_STREAM_FAILED, place, name);
    EXPECT_EQ(u'x', buffer[0]);
}

void expect_not_pia(const std::string& bytes) {
    SCOPED_TRACE(bytes.substr(0, 40));
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", bytes);
    PM_Object object;
    expect_thrown<ZT_Exception>([&] { object.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); },
                                PM_ERR_NOT_A_HEADER, place, name);
    EXPECT_TRUE(pm::test::tree_text(object).empty());
}

TEST(PiaVersion, IsTheFirstLineOfTheFile) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,a tag", version_of("PIAFILEVERSION_2.0,a tag\r\na=1\n"));
    EXPECT_EQ(u"PIAFILEVERSION_1.0,a tag", version_of("PIAFILEVERSION_1.0,a tag\r\na=1\n"));
    EXPECT_EQ(u"PIAFILEVERSION_2.0,DX4200CFG_1.0",
              version_of(TempFolder::read_file(PM_SAMPLES "/plotter.pia")));
}

TEST(PiaVersion, OfACompressedFileIsItsHeader) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,DX4200CFG_1.0,compress",
              version_of(TempFolder::read_file(PM_SAMPLES "/plotter-compressed.pia")));
}

TEST(PiaVersion, EmptyLinesInFrontAreSkipped) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t", version_of("\n\n\nPIAFILEVERSION_2.0,t\n"));
}

TEST(PiaVersion, LineThatStartsWithAZeroByteIsEmpty) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t", version_of(std::string("\0x\n", 3) + "PIAFILEVERSION_2.0,t\n"));
}

TEST(PiaVersion, EndsAtAZeroByte) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0", version_of("PIAFILEVERSION_2.0" + std::string(1, '\0') + ",t\n"));
}

TEST(PiaVersion, LineOfACarriageReturnIsNoEmptyLine) {
    expect_not_pia("\r\nPIAFILEVERSION_2.0,t\r\n");
}

TEST(PiaVersion, LineOfBlanksIsNoEmptyLine) {
    expect_not_pia("  \nPIAFILEVERSION_2.0,t\r\n");
}

TEST(PiaVersion, BlanksAndTabsInFrontAreSkipped) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t", version_of("\n \t  PIAFILEVERSION_2.0,t\r\n"));
}

TEST(PiaVersion, OtherWhiteSpaceInFrontIsNotSkipped) {
    expect_not_pia("\vPIAFILEVERSION_2.0,t\r\n");
}

TEST(PiaVersion, OneCarriageReturnAtTheEndIsRemoved) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t\r", version_of("PIAFILEVERSION_2.0,t\r\r\n"));
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t", version_of("PIAFILEVERSION_2.0,t\n"));
}

TEST(PiaVersion, BlanksAtTheEndStay) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,t  ", version_of("PIAFILEVERSION_2.0,t  \r\n"));
}

TEST(PiaVersion, IsComparedWithoutCaseAndOverItsLengthOnly) {
    EXPECT_EQ(u"piaFileversion_2.0", version_of("piaFileversion_2.0\r\n"));
    EXPECT_EQ(u"PIAFILEVERSION_2.01beta", version_of("PIAFILEVERSION_2.01beta\r\n"));
    EXPECT_EQ(u"PIAFILEVERSION_1.0 t", version_of("PIAFILEVERSION_1.0 t\r\n"));
}

TEST(PiaVersion, OtherHeadersAreNotPia) {
    for (const char* header :
         {"PIAFILEVERSION_3.0,t\r\n", "PIAFILEVERSION_2\r\n", "PIAFILEVERSION\r\n", "a=1\n",
          "xPIAFILEVERSION_2.0,t\r\n", "\xEF\xBB\xBFPIAFILEVERSION_2.0,t\r\n"}) {
        expect_not_pia(header);
    }
}

TEST(PiaVersion, OtherHeaderIsReportedAndLoadedOn) {
    SourceRecordingHandler handler;
    PM_Object object(&handler);
    load_bytes(object, "another header\na=1\n");
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(PM_ERR_NOT_A_HEADER, handler.reports[0].number);
    EXPECT_EQ(place, handler.reports[0].place);
    EXPECT_EQ(u"", handler.reports[0].detail);
    EXPECT_EQ(u"$Workfile: pmpia $ $Revision: #1 $", handler.sources[0]);
    EXPECT_EQ(pm::test::Lines{"a long 1"}, pm::test::tree_text(object));
}

TEST(PiaVersion, OtherHeaderIsCancelledByTheHandler) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", "another header\na=1\n");
    RecordingHandler handler(0);
    PM_Object object(&handler);
    expect_thrown<ZT_Canceled_Error>([&] { object.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); },
                                     PM_ERR_NOT_A_HEADER, place, name);
    EXPECT_TRUE(pm::test::tree_text(object).empty());
}

TEST(PiaVersion, FileWithoutALineFeedFails) {
    expect_no_version("");
    expect_no_version("\n\n");
    expect_no_version("PIAFILEVERSION_2.0,t");
    expect_no_version("PIAFILEVERSION_2.0,t\r");
}

TEST(PiaVersion, HeaderOf1023BytesIsRead) {
    const std::string header = "PIAFILEVERSION_2.0," + std::string(1023 - 19, 'x');
    EXPECT_EQ(1023U, version_of(header + "\n").size());
}

TEST(PiaVersion, HeaderOf1024BytesFails) {
    const std::string header = "PIAFILEVERSION_2.0," + std::string(1024 - 19, 'x');
    expect_no_version(header + "\na=1\n");
    expect_no_version(header + std::string(100'000, 'x') + "\na=1\n");
}

TEST(PiaVersion, CarriageReturnCountsForTheLength) {
    const std::string header = "PIAFILEVERSION_2.0," + std::string(1022 - 19, 'x');
    EXPECT_EQ(1022U, version_of(header + "\r\n").size());
    expect_no_version(header + "x\r\n");
}

TEST(PiaVersion, IsCutToTheBuffer) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", "PIAFILEVERSION_2.0,t\r\n");
    const PM_Object object;
    for (const std::size_t size : {1U, 4U, 20U, 21U}) {
        char16_t buffer[32] = {};
        buffer[size] = u'x';
        object.getFileVersion(name.c_str(), buffer, size, PM_Object::FILE_PCP);
        EXPECT_EQ(std::u16string(u"PIAFILEVERSION_2.0,t").substr(0, size - 1), buffer);
        EXPECT_EQ(u'x', buffer[size]);
    }
}

TEST(PiaVersion, IsDecodedWithTheSystemsCodePage) {
    EXPECT_EQ(u"PIAFILEVERSION_2.0,\u00E4", version_of("PIAFILEVERSION_2.0,\xE4\r\n"));
    const pm::test::ScopedCodePage cyrillic(1251);
    EXPECT_EQ(u"PIAFILEVERSION_2.0,\u0434", version_of("PIAFILEVERSION_2.0,\xE4\r\n"));
}

TEST(PiaVersion, IsDecodedWithTheSystemsCodePageAlsoByAReaderOfUtf8) {
    PM_PIAFile filer(nullptr);
    std::stringstream stream = pm::test::byte_stream("PIAFILEVERSION_2.0,\xC3\xA4\r\n");
    filer.set_utf8(true);
    filer.attach(&stream);
    char16_t buffer[64] = {};
    filer.getVersion(buffer, 64);
    EXPECT_EQ(std::u16string(u"PIAFILEVERSION_2.0,\u00C3\u00A4"), buffer);
}

// A reader of another type sees the header without a check.
class OtherReader : public PM_PIAFile {
public:
    explicit OtherReader(PM_Object::FileType type) : PM_PIAFile(nullptr) { m_file_type = type; }
};

TEST(PiaVersion, IsNotCheckedForAnotherFileType) {
    for (const auto type :
         {PM_Object::FILE_PCP, PM_Object::FILE_PC2, PM_Object::FILE_PDT, PM_Object::FILE_CFG}) {
        OtherReader reader(type);
        std::stringstream stream = pm::test::byte_stream("\n  something else\r\n");
        reader.attach(&stream);
        char16_t buffer[64] = {};
        reader.getVersion(buffer, 64);
        EXPECT_EQ(std::u16string(u"something else"), buffer);
    }
}

TEST(PiaVersion, IsReadFromTheStreamsStart) {
    OtherReader reader(PM_Object::FILE_PIA);
    std::stringstream stream = pm::test::byte_stream("PIAFILEVERSION_2.0,t\nmore\n");
    stream.seekg(0, std::ios::end);
    stream.get();
    ASSERT_TRUE(stream.eof());
    stream.clear(std::ios::eofbit);
    reader.attach(&stream);
    char16_t buffer[64] = {};
    reader.getVersion(buffer, 64);
    EXPECT_EQ(std::u16string(u"PIAFILEVERSION_2.0,t"), buffer);
}

} // namespace

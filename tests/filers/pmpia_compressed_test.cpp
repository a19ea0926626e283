#include "filers/pia_blocks.h"
#include "filers/pia_text.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace {

using pm::test::Block;
using pm::test::block_of;
using pm::test::byte_stream;
using pm::test::expect_thrown;
using pm::test::Lines;
using pm::test::load_bytes;
using pm::test::loaded_bytes;
using pm::test::RecordingHandler;
using pm::test::saved;
using pm::test::ScopedVariable;
using pm::test::temp_folder_variable;
using pm::test::TempFolder;
using pm::test::tree_text;

const std::string body("a=1\nx{\n b=\"text\n}\n\0", 19);
const Lines body_tree = {"a long 1", "x\\b string text"};

std::string header_of(bool checked) {
    return checked ? "PIAFILEVERSION_2.0,t,compress\r\n" : "PIAFILEVERSION_1.0,t,compress\r\n";
}

std::string file_of(const Block& block) {
    return header_of(block.checked) + block.bytes();
}

// What doesn't decode: the codec's numbers go to the handler, 84 to the caller.
void expect_not_decoded(const std::string& bytes, const std::vector<std::uint32_t>& codec_numbers) {
    PM_Object object;
    expect_thrown<PM_Severe>([&] { load_bytes(object, bytes); }, PM_ERR_NOT_DECODED, u".\\pmpia",
                             u"decompression of PIA data failed");
    EXPECT_TRUE(tree_text(object).empty());

    RecordingHandler handler;
    PM_Object told(&handler);
    expect_thrown<PM_Severe>([&] { load_bytes(told, bytes); }, PM_ERR_NOT_DECODED, u".\\pmpia",
                             u"decompression of PIA data failed");
    EXPECT_EQ(codec_numbers, handler.numbers());
    EXPECT_TRUE(tree_text(told).empty());
}

class PiaCompressed : public testing::TestWithParam<bool> {
protected:
    Block block = block_of(body, GetParam());
};

INSTANTIATE_TEST_SUITE_P(PlainAndChecked, PiaCompressed, testing::Bool());

TEST_P(PiaCompressed, BodyIsLoadedInBothVersions) {
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block)));
}

TEST_P(PiaCompressed, AnyCompressionLevelIsRead) {
    for (const int level : {0, 1, 6, 9}) {
        EXPECT_EQ(body_tree, loaded_bytes(file_of(block_of(body, GetParam(), level))));
    }
}

TEST_P(PiaCompressed, WordCompressMayStandAnywhereInTheHeader) {
    for (const char* tail : {"compress\r\n", ",compress\n", ",uncompressed tag\r\n", "x,compressed,y\r\n"}) {
        EXPECT_EQ(body_tree, loaded_bytes(header_of(GetParam()).substr(0, 18) + tail + block.bytes()));
    }
}

TEST_P(PiaCompressed, WordInAnotherCaseMeansAPlainBody) {
    EXPECT_EQ(body_tree, loaded_bytes(header_of(GetParam()).substr(0, 18) + ",Compress\r\n" + body));
}

TEST_P(PiaCompressed, WordBehindThe511thUnitOfTheHeaderIsNotSeen) {
    const std::string version = header_of(GetParam()).substr(0, 18);
    const std::string seen = version + std::string(511 - 18 - 8, 'x') + "compress\n";
    const std::string cut = version + std::string(512 - 18 - 8, 'x') + "compress\n";
    EXPECT_EQ(body_tree, loaded_bytes(seen + block.bytes()));
    EXPECT_EQ(body_tree, loaded_bytes(cut + body));
}

TEST_P(PiaCompressed, BlockMayStandBehindOtherText) {
    EXPECT_EQ(body_tree, loaded_bytes(header_of(GetParam()) + "some text\n" + block.bytes() + "more"));
}

TEST_P(PiaCompressed, EmptyLinesMayStandInFrontOfTheHeader) {
    EXPECT_EQ(body_tree, loaded_bytes("\n\n " + file_of(block)));
}

TEST_P(PiaCompressed, LinesGoOnCountingFromTheHeader) {
    RecordingHandler handler;
    PM_Object object(&handler);
    load_bytes(object, "\n" + file_of(block_of("a=1\n\nb=\n", GetParam())));
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(u"\n4, b=, ", handler.reports[0].detail);
}

TEST_P(PiaCompressed, HeaderInsideTheBodyIsALineOfIt) {
    PM_Object object;
    expect_thrown<PM_Error>(
        [&] { load_bytes(object, file_of(block_of("PIAFILEVERSION_2.0,t\r\na=1\n", GetParam()))); },
        PM_ERR_BAD_LINE, u"PM_PIAFile::load()", u"\n2, PIAFILEVERSION_2.0,t\r, ");
}

TEST_P(PiaCompressed, EmptyBodyLoadsNothing) {
    EXPECT_EQ(Lines{}, loaded_bytes(file_of(block_of("", GetParam()))));
}

TEST_P(PiaCompressed, BodyOfManyBlocksOfTheReaderIsLoaded) {
    std::string text;
    Lines tree;
    for (int i = 0; i < 5000; ++i) {
        text += "p" + std::to_string(i) + "=" + std::to_string(i) + "\n";
        tree.push_back("p" + std::to_string(i) + " long " + std::to_string(i));
    }
    EXPECT_EQ(tree, loaded_bytes(file_of(block_of(text, GetParam()))));
}

TEST_P(PiaCompressed, MemoryServesWithoutATemporaryFolder) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, (folder / "missing").string());
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block)));
}

TEST_P(PiaCompressed, NoTemporaryFileIsLeftWhateverHappens) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, folder.path().string());
    loaded_bytes(file_of(block));
    PM_Object object;
    expect_thrown<PM_Error>([&] { load_bytes(object, file_of(block_of("bad line\n", GetParam()))); },
                            PM_ERR_BAD_LINE, u"PM_PIAFile::load()", u"\n2, bad line, ");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_P(PiaCompressed, EmptyBodyNeedsNoTemporaryFolder) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, (folder / "missing").string());
    EXPECT_EQ(Lines{}, loaded_bytes(file_of(block_of("", GetParam()))));
}

// A handler that ends a load in its own way.
class ThrowingHandler : public pm::ReportHandler {
public:
    struct Stop {};
    pm::Answer on_report(int, std::uint32_t, std::u16string_view, std::u16string_view) override {
        throw Stop();
    }
};

TEST_P(PiaCompressed, ExceptionOfAHandlersOwnEndsTheLoadAndNothingElse) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, folder.path().string());
    ThrowingHandler handler;
    PM_Object object(&handler);
    EXPECT_THROW(load_bytes(object, file_of(block_of("a=1\nx{\nb=yes\nc=2\n", GetParam()))),
                 ThrowingHandler::Stop);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
    object.SetProperty(u"x\\b", 3);
    load_bytes(object, file_of(block_of("x{\nc=2\n", GetParam())));
    EXPECT_EQ((Lines{"a long 1", "x\\b long 3", "x\\c long 2"}), tree_text(object));
}

// A body that may be larger than what is held in memory.
std::string large_text(int lines) {
    std::string text;
    for (int line = 0; line < lines; ++line)
        text += ";" + std::string(1000, static_cast<char>('a' + line % 26)) + "\n";
    return text;
}

TEST_P(PiaCompressed, LargeBodyIsLoaded) {
    const std::string text = "a=1\n" + large_text(17'000) + "x{\n b=\"text\n}\n";
    ASSERT_GT(text.size(), std::size_t{16} << 20);
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block_of(text, GetParam()))));
}

TEST_P(PiaCompressed, LargeBodyThatBreaksLoadsNothing) {
    Block large = block_of("a=1\n" + large_text(17'000), GetParam());
    large.stream.back() = static_cast<char>(large.stream.back() ^ 1);
    expect_not_decoded(file_of(large), {PM_ERR_INFLATE});
}

TEST_P(PiaCompressed, LargeBodyLongerThanToldLoadsNothing) {
    Block large = block_of("a=1\n" + large_text(17'000), GetParam());
    large.length -= 1;
    expect_not_decoded(file_of(large), {PM_ERR_INFLATE});
}

TEST_P(PiaCompressed, LargeBodyShorterThanToldIsTakenAsItIs) {
    Block large = block_of(body + large_text(17'000), GetParam());
    large.length += 1'000'000;
    EXPECT_EQ(body_tree, loaded_bytes(file_of(large)));
}

TEST_P(PiaCompressed, ShorterStreamThanToldIsTakenAsItIs) {
    block.length += 100;
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block)));
}

TEST_P(PiaCompressed, BytesBehindTheStreamMayBeCountedIn) {
    block.stream_length += 4;
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block) + "more"));
}

TEST_P(PiaCompressed, StreamBehindTheFilesEndIs84WithoutAskingTheCodec) {
    for (const std::uint32_t told : {block.stream_length + 1, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        block.stream_length = told;
        expect_not_decoded(file_of(block), {});
    }
}

TEST_P(PiaCompressed, MissingBlockIs84) {
    expect_not_decoded(header_of(GetParam()), {PM_ERR_NO_BLOCK});
    expect_not_decoded(header_of(GetParam()) + body, {PM_ERR_NO_BLOCK});
    expect_not_decoded(header_of(GetParam()) + "pmzlibcode", {PM_ERR_NO_BLOCK});
}

TEST_P(PiaCompressed, BlockBehindAZeroByteIs84) {
    expect_not_decoded(header_of(GetParam()) + std::string(1, '\0') + block.bytes(), {PM_ERR_NO_BLOCK});
}

TEST_P(PiaCompressed, TagInTheHeaderIsTakenForTheBlock) {
    expect_not_decoded(header_of(GetParam()).substr(0, 18) + ",pmzlibcodec,compress, and text behind it\r\n" +
                           block.bytes(),
                       {});
}

TEST_P(PiaCompressed, LongerStreamThanToldIs84) {
    block.length -= 1;
    expect_not_decoded(file_of(block), {PM_ERR_INFLATE});
}

TEST_P(PiaCompressed, CutStreamIs84) {
    block.stream_length -= 1;
    expect_not_decoded(file_of(block), {PM_ERR_INFLATE});
}

TEST_P(PiaCompressed, CutFileIs84) {
    const std::string file = file_of(block);
    const std::size_t tag_end = file.find("pmzlibcodec") + 11;
    for (std::size_t size = tag_end; size < file.size(); ++size) {
        SCOPED_TRACE(size);
        expect_not_decoded(file.substr(0, size), {});
    }
}

TEST_P(PiaCompressed, SpoiledStreamIs84) {
    for (std::size_t at = 0; at < block.stream.size(); ++at) {
        SCOPED_TRACE(at);
        Block spoiled = block;
        spoiled.stream[at] = static_cast<char>(spoiled.stream[at] ^ 0xFF);
        expect_not_decoded(file_of(spoiled), {PM_ERR_INFLATE});
    }
}

TEST_P(PiaCompressed, BlockOfTheOtherVersionIs84) {
    // The first bytes of the stream count as its length, or the data's length as that of the stream.
    const std::vector<std::uint32_t> numbers =
        GetParam() ? std::vector<std::uint32_t>{PM_ERR_INFLATE} : std::vector<std::uint32_t>{};
    expect_not_decoded(header_of(!GetParam()) + block.bytes(), numbers);
}

// The largest block that was asked for.
std::size_t largest_request = 0;

TEST_P(PiaCompressed, HostileLengthsTakeNoMemory) {
    for (const std::uint32_t stream_length : {0U, 1U, block.stream_length, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        for (const std::uint32_t length : {0U, 0x7FFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
            Block hostile = block;
            hostile.stream_length = stream_length;
            hostile.length = length;
            largest_request = 0;
            pm::set_allocation_filter([](std::size_t size) {
                largest_request = std::max(largest_request, size);
                return false;
            });
            PM_Object object;
            pm::test::thrown_by([&] { load_bytes(object, file_of(hostile)); });
            pm::set_allocation_filter(nullptr);
            EXPECT_LE(largest_request, std::size_t{200'000});
        }
    }
}

TEST_P(PiaCompressed, HostileLengthOfAReadableStreamIsTakenForItsOwn) {
    block.length = 0xFFFFFFFF;
    EXPECT_EQ(body_tree, loaded_bytes(file_of(block)));
}

TEST(PiaChecked, WrongCheckWordIsNoError) {
    Block block = block_of(body);
    for (const std::uint32_t check : {0U, block.check ^ 1U, 0xFFFFFFFFU}) {
        block.check = check;
        EXPECT_EQ(body_tree, loaded_bytes(file_of(block)));
    }
}

TEST(PiaCompressedHeader, VersionInAnotherCaseGivesNoLines) {
    for (const std::string& bytes : {block_of(body).bytes(), body, std::string()}) {
        EXPECT_EQ(Lines{}, loaded_bytes("piafileversion_2.0,compress\r\n" + bytes));
    }
}

TEST(PiaCompressedHeader, NoVersionGivesNoLinesWhenTheHandlerLetsItPass) {
    RecordingHandler handler;
    PM_Object object(&handler);
    load_bytes(object, "something,compress\r\n" + body);
    EXPECT_EQ(std::vector<std::uint32_t>{PM_ERR_NOT_A_HEADER}, handler.numbers());
    EXPECT_TRUE(tree_text(object).empty());
}

TEST(PiaCompressedHeader, NoMemoryForTheFileIs55) {
    std::size_t too_large = 100'000;
    const std::string bytes = header_of(true) + std::string(too_large, 'x');
    pm::set_allocation_filter([](std::size_t size) { return size >= 100'000; });
    PM_Object object;
    expect_thrown<PM_Memory_Exception>([&] { load_bytes(object, bytes); }, PM_ERR_NO_MEMORY, u".\\pmpia",
                                       u"buffer");
    pm::set_allocation_filter(nullptr);
}

// Saving.

void fill(PM_Object& object) {
    object.SetProperty(u"a", 1);
    const char16_t* const text = u"text";
    object.SetProperty(u"x\\b", text);
}

TEST(PiaCompressedSave, CheckedBlockStandsBehindTheHeader) {
    PM_Object object;
    fill(object);
    const std::string bytes = saved(object, u"x,compress");
    const std::string header = "PIAFILEVERSION_2.0,x,compress\r\n";
    ASSERT_EQ(header, bytes.substr(0, header.size()));

    Block expected = block_of(body);
    expected.stream = bytes.substr(header.size() + 23);
    expected.stream_length = static_cast<std::uint32_t>(expected.stream.size());
    expected.check = static_cast<std::uint32_t>(
        adler32(1, reinterpret_cast<const Bytef*>(expected.stream.data()), expected.stream_length));
    EXPECT_EQ(header + expected.bytes(), bytes);

    std::string text(body.size(), 'x');
    auto size = static_cast<uLongf>(text.size());
    ASSERT_EQ(Z_OK,
              uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                         reinterpret_cast<const Bytef*>(expected.stream.data()), expected.stream_length));
    EXPECT_EQ(body, text);
}

TEST(PiaCompressedSave, ReadsBack) {
    PM_Object object;
    fill(object);
    EXPECT_EQ(body_tree, loaded_bytes(saved(object, u"compress")));
    EXPECT_EQ(Lines{}, loaded_bytes(saved(PM_Object(), u"compress")));
}

TEST(PiaCompressedSave, Utf8CountsForHeaderAndBody) {
    PM_Object object;
    const char16_t* const text = u"\u4E2D";
    object.SetProperty(u"a", text);
    const std::string bytes = saved(object, u"compress \u00E4", u"\\", true);
    EXPECT_EQ("PIAFILEVERSION_2.0,compress \xC3\xA4\r\n", bytes.substr(0, bytes.find('\n') + 1));
    EXPECT_EQ(Lines{"a string \u00E4\u00B8\u00AD"}, loaded_bytes(bytes));
}

TEST(PiaCompressedSave, NoTemporaryFileIsLeftWhateverHappens) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, folder.path().string());
    PM_Object object;
    fill(object);
    saved(object, u"compress");
    object.setVoidProperty(u"v", nullptr, 0);
    expect_thrown<PM_Warning>([&] { saved(object, u"compress"); }, PM_ERR_NO_VALUE, u"PM_Property::GetData()",
                              u"v");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(PiaCompressedSave, MemoryServesWithoutATemporaryFolder) {
    PM_Object object;
    fill(object);
    const std::string expected = saved(object, u"compress");
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, (folder / "missing").string());
    EXPECT_EQ(expected, saved(object, u"compress"));
}

TEST(PiaCompressedSave, MissingTemporaryFolderIsNotBlamedForAFailedStream) {
    const TempFolder folder;
    const ScopedVariable temp(temp_folder_variable, (folder / "missing").string());
    std::stringstream stream = byte_stream("");
    const PM_Object object;
    // Fails in the middle of the work for no reason of the system's.
    struct RefusingBuffer : std::stringbuf {
        std::streamsize xsputn(const char* bytes, std::streamsize count) override {
            return std::string_view(bytes, static_cast<std::size_t>(count)).starts_with("pm")
                       ? 0
                       : std::stringbuf::xsputn(bytes, count);
        }
    } buffer;
    std::iostream refusing(&buffer);
    expect_thrown<PM_Severe>([&] { object.save(refusing, PM_Object::FILE_PIA, u"compress", u"\\"); },
                             PM_ERR_STREAM_FAILED, u"PM_PIAFile::save()", u"");
}

TEST(PiaCompressedSave, BodyThatDoesNotEncodeIs85) {
    PM_Object object;
    fill(object);
    pm::set_allocation_filter([](std::size_t size) { return size >= 22 && size <= 34; });
    std::stringstream stream = byte_stream("");
    const auto e = pm::test::thrown_by([&] { object.save(stream, PM_Object::FILE_PIA, u"compress", u"\\"); });
    pm::set_allocation_filter(nullptr);
    ASSERT_TRUE(e);
    EXPECT_EQ(PM_ERR_NOT_ENCODED, e->m_number);
    EXPECT_EQ(std::u16string(u".\\pmpia"), e->m_place);
    EXPECT_EQ(std::u16string(u"compression of PIA data failed"), e->m_detail);
    EXPECT_EQ("PIAFILEVERSION_2.0,compress\r\n", stream.str());
}

// Files that are there already.

TEST(PiaCompressedReference, BothVersionsGiveTheTreeOfThePlainFile) {
    PM_Object plain;
    load_bytes(plain, TempFolder::read_file(PM_TEST_DATA "/pia/types.pia"));
    for (const char* name : {"/pia/types-1.0-compressed.pia", "/pia/types-2.0-compressed.pia"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(tree_text(plain), loaded_bytes(TempFolder::read_file(std::string(PM_TEST_DATA) + name)));
    }
}

TEST(PiaCompressedReference, SampleGivesTheTreeOfThePlainSample) {
    PM_Object plain;
    load_bytes(plain, TempFolder::read_file(PM_SAMPLES "/plotter.pia"));
    EXPECT_EQ(tree_text(plain), loaded_bytes(TempFolder::read_file(PM_SAMPLES "/plotter-compressed.pia")));
}

} // namespace

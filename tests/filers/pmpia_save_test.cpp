#include "filers/pmpia.h"

#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <limits>
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace {

using pm::test::byte_stream;
using pm::test::expect_thrown;
using pm::test::Lines;
using pm::test::pia_header;
using pm::test::saved;
using pm::test::TempFolder;
using pm::test::tree_text;

const std::string end(1, '\0');

void set_text(PM_Object& object, const char16_t* path, const std::u16string& text) {
    const char16_t* const value = text.c_str();
    object.SetProperty(path, value);
}

// A property of any type and bytes.
class OpenObject : public PM_Object {
public:
    using PM_Object::setData;
};

TEST(PiaSave, EmptyTreeIsAHeaderAndAZeroByte) {
    EXPECT_EQ("PIAFILEVERSION_2.0,test\r\n" + end, saved(PM_Object()));
}

TEST(PiaSave, TagStandsInTheHeaderAsItIs) {
    EXPECT_EQ("PIAFILEVERSION_2.0,\r\n" + end, saved(PM_Object(), u""));
    EXPECT_EQ("PIAFILEVERSION_2.0,\r\n" + end, saved(PM_Object(), nullptr));
    EXPECT_EQ("PIAFILEVERSION_2.0, a,b Compress\r\n" + end, saved(PM_Object(), u" a,b Compress"));
}

TEST(PiaSave, TypesHaveTheirForms) {
    PM_Object object;
    object.SetProperty(u"long", -42);
    object.SetProperty(u"low", std::numeric_limits<int>::min());
    object.SetProperty(u"short", 2.5);
    object.SetProperty(u"whole", 5.0);
    object.SetProperty(u"exact", 1.0 / 3);
    object.SetProperty(u"yes", true);
    object.SetProperty(u"no", false);
    set_text(object, u"text", u"a \"text\" = {b}");
    set_text(object, u"empty", u"");
    object.setVoidProperty(u"raw", "\x00\xAB\xFF", 3);
    EXPECT_EQ(pia_header +
                  "long=-42\nlow=-2147483648\nshort=2.5\nwhole=5.0\nexact=0.33333333333 "
                  "(55555555U3_#T@)\nyes=TRUE\n"
                  "no=FALSE\ntext=\"a \"text\" = {b}\nempty=\"\nraw=\\00ABFF\\\n" +
                  end,
              saved(object));
}

TEST(PiaSave, NegativeZeroLosesItsSign) {
    PM_Object object;
    object.SetProperty(u"a", -0.0);
    EXPECT_EQ(pia_header + "a=0.0\n" + end, saved(object));
}

TEST(PiaSave, TraceOfNestedBlocks) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"X\\b", 2);
    object.SetProperty(u"X\\Y\\c", 3);
    object.SetProperty(u"X\\Z\\gone", 0);
    object.deletePath(u"X\\Z\\gone");
    object.SetProperty(u"W\\d", 4);
    EXPECT_EQ(pia_header + "a=1\nX{\n b=2\n Y{\n  c=3\n }\n Z{\n }\n}\nW{\n d=4\n}\n" + end, saved(object));
}

TEST(PiaSave, PropertiesComeBeforeChildren) {
    PM_Object object;
    object.SetProperty(u"x\\y\\a", 1);
    object.SetProperty(u"x\\b", 2);
    object.SetProperty(u"c", 3);
    EXPECT_EQ(pia_header + "c=3\nx{\n b=2\n y{\n  a=1\n }\n}\n" + end, saved(object));
}

TEST(PiaSave, SubtreeStandsAtTheTopWithoutItsName) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"x\\b", 2);
    object.SetProperty(u"x\\y\\c", 3);
    object.SetProperty(u"z\\d", 4);
    EXPECT_EQ(pia_header + "b=2\ny{\n c=3\n}\n" + end, saved(object, u"test", u"x"));
    EXPECT_EQ(pia_header + "c=3\n" + end, saved(object, u"test", u"\\x\\y\\"));
    EXPECT_EQ(pia_header + "d=4\n" + end, saved(object, u"test", u"z"));
}

TEST(PiaSave, MissingNodeOfKnownNamesIsAnEmptyTree) {
    PM_Object object;
    object.SetProperty(u"x\\a", 1);
    object.SetProperty(u"y\\a", 1);
    EXPECT_EQ(pia_header + end, saved(object, u"test", u"y\\x"));
    EXPECT_EQ(pia_header + end, saved(object, u"test", u"a"));
}

TEST(PiaSave, UnknownOrEmptySubtreeIs51BehindTheHeader) {
    const PM_Object object;
    for (const char16_t* subtree : {u"unknown", u"", u"\\\\"}) {
        std::stringstream stream = byte_stream("");
        expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PIA, u"test", subtree); },
                                  PM_ERR_BAD_PATH, u"PM_Iterator::PM_Iterator()", subtree);
        EXPECT_EQ(pia_header, stream.str());
    }
}

TEST(PiaSave, NullSubtreeIs51) {
    std::stringstream stream = byte_stream("");
    expect_thrown<PM_Warning>([&] { PM_Object().save(stream, PM_Object::FILE_PIA, u"test", nullptr); },
                              PM_ERR_BAD_PATH, u"PM_Iterator::PM_Iterator()", u"");
}

TEST(PiaSave, StreamIsWrittenFromItsStart) {
    std::stringstream stream = byte_stream("0123456789012345678901234567890123456789");
    stream.seekp(10);
    PM_Object().save(stream, PM_Object::FILE_PIA, u"test", u"\\");
    EXPECT_EQ(pia_header + end + "67890123456789", stream.str());
}

TEST(PiaSave, StreamAtItsEndFails) {
    std::stringstream stream = byte_stream("");
    stream.setstate(std::ios::eofbit);
    expect_thrown<PM_Severe>([&] { PM_Object().save(stream, PM_Object::FILE_PIA, u"test", u"\\"); },
                             PM_ERR_STREAM_FAILED, u"PM_PIAFile::save()", u"");
}

TEST(PiaSave, OnlyTypePiaGetsAHeader) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    for (const auto type : {PM_Object::FILE_PCP, PM_Object::FILE_DPIA, PM_Object::FILE_DOC}) {
        std::stringstream stream = byte_stream("");
        PM_PIAFile filer(nullptr);
        filer.attach(&stream);
        filer.save(&object, u"\\", type, u"test");
        EXPECT_EQ("a=1\n" + end, stream.str());
    }
}

// Text.

TEST(PiaSaveText, GoesOutInTheSystemsCodePage) {
    PM_Object object;
    set_text(object, u"\u00E4\\\u00FC", u"\u20AC\u4E2D");
    EXPECT_EQ("PIAFILEVERSION_2.0,\xDF\r\n\xE4{\n \xFC=\"\x80?\n}\n" + end, saved(object, u"\u00DF"));
    const pm::test::ScopedCodePage cyrillic(1251);
    EXPECT_EQ("PIAFILEVERSION_2.0,\xE4\r\n?{\n ?=\"\x88?\n}\n" + end, saved(object, u"\u0434"));
}

TEST(PiaSaveText, GoesOutAsUtf8WhenAskedFor) {
    PM_Object object;
    set_text(object, u"\u00E4\\\u00FC", u"\u20AC\U0001F600");
    EXPECT_EQ("PIAFILEVERSION_2.0,\xC3\x9F\r\n\xC3\xA4{\n \xC3\xBC=\"\xE2\x82\xAC\xF0\x9F\x98\x80\n}\n" + end,
              saved(object, u"\u00DF", u"\\", true));
}

TEST(PiaSaveText, Utf8ReadsBackWithTheSystemsCodePage) {
    PM_Object object;
    set_text(object, u"a", u"\u00E4");
    PM_Object again;
    pm::test::load_bytes(again, saved(object, u"test", u"\\", true));
    EXPECT_EQ(Lines{"a string \u00C3\u00A4"}, tree_text(again));
}

TEST(PiaSaveText, UnpairedSurrogatesBecomeQuestionMarks) {
    PM_Object object;
    set_text(object, u"a", std::u16string(u"x") + char16_t(0xD800) + u"y");
    EXPECT_EQ(pia_header + "a=\"x?y\n" + end, saved(object, u"test", u"\\", true));
}

TEST(PiaSaveText, TextEndsAtItsFirstTerminator) {
    OpenObject object;
    object.setData(u"a", u"ab\0cd", 12, PROP_STRING, -1, true);
    EXPECT_EQ(pia_header + "a=\"ab\n" + end, saved(object));
}

TEST(PiaSaveText, TextWithoutTerminatorEndsWithItsBytes) {
    OpenObject object;
    object.setData(u"a", u"abcd", 8, PROP_STRING, -1, true);
    object.setData(u"b", u"abcd", 7, PROP_STRING, -1, true);
    object.setData(u"c", u"abcd", 1, PROP_STRING, -1, true);
    EXPECT_EQ(pia_header + "a=\"abcd\nb=\"abc\nc=\"\n" + end, saved(object));
}

TEST(PiaSaveText, TextThatWasCutIsWrittenToItsLastUnit) {
    PM_Object object;
    set_text(object, u"a", std::u16string(5000, u'x'));
    EXPECT_EQ(pia_header + "a=\"" + std::string(4097, 'x') + "\n" + end, saved(object));
}

TEST(PiaSaveText, NarrowTextIsTakenForWideUnits) {
    PM_Object object;
    const auto* const text = reinterpret_cast<const unsigned char*>("abcd");
    object.SetProperty(u"a", text);
    EXPECT_EQ(pia_header + "a=\"??\n" + end, saved(object));
}

// Values that can't be written.

TEST(PiaSaveFailure, RawDataThatWasNeverSetIs59) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.setVoidProperty(u"b", nullptr, 0);
    std::stringstream stream = byte_stream("");
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PIA, u"test", u"\\"); },
                              PM_ERR_NO_VALUE, u"PM_Property::GetData()", u"b");
    EXPECT_EQ(pia_header + "a=1\n", stream.str());
}

TEST(PiaSaveFailure, RawDataOfNoBytesIs53) {
    PM_Object object;
    object.setVoidProperty(u"x\\b", "\x01", 1);
    object.setVoidProperty(u"x\\b", "", 0);
    std::stringstream stream = byte_stream("");
    expect_thrown<PM_Error>([&] { object.save(stream, PM_Object::FILE_PIA, u"test", u"\\"); },
                            PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value");
    EXPECT_EQ(pia_header + "x{\n", stream.str());
}

TEST(PiaSaveFailure, CompressedFileIsLeftWithItsHeader) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.setVoidProperty(u"b", nullptr, 0);
    std::stringstream stream = byte_stream("");
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PIA, u"compress", u"\\"); },
                              PM_ERR_NO_VALUE, u"PM_Property::GetData()", u"b");
    EXPECT_EQ("PIAFILEVERSION_2.0,compress\r\n", stream.str());
}

TEST(PiaSaveFailure, ValueLargerThanItsTypeIs58) {
    OpenObject object;
    object.setData(u"a", "12345678", 5, PROP_LONG, -1, true);
    expect_thrown<PM_Warning>([&] { saved(object); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()",
                              u"a");
}

TEST(PiaSaveFailure, PropertyOfNoTypeEndsThoseOfItsNodeSilently) {
    OpenObject object;
    object.SetProperty(u"x\\a", 1);
    object.setData(u"x\\b", "1", 1, PROP_NONE, -1, true);
    object.SetProperty(u"x\\c", 1);
    object.SetProperty(u"x\\y\\d", 1);
    object.SetProperty(u"z\\e", 1);
    EXPECT_EQ(pia_header + "x{\n a=1\n y{\n  d=1\n }\n}\nz{\n e=1\n}\n" + end, saved(object));
}

// What doesn't survive.

Lines reloaded(const PM_Object& object) {
    PM_Object again;
    pm::test::load_bytes(again, saved(object));
    return tree_text(again);
}

TEST(PiaSaveLoss, TrailingBlanksOfAString) {
    PM_Object object;
    set_text(object, u"a", u" b  ");
    set_text(object, u"c", u"   ");
    EXPECT_EQ((Lines{"a string  b", "c string "}), reloaded(object));
}

TEST(PiaSaveLoss, StringWithALineFeed) {
    PM_Object object;
    set_text(object, u"a", u"b\nc=1");
    EXPECT_EQ((Lines{"a string b", "c long 1"}), reloaded(object));
}

TEST(PiaSaveLoss, NodeWithoutProperties) {
    PM_Object object;
    object.SetProperty(u"x\\y\\a", 1);
    object.SetProperty(u"x\\z\\b", 1);
    object.deletePath(u"x\\z\\b");
    PM_Object again;
    pm::test::load_bytes(again, saved(object));
    EXPECT_EQ(Lines{"x\\y\\a long 1"}, tree_text(again));
    expect_thrown<PM_Warning>([&] { again.deletePath(u"x\\z"); }, PM_ERR_BAD_PATH, u"PM_Object::DeletePath()",
                              u"x\\z");
}

TEST(PiaSaveLoss, NodeWithAForbiddenCharacterIsNotReadBack) {
    PM_Object object;
    object.SetProperty(u"a*b\\c", 1, 7);
    object.SetProperty(u"x y\\c", 1);
    PM_Object again;
    expect_thrown<PM_Error>([&] { pm::test::load_bytes(again, saved(object)); }, PM_ERR_BAD_LINE,
                            u"PM_PIAFile::load()", u"\n5, x y, ");
    EXPECT_EQ(Lines{"a7b\\c long 1"}, tree_text(again));
}

TEST(PiaSaveLoss, PropertyNameEndsAtABlankOrEqualsSign) {
    PM_Object object;
    object.SetProperty(u"a=b", 1);
    PM_Object again;
    pm::test::RecordingHandler handler;
    PM_Object with_handler(&handler);
    pm::test::load_bytes(with_handler, saved(object));
    EXPECT_EQ(std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE}, handler.numbers());
    EXPECT_TRUE(tree_text(with_handler).empty());
}

TEST(PiaSaveLoss, NumbersThatAreNotFinite) {
    PM_Object object;
    object.SetProperty(u"a", std::numeric_limits<double>::infinity());
    object.SetProperty(u"b", -std::numeric_limits<double>::infinity());
    object.SetProperty(u"c", std::numeric_limits<double>::quiet_NaN());
    pm::test::RecordingHandler handler;
    PM_Object again(&handler);
    pm::test::load_bytes(again, saved(object));
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE, PM_ERR_UNKNOWN_VALUE, PM_ERR_UNKNOWN_VALUE}),
              handler.numbers());
    EXPECT_TRUE(tree_text(again).empty());
}

// Files that are there already.

TEST(PiaReference, SavesTheBytesOfTheReferenceFiles) {
    for (const char* name : {"types.pia", "blocks.pia"}) {
        SCOPED_TRACE(name);
        const std::string bytes = TempFolder::read_file(std::string(PM_TEST_DATA "/pia/") + name);
        PM_Object object;
        pm::test::load_bytes(object, bytes);
        EXPECT_EQ(bytes, saved(object, u"reference"));
    }
}

TEST(PiaReference, SavesTheBytesOfTheUtf8ReferenceFile) {
    const std::string bytes = TempFolder::read_file(PM_TEST_DATA "/pia/utf8.pia");
    const pm::test::ScopedCodePage utf8(65001);
    PM_Object object;
    pm::test::load_bytes(object, bytes);
    EXPECT_EQ((Lines{"Gr\u00F6\u00DFe string 297 \u00D7 420 mm \u2014 A3",
                     "\u7D19\\\u540D\u524D string \u5149\u6CA2"}),
              tree_text(object));
    EXPECT_EQ(bytes, saved(object, u"reference"));
    const pm::test::ScopedCodePage western(1252);
    EXPECT_EQ(bytes, saved(object, u"reference", u"\\", true));
}

TEST(PiaReference, SavesTheSampleByteForByte) {
    const std::string bytes = TempFolder::read_file(PM_SAMPLES "/plotter.pia");
    PM_Object object;
    pm::test::load_bytes(object, bytes);
    EXPECT_EQ(bytes, saved(object, u"DX4200CFG_1.0"));
}

TEST(PiaSaveFailure, StreamThatFailedBeforeABadValueIsToldFirst) {
    struct HeaderOnly : std::stringbuf {
        std::streamsize xsputn(const char* bytes, std::streamsize count) override {
            return std::string_view(bytes, static_cast<std::size_t>(count)).starts_with("PIAFILE")
                       ? std::stringbuf::xsputn(bytes, count)
                       : 0;
        }
    } buffer;
    std::iostream stream(&buffer);
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.setVoidProperty(u"b", nullptr, 0);
    expect_thrown<PM_Severe>([&] { object.save(stream, PM_Object::FILE_PIA, u"test", u"\\"); },
                             PM_ERR_STREAM_FAILED, u"PM_PIAFile::save()", u"");
}

} // namespace

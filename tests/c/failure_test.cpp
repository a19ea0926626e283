#include "failure.h"

#include "c/c_support.h"
#include <pm/error_number.h>
#include <pm/exception.h>
#include <stdexcept>

namespace {

using namespace pm::test;

template<class Thrown>
pm9_error told_of(const Thrown& thrown) {
    pm9_error error = c_error();
    const pm9_status status = pm::c::guarded(&error, [&] { throw thrown; });
    EXPECT_EQ(status, error.number);
    return error;
}

TEST(CFailure, CarriesNumberKindPlaceAndDetail) {
    const pm9_error error = told_of(PM_Severe(PM_ERR_NOT_READ, u"there", u"Gr\u00F6\u00DFe", u""));
    EXPECT_EQ(told(error), "66 at \"there\" with \"Gr\xC3\xB6\xC3\x9F"
                           "e\"");
    EXPECT_EQ(error.kind, 4);
    EXPECT_EQ(error.line, 0U);
    EXPECT_EQ(told_of(PM_Warning(PM_ERR_BAD_PATH, u"", u"", u"")).kind, 1);
    EXPECT_EQ(told_of(ZT_Canceled_Error(PM_ERR_BAD_LINE, u"", u"", u"")).kind, 6);
}

TEST(CFailure, IsNumber55WithoutMemory) {
    EXPECT_EQ(told(told_of(std::bad_alloc())), "55 at \"pm9c\" with \"\"");
    EXPECT_EQ(told_of(std::length_error("")).number, PM9_ERR_NO_MEMORY);
    EXPECT_EQ(told_of(std::bad_alloc()).kind, 4);
}

TEST(CFailure, OfAnUnknownKindTellsItsWords) {
    EXPECT_EQ(told(told_of(std::runtime_error("words"))), "201 at \"pm9c\" with \"words\"");
    EXPECT_EQ(told(told_of(5)), "201 at \"pm9c\" with \"\"");
    EXPECT_EQ(told_of(5).kind, 0);
}

TEST(CFailure, CutsATextAtTheEndOfACharacter) {
    const pm9_error error = told_of(std::runtime_error(std::string(1021, 'x') + "\xE2\x82\xAC and more"));
    EXPECT_EQ(error.detail_length, 1021U);
    EXPECT_EQ(std::string(error.detail), std::string(1021, 'x'));
    const std::u16string wide = std::u16string(510, u'x') + u"\u00DFyy";
    const pm9_error other = told_of(PM_Warning(PM_ERR_BAD_PATH, wide.c_str(), u"", u""));
    EXPECT_EQ(std::string(other.place), std::string(510, 'x'));
}

TEST(CFailure, LeavesTheErrorAloneWhereThereIsNone) {
    pm9_error error = c_error();
    error.number = 1234;
    EXPECT_EQ(pm::c::guarded(&error, [] {}), PM9_OK);
    EXPECT_EQ(error.number, 1234);
}

struct Number {
    std::uint32_t of_library;
    int of_interface;
};

#define PM_NUMBER(name)                                                                                      \
    Number {                                                                                                 \
        PM_##name, PM9_##name                                                                                \
    }
constexpr Number numbers[] = {
    PM_NUMBER(ERR_NO_ROOT),
    PM_NUMBER(ERR_BAD_PATH),
    PM_NUMBER(ERR_NOTHING_THERE),
    PM_NUMBER(ERR_BAD_RAW_DATA),
    PM_NUMBER(ERR_WRONG_TYPE),
    PM_NUMBER(ERR_NO_MEMORY),
    PM_NUMBER(ERR_NOT_OPENED),
    PM_NUMBER(ERR_BAD_LINE),
    PM_NUMBER(ERR_VALUE_TOO_LARGE),
    PM_NUMBER(ERR_NO_VALUE),
    PM_NUMBER(ERR_NOT_WRITTEN),
    PM_NUMBER(ERR_ACCESS_DENIED),
    PM_NUMBER(ERR_TOO_MANY_FILES),
    PM_NUMBER(ERR_NO_SUCH_FILE),
    PM_NUMBER(ERR_NO_MEMORY_FOR_FILE),
    PM_NUMBER(ERR_DISK_FULL),
    PM_NUMBER(ERR_NOT_READ),
    PM_NUMBER(ERR_TYPE_REFUSED),
    PM_NUMBER(ERR_IS_A_FOLDER),
    PM_NUMBER(ERR_UNKNOWN_VERSION),
    PM_NUMBER(ERR_COPY_INTO_ITSELF),
    PM_NUMBER(ERR_ARGUMENTS_TOO_LONG),
    PM_NUMBER(ERR_TRY_AGAIN),
    PM_NUMBER(ERR_FILE_NOT_OPEN),
    PM_NUMBER(ERR_NO_CHILD_PROCESS),
    PM_NUMBER(ERR_DEADLOCK),
    PM_NUMBER(ERR_OUT_OF_DOMAIN),
    PM_NUMBER(ERR_FILE_EXISTS),
    PM_NUMBER(ERR_INVALID_ARGUMENT),
    PM_NUMBER(ERR_NOT_EXECUTABLE),
    PM_NUMBER(ERR_RESULT_TOO_LARGE),
    PM_NUMBER(ERR_OTHER_DRIVE),
    PM_NUMBER(ERR_STREAM_FAILED),
    PM_NUMBER(ERR_NO_SUCH_SECTION),
    PM_NUMBER(ERR_NOT_DECODED),
    PM_NUMBER(ERR_NOT_ENCODED),
    PM_NUMBER(ERR_NO_SUCH_NODE),
    PM_NUMBER(ERR_NO_SUCH_PROPERTY),
    PM_NUMBER(ERR_UNKNOWN_VALUE),
    PM_NUMBER(ERR_NOT_A_HEADER),
    PM_NUMBER(ERR_NO_HUFFMAN_SYMBOL),
    PM_NUMBER(ERR_HUFFMAN_SYMBOL_TAKEN),
    PM_NUMBER(ERR_NO_BLOCK),
    PM_NUMBER(ERR_DEFLATE_START),
    PM_NUMBER(ERR_DEFLATE),
    PM_NUMBER(ERR_DEFLATE_END),
    PM_NUMBER(ERR_INFLATE_START),
    PM_NUMBER(ERR_INFLATE),
    PM_NUMBER(ERR_INFLATE_END),
    PM_NUMBER(ERR_NOT_HEXADECIMAL),
};

TEST(CFailure, HasTheNumbersOfTheLibrary) {
    std::uint32_t expected = PM_ERR_FIRST;
    for (const Number& number : numbers) {
        EXPECT_EQ(number.of_library, expected);
        EXPECT_EQ(number.of_interface, static_cast<int>(expected));
        ++expected;
    }
    EXPECT_EQ(expected, PM_ERR_LAST + 1);
}

std::string text_of(int number) {
    char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_error_text(number, &text, &length, nullptr), PM9_OK);
    return taken(text, length);
}

TEST(CFailure, HasTextsForItsNumbers) {
    EXPECT_EQ(text_of(PM9_ERR_BAD_LINE), "The line isn't valid");
    EXPECT_EQ(text_of(PM9_BAD_INPUT), "The input isn't valid");
    EXPECT_EQ(text_of(PM9_UNEXPECTED), "An unexpected failure");
    EXPECT_EQ(text_of(-1), "");
    EXPECT_EQ(text_of(100), "");
}

} // namespace

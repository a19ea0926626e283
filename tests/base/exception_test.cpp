#include <algorithm>
#include <cstddef>
#include <exception>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <optional>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <string>
#include <type_traits>

namespace {

constexpr const char16_t* place = u"PM_Object::SetData()";
constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";

std::u16string detail_of(const std::u16string& detail) {
    return PM_Error(PM_ERR_BAD_PATH, place, detail.c_str(), source).m_detail;
}

std::shared_ptr<const char16_t[]> shared_text(const std::u16string& text) {
    std::shared_ptr<char16_t[]> block(new char16_t[text.size() + 1]);
    std::copy_n(text.c_str(), text.size() + 1, block.get());
    return block;
}

// An exception that carries arguments; the library itself never makes one.
PM_Warning with_arguments() {
    PM_Warning e(PM_ERR_BAD_LINE, place, u"detail", source);
    e.m_arg_count = 3;
    for (std::size_t i = 0; i < std::size(e.m_args); ++i) {
        e.m_args[i] = 100 + i;
    }
    return e;
}

} // namespace

TEST(Exception, CarriesWhatItWasMadeWith) {
    const PM_Error e(PM_ERR_BAD_RAW_DATA, place, u"bad raw data value", source);
    EXPECT_EQ(GetPMErrResHandle(), e.m_res_handle);
    EXPECT_EQ(PM_ERR_BAD_RAW_DATA, e.m_number);
    EXPECT_EQ(0, e.m_arg_count);
    EXPECT_EQ(place, e.m_place);
    EXPECT_STREQ("PM_Object::SetData()", e.m_place_narrow);
    EXPECT_EQ(std::u16string(u"bad raw data value"), e.m_detail);
    EXPECT_EQ(source, e.m_source);
}

TEST(Exception, KindTellsTheSeverity) {
    EXPECT_EQ(2, ZT_Exception(1, place, u"", source).kind());
    EXPECT_EQ(1, ZT_Warning(1, place, u"", source).kind());
    EXPECT_EQ(2, ZT_Error(1, place, u"", source).kind());
    EXPECT_EQ(4, ZT_Severe_Error(1, place, u"", source).kind());
    EXPECT_EQ(6, ZT_Canceled_Error(1, place, u"", source).kind());
    EXPECT_EQ(1, PM_Warning(1, place, u"", source).kind());
    EXPECT_EQ(2, PM_Error(1, place, u"", source).kind());
    EXPECT_EQ(4, PM_Severe(1, place, u"", source).kind());
    EXPECT_EQ(4, PM_Memory_Exception(place, u"", source).kind());
}

TEST(Exception, ClassesDeriveAsTheirNamesSay) {
    EXPECT_TRUE((std::is_base_of_v<std::exception, ZT_Exception>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Object, ZT_Exception>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Exception, ZT_Warning>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Exception, ZT_Error>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Exception, ZT_Severe_Error>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Exception, ZT_Canceled_Error>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Warning, PM_Warning>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Error, PM_Error>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Severe_Error, PM_Severe>));
    EXPECT_TRUE((std::is_base_of_v<ZT_Severe_Error, PM_Memory_Exception>));
}

TEST(Exception, MemoryExceptionIsAlwaysNumber55) {
    EXPECT_EQ(PM_ERR_NO_MEMORY, PM_Memory_Exception(place, u"node", source).m_number);
    EXPECT_EQ(std::u16string(u"node"), PM_Memory_Exception(place, u"node", source).m_detail);
}

TEST(Exception, WhatIsThatOfTheStandardClass) {
    const PM_Error e(PM_ERR_BAD_RAW_DATA, place, u"detail", source);
    EXPECT_STREQ(std::exception().what(), static_cast<const std::exception&>(e).what());
}

TEST(Exception, NullDetailIsEmpty) {
    EXPECT_EQ(std::u16string(), PM_Error(PM_ERR_BAD_RAW_DATA, place, nullptr, source).m_detail);
    EXPECT_EQ(std::u16string(), PM_Error(PM_ERR_BAD_RAW_DATA, place, u"", source).m_detail);
}

TEST(Exception, LongDetailIsCutTo259Units) {
    std::u16string detail;
    for (int i = 0; i < 300; ++i) {
        detail += static_cast<char16_t>(u'a' + i % 26);
    }
    EXPECT_EQ(detail.substr(0, 259), detail_of(detail));
    EXPECT_EQ(detail.substr(0, 259), detail_of(detail.substr(0, 260)));
    EXPECT_EQ(detail.substr(0, 259), detail_of(detail.substr(0, 259)));
    EXPECT_EQ(detail.substr(0, 258), detail_of(detail.substr(0, 258)));
}

TEST(Exception, RestOfTheDetailIsZero) {
    const PM_Error e(PM_ERR_BAD_RAW_DATA, place, u"ab", source);
    const PM_Error copy(e);
    for (const ZT_Exception* each :
         {static_cast<const ZT_Exception*>(&e), static_cast<const ZT_Exception*>(&copy)}) {
        EXPECT_TRUE(std::all_of(each->m_detail + 2, std::end(each->m_detail),
                                [](char16_t unit) { return unit == 0; }));
    }
}

TEST(Exception, DetailKeepsUnpairedSurrogates) {
    const char16_t units[] = {0xD800, u'a', 0xDC00, 0};
    EXPECT_EQ(std::u16string(units), detail_of(units));
}

TEST(Exception, NarrowPlaceIsInTheSystemCodePage) {
    EXPECT_STREQ("\x80 ?", PM_Error(PM_ERR_BAD_RAW_DATA, u"\u20AC \u4E00", u"", source).m_place_narrow);
    pm_set_system_code_page(65001);
    EXPECT_STREQ("\xE2\x82\xAC \xE4\xB8\x80",
                 PM_Error(PM_ERR_BAD_RAW_DATA, u"\u20AC \u4E00", u"", source).m_place_narrow);
    pm_set_system_code_page(1252);
}

TEST(Exception, CopyOutlivesItsOriginal) {
    auto original = std::make_unique<PM_Error>(PM_ERR_BAD_RAW_DATA, place, u"detail", source);
    const PM_Error copy(*original);
    EXPECT_NE(original->m_place_narrow, copy.m_place_narrow);
    original.reset();
    EXPECT_STREQ("PM_Object::SetData()", copy.m_place_narrow);
    EXPECT_EQ(std::u16string(u"detail"), copy.m_detail);
    EXPECT_EQ(PM_ERR_BAD_RAW_DATA, copy.m_number);
    EXPECT_EQ(place, copy.m_place);
    EXPECT_EQ(source, copy.m_source);
    EXPECT_EQ(GetPMErrResHandle(), copy.m_res_handle);
}

TEST(Exception, CopyTakesTheArgumentsInUse) {
    const PM_Warning original = with_arguments();
    const PM_Warning copy(original);
    EXPECT_EQ(3, copy.m_arg_count);
    EXPECT_EQ(100U, copy.m_args[0]);
    EXPECT_EQ(102U, copy.m_args[2]);
    EXPECT_EQ(0U, copy.m_args[3]);
}

TEST(Exception, ArgumentCountOutsideTheRangeCopiesWhatThereIs) {
    PM_Warning original = with_arguments();
    original.m_arg_count = 1000;
    EXPECT_EQ(131U, PM_Warning(original).m_args[31]);
    original.m_arg_count = -1;
    EXPECT_EQ(0U, PM_Warning(original).m_args[0]);
}

TEST(Exception, AssignmentTakesEverything) {
    PM_Warning target(1, u"elsewhere", u"other", u"other source");
    {
        const PM_Warning original = with_arguments();
        target = original;
    }
    EXPECT_EQ(PM_ERR_BAD_LINE, target.m_number);
    EXPECT_EQ(place, target.m_place);
    EXPECT_STREQ("PM_Object::SetData()", target.m_place_narrow);
    EXPECT_EQ(std::u16string(u"detail"), target.m_detail);
    EXPECT_EQ(source, target.m_source);
    EXPECT_EQ(3, target.m_arg_count);
    EXPECT_EQ(102U, target.m_args[2]);
}

TEST(Exception, AssignmentToItselfChangesNothing) {
    PM_Warning e = with_arguments();
    const PM_Warning& same = e;
    e = same;
    EXPECT_STREQ("PM_Object::SetData()", e.m_place_narrow);
    EXPECT_EQ(std::u16string(u"detail"), e.m_detail);
}

TEST(Exception, OwnedPlaceLivesAsLongAsAnyCopy) {
    std::optional<PM_Warning> copy;
    PM_Warning assigned(1, place, u"", source);
    {
        const PM_Warning original(PM_ERR_UNKNOWN_VALUE, shared_text(u" the bad line"), u"", source);
        copy.emplace(original);
        assigned = original;
    }
    EXPECT_EQ(std::u16string(u" the bad line"), copy->m_place);
    EXPECT_EQ(std::u16string(u" the bad line"), assigned.m_place);
    EXPECT_STREQ(" the bad line", copy->m_place_narrow);
}

TEST(Exception, PlainCopyLosesTheClassOnly) {
    const PM_Severe severe(PM_ERR_NO_SUCH_FILE, place, u"file", source);
    const ZT_Exception plain(severe);
    EXPECT_EQ(2, plain.kind());
    EXPECT_EQ(PM_ERR_NO_SUCH_FILE, plain.m_number);
    EXPECT_EQ(std::u16string(u"file"), plain.m_detail);
}

TEST(Exception, CancellationCarriesWhatWasReported) {
    const PM_Warning reported(PM_ERR_BAD_LINE, shared_text(u"line"), u"detail", source);
    const ZT_Canceled_Error cancelled(reported);
    EXPECT_EQ(6, cancelled.kind());
    EXPECT_EQ(PM_ERR_BAD_LINE, cancelled.m_number);
    EXPECT_EQ(std::u16string(u"line"), cancelled.m_place);
    EXPECT_EQ(std::u16string(u"detail"), cancelled.m_detail);
    EXPECT_EQ(source, cancelled.m_source);
    EXPECT_EQ(6, ZT_Canceled_Error(cancelled).kind());
}

TEST(Exception, IsCaughtByEachOfItsBases) {
    EXPECT_THROW(throw PM_Memory_Exception(place, u"", source), ZT_Severe_Error);
    EXPECT_THROW(throw PM_Severe(1, place, u"", source), ZT_Exception);
    EXPECT_THROW(throw PM_Warning(1, place, u"", source), ZT_Warning);
    EXPECT_THROW(throw PM_Error(1, place, u"", source), std::exception);
}

TEST(Exception, KindStandsBehindWhatInTheTableOfOperations) {
    using Kind = int (*)(const ZT_Exception*);
    const PM_Severe severe(PM_ERR_NO_SUCH_FILE, place, u"file", source);
    const ZT_Exception& e = severe;
    // The destructor has the first two slots.
    void* const* table = *reinterpret_cast<void* const* const*>(&e);
    EXPECT_EQ(4, reinterpret_cast<Kind>(table[3])(&e));
}

TEST(Exception, FieldsLieInTheirOrderBehindTheBases) {
    const PM_Error e(PM_ERR_BAD_RAW_DATA, place, u"", source);
    const auto offset = [&e](const auto& field) {
        return reinterpret_cast<const char*>(&field) -
               reinterpret_cast<const char*>(static_cast<const ZT_Exception*>(&e));
    };
    const std::ptrdiff_t offsets[] = {offset(static_cast<const ZT_Object&>(e)),
                                      offset(e.m_res_handle),
                                      offset(e.m_number),
                                      offset(e.m_arg_count),
                                      offset(e.m_place),
                                      offset(e.m_place_narrow),
                                      offset(e.m_detail),
                                      offset(e.m_source),
                                      offset(e.m_args)};
    EXPECT_TRUE(std::is_sorted(std::begin(offsets), std::end(offsets)));
    EXPECT_EQ(4, offset(e.m_arg_count) - offset(e.m_number));
    EXPECT_EQ(8, offset(e.m_number) - offset(e.m_res_handle));
    EXPECT_EQ(520, offset(e.m_source) - offset(e.m_detail));
}

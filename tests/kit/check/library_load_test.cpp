#include "check/library_load.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/exception.h>

// What the library says of a load, where no scanner has found it.
namespace {

using namespace pm::kit;
using Lines = std::vector<std::string>;

Heard told_of(std::uint32_t number, std::uint64_t counted = 0, std::string text = {}) {
    return {number, counted, std::move(text)};
}

// Of a file whose lines the library counts as 3, 5 and 8.
Lines unfound(const std::vector<Heard>& heard, Findings& findings) {
    add_unfound(heard, {3, 5, 8}, {.file = "file", .section = {}}, 0, findings);
    Lines lines;
    for (const Diagnostic& each : findings.take()) {
        lines.push_back(fmt::format("{} {} {} {}", each.rule, each.place.line, each.number, each.message));
    }
    return lines;
}

Lines unfound(const std::vector<Heard>& heard) {
    Findings findings{CheckOptions()};
    return unfound(heard, findings);
}

TEST(LibraryLoad, EachNumberHasARule) {
    const std::pair<std::uint32_t, std::string_view> rows[] = {
        {PM_ERR_BAD_LINE, "bad-line"},
        {PM_ERR_BAD_RAW_DATA, "bad-line"},
        {PM_ERR_BAD_PATH, "bad-line"},
        {PM_ERR_NOT_HEXADECIMAL, "bad-line"},
        {PM_ERR_UNKNOWN_VALUE, "unknown-type"},
        {PM_ERR_WRONG_TYPE, "retyped-name"},
        {PM_ERR_UNKNOWN_VERSION, "bad-header"},
        {PM_ERR_NOT_A_HEADER, "bad-header"},
        {PM_ERR_STREAM_FAILED, "cut-file"},
        {PM_ERR_NOT_DECODED, "damaged-compression"},
        {PM_ERR_NO_BLOCK, "damaged-compression"},
        {PM_ERR_INFLATE_START, "damaged-compression"},
        {PM_ERR_INFLATE, "damaged-compression"},
        {PM_ERR_NOT_OPENED, "damaged-file"},
    };
    for (const auto& [number, rule] : rows) {
        const Heard heard = told_of(number, 2);
        EXPECT_EQ(Lines{fmt::format("{} 5 {} {}", rule, number, sentence_of(number))}, unfound({heard}));
    }
}

TEST(LibraryLoad, LineIsTakenOutOfTheDetail) {
    const struct {
        std::string_view detail;
        std::uint64_t counted;
        std::string_view text;
    } rows[] = {
        {"\n7, a=x, file", 7, "a=x, file"}, {"\n7", 7, "\n7"},       {"\n7; a", 7, "\n7; a"},
        {"\nseven, a", 0, "\nseven, a"},    {"7, a=x", 0, "7, a=x"}, {"", 0, ""},
    };
    for (const auto& row : rows) {
        const Heard heard = heard_of(
            pm::Report{.number = PM_ERR_BAD_LINE, .place = "load", .detail = std::string(row.detail)});
        EXPECT_EQ(row.counted, heard.counted) << row.detail;
        EXPECT_EQ(row.text, heard.text);
    }
}

TEST(LibraryLoad, PlaceOfAnUnknownValueIsItsLine) {
    const auto heard = [](std::uint32_t number, std::string detail) {
        return heard_of(pm::Report{.number = number, .place = "a=x", .detail = std::move(detail)}).text;
    };
    EXPECT_EQ("a=x", heard(PM_ERR_UNKNOWN_VALUE, ""));
    EXPECT_EQ("more", heard(PM_ERR_UNKNOWN_VALUE, "more"));
    EXPECT_EQ("", heard(PM_ERR_BAD_LINE, ""));
    EXPECT_EQ("", heard_of(PM_Error(PM_ERR_UNKNOWN_VALUE, nullptr, u"", u"")).text);
}

TEST(LibraryLoad, WhatAScannerHasFoundIsNotToldAgain) {
    const auto told = [] {
        Findings findings{CheckOptions{.rules = {"damaged-file"}}};
        findings.add(
            {.rule = Rule::bad_line, .place = {.file = "file", .section = {}, .line = 5}, .number = 56});
        return findings;
    };
    Findings findings = told();
    EXPECT_EQ(Lines(), unfound({told_of(56, 2)}, findings));
    findings = told();
    EXPECT_EQ(Lines(), unfound({told_of(56)}, findings));
    findings = told();
    EXPECT_EQ(Lines{"damaged-file 3 56 " + sentence_of(56)}, unfound({told_of(56, 1)}, findings));
    findings = told();
    EXPECT_EQ(Lines{"damaged-file 0 56 " + sentence_of(56)}, unfound({told_of(56), told_of(56)}, findings));
    findings = told();
    EXPECT_EQ(Lines{"damaged-file 0 65 " + sentence_of(65)}, unfound({told_of(65, 4)}, findings));
}

TEST(LibraryLoad, TextOfWhatWasHeardStandsInTheSentence) {
    const std::string sentence = sentence_of(PM_ERR_NOT_OPENED);
    EXPECT_EQ(Lines{"damaged-file 0 56 " + sentence.substr(0, sentence.size() - 1) + ": \"a\"."},
              unfound({told_of(PM_ERR_NOT_OPENED, 0, "a")}));
}

TEST(LibraryLoad, EachNumberHasASentence) {
    for (std::uint32_t number = PM_ERR_FIRST; number <= PM_ERR_LAST; ++number) {
        const std::string sentence = sentence_of(number);
        EXPECT_TRUE(sentence.ends_with('.')) << number;
        EXPECT_FALSE(sentence.ends_with("..")) << number;
    }
    EXPECT_EQ("The library raises number 7.", sentence_of(7));
}

TEST(LibraryLoad, RulesAreFoundByTheirWholeNames) {
    EXPECT_EQ("bad-line", find_check_rule("bad-line")->name);
    for (const char* const name : {"", "bad-lin", "bad-line ", "zzz"}) {
        EXPECT_EQ(nullptr, find_check_rule(name)) << name;
    }
}

} // namespace

#include "base/deliver.h"
#include <gmock/gmock.h>
#include <pm/error_handler.h>
#include <pm/exception.h>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

using pm::Answer;
using testing::ElementsAre;

using Told = std::tuple<int, std::uint32_t, std::u16string, std::u16string>;

class Recorder : public pm::ReportHandler {
public:
    explicit Recorder(Answer given) : answer(given) {}
    Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                     std::u16string_view detail) override {
        told.emplace_back(kind, number, place, detail);
        return answer;
    }
    Answer answer;
    std::vector<Told> told;
};

template<class E>
E failure() {
    return E(57, u"place", u"detail", u"source");
}

TEST(ReportHandler, HearsOfEachKindWithItsNumber) {
    Recorder handler(Answer::go_on);
    pm::deliver(handler, failure<PM_Warning>());
    pm::deliver(handler, failure<PM_Error>());
    pm::deliver(handler, failure<PM_Severe>());
    EXPECT_THAT(handler.told, ElementsAre(Told(1, 57, u"place", u"detail"), Told(2, 57, u"place", u"detail"),
                                          Told(4, 57, u"place", u"detail")));
}

TEST(ReportHandler, KindsThatTheLibraryDoesNotHaveComeThroughToo) {
    Recorder handler(Answer::go_on);
    handler.on_kind_0(0, 50, u"p", u"d", u"s");
    handler.on_kind_3(0, 51, u"p", u"d", u"s");
    handler.on_kind_5(0, 52, u"p", u"d", u"s");
    EXPECT_THAT(handler.told,
                ElementsAre(Told(0, 50, u"p", u"d"), Told(3, 51, u"p", u"d"), Told(5, 52, u"p", u"d")));
}

TEST(ReportHandler, StopIsZeroAndGoOnIsNot) {
    Recorder stop(Answer::stop);
    Recorder go_on(Answer::go_on);
    EXPECT_EQ(0, pm::deliver(stop, failure<PM_Warning>()));
    EXPECT_EQ(0, pm::deliver(stop, failure<PM_Error>()));
    EXPECT_EQ(0, stop.on_kind_3(0, 50, u"p", u"d", u"s"));
    EXPECT_NE(0, pm::deliver(go_on, failure<PM_Warning>()));
    EXPECT_NE(0, pm::deliver(go_on, failure<PM_Error>()));
    EXPECT_NE(0, go_on.on_kind_3(0, 50, u"p", u"d", u"s"));
}

TEST(ReportHandler, SevereGoesOnWhateverTheAnswer) {
    Recorder stop(Answer::stop);
    EXPECT_NE(0, pm::deliver(stop, failure<PM_Severe>()));
}

TEST(ReportHandler, CancellationIsNotReported) {
    Recorder handler(Answer::go_on);
    EXPECT_EQ(0, pm::deliver(handler, failure<ZT_Canceled_Error>()));
    EXPECT_TRUE(handler.told.empty());
}

TEST(ReportHandler, NullTextsAreEmpty) {
    Recorder handler(Answer::go_on);
    handler.on_warning(0, 57, nullptr, nullptr, nullptr);
    EXPECT_THAT(handler.told, ElementsAre(Told(1, 57, u"", u"")));
}

TEST(ReportCall, CallsItsFunction) {
    std::vector<std::uint32_t> numbers;
    pm::ReportCall handler([&](int, std::uint32_t number, std::u16string_view, std::u16string_view) {
        numbers.push_back(number);
        return number == 57 ? Answer::stop : Answer::go_on;
    });
    EXPECT_EQ(0, pm::deliver(handler, failure<PM_Warning>()));
    EXPECT_NE(0, handler.on_error(0, 88, u"", u"", u""));
    EXPECT_THAT(numbers, ElementsAre(57U, 88U));
}

TEST(ReportCall, WhatItsFunctionThrowsComesOut) {
    pm::ReportCall handler([](int, std::uint32_t, std::u16string_view, std::u16string_view) -> Answer {
        throw std::runtime_error("own");
    });
    EXPECT_THROW(pm::deliver(handler, failure<PM_Warning>()), std::runtime_error);
}

} // namespace

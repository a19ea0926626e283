#include "pdt/record_list.h"

#include <gtest/gtest.h>
#include <pm/zt_string.h>
#include <random>
#include <string>

namespace {

struct Record {
    ZT_String name;
    int number = 0;
};
using Records = pm::RecordList<Record>;

void append(Records& records, const std::u16string& name) {
    records.append(Record{ZT_String(name.c_str()), records.count()});
}

int number_of(const Records& records, const char16_t* name) {
    const Record* const found = records.find_by_name(name);
    return found != nullptr ? found->number : -1;
}

TEST(RecordList, FirstOfManyEqualNamesIsFound) {
    Records records;
    for (int i = 0; i < 100; ++i) {
        append(records, i % 2 == 0 ? u"even" : u"odd");
    }
    EXPECT_EQ(0, number_of(records, u"even"));
    EXPECT_EQ(1, number_of(records, u"odd"));
    EXPECT_EQ(-1, number_of(records, u"Even"));
}

TEST(RecordList, RecordAppendedBehindALookUpIsFound) {
    Records records;
    for (int i = 0; i < 20; ++i) {
        append(records, u"other");
    }
    EXPECT_EQ(-1, number_of(records, u"new"));
    append(records, u"new");
    EXPECT_EQ(20, number_of(records, u"new"));
}

TEST(RecordList, NameThatWasNeverSetIsAnEmptyOne) {
    Records records;
    for (int i = 0; i < 20; ++i) {
        append(records, u"other");
    }
    records.append(Record{{}, 20});
    append(records, u"");
    EXPECT_EQ(20, number_of(records, u""));
}

TEST(RecordList, FindsWhatASearchFromTheFrontFinds) {
    std::mt19937 random(1);
    const auto name = [&] {
        std::u16string text;
        for (std::size_t length = random() % 3; length > 0; --length) {
            text += u"ab\u00E4\xD800"[random() % 4];
        }
        return text;
    };
    for (int run = 0; run < 200; ++run) {
        Records records;
        for (std::size_t count = random() % 40; count > 0; --count) {
            append(records, name());
        }
        const Records::List& from_the_front = records;
        for (int look = 0; look < 40; ++look) {
            const std::u16string wanted = name();
            ASSERT_EQ(from_the_front.find_by_name(wanted), records.find_by_name(wanted));
        }
    }
}

} // namespace

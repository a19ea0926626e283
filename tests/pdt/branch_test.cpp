#include "pdt/branch.h"

#include "base/text.h"
#include "support/exceptions.h"
#include "support/tree_text.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <random>

namespace {

using pm::Branch;
using pm::PlaceCursor;
using pm::test::tree_text;
using Lines = std::vector<std::string>;

// What a write raises, with place and detail.
template<class Write>
std::u16string raised_by(Write write) {
    try {
        write();
    } catch (const ZT_Exception& e) {
        return u"number " + pm::to_decimal(e.m_number) + u" " + e.m_place + u" " + e.m_detail;
    }
    return u"";
}

// The same writes to two trees, by a cursor and without.
class BothWays {
public:
    explicit BothWays(std::u16string base)
        : m_base(std::move(base)), m_cursor(m_short_way, m_base),
          m_with_cursor(m_short_way, m_base, {u"\\list\\"}, &m_cursor),
          m_without(m_long_way, m_base, {u"\\list\\"}) {}

    template<class Write>
    void write(Write write) {
        EXPECT_EQ(raised_by([&] { write(m_without); }), raised_by([&] { write(m_with_cursor); }));
    }
    void expect_same_trees() const { EXPECT_EQ(tree_text(m_long_way), tree_text(m_short_way)); }

private:
    std::u16string m_base;
    PM_Object m_short_way;
    PM_Object m_long_way;
    PlaceCursor m_cursor;
    Branch m_with_cursor;
    Branch m_without;
};

template<class Rows>
auto& any_of(const Rows& rows, std::mt19937& random) {
    return rows[random() % std::size(rows)];
}

void write_at_random(BothWays& both, std::mt19937& random) {
    static const std::u16string places[] = {u"A0",
                                            u"A1",
                                            u"",
                                            u"A0\\",
                                            u"a*b",
                                            u"A0\\deep",
                                            u"\\\\x",
                                            std::u16string(390, u'n'),
                                            std::u16string(1020, u'l')};
    static const std::u16string items[] = {u"\\name",    u"\\*\\name",     u"\\size\\*", u"\\size\\*\\x",
                                           u"tail",      u"\\size\\*x\\*", u"\\",        u"",
                                           u"\\a\\b\\c", u"\\a\\\\c"};
    const std::u16string& place = any_of(places, random);
    const std::u16string& item = any_of(items, random);
    const int index = random() % 2 == 0 ? -1 : static_cast<int>(random() % 12);
    const auto value = static_cast<std::int32_t>(random() % 7);
    both.write([&](Branch& branch) { branch.enter({place}); });
    switch (value) {
    case 0:
        return both.write([&](Branch& branch) { branch.set_double(item, 2.5, index); });
    case 1:
        return both.write([&](Branch& branch) { branch.set_string(item, u"text", index); });
    case 2:
        return both.write([&](Branch& branch) { branch.below({u"\\below"}).set_bool(item, true, index); });
    case 3:
        return both.write([&](Branch& branch) { branch.set_bytes(item, {}, index); });
    default:
        return both.write([&](Branch& branch) { branch.set_long(item, value, index); });
    }
}

TEST(Branch, CursorWritesAndRaisesWhatPathsDo) {
    std::mt19937 random(23);
    const std::u16string bases[] = {u"\\",
                                    u"base",
                                    u"\\base\\",
                                    u"\\a\\\\b",
                                    u"ba*se",
                                    std::u16string(395, u'b'),
                                    std::u16string(1010, u'b')};
    for (int run = 0; run < 70; ++run) {
        BothWays both(bases[static_cast<std::size_t>(run) % std::size(bases)]);
        for (int step = 0; step < 100; ++step)
            write_at_random(both, random);
        both.expect_same_trees();
    }
}

TEST(Branch, ItemsFollowThePlaceAsTheyStand) {
    PM_Object object;
    PlaceCursor cursor(object, u"\\");
    Branch branch(object, u"\\", {u"\\media\\"}, &cursor);
    branch.enter({u"roll"});
    branch.set_long(u"\\caps", 1);
    branch.set_long(u"\\size\\*\\x", 2, 7);
    branch.set_long(u"_2\\caps", 3);
    branch.below({u"\\entry\\", u"A"}).set_long(u"\\caps", 4);
    EXPECT_EQ((Lines{"media\\roll\\caps long 1", "media\\roll\\size\\7\\x long 2",
                     "media\\roll\\entry\\A\\caps long 4", "media\\roll_2\\caps long 3"}),
              tree_text(object));
}

TEST(Branch, NullTextIsAnEmptyOne) {
    PM_Object object;
    PlaceCursor cursor(object, u"\\");
    Branch(object, u"\\", {}, &cursor).set_string(u"\\a", nullptr);
    EXPECT_EQ(Lines{"a string "}, tree_text(object));
}

} // namespace

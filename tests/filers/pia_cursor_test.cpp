#include "filers/pia_text.h"
#include "platform/code_page.h"
#include "store/tree_cursor.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <random>

namespace {

using pm::test::Lines;

// Takes a node away at some reports, as a handler may.
class MeddlingHandler : public pm::test::RecordingHandler {
public:
    pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override {
        if (kind == 1 && reports.size() % 2 == 0) pm::test::thrown_by([&] { object->deletePath(u"x"); });
        return RecordingHandler::on_report(kind, number, place, detail);
    }

    PM_Object* object = nullptr;
};

// All that can be seen of a load.
struct Seen {
    Lines tree;
    std::string names;
    std::vector<std::u16string> reports;
    std::string raised;
    bool operator==(const Seen&) const = default;
};

Seen load(const std::string& body, const char16_t* base, bool by_path) {
    MeddlingHandler handler;
    PM_Object object(&handler);
    handler.object = &object;
    Seen seen;
    pm::TreeCursor::always_by_path = by_path;
    const auto e = pm::test::thrown_by([&] { pm::test::load_body(object, body, base); });
    pm::TreeCursor::always_by_path = false;
    if (e) seen.raised = std::to_string(e->m_number) + pm::to_narrow(e->m_place) + pm::to_narrow(e->m_detail);
    for (const auto& report : handler.reports)
        seen.reports.push_back(report.place + u" " + report.detail);
    for (const char16_t* name : {u"x", u"y", u"node", u"a", u"b", u"c d", u"p", u"q", u"-1", u"base", u"t"})
        seen.names += object.pathExists(name) ? '1' : '0';
    seen.tree = pm::test::tree_text(object);
    return seen;
}

std::string random_body(std::mt19937& random) {
    static const std::string lines[] = {
        "x{",    "y{",     "node{",      "}",       "}",        "}",    "a=1",  "b=\"text", "a=2",
        "p=2.5", "q=TRUE", "t=\\0102\\", " ; text", "x {",      "b=no", "p=",   "c=\\0\\",  "p\\q=1",
        "x\\y{", "*{",     "q*=1",       "a=TRUE",  "nonsense", "=1",   "\\=1", "\\x\\\\{", "p=1.2.3"};
    std::string body;
    for (std::size_t count = random() % 40; count > 0; --count) {
        const std::size_t range = random() % 8 == 0 ? std::size(lines) : 13;
        body += lines[random() % range] + "\n";
    }
    return body;
}

TEST(PiaCursor, GivesWhatPathsGive) {
    std::mt19937 random(1);
    std::size_t raised = 0;
    for (int run = 0; run < 5000; ++run) {
        const char16_t* const base =
            std::array<const char16_t*, 5>{u"\\", u"base", u"x", u"\\x\\y\\", u"*"}.at(random() % 5);
        const std::string body = random_body(random);
        const Seen expected = load(body, base, true);
        ASSERT_EQ(expected, load(body, base, false)) << body;
        raised += expected.raised.empty() ? 0 : 1;
    }
    EXPECT_GT(raised, 500U);
    EXPECT_LT(raised, 4500U);
}

} // namespace

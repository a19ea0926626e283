#include "docs/addition.h"
#include "docs/outcome.h"
#include "docs/page.h"
#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;

void load_pcp(PM_Object& object, const std::string& file) {
    std::stringstream stream(file);
    object.load(stream, PM_Object::FILE_PCP, u"\\");
}

// A default block that a load leaves open is no matter of the next row.
void close_default_block() {
    PM_Object object;
    load_pcp(object, ";Created by Draftex\nEND_COLOR\n");
}

std::string run_file(const std::string& file) {
    std::string outcome = outcome_of([&](PM_Object& object) { load_pcp(object, file); });
    close_default_block();
    return outcome;
}

// Lines behind the marker; the first of them is line 2 of the file.
std::string run_lines(const std::string& lines) {
    return run_file(";Created by Draftex\n" + lines);
}

// Lines in a default block, the first being line 3, and what stands for colour 17 and outside all colours.
std::string run_default_block(const std::string& lines) {
    std::string outcome = outcome_of([&](PM_Object& object) {
        load_pcp(object, ";Created by Draftex\nBEGIN_COLOR=DEFAULT\n" + lines);
        delete_items(object, [](const TreeItem& item) {
            return item.path.front() >= '0' && item.path.front() <= '9' && !item.path.starts_with("17\\");
        });
    });
    close_default_block();
    return outcome;
}

// One value of a keyword.
template<const char* keyword>
std::string run_value(const std::string& value) {
    return run_lines(std::string(keyword) + '=' + value);
}

constexpr char number_keyword[] = "VERSION";
constexpr char integer_keyword[] = "ROTATE";
constexpr char text_keyword[] = "PLOT_FILE";

PM_PAGE_ROWS(pcp, (Runs{{"file", run_file},
                        {"lines", run_lines},
                        {"in a default block", run_default_block},
                        {"number", run_value<number_keyword>},
                        {"integer", run_value<integer_keyword>},
                        {"text", run_value<text_keyword>}}));

TEST(PcpPage, ExampleIsDecodedAsTold) {
    const Page page = read_page("pcp");
    ASSERT_TRUE(page.bytes.contains("pens.pcp") && page.trees.contains("pens.pcp"));
    PM_Object object;
    load_pcp(object, page.bytes.at("pens.pcp"));
    delete_items(object, [](const TreeItem& item) { // those of a few colours are told
        constexpr std::string_view told[] = {"1\\", "2\\", "16\\", "17\\", "255\\"};
        return item.path.front() >= '0' && item.path.front() <= '9' &&
               std::none_of(std::begin(told), std::end(told),
                            [&](std::string_view start) { return item.path.starts_with(start); });
    });
    EXPECT_EQ(tree_lines(object), page.trees.at("pens.pcp"));
}

TEST(PcpPage, DefaultBlockThatIsLeftOpenGoesOnInTheNextLoad) {
    PM_Object first;
    load_pcp(first, ";Created by Draftex\nBEGIN_COLOR=DEFAULT\n");
    PM_Object next;
    load_pcp(next, ";Created by Draftex\nPEN_SPEED=5\n");
    close_default_block();
    EXPECT_EQ(tree_lines(next).size(), 255U);
}

} // namespace

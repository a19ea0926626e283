#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/markup.h>
#include <limits>
#include <report/picture.h>

namespace {

using namespace pm::kit::report;
using pm_test::Markup;
using pm_test::MarkupElement;
using testing::ElementsAre;

using Strings = std::vector<std::string>;

// The values of those attributes, a blank between them, of each element of that name.
Strings values(const Markup& markup, std::string_view element, const Strings& attributes) {
    Strings all;
    for (const MarkupElement& found : markup.find(element)) {
        std::string text;
        for (const std::string& attribute : attributes) {
            text += (text.empty() ? "" : " ") + found.attribute(attribute);
        }
        all.push_back(text);
    }
    return all;
}

Strings lines(const Markup& markup) {
    return values(markup, "line", {"class", "x1", "y1", "x2", "y2"});
}

Strings rectangles(const Markup& markup) {
    return values(markup, "rect", {"class", "x", "y", "width", "height"});
}

template<class Write>
Markup drawing(Write write) {
    Html html;
    write(html);
    return Markup("<!DOCTYPE html>" + html.take());
}

Markup range(const Range& numbers) {
    return drawing([&](Html& html) { write_range(html, numbers, "Speed", " mm/s"); });
}

TEST(RangePicture, HasItsBoundsAtItsEnds) {
    const Markup markup = range({10, 400, 205});
    EXPECT_THAT(lines(markup), ElementsAre("scale 8 14 192 14", "scale 8 9 8 19", "scale 192 9 192 19"));
    EXPECT_THAT(values(markup, "text", {"text-anchor", "x", "y"}),
                ElementsAre("start 2 37", "end 198 37", "middle 100 37"));
    EXPECT_THAT(markup.texts("text"), ElementsAre("10", "400", "205"));
    EXPECT_THAT(markup.texts("title"), ElementsAre("Speed: from 10 to 400 mm/s, by default 205 mm/s"));
}

TEST(RangePicture, HasItsKnobWhereTheDefaultIs) {
    EXPECT_THAT(values(range({0, 100, 25}), "circle", {"cx", "cy"}), ElementsAre("54 14"));
    EXPECT_THAT(values(range({0, 100, -1}), "circle", {"cx", "cy"}), ElementsAre("8 14"));
    EXPECT_THAT(values(range({0, 100, 101}), "circle", {"cx", "cy"}), ElementsAre("192 14"));
    EXPECT_THAT(values(range({5, 5, 5}), "circle", {"cx", "cy"}), ElementsAre("100 14"));
}

TEST(LineSample, IsAsThickAsTheLineWithinBounds) {
    const struct {
        double width;
        std::string_view drawn;
    } rows[] = {
        {2, "6 2"}, {0.1, "6 0.75"}, {100, "32 60"}, {std::numeric_limits<double>::quiet_NaN(), "6 1"}};
    for (const auto& row : rows) {
        const Markup markup = drawing([&](Html& html) { write_line_sample(html, 0, row.width, "Line"); });
        EXPECT_THAT(values(markup, "line", {"y1", "stroke-width"}), ElementsAre(row.drawn));
    }
}

TEST(LineSample, HasTheDashesOfItsType) {
    const auto dashes = [](long line_type) {
        const Markup markup = drawing([&](Html& html) { write_line_sample(html, line_type, 1, "Line"); });
        return values(markup, "line", {"stroke-dasharray"});
    };
    EXPECT_THAT(dashes(1), ElementsAre("12 6"));
    EXPECT_THAT(dashes(17), ElementsAre("3 3 9 3"));
    EXPECT_THAT(dashes(-1), ElementsAre(""));
    EXPECT_THAT(dashes(18), ElementsAre(""));
}

TEST(FoldPicture, HasACreaseForEachFold) {
    const std::vector<Strings> creases{{"crease 11 4 11 24", "crease 20 4 20 24"},
                                       {"crease 9 4 9 24", "crease 16 4 16 24", "crease 23 4 23 24"},
                                       {"crease 9 4 9 24", "crease 16 4 16 24", "crease 23.5 4 23.5 24"},
                                       {"crease 9 4 9 24"},
                                       {"crease 23 4 23 24"},
                                       {"crease 16 4 16 24"},
                                       {"crease 16 4 16 24", "crease 2 14 30 14"},
                                       {}};
    for (std::size_t type = 0; type < creases.size(); ++type) {
        const Markup markup = drawing([&](Html& html) { write_fold(html, static_cast<long>(type)); });
        EXPECT_EQ(lines(markup), creases[type]) << type;
        EXPECT_THAT(rectangles(markup), ElementsAre("sheet 2 4 28 20")) << type;
    }
}

TEST(StaplePicture, HasItsStaplesInTheirPlaces) {
    const struct {
        std::string_view sheet;
        Strings drawn;
    } rows[] = {{"sheet 6 2 20 28", {}},
                {"sheet 6 2 20 28", {"staple 8 7 14 7"}},
                {"sheet 6 2 20 28", {"staple 18 7 24 7"}},
                {"sheet 6 2 20 28", {"crease 16 2 16 30", "staple 13 10 19 10", "staple 13 22 19 22"}},
                {"sheet 2 6 28 20", {"staple 4 11 10 11"}},
                {"sheet 2 6 28 20", {"staple 22 11 28 11"}}};
    for (long location = 0; location < 6; ++location) {
        const Markup markup = drawing([&](Html& html) { write_staple(html, location, 0); });
        EXPECT_THAT(rectangles(markup), ElementsAre(rows[location].sheet)) << location;
        EXPECT_EQ(lines(markup), rows[location].drawn) << location;
    }
}

TEST(CutPicture, HasABladeBetweenTwoSheets) {
    const Markup markup = drawing([](Html& html) { write_cut(html, 1); });
    EXPECT_THAT(rectangles(markup), ElementsAre("sheet 2 3 20 9", "sheet 2 16 20 9"));
    EXPECT_THAT(lines(markup), ElementsAre("cut 0 14 25 14"));
    EXPECT_THAT(values(markup, "path", {"class", "d"}), ElementsAre("blade M25 14l6-4M25 14l6 4"));
}

TEST(CollationPicture, SetsTheSecondSetApart) {
    const auto sheets = [](long collating_type) {
        return rectangles(drawing([&](Html& html) { write_collation(html, collating_type); }));
    };
    EXPECT_THAT(sheets(0),
                ElementsAre("sheet 3 20 20 3", "sheet 3 16 20 3", "sheet 3 12 20 3", "sheet 3 8 20 3"));
    EXPECT_THAT(sheets(1),
                ElementsAre("sheet 3 20 20 3", "sheet 3 16 20 3", "sheet 3 8 20 3", "sheet 3 4 20 3"));
    EXPECT_THAT(sheets(2),
                ElementsAre("sheet 3 20 20 3", "sheet 3 16 20 3", "sheet 7 12 20 3", "sheet 7 8 20 3"));
}

} // namespace

#include "store/working_path.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using pm::WorkingPath;

std::u16string text(const WorkingPath& path) {
    EXPECT_EQ(path.length(), std::u16string(path.text()).size());
    return path.text();
}

TEST(WorkingPath, StartsAsTheBase) {
    EXPECT_EQ(u"\\", text(WorkingPath(u"\\")));
    EXPECT_EQ(u"q", text(WorkingPath(u"q")));
    EXPECT_EQ(u"\\a\\b\\", text(WorkingPath(u"\\a\\b\\")));
}

TEST(WorkingPath, EmptyBaseIsTheRoot) {
    EXPECT_EQ(u"\\", text(WorkingPath(u"")));
}

TEST(WorkingPath, ComponentGetsASeparatorUnlessThereIsOne) {
    WorkingPath path(u"\\");
    EXPECT_TRUE(path.push(u"a"));
    EXPECT_EQ(u"\\a", text(path));
    EXPECT_TRUE(path.push(u"b"));
    EXPECT_EQ(u"\\a\\b", text(path));
}

TEST(WorkingPath, TakingAwayCutsAtTheLastSeparator) {
    WorkingPath path(u"q\\a\\b");
    EXPECT_TRUE(path.pop());
    EXPECT_EQ(u"q\\a", text(path));
    EXPECT_TRUE(path.pop());
    EXPECT_EQ(u"q", text(path));
    EXPECT_FALSE(path.pop());
    EXPECT_EQ(u"q", text(path));
}

TEST(WorkingPath, RootIsCutToNothingAndGrowsAgain) {
    WorkingPath path(u"\\");
    EXPECT_TRUE(path.pop());
    EXPECT_EQ(u"", text(path));
    EXPECT_FALSE(path.ends_in_separator());
    EXPECT_FALSE(path.pop());
    EXPECT_TRUE(path.push(u"a"));
    EXPECT_EQ(u"\\a", text(path));
}

TEST(WorkingPath, SeparatorsInANameAreCutOneByOne) {
    WorkingPath path(u"\\");
    EXPECT_TRUE(path.push(u"a\\b"));
    EXPECT_TRUE(path.pop());
    EXPECT_EQ(u"\\a", text(path));
}

TEST(WorkingPath, AppendAddsNoSeparator) {
    WorkingPath path(u"\\");
    EXPECT_TRUE(path.append(u"pen"));
    EXPECT_TRUE(path.append(u"3"));
    EXPECT_EQ(u"\\pen3", text(path));
}

TEST(WorkingPath, EndsInSeparatorIsAboutTheLastUnit) {
    EXPECT_TRUE(WorkingPath(u"\\").ends_in_separator());
    EXPECT_TRUE(WorkingPath(u"a\\").ends_in_separator());
    EXPECT_FALSE(WorkingPath(u"\\a").ends_in_separator());
}

TEST(WorkingPath, TruncateGoesBack) {
    WorkingPath path(u"\\");
    EXPECT_TRUE(path.push(u"a"));
    const std::size_t length = path.length();
    EXPECT_TRUE(path.push(u"b"));
    path.truncate(length);
    EXPECT_EQ(u"\\a", text(path));
}

TEST(WorkingPath, HoldsItsCapacityAndNoUnitMore) {
    const std::u16string full(WorkingPath::capacity, u'x');
    EXPECT_EQ(full, text(WorkingPath(full)));

    WorkingPath path(std::u16string(WorkingPath::capacity - 3, u'x'));
    EXPECT_FALSE(path.push(u"abc"));
    EXPECT_FALSE(path.append(u"abcd"));
    EXPECT_EQ(WorkingPath::capacity - 3, path.length());
    EXPECT_TRUE(path.push(u"ab"));
    EXPECT_EQ(WorkingPath::capacity, path.length());
    EXPECT_FALSE(path.append(u"c"));
    EXPECT_FALSE(path.push(u""));
    EXPECT_TRUE(path.append(u""));
    EXPECT_EQ(WorkingPath::capacity, text(path).size());
}

TEST(WorkingPath, SeparatorThatIsThereTakesNoRoom) {
    WorkingPath path(std::u16string(WorkingPath::capacity - 2, u'x') + u"\\");
    EXPECT_FALSE(path.push(u"ab"));
    EXPECT_TRUE(path.push(u"a"));
    EXPECT_EQ(WorkingPath::capacity, path.length());
}

} // namespace

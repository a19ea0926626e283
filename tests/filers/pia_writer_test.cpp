#include "filers/pia_writer.h"

#include "filers/pia_text.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <memory>
#include <pm/error_number.h>
#include <sstream>

namespace {

std::string body_of(const PM_Object& object, int indent, const char16_t* subtree = u"\\") {
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(subtree, 0));
    std::ostringstream stream;
    pm::PiaWriter(stream, 65001, indent).write_body(*walk);
    return stream.str();
}

// Blocks of all the ways in which a walk goes on.
void build_trace(PM_Object& object) {
    object.SetProperty(u"a", 1);
    object.SetProperty(u"X\\b", 2);
    object.SetProperty(u"X\\Y\\c", 3);
    object.SetProperty(u"X\\Z\\gone", 0);
    object.deletePath(u"X\\Z\\gone");
    object.SetProperty(u"W\\d", 4);
}

TEST(PiaWriter, BlocksAreIndentedByTheirLevel) {
    PM_Object object;
    build_trace(object);
    EXPECT_EQ(std::string("a=1\nX{\n b=2\n Y{\n  c=3\n }\n Z{\n }\n}\nW{\n d=4\n}\n") + '\0',
              body_of(object, 1));
    EXPECT_EQ(std::string("a=1\nX{\n   b=2\n   Y{\n      c=3\n   }\n   Z{\n   }\n}\nW{\n   d=4\n}\n") + '\0',
              body_of(object, 3));
}

TEST(PiaWriter, StartNodeHasNoBlock) {
    PM_Object object;
    build_trace(object);
    EXPECT_EQ(std::string("b=2\nY{\n c=3\n}\nZ{\n}\n") + '\0', body_of(object, 1, u"X"));
    EXPECT_EQ(std::string("c=3\n") + '\0', body_of(object, 1, u"X\\Y"));
}

TEST(PiaWriter, SeveralBlocksMayEndAtOnce) {
    PM_Object object;
    object.SetProperty(u"a\\b\\c\\d", 1);
    object.SetProperty(u"e\\f", 2);
    EXPECT_EQ(std::string("a{\n b{\n  c{\n   d=1\n  }\n }\n}\ne{\n f=2\n}\n") + '\0', body_of(object, 1));
}

TEST(PiaWriter, EmptyTreeIsAZeroByte) {
    EXPECT_EQ(std::string(1, '\0'), body_of(PM_Object(), 1));
}

TEST(PiaWriter, LinesInFrontOfAValueThatCannotBeHadAreWritten) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"x\\b", 2);
    object.setVoidProperty(u"x\\c", nullptr, 0);
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
    std::ostringstream stream;
    pm::PiaWriter writer(stream, 65001, 1);
    pm::test::expect_thrown<PM_Warning>([&] { writer.write_body(*walk); }, PM_ERR_NO_VALUE,
                                        u"PM_Property::GetData()", u"c");
    EXPECT_EQ("a=1\nx{\n b=2\n", stream.str());
}

TEST(PiaWriter, TreeLargerThanWhatIsKeptBackIsWrittenInOrder) {
    PM_Object object;
    std::string expected;
    for (int node = 0; node < 200; ++node) {
        const std::u16string name = u"node" + pm::to_wide(std::to_string(node));
        expected += "node" + std::to_string(node) + "{\n";
        for (int prop = 0; prop < 50; ++prop) {
            object.SetProperty((name + u"\\prop" + pm::to_wide(std::to_string(prop))).c_str(), prop);
            expected += " prop" + std::to_string(prop) + "=" + std::to_string(prop) + "\n";
        }
        expected += "}\n";
    }
    EXPECT_EQ(expected + '\0', body_of(object, 1));
}

} // namespace

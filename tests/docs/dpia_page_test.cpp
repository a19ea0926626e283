#include "docs/outcome.h"
#include "docs/page.h"

#include "platform/code_page.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;
using testing::ElementsAre;
using testing::Key;

std::string run_file(const std::string& file) {
    return load_outcome(file, PM_Object::FILE_DPIA);
}

void load_section(PM_Object& object, const std::string& file, const char16_t* section) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.dpia", file);
    object.load_section(name.c_str(), PM_Object::FILE_DPIA, u"\\", section);
}

std::string run_section(const std::string& file) {
    return outcome_of([&](PM_Object& object) { load_section(object, file, u"S"); });
}

std::string saved(const PM_Object& object) {
    std::stringstream stream;
    stream.put('\0'); // so that there is a start to go to
    object.save(stream, PM_Object::FILE_DPIA, u"", u"p");
    return stream.str();
}

// The node "p" of a PIA body, saved and its directory loaded.
std::string run_tree(const std::string& body) {
    const ScopedCodePage page(pm::utf8_code_page);
    PM_Object object;
    std::stringstream stream("PIAFILEVERSION_2.0\n" + body);
    object.load(stream, PM_Object::FILE_PIA, u"\\");
    return outcome_of([&](PM_Object& loaded) {
        std::stringstream file(saved(object));
        loaded.load(file, PM_Object::FILE_DPIA, u"\\");
    });
}

PM_PAGE_ROWS(dpia, (Runs{{"file", run_file}, {"section S of", run_section}, {"tree", run_tree}}));

std::vector<std::string> loaded_lines(const std::string& file) {
    PM_Object object;
    std::stringstream stream(file);
    object.load(stream, PM_Object::FILE_DPIA, u"\\");
    return tree_lines(object);
}

std::vector<std::string> section_lines(const std::string& file, const char16_t* section) {
    PM_Object object;
    load_section(object, file, section);
    return tree_lines(object);
}

TEST(DpiaPage, HasBytesOfTheseNames) {
    EXPECT_THAT(read_page("dpia").bytes, ElementsAre(Key("sections"), Key("version-1")));
}

TEST(DpiaPage, FileIsWhatTheLibraryWritesAndReads) {
    const Page page = read_page("dpia");
    const std::string& file = page.bytes.at("sections");
    PM_Object object;
    const char16_t* one = u"One";
    const char16_t* two = u"2";
    object.SetProperty(u"p\\A\\info", one);
    object.SetProperty(u"p\\A\\data\\a", 1);
    object.SetProperty(u"p\\B\\data\\n\\b", two);
    EXPECT_EQ(saved(object), file);
    EXPECT_EQ(loaded_lines(file), page.trees.at("sections"));
    EXPECT_EQ(section_lines(file, u"A"), page.trees.at("A"));
    EXPECT_EQ(section_lines(file, u"B"), page.trees.at("B"));
}

TEST(DpiaPage, FileOfVersion1IsReadAsTold) {
    const Page page = read_page("dpia");
    const std::string& file = page.bytes.at("version-1");
    EXPECT_EQ(loaded_lines(file), page.trees.at("version-1"));
    EXPECT_EQ(section_lines(file, u"S"), page.trees.at("S"));
}

} // namespace

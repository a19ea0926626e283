#include "docs/outcome.h"
#include "docs/page.h"
#include "platform/compound_storage.h"
#include "support/temp_folder.h"
#include "support/tree_dump.h"
#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;

void load_doc(PM_Object& object, const std::string& bytes) {
    const TempFolder folder;
    object.load(folder.write("tree.doc", bytes).c_str(), PM_Object::FILE_DOC, u"\\");
}

// The parts of the page's example, each with what fills up its sector.
std::string example_file() {
    const Page page = read_page("doc");
    std::string file;
    for (const auto& [part, fill] :
         {std::pair("header", '\xFF'), std::pair("allocation table", '\xFF'), std::pair("directory", '\0'),
          std::pair("mini allocation table", '\xFF'), std::pair("mini stream", '\0')}) {
        const auto found = page.bytes.find(part);
        file += found != page.bytes.end() ? found->second : "no such block";
        constexpr std::size_t sector = 512;
        file.resize((file.size() + sector - 1) / sector * sector, fill);
    }
    return file;
}

// The stream `v` of a file.
std::string run_record(const std::string& record) {
    const TempFolder folder;
    const std::u16string name = folder.wide("tree.doc");
    if (const auto root = pm::StgCreateDocfile(name)) {
        constexpr unsigned char version[] = {0, 0, 0x80, 0x3F};
        (void)root->CreateStream(u"Version")->Write(version, sizeof version);
        (void)root->CreateStream(u"v")->Write(record.data(), record.size());
        if (!root->Commit()) return "not written";
    }
    return outcome_of([&](PM_Object& object) { object.load(name.c_str(), PM_Object::FILE_DOC, u"\\"); });
}

// Properties of these names, each 1, as saved and loaded.
std::string run_names(const std::string& names) {
    const TempFolder folder;
    const std::u16string file = folder.wide("tree.doc");
    return outcome_of([&](PM_Object& object) {
        PM_Object saved;
        std::istringstream lines(names);
        for (std::string name; std::getline(lines, name);) {
            saved.SetProperty(pm::to_wide(name, pm::utf8_code_page).c_str(), 1);
        }
        saved.save(file.c_str(), PM_Object::FILE_DOC, u"", u"\\");
        object.load(file.c_str(), PM_Object::FILE_DOC, u"\\");
    });
}

// The example with other bytes: "offset: bytes", all hexadecimal. "cut offset" ends the file there.
std::string run_change(const std::string& changes) {
    std::string file = example_file();
    std::istringstream lines(changes);
    for (std::string line; std::getline(lines, line);) {
        const bool cut = line.starts_with("cut ");
        std::size_t length = 0;
        std::size_t offset = std::stoul(cut ? line.substr(4) : line, &length, 16);
        if (cut) {
            file.resize(offset);
            continue;
        }
        std::istringstream bytes(line.substr(length + 1));
        for (unsigned byte = 0; bytes >> std::hex >> byte; ++offset) {
            file.at(offset) = static_cast<char>(byte);
        }
    }
    return outcome_of([&](PM_Object& object) { load_doc(object, file); });
}

PM_PAGE_ROWS(doc, (Runs{{"record", run_record}, {"names", run_names}, {"change", run_change}}));

TEST(DocPage, ExampleIsDecodedAsTold) {
    PM_Object object;
    load_doc(object, example_file());
    const Page page = read_page("doc");
    ASSERT_TRUE(page.trees.contains("example"));
    EXPECT_EQ(tree_lines(object), page.trees.at("example"));
}

TEST(DocPage, ExampleIsMadeAgainAsTold) {
    PM_Object object;
    object.SetProperty(u"media\\copies", 2);
    const char16_t* roll = u"A0";
    object.SetProperty(u"media\\roll", roll);
    const TempFolder folder;
    object.save(folder.wide("tree.doc").c_str(), PM_Object::FILE_DOC, u"", u"\\");
    EXPECT_EQ(folder.read("tree.doc"), example_file());
}

} // namespace

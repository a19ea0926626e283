#include "filers/failing_file.h"
#include "filers/pia_text.h"
#include <fstream>

namespace pm::test {
namespace {

using FailingFileWindows = FailingFile;

// The system refuses to open it.
TEST_F(FailingFileWindows, FolderIs61) {
    expect_load_failure(folder.path().u16string(), PM_ERR_ACCESS_DENIED, open_place);
    expect_save_failure(folder.path().u16string(), PM_ERR_ACCESS_DENIED, open_place);
}

TEST_F(FailingFileWindows, FileThatSomebodyReadsIsLoadedAndSaved) {
    const std::u16string name = folder.write("a.pia", pia_header);
    const std::ifstream reader(folder / "a.pia", std::ios::binary);
    ASSERT_TRUE(reader);
    object.load(name.c_str(), PM_Object::FILE_PIA, u"\\");
    object.save(name.c_str(), PM_Object::FILE_PIA, u"", u"\\");
}

TEST_F(FailingFileWindows, FileThatSomebodyHasForHimselfIs61) {
    const std::u16string name = folder.write("a.pia", pia_header);
    const UnreadableFile held(folder / "a.pia");
    expect_load_failure(name, PM_ERR_ACCESS_DENIED, open_place);
    expect_save_failure(name, PM_ERR_ACCESS_DENIED, open_place);
}

} // namespace
} // namespace pm::test

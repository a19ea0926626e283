#include "pdt/section_reader.h"
#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using pm::SectionReader;
using pm::test::expect_thrown;
using pm::test::TempFolder;

constexpr const char16_t* place = u"PM_PDTFile::load()";

// No file can be opened while it lives.
class NoMoreFiles {
public:
    NoMoreFiles() {
        getrlimit(RLIMIT_NOFILE, &m_limit);
        const rlimit none = {0, m_limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &m_limit); }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;

private:
    rlimit m_limit{};
};

TEST(SectionReaderPosix, TooManyOpenFilesIsNumber62WithoutAName) {
    const TempFolder folder;
    const std::u16string path = folder.write("table.pdt", "");
    const NoMoreFiles limited;
    expect_thrown<PM_Severe>([&] { SectionReader(path, 0); }, PM_ERR_TOO_MANY_FILES, place, u"");
}

TEST(SectionReaderPosix, WhatIsNoFileCannotBeOpened) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo((folder / "pipe.pdt").c_str(), 0600));
    std::filesystem::create_symlink("/dev/zero", folder / "zeros.pdt");
    for (const char* name : {"pipe.pdt", "zeros.pdt"}) {
        const std::u16string path = folder.wide(name);
        expect_thrown<PM_Severe>([&] { SectionReader(path, 0); }, PM_ERR_NOT_OPENED, place, path.c_str());
    }
}

} // namespace

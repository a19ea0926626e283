#pragma once

#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/object.h>
#include <string>

namespace pm::test {

inline constexpr const char16_t* open_place = u"PM_PIAFile::open()";

class FailingFile : public testing::Test {
protected:
    FailingFile() { std::filesystem::permissions(folder.path(), std::filesystem::perms(0755)); }

    void expect_load_failure(const std::u16string& name, std::uint32_t number, const std::u16string& at) {
        expect_thrown<PM_Severe>([&] { object.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); }, number, at,
                                 name);
    }
    void expect_save_failure(const std::u16string& name, std::uint32_t number, const std::u16string& at) {
        expect_thrown<PM_Severe>([&] { object.save(name.c_str(), PM_Object::FILE_PIA, u"", u"\\"); }, number,
                                 at, name);
    }

    TempFolder folder;
    PM_Object object;
};

} // namespace pm::test

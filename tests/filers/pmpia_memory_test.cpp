#include "filers/pia_text.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm_test_paths.h>
#include <set>
#include <string>

namespace {

using pm::test::fail_each_allocation;
using pm::test::load_bytes;
using pm::test::saved;
using pm::test::TempFolder;
using pm::test::thrown_by;
using pm::test::tree_text;

struct Outcomes {
    std::set<std::uint32_t> numbers;
    std::set<std::u16string> details;
    int failed = 0;
    int survived = 0; // runs that did without the memory

    // Runs the work and keeps what it raised; a 55 is of the one class that it has.
    template<class Work>
    void run(Work work) {
        const std::type_info* type = nullptr;
        const std::optional<ZT_Exception> e = thrown_by(work, &type);
        add(e);
        if (e && e->m_number == PM_ERR_NO_MEMORY) {
            EXPECT_EQ(typeid(PM_Memory_Exception), *type);
        }
    }

    void add(const std::optional<ZT_Exception>& e) {
        if (!e) {
            ++survived;
            return;
        }
        ++failed;
        numbers.insert(e->m_number);
        details.insert(e->m_detail);
    }
};

// Loads with each allocation failing in turn; then into the same object with memory.
Outcomes load_without_memory(const std::string& bytes) {
    PM_Object whole;
    load_bytes(whole, bytes);
    const auto tree = tree_text(whole);

    Outcomes outcomes;
    std::optional<PM_Object> object;
    fail_each_allocation([&](int place) {
        pm::set_allocation_filter(nullptr);
        object.emplace();
        const pm::test::FailingAllocation failing(place);
        outcomes.run([&] { load_bytes(*object, bytes); });
        pm::set_allocation_filter(nullptr);
        load_bytes(*object, bytes);
        EXPECT_EQ(tree, tree_text(*object)) << place;
    });
    return outcomes;
}

Outcomes save_without_memory(const PM_Object& object, const char16_t* tag) {
    const std::string whole = saved(object, tag);
    Outcomes outcomes;
    fail_each_allocation([&](int place) {
        outcomes.run([&] { saved(object, tag); });
        pm::set_allocation_filter(nullptr);
        EXPECT_EQ(whole, saved(object, tag)) << place;
    });
    return outcomes;
}

const std::string body =
    "a=1\nb=2.5\nc=\"text\nd=TRUE\ne=\\0102\\\nf=0.33333333333 (55555555U3_#T@)\nx{\n y{\n  g=1\n }\n}\n";

TEST(PiaMemory, LoadWithoutMemoryIs55) {
    const Outcomes outcomes = load_without_memory(pm::test::pia_header + body);
    EXPECT_EQ(std::set<std::uint32_t>{PM_ERR_NO_MEMORY}, outcomes.numbers);
    EXPECT_EQ((std::set<std::u16string>{u"", u"Property Manager", u"data", u"entry", u"line", u"node",
                                        u"pFiler", u"prop"}),
              outcomes.details);
    EXPECT_GT(outcomes.failed, 30);
}

TEST(PiaMemory, CompressedLoadWithoutMemoryIs55Or84) {
    const Outcomes outcomes =
        load_without_memory(TempFolder::read_file(PM_TEST_DATA "/pia/types-2.0-compressed.pia"));
    EXPECT_EQ((std::set<std::uint32_t>{PM_ERR_NO_MEMORY, PM_ERR_NOT_DECODED}), outcomes.numbers);
    EXPECT_TRUE(outcomes.details.contains(u"buffer"));
    EXPECT_TRUE(outcomes.details.contains(u"decompression of PIA data failed"));
}

TEST(PiaMemory, SaveWithoutMemoryIs55) {
    PM_Object object;
    load_bytes(object, pm::test::pia_header + body);
    const Outcomes outcomes = save_without_memory(object, u"test");
    EXPECT_EQ(std::set<std::uint32_t>{PM_ERR_NO_MEMORY}, outcomes.numbers);
    EXPECT_EQ((std::set<std::u16string>{u"buffer", u"pFiler", u"piter"}), outcomes.details);
}

TEST(PiaMemory, CompressedSaveWithoutMemoryIs55Or85) {
    PM_Object object;
    load_bytes(object, pm::test::pia_header + body);
    const Outcomes outcomes = save_without_memory(object, u"test,compress");
    EXPECT_EQ((std::set<std::uint32_t>{PM_ERR_NO_MEMORY, PM_ERR_NOT_ENCODED}), outcomes.numbers);
    EXPECT_EQ((std::set<std::u16string>{u"buffer", u"compression of PIA data failed", u"pFiler", u"piter"}),
              outcomes.details);
}

TEST(PiaMemory, VersionWithoutMemoryIs55) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", pm::test::pia_header);
    const PM_Object object;
    Outcomes outcomes;
    fail_each_allocation([&](int) {
        char16_t buffer[64];
        outcomes.run([&] { object.getFileVersion(name.c_str(), buffer, 64, PM_Object::FILE_PCP); });
    });
    EXPECT_EQ(std::set<std::uint32_t>{PM_ERR_NO_MEMORY}, outcomes.numbers);
    EXPECT_EQ(std::set<std::u16string>{u"pFiler"}, outcomes.details);
}

} // namespace

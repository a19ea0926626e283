#include "faults/memory_operations.h"
#include "faults/torture.h"
#include "support/exceptions.h"
#include <algorithm>
#include <gmock/gmock.h>
#include <set>
#include <vector>

namespace {

using namespace pm::test;

std::string without_folders(const std::string& name) {
    return name.substr(name.rfind('/') + 1);
}

// How a run ended: "" where it did what it had to do.
std::string ending_of(const std::exception_ptr& thrown) {
    if (!thrown) return "";
    try {
        std::rethrow_exception(thrown);
    } catch (const ZT_Exception& e) {
        return class_name(typeid(e)) + ' ' + std::to_string(e.m_number) + ", " + utf8(e.m_place) + ", " +
               without_folders(utf8(e.m_detail));
    } catch (const std::exception& e) {
        return without_folders(e.what());
    }
}

class MemoryFaults : public testing::TestWithParam<MemoryOperation> {
protected:
    // Tables that are made once, and what the operation must do.
    MemoryFaults() {
        for (int time = 0; time < 2; ++time) {
            Subject subject;
            GetParam().run(subject);
            m_expected = subject.outcome();
            m_names = subject.object.names();
        }
    }

    // Of an ordinary run.
    std::uint64_t places_tried() const { return m_names.size() < 200 ? 40 : 8; }

    static std::uint64_t requests_of(MemoryOf whose) {
        constexpr auto never = ~std::uint64_t{0};
        Subject subject;
        const MemoryFault none(whose, Failing::once, never);
        GetParam().run(subject);
        return MemoryFault::requests();
    }

    static std::exception_ptr run_failing(Subject& subject, MemoryOf whose, Failing how,
                                          std::uint64_t place) {
        const MemoryFault fault(whose, how, place);
        try {
            GetParam().run(subject);
        } catch (...) {
            return std::current_exception();
        }
        return nullptr;
    }

    void expect_names_held_by_tree_alone(const CountedObject& object) const {
        const CountedObject::Names held = object.names();
        for (const auto& [name, ignored] : m_names) {
            const auto found = held.find(name);
            EXPECT_EQ(found != held.end() ? found->second : 0, object.references(name))
                << pm::to_narrow(name, pm::utf8_code_page);
        }
    }

    // What the subject shows of an operation that may do less than it has to; "" if it did all.
    std::string less_done(const Subject& subject) const {
        const bool is_less = subject.outcome() != m_expected;
        if (is_less && GetParam().less_done == LessDone::bad_line && subject.notes() == "57 ") return "57";
        if (is_less && GetParam().less_done == LessDone::rule && subject.notes() == "unreadable ") {
            return "unreadable";
        }
        const bool is_nothing = is_less && GetParam().less_done == LessDone::nothing;
        return is_nothing && subject.outcome() == Subject().outcome() ? "nothing done" : "";
    }

    // The operation with one place failing; gives how it ended.
    std::string fail(MemoryOf whose, Failing how, std::uint64_t place) {
        const std::int64_t before = live_blocks();
        std::string ending;
        {
            Subject subject;
            {
                const std::exception_ptr thrown = run_failing(subject, whose, how, place);
                EXPECT_TRUE(MemoryFault::was_hit());
                ending = ending_of(thrown);
            }
            if (ending.empty()) ending = less_done(subject);
            if (ending.empty()) {
                EXPECT_EQ(m_expected, subject.outcome()) << "fell short and told nothing";
            }
            expect_names_held_by_tree_alone(subject.object);
            subject.forget();
            if (GetParam().undo != nullptr) GetParam().undo(subject);
            EXPECT_NO_THROW(GetParam().run(subject)) << "again, behind: " << ending;
            EXPECT_EQ(m_expected, subject.outcome()) << "again, behind: " << ending;
            expect_names_held_by_tree_alone(subject.object);
        }
        const bool has_block = replaces_malloc && ending.capacity() > std::string().capacity();
        EXPECT_EQ(before, live_blocks() - (has_block ? 1 : 0)) << "left behind: " << ending;
        return ending;
    }

    std::string m_expected;
    CountedObject::Names m_names;
};

TEST_P(MemoryFaults, AreToldLeaveAUsableTreeAndNothingBehind) {
    std::set<std::string> told;
    bool whole = true;
    for (const MemoryOf whose : {MemoryOf::library, MemoryOf::process}) {
        const std::uint64_t requests = requests_of(whose);
        const std::uint64_t step = torture() ? 1 : std::max<std::uint64_t>(requests / places_tried(), 1);
        whole = whole && step == 1 && replaces_malloc;
        for (const Failing how : {Failing::once, Failing::from_then_on}) {
            for (std::uint64_t place = 0; place < requests && !HasFailure(); place += step) {
                SCOPED_TRACE(testing::Message() << "request " << place << " of " << requests << ", source "
                                                << static_cast<int>(whose) << static_cast<int>(how));
                told.insert(fail(whose, how, place));
            }
        }
    }
    told.erase("");
    const std::set<std::string> expected(GetParam().told.begin(), GetParam().told.end());
    if (whole) {
        EXPECT_EQ(expected, told);
    } else {
        EXPECT_THAT(expected, testing::IsSupersetOf(told));
    }
}

std::string name_of(const testing::TestParamInfo<MemoryOperation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Store, MemoryFaults, testing::ValuesIn(store_operations()), name_of);
INSTANTIATE_TEST_SUITE_P(Filers, MemoryFaults, testing::ValuesIn(filer_operations()), name_of);
INSTANTIATE_TEST_SUITE_P(Codecs, MemoryFaults, testing::ValuesIn(codec_operations()), name_of);
INSTANTIATE_TEST_SUITE_P(Kit, MemoryFaults, testing::ValuesIn(kit_operations()), name_of);
INSTANTIATE_TEST_SUITE_P(CInterface, MemoryFaults, testing::ValuesIn(c_operations()), name_of);

} // namespace

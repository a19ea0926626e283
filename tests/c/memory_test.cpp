#include "support/allocation_failures.h"

#include "base/allocator.h"
#include "c/c_support.h"
#include "support/replaced_new.h"
#include <functional>

namespace {

// Asked by operator new and by the library's own allocator alike.
int left = -1; // allocations until the one that fails; below 0: none does
bool hit = false;

bool fails_now() {
    if (left < 0 || left-- != 0) return false;
    hit = true;
    return true;
}

} // namespace

bool pm::test::refuses_block(std::size_t) noexcept {
    return fails_now();
}

namespace {

using namespace pm::test;

// Makes each allocation of a call fail in turn; gives how often that was told. Each is number 55, told
// without memory, and the handle that was given stays good; or, of an allocation that only makes things
// faster, the call does what it does with memory.
template<class Prepare, class Call>
int fail_each(Prepare prepare, Call call) {
    pm::set_allocation_filter([](std::size_t) { return fails_now(); });
    int told_of = 0;
    const CTree complete = prepare();
    EXPECT_EQ(call(complete.get(), nullptr), PM9_OK);
    for (int place = 0; !testing::Test::HasFailure(); ++place) {
        const CTree tree = prepare();
        pm9_error error = c_error();
        hit = false;
        left = place;
        const pm9_status status = call(tree.get(), &error);
        left = -1;
        if (!hit) {
            EXPECT_EQ(status, PM9_OK) << told(error);
            break;
        }
        if (status == PM9_OK) {
            EXPECT_EQ(listed(tree.get()), listed(complete.get())) << "allocation " << place;
            continue;
        }
        EXPECT_EQ(status, PM9_ERR_NO_MEMORY) << "allocation " << place;
        EXPECT_EQ(error.number, PM9_ERR_NO_MEMORY);
        ++told_of;
        EXPECT_EQ(pm9_tree_set_long(tree.get(), "\\still\\good", PM9_Z, 1, nullptr), PM9_OK);
    }
    pm::set_allocation_filter(nullptr);
    return told_of;
}

const char* const long_path = "\\a node with a name that is long\\another one of them\\and the property last";
const std::string long_text(300, 'x');

class CMemory : public testing::Test {
protected:
    char* data = nullptr;
    std::size_t length = 0;
};

TEST_F(CMemory, OfATreeThatIsMade) {
    const auto call = [](pm9_tree*, pm9_error* error) {
        pm9_tree* made = nullptr;
        const pm9_status status = pm9_tree_new(&made, error);
        pm9_tree_delete(made);
        return status;
    };
    EXPECT_GT(fail_each(small_tree, call), 2);
}

TEST_F(CMemory, OfEachKindOfWrite) {
    using Call = std::function<pm9_status(pm9_tree*, pm9_error*)>;
    const pm9_value value{sizeof value, PM9_STRING, 0, 0, long_text.data(), long_text.size()};
    const Call calls[] = {
        [](pm9_tree* t, pm9_error* e) { return pm9_tree_set_long(t, long_path, PM9_Z, 1, e); },
        [](pm9_tree* t, pm9_error* e) { return pm9_tree_set_double(t, long_path, PM9_Z, 1, e); },
        [](pm9_tree* t, pm9_error* e) { return pm9_tree_set_bool(t, long_path, PM9_Z, 1, e); },
        [](pm9_tree* t, pm9_error* e) {
            return pm9_tree_set_string(t, long_path, PM9_Z, long_text.data(), long_text.size(), e);
        },
        [](pm9_tree* t, pm9_error* e) {
            return pm9_tree_set_raw(t, long_path, PM9_Z, long_text.data(), long_text.size(), e);
        },
        [&](pm9_tree* t, pm9_error* e) { return pm9_tree_set(t, long_path, PM9_Z, nullptr, &value, e); },
        [](pm9_tree* t, pm9_error* e) { return pm9_tree_make_node(t, long_path, PM9_Z, e); },
        [](pm9_tree* t, pm9_error* e) {
            return pm9_tree_copy_node(t, "\\media", PM9_Z, long_path, PM9_Z, e);
        },
    };
    for (const Call& call : calls) {
        EXPECT_GT(fail_each(small_tree, call), 3);
    }
}

CTree full_tree() {
    CTree tree = small_tree();
    EXPECT_EQ(pm9_tree_set_string(tree.get(), long_path, PM9_Z, long_text.data(), long_text.size(), nullptr),
              PM9_OK);
    EXPECT_EQ(pm9_tree_set_raw(tree.get(), "\\raw", PM9_Z, long_text.data(), long_text.size(), nullptr),
              PM9_OK);
    return tree;
}

TEST_F(CMemory, OfWhatIsRead) {
    const auto text = [&](pm9_tree* tree, pm9_error* error) {
        const pm9_status status = pm9_tree_get_string(tree, long_path, PM9_Z, &data, &length, error);
        if (status == PM9_OK) pm9_free(data);
        return status;
    };
    const auto any = [](pm9_tree* tree, pm9_error* error) {
        pm9_value value{};
        value.size = sizeof value;
        const pm9_status status = pm9_tree_get(tree, "\\raw", PM9_Z, nullptr, &value, error);
        pm9_free(value.data);
        return status;
    };
    const auto items = [&](pm9_tree* tree, pm9_error* error) {
        pm9_item* found = nullptr;
        const pm9_status status =
            pm9_tree_list(tree, "\\", PM9_Z, nullptr, sizeof *found, &found, &length, error);
        pm9_free(found);
        return status;
    };
    EXPECT_GT(fail_each(full_tree, text), 1);
    EXPECT_GT(fail_each(full_tree, any), 1);
    EXPECT_GT(fail_each(full_tree, items), 5);
}

TEST_F(CMemory, OfWhatIsErased) {
    const auto erase = [](pm9_tree* tree, pm9_error* error) {
        return pm9_tree_erase(tree, long_path, PM9_Z, nullptr, nullptr, error);
    };
    EXPECT_GT(fail_each(full_tree, erase), 0);
}

TEST_F(CMemory, OfASaveInMemory) {
    const auto save = [&](pm9_tree* tree, pm9_error* error) {
        const pm9_status status = pm9_tree_save_memory(tree, nullptr, &data, &length, error);
        if (status == PM9_OK) pm9_free(data);
        return status;
    };
    EXPECT_GT(fail_each(full_tree, save), 4);
}

TEST_F(CMemory, OfALoadFromMemory) {
    const std::string file = "PIAFILEVERSION_2.0\nn{\nlong name of a property=\"" + long_text + "\nb=1\n}\n";
    const auto load = [&](pm9_tree* tree, pm9_error* error) {
        return pm9_tree_load_memory(tree, file.data(), file.size(), nullptr, error);
    };
    EXPECT_GT(fail_each(small_tree, load), 10);
}

TEST_F(CMemory, OfAnErrorsText) {
    const auto text = [&](pm9_tree*, pm9_error* error) {
        const pm9_status status = pm9_error_text(PM9_ERR_BAD_LINE, &data, &length, error);
        if (status == PM9_OK) pm9_free(data);
        return status;
    };
    EXPECT_GT(fail_each(small_tree, text), 1);
}

} // namespace

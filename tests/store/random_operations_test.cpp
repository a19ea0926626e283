#include "base/allocator.h"
#include "store/pmpmgr.h"
#include "support/exceptions.h"
#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <pm/pm.h>
#include <random>
#include <string>
#include <vector>

// The same operations on an object and on a plain model of it: answers, numbers, trees and the names that are
// known must stay equal, with indexes and without memory for them.

namespace {

std::string narrow(std::u16string_view text) {
    return {text.begin(), text.end()};
}

struct ModelNode {
    std::u16string name;
    std::vector<std::pair<std::u16string, int>> props;
    std::vector<ModelNode> children;

    template<class List, class Name>
    static auto find_in(List& list, Name name_of, const std::u16string& name) {
        return std::find_if(list.begin(), list.end(),
                            [&](const auto& each) { return name_of(each) == name; });
    }
    auto prop(const std::u16string& text) {
        return find_in(
            props, [](const auto& each) { return each.first; }, text);
    }
    auto child(const std::u16string& text) {
        return find_in(
            children, [](const auto& each) { return each.name; }, text);
    }
};

using Names = std::vector<std::u16string>;

class Model {
public:
    // Number of the failure, 0 for none.
    int set(const Names& path, int value) {
        ModelNode* node = make(path.begin(), path.end() - 1);
        const auto known = node->prop(path.back());
        if (known != node->props.end()) {
            known->second = value;
        } else {
            node->props.emplace_back(path.back(), value);
        }
        return 0;
    }
    int erase(const Names& path) {
        if (!all_known(path)) return PM_ERR_BAD_PATH;
        ModelNode* node = find(path.begin(), path.end() - 1);
        if (node == nullptr) return PM_ERR_NOTHING_THERE;
        if (const auto prop = node->prop(path.back()); prop != node->props.end()) {
            node->props.erase(prop);
            return 0;
        }
        const auto child = node->child(path.back());
        if (child == node->children.end()) return PM_ERR_NOTHING_THERE;
        node->children.erase(child);
        return 0;
    }
    int duplicate(const Names& from, const Names& to) {
        if (std::find(to.begin(), to.end(), from.back()) != to.end()) return PM_ERR_COPY_INTO_ITSELF;
        const ModelNode* source = find(from.begin(), from.end());
        const ModelNode copy = source != nullptr ? *source : ModelNode{};
        merge(copy, *make(to.begin(), to.end()));
        return 0;
    }
    const int* get(const Names& path) {
        ModelNode* node = find(path.begin(), path.end() - 1);
        if (node == nullptr) return nullptr;
        const auto prop = node->prop(path.back());
        return prop != node->props.end() ? &prop->second : nullptr;
    }
    bool exists(const Names& path) {
        return all_known(path) && find(path.begin(), path.end() - 1) != nullptr;
    }
    std::map<std::u16string, int> names() const {
        std::map<std::u16string, int> all;
        count(m_root, all);
        return all;
    }
    int size() const {
        int all = 0;
        for (const auto& [name, count] : names())
            all += count;
        return all;
    }
    const ModelNode& root() const { return m_root; }

private:
    using Name = Names::const_iterator;

    ModelNode* find(Name first, Name last) {
        ModelNode* node = &m_root;
        for (; first != last; ++first) {
            const auto child = node->child(*first);
            if (child == node->children.end()) return nullptr;
            node = &*child;
        }
        return node;
    }
    ModelNode* make(Name first, Name last) {
        ModelNode* node = &m_root;
        for (; first != last; ++first) {
            const auto child = node->child(*first);
            node = child != node->children.end() ? &*child
                                                 : &node->children.emplace_back(ModelNode{*first, {}, {}});
        }
        return node;
    }
    static void merge(const ModelNode& from, ModelNode& to) {
        for (const auto& prop : from.props)
            if (to.prop(prop.first) == to.props.end()) to.props.push_back(prop);
        for (const ModelNode& child : from.children) {
            auto at = to.child(child.name);
            if (at == to.children.end()) at = to.children.insert(at, ModelNode{child.name, {}, {}});
            merge(child, *at);
        }
    }
    static void count(const ModelNode& node, std::map<std::u16string, int>& all) {
        ++all[node.name];
        for (const auto& prop : node.props)
            ++all[prop.first];
        for (const ModelNode& child : node.children)
            count(child, all);
    }
    static bool holds(const ModelNode& node, const std::u16string& name) {
        return node.name == name ||
               std::any_of(node.props.begin(), node.props.end(),
                           [&](const auto& prop) { return prop.first == name; }) ||
               std::any_of(node.children.begin(), node.children.end(),
                           [&](const ModelNode& child) { return holds(child, name); });
    }
    bool all_known(const Names& path) const {
        const auto known = names();
        return std::all_of(path.begin(), path.end(),
                           [&](const auto& name) { return known.count(name) != 0; });
    }

    ModelNode m_root{u"Root", {}, {}};
};

class OpenObject : public PM_Object {
public:
    void expect_equal(const Model& model) const {
        expect_equal(model.root(), *m_root, nullptr);
        for (const auto& [name, count] : model.names()) {
            const PM_PathStrings::Entry* entry = m_strings->Find(name.c_str());
            ASSERT_NE(nullptr, entry) << narrow(name);
            EXPECT_EQ(count, entry->count()) << narrow(name);
        }
    }
    bool knows(const std::u16string& name) const { return m_strings->Find(name.c_str()) != nullptr; }

private:
    static void expect_equal(const ModelNode& model, const PM_Node& node, const PM_Node* parent) {
        ASSERT_EQ(narrow(model.name), narrow(node.name()));
        EXPECT_EQ(parent, node.parent());
        const PM_Property* prop = node.first_prop();
        for (const auto& [name, value] : model.props) {
            ASSERT_NE(nullptr, prop);
            EXPECT_EQ(narrow(name), narrow(prop->name()));
            int stored = 0;
            prop->GetData(&stored, sizeof stored);
            EXPECT_EQ(value, stored);
            prop = prop->next();
        }
        EXPECT_EQ(nullptr, prop);
        const PM_Node* child = node.first_child();
        for (const ModelNode& each : model.children) {
            ASSERT_NE(nullptr, child);
            expect_equal(each, *child, &node);
            child = child->next_sibling();
        }
        EXPECT_EQ(nullptr, child);
    }
};

std::u16string joined(const Names& path) {
    std::u16string text;
    for (const std::u16string& name : path)
        text += u'\\' + name;
    return text;
}

int number_of(const std::function<void()>& action) {
    const auto e = pm::test::thrown_by(action);
    return e ? static_cast<int>(e->m_number) : 0;
}

// How many names there are, and how much memory for indexes.
struct Setting {
    unsigned names;
    pm::AllocationFilter filter;
};

class RandomOperations : public testing::TestWithParam<Setting> {
protected:
    RandomOperations() { pm::set_allocation_filter(GetParam().filter); }
    ~RandomOperations() override { pm::set_allocation_filter(nullptr); }
    RandomOperations(const RandomOperations&) = delete;
    RandomOperations& operator=(const RandomOperations&) = delete;

    Names some_path() {
        Names path;
        for (unsigned level = pick(3); level > 0; --level)
            path.push_back(some_name(4));
        path.push_back(some_name(GetParam().names));
        return path;
    }
    std::u16string some_name(unsigned names) {
        const std::string digits = std::to_string(pick(names));
        return u"name" + std::u16string(digits.begin(), digits.end());
    }
    unsigned pick(unsigned count) { return static_cast<unsigned>(m_random() % count); }
    void run_one();

    std::mt19937 m_random{GetParam().names};
    Model m_model;
    OpenObject m_object;
};

void RandomOperations::run_one() {
    const Names path = some_path();
    const std::u16string text = joined(path);
    const unsigned turn = pick(100);
    if (turn < 55) {
        const int value = static_cast<int>(m_random());
        EXPECT_EQ(m_model.set(path, value), number_of([&] { m_object.SetProperty(text.c_str(), value); }));
    } else if (turn < 75) {
        int value = 0;
        const int* expected = m_model.get(path);
        ASSERT_EQ(expected != nullptr, m_object.GetProperty(text.c_str(), value));
        EXPECT_EQ(expected != nullptr ? *expected : 0, value);
        EXPECT_EQ(m_model.exists(path), m_object.pathExists(text.c_str()));
    } else if (turn < 99) {
        EXPECT_EQ(m_model.erase(path), number_of([&] { m_object.deletePath(text.c_str()); }));
    } else {
        const Names to = some_path();
        // A copy into what holds the source changes the source while it is read.
        const bool holds = to.size() < path.size() && std::equal(to.begin(), to.end(), path.begin());
        if (holds || m_model.size() > 1000) return;
        EXPECT_EQ(m_model.duplicate(path, to),
                  number_of([&] { m_object.duplicate(text.c_str(), joined(to).c_str()); }));
    }
}

TEST_P(RandomOperations, GiveWhatAPlainTreeGives) {
    for (int turn = 0; turn < 3000; ++turn) {
        run_one();
        if (turn % 250 == 0) m_object.expect_equal(m_model);
        if (HasFailure()) FAIL() << "in turn " << turn;
    }
    m_object.expect_equal(m_model);
    const auto names = m_model.names();
    for (unsigned number = 0; number < GetParam().names; ++number) {
        const std::string digits = std::to_string(number);
        const auto name = u"name" + std::u16string(digits.begin(), digits.end());
        EXPECT_EQ(names.count(name) != 0, m_object.knows(name)) << narrow(name);
    }
}

constexpr std::size_t smallest_index = 576;
bool refuse_every_index(std::size_t size) {
    return size >= smallest_index;
}
bool refuse_larger_indexes(std::size_t size) {
    return size > 2 * smallest_index;
}
bool refuse_some_indexes(std::size_t size) {
    static unsigned turn = 0;
    return size >= smallest_index && ++turn % 3 != 0;
}

INSTANTIATE_TEST_SUITE_P(All, RandomOperations,
                         testing::Values(Setting{12, nullptr}, Setting{60, nullptr}, Setting{400, nullptr},
                                         Setting{400, refuse_every_index},
                                         Setting{400, refuse_larger_indexes},
                                         Setting{400, refuse_some_indexes}));

} // namespace

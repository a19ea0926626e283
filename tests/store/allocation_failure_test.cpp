#include "store/pmpmgr.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <pm/pm.h>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using pm::test::fail_each_allocation;
using pm::test::FailingAllocation;

// Number 55 of one failed allocation: where, and what was to be had.
using Failures = std::vector<std::pair<std::u16string, std::u16string>>;

void fill(PM_Object& object) {
    object.SetProperty(u"known\\p", 1);
    object.SetProperty(u"known\\n\\q", u"text");
    object.setVoidProperty(u"raw\\v", "abc", 3);
}

// What each failing allocation of `operation` raises; the object must work afterwards.
Failures failures_of(const std::function<void(PM_Object&)>& operation) {
    Failures failures;
    for (int place = 0;; ++place) {
        PM_Object object;
        fill(object);
        {
            const FailingAllocation failing(place);
            const std::type_info* type = nullptr;
            const auto e = pm::test::thrown_by([&] { operation(object); }, &type);
            if (!FailingAllocation::was_hit()) return failures;
            EXPECT_TRUE(e.has_value());
            if (e) {
                EXPECT_EQ(typeid(PM_Memory_Exception).name(), std::string(type->name()));
                EXPECT_EQ(PM_ERR_NO_MEMORY, e->m_number);
                failures.emplace_back(e->m_place, e->m_detail);
            }
        }
        object.SetProperty(u"after\\all", 7);
        int value = 0;
        EXPECT_TRUE(object.GetProperty(u"after\\all", value));
        EXPECT_TRUE(object.GetProperty(u"known\\p", value));
    }
}

constexpr const char16_t* add_place = u"PM_PathStrings::Add()";

TEST(AllocationFailure, MakingAnObjectTellsWhatFailed) {
    Failures failures;
    fail_each_allocation([&](int) {
        const std::type_info* type = nullptr;
        const auto e = pm::test::thrown_by([] { const PM_Object object; }, &type);
        if (!e) return;
        EXPECT_EQ(typeid(PM_Memory_Exception).name(), std::string(type->name()));
        failures.emplace_back(e->m_place, e->m_detail);
    });
    EXPECT_EQ((Failures{{u"PM_Object::PM_Object", u"m_strings"},
                        {add_place, u"entry"},
                        {add_place, u""},
                        {u"PM_Object::PM_Object", u"m_root"}}),
              failures);
}

TEST(AllocationFailure, SettingANewPropertyTellsWhatFailed) {
    EXPECT_EQ((Failures{{add_place, u"entry"},
                        {add_place, u""},
                        {add_place, u"entry"},
                        {add_place, u""},
                        {u"PM_Node::AddNode()", u"node"},
                        {u"PM_Node::AddProp", u"prop"},
                        {u"PM_Property::SetData()", u"Property Manager"}}),
              failures_of([](PM_Object& object) { object.SetProperty(u"new\\prop", 1); }));
}

TEST(AllocationFailure, OverwritingWithAnotherSizeLeavesNoValue) {
    const auto overwrite = [](PM_Object& object) { object.SetProperty(u"known\\n\\q", u"longer text"); };
    EXPECT_EQ((Failures{{u"PM_Property::SetData()", u"Property Manager"}}), failures_of(overwrite));

    PM_Object object;
    fill(object);
    {
        const FailingAllocation failing(0);
        (void)pm::test::thrown_by([&] { overwrite(object); });
    }
    EXPECT_EQ(0U, object.getPropertySize(u"known\\n\\q"));
    char16_t buffer[20];
    pm::test::expect_thrown<PM_Warning>(
        [&] { (void)object.GetProperty(u"known\\n\\q", buffer, sizeof buffer); }, PM_ERR_NO_VALUE,
        u"PM_Property::GetData()", u"q");
}

TEST(AllocationFailure, OverwritingWithTheSameSizeTakesNoMemory) {
    EXPECT_EQ(Failures{}, failures_of([](PM_Object& object) { object.SetProperty(u"known\\p", 2); }));
}

TEST(AllocationFailure, ReadsTakeNoMemory) {
    EXPECT_EQ(Failures{}, failures_of([](PM_Object& object) {
                  int value = 0;
                  (void)object.GetProperty(u"known\\p", value);
                  (void)object.getPropertySize(u"known\\n\\q");
                  (void)object.pathExists(u"known\\n");
                  object.deletePath(u"raw");
              }));
}

TEST(AllocationFailure, DuplicateTellsWhatFailed) {
    EXPECT_EQ((Failures{{add_place, u"entry"},
                        {add_place, u""},
                        {u"PM_Object::duplicate()", u"piter"},
                        {u"PM_Node::AddNode()", u"node"},
                        {u"PM_Node::AddProp", u"prop"},
                        {u"PM_Object::duplicate()", u"data"},
                        {u"PM_Property::SetData()", u"Property Manager"},
                        {u"PM_Node::AddNode()", u"node"},
                        {u"PM_Node::AddProp", u"prop"},
                        {u"PM_Object::duplicate()", u"data"},
                        {u"PM_Property::SetData()", u"Property Manager"}}),
              failures_of([](PM_Object& object) { object.duplicate(u"known", u"copy"); }));
}

// References that the nodes and properties below `node`, itself included, hold.
void count_names(const PM_Node& node, std::map<std::u16string, int>& names) {
    ++names[node.name()];
    for (const PM_Property* prop = node.first_prop(); prop != nullptr; prop = prop->next()) {
        ++names[prop->name()];
    }
    for (const PM_Node* child = node.first_child(); child != nullptr; child = child->next_sibling()) {
        count_names(*child, names);
    }
}

class OpenObject : public PM_Object {
public:
    // Expects that each of these names is held by the tree alone.
    void expect_held_by_tree(std::initializer_list<const char16_t*> texts) const {
        std::map<std::u16string, int> names;
        count_names(*m_root, names);
        for (const char16_t* text : texts) {
            const PM_PathStrings::Entry* entry = m_strings->Find(text);
            EXPECT_EQ(names[text], entry != nullptr ? entry->count() : 0)
                << std::string(text, text + std::u16string_view(text).size());
        }
    }
};

TEST(AllocationFailure, AnInterruptedWriteGivesBackTheNamesOfItsPath) {
    for (int place = 0;; ++place) {
        OpenObject object;
        fill(object);
        {
            const FailingAllocation failing(place);
            (void)pm::test::thrown_by([&] { object.SetProperty(u"known\\new\\n\\prop\\p", 1); });
            if (!FailingAllocation::was_hit()) return;
        }
        object.expect_held_by_tree({u"known", u"new", u"n", u"prop", u"p"});
    }
}

TEST(AllocationFailure, AnInterruptedDuplicateGivesBackTheNamesOfItsPaths) {
    for (int place = 0;; ++place) {
        OpenObject object;
        fill(object);
        {
            const FailingAllocation failing(place);
            (void)pm::test::thrown_by([&] { object.duplicate(u"known", u"copy\\new"); });
            if (!FailingAllocation::was_hit()) return;
        }
        object.expect_held_by_tree({u"known", u"copy", u"new", u"n", u"p", u"q"});
    }
}

TEST(AllocationFailure, AnIteratorWithoutMemoryIsNull) {
    PM_Object object;
    const FailingAllocation failing(0);
    EXPECT_EQ(nullptr, object.newIterator(u"\\", 0));
}

TEST(AllocationFailure, ValuesOfAWalkTellWhatFailed) {
    PM_Object object;
    object.SetProperty(u"l", 1);
    object.SetProperty(u"s", u"text");
    object.SetProperty(u"d", 0.1);
    object.SetProperty(u"b", true);
    object.setVoidProperty(u"v", "abc", 3);
    Failures failures;
    fail_each_allocation([&](int) {
        char* value = nullptr;
        std::size_t size = 0;
        PropType type{};
        const std::type_info* thrown = nullptr;
        const auto e = pm::test::thrown_by(
            [&] {
                const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
                while (walk && walk->nextProp(value, size, type) != nullptr) {
                }
            },
            &thrown);
        PM_Mem_Obj::operator delete(value);
        if (!e) return;
        EXPECT_EQ(typeid(PM_Memory_Exception).name(), std::string(thrown->name()));
        failures.emplace_back(e->m_place, e->m_detail);
    });
    const std::pair<std::u16string, std::u16string> no_value{u".\\pmobj", u"value"};
    EXPECT_EQ((Failures{no_value, no_value, no_value, no_value, {u".\\pmobj", u"data"}, no_value}), failures);
}

TEST(AllocationFailure, AFailedOverwriteHasTheNewTypeAndStrictness) {
    PM_Object object;
    object.SetProperty(u"a", 1, -1, false);
    {
        const FailingAllocation failing(0);
        (void)pm::test::thrown_by([&] { object.SetProperty(u"a", u"a longer text"); });
        EXPECT_TRUE(FailingAllocation::was_hit());
    }
    EXPECT_EQ(0U, object.getPropertySize(u"a"));
    int value = 0;
    pm::test::expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"a", value); }, PM_ERR_WRONG_TYPE,
                                        u"PM_Object::GetData()", u"");
    char16_t text[20];
    pm::test::expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"a", text, sizeof text); },
                                        PM_ERR_NO_VALUE, u"PM_Property::GetData()", u"a");
}

TEST(AllocationFailure, NodesMadeBeforeAPropertyFailsStay) {
    PM_Object object;
    fill(object);
    {
        const FailingAllocation failing(5); // the property, behind two names and the node
        pm::test::expect_thrown<PM_Memory_Exception>([&] { object.SetProperty(u"new\\prop", 1); },
                                                     PM_ERR_NO_MEMORY, u"PM_Node::AddProp", u"prop");
    }
    EXPECT_TRUE(object.pathExists(u"new\\known"));
    EXPECT_FALSE(object.pathExists(u"new\\prop"));
}

} // namespace

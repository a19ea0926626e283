#include "faults/memory_operations.h"

#include <memory>
#include <pm/value_text.h>

namespace pm::test {

namespace {

// A value of a walk, which is the caller's.
struct WalkedValue {
    ~WalkedValue() { PM_Mem_Obj::operator delete(bytes); }
    char* bytes = nullptr;
    std::size_t size = 0;
};

// What gives nothing without memory and raises nothing.
class Nothing : public std::exception {
public:
    const char* what() const noexcept override { return "nothing"; }
};

void walk(Subject& subject) {
    WalkedValue value;
    PropType type{};
    PM_Object::NodeType step{};
    const std::unique_ptr<PM_Iterator> iterator(subject.object.newIterator(u"\\", 0));
    if (!iterator) throw Nothing();
    do {
        while (iterator->nextProp(value.bytes, value.size, type) != nullptr) {
            subject.note(std::to_string(value.size));
        }
    } while (iterator->nextNode(step) != nullptr);
}

void compound(Subject& subject) {
    ZT_String packed;
    ZT_String first;
    ZT_String second;
    const char* list[] = {"one", "two"};
    build_compound_str_ex(u"one", u"two", packed);
    extract_compound_str_ex(packed.text(), first, second);
    for (const ZT_String* const text : {&packed, &first, &second}) {
        subject.note(text->text());
    }
    drc_compound_str_from_list(list, 2, packed);
    subject.note(packed.text());
}

void binary(Subject& subject) {
    char* out = nullptr;
    unsigned size = 0;
    const int answer = stringtobinary(u"55555555U3_#T@", &out, &size);
    std::free(out);
    if (answer == 0) throw Nothing();
    subject.note(std::to_string(size));
}

void set_through_tree(Subject& subject) {
    Tree tree;
    tree.set("\\list\\*\\name", "a text that no string holds in itself", 3);
    const auto value = tree.at<std::string>("\\list\\3\\name");
    subject.note(value);
}

constexpr const char* no_name = "PM_Memory_Exception 55, PM_PathStrings::Add(), entry";
constexpr const char* no_text = "PM_Memory_Exception 55, PM_PathStrings::Add(), ";
constexpr const char* no_node = "PM_Memory_Exception 55, PM_Node::AddNode(), node";
constexpr const char* no_property = "PM_Memory_Exception 55, PM_Node::AddProp, prop";
constexpr const char* no_value = "PM_Memory_Exception 55, PM_Property::SetData(), Property Manager";
constexpr const char* no_strings = "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings";
constexpr const char* no_root = "PM_Memory_Exception 55, PM_Object::PM_Object, m_root";

constexpr const char* no_text_value = "PM_Memory_Exception 55, .\\pmobj, value";

const MemoryOperation operations[] = {
    {"Make", [](Subject&) { const PM_Object object; }, {no_strings, no_root, no_name, no_text}},
    {"SetLong", [](Subject& s) { s.object.SetProperty(u"new\\deep\\node\\long", 5); }, store_failures()},
    {"SetText", [](Subject& s) { s.object.SetProperty(u"list\\*\\name", u"a long text of some units", 12); },
     store_failures()},
    {"SetNarrowText",
     [](Subject& s) {
         s.object.SetProperty(u"narrow", reinterpret_cast<const unsigned char*>("narrow text of a length"));
     },
     {no_name, no_text, no_property, no_value}},
    {"SetDouble", [](Subject& s) { s.object.SetProperty(u"known\\q", 2.5); }, {no_property, no_value}},
    {"SetRawOverAnother",
     [](Subject& s) {
         static const std::string large(100'000, 'x');
         s.object.setVoidProperty(u"raw\\v", large.data(), 100'000);
     },
     {no_value}},
    {"SetMany",
     [](Subject& s) {
         for (int index = 0; index < 200; ++index) {
             s.object.SetProperty(u"list\\*\\value", index, index);
         }
     },
     store_failures()},
    {"Get",
     [](Subject& s) {
         char16_t text[20];
         double number = 0;
         (void)s.object.GetProperty(u"known\\n\\q", text, sizeof text);
         (void)s.object.GetProperty(u"known\\n\\d", number);
         s.note(text);
         s.note(number == 0.1 && s.object.getPropertySize(u"raw\\v") == 47 ? "read" : "not read");
     },
     {}},
    {"Delete",
     [](Subject& s) {
         s.object.SetProperty(u"known\\p", 1);
         s.object.deletePath(u"known\\p");
         s.object.SetProperty(u"known\\p", 2);
         s.object.deletePath(u"known");
     },
     {no_name, no_text, no_property, no_value}},
    {"Duplicate", [](Subject& s) { s.object.duplicate(u"known", u"copy\\below"); },
     store_failures({"PM_Memory_Exception 55, PM_Object::duplicate(), data",
                     "PM_Memory_Exception 55, PM_Object::duplicate(), piter"}),
     LessDone::never,
     [](Subject& s) {
         if (s.object.pathExists(u"copy")) s.object.deletePath(u"copy");
     }},
    {"Walk", walk, {no_text_value, "PM_Memory_Exception 55, .\\pmobj, data", "nothing"}},
    {"CompoundText",
     compound,
     {"PM_Memory_Exception 55, .\\pmobj, c_str", "PM_Memory_Exception 55, .\\pmobj, compound_str",
      "PM_Memory_Exception 55, .\\pmobj, input", "PM_Memory_Exception 55, .\\pmobj, strlist[idx]"}},
    {"Binary", binary, {"nothing"}},
    {"MakeNode", [](Subject& s) { make_node(s.object, u"a\\new\\node"); }, {no_name, no_text, no_node}},
    {"Build",
     [](Subject& s) {
         const TreeBuilder builder(s.object);
         builder.child(builder.child(builder.root(), u"built"), u"below it");
     },
     {no_name, no_text, no_node}},
    {"Tree", set_through_tree, store_failures({no_strings, no_root, "std::bad_alloc"})},
    {"ErrorText",
     [](Subject& s) {
         ZT_String text;
         pm_error_text(PM_ERR_BAD_LINE, text);
         s.note(text.text());
     },
     {"PM_Memory_Exception 55, pm_error_text(), "}},
    {"Exception",
     [](Subject& s) {
         try {
             throw PM_Error(PM_ERR_BAD_LINE, u"a place", u"a detail", u"");
         } catch (const ZT_Exception& e) {
             const ZT_Exception copy(e);
             s.note(copy.m_place);
             s.note(copy.m_detail);
         }
     },
     {}},
};

} // namespace

std::vector<const char*> store_failures(std::vector<const char*> others) {
    others.insert(others.end(), {no_name, no_text, no_node, no_property, no_value});
    return others;
}

std::span<const MemoryOperation> store_operations() {
    return operations;
}

} // namespace pm::test

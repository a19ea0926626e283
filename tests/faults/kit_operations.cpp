#include "faults/memory_operations.h"

#include "kit/scratch_file.h"
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/file.h>
#include <pm/kit/json.h>
#include <pm/kit/loss.h>
#include <pm/kit/merge.h>
#include <pm/kit/pattern.h>
#include <pm/pm_c.h>

namespace pm::test {

namespace {

// Trees that are there before memory fails.
struct Trees {
    Tree first;
    Tree second;
    std::string json;
    std::string file = FaultFiles::get().narrow("long.pia");

    Trees() {
        first.set("\\media\\copies", 2);
        first.set("\\media\\name", "a text that no string holds in itself");
        second.set("\\media\\copies", 3);
        second.set("\\media\\size\\*\\width", 84.1, 1);
        json = kit::to_json(first);
    }
    static const Trees& get() {
        const Spared test;
        static const Trees trees;
        return trees;
    }
};

constexpr std::string_view script = "set \\media\\copies long 7\ncp \\media\\ \\copy\\\n";

void prepare(Subject& subject, PM_Object::FileType type) {
    const kit::Prepared prepared = kit::prepare(Trees::get().first, {.type = type});
    const Spared test;
    subject.note(hex_text(prepared.bytes) + std::to_string(prepared.losses.size()));
}

// A status that isn't PM9_OK; takes no memory.
class Status : public std::exception {
public:
    explicit Status(pm9_status status) { std::snprintf(m_text, sizeof m_text, "status %d", status); }
    const char* what() const noexcept override { return m_text; }

private:
    char m_text[20];
};

void require(pm9_status status) {
    if (status != PM9_OK) throw Status(status);
}

// What a function of the C interface gave.
class Given {
public:
    Given() = default;
    ~Given() { pm9_free(text); }
    Given(const Given&) = delete;
    Given& operator=(const Given&) = delete;
    char* text = nullptr;
    std::size_t length = 0;
};

class CTree {
public:
    CTree() { require(pm9_tree_new(&tree, nullptr)); }
    ~CTree() { pm9_tree_delete(tree); }
    CTree(const CTree&) = delete;
    CTree& operator=(const CTree&) = delete;
    pm9_tree* tree = nullptr;
};

void c_load_and_save(Subject& subject) {
    const CTree made;
    Given given;
    require(pm9_tree_load(made.tree, Trees::get().file.c_str(), PM9_Z, nullptr, nullptr));
    require(pm9_tree_save_memory(made.tree, nullptr, &given.text, &given.length, nullptr));
    subject.note(std::string_view(given.text, given.length));
}

void c_json(Subject& subject) {
    const CTree made;
    Given given;
    const std::string& json = Trees::get().json;
    require(pm9_tree_from_json(made.tree, json.data(), json.size(), nullptr));
    require(pm9_tree_apply(made.tree, script.data(), script.size(), nullptr));
    require(pm9_tree_to_json(made.tree, "\\", PM9_Z, nullptr, &given.text, &given.length, nullptr));
    subject.note(std::string_view(given.text, given.length));
}

void c_read_and_script(Subject& subject) {
    const CTree empty;
    const CTree made;
    Given given;
    require(pm9_tree_read(made.tree, Trees::get().file.c_str(), PM9_Z, nullptr, nullptr));
    require(pm9_script(empty.tree, made.tree, nullptr, &given.text, &given.length, nullptr));
    subject.note(std::string_view(given.text, given.length));
}

const MemoryOperation operations[] = {
    {"Read",
     [](Subject& s) {
         const kit::FileContent content = kit::read_file({.file = Trees::get().file});
         const Spared test;
         s.note(std::to_string(std::ranges::distance(content.tree.walk())));
     },
     store_failures({"long.pia: the file can't be read", "PM_Memory_Exception 55, .\\pmpia, data",
                     "PM_Memory_Exception 55, .\\pmpia, line", "PM_Memory_Exception 55, PM_Object::load(), ",
                     "PM_Memory_Exception 55, PM_Object::load(), pFiler",
                     "PM_Memory_Exception 55, pm::identify(), ", "PM_Severe 64, PM_PIAFile::open(), long.pia",
                     "PM_Severe 64, pm::identify(), long.pia",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings", "std::bad_alloc"})},
    {"ToJson", [](Subject& s) { s.note(kit::to_json(Trees::get().first)); }, {"std::bad_alloc"}},
    {"FromJson",
     [](Subject& s) {
         const Tree tree = kit::from_json(Trees::get().json);
         const Spared test;
         s.note(kit::to_json(tree));
     },
     store_failures({"PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings", "std::bad_alloc"})},
    {"Script",
     [](Subject& s) { s.note(kit::script(kit::compare(Trees::get().first, Trees::get().second))); },
     {"std::bad_alloc"}},
    {"Apply",
     [](Subject& s) {
         const Tree tree = kit::applied(Trees::get().first, kit::parse_script(script));
         const Spared test;
         s.note(kit::to_json(tree));
     },
     store_failures({"PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings", "std::bad_alloc"})},
    {"Merge",
     [](Subject& s) {
         const kit::Merged merged = kit::merge(Tree(), Trees::get().first, Trees::get().second);
         const Spared test;
         s.note(kit::to_json(merged.tree));
     },
     store_failures({"PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings", "std::bad_alloc"})},
    {"Find",
     [](Subject& s) {
         const auto found = kit::find_all(Trees::get().first, kit::Pattern("\\**\\[cn]*"));
         s.note(found.size() == 2 ? "both" : "not both");
     },
     {"std::bad_alloc"}},
    {"PreparePia", [](Subject& s) { prepare(s, PM_Object::FILE_PIA); },
     store_failures({"PM_Memory_Exception 55, .\\pmpia, line", "PM_Memory_Exception 55, PM_Object::load(), ",
                     "PM_Memory_Exception 55, PM_Object::load(), pFiler",
                     "PM_Memory_Exception 55, PM_Object::save(), pFiler",
                     "PM_Memory_Exception 55, PM_PIAFile::save(), buffer",
                     "PM_Memory_Exception 55, PM_PIAFile::save(), piter",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                     "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings", "std::bad_alloc"})},
    {"ScratchFile",
     [](Subject& s) {
         const kit::ScratchFile file("a content");
         s.note(file.content());
     },
     {"a temporary file can't be written", "a temporary file: the file can't be read", "std::bad_alloc"}},
    {"CLoadAndSave", c_load_and_save, {"status 55", "status 64"}},
    {"CJson", c_json, {"status 55"}},
    {"CReadAndScript", c_read_and_script, {"status 55", "status 64", "status 200"}},
};

} // namespace

std::span<const MemoryOperation> kit_operations() {
    return operations;
}

} // namespace pm::test

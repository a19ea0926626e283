#include "faults/kit_trees.h"
#include "faults/memory_operations.h"

#include "kit/scratch_file.h"
#include <pm/kit/check.h>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/loss.h>
#include <pm/kit/merge.h>
#include <pm/kit/pattern.h>
#include <pm/kit/report.h>

namespace pm::test {

namespace {

void prepare(Subject& subject, PM_Object::FileType type) {
    const kit::Prepared prepared = kit::prepare(Trees::get().first, {.type = type});
    const Spared test;
    subject.note(hex_text(prepared.bytes) + std::to_string(prepared.losses.size()));
}

// A file with a mistake of each kind that a rule of PIA looks for in its text.
void check(Subject& subject, const kit::CheckOptions& options) {
    const std::vector<kit::Diagnostic> found = kit::check_content(
        "PIAFILEVERSION_2.0\r\nn{\r\na=1\r\na=2\r\nb=what is this\r\nc=\"caf\xE9\r\n", "broken.pia", options);
    const Spared test;
    for (const kit::Diagnostic& diagnostic : found) {
        subject.note(diagnostic.rule);
    }
}

kit::ExplainedFindings compatibility() {
    return kit::explain_compatibility(Trees::get().plotter, Trees::get().description);
}

// The failures of a check that reads a PIA file, and `others`.
std::vector<const char*> check_failures(std::vector<const char*> others) {
    others.insert(others.end(), {"PM_Memory_Exception 55, .\\pmpia, line",
                                 "PM_Memory_Exception 55, PM_Object::PM_Object, m_root",
                                 "PM_Memory_Exception 55, PM_Object::PM_Object, m_strings",
                                 "PM_Memory_Exception 55, PM_Object::load(), ",
                                 "PM_Memory_Exception 55, PM_Object::load(), pFiler",
                                 "PM_Memory_Exception 55, pm::identify(), ", "std::bad_alloc"});
    return store_failures(others);
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
    {"Check", [](Subject& s) { check(s, {}); }, check_failures({})},
    {"CheckWithRoundTrip", [](Subject& s) { check(s, {.round_trip = true}); },
     check_failures({"PM_Memory_Exception 55, PM_Object::save(), pFiler",
                     "PM_Memory_Exception 55, PM_PIAFile::save(), buffer",
                     "PM_Memory_Exception 55, PM_PIAFile::save(), piter",
                     "PM_Severe 64, PM_PIAFile::save(), "})},
    {"CheckFile",
     [](Subject& s) {
         const auto found = kit::check_file(Trees::get().file);
         const Spared test;
         s.note(found.empty() ? "clean" : found.front().rule);
     },
     check_failures({"PM_Memory_Exception 55, .\\pmpia, data", "unreadable"}), LessDone::rule},
    {"Compatibility", [](Subject& s) { s.note(kit::findings_to_json(compatibility())); }, {"std::bad_alloc"}},
    {"MapOfSettings",
     [](Subject& s) { s.note(kit::map_to_json(kit::load_map(Trees::get().map))); },
     {"std::bad_alloc"}},
    {"ReportPage",
     [](Subject& s) {
         kit::ReportInput input;
         input.description = {"dx4200", Trees::get().description.root(), {}};
         input.configurations.push_back({"plotter", Trees::get().plotter.root(), compatibility()});
         s.note(kit::report_page(input));
     },
     {"std::bad_alloc"}},
    {"ScratchFile",
     [](Subject& s) {
         const kit::ScratchFile file("a content");
         s.note(file.content());
     },
     {"a temporary file can't be written", "a temporary file: the file can't be read", "std::bad_alloc"}},
};

} // namespace

std::span<const MemoryOperation> kit_operations() {
    return operations;
}

} // namespace pm::test

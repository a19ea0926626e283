#include "faults/kit_trees.h"
#include "faults/memory_operations.h"

#include <map>
#include <pm/pm_c.h>

namespace pm::test {

namespace {

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

template<class Item>
class List {
public:
    List() = default;
    ~List() { pm9_free(items); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    Item* items = nullptr;
    std::size_t count = 0;
};

class CTree {
public:
    CTree() { require(pm9_tree_new(&tree, nullptr)); }
    ~CTree() { pm9_tree_delete(tree); }
    CTree(const CTree&) = delete;
    CTree& operator=(const CTree&) = delete;
    pm9_tree* tree = nullptr;
};

// Trees that are there before memory fails.
struct CTrees {
    CTree base;
    CTree first;
    CTree second;
    CTree plotter;
    CTree description;

    CTrees() {
        fill(first, Trees::get().first);
        fill(second, Trees::get().second);
        fill(plotter, Trees::get().plotter);
        fill(description, Trees::get().description);
    }
    static const CTrees& get() {
        const Spared test;
        static const CTrees trees;
        return trees;
    }

private:
    static void fill(const CTree& made, const Tree& tree) {
        const std::string json = kit::to_json(tree);
        require(pm9_tree_from_json(made.tree, json.data(), json.size(), nullptr));
    }
};

const std::string& file_of(const char* sample) {
    static std::map<std::string, std::string> names;
    const Spared test;
    std::string& name = names[sample];
    if (name.empty()) name = FaultFiles::get().narrow(sample);
    return name;
}

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

void c_save(Subject& subject) {
    std::string target;
    {
        const Spared test;
        target = to_narrow(subject.target(), utf8_code_page);
    }
    require(pm9_tree_save(CTrees::get().first.tree, target.c_str(), PM9_Z, nullptr, nullptr));
    const Spared test;
    subject.note(subject.saved());
}

void c_reports(Subject& subject) {
    const CTree made;
    List<pm9_report> reports;
    require(pm9_tree_load(made.tree, Trees::get().file.c_str(), PM9_Z, nullptr, nullptr));
    require(pm9_tree_reports(made.tree, sizeof *reports.items, &reports.items, &reports.count, nullptr));
    for (std::size_t i = 0; i < reports.count; ++i) {
        const Spared test;
        subject.note(std::to_string(reports.items[i].number));
    }
}

void c_listings(Subject& subject) {
    pm9_identity identity{sizeof identity, 0, 0, 0, 0};
    List<pm9_section> sections;
    List<pm9_plotter> plotters;
    require(pm9_identify(file_of("sections.dpia").c_str(), PM9_Z, &identity, nullptr));
    require(pm9_sections(file_of("sections.dpia").c_str(), PM9_Z, sizeof *sections.items, &sections.items,
                         &sections.count, nullptr));
    require(pm9_plotters(file_of("three-plotters.cfg").c_str(), PM9_Z, sizeof *plotters.items,
                         &plotters.items, &plotters.count, nullptr));
    const Spared test;
    subject.note(std::to_string(identity.section_count));
    subject.note(std::string_view(sections.items[2].name, sections.items[2].name_length));
    subject.note(std::string_view(plotters.items[2].name, plotters.items[2].name_length));
}

void c_compare_and_merge(Subject& subject) {
    const CTrees& trees = CTrees::get();
    const CTree merged;
    List<pm9_difference> differences;
    List<pm9_conflict> conflicts;
    Given given;
    require(pm9_compare(trees.first.tree, trees.second.tree, nullptr, sizeof *differences.items,
                        &differences.items, &differences.count, nullptr));
    require(pm9_merge(merged.tree, trees.base.tree, trees.first.tree, trees.second.tree, 0,
                      sizeof *conflicts.items, &conflicts.items, &conflicts.count, nullptr));
    require(pm9_tree_to_json(merged.tree, "\\", PM9_Z, nullptr, &given.text, &given.length, nullptr));
    const Spared test;
    subject.note(std::to_string(differences.count) + ' ' + conflicts.items[0].path);
    subject.note(std::string_view(given.text, given.length));
}

void c_check(Subject& subject) {
    List<pm9_diagnostic> found;
    require(pm9_check(Trees::get().file.c_str(), PM9_Z, nullptr, sizeof *found.items, &found.items,
                      &found.count, nullptr));
    for (std::size_t i = 0; i < found.count; ++i) {
        subject.note(std::string_view(found.items[i].rule, found.items[i].rule_length));
    }
}

void c_prepare(Subject& subject) {
    Given given;
    List<pm9_loss> losses;
    pm9_write_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_PIA;
    require(pm9_prepare(CTrees::get().first.tree, &options, &given.text, &given.length, sizeof *losses.items,
                        &losses.items, &losses.count, nullptr));
    const Spared test;
    subject.note(hex_text(std::string(given.text, given.length)) + std::to_string(losses.count));
}

void c_compatibility(Subject& subject) {
    const CTrees& trees = CTrees::get();
    Given given;
    require(pm9_compatibility(trees.plotter.tree, trees.description.tree, nullptr, &given.text, &given.length,
                              nullptr));
    subject.note(std::string_view(given.text, given.length));
}

void c_unreported(Subject& subject) {
    List<pm9_loss> losses;
    require(pm9_unreported(file_of("plotter-compressed.pia").c_str(), PM9_Z, nullptr, sizeof *losses.items,
                           &losses.items, &losses.count, nullptr));
    const Spared test;
    subject.note(std::to_string(losses.count));
}

void c_report_page(Subject& subject) {
    const CTrees& trees = CTrees::get();
    const pm9_page_part description{sizeof description, trees.description.tree, "device", PM9_Z, nullptr, 0};
    const pm9_page_part plotter{sizeof plotter, trees.plotter.tree, "plotter", PM9_Z, nullptr, 0};
    Given given;
    require(pm9_report_page(&description, &plotter, sizeof plotter, 1, nullptr, &given.text, &given.length,
                            nullptr));
    subject.note(std::string_view(given.text, given.length));
}

const MemoryOperation operations[] = {
    {"CLoadAndSave", c_load_and_save, {"status 55", "status 64"}},
    {"CJson", c_json, {"status 55"}},
    {"CReadAndScript", c_read_and_script, {"status 55", "status 64", "status 200"}},
    {"CSave", c_save, {"status 55", "status 64"}},
    {"CReports", c_reports, {"status 55", "status 64"}},
    {"CListings", c_listings, {"status 55", "status 64"}},
    {"CCompareAndMerge", c_compare_and_merge, {"status 55"}},
    {"CCheck", c_check, {"status 55", "unreadable"}, LessDone::rule},
    {"CPrepare", c_prepare, {"status 55"}},
    {"CCompatibility", c_compatibility, {"status 55"}},
    {"CUnreported", c_unreported, {"status 55", "status 64"}},
    {"CReportPage", c_report_page, {"status 55"}},
};

} // namespace

std::span<const MemoryOperation> c_operations() {
    return operations;
}

} // namespace pm::test

#include "support/tree_text.h"
#include "threads/independent.h"
#include <pm/kit/check.h>
#include <pm/kit/compatibility.h>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/file.h>
#include <pm/kit/json.h>
#include <pm/kit/loss.h>
#include <pm/kit/merge.h>
#include <pm/kit/report.h>
#include <pm/pm_c.h>
#include <pm_test_paths.h>

namespace {

using namespace pm;
using namespace pm::test;

std::string sample(const char* name) {
    return std::string(PM_SAMPLES "/") + name;
}

Tree own_tree(int number) {
    Tree tree;
    tree.set("\\media\\copies", number);
    tree.set("\\media\\width", number / 7.0);
    tree.set("\\media\\name", "thread " + std::to_string(number));
    return tree;
}

Lines told(const std::vector<kit::Diagnostic>& diagnostics) {
    Lines lines;
    for (const kit::Diagnostic& diagnostic : diagnostics) {
        lines.push_back(diagnostic.rule + ' ' + diagnostic.path + ' ' + diagnostic.message);
    }
    return lines;
}

Lines json(int number, const TempFolder&) {
    const std::string text = kit::to_json(own_tree(number));
    return {text, kit::to_json(kit::from_json(text)), kit::to_json(kit::from_json("{\"pm9\": }"))};
}

Lines scripts(int number, const TempFolder&) {
    const std::string script = kit::script(kit::compare(own_tree(0), own_tree(number + 1)));
    const kit::Merged merged = kit::merge(own_tree(0), own_tree(number), own_tree(9));
    return {script, kit::to_json(kit::applied(own_tree(0), kit::parse_script(script))),
            kit::to_json(merged.tree)};
}

Lines prepared(int number, const TempFolder&) {
    Lines lines;
    for (const auto type : {PM_Object::FILE_PIA, PM_Object::FILE_DPIA, PM_Object::FILE_DOC}) {
        const kit::Prepared file = kit::prepare(own_tree(number), {.type = type});
        lines.push_back(hex_text(file.bytes) + std::to_string(file.losses.size()));
    }
    return lines;
}

Lines checks(int number, const TempFolder& folder) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0\nn{\na=" + std::to_string(number) + "\na=2\nb=what\n");
    Lines lines = told(kit::check_content(folder.read("bad.pia"), "bad.pia"));
    for (const char* name : {"sections.dpia", "three-plotters.cfg", "pens.pcp", "dx4200"}) {
        const Lines more = told(kit::check_file(sample(name), {.round_trip = true}));
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
}

Lines compatibility(int number, const TempFolder&) {
    Tree plotter = kit::read_file({.file = sample("plotter.pia")}).tree;
    plotter.set("\\media\\copies", 1000 + number);
    const Tree description = kit::read_file({.file = sample("dx4200")}).tree;
    const kit::ExplainedFindings found = kit::explain_compatibility(plotter, description);
    kit::ReportInput page;
    page.description = {"dx4200", description.root(), kit::explain_description(description)};
    page.configurations.push_back({"plotter", plotter.root(), found});
    return {kit::findings_to_json(found), kit::report_page(page)};
}

Lines c_interface(int number, const TempFolder&) {
    pm9_tree* tree = nullptr;
    char* text = nullptr;
    std::size_t length = 0;
    pm9_tree_new(&tree, nullptr);
    pm9_tree_set_long(tree, "\\n", PM9_Z, number, nullptr);
    pm9_error error{};
    error.size = sizeof error;
    const pm9_status refused = pm9_tree_load(tree, "/nowhere", PM9_Z, nullptr, &error);
    pm9_tree_to_json(tree, "\\", PM9_Z, nullptr, &text, &length, nullptr);
    const Lines lines = {std::to_string(refused), std::string(text, length)};
    pm9_free(text);
    pm9_tree_delete(tree);
    return lines;
}

class KitThreads : public testing::TestWithParam<ThreadWork> {};

TEST_P(KitThreads, EachGetsWhatItGetsAlone) {
    expect_independent({GetParam().work}, 3);
}

INSTANTIATE_TEST_SUITE_P(Work, KitThreads,
                         testing::Values(ThreadWork{"Json", json}, ThreadWork{"Scripts", scripts},
                                         ThreadWork{"Prepared", prepared}, ThreadWork{"Checks", checks},
                                         ThreadWork{"Compatibility", compatibility},
                                         ThreadWork{"CInterface", c_interface}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace

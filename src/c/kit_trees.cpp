#include "arguments.h"
#include "block.h"
#include "failure.h"
#include "kit_text.h"
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/merge.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

constexpr pm9_compare_options default_compare{sizeof(pm9_compare_options), 0, nullptr, 0, 0, 0};

std::vector<pm::kit::Difference> differences_of(const pm9_tree* first, const pm9_tree* second,
                                                const pm9_compare_options* given) {
    const pm9_compare_options how = options(given, default_compare, u"options");
    pm::kit::CompareOptions compare;
    compare.tolerance = how.tolerance;
    compare.exclude = lines_of(text(how.exclude, how.exclude_length));
    compare.order = how.any_order == 0;
    compare.strictness = how.any_strictness == 0;
    return pm::kit::compare(required(first, u"first").tree, required(second, u"second").tree, compare);
}

static_assert(static_cast<int>(pm::kit::Change::order) == PM9_OTHER_ORDER);

} // namespace

pm9_status pm9_compare(const pm9_tree* first, const pm9_tree* second, const pm9_compare_options* given,
                       size_t item_size, pm9_difference** differences, size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        ArrayBlock<pm9_difference> block;
        for (const pm::kit::Difference& difference : differences_of(first, second, given)) {
            pm9_difference item{};
            item.kind = static_cast<std::int32_t>(difference.change);
            block.add(item);
            block.add_text(&pm9_difference::path, &pm9_difference::path_length, difference.path);
            add_stored(block, &pm9_difference::before, &pm9_difference::before_length, difference.before);
            add_stored(block, &pm9_difference::after, &pm9_difference::after_length, difference.after);
        }
        block.hand_out(item_size, differences, count);
    });
}

pm9_status pm9_script(const pm9_tree* first, const pm9_tree* second, const pm9_compare_options* given,
                      char** text, size_t* length, pm9_error* error) {
    return guarded(error,
                   [&] { hand_out(pm::kit::script(differences_of(first, second, given)), text, length); });
}

pm9_status pm9_tree_apply(pm9_tree* tree, const char* script, size_t length, pm9_error* error) {
    return guarded(error, [&] {
        pm::kit::apply_edits(required(tree, u"tree").tree, pm::kit::parse_script(text(script, length)));
    });
}

pm9_status pm9_merge(pm9_tree* merged, const pm9_tree* base, const pm9_tree* first, const pm9_tree* second,
                     int32_t prefer_second, size_t item_size, pm9_conflict** conflicts, size_t* count,
                     pm9_error* error) {
    return guarded(error, [&] {
        pm9_tree& target = required(merged, u"merged");
        pm::kit::Merged result = pm::kit::merge(
            required(base, u"base").tree, required(first, u"first").tree, required(second, u"second").tree,
            prefer_second != 0 ? pm::kit::Prefer::second : pm::kit::Prefer::first);
        ArrayBlock<pm9_conflict> block;
        for (const pm::kit::Conflict& conflict : result.conflicts) {
            block.add({});
            block.add_text(&pm9_conflict::path, &pm9_conflict::path_length, conflict.path);
            add_stored(block, &pm9_conflict::base, &pm9_conflict::base_length, conflict.base);
            add_stored(block, &pm9_conflict::first, &pm9_conflict::first_length, conflict.first);
            add_stored(block, &pm9_conflict::second, &pm9_conflict::second_length, conflict.second);
        }
        block.hand_out(item_size, conflicts, count);
        target.take(std::move(result.tree));
    });
}

#include "arguments.h"
#include "block.h"
#include "failure.h"
#include <pm/kit/json.h>
#include <pm/pm_c.h>

using namespace pm::c;

pm9_status pm9_tree_to_json(const pm9_tree* tree, const char* path, size_t path_length,
                            const pm9_json_options* given, char** data, size_t* length, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_json_options how = options(given, pm9_json_options(), u"options");
        const std::optional<pm::Node> node = required(tree, u"tree").tree.node(text(path, path_length));
        if (!node) refuse(wide_text(path, path_length).c_str(), PM_ERR_NO_SUCH_NODE);
        pm::kit::JsonOptions json;
        if (how.one_line != 0) json.indent = -1;
        json.levels = how.levels;
        json.plain = how.plain != 0;
        hand_out(pm::kit::to_json(*node, json), data, length);
    });
}

pm9_status pm9_tree_from_json(pm9_tree* tree, const char* data, size_t length, pm9_error* error) {
    return guarded(error, [&] { required(tree, u"tree").take(pm::kit::from_json(text(data, length))); });
}

#include "arguments.h"
#include "block.h"
#include "failure.h"
#include "kit_text.h"
#include <pm/kit/loss.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

pm::kit::WriteOptions write_options(const pm9_write_options* given, const pm9_tree& tree) {
    const pm9_write_options how = options(given, pm9_write_options(), u"options");
    const std::optional<PM_Object::FileType> type = file_type(how.type);
    if (!type) refuse(u"type", PM_ERR_INVALID_ARGUMENT);
    pm::kit::WriteOptions write;
    write.type = *type;
    write.tag = text(how.tag, how.tag_length);
    write.utf8 = how.utf8 != 0;
    write.code_page = how.code_page;
    if (how.subtree != nullptr) write.subtree = text(how.subtree, how.subtree_length);
    write.sections = tree.sections;
    return write;
}

void add_loss(ArrayBlock<pm9_loss>& block, const pm::kit::Loss& loss) {
    using Item = pm9_loss;
    block.add({});
    block.add_text(&Item::kind, &Item::kind_length, pm::kit::loss_name(loss.kind));
    block.add_text(&Item::path, &Item::path_length, loss.path);
    block.add_text(&Item::new_path, &Item::new_path_length, loss.new_path);
    block.add_text(&Item::reason, &Item::reason_length, loss.reason);
    add_stored(block, &Item::before, &Item::before_length, loss.before);
    add_stored(block, &Item::after, &Item::after_length, loss.after);
}

} // namespace

pm9_status pm9_prepare(const pm9_tree* tree, const pm9_write_options* given, char** data, size_t* length,
                       size_t item_size, pm9_loss** losses, size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_tree& source = required(tree, u"tree");
        const pm::kit::Prepared prepared = pm::kit::prepare(source.tree, write_options(given, source));
        ArrayBlock<pm9_loss> block;
        for (const pm::kit::Loss& loss : prepared.losses) {
            add_loss(block, loss);
        }
        char*& result = required(data, u"data");
        std::size_t& result_length = required(length, u"length");
        Block bytes = copy_of(prepared.bytes);
        block.hand_out(item_size, losses, count);
        result = bytes.release();
        result_length = prepared.bytes.size();
    });
}

#include "losses.h"

#include "kit_text.h"

namespace pm::c {

ArrayBlock<pm9_loss> block_of(std::span<const kit::Loss> losses) {
    using Item = pm9_loss;
    ArrayBlock<Item> block;
    for (const kit::Loss& loss : losses) {
        block.add({});
        block.add_text(&Item::kind, &Item::kind_length, kit::loss_name(loss.kind));
        block.add_text(&Item::path, &Item::path_length, loss.path);
        block.add_text(&Item::new_path, &Item::new_path_length, loss.new_path);
        block.add_text(&Item::reason, &Item::reason_length, loss.reason);
        add_stored(block, &Item::before, &Item::before_length, loss.before);
        add_stored(block, &Item::after, &Item::after_length, loss.after);
    }
    return block;
}

} // namespace pm::c

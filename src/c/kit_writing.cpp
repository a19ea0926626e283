#include "arguments.h"
#include "block.h"
#include "failure.h"
#include "losses.h"
#include <algorithm>
#include <cstddef>
#include <pm/kit/loss.h>
#include <pm/kit/stored.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

// The struct of interface 1 ends in front of this.
constexpr std::size_t first_size = offsetof(pm9_write_options, section);

pm::kit::WriteOptions write_options(const pm9_write_options& how, const pm9_tree& tree) {
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

// The name of a node that can stand for a section of that name.
std::string node_name(std::string name) {
    std::ranges::replace(name, '\\', '/');
    return name.empty() ? "section" : name;
}

pm::kit::Prepared prepare_section(const pm9_tree& source, const std::string& name,
                                  pm::kit::WriteOptions write) {
    const std::optional<pm::Node> top = source.tree.node(write.subtree);
    if (!top) return pm::kit::prepare(source.tree, write); // which refuses it
    pm::kit::Section section{name, {}, node_name(name)};
    const auto known = std::ranges::find(source.sections, name, &pm::kit::Section::name);
    if (known != source.sections.end()) section.info = known->info;
    pm::Tree tree;
    pm::kit::copy(*top, tree, '\\' + section.node);
    write.subtree = "\\";
    write.sections = {section};
    return pm::kit::prepare(tree, write);
}

pm::kit::Prepared prepare(const pm9_tree& source, const pm9_write_options* given) {
    const pm9_write_options how = options(given, pm9_write_options(), u"options", first_size);
    pm::kit::WriteOptions write = write_options(how, source);
    if (how.section == nullptr || write.type != PM_Object::FILE_DPIA) {
        return pm::kit::prepare(source.tree, write);
    }
    return prepare_section(source, std::string(text(how.section, how.section_length)), std::move(write));
}

} // namespace

pm9_status pm9_prepare(const pm9_tree* tree, const pm9_write_options* given, char** data, size_t* length,
                       size_t item_size, pm9_loss** losses, size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        const pm::kit::Prepared prepared = prepare(required(tree, u"tree"), given);
        const ArrayBlock<pm9_loss> block = block_of(prepared.losses);
        char*& result = required(data, u"data");
        std::size_t& result_length = required(length, u"length");
        Block bytes = copy_of(prepared.bytes);
        block.hand_out(item_size, losses, count);
        result = bytes.release();
        result_length = prepared.bytes.size();
    });
}

// First byte: the format of the file, and the one that it is saved in. The rest: a file. What can be read of
// it is saved and loaded again: without a loss that was told it is the same, and saved anew it has the same
// bytes.

#include "fuzz_support.h"
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <pm/exception.h>
#include <pm/kit/difference.h>
#include <pm/kit/error.h>
#include <pm/kit/file.h>
#include <pm/kit/loss.h>
#include <string>
#include <string_view>

namespace {

using namespace pm::kit;
using pm::fuzz::require;

constexpr PM_Object::FileType read_types[] = {PM_Object::FILE_PIA, PM_Object::FILE_DPIA, PM_Object::FILE_DOC,
                                              PM_Object::FILE_PC2, PM_Object::FILE_CFG,  PM_Object::FILE_PCP};

struct Form {
    PM_Object::FileType type;
    const char* tag;
    bool utf8;
};
constexpr Form forms[] = {
    {PM_Object::FILE_PIA, "fuzz", false},
    {PM_Object::FILE_PIA, "fuzz", true},
    {PM_Object::FILE_PIA, "fuzz,compress", false},
    {PM_Object::FILE_PIA, "fuzz,compress", true},
    {PM_Object::FILE_DPIA, "", false},
    {PM_Object::FILE_DOC, "", false},
};

pm::Tree read(std::string_view content, PM_Object::FileType type) {
    FileContent result;
    try {
        read_content_into(result, content, {.file = "input", .type = type, .keep_going = true});
    } catch (const Error&) { // what was read stays
    } catch (const ZT_Exception&) {
    }
    return std::move(result.tree);
}

WriteOptions write_options(const Form& form) {
    return {.type = form.type, .tag = form.tag, .utf8 = form.utf8};
}

// A tree that a format can't hold as a whole is saved in halves, quarters and so on, each to a file.
bool is_small(const pm::Tree& tree) {
    constexpr std::ptrdiff_t most_items = 60;
    std::ptrdiff_t items = 0;
    for (const auto& [node, depth] : tree.walk()) {
        items += 1 + std::ranges::distance(node.properties());
    }
    return items <= most_items;
}

void save_and_read(const pm::Tree& tree, const Form& form) {
    if (form.type == PM_Object::FILE_DOC && !is_small(tree)) return;
    const Prepared prepared = prepare(tree, write_options(form));
    if (!prepared.losses.empty()) return;
    const FileContent back = read_content(
        prepared.bytes, {.file = "saved", .type = form.type, .code_page = form.utf8 ? 65001U : 0U});
    require(back.reports.empty());
    const bool ordered = form.type != PM_Object::FILE_DOC;
    require(compare(tree, back.tree, {.order = ordered, .strictness = false}).empty());
    require(prepare(back.tree, write_options(form)).losses.empty());
    if (ordered) require(prepare(back.tree, write_options(form)).bytes == prepared.bytes);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view content(reinterpret_cast<const char*>(data) + 1, size - 1);
    const pm::Tree tree = read(content, read_types[data[0] % std::size(read_types)]);
    save_and_read(tree, forms[data[0] / std::size(read_types) % std::size(forms)]);
    return 0;
}

#include "bundle.h"

#include "failure.h"
#include "output.h"
#include "paths.h"
#include "safe_save.h"
#include "text.h"
#include "tree_compare.h"
#include <algorithm>
#include <fmt/format.h>

namespace pmtool {

namespace {

bool is_ascii(const std::string& text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void check_part(const BundlePart& part) {
    if (part.name.empty() || part.name.find_first_of("\\*") != std::string::npos) {
        throw Failure(fmt::format("{}: this can't be the name of a section", in_quotes(part.name)));
    }
    if (!is_ascii(part.name) || !is_ascii(part.info)) {
        throw Failure(
            fmt::format("section {}: its name and info must be ASCII in a dpia file", in_quotes(part.name)));
    }
}

std::u16string node_of(const BundlePart& part) {
    return join_path(u"\\", pm::to_utf16(part.name));
}

std::u16string data_of(const BundlePart& part) {
    return join_path(node_of(part), u"data");
}

void load_part(PM_Object& object, const BundlePart& part) {
    const std::u16string node = node_of(part);
    if (pm::node_exists(object, node.c_str())) {
        throw Failure(fmt::format("section {} is named twice", in_quotes(part.name)));
    }
    // An empty tree must have its node too.
    pm::make_node(object, data_of(part).c_str());
    object.SetProperty(join_path(node, u"info").c_str(), pm::to_utf16(part.info).c_str());
    load_one_tree(object, part.source, data_of(part));
}

void check_kept(const PM_Object& object, const BundlePart& part, const std::string& file,
                const std::string& path) {
    PM_Object read_back;
    load_strictly(read_back, {file, path, part.name, &format_named("dpia")}, data_of(part));
    const FlatTree wanted = flatten(object, data_of(part));
    const FlatTree kept = flatten(read_back, data_of(part));
    warn_of_losses(fmt::format("{}[{}]", file, part.name), compare(wanted, kept));
}

} // namespace

void write_bundle(const std::string& file, const std::vector<BundlePart>& parts) {
    PM_Object object;
    std::ranges::for_each(parts, check_part);
    for (const BundlePart& part : parts) {
        load_part(object, part);
    }
    save_safely(file, [&](const std::string& path) {
        translating(file, path, [&] {
            object.save(pm::file_name_to_utf16(path).c_str(), PM_Object::FILE_DPIA, u"", u"\\");
        });
        for (const BundlePart& part : parts) {
            check_kept(object, part, file, path);
        }
    });
}

} // namespace pmtool

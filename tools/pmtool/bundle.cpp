#include "bundle.h"

#include "failure.h"
#include "safe_save.h"
#include "text.h"
#include "tree_walk.h"
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

void load_part(PM_Object& object, const BundlePart& part) {
    const std::u16string node = join_path(u"\\", to_utf16(part.name));
    if (node_exists(object, node))
        throw Failure(fmt::format("section {} is named twice", in_quotes(part.name)));
    const std::u16string data = join_path(node, u"data");
    const std::u16string mark = join_path(data, u"x");
    // An empty tree must have its node too.
    object.SetProperty(mark.c_str(), 0);
    object.deletePath(mark.c_str());
    object.SetProperty(join_path(node, u"info").c_str(), to_utf16(part.info).c_str());
    load_strictly(object, part.source, data);
}

} // namespace

void write_bundle(const std::string& file, const std::vector<BundlePart>& parts) {
    PM_Object object;
    std::ranges::for_each(parts, check_part);
    for (const BundlePart& part : parts)
        load_part(object, part);
    save_safely(file, [&](const std::string& path) {
        translating(file, path,
                    [&] { object.save(to_utf16(path).c_str(), PM_Object::FILE_DPIA, u"", u"\\"); });
    });
}

} // namespace pmtool

#include "arguments.h"
#include "block.h"
#include "failure.h"
#include "memory_stream.h"
#include "reports.h"
#include <istream>
#include <pm/inspect.h>
#include <pm/pm_c.h>
#include <pm/text.h>
#include <pm/tree.h>

using namespace pm::c;

namespace {

constexpr pm9_load_options default_load{
    sizeof(pm9_load_options), PM9_FILE_ANY, 0, nullptr, 0, nullptr, 0, nullptr, nullptr};

// Texts that no load takes are refused here, before one begins.
std::string_view checked_text(const char* data, std::size_t length) {
    static_cast<void>(wide_text(data, length));
    return text(data, length);
}

pm::LoadOptions load_options(const pm9_load_options& how) {
    pm::LoadOptions result;
    if (how.base != nullptr) result.base = checked_text(how.base, how.base_length);
    if (how.section != nullptr) result.section = checked_text(how.section, how.section_length);
    result.plotter = how.plotter;
    result.on_report = asking(how.on_report, how.context);
    return result;
}

// A file to load: a folder stands for its string file.
struct Source {
    std::u16string name;
    PM_Object::FileType type;
};

Source source_of(std::u16string file, std::optional<PM_Object::FileType> type) {
    if (type && *type != PM_Object::FILE_PDT) return {std::move(file), *type};
    const std::optional<pm::FileIdentity> identity = pm::identify(file);
    if (identity && !identity->string_file.empty()) return {identity->string_file, PM_Object::FILE_PDT};
    if (!type && !identity) refuse(file.c_str(), PM_ERR_NOT_OPENED);
    return {std::move(file), type ? *type : identity->type};
}

PM_Object::FileType type_of_bytes(std::string_view bytes, std::optional<PM_Object::FileType> type) {
    if (!type) {
        const std::optional<pm::FileIdentity> identity = pm::identify_content(bytes);
        if (!identity) refuse(u"", PM_ERR_NOT_OPENED);
        type = identity->type;
    }
    return *type;
}

pm::SaveOptions save_options(const pm9_save_options* given) {
    const pm9_save_options how = options(given, pm9_save_options(), u"options");
    const std::optional<PM_Object::FileType> type = file_type(how.type);
    if (!type) refuse(u"type", PM_ERR_INVALID_ARGUMENT);
    pm::SaveOptions result;
    result.type = *type;
    result.tag = text(how.tag, how.tag_length);
    if (how.subtree != nullptr) result.subtree = text(how.subtree, how.subtree_length);
    result.utf8 = how.utf8 != 0;
    return result;
}

void save_to(const pm::Tree& tree, GrowingBuffer& buffer, const pm::SaveOptions& how) {
    std::iostream stream(&buffer);
    stream.put('\0'); // so that there is a start to go to
    try {
        tree.save(stream, how);
    } catch (const ZT_Exception&) {
        if (buffer.is_out_of_memory()) throw std::bad_alloc();
        throw;
    }
}

} // namespace

pm9_status pm9_tree_load(pm9_tree* tree, const char* file, size_t file_length, const pm9_load_options* given,
                         pm9_error* error) {
    return guarded(error, [&] {
        const pm9_load_options how = options(given, default_load, u"options");
        pm9_tree& target = required(tree, u"tree");
        const std::optional<PM_Object::FileType> type = file_type(how.type);
        std::u16string name = file_name(file, file_length);
        pm::LoadOptions load = load_options(how);
        target.begin_load();
        const Source source = source_of(std::move(name), type);
        load.type = source.type;
        target.to_load().load(source.name, load);
    });
}

pm9_status pm9_tree_load_memory(pm9_tree* tree, const void* data, size_t length,
                                const pm9_load_options* given, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_load_options how = options(given, default_load, u"options");
        pm9_tree& target = required(tree, u"tree");
        const std::optional<PM_Object::FileType> type = file_type(how.type);
        const std::string_view bytes(static_cast<const char*>(data), data != nullptr ? length : 0);
        pm::LoadOptions load = load_options(how);
        target.begin_load();
        load.type = type_of_bytes(bytes, type);
        if (load.type == PM_Object::FILE_PDT || how.section != nullptr || how.plotter != 0) {
            refuse(u"", PM_ERR_TYPE_REFUSED);
        }
        BytesBuffer buffer(bytes);
        std::iostream stream(&buffer);
        target.to_load().load(stream, load);
    });
}

pm9_status pm9_tree_save(const pm9_tree* tree, const char* file, size_t file_length,
                         const pm9_save_options* given, pm9_error* error) {
    return guarded(error, [&] {
        const pm::SaveOptions how = save_options(given);
        required(tree, u"tree").tree.save(file_name(file, file_length), how);
    });
}

pm9_status pm9_tree_save_memory(const pm9_tree* tree, const pm9_save_options* given, char** data,
                                size_t* length, pm9_error* error) {
    return guarded(error, [&] {
        const pm::SaveOptions how = save_options(given);
        GrowingBuffer buffer;
        save_to(required(tree, u"tree").tree, buffer, how);
        hand_out(buffer.view(), data, length);
    });
}

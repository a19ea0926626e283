#include "arguments.h"
#include "block.h"
#include "exact.h"
#include "failure.h"
#include "values.h"
#include <memory>
#include <pm/inspect.h>
#include <pm/pm_c.h>
#include <pm/tree.h>

using namespace pm::c;

namespace {

template<class T>
pm9_status set_value(pm9_tree* tree, std::string_view path, const T& value, pm9_error* error) noexcept {
    return guarded(error, [&] { required(tree, u"tree").tree.set(path, value); });
}

template<class T, class Out>
pm9_status get_value(const pm9_tree* tree, std::string_view path, Out* value, pm9_error* error) noexcept {
    return guarded(error, [&] {
        Out& result = required(value, u"value");
        result = required(tree, u"tree").tree.at<T>(path);
    });
}

std::string_view bytes_of(const pm::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::u16string resolved(std::string_view path, std::int32_t index) {
    return pm::detail::resolve_index(pm::detail::Terminated(path), index);
}

std::int32_t kind_at(const pm::Tree& tree, std::string_view path, std::int32_t index) {
    if (index == PM9_EXACT) return kind_at_exact(tree, path);
    const std::int32_t kind =
        unless_bad_path([&] { return tree.property(path, index) ? PM9_PROPERTY : PM9_NOTHING; });
    if (kind == PM9_PROPERTY) return kind;
    // A node may have a path that is too long for a property.
    return unless_bad_path([&] { return tree.node(resolved(path, index)) ? PM9_NODE : PM9_NOTHING; });
}

std::int32_t erase_at(pm::Tree& tree, std::string_view path, std::int32_t index) {
    if (index == PM9_EXACT) return erase_exact(tree, path);
    const std::int32_t kind = kind_at(tree, path, index);
    if (kind != PM9_NOTHING) tree.object().deletePath(resolved(path, index).c_str());
    return kind;
}

} // namespace

pm9_status pm9_tree_new(pm9_tree** tree, pm9_error* error) {
    return guarded(error, [&] {
        pm9_tree*& result = required(tree, u"tree");
        result = std::make_unique<pm9_tree>().release();
    });
}

void pm9_tree_delete(pm9_tree* tree) {
    delete tree;
}

pm9_status pm9_tree_set(pm9_tree* tree, const char* path, size_t path_length, const pm9_access* access,
                        const pm9_value* value, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_access how = options(access, default_access, u"access");
        const pm9_value given = options(&required(value, u"value"), pm9_value(), u"value");
        pm::Tree& target = required(tree, u"tree").tree;
        const std::string_view where = text(path, path_length);
        if (how.index == PM9_EXACT) return set_exact(target, where, value_of(given), how.loose == 0);
        target.set(where, value_of(given), how.index, how.loose == 0);
    });
}

pm9_status pm9_tree_set_long(pm9_tree* tree, const char* path, size_t path_length, int32_t value,
                             pm9_error* error) {
    return set_value(tree, text(path, path_length), value, error);
}

pm9_status pm9_tree_set_double(pm9_tree* tree, const char* path, size_t path_length, double value,
                               pm9_error* error) {
    return set_value(tree, text(path, path_length), value, error);
}

pm9_status pm9_tree_set_bool(pm9_tree* tree, const char* path, size_t path_length, int32_t value,
                             pm9_error* error) {
    return set_value(tree, text(path, path_length), value != 0, error);
}

pm9_status pm9_tree_set_string(pm9_tree* tree, const char* path, size_t path_length, const char* value,
                               size_t value_length, pm9_error* error) {
    return set_value(tree, text(path, path_length), text(value, value_length), error);
}

pm9_status pm9_tree_set_raw(pm9_tree* tree, const char* path, size_t path_length, const void* value,
                            size_t value_length, pm9_error* error) {
    const std::span<const std::byte> bytes(static_cast<const std::byte*>(value),
                                           value != nullptr ? value_length : 0);
    return set_value(tree, text(path, path_length), bytes, error);
}

pm9_status pm9_tree_get(const pm9_tree* tree, const char* path, size_t path_length, const pm9_access* access,
                        pm9_value* value, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_access how = options(access, default_access, u"access");
        pm9_value& out = result(value, u"value");
        const pm::Tree& source = required(tree, u"tree").tree;
        const std::string_view where = text(path, path_length);
        hand_out_value(how.index == PM9_EXACT ? exact_value(source, where)
                                              : source.at<pm::Value>(where, how.index),
                       out);
    });
}

pm9_status pm9_tree_get_long(const pm9_tree* tree, const char* path, size_t path_length, int32_t* value,
                             pm9_error* error) {
    return get_value<std::int32_t>(tree, text(path, path_length), value, error);
}

pm9_status pm9_tree_get_double(const pm9_tree* tree, const char* path, size_t path_length, double* value,
                               pm9_error* error) {
    return get_value<double>(tree, text(path, path_length), value, error);
}

pm9_status pm9_tree_get_bool(const pm9_tree* tree, const char* path, size_t path_length, int32_t* value,
                             pm9_error* error) {
    return get_value<bool>(tree, text(path, path_length), value, error);
}

pm9_status pm9_tree_get_string(const pm9_tree* tree, const char* path, size_t path_length, char** value,
                               size_t* value_length, pm9_error* error) {
    return guarded(error, [&] {
        const pm::Tree& source = required(tree, u"tree").tree;
        hand_out(source.at<std::string>(text(path, path_length)), value, value_length);
    });
}

pm9_status pm9_tree_get_raw(const pm9_tree* tree, const char* path, size_t path_length, char** value,
                            size_t* value_length, pm9_error* error) {
    return guarded(error, [&] {
        const pm::Tree& source = required(tree, u"tree").tree;
        hand_out(bytes_of(source.at<pm::Bytes>(text(path, path_length))), value, value_length);
    });
}

pm9_status pm9_tree_contains(const pm9_tree* tree, const char* path, size_t path_length,
                             const pm9_access* access, int32_t* what, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_access how = options(access, default_access, u"access");
        std::int32_t& kind = required(what, u"what");
        kind = kind_at(required(tree, u"tree").tree, text(path, path_length), how.index);
    });
}

pm9_status pm9_tree_erase(pm9_tree* tree, const char* path, size_t path_length, const pm9_access* access,
                          int32_t* what, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_access how = options(access, default_access, u"access");
        const std::int32_t kind = erase_at(required(tree, u"tree").tree, text(path, path_length), how.index);
        if (what != nullptr) *what = kind;
    });
}

pm9_status pm9_tree_make_node(pm9_tree* tree, const char* path, size_t path_length, pm9_error* error) {
    return guarded(error, [&] {
        pm::make_node(required(tree, u"tree").tree.object(), wide_text(path, path_length).c_str());
    });
}

pm9_status pm9_tree_copy_node(pm9_tree* tree, const char* source, size_t source_length, const char* target,
                              size_t target_length, pm9_error* error) {
    return guarded(error, [&] {
        const std::u16string from = wide_text(source, source_length);
        const std::u16string to = wide_text(target, target_length);
        required(tree, u"tree").tree.object().duplicate(from.c_str(), to.c_str());
    });
}

#pragma once

// What tree.h declares; included by it.

#include <cstddef>
#include <cstdint>
#include <pm/detail/stored_value.h>
#include <pm/detail/terminated.h>
#include <pm/error_number.h>
#include <pm/tree.h>
#include <pm/view.h>
#include <ranges>
#include <span>
#include <string>
#include <utility>
#include <variant>

namespace pm {

namespace detail {

// The path that SetProperty() makes of these.
inline std::u16string resolve_index(const Terminated& path, int index) {
    std::u16string resolved(path.text(), path.size());
    const std::size_t star = resolved.find(u'*');
    const std::string digits = std::to_string(index);
    const std::u16string number(digits.begin(), digits.end());
    if (star != std::u16string::npos) {
        resolved.replace(star, 1, number);
    } else if (index != -1) {
        (resolved += u'\\') += number;
    }
    return resolved;
}

template<Readable T>
T read(const PM_Property& handle, const Terminated& path) {
    const PM_Property_View property = pm_view(handle);
    if constexpr (std::same_as<T, Value>) {
        return stored_value(property);
    } else {
        if (property.type != type_for<T>()) raise(PM_ERR_WRONG_TYPE, path.text());
        return stored_as<T>(property);
    }
}

// Where a value goes.
struct Target {
    PM_Object& object;
    const Terminated& path;
    int index;
    bool strict;
};

inline void store_text(const Target& target, const TextView& text) {
    constexpr std::size_t limit = 4096; // a longer one would be cut
    const char16_t* const path = target.path.text();
    const Terminated wide(text, PM_ERR_INVALID_ARGUMENT, path);
    if (wide.size() > limit) raise(PM_ERR_VALUE_TOO_LARGE, path);
    target.object.SetProperty(path, wide.text(), target.index, target.strict);
}

inline void store_bytes(const Target& target, std::span<const std::byte> bytes) {
    const char16_t* const path = target.path.text();
    if (!std::in_range<unsigned>(bytes.size())) raise(PM_ERR_VALUE_TOO_LARGE, path);
    const void* const data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    const auto size = static_cast<unsigned>(bytes.size());
    target.object.setVoidProperty(path, data, size, target.index, target.strict);
}

template<class T>
void store(const Target& target, const T& value) {
    const char16_t* const path = target.path.text();
    if constexpr (std::same_as<T, Value>) {
        std::visit([&](const auto& held) { store(target, held); }, value);
    } else if constexpr (std::same_as<T, std::monostate>) {
        raise(PM_ERR_NO_VALUE, path);
    } else if constexpr (std::same_as<T, bool>) {
        target.object.SetProperty(path, value, target.index, target.strict);
    } else if constexpr (std::integral<T>) {
        if (!std::in_range<std::int32_t>(value)) raise(PM_ERR_VALUE_TOO_LARGE, path);
        target.object.SetProperty(path, static_cast<int>(value), target.index, target.strict);
    } else if constexpr (std::floating_point<T>) {
        target.object.SetProperty(path, static_cast<double>(value), target.index, target.strict);
    } else if constexpr (std::convertible_to<const T&, TextView>) {
        store_text(target, value);
    } else {
        static_assert(std::ranges::contiguous_range<const T> && std::ranges::sized_range<const T>,
                      "a value is a number, a bool, a text, bytes or a pm::Value");
        store_bytes(target, std::as_bytes(std::span(value)));
    }
}

} // namespace detail

inline std::string error_text(std::uint32_t number) {
    ZT_String text;
    return pm_error_text(number, text) ? to_utf8(text.text()) : std::string();
}

template<Readable T>
std::optional<T> Tree::get(const TextView& path, int index) const {
    const detail::Terminated wide(path);
    const PM_Property* const property = pm_find_property(object(), wide.text(), index);
    if (property == nullptr) return std::nullopt;
    return detail::read<T>(*property, wide);
}

template<Readable T>
T Tree::at(const TextView& path, int index) const {
    const detail::Terminated wide(path);
    const PM_Property* const property = pm_find_property(object(), wide.text(), index);
    if (property == nullptr) {
        static_cast<void>(object().getPropertySize(wide.text(), index)); // raises
        detail::raise(PM_ERR_NO_SUCH_PROPERTY, wide.text());
    }
    return detail::read<T>(*property, wide);
}

template<class T>
void Tree::set(const TextView& path, const T& value, int index, bool strict) {
    const detail::Terminated wide(path);
    detail::store({object(), wide, index, strict}, value);
}

inline bool Tree::erase(const TextView& path, int index) {
    const detail::Terminated wide(path);
    const std::u16string resolved = detail::resolve_index(wide, index);
    if (!holds(wide, index, resolved)) return false;
    object().deletePath(resolved.c_str());
    return true;
}

inline bool Tree::contains(const TextView& path, int index) const {
    const detail::Terminated wide(path);
    return holds(wide, index, detail::resolve_index(wide, index));
}

inline bool Tree::holds(const detail::Terminated& path, int index, const std::u16string& resolved) const {
    return pm_find_property(object(), path.text(), index) != nullptr ||
           pm_find_node(object(), resolved.c_str()) != nullptr;
}

inline Answer Tree::Collector::on_report(int kind, std::uint32_t number, std::u16string_view place,
                                         std::u16string_view detail) {
    met.push_back({kind, number, to_utf8(place), to_utf8(detail)});
    return ask != nullptr && *ask ? (*ask)(met.back()) : Answer::go_on;
}

template<class Load>
std::vector<Report> Tree::collect(const LoadOptions& options, Load load) {
    struct Asking {
        Collector& collector;
        ~Asking() { collector.ask = nullptr; }
    };
    const detail::Terminated base(options.base);
    Collector& collector = m_state->collector;
    collector.met.clear();
    collector.ask = &options.on_report;
    const Asking until_done{collector};
    load(base.text());
    return collector.met;
}

inline std::vector<Report> Tree::load(const TextView& file, const LoadOptions& options) {
    const detail::Terminated name = detail::Terminated::file_name(file);
    return collect(options, [&](const char16_t* base) {
        if (options.section) {
            const detail::Terminated section(*options.section);
            object().load_section(name.text(), options.type, base, section.text());
        } else if (options.type == PM_Object::FILE_CFG || options.plotter != 0) {
            object().load_cfg_section(name.text(), options.type, base, options.plotter);
        } else {
            object().load(name.text(), options.type, base);
        }
    });
}

inline std::vector<Report> Tree::load(std::iostream& stream, const LoadOptions& options) {
    return collect(options, [&](const char16_t* base) { object().load(stream, options.type, base); });
}

inline void Tree::save(const TextView& file, const SaveOptions& options) const {
    const detail::Terminated name = detail::Terminated::file_name(file);
    const detail::Terminated tag(options.tag);
    const detail::Terminated subtree(options.subtree);
    object().save(name.text(), options.type, tag.text(), subtree.text(), options.utf8);
}

inline void Tree::save(std::iostream& stream, const SaveOptions& options) const {
    const detail::Terminated tag(options.tag);
    const detail::Terminated subtree(options.subtree);
    object().save(stream, options.type, tag.text(), subtree.text(), options.utf8);
}

inline Loaded load(const TextView& file, const LoadOptions& options) {
    Loaded loaded;
    loaded.reports = loaded.tree.load(file, options);
    return loaded;
}

inline Loaded load(std::iostream& stream, const LoadOptions& options) {
    Loaded loaded;
    loaded.reports = loaded.tree.load(stream, options);
    return loaded;
}

inline void save(const Tree& tree, const TextView& file, const SaveOptions& options) {
    tree.save(file, options);
}

inline void save(const Tree& tree, std::iostream& stream, const SaveOptions& options) {
    tree.save(stream, options);
}

} // namespace pm

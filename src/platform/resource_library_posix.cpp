#include "platform/resource_library.h"

#include <array>
#include <bit>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <optional>
#include <string_view>

namespace pm {

namespace {

constexpr std::string_view library_name = "libpmres9.so";
// Tried in this order, from the folder of this library.
constexpr std::array<std::string_view, 2> own_places{"", "pm9/"};
constexpr const char* text_function = "pmres9_text";

void* to_handle(std::uint64_t handle) {
    return std::bit_cast<void*>(static_cast<std::uintptr_t>(handle));
}

void* open_library(const char* name) {
    return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

using PathBuffer = std::array<char, PATH_MAX>;

// Puts this library's folder into the buffer and gives its length, with the slash that ends it. Linked into a
// program that was started by a bare name, the library doesn't know its folder.
std::optional<std::size_t> own_folder(PathBuffer& out) {
    Dl_info self{};
    if (dladdr(&library_name, &self) == 0 || std::strchr(self.dli_fname, '/') == nullptr) return std::nullopt;
    if (realpath(self.dli_fname, out.data()) == nullptr) return std::nullopt;
    return std::string_view(out.data()).rfind('/') + 1;
}

// The message library at that place below the folder of so many bytes at the start of `path`, or null.
void* open_below(PathBuffer& path, std::size_t folder, std::string_view place) {
    if (path.size() - folder <= place.size() + library_name.size()) return nullptr;
    char* end = path.data() + folder;
    end += place.copy(end, place.size());
    end += library_name.copy(end, library_name.size());
    *end = '\0';
    return open_library(path.data());
}

void* open_beside_this_library() {
    PathBuffer path;
    const std::optional<std::size_t> folder = own_folder(path);
    if (!folder) return nullptr;
    for (const std::string_view place : own_places) {
        if (void* library = open_below(path, *folder, place)) return library;
    }
    return nullptr;
}

} // namespace

std::uint64_t open_resource_library() {
    void* library = open_beside_this_library();
    if (library == nullptr) library = open_library(library_name.data());
    return std::bit_cast<std::uintptr_t>(library);
}

void close_resource_library(std::uint64_t handle) {
    dlclose(to_handle(handle));
}

std::u16string_view resource_text(std::uint64_t handle, std::uint32_t number) {
    using TextFunction = const char16_t* (*)(std::uint32_t);
    if (handle == 0) return {};
    const auto function = std::bit_cast<TextFunction>(dlsym(to_handle(handle), text_function));
    const char16_t* text = function != nullptr ? function(number) : nullptr;
    return text != nullptr ? text : std::u16string_view();
}

bool resource_library_lives_with_module() {
    return true;
}

} // namespace pm

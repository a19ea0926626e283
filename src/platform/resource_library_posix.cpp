#include "platform/resource_library.h"

#include <bit>
#include <dlfcn.h>

namespace pm {

namespace {

constexpr const char* library_name = "libpmres9.so";
constexpr const char* text_function = "pmres9_text";

void* to_handle(std::uint64_t handle) {
    return std::bit_cast<void*>(static_cast<std::uintptr_t>(handle));
}

} // namespace

std::uint64_t open_resource_library() {
    return std::bit_cast<std::uintptr_t>(dlopen(library_name, RTLD_NOW | RTLD_LOCAL));
}

void close_resource_library(std::uint64_t handle) {
    dlclose(to_handle(handle));
}

const char16_t* resource_text(std::uint64_t handle, std::uint32_t number) {
    using TextFunction = const char16_t* (*)(std::uint32_t);
    if (handle == 0) return nullptr;
    const auto text = std::bit_cast<TextFunction>(dlsym(to_handle(handle), text_function));
    return text != nullptr ? text(number) : nullptr;
}

} // namespace pm

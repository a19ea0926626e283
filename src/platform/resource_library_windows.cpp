#include "platform/resource_library.h"

#include <array>
#include <bit>
#include <limits>
#include <string_view>
#include <windows.h>

namespace pm {

namespace {

constexpr std::wstring_view library_name = L"pmres9.dll";
// Tried in this order, from the folder of this library.
constexpr std::wstring_view own_places[] = {L"", L"pm9\\"};
// The message library has no code.
constexpr DWORD data_only = LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;

HMODULE to_handle(std::uint64_t handle) {
    return std::bit_cast<HMODULE>(static_cast<std::uintptr_t>(handle));
}

HMODULE own_module() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       std::bit_cast<LPCWSTR>(&library_name), &module);
    return module;
}

using PathBuffer = std::array<wchar_t, 0x1000>;

// Puts this library's folder into the buffer and gives its length, with the separator that ends it; 0 if it
// doesn't fit.
std::size_t own_folder(PathBuffer& out) {
    const DWORD length = GetModuleFileNameW(own_module(), out.data(), static_cast<DWORD>(out.size()));
    if (length == 0 || length == out.size()) return 0;
    return std::wstring_view(out.data(), length).rfind(L'\\') + 1;
}

// The message library at that place below the folder of so many units at the start of `path`, or null.
HMODULE open_below(PathBuffer& path, std::size_t folder, std::wstring_view place) {
    if (path.size() - folder <= place.size() + library_name.size()) return nullptr;
    wchar_t* end = path.data() + folder;
    end += place.copy(end, place.size());
    end += library_name.copy(end, library_name.size());
    *end = L'\0';
    return LoadLibraryExW(path.data(), nullptr, data_only);
}

HMODULE open_beside_this_library() {
    PathBuffer path;
    const std::size_t folder = own_folder(path);
    if (folder == 0) return nullptr;
    for (const std::wstring_view place : own_places) {
        if (HMODULE library = open_below(path, folder, place)) return library;
    }
    return nullptr;
}

} // namespace

std::uint64_t open_resource_library() {
    HMODULE library = open_beside_this_library();
    if (library == nullptr) library = LoadLibraryExW(library_name.data(), nullptr, data_only);
    return std::bit_cast<std::uintptr_t>(library);
}

void close_resource_library(std::uint64_t handle) {
    FreeLibrary(to_handle(handle));
}

std::u16string_view resource_text(std::uint64_t handle, std::uint32_t number) {
    if (handle == 0 || number > std::numeric_limits<std::uint16_t>::max()) return {};
    // With a length of 0 it gives the place of the text in the library.
    const wchar_t* text = nullptr;
    const int length = LoadStringW(to_handle(handle), number, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0) return {};
    return {reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(length)};
}

bool resource_library_lives_with_module() {
    return false;
}

} // namespace pm

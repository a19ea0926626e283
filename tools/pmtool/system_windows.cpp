#include "system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <io.h>
#include <mutex>
#include <pm/text.h>
#include <random>
#include <system_error>
#include <utility>
// After this header alone.
#include <windows.h>

#include <shellapi.h>

namespace pmtool {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::error_code& error) {
    throw std::system_error(error.default_error_condition().value(), std::generic_category());
}

[[noreturn]] void fail_last() {
    fail({static_cast<int>(GetLastError()), std::system_category()});
}

[[noreturn]] void fail_errno() {
    throw std::system_error(errno, std::generic_category());
}

std::wstring to_native(const std::string& text) {
    const std::u16string wide = pm::file_name_to_utf16(text);
    return {wide.begin(), wide.end()};
}

std::string to_utf8(std::wstring_view text) {
    return pm::file_name_to_utf8(std::u16string(text.begin(), text.end()));
}

fs::path to_path(const std::string& name) {
    return to_native(name);
}

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

// Devices, such as NUL and CON, have names in every folder and pass for files there.
bool is_device(const std::string& name) {
    const HANDLE file = CreateFileW(to_native(name).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const DWORD type = GetFileType(file);
    CloseHandle(file);
    return type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE;
}

File open_file(const std::string& name, const wchar_t* mode) {
    File file(_wfopen(to_native(name).c_str(), mode));
    if (file != nullptr) return file;
    // A folder can't be opened, and the system calls that a right that is missing.
    if (kind_of(name) == FileKind::folder) errno = EISDIR;
    fail_errno();
}

std::string read_stream(std::FILE* stream) {
    std::string content;
    std::array<char, std::size_t{1} << 16> block{};
    std::size_t count = 0;
    while ((count = std::fread(block.data(), 1, block.size(), stream)) > 0) {
        content.append(block.data(), count);
    }
    if (std::ferror(stream) != 0) fail_errno();
    return content;
}

std::FILE* stream_of(Stream stream) {
    switch (stream) {
    case Stream::in:
        return stdin;
    case Stream::out:
        return stdout;
    case Stream::err:
        return stderr;
    }
    return stdout;
}

UINT code_page_before = 0;

// Of the scratch file that there is, for who holds the lock.
std::recursive_mutex console_handling;
HANDLE scratch = INVALID_HANDLE_VALUE;

BOOL WINAPI end_by_console(DWORD) {
    const std::lock_guard lock(console_handling);
    FILE_DISPOSITION_INFO removal{TRUE};
    if (scratch != INVALID_HANDLE_VALUE) {
        SetFileInformationByHandle(scratch, FileDispositionInfo, &removal, sizeof removal);
    }
    return FALSE; // and the program ends, and with it the file
}

// One that takes no part of a file keeps the others of its kind out.
std::wstring lock_name(const std::string& path) {
    std::error_code error;
    std::wstring name = fs::weakly_canonical(to_path(path), error).native();
    std::ranges::transform(name, name.begin(), [](wchar_t c) { return c == L'\\' ? L'/' : towlower(c); });
    return L"Local\\pmtool" + name.substr(name.size() > 200 ? name.size() - 200 : 0);
}

std::string folder_of(const std::string& path) {
    const std::size_t end = path.find_last_of("/\\:");
    return end == std::string::npos ? "." : path.substr(0, end + 1);
}

// --- scratch files

constexpr std::size_t largest_write = std::size_t{1} << 30;

bool is_scratch_name(const std::string& name) {
    return name.starts_with(scratch_prefix) && name.size() == scratch_prefix.size() + scratch_random;
}

// Removes what programs left that were killed before they were done. One that lives has its file open, so
// that it stays.
void clean_up(const std::string& folder) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(to_path(folder), error)) {
        if (is_scratch_name(to_utf8(entry.path().filename().native()))) DeleteFileW(entry.path().c_str());
    }
}

// Nobody else can write to it, move it or remove it while it is open.
int open_scratch(const std::string& folder, std::string& name) {
    std::mt19937 random(std::random_device{}());
    HANDLE file = INVALID_HANDLE_VALUE;
    while (file == INVALID_HANDLE_VALUE) {
        const fs::path path = to_path(folder) / fmt::format("{}{:06x}", scratch_prefix, random() & 0xFFFFFF);
        name = to_utf8(path.native());
        file = CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0,
                           nullptr);
        if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) fail_last();
    }
    scratch = file;
    return _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY);
}

void close_scratch(int& file) {
    if (file < 0) return;
    scratch = INVALID_HANDLE_VALUE;
    _close(std::exchange(file, -1));
}

} // namespace

// --- the process

void prepare_process() {
    for (std::FILE* stream : {stdin, stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
    }
    SetConsoleCtrlHandler(end_by_console, TRUE);
    code_page_before = GetConsoleOutputCP();
    if (code_page_before == 0 || SetConsoleOutputCP(CP_UTF8) == FALSE) return;
    std::atexit([] {
        std::fflush(stdout);
        SetConsoleOutputCP(code_page_before);
    });
}

// A console tells of its signals in a thread of its own.
SignalDelay::SignalDelay() {
    console_handling.lock();
}

SignalDelay::~SignalDelay() {
    console_handling.unlock();
}

std::vector<std::string> command_line(int, char**) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                              &LocalFree);
    std::vector<std::string> all;
    for (int i = 0; i < count; ++i) {
        all.push_back(to_utf8(words.get()[i]));
    }
    return all;
}

bool is_terminal(Stream stream) {
    return _isatty(_fileno(stream_of(stream))) != 0;
}

std::size_t terminal_width() {
    constexpr std::size_t usual = 80;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen) == FALSE) return usual;
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

std::optional<std::string> environment(const char* name) {
    const wchar_t* value = _wgetenv(to_native(name).c_str());
    if (value == nullptr || *value == L'\0') return std::nullopt;
    return to_utf8(value);
}

int run_command(const std::string& command, const std::string& argument) {
    std::fflush(nullptr);
    // The command interpreter takes off the first quote and the last, whatever they belong to.
    return _wsystem(to_native('"' + command + " \"" + argument + "\"\"").c_str());
}

std::string usual_editor() {
    return "notepad";
}

std::string temporary_folder() {
    std::array<wchar_t, MAX_PATH + 1> name{};
    const DWORD size = GetTempPathW(static_cast<DWORD>(name.size()), name.data());
    return to_utf8({name.data(), size});
}

int common_error(int code) {
    return code;
}

// --- files

std::string_view folder_separators() {
    return "/\\:";
}

FileKind kind_of(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(to_path(path), error);
    if (!fs::is_directory(status) && is_device(path)) return FileKind::special;
    if (!fs::exists(status)) return FileKind::missing;
    if (fs::is_regular_file(status)) return FileKind::regular;
    return fs::is_directory(status) ? FileKind::folder : FileKind::special;
}

bool is_same_file(const std::string& first, const std::string& second) {
    std::error_code error;
    return fs::equivalent(to_path(first), to_path(second), error);
}

// They have no names here.
bool is_open_file(const std::string&) {
    return false;
}

std::string read_whole(const std::string& path) {
    return read_stream(open_file(path, L"rb").get());
}

std::string read_standard_input() {
    return read_stream(stdin);
}

void write_special(const std::string& path, std::string_view bytes) {
    const File file = open_file(path, L"wb");
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    if (!written || std::fflush(file.get()) != 0) fail_errno();
}

std::vector<std::string> names_in(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(to_path(folder), error)) {
        names.push_back(to_utf8(entry.path().filename().native()));
    }
    if (error) fail(error);
    std::ranges::sort(names);
    return names;
}

// By name: the file itself couldn't be replaced while it is open.
FileLock::FileLock(const std::string& path) {
    HANDLE mutex = CreateMutexW(nullptr, FALSE, lock_name(path).c_str());
    if (mutex == nullptr) return;
    WaitForSingleObject(mutex, INFINITE);
    m_file = reinterpret_cast<std::intptr_t>(mutex);
}

FileLock::~FileLock() {
    if (m_file == none) return;
    const auto mutex = reinterpret_cast<HANDLE>(m_file);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
}

ScratchFile::ScratchFile(const std::string& target)
    : m_target(target), m_is_new(kind_of(target) == FileKind::missing) {
    const SignalDelay delay;
    const FileLock folder(folder_of(target));
    clean_up(folder_of(target));
    m_file = open_scratch(folder_of(target), m_name);
}

ScratchFile::~ScratchFile() {
    const SignalDelay delay;
    close_scratch(m_file);
    if (!m_name.empty()) DeleteFileW(to_native(m_name).c_str());
}

void ScratchFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const int written =
            _write(m_file, bytes.data(), static_cast<unsigned>(std::min(bytes.size(), largest_write)));
        if (written < 0) fail_errno();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

// The rights of the folder go to what is moved within it.
void ScratchFile::keep_attributes() {}

void ScratchFile::keep_attributes_of(const std::string&) {}

void ScratchFile::replace_target(const std::optional<std::string>& backup_suffix) {
    constexpr DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    const std::wstring target = to_native(m_target);
    if (_commit(m_file) != 0) fail_errno();
    if (backup_suffix && !m_is_new) {
        const std::wstring backup = to_native(m_target + *backup_suffix);
        if (CopyFileW(target.c_str(), backup.c_str(), FALSE) == FALSE) fail_last();
    }
    const SignalDelay delay;
    // What is open can't be moved, and what isn't would be anybody's to clean up but for this lock.
    const FileLock folder(folder_of(m_target));
    close_scratch(m_file);
    if (MoveFileExW(to_native(m_name).c_str(), target.c_str(), flags) == FALSE) fail_last();
    m_name.clear();
}

EditorFile::EditorFile(std::string_view ending, std::string_view content) {
    std::array<wchar_t, MAX_PATH> name{};
    if (GetTempFileNameW(to_native(temporary_folder()).c_str(), L"pmt", 0, name.data()) == 0) fail_last();
    m_name = to_utf8(name.data()) + std::string(ending);
    if (MoveFileExW(name.data(), to_native(m_name).c_str(), 0) == FALSE) fail_last();
    write_special(m_name, content);
}

EditorFile::~EditorFile() {
    if (!m_stays) DeleteFileW(to_native(m_name).c_str());
}

std::string follow_links(const std::string& path) {
    constexpr int most_links = 40;
    fs::path file = to_path(path);
    std::error_code error;
    for (int i = 0; i < most_links && fs::is_symlink(file, error); ++i) {
        file = file.parent_path() / fs::read_symlink(file, error);
    }
    return to_utf8(file.native());
}

void require_writable(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(to_native(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) fail_last();
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) fail(std::make_error_code(std::errc::permission_denied));
}

} // namespace pmtool

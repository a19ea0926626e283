#include "support/system.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <windows.h>

namespace pm::test {

namespace {

// A file that a child may write to.
class InheritedFile {
public:
    explicit InheritedFile(const std::filesystem::path& path) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        m_file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_file == INVALID_HANDLE_VALUE) throw std::runtime_error("can't write " + path.string());
    }
    ~InheritedFile() { CloseHandle(m_file); }
    InheritedFile(const InheritedFile&) = delete;
    InheritedFile& operator=(const InheritedFile&) = delete;

    HANDLE get() const { return m_file; }

private:
    HANDLE m_file;
};

// As programs take a command line apart: a quote is escaped, and so are the backslashes before one.
std::wstring quoted(const std::wstring& word) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t unit : word) {
        if (unit == L'"') text.append(backslashes + 1, L'\\');
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        text += unit;
    }
    return text.append(backslashes, L'\\') + L'"';
}

std::wstring command_line(const ProgramRun& run) {
    std::wstring line = quoted(run.program.native());
    for (const std::string& argument : run.arguments) {
        line += L' ' + quoted(std::filesystem::path(argument).native());
    }
    return line;
}

} // namespace

std::filesystem::path make_temp_folder() {
    static std::atomic<unsigned> count{0};
    std::filesystem::path path;
    do {
        path = std::filesystem::temp_directory_path() /
               ("pm_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(count++));
    } while (!std::filesystem::create_directory(path));
    return path;
}

void set_variable(const std::string& name, const std::optional<std::string>& value) {
    _putenv_s(name.c_str(), value.value_or("").c_str());
}

const char* const temp_folder_variable = "TMP";

ZeroPages::ZeroPages(std::size_t size)
    : m_size(size), m_pages(VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY)) {
    if (m_pages == nullptr) throw std::bad_alloc();
}

ZeroPages::~ZeroPages() {
    VirtualFree(m_pages, 0, MEM_RELEASE);
}

double c_number(const char* text, char** end) {
    const double value = std::strtod(text, end);
    return *end == text ? 0 : value;
}

std::string c_nan_text(double value) {
    return std::signbit(value) ? "-nan" : "nan";
}

int run_program(const ProgramRun& run) {
    const InheritedFile out(run.out);
    const InheritedFile err(run.err);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = out.get();
    start.hStdError = err.get();
    PROCESS_INFORMATION child{};
    const wchar_t* folder = run.folder.empty() ? nullptr : run.folder.c_str();
    if (CreateProcessW(run.program.c_str(), command_line(run).data(), nullptr, nullptr, TRUE, 0, nullptr,
                       folder, &start, &child) == FALSE) {
        return -1;
    }
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(child.hProcess, &status);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return static_cast<int>(status);
}

// There is no root.
bool drop_rights_of_root() {
    return false;
}

void take_back_rights_of_root() {}

// Somebody has it for himself.
UnreadableFile::UnreadableFile(const std::filesystem::path& path) {
    HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw std::runtime_error("can't open " + path.string());
    m_state = reinterpret_cast<std::intptr_t>(file);
}

UnreadableFile::~UnreadableFile() {
    CloseHandle(reinterpret_cast<HANDLE>(m_state));
}

} // namespace pm::test

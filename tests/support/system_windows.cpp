#include "support/system.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace pm::test {

namespace {

// A file that a child may write to or read.
class InheritedFile {
public:
    InheritedFile(const std::filesystem::path& path, DWORD access, DWORD how) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        m_file = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, how,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_file == INVALID_HANDLE_VALUE) throw std::runtime_error("can't open " + path.string());
    }
    ~InheritedFile() { CloseHandle(m_file); }
    InheritedFile(const InheritedFile&) = delete;
    InheritedFile& operator=(const InheritedFile&) = delete;

    HANDLE get() const { return m_file; }

private:
    HANDLE m_file;
};

// Variables that a child inherits while one lives.
class LentVariables {
public:
    explicit LentVariables(const std::vector<std::string>& assignments) {
        for (const std::string& assignment : assignments) {
            const std::size_t end = assignment.find('=');
            m_names.push_back(std::filesystem::path(assignment.substr(0, end)).native());
            SetEnvironmentVariableW(m_names.back().c_str(),
                                    std::filesystem::path(assignment.substr(end + 1)).c_str());
        }
    }
    ~LentVariables() {
        for (const std::wstring& name : m_names) {
            SetEnvironmentVariableW(name.c_str(), nullptr);
        }
    }
    LentVariables(const LentVariables&) = delete;
    LentVariables& operator=(const LentVariables&) = delete;

private:
    std::vector<std::wstring> m_names;
};

std::optional<InheritedFile> file_for_output(const std::filesystem::path& path) {
    if (path.empty()) return std::nullopt;
    return std::optional<InheritedFile>(std::in_place, path, static_cast<DWORD>(GENERIC_WRITE),
                                        static_cast<DWORD>(CREATE_ALWAYS));
}

std::optional<InheritedFile> file_for_input(const std::filesystem::path& path) {
    if (path.empty()) return std::nullopt;
    return std::optional<InheritedFile>(std::in_place, path, static_cast<DWORD>(GENERIC_READ),
                                        static_cast<DWORD>(OPEN_EXISTING));
}

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
        line +=
            L' ' + quoted(std::filesystem::path(std::u8string(argument.begin(), argument.end())).native());
    }
    return line;
}

// The process. A child inherits all that may be inherited just then; so one is started at a time.
HANDLE start_program(const ProgramRun& run) {
    static std::mutex starting;
    const std::lock_guard lock(starting);
    const std::optional<InheritedFile> out = file_for_output(run.out);
    const std::optional<InheritedFile> err = file_for_output(run.err);
    const std::optional<InheritedFile> in = file_for_input(run.in);
    const LentVariables lent(run.environment);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = in ? in->get() : GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = out ? out->get() : nullptr;
    start.hStdError = err ? err->get() : nullptr;
    PROCESS_INFORMATION child{};
    const wchar_t* folder = run.folder.empty() ? nullptr : run.folder.c_str();
    if (CreateProcessW(run.program.c_str(), command_line(run).data(), nullptr, nullptr, TRUE, 0, nullptr,
                       folder, &start, &child) == FALSE) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "can't start " + run.program.string());
    }
    CloseHandle(child.hThread);
    return child.hProcess;
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

Silence::Silence() : m_out(_dup(_fileno(stdout))), m_err(_dup(_fileno(stderr))) {
    std::fflush(nullptr);
    const int nothing = _open("NUL", _O_WRONLY | _O_BINARY);
    _dup2(nothing, _fileno(stdout));
    _dup2(nothing, _fileno(stderr));
    _close(nothing);
}

Silence::~Silence() {
    std::fflush(nullptr);
    _dup2(m_out, _fileno(stdout));
    _dup2(m_err, _fileno(stderr));
    _close(m_out);
    _close(m_err);
}

int run_program(const ProgramRun& run) {
    HANDLE process = start_program(run);
    WaitForSingleObject(process, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process, &status);
    CloseHandle(process);
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

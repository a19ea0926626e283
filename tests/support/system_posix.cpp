#include "support/system.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm::test {

namespace {

constexpr uid_t nobody = 65534;

void send_to(int descriptor, const std::filesystem::path& file) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
    close(opened);
}

void take_from(const std::filesystem::path& file) {
    const int opened = open(file.c_str(), O_RDONLY);
    if (opened < 0 || dup2(opened, STDIN_FILENO) < 0) _exit(126);
    close(opened);
}

// A program that root starts has no rights beyond this set.
void drop_file_rights() {
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
}

} // namespace

std::filesystem::path make_temp_folder() {
    std::string name = std::filesystem::temp_directory_path() / "pm_test_XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
}

void set_variable(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
}

const char* const temp_folder_variable = "TMPDIR";

ZeroPages::ZeroPages(std::size_t size)
    : m_size(size),
      m_pages(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (m_pages == MAP_FAILED) throw std::bad_alloc();
}

ZeroPages::~ZeroPages() {
    munmap(m_pages, m_size);
}

double c_number(const char* text, char** end) {
    return std::strtod(text, end);
}

std::string c_nan_text(double value) {
    char text[16] = {};
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

Silence::Silence() : m_out(dup(STDOUT_FILENO)), m_err(dup(STDERR_FILENO)) {
    std::fflush(nullptr);
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    close(nothing);
}

Silence::~Silence() {
    std::fflush(nullptr);
    dup2(m_out, STDOUT_FILENO);
    dup2(m_err, STDERR_FILENO);
    close(m_out);
    close(m_err);
}

int run_program(const ProgramRun& run) {
    std::vector<std::string> words{run.program.filename()};
    words.insert(words.end(), run.arguments.begin(), run.arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        send_to(STDERR_FILENO, run.err);
        if (run.out.empty()) {
            close(STDOUT_FILENO);
        } else {
            send_to(STDOUT_FILENO, run.out);
        }
        if (!run.in.empty()) take_from(run.in);
        if (!run.folder.empty() && chdir(run.folder.c_str()) != 0) _exit(126);
        for (const std::string& variable : run.environment) {
            putenv(strdup(variable.c_str()));
        }
        if (!run.privileged) drop_file_rights();
        execv(run.program.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool drop_rights_of_root() {
    if (geteuid() != 0) return false;
    if (seteuid(nobody) != 0) throw std::runtime_error("can't give up the rights of root");
    return true;
}

void take_back_rights_of_root() {
    if (seteuid(0) != 0) throw std::runtime_error("can't take back the rights of root");
}

UnreadableFile::UnreadableFile(const std::filesystem::path& path) {
    std::filesystem::permissions(path.parent_path(), std::filesystem::perms(0755));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    m_state = drop_rights_of_root() ? 1 : 0;
}

UnreadableFile::~UnreadableFile() {
    if (m_state != 0) take_back_rights_of_root();
}

} // namespace pm::test

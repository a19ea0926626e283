#include "system.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <span>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace pmtool {

namespace {

constexpr mode_t new_file_mode = 0666;
constexpr mode_t permission_bits = 07777;
constexpr mode_t identity_bits = S_ISUID | S_ISGID;

[[noreturn]] void fail(int code) {
    throw std::system_error(code, std::generic_category());
}

// Gives the result of a call of the system's; throws if it failed.
int checked(int result) {
    if (result < 0) fail(errno);
    return result;
}

class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(checked(descriptor)) {}
    ~Descriptor() { close(m_descriptor); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::string read_descriptor(int descriptor) {
    std::string content;
    std::array<char, std::size_t{1} << 16> block{};
    while (true) {
        const ssize_t count = read(descriptor, block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(errno);
        if (count == 0) return content;
        content.append(block.data(), static_cast<std::size_t>(count));
    }
}

void write_descriptor(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::optional<struct stat> attributes_of(const std::string& path) {
    struct stat attributes {};
    if (stat(path.c_str(), &attributes) != 0) return std::nullopt;
    return attributes;
}

std::string folder_of(const std::string& path) {
    const std::size_t end = path.rfind('/');
    if (end == std::string::npos) return ".";
    return end == 0 ? "/" : path.substr(0, end);
}

// The own descriptor that a name stands for.
std::optional<int> own_descriptor(const std::string& path) {
    if (!is_open_file(path) || !is_same_file(folder_of(path), "/proc/self/fd")) return std::nullopt;
    const std::string name = path.substr(path.rfind('/') + 1);
    int number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
    return number;
}

// --- signals

constexpr std::array ending_signals = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM};

// The one scratch file that there is at a time. A handler may only read it while it is told to be whole.
std::array<char, 4096> scratch_name;
std::atomic<bool> scratch_is_there = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void end_by_signal(int number) {
    if (scratch_is_there) unlink(scratch_name.data());
    // The handler was put in place for one call: this one ends the program.
    raise(number);
}

void note_scratch_file(const std::string& name) {
    if (name.size() >= scratch_name.size()) return;
    std::ranges::copy(name, scratch_name.begin());
    scratch_name[name.size()] = '\0';
    scratch_is_there = true;
}

void forget_scratch_file() {
    scratch_is_there = false;
}

// How many delays there are, and what was blocked before the first.
int delays = 0;
sigset_t blocked_before;

// A limit of a file's size makes the write fail, as a full disk does.
constexpr int ignored_signal = SIGXFSZ;

void handle_signals() {
    (void)std::signal(ignored_signal, SIG_IGN);
    for (const int number : ending_signals) {
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler == SIG_IGN) continue; // as nohup wants it
        struct sigaction action {};
        action.sa_handler = end_by_signal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

// A standard descriptor that is closed would be given to the next file that is opened. What stands in for it
// fails on use: it is open the wrong way round.
void keep_descriptor(int descriptor, int flags) {
    if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) (void)open("/dev/null", flags);
}

// --- attributes

// The list of access rights of a file, as the system keeps it: a version, then entries.
struct AccessEntry {
    std::uint16_t tag;
    std::uint16_t rights;
    std::uint32_t id;
};
constexpr std::size_t access_header_size = 4;
constexpr std::uint16_t tag_of_group = 0x04;
constexpr std::uint16_t tag_of_others = 0x20;
constexpr const char* access_list = "system.posix_acl_access";

std::optional<std::string> attribute(const std::string& path, const char* name) {
    const ssize_t size = getxattr(path.c_str(), name, nullptr, 0);
    if (size < 0) return std::nullopt;
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t got = getxattr(path.c_str(), name, value.data(), value.size());
    if (got < 0) return std::nullopt;
    value.resize(static_cast<std::size_t>(got));
    return value;
}

std::vector<std::string> attribute_names(const std::string& path) {
    const ssize_t size = listxattr(path.c_str(), nullptr, 0);
    if (size <= 0) return {};
    std::string list(static_cast<std::size_t>(size), '\0');
    const ssize_t got = listxattr(path.c_str(), list.data(), list.size());
    std::vector<std::string> names;
    for (std::size_t at = 0; got > 0 && at < static_cast<std::size_t>(got);) {
        names.emplace_back(list.c_str() + at);
        at += names.back().size() + 1;
    }
    return names;
}

// Of what the system itself keeps about a file only its label goes with the content.
bool goes_with_content(const std::string& name) {
    return !name.starts_with("security.") || name == "security.selinux";
}

void copy_attributes(const std::string& from, int to) {
    for (const std::string& name : attribute_names(from)) {
        if (name == access_list || !goes_with_content(name)) continue;
        if (const std::optional<std::string> value = attribute(from, name.c_str())) {
            (void)fsetxattr(to, name.c_str(), value->data(), value->size(), 0);
        }
    }
}

// The rights of the old group would be another group's: that one gets what everybody has.
void limit_group(std::string& list) {
    std::uint16_t others = 0;
    AccessEntry entry{};
    const auto each = [&](auto action) {
        for (std::size_t at = access_header_size; at + sizeof entry <= list.size(); at += sizeof entry) {
            std::memcpy(&entry, list.data() + at, sizeof entry);
            action();
            std::memcpy(list.data() + at, &entry, sizeof entry);
        }
    };
    each([&] {
        if (entry.tag == tag_of_others) others = entry.rights;
    });
    each([&] {
        if (entry.tag == tag_of_group) entry.rights = static_cast<std::uint16_t>(entry.rights & others);
    });
}

void copy_access_list(const std::string& from, int to, bool group_kept) {
    std::optional<std::string> list = attribute(from, access_list);
    if (!list) {
        (void)fremovexattr(to, access_list); // one that came from the folder
        return;
    }
    if (!group_kept) limit_group(*list);
    (void)fsetxattr(to, access_list, list->data(), list->size(), 0);
}

mode_t kept_mode(mode_t mode, bool owner_kept, bool group_kept) {
    mode &= permission_bits;
    if (!owner_kept || !group_kept) mode &= ~identity_bits;
    if (!group_kept) mode &= ~mode_t{S_IRWXG} | ((mode & S_IRWXO) << 3);
    return mode;
}

// --- locks

bool is_at(int file, const std::string& path) {
    struct stat opened {};
    const std::optional<struct stat> named = attributes_of(path);
    return fstat(file, &opened) == 0 && named && named->st_dev == opened.st_dev &&
           named->st_ino == opened.st_ino;
}

// Waits for its turn. The lock is one of the open file: those of flock() are the library's own while it reads
// a compound file.
bool wait_for_lock(int file) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    while (fcntl(file, F_OFD_SETLKW, &lock) != 0) {
        if (errno != EINTR) return false; // a file system without locks
    }
    return true;
}

// Whether nobody else has it; doesn't wait.
bool take_lock(int file) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return fcntl(file, F_OFD_SETLK, &lock) == 0;
}

// Removes what a replacing left undone.
void remove_file(const std::string& name) {
    unlink(name.c_str());
}

void sync_folder(const std::string& folder) {
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) return; // may be entered but not read
    (void)fsync(file);
    close(file);
}

// --- scratch files

// Behind the name of a scratch file: the old content on its way to being a backup.
constexpr char spare_suffix = '~';

std::string in_folder_of(const std::string& target, const std::string& name) {
    const std::size_t end = target.rfind('/');
    return (end == std::string::npos ? std::string() : target.substr(0, end + 1)) + name;
}

// With the rights that any new file gets there, or the owner's alone.
int open_scratch(std::string& name, bool has_usual_rights) {
    const int file = checked(mkostemp(name.data(), O_CLOEXEC));
    if (!has_usual_rights) return file;
    // Made once more in the ordinary way, so that it has the rights that the folder gives new files.
    close(file);
    unlink(name.c_str());
    return checked(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode));
}

// A scratch file is locked while its program lives: so that others can tell it from one that a program which
// was killed left behind.
int make_scratch(const std::string& target, std::string& name, bool has_usual_rights) {
    while (true) {
        name = in_folder_of(target, std::string(scratch_prefix) + std::string(scratch_random, 'X'));
        const int file = open_scratch(name, has_usual_rights);
        // Somebody who cleans up may have been faster.
        if (!wait_for_lock(file) || is_at(file, name)) return file;
        close(file);
    }
}

bool is_scratch_name(std::string_view name) {
    return name.starts_with(scratch_prefix) && name.size() == scratch_prefix.size() + scratch_random;
}

// Neither a link nor a pipe: programs of this name leave files alone behind.
bool is_file_here(const std::string& name) {
    struct stat attributes {};
    return lstat(name.c_str(), &attributes) == 0 && S_ISREG(attributes.st_mode);
}

void remove_spare(const std::string& name) {
    if (is_file_here(name)) unlink(name.c_str());
}

void remove_if_abandoned(const std::string& name) {
    if (!is_file_here(name)) return;
    const int file = open(name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) return;
    if (take_lock(file)) {
        remove_spare(name + spare_suffix);
        unlink(name.c_str());
    }
    close(file);
}

// Removes what programs left in the folder of a target that were killed before they were done.
void clean_up_beside(const std::string& target) {
    DIR* list = opendir(folder_of(target).c_str());
    if (list == nullptr) return; // may be written to but not read
    while (const dirent* entry = readdir(list)) {
        std::string name = entry->d_name;
        const bool is_spare = name.ends_with(spare_suffix);
        if (is_spare) name.pop_back();
        if (!is_scratch_name(name)) continue;
        const std::string path = in_folder_of(target, name);
        remove_if_abandoned(path);
        // A spare is never there without its scratch file while somebody works on it.
        if (is_spare && access(path.c_str(), F_OK) != 0) remove_spare(path + spare_suffix);
    }
    closedir(list);
}

// For where a file has no second names.
void copy_old_file(const std::string& target, const std::string& backup) {
    ScratchFile copy(backup);
    copy.keep_attributes_of(target);
    copy.write(read_whole(target));
    copy.replace_target(std::nullopt);
}

// Under the name of the target and a suffix; what stood there goes.
void keep_old_file(const std::string& target, const std::string& backup, const std::string& spare) {
    const SignalDelay delay;
    if (link(target.c_str(), spare.c_str()) != 0) return copy_old_file(target, backup);
    if (std::rename(spare.c_str(), backup.c_str()) != 0) {
        const int code = errno;
        unlink(spare.c_str());
        fail(code);
    }
    unlink(spare.c_str()); // stays where both names were one file's already
}

} // namespace

// --- the process

void prepare_process() {
    keep_descriptor(STDIN_FILENO, O_WRONLY);
    keep_descriptor(STDOUT_FILENO, O_RDONLY);
    keep_descriptor(STDERR_FILENO, O_RDONLY);
    handle_signals();
}

SignalDelay::SignalDelay() {
    if (delays++ != 0) return;
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : ending_signals) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &blocked_before);
}

SignalDelay::~SignalDelay() {
    if (--delays == 0) pthread_sigmask(SIG_SETMASK, &blocked_before, nullptr);
}

std::vector<std::string> command_line(int argc, char** argv) {
    return {argv, argv + argc};
}

bool is_terminal(Stream stream) {
    return isatty(static_cast<int>(stream)) == 1;
}

std::size_t terminal_width() {
    constexpr std::size_t usual = 80;
    struct winsize size {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return usual;
}

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

int run_command(const std::string& command, const std::string& argument) {
    std::fflush(nullptr);
    const std::string script = command + " \"$1\"";
    std::array<const char*, 6> words = {"sh", "-c", script.c_str(), "sh", argument.c_str(), nullptr};
    // The command is no part of the program that ignores the signal.
    posix_spawnattr_t attributes;
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, ignored_signal);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t child = 0;
    const int code =
        posix_spawn(&child, "/bin/sh", nullptr, &attributes, const_cast<char**>(words.data()), environ);
    posix_spawnattr_destroy(&attributes);
    if (code != 0) fail(code);
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) fail(errno);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string usual_editor() {
    return "vi";
}

std::string temporary_folder() {
    return environment("TMPDIR").value_or("/tmp");
}

int common_error(int code) {
    return code == EDQUOT ? ENOSPC : code;
}

// --- files

std::string_view folder_separators() {
    return "/";
}

FileKind kind_of(const std::string& path) {
    const std::optional<struct stat> attributes = attributes_of(path);
    if (!attributes) return FileKind::missing;
    if (S_ISREG(attributes->st_mode)) return FileKind::regular;
    return S_ISDIR(attributes->st_mode) ? FileKind::folder : FileKind::special;
}

bool is_same_file(const std::string& first, const std::string& second) {
    const std::optional<struct stat> a = attributes_of(first);
    const std::optional<struct stat> b = attributes_of(second);
    return a && b && a->st_dev == b->st_dev && a->st_ino == b->st_ino;
}

bool is_open_file(const std::string& path) {
    struct stat attributes {};
    if (lstat(path.c_str(), &attributes) != 0 || !S_ISLNK(attributes.st_mode)) return false;
    struct statfs system {};
    return statfs(folder_of(path).c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

std::string read_whole(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return read_descriptor(file.get());
}

std::string read_standard_input() {
    return read_descriptor(STDIN_FILENO);
}

void write_special(const std::string& path, std::string_view bytes) {
    // Opened once more it would begin at the start of its file.
    if (const std::optional<int> own = own_descriptor(path)) {
        std::fflush(stdout);
        return write_descriptor(*own, bytes);
    }
    const Descriptor file(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK));
    fcntl(file.get(), F_SETFL, fcntl(file.get(), F_GETFL) & ~O_NONBLOCK);
    write_descriptor(file.get(), bytes);
}

std::vector<std::string> names_in(const std::string& folder) {
    DIR* list = opendir(folder.c_str());
    if (list == nullptr) fail(errno);
    std::vector<std::string> names;
    while (const dirent* entry = readdir(list)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    closedir(list);
    std::ranges::sort(names);
    return names;
}

FileLock::FileLock(const std::string& path) {
    while (kind_of(path) == FileKind::regular) {
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
        if (file < 0) return;
        const bool locked = wait_for_lock(file);
        // Who held the lock may have put another file in its place.
        if (!locked || is_at(file, path)) {
            m_file = file;
            return;
        }
        close(file);
    }
}

FileLock::~FileLock() {
    if (m_file != none) close(static_cast<int>(m_file));
}

ScratchFile::ScratchFile(const std::string& target)
    : m_target(target), m_is_new(kind_of(target) == FileKind::missing) {
    const SignalDelay delay;
    clean_up_beside(target);
    m_file = make_scratch(target, m_name, m_is_new);
    note_scratch_file(m_name);
}

ScratchFile::~ScratchFile() {
    const SignalDelay delay;
    if (m_file >= 0) close(m_file);
    if (!m_name.empty()) remove_file(m_name);
    forget_scratch_file();
}

void ScratchFile::write(std::string_view bytes) {
    write_descriptor(m_file, bytes);
}

void ScratchFile::keep_attributes() {
    if (!m_is_new) keep_attributes_of(m_target);
}

void ScratchFile::keep_attributes_of(const std::string& file) {
    const std::optional<struct stat> old = attributes_of(file);
    if (!old) return;
    bool owner_kept = true;
    bool group_kept = true;
    if (fchown(m_file, old->st_uid, old->st_gid) != 0) {
        struct stat own {};
        checked(fstat(m_file, &own));
        owner_kept = own.st_uid == old->st_uid;
        group_kept = own.st_gid == old->st_gid || fchown(m_file, static_cast<uid_t>(-1), old->st_gid) == 0;
    }
    copy_attributes(file, m_file);
    copy_access_list(file, m_file, group_kept);
    // With a list the group's bits are its mask.
    const bool has_list = attribute(file, access_list).has_value();
    const mode_t mode = kept_mode(old->st_mode, owner_kept, group_kept || has_list);
    checked(fchmod(m_file, mode));
}

void ScratchFile::replace_target(const std::optional<std::string>& backup_suffix) {
    checked(fsync(m_file));
    if (backup_suffix && !m_is_new) {
        keep_old_file(m_target, m_target + *backup_suffix, m_name + spare_suffix);
        note_scratch_file(m_name);
    }
    const SignalDelay delay;
    checked(std::rename(m_name.c_str(), m_target.c_str()));
    m_name.clear();
    forget_scratch_file();
    // Only now: with the file goes its lock, and without that the name would be anybody's to clean up.
    close(std::exchange(m_file, -1));
    sync_folder(folder_of(m_target));
}

EditorFile::EditorFile(std::string_view ending, std::string_view content)
    : m_name(temporary_folder() + "/pmtool-XXXXXX") {
    m_name += ending;
    const Descriptor file(mkostemps(m_name.data(), static_cast<int>(ending.size()), O_CLOEXEC));
    write_descriptor(file.get(), content);
}

EditorFile::~EditorFile() {
    if (!m_stays) remove_file(m_name);
}

std::string follow_links(const std::string& path) {
    constexpr int most_links = 40;
    std::string file = path;
    for (int i = 0; i < most_links; ++i) {
        std::array<char, 4096> target{};
        const ssize_t size = readlink(file.c_str(), target.data(), target.size());
        // The text of a link to an open file tells where that was, if anything.
        if (size < 0 || is_open_file(file)) return file;
        const std::string next(target.data(), static_cast<std::size_t>(size));
        const bool is_whole = next.starts_with('/') || file.find('/') == std::string::npos;
        file = is_whole ? next : folder_of(file).append("/").append(next);
    }
    fail(ELOOP);
}

void require_writable(const std::string& path) {
    checked(access(path.c_str(), W_OK));
}

} // namespace pmtool

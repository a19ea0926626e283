#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the tool needs of the operating system. Names of files are the bytes that the system knows them by, on
// Windows UTF-8. What fails is a std::system_error with a code of errno's.
namespace pmtool {

// --- the process

// What a program must do before anything else: standard streams that are closed stay so, whatever files are
// opened later, and carry bytes as they are; scratch files go when a signal ends the program.
void prepare_process();

// While one lives, signals that would end the program wait: for what leaves files behind if it is broken off.
class SignalDelay {
public:
    SignalDelay();
    ~SignalDelay();
    SignalDelay(const SignalDelay&) = delete;
    SignalDelay& operator=(const SignalDelay&) = delete;
};

// The words of the command line, the program's name first.
std::vector<std::string> command_line(int argc, char** argv);

enum class Stream { in, out, err };
bool is_terminal(Stream stream);
// In columns; 80 where nothing tells it.
std::size_t terminal_width();

// The value of an environment variable; nothing if it isn't set or is empty.
std::optional<std::string> environment(const char* name);

// Runs a command of the user's, such as an editor with its options, with one more argument; its exit code.
int run_command(const std::string& command, const std::string& argument);

// The editor of a user who chose none.
std::string usual_editor();

// A folder of the user's for files that live shortly. It may not exist.
std::string temporary_folder();

// The code of errno's that every system knows for what a code says: a quota that is used up is a full disk.
int common_error(int code);

// --- files

// The characters that stand between folders in a name.
std::string_view folder_separators();

enum class FileKind { missing, regular, folder, special };
// Of what is at the end of links.
FileKind kind_of(const std::string& path);

// Whether both names lead to one file that is there.
bool is_same_file(const std::string& first, const std::string& second);

// Whether the name, which no link of the user's stands for, is that of a file which a process has open, as
// the one that /dev/stdout leads to.
bool is_open_file(const std::string& path);

// All there is, once, from where it stands: a pipe is read until its writers are gone.
std::string read_whole(const std::string& path);
std::string read_standard_input();
// To a device, a pipe or an open file, which takes it where it stands, or at its end if another process has
// it open. ENXIO for a pipe that nobody reads.
void write_special(const std::string& path, std::string_view bytes);

// The names in a folder, sorted by their bytes.
std::vector<std::string> names_in(const std::string& folder);

// Whoever changes a file holds one from before the reading until after the replacing, so that edits of one
// file wait for each other. A file that isn't there, isn't a regular one or can't be written has no lock.
class FileLock {
public:
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    static constexpr std::intptr_t none = -1;
    std::intptr_t m_file = none; // the system's own
};

// What the name of a scratch file begins with; six characters more make it whole.
inline constexpr std::string_view scratch_prefix = ".pmtool-scratch-";
inline constexpr std::size_t scratch_random = 6;

// A file beside a target that comes into its place once it is whole, and goes when this object dies or a
// signal ends the program. What one that was killed has left goes when the next is made in the same folder.
class ScratchFile {
public:
    // In the folder of `target`, which no link stands for. It has the rights that any new file gets there if
    // the target isn't there yet, else at first the owner's alone.
    explicit ScratchFile(const std::string& target);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    void write(std::string_view bytes);
    // Takes over mode, owner, group, access lists and extended attributes of the target as far as the system
    // lets it. Where owner or group can't be kept, nobody gets more rights than before.
    void keep_attributes();
    // The same of another file.
    void keep_attributes_of(const std::string& file);
    // Until all is on the disk; then takes the target's place, so that whoever looks finds the old file or
    // the new one. With a suffix the old file stays under its name and that.
    void replace_target(const std::optional<std::string>& backup_suffix);

    const std::string& name() const { return m_name; }

private:
    std::string m_target;
    std::string m_name;
    int m_file = -1;
    bool m_is_new = false; // there is no target yet
};

// A file of the user's alone in the temporary folder, for an editor; removed with this object.
class EditorFile {
public:
    EditorFile(std::string_view ending, std::string_view content);
    ~EditorFile();
    EditorFile(const EditorFile&) = delete;
    EditorFile& operator=(const EditorFile&) = delete;

    const std::string& name() const { return m_name; }
    // Lets the file stay when this object dies.
    void release() { m_stays = true; }

private:
    std::string m_name;
    bool m_stays = false;
};

// The file at the end of a chain of links, even if it doesn't exist yet. The chain ends at an open file.
std::string follow_links(const std::string& path);

// Whether the process may write the file. Throws EACCES, EROFS or what else stands against it.
void require_writable(const std::string& path);

} // namespace pmtool

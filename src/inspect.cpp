#include "base/little_endian.h"
#include "base/no_memory.h"
#include "base/text.h"
#include "filers/memory_stream.h"
#include "filers/pmdpia.h"
#include "filers/quiet_stream.h"
#include "legacy/pmpc2.h"
#include "platform/compound_format.h"
#include "platform/files.h"
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/text.h>

namespace pm {

namespace {

constexpr const char16_t* source = u"$Workfile: inspect $ $Revision: #1 $";
constexpr const char16_t* place = u"pm::identify()";
constexpr const char16_t* sections_place = u"pm::dpia_sections()";
constexpr const char16_t* plotters_place = u"pm::cfg_plotters()";

constexpr std::string_view white_space = " \t\r\n\v\f";
constexpr std::string_view pia_start = "PIAFILEVERSION_";
constexpr std::string_view pcp_start = ";Created by Draftex";
constexpr std::string_view string_key_start = "DRFX_";
constexpr std::u16string_view table_extension = u".pdt";
constexpr std::u16string_view string_file_name = u"strings.pdt";

// --- files of the system

struct OpenError {
    int code;
    std::uint32_t number;
};

constexpr OpenError open_errors[] = {
    {ENOENT, PM_ERR_NO_SUCH_FILE},       {ENOTDIR, PM_ERR_NO_SUCH_FILE}, {EACCES, PM_ERR_ACCESS_DENIED},
    {EPERM, PM_ERR_ACCESS_DENIED},       {EISDIR, PM_ERR_IS_A_FOLDER},   {EMFILE, PM_ERR_TOO_MANY_FILES},
    {ENFILE, PM_ERR_TOO_MANY_FILES},     {EAGAIN, PM_ERR_TRY_AGAIN},     {EBUSY, PM_ERR_TRY_AGAIN},
    {ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, {EBADF, PM_ERR_FILE_NOT_OPEN},  {ETXTBSY, PM_ERR_TRY_AGAIN},
    {EINVAL, PM_ERR_INVALID_ARGUMENT},
};

[[noreturn]] void fail(int code, const std::u16string& file) {
    const auto* row = std::ranges::find(open_errors, code, &OpenError::code);
    const std::uint32_t number = row != std::ranges::end(open_errors) ? row->number : PM_ERR_STREAM_FAILED;
    throw PM_Severe(number, place, file.c_str(), source);
}

bool is_folder(std::u16string_view file) {
    std::error_code error;
    return std::filesystem::is_directory(native_file_name(file), error);
}

std::string read_file(const std::u16string& file) {
    if (is_folder(file)) fail(EISDIR, file);
    errno = 0;
    std::ifstream stream(native_file_name(file), std::ios::binary);
    if (!stream) fail(errno, file);
    std::string content;
    char block[1 << 16];
    while (stream.read(block, sizeof block) || stream.gcount() > 0) {
        content.append(block, static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad()) fail(errno, file);
    return content;
}

// --- lines

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool starts_with_any_case(std::string_view text, std::string_view start) {
    return text.size() >= start.size() &&
           std::ranges::equal(text.substr(0, start.size()), start, {}, lower, lower);
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(white_space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(white_space) - first + 1);
}

// The first line that `wanted` takes, trimmed; empty if there is none.
template<class Wanted>
std::string_view find_line(std::string_view text, Wanted wanted) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trim(text.substr(0, end));
        if (wanted(line)) return line;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {};
}

bool is_filled(std::string_view line) {
    return !line.empty();
}

bool is_no_comment(std::string_view line) {
    return !line.empty() && line.front() != ';';
}

bool is_string_line(std::string_view line) {
    return line.starts_with(string_key_start) && line.find('"') != std::string_view::npos;
}

bool holds_strings(std::string_view content) {
    return !find_line(content, is_string_line).empty();
}

// --- what each kind is known by

FileIdentity known_by(PM_Object::FileType type, Evidence evidence, std::string_view line = {}) {
    FileIdentity identity;
    identity.type = type;
    identity.evidence = evidence;
    identity.line = line;
    return identity;
}

std::optional<FileIdentity> compound_file(std::string_view content) {
    const auto& signature = compound::signature;
    const bool known = content.size() >= signature.size() &&
                       std::ranges::equal(content.substr(0, signature.size()), signature, {},
                                          [](char c) { return static_cast<unsigned char>(c); });
    if (!known) return std::nullopt;
    return known_by(PM_Object::FILE_DOC, Evidence::signature);
}

// The filers read streams and never write to them here.
MemoryStream stream_of(std::string_view content) {
    return MemoryStream({const_cast<char*>(content.data()), content.size()});
}

std::optional<FileIdentity> dpia_file(std::string_view content) {
    constexpr std::size_t words = 8; // version, count
    if (content.size() < words) return std::nullopt;
    const auto* bytes = reinterpret_cast<const unsigned char*>(content.data());
    const auto version = PM_DPIAFile::version_of(load_u32(bytes));
    if (!version) return std::nullopt;
    MemoryStream stream = stream_of(content);
    FileIdentity identity = known_by(PM_Object::FILE_DPIA, Evidence::directory);
    identity.version = *version;
    identity.section_count = load_u32(bytes + 4);
    try {
        // A count that the reader takes for none at all is no directory.
        PM_DPIAFile filer(nullptr);
        filer.attach(&stream);
        if (filer.count_sections() != identity.section_count) return std::nullopt;
    } catch (const PM_Memory_Exception&) {
        throw;
    } catch (const ZT_Exception&) {
        return std::nullopt;
    }
    return identity;
}

std::optional<FileIdentity> pia_file(std::string_view content) {
    const std::string_view line = find_line(content, is_filled);
    if (!starts_with_any_case(line, pia_start)) return std::nullopt;
    return known_by(PM_Object::FILE_PIA, Evidence::first_line, line);
}

std::optional<FileIdentity> pcp_file(std::string_view content) {
    const std::string_view line = find_line(
        content, [](std::string_view candidate) { return starts_with_any_case(candidate, pcp_start); });
    if (line.empty()) return std::nullopt;
    return known_by(PM_Object::FILE_PCP, Evidence::comment, line);
}

std::optional<FileIdentity> pc2_file(std::string_view content) {
    constexpr std::u16string_view start = PM_PC2File::version_start;
    const std::string_view line = find_line(content, is_no_comment);
    if (line.size() < start.size() || !std::equal(start.begin(), start.end(), line.begin())) {
        return std::nullopt;
    }
    return known_by(PM_Object::FILE_PC2, Evidence::first_line, line);
}

std::optional<FileIdentity> cfg_file(std::string_view content) {
    const std::string_view line = find_line(content, is_no_comment);
    if (!line.starts_with('[') || line.find(']') == std::string_view::npos) return std::nullopt;
    FileIdentity identity = known_by(PM_Object::FILE_CFG, Evidence::sections);
    MemoryStream stream = stream_of(content);
    for (const CfgPlotter& plotter : cfg_plotters(stream)) {
        identity.plotters.push_back(plotter.number);
    }
    return identity;
}

std::optional<FileIdentity> string_file(std::string_view content) {
    if (!holds_strings(content)) return std::nullopt;
    return known_by(PM_Object::FILE_PDT, Evidence::string_keys);
}

constexpr std::optional<FileIdentity> (*probes[])(std::string_view) = {
    compound_file, dpia_file, pia_file, pcp_file, pc2_file, cfg_file, string_file,
};

// --- folders of device descriptions

bool ends_in_table_extension(std::u16string_view name) {
    return name.size() > table_extension.size() &&
           equals_ignoring_case(name.substr(name.size() - table_extension.size()), table_extension);
}

// The names of the tables in a folder, in their order; none of a folder that can't be listed. What is no file
// is no table: nobody asked for it by its name.
std::vector<std::u16string> table_names(std::u16string_view folder) {
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::directory_iterator it(native_file_name(folder), error), end; !error && it != end;
         it.increment(error)) {
        paths.push_back(it->path());
    }
    std::ranges::sort(paths);
    std::vector<std::u16string> names;
    for (const std::filesystem::path& path : paths) {
        std::u16string name = wide_file_name(path.filename());
        if (ends_in_table_extension(name) && !is_special_file(path)) names.push_back(std::move(name));
    }
    return names;
}

std::optional<std::u16string> look_for_string_file(std::u16string_view folder) {
    std::u16string prefix(folder);
    if (!prefix.empty() && !prefix.ends_with(u'/')) prefix += u'/';
    const std::vector<std::u16string> names = table_names(folder);
    auto found = std::ranges::find_if(
        names, [](const std::u16string& name) { return equals_ignoring_case(name, string_file_name); });
    if (found == names.end()) {
        found = std::ranges::find_if(
            names, [&](const std::u16string& name) { return holds_strings(read_file(prefix + name)); });
    }
    if (found == names.end()) return std::nullopt;
    return prefix + *found;
}

FileIdentity identify_folder(const std::u16string& folder) {
    std::optional<std::u16string> file = look_for_string_file(folder);
    if (!file) fail(EISDIR, folder);
    FileIdentity identity = known_by(PM_Object::FILE_PDT, Evidence::string_file);
    identity.string_file = std::move(*file);
    return identity;
}

// What stands in front of a zero would be another file.
void refuse_zero(std::u16string_view file, const char16_t* work_place) {
    if (file.find(u'\0') == file.npos) return;
    throw PM_Warning(PM_ERR_BAD_PATH, work_place, std::u16string(file).c_str(), source);
}

template<class Work>
auto telling(const char16_t* work_place, Work work) {
    return telling_no_memory(work_place, u"", source, work);
}

// Runs a filer's listing over a file, or a stream, as a load runs its own reading.
template<class Filer, class List>
auto list_file(std::u16string_view file, List list) {
    Filer filer(nullptr);
    errno = 0;
    filer.open(std::u16string(file).c_str(), false);
    errno = 0;
    return (filer.*list)();
}

template<class Filer, class List>
auto list_stream(std::iostream& stream, List list) {
    const QuietStream quiet(stream);
    Filer filer(nullptr);
    stream.seekg(0);
    filer.attach(&stream);
    errno = 0;
    return (filer.*list)();
}

} // namespace

std::optional<FileIdentity> identify(std::u16string_view file) {
    return telling(place, [file] {
        refuse_zero(file, place);
        const std::u16string name(file);
        if (is_folder(name)) return std::optional(identify_folder(name));
        return identify_content(read_file(name));
    });
}

std::optional<FileIdentity> identify_content(std::string_view content) {
    return telling(place, [content]() -> std::optional<FileIdentity> {
        for (const auto probe : probes) {
            if (std::optional<FileIdentity> identity = probe(content)) return identity;
        }
        return std::nullopt;
    });
}

std::optional<std::u16string> find_string_file(std::u16string_view folder) {
    return telling(place, [folder] {
        refuse_zero(folder, place);
        return look_for_string_file(folder);
    });
}

std::vector<DpiaSection> dpia_sections(std::u16string_view file) {
    return telling(sections_place, [&] {
        refuse_zero(file, sections_place);
        return list_file<PM_DPIAFile>(file, &PM_DPIAFile::list_sections);
    });
}

std::vector<DpiaSection> dpia_sections(std::iostream& stream) {
    return telling(sections_place,
                   [&] { return list_stream<PM_DPIAFile>(stream, &PM_DPIAFile::list_sections); });
}

std::vector<CfgPlotter> cfg_plotters(std::u16string_view file) {
    return telling(plotters_place, [&] {
        refuse_zero(file, plotters_place);
        return list_file<PM_CFGFile>(file, &PM_CFGFile::list_plotters);
    });
}

std::vector<CfgPlotter> cfg_plotters(std::iostream& stream) {
    return telling(plotters_place,
                   [&] { return list_stream<PM_CFGFile>(stream, &PM_CFGFile::list_plotters); });
}

} // namespace pm

#include "header.h"
#include "scratch_file.h"
#include "stream_bytes.h"
#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/kit/error.h>
#include <pm/kit/file.h>
#include <pm/kit/stored.h>
#include <set>
#include <sstream>
#include <tuple>

namespace pm::kit {

namespace {

namespace fs = std::filesystem;

constexpr unsigned utf8_code_page = 65001;
constexpr const char16_t* source_name = u"$Workfile: file $ $Revision: #1 $";
constexpr const char16_t* section_place = u"load_section"; // as of a section that the file doesn't hold

// Sections may share bytes, again and again: so often what the file has is read at most.
constexpr std::uint64_t most_readings = 4;
// Each plotter is a reading of the whole file, and has all defaults.
constexpr std::size_t most_plotters = 1000;

// Content as the library is given it: a file by name, or a stream.
struct Source {
    std::u16string path;    // empty: the bytes are loaded from a stream
    std::string_view bytes; // of content at hand
    std::string shown;      // the name that reports and failures show
    bool scratch = false;   // the path is that of a temporary file
    PM_Object::FileType type = PM_Object::FILE_PIA;
};

// ---- names in reports and failures

std::string with_shown_name(std::string text, const Source& source) {
    if (!source.scratch) return text;
    const std::string hidden = to_utf8(source.path);
    const std::size_t found = text.find(hidden);
    if (found != std::string::npos) text.replace(found, hidden.size(), source.shown);
    return text;
}

void show_name(ZT_Exception& exception, const Source& source) {
    const std::u16string detail = to_utf16(with_shown_name(to_utf8(exception.m_detail), source));
    const std::size_t length = detail.copy(exception.m_detail, ZT_Exception::detail_capacity - 1);
    exception.m_detail[length] = u'\0';
}

// ---- one tree

FileReport last_report(const ZT_Exception& exception, const std::string& section) {
    FileReport report;
    report.kind = exception.kind();
    report.number = exception.m_number;
    report.place = exception.m_place != nullptr ? to_utf8(exception.m_place) : std::string();
    report.detail = to_utf8(exception.m_detail);
    report.section = section;
    report.ends = true;
    return report;
}

class Reading {
public:
    Reading(FileContent& content, const Input& input, const Source& source)
        : m_content(content), m_input(input), m_source(source) {}

    // Loads what the options say into a tree; `section` is for the reports.
    void load(Tree& tree, LoadOptions options, const std::string& section) {
        options.type = m_source.type;
        fill(tree, section, [&] { load_from(m_source, tree, std::move(options)); });
    }

    // Loads a section below a node of its own.
    void load_section(LoadOptions options, const Section& section) {
        options.type = m_source.type;
        fill_section(section, [&](Tree& part) { load_from(m_source, part, std::move(options)); });
    }
    // The same of the bytes of a section, a PIA file.
    void load_section(std::string_view bytes, const Section& section) {
        fill_section(section, [&](Tree& part) {
            const ScopedCodePage code_page(utf8_code_page);
            Source source;
            source.bytes = bytes;
            load_from(source, part, {});
        });
    }
    // A section whose bytes can't be had.
    void refuse_section(const Section& section) {
        fill_section(section, [&](Tree&) {
            throw PM_Severe(PM_ERR_STREAM_FAILED, section_place, to_utf16(section.name).c_str(), source_name);
        });
    }

private:
    // Lets `load` fill a tree.
    template<class Load>
    void fill(Tree& tree, const std::string& section, Load load) {
        try {
            load();
            take_reports(tree, section);
        } catch (ZT_Exception& e) {
            show_name(e, m_source);
            take_reports(tree, section);
            if (!m_input.keep_going || e.m_number == PM_ERR_NO_MEMORY) throw;
            m_content.stopped = true;
            m_content.reports.push_back(last_report(e, section));
        }
    }

    template<class Load>
    void fill_section(const Section& section, Load load) {
        const TreeBuilder builder(m_content.tree.object());
        const PM_Node& node = builder.child(builder.root(), to_utf16(section.node));
        // Its name may hold what a base can't, so that the section is loaded for itself and then copied; what
        // was read before a failure, too.
        Tree part;
        try {
            fill(part, section.name, [&] { load(part); });
        } catch (const ZT_Exception&) {
            copy_node(part.root(), builder, node);
            throw;
        }
        copy_node(part.root(), builder, node);
    }

    void load_from(const Source& source, Tree& tree, LoadOptions options) const {
        options.on_report = m_input.on_report;
        if (!source.path.empty()) {
            tree.load(source.path, options);
            return;
        }
        std::stringstream stream{std::string(source.bytes)};
        tree.load(stream, options);
    }

    void take_reports(const Tree& tree, const std::string& section) {
        for (const Report& report : tree.reports()) {
            if (is_told(report)) continue;
            FileReport& taken = m_content.reports.emplace_back();
            static_cast<Report&>(taken) = report;
            taken.detail = with_shown_name(report.detail, m_source);
            taken.section = section;
        }
    }

    // Most bad lines of a CFG file are bad for each of its plotters.
    bool is_told(const Report& report) {
        return m_source.type == PM_Object::FILE_CFG &&
               !m_told.emplace(report.number, report.place, report.detail).second;
    }

    FileContent& m_content;
    const Input& m_input;
    const Source& m_source;
    std::set<std::tuple<std::uint32_t, std::string, std::string>> m_told;
};

// ---- files of several trees

// Gives each section the name of its node.
void name_nodes(std::vector<Section>& sections) {
    std::set<std::string> taken;
    std::map<std::string, int> numbers; // the last behind each name
    for (Section& section : sections) {
        std::string name = section.name.empty() ? "section" : section.name;
        std::ranges::replace(name, '\\', '/');
        section.node = name;
        int& number = numbers.try_emplace(name, 1).first->second;
        while (!taken.insert(section.node).second) {
            section.node = fmt::format("{}#{}", name, ++number);
        }
    }
}

std::string names_of(const std::vector<Section>& sections) {
    std::string names;
    for (const Section& section : sections) {
        names += (names.empty() ? "" : ", ") + printable_text(section.name);
    }
    return names.empty() ? "none" : names;
}

[[noreturn]] void refuse_section(const FileContent& content, const Input& input, const char* what) {
    throw Error(fmt::format("{}: there is no {} {}; there are: {}", input.file, what,
                            printable_text(input.section), names_of(content.sections)));
}

bool has_section(const std::vector<Section>& sections, std::string_view name) {
    return std::ranges::find(sections, name, &Section::name) != sections.end();
}

// Lets `load` read the first section of each name, which it gets with its place in the file's order.
template<class Load>
void read_sections(FileContent& content, Load load) {
    content.by_section = true;
    name_nodes(content.sections);
    std::set<std::string> read;
    for (std::size_t i = 0; i < content.sections.size(); ++i) {
        const Section& section = content.sections[i];
        if (read.insert(section.name).second) {
            load(section, i);
        } else {
            const TreeBuilder builder(content.tree.object());
            builder.child(builder.root(), to_utf16(section.node));
            content.unread.push_back(section.name);
        }
    }
}

// From the file's bytes, so that the directory isn't followed for each section.
void read_dpia_sections(FileContent& content, const std::vector<DpiaSection>& directory, const Source& source,
                        Reading& reading) {
    const std::string bytes = read_bytes(system_path(file_name_to_utf8(source.path)), source.shown);
    std::uint64_t left = most_readings * bytes.size();
    read_sections(content, [&](const Section& section, std::size_t i) {
        const DpiaSection& entry = directory[i];
        const bool inside = entry.offset <= bytes.size() && entry.size <= bytes.size() - entry.offset;
        if (!inside || entry.size > left) {
            reading.refuse_section(section);
            return;
        }
        left -= entry.size;
        reading.load_section(std::string_view(bytes).substr(entry.offset, entry.size), section);
    });
}

// 1 or 2, the upper half of the word in front; dpia_sections() refuses others.
int dpia_version(const std::u16string& path) {
    std::ifstream stream(system_path(file_name_to_utf8(path)), std::ios::binary);
    char word[4] = {};
    stream.read(word, sizeof word);
    return word[2];
}

void read_dpia(FileContent& content, const Input& input, const Source& source, Reading& reading) {
    const std::vector<DpiaSection> directory = dpia_sections(source.path);
    for (const DpiaSection& section : directory) {
        content.sections.push_back({to_utf8(section.name), to_utf8(section.info.value_or(u"")), {}});
    }
    content.version = dpia_version(source.path);
    if (input.section.empty()) {
        read_dpia_sections(content, directory, source, reading);
        return;
    }
    if (!has_section(content.sections, input.section)) refuse_section(content, input, "section");
    LoadOptions options;
    options.section = input.section;
    reading.load(content.tree, options, input.section);
}

int plotter_number(const Input& input) {
    int number = 0;
    const char* const end = input.section.data() + input.section.size();
    const auto result = std::from_chars(input.section.data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) return number;
    throw Error(fmt::format("{}: a plotter is told by its number, not by {}", input.file,
                            quoted_text(input.section)));
}

void read_plotters(FileContent& content, const Input& input, Reading& reading) {
    if (content.sections.size() > most_plotters) {
        throw Error(fmt::format("{}: these are {} plotters, and {} are read at once at most; choose one",
                                input.file, content.sections.size(), most_plotters));
    }
    read_sections(content, [&](const Section& section, std::size_t) {
        reading.load_section({.plotter = std::stoi(section.name)}, section);
    });
}

void read_cfg(FileContent& content, const Input& input, const Source& source, Reading& reading) {
    for (const CfgPlotter& plotter : cfg_plotters(source.path)) {
        content.sections.push_back({fmt::format("{}", plotter.number), to_utf8(plotter.name), {}});
    }
    if (input.section.empty() && content.sections.size() > 1) {
        read_plotters(content, input, reading);
        return;
    }
    LoadOptions options;
    if (!input.section.empty()) {
        options.plotter = plotter_number(input);
        if (!has_section(content.sections, fmt::format("{}", options.plotter))) {
            refuse_section(content, input, "plotter");
        }
    } else if (!content.sections.empty()) {
        options.plotter = std::stoi(content.sections.front().name);
    }
    reading.load(content.tree, options, input.section);
}

// ---- PIA headers

bool is_ascii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// A tag in the code page that is set.
std::string decoded_tag(const std::u16string& path) {
    constexpr std::size_t longest_line = 1024;
    std::u16string line(longest_line, u'\0');
    const PM_Object object;
    object.getFileVersion(path.c_str(), line.data(), line.size(), PM_Object::FILE_PCP);
    return read_header(to_utf8(line.c_str())).tag;
}

void read_pia_header(FileContent& content, const Source& source) {
    content.bytes = source.path.empty()
                        ? std::string(source.bytes)
                        : read_bytes(system_path(file_name_to_utf8(source.path)), source.shown);
    const Header header = read_header(content.bytes);
    content.version = header.version;
    content.tag = header.tag;
    content.compressed = header.compressed;
    if (is_ascii(content.tag)) return;
    content.tag =
        source.path.empty() ? decoded_tag(ScratchFile(content.bytes).name()) : decoded_tag(source.path);
}

// ---- all

bool has_sections(PM_Object::FileType type) {
    return type == PM_Object::FILE_DPIA || type == PM_Object::FILE_CFG;
}

void read_source(FileContent& content, const Input& input, const Source& source) {
    const ScopedCodePage code_page(input.code_page);
    content.type = source.type;
    if (!input.section.empty() && !has_sections(source.type)) {
        throw Error(fmt::format("{}: a {} file has no sections", input.file, format_name(source.type)));
    }
    Reading reading(content, input, source);
    try {
        if (source.type == PM_Object::FILE_DPIA) {
            read_dpia(content, input, source, reading);
        } else if (source.type == PM_Object::FILE_CFG) {
            read_cfg(content, input, source, reading);
        } else {
            reading.load(content.tree, {}, "");
        }
        if (source.type == PM_Object::FILE_PIA) read_pia_header(content, source);
    } catch (ZT_Exception& e) {
        show_name(e, source);
        throw;
    }
}

[[noreturn]] void refuse_unknown(const Input& input) {
    throw Error(fmt::format("{}: the content is of no known format", input.file));
}

// The string file of a folder, or the file itself.
std::u16string loadable_path(const std::u16string& file, bool folder, const Input& input) {
    if (!folder) return file;
    if (std::optional<std::u16string> string_file = find_string_file(file)) return *string_file;
    throw Error(fmt::format("{}: the folder holds no string file such as strings.pdt", input.file));
}

// A compound file for the library to have for itself. Nothing if there can't be one, or if the file can't be
// read: the library says why.
std::unique_ptr<ScratchFile> copy_of(const Input& input) {
    try {
        return std::make_unique<ScratchFile>(read_bytes(system_path(input.file), input.file));
    } catch (const Error&) {
        return nullptr;
    }
}

void read_named(FileContent& content, const Input& input, bool folder) {
    const std::u16string file = file_name_to_utf16(input.file);
    Source source;
    source.shown = input.file;
    if (input.type) {
        source.type = *input.type;
    } else if (const std::optional<FileIdentity> identity = identify(file)) {
        source.type = identity->type;
    } else {
        refuse_unknown(input);
    }
    source.path = loadable_path(file, folder && source.type == PM_Object::FILE_PDT, input);
    if (folder && source.type != PM_Object::FILE_PDT) {
        throw Error(fmt::format("{}: this is a folder, not a {} file", input.file, format_name(source.type)));
    }
    std::unique_ptr<ScratchFile> copy;
    if (source.type == PM_Object::FILE_DOC && !input.exclusive) copy = copy_of(input);
    if (copy != nullptr) {
        source.path = copy->name();
        source.scratch = true;
    }
    read_source(content, input, source);
}

std::string bytes_of(const std::istream& stream, const Input& input) {
    std::string bytes;
    if (!read_to_end(stream, bytes)) throw Error(fmt::format("{}: the content can't be read", input.file));
    return bytes;
}

} // namespace

void read_content_into(FileContent& content, std::string_view bytes, const Input& input) {
    Source source;
    source.bytes = bytes;
    source.shown = input.file;
    if (input.type) {
        source.type = *input.type;
    } else if (const std::optional<FileIdentity> identity = identify_content(bytes)) {
        source.type = identity->type;
    } else {
        refuse_unknown(input);
    }
    std::optional<ScratchFile> scratch;
    if (has_sections(source.type) || source.type == PM_Object::FILE_DOC) {
        source.path = scratch.emplace(bytes).name();
        source.scratch = true;
    }
    read_source(content, input, source);
}

void read_into(FileContent& content, const Input& input) {
    if (input.file == "-") {
        read_content_into(content, bytes_of(std::cin, input), input);
        return;
    }
    std::error_code ignored; // what is wrong with the file, the library tells
    const fs::file_status status = fs::status(system_path(input.file), ignored);
    if (fs::is_other(status)) {
        read_content_into(content, read_bytes(system_path(input.file), input.file), input);
    } else {
        read_named(content, input, fs::is_directory(status));
    }
}

FileContent read_file(const Input& input) {
    FileContent content;
    read_into(content, input);
    return content;
}

FileContent read_content(std::string_view bytes, const Input& input) {
    FileContent content;
    read_content_into(content, bytes, input);
    return content;
}

FileContent read_stream(std::istream& stream, const Input& input) {
    return read_content(bytes_of(stream, input), input);
}

ScopedCodePage::ScopedCodePage(unsigned code_page) {
    if (code_page != 0) m_before = pm_set_thread_code_page(code_page);
}

ScopedCodePage::~ScopedCodePage() {
    if (m_before) pm_set_thread_code_page(*m_before);
}

} // namespace pm::kit

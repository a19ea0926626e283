#include "output.h"

#include "failure.h"
#include "safe_save.h"
#include "text.h"
#include <fmt/format.h>

namespace pmtool {

namespace {

constexpr std::string_view compression_mark = "compress";
constexpr unsigned utf8_code_page = 65001;

class CodePageScope {
public:
    explicit CodePageScope(unsigned code_page) : m_before(pm_system_code_page()) {
        pm_set_system_code_page(code_page);
    }
    ~CodePageScope() { pm_set_system_code_page(m_before); }
    CodePageScope(const CodePageScope&) = delete;
    CodePageScope& operator=(const CodePageScope&) = delete;

private:
    unsigned m_before;
};

std::string header_of(const Source& source) {
    if (source.format->type != PM_Object::FILE_PIA) return {};
    char16_t line[1024] = {};
    translating(source, [&] {
        PM_Object().getFileVersion(pm::file_name_to_utf16(source.path).c_str(), line, std::size(line),
                                   PM_Object::FILE_PCP);
    });
    return shown(line);
}

// A compound file keeps truth values as numbers.
void bools_to_longs(FlatTree& tree) {
    for (auto& [path, value] : tree) {
        if (const auto* yes = std::get_if<bool>(&value)) value = *yes ? 1 : 0;
    }
}

FlatTree read_back(const Output& output, const std::string& path) {
    const CodePageScope scope(output.utf8 ? utf8_code_page : pm_system_code_page());
    PM_Object object;
    load_strictly(object, {output.file, path, {}, output.format});
    return flatten(object);
}

std::string loss_text(const Difference& difference) {
    if (difference.second == nullptr) return "isn't kept by this format";
    if (difference.first == nullptr) return "is added by this format";
    return fmt::format("reads back as {}", shown_text(*difference.second));
}

void check_kept(const PM_Object& object, const Output& output, const std::string& path) {
    FlatTree wanted = flatten(object);
    FlatTree kept = read_back(output, path);
    if (output.format->type == PM_Object::FILE_DOC) {
        bools_to_longs(wanted);
        bools_to_longs(kept);
    }
    warn_of_losses(output.file, compare(wanted, kept));
}

} // namespace

const Format& output_format(const OutputOptions& options) {
    const Format& format = options.to.empty() ? format_of_output(options.file) : format_named(options.to);
    if (!format.is_written) {
        throw Failure(fmt::format("{}: {} files are read only; there are {} to write", options.file,
                                  format.name, format_names(true)));
    }
    if (format.type != PM_Object::FILE_PIA && (options.compress || options.utf8 || options.tag)) {
        throw Failure(fmt::format("{}: --compress, --utf8 and --tag are for pia files only", options.file));
    }
    return format;
}

std::string tag_of(const Source& source) {
    const std::string header = header_of(source);
    std::string tag;
    for (std::size_t comma = header.find(','); comma != std::string::npos;) {
        const std::size_t next = header.find(',', comma + 1);
        const std::string item =
            header.substr(comma + 1, next == std::string::npos ? next : next - comma - 1);
        if (item.find(compression_mark) == std::string::npos) tag += (tag.empty() ? "" : ",") + item;
        comma = next;
    }
    return tag;
}

bool is_compressed(const Source& source) {
    return header_of(source).find(compression_mark) != std::string::npos;
}

std::string with_compression(const std::string& tag) {
    if (tag.find(compression_mark) != std::string::npos) return tag;
    return tag + (tag.empty() ? "" : ",") + std::string(compression_mark);
}

void save_tree(const PM_Object& object, const Output& output) {
    save_safely(output.file, [&](const std::string& path) {
        translating(output.file, path, [&] {
            object.save(pm::file_name_to_utf16(path).c_str(), output.format->type, output.tag.c_str(), u"\\",
                        output.utf8);
        });
        check_kept(object, output, path);
    });
}

void warn_of_losses(const std::string& file, const std::vector<Difference>& losses) {
    constexpr std::size_t most_shown = 10;
    for (std::size_t i = 0; i < losses.size() && i < most_shown; ++i) {
        fmt::print(stderr, "pmtool: {}: warning: {} {}\n", file, printable(shown(losses[i].path)),
                   loss_text(losses[i]));
    }
    if (losses.size() > most_shown) {
        fmt::print(stderr, "pmtool: {}: warning: {} more like these\n", file, losses.size() - most_shown);
    }
}

} // namespace pmtool

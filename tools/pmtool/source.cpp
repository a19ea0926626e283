#include "source.h"

#include "failure.h"
#include "line_finder.h"
#include "progress.h"
#include "report_handler.h"
#include "system.h"
#include "text.h"
#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <pm/kit/check.h>
#include <pm/kit/encoding.h>
#include <pm/kit/error.h>
#include <pm/kit/json.h>
#include <pm/kit/loss.h>
#include <set>
#include <sstream>
#include <system_error>

namespace pmtool {

namespace {

namespace kit = pm::kit;

constexpr unsigned utf8_code_page = 65001;

bool code_page_is_told = false;

std::string shown_name(const std::string& file) {
    return file == "-" ? "standard input" : file;
}

const Format& format_of_input(const SourceOptions& options, const std::optional<std::string>& content) {
    if (!options.from.empty()) return format_named(options.from);
    const std::string name = shown_name(options.file);
    return *(content ? identify_content(name, *content, options.takes_from)
                     : identify(options.file, options.takes_from))
                .format;
}

Source read_json(const SourceOptions& options, const std::optional<std::string>& content) {
    if (!options.section.empty()) {
        throw Failure(shown_name(options.file) + ": a json file has no sections");
    }
    Source source{options.file};
    source.is_json = true;
    try {
        source.content.tree = kit::from_json(content ? *content : read_whole(options.file));
    } catch (const kit::Error& e) {
        throw Failure(fmt::format("{}:{}:{}: {}", shown_name(options.file), e.line(), e.column(), e.what()));
    } catch (const std::system_error& e) {
        throw system_failure(options.file, e.code().value());
    }
    return source;
}

// One reading of a file: what came of it and what ended it.
struct Reading {
    kit::FileContent content = {};
    std::optional<Report> end = {};
};

Reading read_once(const kit::Input& input, const std::optional<std::string>& content) {
    const Progress progress("reading " + input.file);
    Reading reading;
    // Some content is read from a temporary file, and compound files are.
    std::optional<SignalDelay> delay;
    if (content || input.type == PM_Object::FILE_DOC) delay.emplace();
    try {
        if (content) {
            kit::read_content_into(reading.content, *content, input);
        } else {
            kit::read_into(reading.content, input);
        }
    } catch (const kit::Error& e) {
        throw Failure(e.what()); // names the file
    } catch (const ZT_Exception& e) {
        reading.end = make_report(e, input.file);
    }
    return reading;
}

bool may_hold_utf8(PM_Object::FileType type) {
    return type == PM_Object::FILE_PIA || type == PM_Object::FILE_PC2 || type == PM_Object::FILE_CFG ||
           type == PM_Object::FILE_PCP;
}

std::string part_name(const std::string& file, const std::string& section, const Format& format) {
    if (section.empty() || format.is(PM_Object::FILE_CFG)) return shown_name(file);
    return fmt::format("{}[{}]", shown_name(file), section);
}

// Tells reports with the lines of the file, where they can be found.
class Teller {
public:
    Teller(const std::string& file, const Format& format, const std::optional<std::string>& content)
        : m_file(file), m_format(format), m_content(content) {}

    std::string text(Report report, const std::string& section) {
        if (is_bad_line(report) && section.empty()) report.line = finder().find(report);
        m_line = report.line;
        return describe(report, part_name(m_file, section, m_format));
    }

    // What else is lost where the line that was told last ended the reading; empty for nothing.
    std::string rest_text(const std::string& section, bool is_plain) {
        const std::string name = part_name(m_file, section, m_format);
        const bool counts = is_plain && m_line > 0 && m_format.is_text && !m_format.is(PM_Object::FILE_CFG);
        if (!counts) return name + ": reading ended there; what stands behind that line isn't read";
        const std::size_t count = finder().lines_behind(m_line);
        if (count == 0) return {};
        return fmt::format("{}: reading ended at line {}; {} behind it {} read", name, m_line,
                           count == 1 ? "the line" : fmt::format("the {} lines", count),
                           count == 1 ? "isn't" : "aren't");
    }

private:
    // Goes through the whole text, so that it is made for the first line that has to be found.
    LineFinder& finder() {
        const PM_Object::FileType type = *m_format.type;
        if (m_finder) return *m_finder;
        if (!m_format.is_text) return m_finder.emplace("", type);
        return m_finder.emplace(m_content ? LineFinder(*m_content, type) : LineFinder::of_file(m_file, type));
    }

    const std::string& m_file;
    const Format& m_format;
    const std::optional<std::string>& m_content;
    std::optional<LineFinder> m_finder;
    int m_line = 0; // of the last report
};

std::vector<std::string> dropped_of(const Reading& reading, Teller& teller, const std::string& file) {
    std::vector<std::string> dropped;
    std::set<std::string> told;
    for (const kit::FileReport& report : reading.content.reports) {
        const Report shown =
            make_report(report.number, pm::to_utf16(report.place), pm::to_utf16(report.detail), file);
        const std::string line = teller.text(shown, report.section);
        const std::string rest = report.ends && is_bad_line(shown)
                                     ? teller.rest_text(report.section, !reading.content.compressed)
                                     : std::string();
        for (const std::string& each : {line, rest}) {
            if (!each.empty() && told.insert(each).second) dropped.push_back(each);
        }
    }
    if (reading.end) dropped.push_back(teller.text(*reading.end, {}));
    return dropped;
}

[[noreturn]] void refuse(const Reading& reading, Teller& teller, const std::string& file) {
    constexpr std::string_view hint = "; all bad lines are listed by: pmtool check";
    if (reading.content.reports.empty()) {
        throw Failure(teller.text(*reading.end, {}) + (is_bad_line(*reading.end) ? std::string(hint) : ""));
    }
    const kit::FileReport& first = reading.content.reports.front();
    const Report told =
        make_report(first.number, pm::to_utf16(first.place), pm::to_utf16(first.detail), file);
    throw Failure(teller.text(told, first.section) + (is_bad_line(told) ? std::string(hint) : ""));
}

bool is_damaged(const Reading& reading) {
    return reading.end || !reading.content.reports.empty();
}

bool is_empty(const pm::Tree& tree) {
    return tree.root().children().empty() && tree.root().properties().empty();
}

void refuse_folder(const std::string& file, const Format& format) {
    if (!format.is(PM_Object::FILE_PDT) && kind_of(file) == FileKind::folder) {
        throw system_failure(file, EISDIR);
    }
}

} // namespace

void set_code_page(unsigned code_page) {
    try {
        pm_set_system_code_page(code_page);
    } catch (const ZT_Exception&) {
        throw Failure(fmt::format("{}: this machine has no such code page", code_page));
    }
    code_page_is_told = true;
}

bool is_code_page_told() {
    return code_page_is_told;
}

std::optional<std::string> content_at_hand(const std::string& file, std::string_view work) {
    try {
        if (file != "-" && kind_of(file) != FileKind::special) return std::nullopt;
        const Progress progress(fmt::format("{} {}", work, shown_name(file)));
        if (file == "-") return read_standard_input();
        return read_whole(file);
    } catch (const std::system_error& e) {
        throw system_failure(file == "-" ? "standard input" : file, e.code().value());
    }
}

Source read_source(const SourceOptions& options, Damage damage) {
    return read_source(options, content_at_hand(options.file), damage);
}

Source read_source(const SourceOptions& options, const std::optional<std::string>& content, Damage damage) {
    const Format& format = format_of_input(options, content);
    if (format.is_json()) return read_json(options, content);
    refuse_folder(options.file, format);
    if (!content && kind_of(options.file) == FileKind::missing) throw system_failure(options.file, ENOENT);
    // What ends a load is a report like others: what was read before counts.
    kit::Input input{.file = shown_name(options.file),
                     .type = format.type,
                     .section = options.section,
                     .exclusive = options.exclusive,
                     .keep_going = true};
    Reading reading = read_once(input, content);
    Source source{options.file};
    if (!code_page_is_told && may_hold_utf8(*format.type) &&
        kit::text_encoding(reading.content.tree) == kit::TextEncoding::utf8) {
        input.code_page = source.code_page = utf8_code_page;
        reading = read_once(input, content);
    }
    Teller teller(input.file, format, content);
    const bool refuses = damage == Damage::refuse && !options.keep_going;
    if (is_damaged(reading) && (refuses || is_empty(reading.content.tree))) {
        refuse(reading, teller, input.file);
    }
    source.dropped = dropped_of(reading, teller, input.file);
    source.content = std::move(reading.content);
    source.section = options.section;
    source.bytes = content;
    return source;
}

std::vector<std::string> losses_of_reading(const Source& source) {
    std::vector<std::string> losses = source.dropped;
    if (source.is_json) return losses;
    kit::CheckOptions options{.type = source.content.type, .section = source.section};
    options.code_page = source.code_page;
    const std::string name = shown_name(source.file);
    const Progress progress("checking " + name);
    const SignalDelay delay; // as for reading
    std::vector<kit::Diagnostic> found = source.bytes ? kit::check_content(*source.bytes, name, options)
                                                      : kit::check_file(source.file, options);
    // Those with a number are reports of the load, which were told.
    if (!source.dropped.empty()) {
        std::erase_if(found, [](const kit::Diagnostic& diagnostic) { return diagnostic.number != 0; });
    }
    kit::FileContent silent;
    silent.unread = source.content.unread;
    for (const kit::Loss& loss : kit::source_losses(silent, found)) {
        losses.push_back(fmt::format("{}: {}{}{}", name, printable(loss.path), loss.path.empty() ? "" : ": ",
                                     loss.reason));
    }
    return losses;
}

std::vector<std::string> losses_unless_told(const SourceOptions& options, const Source& source) {
    std::vector<std::string> losses = losses_of_reading(source);
    if (!options.keep_going) return losses;
    for (const std::string& line : losses) {
        complain("dropped: " + line);
    }
    return {};
}

Source read_one_tree(const SourceOptions& options, Damage damage, std::string_view choice) {
    Source source = read_source(options, damage);
    if (!source.content.by_section) return source;
    const bool is_cfg = source.content.type == PM_Object::FILE_CFG;
    std::vector<std::string> names;
    for (const kit::Section& section : source.content.sections) {
        names.push_back(section.name);
    }
    throw Failure(fmt::format("{}: {}; choose one with {} ({})", shown_name(options.file),
                              is_cfg ? "the file holds several plotters" : "a dpia file holds several trees",
                              choice, fmt::join(names, ", ")));
}

void tell_dropped(const Source& source) {
    for (const std::string& line : source.dropped) {
        complain("dropped: " + line);
    }
}

std::vector<kit::Section> sections_of(const SourceOptions& options) {
    const std::optional<std::string> content = content_at_hand(options.file);
    const Format& format = format_of_input(options, content);
    refuse_folder(options.file, format);
    std::vector<kit::Section> sections;
    try {
        std::stringstream stream(content.value_or(""));
        const std::u16string name = pm::file_name_to_utf16(options.file);
        if (format.is(PM_Object::FILE_CFG)) {
            for (const pm::CfgPlotter& plotter :
                 content ? pm::cfg_plotters(stream) : pm::cfg_plotters(name)) {
                sections.push_back({fmt::format("{}", plotter.number), shown(plotter.name)});
            }
            return sections;
        }
        if (format.is(PM_Object::FILE_DPIA)) {
            for (const pm::DpiaSection& section :
                 content ? pm::dpia_sections(stream) : pm::dpia_sections(name)) {
                sections.push_back({shown(section.name), shown(section.info.value_or(u""))});
            }
            return sections;
        }
    } catch (const ZT_Exception& e) {
        throw Failure(describe(make_report(e, options.file), shown_name(options.file)));
    }
    throw Failure(fmt::format("{}: a {} file has no sections", shown_name(options.file), format.name));
}

} // namespace pmtool

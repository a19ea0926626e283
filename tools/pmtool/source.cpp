#include "source.h"

#include "failure.h"
#include "files.h"
#include "line_finder.h"
#include "report_handler.h"
#include "text.h"
#include <cerrno>
#include <charconv>
#include <fmt/format.h>
#include <optional>

namespace pmtool {

namespace {

bool has_sections(const Format& format) {
    return format.type == PM_Object::FILE_DPIA || format.type == PM_Object::FILE_CFG;
}

int plotter_number(const std::string& section) {
    int number = 0;
    const char* end = section.data() + section.size();
    const auto result = std::from_chars(section.data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) return number;
    throw Failure(fmt::format("{}: a section of a cfg file is told by its plotter's number", section));
}

std::vector<std::string> plotter_names(const Source& source) {
    std::vector<std::string> names;
    for (const pm::CfgPlotter& plotter : pm::cfg_plotters(pm::file_name_to_utf16(source.path))) {
        names.push_back(fmt::format("{}", plotter.number));
    }
    return names;
}

// The plotter that a CFG file is read for when none was asked for.
int only_plotter(const Source& source) {
    const std::vector<std::string> names = plotter_names(source);
    if (names.size() > 1) {
        throw Failure(fmt::format("{}: the file holds several plotters; choose one with --section ({})",
                                  source.file, fmt::join(names, ", ")));
    }
    return names.empty() ? 0 : plotter_number(names.front());
}

void refuse_folder(const Source& source) {
    if (is_folder(source.path)) throw system_failure(source.path, EISDIR);
}

std::string failure_text(Report report, const Source& source) {
    if (!is_bad_line(report)) return describe(report, source.file);
    report.line = LineFinder::of_file(source.path, source.format->type).find(report);
    return describe(report, source.file) + "; all bad lines are listed by: pmtool check";
}

} // namespace

Source find_source(const SourceOptions& options) {
    Source source{options.file, options.file, options.section, nullptr};
    source.format = options.from.empty() ? identify(options.file).format : &format_named(options.from);
    if (!source.section.empty() && !has_sections(*source.format)) {
        throw Failure(fmt::format("{}: a {} file has no sections", source.file, source.format->name));
    }
    if (source.format->type == PM_Object::FILE_PDT && is_folder(source.file)) {
        const std::optional<std::string> string_file = find_string_file(source.file);
        if (!string_file) {
            throw Failure(source.file + ": the folder holds no string file such as strings.pdt");
        }
        source.path = *string_file;
    }
    return source;
}

void load(PM_Object& object, const Source& source, const std::u16string& base) {
    const PM_Object::FileType type = source.format->type;
    const std::u16string path = pm::file_name_to_utf16(source.path);
    if (type == PM_Object::FILE_CFG) {
        const int number = source.section.empty() ? only_plotter(source) : plotter_number(source.section);
        object.load_cfg_section(path.c_str(), type, base.c_str(), number);
    } else if (!source.section.empty()) {
        object.load_section(path.c_str(), type, base.c_str(), pm::to_utf16(source.section).c_str());
    } else {
        object.load(path.c_str(), type, base.c_str());
    }
}

void load_strictly(PM_Object& object, const Source& source, const std::u16string& base) {
    refuse_folder(source);
    translating(source, [&] { load(object, source, base); });
}

void load_one_tree(PM_Object& object, const Source& source, const std::u16string& base) {
    if (source.format->type == PM_Object::FILE_DPIA && source.section.empty()) {
        throw Failure(
            fmt::format("{}: a dpia file holds several trees; choose one with --section", source.file));
    }
    load_strictly(object, source, base);
}

void translating(const std::string& file, const std::string& path, const std::function<void()>& action) {
    try {
        action();
    } catch (const ZT_Exception& e) {
        throw Failure(describe(make_report(e, path), file));
    }
}

void translating(const Source& source, const std::function<void()>& action) {
    try {
        action();
    } catch (const ZT_Exception& e) {
        throw Failure(failure_text(make_report(e, source.path), source));
    }
}

std::vector<Section> sections_of(const Source& source) {
    if (!has_sections(*source.format)) {
        throw Failure(fmt::format("{}: a {} file has no sections", source.file, source.format->name));
    }
    refuse_folder(source);
    std::vector<Section> sections;
    translating(source, [&] {
        if (source.format->type == PM_Object::FILE_CFG) {
            for (std::string& name : plotter_names(source)) {
                sections.push_back({std::move(name), {}});
            }
            return;
        }
        for (const pm::DpiaSection& section : pm::dpia_sections(pm::file_name_to_utf16(source.path))) {
            sections.push_back({shown(section.name), shown(section.info.value_or(u""))});
        }
    });
    return sections;
}

std::vector<Source> parts_of(const Source& source) {
    if (!source.section.empty() || !has_sections(*source.format)) return {source};
    std::vector<Source> parts;
    if (source.format->type == PM_Object::FILE_DPIA) parts.push_back(source);
    for (const Section& section : sections_of(source)) {
        parts.push_back({source.file, source.path, section.name, source.format});
    }
    return parts.empty() ? std::vector<Source>{source} : parts;
}

} // namespace pmtool

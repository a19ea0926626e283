#include "target.h"

#include "failure.h"
#include "progress.h"
#include "report_handler.h"
#include "safe_save.h"
#include "system.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/kit/difference.h>
#include <pm/kit/error.h>
#include <pm/kit/json.h>
#include <system_error>

namespace pmtool {

namespace {

namespace kit = pm::kit;

constexpr std::string_view compression_mark = "compress";
constexpr unsigned utf8_code_page = 65001;

bool asks_for_compression(std::string_view text) {
    return text.find(compression_mark) != std::string_view::npos;
}

std::string with_compression(const std::string& tag) {
    if (asks_for_compression(tag)) return tag;
    return tag + (tag.empty() ? "" : ",") + std::string(compression_mark);
}

// What stands between the commas of a tag.
std::vector<std::string> items_of(const std::string& tag) {
    std::vector<std::string> items;
    for (std::size_t at = 0; at <= tag.size();) {
        const std::size_t end = std::min(tag.find(',', at), tag.size());
        items.push_back(tag.substr(at, end - at));
        at = end + 1;
    }
    return items;
}

// A tag without what asks for compression.
std::string without_compression(const std::string& tag) {
    std::vector<std::string> items = items_of(tag);
    std::erase_if(items, asks_for_compression);
    return fmt::format("{}", fmt::join(items, ","));
}

// A section that goes without being asked to takes its info text along.
void add_gone_sections(const Writing& writing, kit::Prepared& prepared) {
    if (!writing.format.is(PM_Object::FILE_DPIA)) return;
    for (const kit::Section& section : writing.form.sections) {
        if (section.info.empty() || writing.tree.node('\\' + section.node)) continue;
        prepared.losses.push_back({kit::LossKind::lost,
                                   fmt::format("\\{}\\", section.node),
                                   {},
                                   "the section's info text isn't kept",
                                   kit::make_stored(pm::Value(section.info)),
                                   {}});
    }
}

kit::Prepared prepare_file(const Writing& writing, const TargetOptions& options) {
    const Progress progress("making " + options.file);
    const SignalDelay delay; // a compound file is made in a temporary one
    try {
        return kit::prepare(writing.tree, writing.form);
    } catch (const kit::Error& e) {
        throw Failure(fmt::format("{}: {}", options.file, e.what()));
    } catch (const ZT_Exception& e) {
        throw Failure(describe(make_report(e, options.file), options.file));
    }
}

kit::Prepared prepare(const Writing& writing, const TargetOptions& options) {
    if (writing.format.is_json()) {
        const std::optional<pm::Node> top = writing.tree.node(writing.form.subtree);
        if (!top) throw Failure(fmt::format("{}: there is no such node", writing.form.subtree));
        return {kit::to_json(*top), {}, {}};
    }
    kit::Prepared prepared = prepare_file(writing, options);
    add_gone_sections(writing, prepared);
    return prepared;
}

void tell(const std::string& file, std::string_view kind, const std::string& text) {
    complain(fmt::format("{}: {}{}", file, kind, text));
}

std::string plural(std::size_t count, std::string_view word) {
    return fmt::format("{} {}{}", count, word, count == 1 ? "" : "es");
}

bool fits_utf8(const Writing& writing) {
    return writing.format.is(PM_Object::FILE_PIA) && !writing.form.utf8;
}

// Text that the code page hasn't, or a name: whose change is told as one of place.
bool is_of_encoding(const kit::Loss& loss) {
    const bool moves = loss.kind == kit::LossKind::renamed || loss.kind == kit::LossKind::moved;
    const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    return loss.kind == kit::LossKind::re_encoded || (moves && !std::ranges::all_of(loss.path, is_ascii));
}

// What to do about losses, behind the number of them.
std::string advice(const Writing& writing, const kit::Prepared& prepared) {
    std::string text;
    const bool is_encoding = std::ranges::any_of(prepared.losses, is_of_encoding);
    if (!writing.dropped.empty()) text += "; pmtool check tells what is wrong with the input";
    if (is_encoding && fits_utf8(writing)) text += "; --utf8 keeps all characters";
    return text + "; --lossy writes nevertheless";
}

// Every loss, a line each. Whether there are any.
bool tell_losses(const Writing& writing, const kit::Prepared& prepared, const TargetOptions& options) {
    const std::string_view kind = options.lossy ? "warning: " : "";
    for (const std::string& line : writing.dropped) {
        tell(options.file, kind, "not read: " + line);
    }
    for (const kit::Loss& loss : prepared.losses) {
        tell(options.file, kind, kit::loss_text(loss));
    }
    const std::size_t count = writing.dropped.size() + prepared.losses.size();
    if (count != 0 && !options.lossy) {
        tell(options.file, "", "not written: " + plural(count, "loss") + advice(writing, prepared));
    }
    return count != 0;
}

void tell_form(const Writing& writing, const kit::Prepared& prepared, const TargetOptions& options) {
    std::vector<std::string> notes = prepared.notes;
    notes.insert(notes.end(), writing.notes.begin(), writing.notes.end());
    if (writing.rewritten != nullptr) {
        const std::vector<std::string> changes = kit::form_changes(*writing.rewritten, writing.form);
        notes.insert(notes.end(), changes.begin(), changes.end());
    }
    if (notes.empty()) return;
    tell(options.file, "note: ", fmt::format("{}", fmt::join(notes, "; ")));
}

// What a target that is there holds; nothing if it isn't or can't be read.
kit::FileContent content_of(const std::string& file) {
    if (kind_of(file) != FileKind::regular) return {};
    try {
        return read_source({file}, Damage::keep).content;
    } catch (const std::exception&) {
        return {};
    }
}

void show_info_texts(const std::vector<kit::Section>& before, const std::vector<kit::Section>& after) {
    const auto info_in = [](const std::vector<kit::Section>& sections, const kit::Section& section) {
        const auto found = std::ranges::find(sections, section.node, &kit::Section::node);
        return found != sections.end() ? found->info : std::string();
    };
    for (const kit::Section& section : after) {
        const std::string info = info_in(before, section);
        if (info == section.info) continue;
        fmt::print("~ {}: info text {} -> {}\n", kit::printable_text(fmt::format("\\{}\\", section.node)),
                   in_quotes(info), in_quotes(section.info));
    }
}

// With --lossy what the file would give back, else what was asked for.
void show_changes(const Writing& writing, const kit::Prepared& prepared, const TargetOptions& options) {
    const kit::FileContent there = writing.before == nullptr ? content_of(options.file) : kit::FileContent();
    const pm::Tree& before = writing.before == nullptr ? there.tree : *writing.before;
    const std::optional<pm::Node> top = writing.tree.node(writing.form.subtree);
    if (!top) return;
    const bool differs = options.lossy && !prepared.losses.empty();
    const SignalDelay delay; // as for making it
    const pm::Tree written = differs ? kit::read_back(prepared.bytes, writing.form).tree : pm::Tree();
    const kit::CompareOptions compare{.strictness = writing.format.is_json()};
    for (const kit::Difference& difference :
         kit::compare(before.root(), differs ? written.root() : *top, compare)) {
        fmt::print("{}\n", kit::difference_text(difference));
    }
    if (!writing.format.is(PM_Object::FILE_DPIA)) return;
    show_info_texts(writing.before == nullptr ? there.sections : writing.rewritten->sections,
                    writing.form.sections);
}

void require_pia(const Format& format, const TargetOptions& options) {
    if (format.is(PM_Object::FILE_PIA) || !(options.compress || options.utf8 || options.tag)) return;
    throw Mistake(fmt::format("{}: --compress, --utf8 and --tag are for pia files only", options.file));
}

void require_code_page(unsigned code_page) {
    try {
        const kit::ScopedCodePage page(code_page);
    } catch (const ZT_Exception&) {
        throw Failure(fmt::format("{}: this machine has no such code page", code_page));
    }
}

bool is_target(const SourceOptions& source, const std::string& target) {
    return source.file == target || is_same_file(source.file, target);
}

std::string end_of_links(const std::string& file) {
    try {
        return follow_links(file);
    } catch (const std::system_error& e) {
        throw system_failure(file, e.code().value());
    }
}

} // namespace

Damage damage_by(const TargetOptions& options) {
    return options.lossy ? Damage::keep : Damage::refuse;
}

TargetLock::TargetLock(const TargetOptions& target, std::initializer_list<SourceOptions*> sources) {
    if (target.dry_run || target.file == "-") return;
    for (SourceOptions* source : sources) {
        source->exclusive = is_target(*source, target.file);
    }
    m_lock.emplace(end_of_links(target.file));
}

std::vector<std::string> dropped_tag_items(const Source& source, const kit::WriteOptions& form) {
    std::vector<std::string> lines;
    if (form.type != PM_Object::FILE_PIA) return lines;
    const std::vector<std::string> kept = items_of(form.tag);
    for (const std::string& item : items_of(source.content.tag)) {
        const bool is_more = asks_for_compression(item) && item != compression_mark;
        if (is_more && std::ranges::find(kept, item) == kept.end()) {
            lines.push_back(fmt::format("{} of the header's tag isn't kept", in_quotes(item)));
        }
    }
    return lines;
}

std::vector<std::string> dropped_info_texts(const Source& source) {
    std::vector<std::string> lines;
    if (source.is_json || source.content.type != PM_Object::FILE_DPIA) return lines;
    for (const kit::Section& section : source.content.sections) {
        const bool is_read = source.section.empty() || source.section == section.name;
        if (!is_read || section.info.empty()) continue;
        lines.push_back(fmt::format("the info text of section {} isn't kept", printable(section.name)));
    }
    return lines;
}

kit::WriteOptions form_of(const Format& format, const TargetOptions& options, const Source& source) {
    require_pia(format, options);
    require_code_page(options.code_page);
    kit::WriteOptions form;
    form.type = format.type.value_or(PM_Object::FILE_PIA);
    form.code_page = options.code_page != 0 ? options.code_page : source.code_page;
    if (format.is(PM_Object::FILE_PIA)) {
        form.tag = options.tag.value_or(without_compression(source.content.tag));
        if (options.compress) form.tag = with_compression(form.tag);
        const bool is_utf8 = form.code_page == utf8_code_page && source.content.type == PM_Object::FILE_PIA;
        form.utf8 = options.utf8 || (is_utf8 && options.code_page == 0);
    }
    if (form.utf8) form.code_page = 0;
    form.guessed = form.code_page == 0 && !is_code_page_told();
    return form;
}

kit::WriteOptions same_form(const Source& source, const TargetOptions& options) {
    const Format& format = format_of(source.content.type);
    TargetOptions kept = options;
    if (format.is(PM_Object::FILE_PIA)) {
        kept.compress = options.compress || source.content.compressed;
        if (!options.tag) kept.tag = source.content.tag;
    }
    kit::WriteOptions form = form_of(format, kept, source);
    form.sections = source.content.sections;
    return form;
}

int write_by_rule(const Writing& writing, const TargetOptions& options) {
    if (options.backup && options.backup->find_first_of(folder_separators()) != std::string::npos) {
        throw Mistake(fmt::format("{}: a suffix stays in the folder of its file", *options.backup));
    }
    if (!options.dry_run) require_target(options.file);
    const kit::Prepared prepared = prepare(writing, options);
    const bool is_lossy = tell_losses(writing, prepared, options);
    if (options.dry_run) show_changes(writing, prepared, options);
    if (is_lossy && !options.lossy) return exit_trouble;
    tell_form(writing, prepared, options);
    if (!options.dry_run) save_safely(options.file, prepared.bytes, options.backup);
    return exit_ok;
}

} // namespace pmtool

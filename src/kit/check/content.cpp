#include "check/content.h"

#include "check/doc_check.h"
#include "check/dpia_check.h"
#include "check/files.h"
#include "check/numbers.h"
#include "check/pc2_check.h"
#include "check/pcp_check.h"
#include "check/pdt/description.h"
#include "check/pia/check.h"
#include "check/round_trip.h"
#include <fmt/format.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/inspect.h>
#include <pm/kit/file.h>

namespace pm::kit {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// What a file's name says, where its content says nothing.
struct Ending {
    std::string_view text;
    PM_Object::FileType type;
};
constexpr Ending endings[] = {{".dpia", PM_Object::FILE_DPIA},
                              {".pia", PM_Object::FILE_PIA},
                              {".pc2", PM_Object::FILE_PC2},
                              {".pcp", PM_Object::FILE_PCP}};

// The beginning of a compound file with some bytes of it damaged. Other programs call files of other kinds
// ".doc" too.
bool is_nearly_compound(std::string_view bytes) {
    constexpr std::string_view mark = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    if (bytes.size() < mark.size()) return false;
    std::size_t same = 0;
    for (std::size_t at = 0; at < mark.size(); ++at) {
        if (bytes[at] == mark[at]) ++same;
    }
    return same >= mark.size() / 2;
}

std::optional<PM_Object::FileType> type_of(const CheckedContent& content, const CheckOptions& options) {
    if (options.type) return options.type;
    std::string_view bytes = content.bytes;
    if (bytes.starts_with(byte_order_mark)) bytes.remove_prefix(byte_order_mark.size());
    const std::optional<FileIdentity> identity = identify_content(bytes);
    if (identity) return identity->type;
    if (is_table_name(content.name)) return PM_Object::FILE_PDT;
    const std::string name = lowered(content.name);
    for (const Ending& ending : endings) {
        if (name.ends_with(ending.text)) return ending.type;
    }
    if (name.ends_with(".doc") && is_nearly_compound(content.bytes)) return PM_Object::FILE_DOC;
    return std::nullopt;
}

void check_as(PM_Object::FileType type, const CheckedContent& content, const CheckOptions& options,
              Findings& findings) {
    const bool has_sections = type == PM_Object::FILE_DPIA || type == PM_Object::FILE_CFG;
    if (!options.section.empty() && !has_sections) return say_no_sections(content.name, type, findings);
    const NarrowText narrow(pm_system_code_page());
    const Place where{.file = content.name, .section = {}};
    switch (type) {
    case PM_Object::FILE_PIA:
        check_pia(content.bytes, narrow, where, findings);
        break;
    case PM_Object::FILE_DPIA:
        check_dpia(content.bytes, options.section, where, findings);
        break;
    case PM_Object::FILE_PC2:
        check_pc2(content.bytes, narrow, where, findings);
        break;
    case PM_Object::FILE_CFG:
        check_cfg(content.bytes, narrow, options.section, where, findings);
        break;
    case PM_Object::FILE_PCP:
        check_pcp(content.bytes, narrow, where, findings);
        break;
    case PM_Object::FILE_DOC:
        check_doc(content, where, findings);
        break;
    case PM_Object::FILE_PDT:
        check_table_file(content, narrow, findings);
        break;
    }
    if (options.round_trip) check_round_trip(type, content, where, findings);
}

// In words of what was tried; the library's own are for its programmers.
std::string_view failure_words(std::uint32_t number) {
    switch (number) {
    case PM_ERR_NO_SUCH_FILE:
        return "The file doesn't exist.";
    case PM_ERR_ACCESS_DENIED:
        return "The file can't be opened.";
    default:
        return "The file can't be read.";
    }
}

void check_read(std::string_view file, bool known_only, const CheckOptions& options, Findings& findings) {
    const FileBytes read = read_bytes(file);
    if (read.failure != 0) return say_unreadable(file, read.failure, findings);
    const CheckedContent content{read.bytes, std::string(file), std::string(file)};
    if (known_only && !type_of(content, options)) return;
    check_content(content, options, findings);
}

} // namespace

void check_content(const CheckedContent& content, const CheckOptions& options, Findings& findings) {
    const std::optional<PM_Object::FileType> type = type_of(content, options);
    if (type) return check_as(*type, content, options, findings);
    findings.add(
        {.rule = Rule::unknown_kind,
         .place = {.file = content.name, .section = {}},
         .message = content.bytes.empty() ? "The file is empty." : "The content is of no known kind."});
}

void say_unreadable(std::string_view name, std::uint32_t number, Findings& findings) {
    findings.add({.rule = Rule::unreadable,
                  .place = {.file = std::string(name), .section = {}},
                  .message = std::string(failure_words(number)),
                  .number = number});
}

void say_no_sections(std::string_view name, PM_Object::FileType type, Findings& findings) {
    findings.add({.rule = Rule::unreadable,
                  .place = {.file = std::string(name), .section = {}},
                  .message = fmt::format("A {} file has no sections.", format_name(type)),
                  .number = PM_ERR_NO_SUCH_SECTION});
}

void check_named(std::string_view file, const CheckOptions& options, Findings& findings) {
    check_read(file, false, options, findings);
}

void check_if_known(std::string_view file, const CheckOptions& options, Findings& findings) {
    check_read(file, true, options, findings);
}

} // namespace pm::kit

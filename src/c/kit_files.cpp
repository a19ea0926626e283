#include "arguments.h"
#include "block.h"
#include "failure.h"
#include "kit_text.h"
#include "losses.h"
#include "reports.h"
#include <pm/kit/check.h>
#include <pm/kit/encoding.h>
#include <pm/kit/file.h>
#include <pm/kit/loss.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

constexpr pm9_read_options default_read{
    sizeof(pm9_read_options), PM9_FILE_ANY, 0, nullptr, 0, nullptr, nullptr};
constexpr pm9_check_options default_check{
    sizeof(pm9_check_options), PM9_FILE_ANY, 0, nullptr, 0, nullptr, 0, 0, 0};

pm::kit::Input input_of(std::string_view file, const pm9_read_options& how) {
    pm::kit::Input input;
    input.file = file;
    input.type = file_type(how.type);
    input.section = text(how.section, how.section_length);
    input.code_page = how.code_page;
    input.on_report = asking(how.on_report, how.context);
    return input;
}

pm::kit::CheckOptions check_options(const pm9_check_options* given) {
    const pm9_check_options how = options(given, default_check, u"options");
    pm::kit::CheckOptions check;
    check.type = file_type(how.type);
    check.code_page = how.code_page;
    check.rules = lines_of(text(how.rules, how.rules_length));
    check.without = lines_of(text(how.without, how.without_length));
    check.round_trip = how.round_trip != 0;
    return check;
}

// Diagnostics with a number are reports of the load, if there are any.
std::vector<pm::kit::Loss> unreported(const pm::kit::Input& input) {
    pm::kit::FileContent content = pm::kit::read_file(input);
    pm::kit::CheckOptions check;
    check.type = content.type;
    check.section = input.section;
    check.code_page = input.code_page;
    std::vector<pm::kit::Diagnostic> found = pm::kit::check_file(input.file, check);
    if (!content.reports.empty()) {
        std::erase_if(found, [](const pm::kit::Diagnostic& each) { return each.number != 0; });
    }
    content.reports.clear();
    return pm::kit::source_losses(content, found);
}

static_assert(static_cast<int>(pm::kit::TextEncoding::utf8) == PM9_TEXT_UTF8);
static_assert(static_cast<int>(pm::kit::TextEncoding::mixed) == PM9_TEXT_MIXED);
static_assert(static_cast<int>(pm::kit::Severity::error) == PM9_ERROR);

void add_diagnostic(ArrayBlock<pm9_diagnostic>& block, const pm::kit::Diagnostic& diagnostic) {
    using Item = pm9_diagnostic;
    Item item{};
    item.severity = static_cast<std::int32_t>(diagnostic.severity);
    item.number = static_cast<pm9_status>(diagnostic.number);
    item.line = diagnostic.place.line;
    item.column = diagnostic.place.column;
    block.add(item);
    block.add_text(&Item::rule, &Item::rule_length, diagnostic.rule);
    block.add_text(&Item::file, &Item::file_length, diagnostic.place.file);
    block.add_text(&Item::section, &Item::section_length, diagnostic.place.section);
    block.add_text(&Item::path, &Item::path_length, diagnostic.path);
    block.add_text(&Item::message, &Item::message_length, diagnostic.message);
}

} // namespace

pm9_status pm9_tree_read(pm9_tree* tree, const char* file, size_t file_length, const pm9_read_options* given,
                         pm9_error* error) {
    return guarded(error, [&] {
        const pm9_read_options how = options(given, default_read, u"options");
        pm9_tree& target = required(tree, u"tree");
        const pm::kit::Input input = input_of(kit_file_name(file, file_length), how);
        pm::kit::FileContent content;
        try {
            pm::kit::read_into(content, input);
        } catch (...) {
            target.read_reports.emplace(content.reports.begin(), content.reports.end());
            throw;
        }
        target.take(std::move(content));
    });
}

pm9_status pm9_tree_source(const pm9_tree* tree, pm9_source* source, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_tree& read = required(tree, u"tree");
        pm9_source& out = result(source, u"source");
        pm9_source filled{};
        filled.type = PM9_FILE_ANY;
        if (read.source) filled = *read.source;
        if (read.source && !read.tag.empty()) {
            filled.tag = copy_of(read.tag).release();
            filled.tag_length = read.tag.size();
        }
        filled.size = out.size;
        out = filled;
    });
}

pm9_status pm9_tree_encoding(const pm9_tree* tree, int32_t* encoding, pm9_error* error) {
    return guarded(error, [&] {
        const pm::Tree& read = required(tree, u"tree").tree;
        required(encoding, u"encoding") = static_cast<std::int32_t>(pm::kit::text_encoding(read));
    });
}

pm9_status pm9_unreported(const char* file, size_t file_length, const pm9_read_options* given,
                          size_t item_size, pm9_loss** losses, size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_read_options how = options(given, default_read, u"options");
        const pm::kit::Input input = input_of(kit_file_name(file, file_length), how);
        block_of(unreported(input)).hand_out(item_size, losses, count);
    });
}

pm9_status pm9_check(const char* file, size_t file_length, const pm9_check_options* given, size_t item_size,
                     pm9_diagnostic** diagnostics, size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        ArrayBlock<pm9_diagnostic> block;
        const pm::kit::CheckOptions how = check_options(given);
        const std::string_view name = kit_file_name(file, file_length);
        for (const pm::kit::Diagnostic& diagnostic : pm::kit::check_file(name, how)) {
            add_diagnostic(block, diagnostic);
        }
        block.hand_out(item_size, diagnostics, count);
    });
}

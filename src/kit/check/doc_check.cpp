#include "check/doc_check.h"

#include "check/compound.h"
#include "check/files.h"
#include "check/library_load.h"
#include "check/narrow_text.h"
#include "check/numbers.h"
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/text.h>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr std::uint32_t longest_value = 1024; // bytes
constexpr std::size_t record_head = 8;
constexpr std::size_t longest_record = record_head + longest_value + 1;

// The size of a value by its type; 0 for any.
constexpr std::uint32_t sizes[] = {0, 4, 8, 0, 1, 0};
constexpr std::uint32_t last_type = 5;

std::uint32_t word_at(std::string_view bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t byte = 4; byte-- > 0;) {
        word = word << 8 | static_cast<unsigned char>(bytes[at + byte]);
    }
    return word;
}

class DocCheck {
public:
    DocCheck(const Compound& file, const Place& where, Findings& findings)
        : m_file(file), m_where(where), m_findings(findings), m_met(file.entries().size()) {}

    void run();

private:
    struct Storage {
        std::uint32_t entry;
        std::string path;
    };
    void check_storage(const Storage& storage);
    void check_element(std::uint32_t number, const Storage& parent, bool named_version);
    void check_stream(const Compound::Entry& entry, const std::string& path);
    void check_record(std::string_view record, std::uint64_t stored, const std::string& path);
    void check_value(std::uint32_t type, std::string_view value, const std::string& path);
    void check_orphans();
    void say(Rule rule, std::string message, const std::string& path = {}, std::uint32_t number = 0,
             std::optional<Severity> severity = {}) {
        m_findings.add({rule, m_where, std::move(message), path, number, severity});
    }

    const Compound& m_file;
    const Place& m_where;
    Findings& m_findings;
    std::vector<bool> m_met;
    std::vector<Storage> m_waiting;
    bool m_has_version = false;
};

void DocCheck::run() {
    m_met[0] = true;
    m_waiting.push_back({0, {}});
    while (!m_waiting.empty()) {
        const Storage next = std::move(m_waiting.back());
        m_waiting.pop_back();
        check_storage(next);
    }
    if (!m_has_version) {
        say(Rule::bad_element, "There is no stream \"Version\" in the root.", {}, PM_ERR_NOT_READ);
    }
    check_orphans();
    const std::size_t behind = m_file.unused_end();
    if (behind > 0) {
        say(Rule::trailing_data, fmt::format("{} bytes stand behind the last sector in use.", behind));
    }
}

void DocCheck::check_storage(const Storage& storage) {
    std::size_t broken = 0;
    const std::vector<std::uint32_t> elements = m_file.elements(storage.entry, m_met, broken);
    if (broken > 0) {
        say(Rule::bad_element,
            fmt::format("{} links of the storage lead nowhere, or to an element met before.", broken),
            storage.path, PM_ERR_NOT_READ);
    }
    if (elements.empty() && storage.entry != 0) {
        say(Rule::leftover_stream, "The storage is empty, and a load makes no node of it.", storage.path);
    }
    std::unordered_map<std::string, std::uint32_t> first;
    for (const std::uint32_t number : elements) {
        const std::string name = to_utf8(m_file.entries()[number].name);
        const auto [known, is_new] = first.try_emplace(lowered(name), number);
        if (!is_new) {
            say(Rule::repeated_name, fmt::format("Two elements are called {}.", in_quotes(name)),
                storage.path + '\\' + name, PM_ERR_NOT_READ, Severity::error);
        }
        check_element(number, storage, equals_ignoring_case(name, "Version"));
    }
}

void DocCheck::check_element(std::uint32_t number, const Storage& parent, bool named_version) {
    using Kind = Compound::Kind;
    const Compound::Entry& entry = m_file.entries()[number];
    const std::string path = parent.path + '\\' + to_utf8(entry.name);
    if (!entry.named) {
        return say(Rule::bad_element, "The name of the element isn't one that compound files have.", path,
                   PM_ERR_NOT_READ);
    }
    if (entry.kind != static_cast<std::uint8_t>(Kind::storage) &&
        entry.kind != static_cast<std::uint8_t>(Kind::stream)) {
        return say(Rule::bad_element,
                   fmt::format("The element is neither storage nor stream but {}.", entry.kind), path,
                   PM_ERR_NOT_READ);
    }
    if (named_version && parent.entry == 0 && entry.kind == static_cast<std::uint8_t>(Kind::stream)) {
        m_has_version = true;
    } else if (named_version) {
        say(Rule::leftover_stream, "An element called \"Version\" isn't read.", path);
    } else if (entry.kind == static_cast<std::uint8_t>(Kind::storage)) {
        m_waiting.push_back({number, path});
    } else {
        check_stream(entry, path);
    }
}

void DocCheck::check_stream(const Compound::Entry& entry, const std::string& path) {
    const std::optional<std::string> record = m_file.read(entry, longest_record);
    if (!record) {
        return say(Rule::bad_element, "The stream is shorter than its size, or its chain is broken.", path,
                   PM_ERR_NOT_READ);
    }
    check_record(*record, entry.size, path);
}

void DocCheck::check_record(std::string_view record, std::uint64_t stored, const std::string& path) {
    if (record.size() < record_head) {
        return say(Rule::bad_element,
                   fmt::format("The stream has {} bytes, and a value has eight in front.", record.size()),
                   path, PM_ERR_NOT_READ);
    }
    const std::uint32_t type = word_at(record, 0);
    const std::uint32_t size = word_at(record, 4);
    if (type == 0 || type > last_type) {
        return say(Rule::bad_element, fmt::format("The value is of type {}, which isn't known.", type), path,
                   PM_ERR_NOT_READ);
    }
    if (size > longest_value) {
        return say(Rule::bad_element,
                   fmt::format("The value tells of {} bytes, and {} are read at most.", size, longest_value),
                   path, PM_ERR_NOT_READ);
    }
    if (record.size() - record_head < size) {
        return say(
            Rule::bad_element,
            fmt::format("The value tells of {} bytes, and {} are there.", size, record.size() - record_head),
            path, PM_ERR_NOT_READ);
    }
    if (stored > record_head + size) {
        say(Rule::trailing_data,
            fmt::format("{} bytes behind the value aren't read.", stored - record_head - size), path);
    }
    check_value(type, record.substr(record_head, size), path);
}

void DocCheck::check_value(std::uint32_t type, std::string_view value, const std::string& path) {
    const std::uint32_t wanted = sizes[type];
    if (wanted != 0 && value.size() != wanted) {
        say(Rule::lossy_value, fmt::format("The value has {} bytes, and its type {}.", value.size(), wanted),
            path);
    } else if (type == 3 && value.find('\0') != std::string_view::npos) {
        say(Rule::ignored_text, "What stands behind a zero byte in the text isn't read.", path);
    }
}

void DocCheck::check_orphans() {
    std::size_t count = 0;
    std::string first;
    for (std::size_t number = 1; number < m_met.size(); ++number) {
        const Compound::Entry& entry = m_file.entries()[number];
        if (m_met[number] || entry.kind == 0) continue;
        if (count++ == 0) first = to_utf8(entry.name);
    }
    if (count == 0) return;
    say(Rule::leftover_stream,
        fmt::format("{} elements, {} the first, are in no storage.", count, in_quotes(first)));
}

} // namespace

void check_doc(const CheckedContent& content, const Place& where, Findings& findings) {
    const std::size_t first = findings.count();
    const Compound file(content.bytes);
    if (file.failure().empty()) {
        DocCheck(file, where, findings).run();
    } else {
        findings.add({.rule = Rule::damaged_file,
                      .place = where,
                      .message = file.failure(),
                      .number = PM_ERR_NOT_OPENED});
    }
    // The library would open the file itself for writing, and for this process alone.
    const std::unique_ptr<ScratchFile> copy = scratch_file_of(content.bytes);
    const std::u16string name = copy ? copy->name() : file_name_to_utf16(content.file);
    if (name.empty()) return;
    Tree tree;
    std::vector<Heard> heard =
        hear_of(tree, [&](Tree& target) { target.load(name, {.type = PM_Object::FILE_DOC}); });
    for (Heard& each : heard) {
        each.text.clear(); // it holds the file's name at most
        each.counted = 0;
    }
    add_unfound(heard, {}, where, first, findings);
}

} // namespace pm::kit

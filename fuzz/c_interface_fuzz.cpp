// A little program of calls of the C interface: an operation and its arguments, one behind the other, on
// three trees. Numbers are bytes; a text or block has its length in front, two bytes.

#include "fuzz_support.h"
#include "memory_file.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <pm/pm_c.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using pm::fuzz::require;

class Program {
public:
    Program(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}

    bool more() const { return m_at != m_end; }
    std::uint8_t byte() { return more() ? *m_at++ : std::uint8_t{0}; }
    std::int32_t number() {
        std::uint32_t result = 0;
        for (int i = 0; i < 4; ++i) {
            result = result << 8 | byte();
        }
        return static_cast<std::int32_t>(result);
    }
    // A copy of the very size, so that a read behind its end is seen.
    std::vector<char> block() {
        const std::size_t high = byte();
        const std::size_t told = high << 8 | byte();
        const auto size = static_cast<std::ptrdiff_t>(std::min(told, static_cast<std::size_t>(m_end - m_at)));
        std::vector<char> bytes(m_at, m_at + size);
        bytes.shrink_to_fit();
        m_at += size;
        return bytes;
    }

private:
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
};

// What a call gave: a status that it may give, and told in the error as well.
void check(pm9_status status, const pm9_error& error) {
    require((status >= 50 && status < 100) || status == PM9_OK || status == PM9_BAD_INPUT);
    if (status == PM9_OK) return;
    require(error.number == status);
    require(error.place_length < sizeof error.place && error.place[error.place_length] == 0);
    require(error.detail_length < sizeof error.detail && error.detail[error.detail_length] == 0);
}

// A block that a call gave.
template<class T>
struct Given {
    Given() = default;
    ~Given() { pm9_free(at); }
    Given(const Given&) = delete;
    Given& operator=(const Given&) = delete;

    T* at = nullptr;
    std::size_t size = 0;
};

// Reads a text that a call gave to its end, and the zero behind.
void read(const char* text, std::size_t length) {
    if (text != nullptr) require(text[length] == 0 && std::string_view(text, length).size() == length);
}

class Machine {
public:
    Machine() {
        for (pm9_tree*& tree : m_trees) {
            require(pm9_tree_new(&tree, nullptr) == PM9_OK);
        }
    }
    ~Machine() { std::for_each(m_trees.begin(), m_trees.end(), pm9_tree_delete); }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void step(Program& program) {
        using Operation = void (Machine::*)(Program&);
        static constexpr Operation operations[] = {
            &Machine::set,       &Machine::set,        &Machine::get,       &Machine::erase,
            &Machine::make_node, &Machine::copy_node,  &Machine::list,      &Machine::load_memory,
            &Machine::load_file, &Machine::save,       &Machine::identify,  &Machine::to_json,
            &Machine::from_json, &Machine::compare,    &Machine::apply,     &Machine::merge,
            &Machine::prepare,   &Machine::check_file, &Machine::compatible};
        m_error.number = PM9_OK;
        (this->*operations[program.byte() % std::size(operations)])(program);
    }

private:
    pm9_tree* tree(Program& program) { return m_trees[program.byte() % m_trees.size()]; }
    void expect(pm9_status status) { check(status, m_error); }

    void set(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> path = program.block();
        pm9_access access = {sizeof access, program.number(), program.byte()};
        pm9_value value = {sizeof value, program.byte() % 7, program.number(), 0, nullptr, 0};
        const std::vector<char> data = program.block();
        if (data.size() >= sizeof value.real) std::memcpy(&value.real, data.data(), sizeof value.real);
        value.data = data.data();
        value.length = data.size();
        expect(pm9_tree_set(target, path.data(), path.size(), &access, &value, &m_error));
    }
    void get(Program& program) {
        const pm9_tree* const source = tree(program);
        const std::vector<char> path = program.block();
        pm9_access access = {sizeof access, program.number(), 0};
        pm9_value value = {sizeof value, PM9_NONE, 0, 0, nullptr, 0};
        const pm9_status status = pm9_tree_get(source, path.data(), path.size(), &access, &value, &m_error);
        expect(status);
        std::int32_t what = PM9_NOTHING;
        expect(pm9_tree_contains(source, path.data(), path.size(), &access, &what, &m_error));
        require(status != PM9_OK || what == PM9_PROPERTY);
        if (status != PM9_OK) return;
        read(value.data, value.length);
        pm9_free(value.data);
    }
    void erase(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> path = program.block();
        pm9_access access = {sizeof access, program.number(), 0};
        std::int32_t what = PM9_NOTHING;
        expect(pm9_tree_erase(target, path.data(), path.size(), &access, &what, &m_error));
    }
    void make_node(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> path = program.block();
        expect(pm9_tree_make_node(target, path.data(), path.size(), &m_error));
    }
    void copy_node(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> from = program.block();
        const std::vector<char> to = program.block();
        if (++m_doublings > most_doublings) return;
        expect(pm9_tree_copy_node(target, from.data(), from.size(), to.data(), to.size(), &m_error));
    }
    void list(Program& program) {
        const pm9_tree* const source = tree(program);
        const std::vector<char> path = program.block();
        pm9_list_options options = {sizeof options, program.byte() % 8, program.byte() % 3};
        Given<pm9_item> items;
        expect(pm9_tree_list(source, path.data(), path.size(), &options, sizeof(pm9_item), &items.at,
                             &items.size, &m_error));
        for (std::size_t i = 0; i < items.size; ++i) {
            read(items.at[i].name, items.at[i].name_length);
        }
    }

    void load_memory(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> base = program.block();
        pm9_load_options options = {};
        options.size = sizeof options;
        options.type = program.byte() % 9 - 1;
        options.base = base.data();
        options.base_length = base.size();
        const std::vector<char> content = program.block();
        expect(pm9_tree_load_memory(target, content.data(), content.size(), &options, &m_error));
        Given<pm9_report> reports;
        expect(pm9_tree_reports(target, sizeof(pm9_report), &reports.at, &reports.size, &m_error));
        for (std::size_t i = 0; i < reports.size; ++i) {
            read(reports.at[i].detail, reports.at[i].detail_length);
        }
    }
    void load_file(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> section = program.block();
        pm9_read_options options = {};
        options.size = sizeof options;
        options.type = program.byte() % 9 - 1;
        options.section = section.data();
        options.section_length = section.size();
        const std::vector<char> content = program.block();
        const pm::fuzz::MemoryFile file(std::string(content.begin(), content.end()));
        const std::string name = name_of(file);
        expect(pm9_tree_read(target, name.c_str(), PM9_Z, &options, &m_error));
        Given<pm9_section> sections;
        expect(
            pm9_sections(name.c_str(), PM9_Z, sizeof(pm9_section), &sections.at, &sections.size, &m_error));
        Given<pm9_plotter> plotters;
        expect(
            pm9_plotters(name.c_str(), PM9_Z, sizeof(pm9_plotter), &plotters.at, &plotters.size, &m_error));
    }
    void save(Program& program) {
        const pm9_tree* const source = tree(program);
        const std::vector<char> tag = program.block();
        const std::vector<char> subtree = program.block();
        pm9_save_options options = {};
        options.size = sizeof options;
        options.type = program.byte() % 8;
        options.utf8 = program.byte() % 2;
        options.tag = tag.data();
        options.tag_length = tag.size();
        options.subtree = subtree.data();
        options.subtree_length = subtree.size();
        Given<char> bytes;
        expect(pm9_tree_save_memory(source, &options, &bytes.at, &bytes.size, &m_error));
        read(bytes.at, bytes.size);
    }
    void identify(Program& program) {
        const std::vector<char> content = program.block();
        pm9_identity identity = {};
        identity.size = sizeof identity;
        expect(pm9_identify_memory(content.data(), content.size(), &identity, &m_error));
    }

    void to_json(Program& program) {
        const pm9_tree* const source = tree(program);
        const std::vector<char> path = program.block();
        pm9_json_options options = {sizeof options, program.byte() % 2, program.byte() % 4,
                                    program.byte() % 2, 0};
        Given<char> text;
        expect(pm9_tree_to_json(source, path.data(), path.size(), &options, &text.at, &text.size, &m_error));
        read(text.at, text.size);
    }
    void from_json(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> text = program.block();
        expect(pm9_tree_from_json(target, text.data(), text.size(), &m_error));
    }
    // What the script of a comparison makes of the one tree is the other.
    void compare(Program& program) {
        pm9_tree* const first = tree(program);
        pm9_tree* const second = tree(program);
        Given<char> script;
        expect(pm9_script(first, second, nullptr, &script.at, &script.size, &m_error));
        require(script.at != nullptr);
        expect(pm9_tree_apply(first, script.at, script.size, &m_error));
        Given<pm9_difference> differences;
        expect(pm9_compare(first, second, nullptr, sizeof(pm9_difference), &differences.at, &differences.size,
                           &m_error));
        require(differences.size == 0);
    }
    void apply(Program& program) {
        pm9_tree* const target = tree(program);
        const std::vector<char> script = program.block();
        m_doublings += std::count(script.begin(), script.end(), '\n') + 1;
        if (m_doublings > most_doublings) return;
        expect(pm9_tree_apply(target, script.data(), script.size(), &m_error));
    }
    void merge(Program& program) {
        pm9_tree* const merged = tree(program);
        Given<pm9_conflict> conflicts;
        expect(pm9_merge(merged, m_trees[0], m_trees[1], m_trees[2], program.byte() % 2, sizeof(pm9_conflict),
                         &conflicts.at, &conflicts.size, &m_error));
    }
    void prepare(Program& program) {
        const pm9_tree* const source = tree(program);
        const std::vector<char> tag = program.block();
        pm9_write_options options = {};
        options.size = sizeof options;
        options.type = program.byte() % 8;
        options.utf8 = program.byte() % 2;
        options.tag = tag.data();
        options.tag_length = tag.size();
        Given<char> bytes;
        Given<pm9_loss> losses;
        expect(pm9_prepare(source, &options, &bytes.at, &bytes.size, sizeof(pm9_loss), &losses.at,
                           &losses.size, &m_error));
        read(bytes.at, bytes.size);
    }
    void check_file(Program& program) {
        pm9_check_options options = {};
        options.size = sizeof options;
        options.type = program.byte() % 9 - 1;
        options.round_trip = program.byte() % 2;
        const std::vector<char> content = program.block();
        const pm::fuzz::MemoryFile file(std::string(content.begin(), content.end()));
        Given<pm9_diagnostic> diagnostics;
        expect(pm9_check(name_of(file).c_str(), PM9_Z, &options, sizeof(pm9_diagnostic), &diagnostics.at,
                         &diagnostics.size, &m_error));
    }
    void compatible(Program& program) {
        const pm9_tree* const configuration = tree(program);
        const pm9_tree* const description = tree(program);
        Given<char> text;
        expect(pm9_compatibility(configuration, description, nullptr, &text.at, &text.size, &m_error));
        read(text.at, text.size);
    }

    static std::string name_of(const pm::fuzz::MemoryFile& file) {
        const std::u16string_view name = file.name();
        return {name.begin(), name.end()};
    }

    // Copies within a tree, each of which may double it.
    static constexpr std::ptrdiff_t most_doublings = 12;

    std::array<pm9_tree*, 3> m_trees{};
    pm9_error m_error = {sizeof m_error, 0, 0, 0, 0, 0, {}, {}};
    std::ptrdiff_t m_doublings = 0;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Program program(data, size);
    Machine machine;
    for (int steps = 0; program.more() && steps < 100; ++steps) {
        machine.step(program);
    }
    return 0;
}

#include "support/temp_folder.h"
#include "tools/torture.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>
#include <pm/kit/difference.h>
#include <pm/kit/file.h>
#include <pm_test_paths.h>
#include <random>
#include <set>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace pm::test {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kills_of_a_slice = 50;
constexpr int kills_of_all = 2500;
constexpr std::size_t edits_at_once = 4;
constexpr std::size_t killed_at_once = 3;
constexpr int slots = 24; // that edits write to, so that the file doesn't grow

struct EditedSample {
    const char* name;
    const char* file;                    // that is edited; another name than the sample's is converted to
    std::vector<std::string> words = {}; // of each edit, beside path and value
    const char* place = "";              // the node that the paths of edits begin at
};

const std::array edited_samples = {
    EditedSample{"plain", "plotter.pia"},
    EditedSample{"compressed", "plotter-compressed.pia", {"--backup"}},
    EditedSample{"sections", "sections.dpia", {"--section", "Office"}, "\\Office"},
    EditedSample{"compound", "plotter.doc"},
};

// One run of `pmtool set` and what became of it.
struct Edit {
    pid_t process = 0;
    int slot = 0;
    int value = 0;
    int status = 0;

    bool was_killed() const { return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL; }
    bool was_done() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
};

// Edits of one file by several programs at once, some of which are killed at any moment.
class KilledEdits : public testing::TestWithParam<EditedSample> {
protected:
    void SetUp() override {
        fs::create_directory(m_folder / "in");
        fs::create_directory(m_folder / "tmp");
        const EditedSample& sample = GetParam();
        m_file = m_folder / "in" / sample.file;
        const fs::path source = fs::path(PM_SAMPLES) / sample.file;
        if (fs::exists(source)) {
            fs::copy(source, m_file);
        } else {
            ASSERT_EQ(0, run({"convert", fs::path(PM_SAMPLES) / "plotter.pia", m_file, "--lossy"}));
        }
        m_before = kit::read_file({.file = m_file}).tree;
        ASSERT_TRUE(edit(0));
    }

    pid_t start(std::vector<std::string> words) const {
        words.insert(words.begin(), "pmtool");
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        const std::string temporary = "TMPDIR=" + (m_folder / "tmp").string();
        std::array<const char*, 2> variables = {temporary.c_str(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (m_folder / "messages").c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0600);
        pid_t process = 0;
        const int code = posix_spawn(&process, PMTOOL, &actions, nullptr, argv.data(),
                                     const_cast<char**>(variables.data()));
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(0, code);
        return process;
    }

    int run(const std::vector<std::string>& words) const {
        int status = 0;
        waitpid(start(words), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    Edit start_edit(int slot) {
        const int value = ++m_last_value;
        std::vector<std::string> words = {"set", m_file, fmt::format("\\kill_test\\n{}", slot),
                                          fmt::format("{}", value)};
        words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());
        return {start(words), slot, value};
    }

    // A whole edit that nobody disturbs; whether it was done.
    bool edit(int slot) {
        const auto start = Clock::now();
        Edit edit = start_edit(slot);
        waitpid(edit.process, &edit.status, 0);
        m_time = Clock::now() - start;
        m_values[slot] = edit.value;
        return edit.was_done();
    }

    // Some edits of different slots at once, of which some are killed after a while each.
    std::vector<Edit> edit_and_kill() {
        std::vector<Edit> edits;
        for (std::size_t i = 0; i < edits_at_once; ++i) {
            edits.push_back(
                start_edit((m_round * static_cast<int>(edits_at_once) + static_cast<int>(i)) % slots));
        }
        std::vector<std::chrono::microseconds> moments;
        const auto most = std::chrono::duration_cast<std::chrono::microseconds>(m_time * 2);
        std::uniform_int_distribution<std::int64_t> any(0, most.count());
        for (std::size_t i = 0; i < killed_at_once; ++i) {
            moments.emplace_back(any(m_random));
        }
        std::ranges::sort(moments);
        const auto begin = Clock::now();
        for (std::size_t i = 0; i < killed_at_once; ++i) {
            std::this_thread::sleep_until(begin + moments[i]);
            kill(edits[i].process, SIGKILL);
        }
        for (Edit& edit : edits) {
            waitpid(edit.process, &edit.status, 0);
        }
        ++m_round;
        return edits;
    }

    // That the file is what it was but for the slots, and each of these has a value that it may have.
    void expect_possible(const std::vector<Edit>& edits) {
        const kit::FileContent content = kit::read_file({.file = m_file});
        EXPECT_TRUE(content.reports.empty());
        const std::string top = GetParam().place + std::string("\\kill_test");
        std::set<std::string> expected;
        for (const auto& [slot, value] : m_values) {
            expected.insert(fmt::format("{}\\n{}", top, slot));
        }
        for (const Edit& edit : edits) {
            const std::string path = fmt::format("{}\\n{}", top, edit.slot);
            const std::optional<pm::Property> property = content.tree.property(path);
            const bool is_new = property && property->as<int>() == edit.value;
            if (edit.was_killed()) {
                m_done_though_killed += is_new ? 1 : 0;
            } else {
                EXPECT_TRUE(edit.was_done()) << edit.status << m_folder.read("messages");
                EXPECT_TRUE(is_new) << path << " isn't " << edit.value;
            }
            if (is_new) m_values[edit.slot] = edit.value;
        }
        expect_values(content.tree, top);
        // A compound file has its names in their own order.
        const bool has_order = content.type != PM_Object::FILE_DOC;
        for (const kit::Difference& difference :
             kit::compare(m_before.root(), content.tree.root(), {.order = has_order})) {
            EXPECT_TRUE(difference.path.starts_with(top + '\\')) << kit::difference_text(difference);
        }
    }

    void expect_values(const Tree& tree, const std::string& top) const {
        const std::optional<pm::Node> node = tree.node(top);
        ASSERT_TRUE(node);
        std::map<int, int> values;
        for (const pm::Property property : node->properties()) {
            values[std::stoi(property.name().substr(1))] = property.as<int>();
        }
        EXPECT_EQ(m_values, values);
    }

    std::vector<std::string> names_beside() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder / "in")) {
            if (entry.path() != m_file) names.push_back(entry.path().filename());
        }
        return names;
    }

    // That nothing is left once an edit has gone through, but the backup where one is asked for.
    void expect_clean_after_an_edit() {
        m_left_over += static_cast<int>(std::ranges::count_if(
            names_beside(), [](const std::string& name) { return name.starts_with(".pmtool-"); }));
        EXPECT_TRUE(edit(0)) << m_folder.read("messages");
        const bool has_backup = GetParam().words == std::vector<std::string>{"--backup"};
        const std::string backup = GetParam().file + std::string("~");
        EXPECT_EQ(has_backup ? std::vector<std::string>{backup} : std::vector<std::string>{}, names_beside());
    }

    TempFolder m_folder;
    std::string m_file;
    Tree m_before;
    Clock::duration m_time{};    // that the last edit took which nobody disturbed
    std::map<int, int> m_values; // of the slots
    int m_last_value = 0;
    int m_round = 0;
    int m_done_though_killed = 0;
    int m_left_over = 0;
    std::mt19937 m_random{1};
};

TEST_P(KilledEdits, LeaveAWholeFileWithAllThatWasAcknowledged) {
    const int wanted = is_torture() ? kills_of_all : kills_of_a_slice;
    int kills = 0;
    while (kills < wanted && !HasFailure()) {
        const std::vector<Edit> edits = edit_and_kill();
        kills += static_cast<int>(std::ranges::count_if(edits, &Edit::was_killed));
        expect_possible(edits);
        expect_clean_after_an_edit();
    }
    fmt::print(
        "{} kills in {} rounds; {} of those edits were done, {} scratch files were left for the next\n",
        kills, m_round, m_done_though_killed, m_left_over);
}

INSTANTIATE_TEST_SUITE_P(Samples, KilledEdits, testing::ValuesIn(edited_samples),
                         [](const auto& sample) { return std::string(sample.param.name); });

} // namespace

} // namespace pm::test

#include "support/temp_folder.h"
#include "tools/torture.h"
#include "tools/verb_run.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <string>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// What is tried here is files, not disks: a hundred times as many of them for it.
extern "C" int fsync(int) {
    return 0;
}

namespace pm::test {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t turned_bytes = 2048; // of which each bit is turned
constexpr unsigned most_seconds = 20;      // that a verb may take for a file
constexpr std::size_t cases_of_a_slice = 80;

struct Sample {
    const char* name;   // a file or folder of the samples
    const char* made;   // what it is converted to before it is damaged; empty: it is taken as it is
    const char* target; // the name of what it is converted to
    const char* from = "";
};

constexpr std::array samples = {
    Sample{"plotter.pia", "", "out.pia"},
    Sample{"plotter-compressed.pia", "", "out.pia"},
    Sample{"plotter.pia", "made.doc", "out.pia"},
    Sample{"plotter.pia", "made.json", "out.pia", "json"},
    Sample{"sections.dpia", "", "out.dpia"},
    Sample{"office.pc2", "", "out.pia"},
    Sample{"three-plotters.cfg", "", "out.dpia"},
    Sample{"pens.pcp", "", "out.pia"},
    Sample{"dx4200", "", "out.pia"},
};

struct DamagedPart {
    fs::path file; // below the folder of the input
    std::string content;
};

// A file cut to a size, or with a bit turned.
struct Damage {
    const DamagedPart& part;
    bool is_cut;
    std::size_t at;

    std::string content() const {
        if (is_cut) return part.content.substr(0, at);
        std::string content = part.content;
        content[at / 8] = static_cast<char>(content[at / 8] ^ (1 << (at % 8)));
        return content;
    }
    std::string text() const {
        return fmt::format("{} {} {}", part.file.string(), is_cut ? "cut to" : "with bit", at);
    }
};

std::vector<Damage> damages_of(const std::vector<DamagedPart>& parts) {
    std::vector<Damage> damages;
    for (const DamagedPart& part : parts) {
        for (std::size_t size = 0; size < part.content.size(); ++size) {
            damages.push_back({part, true, size});
        }
        for (std::size_t bit = 0; bit < std::min(part.content.size(), turned_bytes) * 8; ++bit) {
            damages.push_back({part, false, bit});
        }
    }
    return damages;
}

// What no message for people holds.
constexpr std::array internal_words = {"std::",      "basic_",    "what()",      "vector::", "json.exception",
                                       "bad_alloc",  "terminate", "_exception",  "/pm9-",    ".pmtool-",
                                       "filesystem", "errno",     "Assertion",   "stack",    "0x7f",
                                       "invalid_",   "Exception", "unspecified", "string::", "regex"};

std::string control_characters() {
    std::string characters(1, '\x7F');
    for (char c = 1; c < ' '; ++c) {
        if (c != '\n') characters += c;
    }
    return characters;
}

// What no text for people has, data or messages. The C library's search is many times as fast as others.
std::string mistake_in_text(const std::string& text) {
    static const std::string control = control_characters();
    const bool has_control = std::strcspn(text.c_str(), control.c_str()) != text.size();
    return has_control ? "it prints control characters: " + text : "";
}

std::string mistake_in_messages(const std::string& text) {
    for (const char* const word : internal_words) {
        if (text.find(word) != std::string::npos) return std::string("it says ") + word + ": " + text;
    }
    return mistake_in_text(text);
}

// Runs the verbs on damaged files, in a folder of its own.
class Trial {
public:
    Trial(const Sample& sample, const fs::path& undamaged) : m_sample(sample) {
        fs::copy(undamaged, m_folder / "in", fs::copy_options::recursive);
        fs::create_directory(m_folder / "tmp");
        set_variable(temp_folder_variable, (m_folder / "tmp").string());
        m_input = m_folder / "in";
        if (*sample.made != '\0' || sample.name != std::string("dx4200")) {
            m_input = fs::directory_iterator(m_folder / "in")->path();
        }
    }

    // What is wrong with what the verbs did; empty if nothing is.
    std::string mistake(const Damage& damage) {
        const std::string file = "in/" + damage.part.file.string();
        m_folder.write(file, damage.content());
        const std::string mistake = mistake_of_verbs();
        m_folder.write(file, damage.part.content);
        return mistake.empty() ? "" : damage.text() + ": " + mistake;
    }

private:
    std::string mistake_of_verbs() {
        std::string mistake = *m_sample.from != '\0' ? "" : mistake_of({"check", m_input});
        if (mistake.empty()) mistake = mistake_of({"tree", m_input, "--keep-going", "--flat"});
        if (mistake.empty()) mistake = mistake_of_convert();
        return mistake;
    }

    std::string mistake_of_convert() {
        const std::string target = m_folder / m_sample.target;
        m_folder.write(m_sample.target, "old");
        const std::string mistake = mistake_of({"convert", m_input, target, "--keep-going"});
        if (!mistake.empty()) return mistake;
        if (m_status == 1) return "convert: the exit code is 1";
        if (m_status == 0) {
            const std::string of_target = mistake_of({"dump", target});
            if (m_status != 0 || !of_target.empty()) return "what convert wrote can't be read: " + of_target;
        } else if (m_folder.read(m_sample.target) != "old") {
            return "convert: the target was touched";
        }
        const auto files = std::distance(fs::directory_iterator(m_folder.path()), fs::directory_iterator());
        return files == 3 && fs::is_empty(m_folder / "tmp") ? "" : "convert: a file is left over";
    }

    std::string mistake_of(std::vector<std::string> words) {
        const std::string verb = words.front();
        if (*m_sample.from != '\0' && verb != "dump") words.insert(words.end(), {"--from", m_sample.from});
        alarm(most_seconds);
        const VerbRun run = m_output.run(words);
        alarm(0);
        m_status = run.status;
        if (run.status < 0 || run.status > 2) return fmt::format("{}: the exit code is {}", verb, run.status);
        if (run.status == 2 && run.err.empty()) return verb + ": trouble is not told";
        if (!run.err.empty() && !run.err.starts_with("pmtool: ")) return verb + ": " + run.err;
        std::string mistake = mistake_in_messages(run.err);
        if (mistake.empty())
            mistake = verb == "check" ? mistake_in_messages(run.out) : mistake_in_text(run.out);
        return mistake.empty() ? "" : verb + ": " + mistake;
    }

    const Sample& m_sample;
    TempFolder m_folder;
    fs::path m_input;
    OutputTaker m_output;
    int m_status = 0;
};

// What processes that work together know of each other.
struct Shared {
    std::atomic<std::size_t> next = 0;
    std::array<std::atomic<std::size_t>, 64> current = {};
};

class DamagedFile : public testing::TestWithParam<Sample> {
protected:
    void SetUp() override {
        const Sample& sample = GetParam();
        const fs::path source = fs::path(PM_SAMPLES) / sample.name;
        fs::create_directory(m_input);
        if (*sample.made != '\0') {
            const OutputTaker output;
            ASSERT_EQ(0, output.run({"convert", source, m_input / sample.made, "--lossy"}).status);
        } else if (fs::is_directory(source)) {
            fs::copy(source, m_input, fs::copy_options::recursive);
        } else {
            fs::copy(source, m_input / sample.name);
        }
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_input)) {
            if (!entry.is_regular_file()) continue;
            m_parts.push_back({fs::relative(entry.path(), m_input), TempFolder::read_file(entry.path())});
        }
        std::ranges::sort(m_parts, {}, &DamagedPart::file);
        choose(damages_of(m_parts));
    }

    // All, or some that are spread over all.
    void choose(const std::vector<Damage>& all) {
        const std::size_t step = is_torture() ? 1 : std::max<std::size_t>(1, all.size() / cases_of_a_slice);
        for (std::size_t i = 0; i < all.size(); i += step) {
            m_damages.push_back(all[i]);
        }
    }

    pid_t start_worker(std::size_t worker) {
        const pid_t child = fork();
        if (child != 0) return child;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        {
            Trial trial(GetParam(), m_input);
            while (true) {
                const std::size_t at = m_shared->next++;
                if (at >= m_damages.size()) break;
                m_shared->current[worker] = at;
                note(trial.mistake(m_damages[at]));
            }
        }
        _exit(0);
    }

    void note(const std::string& mistake) const {
        if (!mistake.empty()) (void)!write(m_mistakes, (mistake + '\n').c_str(), mistake.size() + 1);
    }

    void note_end(std::size_t worker, int signal) const {
        note(fmt::format("{}: {}", m_damages[m_shared->current[worker]].text(),
                         signal == SIGALRM ? fmt::format("no end within {} seconds", most_seconds)
                                           : fmt::format("ended by signal {}", signal)));
    }

    // All cases, by as many processes as there are processors; what was wrong.
    std::string run_all() {
        const std::size_t count = is_torture() ? std::min(std::thread::hardware_concurrency(), 64U) : 1;
        std::vector<pid_t> workers;
        for (std::size_t i = 0; i < count; ++i) {
            workers.push_back(start_worker(i));
        }
        for (std::size_t left = count; left > 0;) {
            int status = 0;
            const pid_t ended = wait(&status);
            const auto worker = std::ranges::find(workers, ended);
            if (worker == workers.end()) continue;
            if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
                --left;
                continue;
            }
            const auto number = static_cast<std::size_t>(worker - workers.begin());
            note_end(number, WIFSIGNALED(status) ? WTERMSIG(status) : 0);
            *worker = start_worker(number);
        }
        return m_folder.read("mistakes");
    }

    void TearDown() override { munmap(m_shared, sizeof(Shared)); }

    TempFolder m_folder;
    fs::path m_input = m_folder / "in";
    std::vector<DamagedPart> m_parts;
    std::vector<Damage> m_damages;
    int m_mistakes = open((m_folder / "mistakes").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    Shared* m_shared =
        new (mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Shared;
};

TEST_P(DamagedFile, IsReadOrRefusedByEachVerb) {
    EXPECT_EQ("", run_all());
    RecordProperty("files", std::to_string(m_damages.size()));
    if (is_torture()) fmt::print("{} damaged files\n", m_damages.size());
}

INSTANTIATE_TEST_SUITE_P(Samples, DamagedFile, testing::ValuesIn(samples), [](const auto& sample) {
    std::string name = *sample.param.made != '\0' ? sample.param.made : sample.param.name;
    for (char& c : name) {
        if (c == '-' || c == '.') c = '_';
    }
    return name;
});

} // namespace

} // namespace pm::test

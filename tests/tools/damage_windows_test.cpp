#include "program.h"
#include "support/system.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace pm::test {

namespace {

// Damaged files through the verbs that read on: each ends with one of the program's own codes, and what
// --keep-going writes can be read.
class DamagedFile : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        m_content = TempFolder::read_file(std::filesystem::path(PM_SAMPLES) / GetParam());
        m_extension = std::filesystem::path(GetParam()).extension().string();
        m_target = m_extension == ".dpia" || m_extension == ".cfg" ? "out.dpia" : "out.pia";
    }

    int run(std::vector<std::string> words) const {
        const Silence silence;
        words.insert(words.begin(), "pmtool");
        return pmtool::run_program(words);
    }

    // One verb for each damage, by its turn.
    void try_file(const std::string& content, std::size_t turn) {
        folder.write("in" + m_extension, content);
        const std::string input = (folder / ("in" + m_extension)).string();
        const std::string output = (folder / m_target).string();
        if (turn % 3 == 0) {
            EXPECT_LE(run({"check", input}), 2) << turn;
        } else if (turn % 3 == 1) {
            EXPECT_LE(run({"tree", input, "--keep-going", "--flat"}), 2) << turn;
        } else {
            std::filesystem::remove(output);
            const int status = run({"convert", input, output, "--keep-going"});
            ASSERT_TRUE(status == 0 || status == 2) << turn;
            ASSERT_EQ(status == 0, std::filesystem::exists(output)) << turn;
            if (status == 0) {
                EXPECT_EQ(0, run({"dump", output})) << turn;
            }
        }
    }

    TempFolder folder;
    std::string m_content;

private:
    std::string m_extension;
    std::string m_target;
};

TEST_P(DamagedFile, CutAnywhereIsReadOrRefused) {
    for (std::size_t size = 0; size < m_content.size(); size += 5) {
        try_file(m_content.substr(0, size), size);
    }
}

TEST_P(DamagedFile, WithAnyBitTurnedIsReadOrRefused) {
    const std::size_t bits = std::min<std::size_t>(m_content.size(), 2048) * 8;
    for (std::size_t bit = 0; bit < bits; bit += 41) {
        std::string damaged = m_content;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        try_file(damaged, bit);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, DamagedFile,
                         testing::Values("plotter.pia", "plotter-compressed.pia", "sections.dpia",
                                         "office.pc2", "three-plotters.cfg", "pens.pcp"),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             for (char& c : name) {
                                 if (c == '-' || c == '.') c = '_';
                             }
                             return name;
                         });

} // namespace

} // namespace pm::test

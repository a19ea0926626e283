#include "check/library_load.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <pm/inspect.h>
#include <pm/kit/check.h>
#include <pm_test_paths.h>
#include <string>

// Damaged files: nothing crashes or hangs, and whatever the library reports of a text the scanners have found
// by themselves, at the same line.
namespace {

using pm::kit::check_content;
using pm::kit::CheckOptions;
using pm::kit::Diagnostic;

std::string read_sample(const std::string& name) {
    std::ifstream stream(PM_SAMPLES "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Damage : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        m_content = read_sample(GetParam());
        ASSERT_FALSE(m_content.empty());
        const auto identity = pm::identify_content(m_content);
        m_options.type = identity ? identity->type : PM_Object::FILE_PDT;
    }
    // The library's own words stand for what a scanner hasn't found.
    void check(const std::string& content, std::size_t at) {
        for (const Diagnostic& each : check_content(content, GetParam(), m_options)) {
            if (each.number == 0) continue;
            std::string words = pm::kit::sentence_of(each.number);
            words.pop_back();
            ASSERT_FALSE(each.message.starts_with(words))
                << at << ": " << each.place.line << ": " << each.message;
        }
    }

    std::string m_content;
    CheckOptions m_options;
};

TEST_P(Damage, EveryBeginningIsChecked) {
    for (std::size_t size = 0; size < m_content.size(); ++size) {
        check(m_content.substr(0, size), size);
    }
}

// Each byte of the first 2 KB, the bit that is flipped going round.
TEST_P(Damage, FlippedBitsAreChecked) {
    for (std::size_t at = 0; at < std::min<std::size_t>(m_content.size(), 2048); ++at) {
        std::string damaged = m_content;
        damaged[at] = static_cast<char>(damaged[at] ^ (1 << (at * 5 % 8)));
        check(damaged, at);
    }
}

TEST_P(Damage, TheSampleItselfIsClean) {
    EXPECT_TRUE(check_content(m_content, GetParam(), m_options).empty());
}

std::string name_of(const testing::TestParamInfo<const char*>& info) {
    std::string name;
    for (const char c : std::string(info.param)) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Samples, Damage,
                         testing::Values("plotter.pia", "plotter-compressed.pia", "sections.dpia",
                                         "office.pc2", "three-plotters.cfg", "pens.pcp",
                                         "dx4200/Media Size.pdt", "dx4200/Custom Capability.pdt",
                                         "dx4200/Misc Non-Localizable Info.pdt"),
                         name_of);

} // namespace

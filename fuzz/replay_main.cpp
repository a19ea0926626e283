// The main of a fuzz target that isn't built with libFuzzer: runs it on each file of the command line, or of
// the folder of seeds that has its program's name.

#include "fuzz_support.h"
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> seeds_of(const fs::path& program) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(PM_FUZZ_SEEDS) / program.filename())) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "can't read %s\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<fs::path> files =
        argc > 1 ? std::vector<fs::path>(argv + 1, argv + argc) : seeds_of(argv[0]);
    const auto replayed = std::count_if(files.begin(), files.end(), replay);
    std::printf("%td of %zu files replayed\n", replayed, files.size());
    return replayed > 0 && static_cast<std::size_t>(replayed) == files.size() ? 0 : 1;
}

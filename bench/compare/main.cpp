// Compares this library with what programs take for the same work, all in one run. Writes its figures as
// JSON.

#include "cell.h"
#include "works.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <pm/pm.h>
#include <string_view>

namespace {

using pm::bench::ContentShape;

struct Cell {
    ContentShape shape;
    std::size_t count;
    double seconds;
};

constexpr std::array cells{
    Cell{ContentShape::ten_a_node, 1000, 3},        Cell{ContentShape::ten_a_node, 10'000, 5},
    Cell{ContentShape::ten_a_node, 100'000, 30},    Cell{ContentShape::ten_a_node, 1'000'000, 50},
    Cell{ContentShape::thousand_a_node, 10'000, 3}, Cell{ContentShape::thousand_a_node, 100'000, 18},
    Cell{ContentShape::one_node, 1000, 2},          Cell{ContentShape::one_node, 10'000, 5},
    Cell{ContentShape::one_node, 100'000, 18},      Cell{ContentShape::names_10000, 10'000, 3},
    Cell{ContentShape::names_10000, 100'000, 18},   Cell{ContentShape::names_100000, 100'000, 18},
};

constexpr std::size_t quick_count = 10'000;
constexpr double quick_share = 0.1; // of each time

nlohmann::ordered_json measure(bool quick) {
    nlohmann::ordered_json result{{"quick", quick}};
    for (const auto& [shape, count, seconds] : cells) {
        if (quick && count > quick_count) continue;
        std::cerr << pm::bench::name_of(shape) << ", " << count << " properties\n";
        result["cells"].push_back(
            pm::bench::measure_cell(shape, count, quick ? seconds * quick_share : seconds));
    }
    std::cerr << "other works and floors\n";
    result["works"] = pm::bench::measure_works(quick ? quick_share : 4, quick);
    return result;
}

bool has_failure(const nlohmann::ordered_json& result) {
    for (const auto& cell : result["cells"]) {
        for (const auto& peer : cell["peers"]) {
            if (peer.contains("failed")) return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const char* path = nullptr;
    bool quick = false;
    for (int index = 1; index < argc; ++index) {
        if (std::string_view(argv[index]) == "--quick") {
            quick = true;
        } else {
            path = argv[index];
        }
    }
    if (path == nullptr) {
        std::cerr << "usage: pm_compare [--quick] RESULT.json\n";
        return 2;
    }
    try {
        const nlohmann::ordered_json result = measure(quick);
        std::ofstream(path) << result.dump(1) << '\n';
        return has_failure(result) ? EXIT_FAILURE : EXIT_SUCCESS;
    } catch (const ZT_Exception& exception) {
        std::cerr << "pm_compare: error " << exception.m_number << ", " << pm::to_utf8(exception.m_detail)
                  << '\n';
        return EXIT_FAILURE;
    } catch (const std::exception& exception) {
        std::cerr << "pm_compare: " << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}

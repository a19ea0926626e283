#include "cell.h"

#include "peer.h"
#include "timing.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <numeric>
#include <random>
#include <stdexcept>

namespace pm::bench {
namespace {

using Indexes = std::vector<std::uint32_t>;

constexpr std::array makers{make_pia_memory_peer, make_pia_file_peer,  make_pugixml_peer,
                            make_rapidjson_peer,  make_nlohmann_peer,  make_property_tree_peer,
                            make_key_file_peer,   make_libconfig_peer, make_tomlplusplus_peer};

constexpr std::size_t run_length = 100; // neighbours of a sample in order
constexpr double get_seconds = 0.2;     // that all gets of one round may take
constexpr double check_seconds = 0.3;

struct Samples {
    std::vector<double> load, save, get, get_shuffled, set, walk, destroy, heap;
};

// A peer at work in one cell.
struct Contestant {
    std::unique_ptr<Peer> peer;
    std::string text{};
    Indexes in_order{};
    Indexes shuffled{};
    Samples samples{};
    std::string failure{};
};

Indexes all_indexes(std::size_t count) {
    Indexes indexes(count);
    std::iota(indexes.begin(), indexes.end(), 0U);
    return indexes;
}

// Runs of neighbours, spread evenly.
Indexes runs_in_order(std::size_t count, std::size_t wanted) {
    if (wanted >= count) return all_indexes(count);
    const std::size_t runs = std::max<std::size_t>(wanted / run_length, 4);
    const std::size_t length = std::max<std::size_t>(wanted / runs, 1);
    Indexes indexes;
    for (std::size_t run = 0; run < runs; ++run) {
        const std::size_t start = count / runs * run;
        for (std::size_t step = 0; step < length; ++step)
            indexes.push_back(static_cast<std::uint32_t>(start + step));
    }
    return indexes;
}

Indexes shuffled_indexes(std::size_t count, std::size_t wanted) {
    Indexes indexes = all_indexes(count);
    std::shuffle(indexes.begin(), indexes.end(), std::mt19937(20));
    indexes.resize(std::min(wanted, count));
    return indexes;
}

// How many gets fit into the time, by a trial of some that are spread.
std::size_t gets_within(Peer& peer, std::size_t count, double seconds) {
    const Indexes trial = shuffled_indexes(count, 64);
    const double each = time_of([&] { keep(peer.get(trial)); }) / static_cast<double>(trial.size());
    return static_cast<std::size_t>(std::max(seconds * 1e9 / each, 64.0));
}

void check(Peer& peer, std::size_t count) {
    std::size_t walked = 0;
    peer.walk(walked);
    if (walked != count) throw std::runtime_error("walked " + std::to_string(walked) + " values");
    for (const std::uint32_t index : runs_in_order(count, gets_within(peer, count, check_seconds))) {
        if (!peer.check(index)) throw std::runtime_error("property " + std::to_string(index) + " differs");
    }
}

void prepare(Contestant& contestant, const Content& content) {
    Peer& peer = *contestant.peer;
    const std::size_t count = content.properties().size();
    peer.build(content);
    contestant.text = peer.save();
    peer.load(contestant.text);
    check(peer, count);
    const std::size_t gets = gets_within(peer, count, get_seconds);
    contestant.in_order = runs_in_order(count, gets);
    contestant.shuffled = shuffled_indexes(count, gets);
    peer.destroy();
}

double heap_in_use() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

void run_round(Contestant& contestant, std::size_t count) {
    Peer& peer = *contestant.peer;
    Samples& samples = contestant.samples;
    const auto each = [](double time, std::size_t units) { return time / static_cast<double>(units); };
    const double before = heap_in_use();
    samples.load.push_back(each(time_of([&] { peer.load(contestant.text); }), count));
    samples.heap.push_back(each(heap_in_use() - before, count));
    samples.get.push_back(
        each(time_of([&] { keep(peer.get(contestant.in_order)); }), contestant.in_order.size()));
    samples.get_shuffled.push_back(
        each(time_of([&] { keep(peer.get(contestant.shuffled)); }), contestant.shuffled.size()));
    bool is_set = false;
    const double set = time_of([&] { is_set = peer.set(contestant.in_order); });
    if (is_set) samples.set.push_back(each(set, contestant.in_order.size()));
    std::size_t walked = 0;
    samples.walk.push_back(each(time_of([&] { keep(peer.walk(walked)); }), count));
    std::string saved;
    samples.save.push_back(each(time_of([&] { saved = peer.save(); }), count));
    // A reader that rounds may give other digits.
    if (peer.tolerance() == 0 && saved.size() != contestant.text.size())
        throw std::runtime_error("two saves differ");
    samples.destroy.push_back(each(time_of([&] { peer.destroy(); }), count));
}

// Runs the step and notes its failure, so that the others go on.
template<class Step>
void guarded(Contestant& contestant, Step step) {
    try {
        step();
    } catch (const std::exception& exception) {
        contestant.failure = exception.what();
    } catch (...) {
        contestant.failure = "an exception of its own kind";
    }
    if (contestant.failure.empty()) return;
    std::cerr << contestant.peer->name() << " failed: " << contestant.failure << '\n';
}

nlohmann::ordered_json result_of(const Contestant& contestant, std::size_t count) {
    nlohmann::ordered_json result{{"name", contestant.peer->name()}};
    if (!contestant.failure.empty()) {
        result["failed"] = contestant.failure;
        return result;
    }
    const Samples& samples = contestant.samples;
    result["text"] = contestant.text.size();
    result["load"] = median(samples.load);
    result["save"] = median(samples.save);
    result["get"] = median(samples.get);
    result["get shuffled"] = median(samples.get_shuffled);
    if (!samples.set.empty()) result["set"] = median(samples.set);
    result["walk"] = median(samples.walk);
    result["destroy"] = median(samples.destroy);
    result["heap"] = median(samples.heap);
    if (contestant.in_order.size() < count) result["gets"] = contestant.in_order.size();
    return result;
}

} // namespace

nlohmann::ordered_json measure_cell(ContentShape shape, std::size_t count, double seconds) {
    const Content content(shape, count);
    std::vector<Contestant> contestants;
    nlohmann::ordered_json beyond = nlohmann::ordered_json::array();
    for (const auto make : makers) {
        std::unique_ptr<Peer> peer = make();
        const std::size_t limit = peer->limit(shape);
        if (count > limit) {
            beyond.push_back({{"name", peer->name()}, {"limit", limit}});
        } else {
            contestants.push_back({std::move(peer)});
        }
    }
    for (Contestant& contestant : contestants)
        guarded(contestant, [&] { prepare(contestant, content); });

    Budget budget(seconds);
    while (budget.another_round()) {
        for (Contestant& contestant : contestants) {
            if (contestant.failure.empty()) guarded(contestant, [&] { run_round(contestant, count); });
        }
    }

    nlohmann::ordered_json cell{{"shape", name_of(shape)}, {"count", count}, {"rounds", budget.rounds()}};
    for (const Contestant& contestant : contestants)
        cell["peers"].push_back(result_of(contestant, count));
    cell["beyond"] = std::move(beyond);
    return cell;
}

} // namespace pm::bench

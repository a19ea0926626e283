#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <pm/codec.h>
#include <stdexcept>
#include <string>

namespace {

// As many bytes as told of the text of a configuration.
std::string text_of_size(std::size_t size) {
    std::ifstream file(PM_SAMPLES "/plotter.pia", std::ios::binary);
    const std::string sample{std::istreambuf_iterator<char>(file), {}};
    if (sample.empty()) throw std::runtime_error("no sample file");
    std::string text;
    // Numbers keep the copies from being mere repetitions.
    while (text.size() < size) {
        text += sample + std::to_string(text.size() * 2654435761U);
    }
    text.resize(size);
    return text;
}

template<class Codec>
using Operation = bool (Codec::*)(unsigned char*&, std::uint32_t&);

template<class Codec>
std::string run(Operation<Codec> operation, const std::string& data) {
    Codec codec(reinterpret_cast<const unsigned char*>(data.data()), static_cast<std::uint32_t>(data.size()),
                nullptr);
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    if (!(codec.*operation)(out, size)) throw std::runtime_error("the codec failed");
    std::string result(reinterpret_cast<const char*>(out), size);
    PM_Mem_Obj::operator delete(out);
    return result;
}

void set_rate(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * static_cast<std::int64_t>(state.iterations()));
}

// Rates are of the bytes that aren't compressed.
template<class Codec>
void encode(benchmark::State& state, Operation<Codec> operation) {
    const std::string text = text_of_size(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(run(operation, text));
    }
    set_rate(state, text.size());
}

template<class Codec>
void decode(benchmark::State& state, Operation<Codec> encoder, Operation<Codec> decoder) {
    const std::string text = text_of_size(static_cast<std::size_t>(state.range(0)));
    const std::string block = run(encoder, text);
    for (auto _ : state) {
        benchmark::DoNotOptimize(run(decoder, block));
    }
    set_rate(state, text.size());
}

void zlib_encode(benchmark::State& state) {
    encode(state, &PM_zlib_Codec::encodeCRC);
}
void zlib_decode(benchmark::State& state) {
    decode(state, &PM_zlib_Codec::encodeCRC, &PM_zlib_Codec::decodeCRC);
}
void huffman_encode(benchmark::State& state) {
    encode(state, &PM_Huffman_Codec::encode);
}
void huffman_decode(benchmark::State& state) {
    decode(state, &PM_Huffman_Codec::encode, &PM_Huffman_Codec::decode);
}

} // namespace

BENCHMARK(zlib_encode)->Range(1 << 12, 1 << 22);
BENCHMARK(zlib_decode)->Range(1 << 12, 1 << 22);
BENCHMARK(huffman_encode)->Range(1 << 12, 1 << 22);
BENCHMARK(huffman_decode)->Range(1 << 12, 1 << 22);

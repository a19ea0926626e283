#pragma once

#include "support/recording_handler.h"
#include <cstdint>
#include <memory>
#include <pm/codec.h>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

struct BlockReleaser {
    void operator()(unsigned char* block) const { PM_Mem_Obj::operator delete(block); }
};

// What one call of a codec did.
struct CodecRun {
    bool ok = false;
    std::uint32_t out_size = 0;
    std::unique_ptr<unsigned char, BlockReleaser> out; // of a call that succeeded
    std::vector<Report> reports;
    std::vector<std::u16string> sources;
    std::vector<std::int32_t> argument_counts;

    // Empty after a failure.
    std::string bytes() const {
        return ok ? std::string(reinterpret_cast<const char*>(out.get()), out_size) : std::string();
    }
    std::vector<std::uint32_t> numbers() const { return numbers_of(reports); }
};

inline const unsigned char* as_bytes(std::string_view data) {
    return reinterpret_cast<const unsigned char*>(data.data());
}

template<class Codec>
using CodecOperation = bool (Codec::*)(unsigned char*&, std::uint32_t&);

template<class Codec>
CodecRun run_codec(CodecOperation<Codec> operation, const unsigned char* data, std::uint32_t size) {
    SourceRecordingHandler handler;
    Codec codec(data, size, &handler);
    CodecRun run;
    unsigned char* out = nullptr;
    run.ok = (codec.*operation)(out, run.out_size);
    if (run.ok) run.out.reset(out);
    run.reports = handler.reports;
    run.sources = handler.sources;
    run.argument_counts = handler.argument_counts;
    return run;
}

template<class Codec>
CodecRun run_codec(CodecOperation<Codec> operation, std::string_view data) {
    return run_codec(operation, as_bytes(data), static_cast<std::uint32_t>(data.size()));
}

inline std::string word(std::uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<char>(value >> shift));
    }
    return bytes;
}

inline std::uint32_t word_at(std::string_view block, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
        value = value << 8 | as_bytes(block)[offset + i];
    }
    return value;
}

// Bytes of a repeatable random order, each from 0 to `values` - 1.
inline std::string random_bytes(std::size_t count, unsigned values = 256, std::uint32_t seed = 1) {
    std::string bytes;
    bytes.reserve(count);
    while (bytes.size() < count) {
        seed = seed * 1664525 + 1013904223;
        bytes.push_back(static_cast<char>((seed >> 16) % values));
    }
    return bytes;
}

} // namespace pm::test

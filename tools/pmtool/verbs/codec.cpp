#include "failure.h"
#include "report_handler.h"
#include "safe_save.h"
#include "system.h"
#include "verbs/verbs.h"
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <memory>
#include <string_view>
#include <system_error>

namespace pmtool {

namespace {

struct CodecOptions {
    std::string codec;
    std::string direction;
    std::string input;
    std::string output;
    bool checked = false;
};

using Bytes = std::unique_ptr<unsigned char, void (*)(unsigned char*)>;

void release(unsigned char* block) {
    PM_Mem_Obj::operator delete(block);
}

struct Block {
    Bytes bytes{nullptr, release};
    std::uint32_t size = 0;
};

template<class Codec>
using Operation = bool (Codec::*)(unsigned char*&, std::uint32_t&);

template<class Codec>
bool run_codec(Operation<Codec> operation, std::string_view data, ReportHandler& handler, Block& out) {
    Codec codec(reinterpret_cast<const unsigned char*>(data.data()), static_cast<std::uint32_t>(data.size()),
                &handler);
    unsigned char* bytes = nullptr;
    if (!(codec.*operation)(bytes, out.size)) return false;
    out.bytes.reset(bytes);
    return true;
}

bool run_zlib(bool encodes, bool checked, std::string_view data, ReportHandler& handler, Block& out) {
    using Codec = PM_zlib_Codec;
    if (encodes) return run_codec<Codec>(checked ? &Codec::encodeCRC : &Codec::encode, data, handler, out);
    return run_codec<Codec>(checked ? &Codec::decodeCRC : &Codec::decode, data, handler, out);
}

bool run_huffman(bool encodes, bool, std::string_view data, ReportHandler& handler, Block& out) {
    using Codec = PM_Huffman_Codec;
    return run_codec<Codec>(encodes ? &Codec::encode : &Codec::decode, data, handler, out);
}

PM_Block_Frame zlib_frame(std::string_view data, bool checked) {
    return pm_zlib_block_frame(data.data(), data.size(), checked);
}

PM_Block_Frame huffman_frame(std::string_view data, bool) {
    return pm_huffman_block_frame(data.data(), data.size());
}

// What keeps a block from being decoded; decoders trust the lengths in it.
void check_frame(PM_Block_Frame frame, const std::string& file) {
    switch (frame) {
    case PM_BLOCK_FITS:
        return;
    case PM_BLOCK_MISSING:
        throw Failure(fmt::format("{}: {}", file, number_text(PM_ERR_NO_BLOCK)));
    case PM_BLOCK_CUT:
        throw Failure(fmt::format("{}: the block is longer than the file", file));
    case PM_BLOCK_TOO_LARGE:
        throw Failure(fmt::format("{}: the block announces more data than it can hold", file));
    }
}

struct CodecKind {
    std::string_view name;
    bool has_checked_blocks;
    PM_Block_Frame (*frame)(std::string_view data, bool checked);
    bool (*run)(bool encodes, bool checked, std::string_view data, ReportHandler& handler, Block& out);
    std::string_view encode_trouble; // when encode fails without a report
};

constexpr CodecKind codecs[] = {
    {"zlib", true, zlib_frame, run_zlib, "the data can't be encoded"},
    {"huffman", false, huffman_frame, run_huffman, "the data must hold at least two different bytes"},
};

const CodecKind& codec_named(const std::string& name) {
    for (const CodecKind& kind : codecs) {
        if (kind.name == name) return kind;
    }
    throw Mistake(fmt::format("{}: no such codec; there are zlib and huffman", name));
}

Failure codec_failure(const CodecOptions& options, const CodecKind& kind, const ReportHandler& handler) {
    if (!handler.reports().empty()) return Failure(describe(handler.reports().front(), options.input));
    if (options.direction == "encode") {
        return Failure(fmt::format("{}: {}", options.input, kind.encode_trouble));
    }
    return Failure(fmt::format("{}: the block can't be decoded", options.input));
}

std::string read_input(const std::string& file) {
    try {
        return file == "-" ? read_standard_input() : read_whole(file);
    } catch (const std::system_error& e) {
        throw system_failure(file == "-" ? "standard input" : file, e.code().value());
    }
}

int run(const CodecOptions& options) {
    const CodecKind& kind = codec_named(options.codec);
    const bool encodes = options.direction == "encode";
    if (!encodes && options.direction != "decode") {
        throw Mistake(fmt::format("{}: this must be encode or decode", options.direction));
    }
    if (options.checked && !kind.has_checked_blocks) throw Mistake("--crc is for zlib blocks only");
    const std::string data = read_input(options.input);
    if (data.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw Failure(fmt::format("{}: a block holds less than 4 GiB", options.input));
    }
    if (!encodes) check_frame(kind.frame(data, options.checked), options.input);
    ReportHandler handler(options.input);
    Block block;
    if (!kind.run(encodes, options.checked, data, handler, block)) {
        throw codec_failure(options, kind, handler);
    }
    save_safely(options.output, {reinterpret_cast<const char*>(block.bytes.get()), block.size});
    return exit_ok;
}

constexpr Verb verb = {
    "codec", "convert", "encode a file as a bare block, or decode one",
    R"(Encodes a file as a compressed block, as pia and dpia files hold them, or decodes one. A block whose lengths don't fit the file is refused before it is decoded.

A Huffman block gives back its data without the last byte: the format loses it. It needs data with at least two different byte values.)",
    R"(pmtool codec zlib encode text block
pmtool codec zlib decode --crc plotter.pia body)"};

} // namespace

void add_codec(Commands& commands) {
    const auto options = std::make_shared<CodecOptions>();
    VerbLine line = commands.add(verb, [options] { return run(*options); });
    line.argument("CODEC", options->codec, "zlib or huffman");
    line.argument("DIRECTION", options->direction, "encode or decode");
    line.argument("IN", options->input, "The file to read");
    line.argument("OUT", options->output, "The file to write");
    line.flag("--crc", options->checked, "A checked block, as pia files of version 2.0 hold them (zlib)");
}

} // namespace pmtool

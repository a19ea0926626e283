#include "faults/memory_operations.h"

#include <memory>
#include <pm/codec.h>

namespace pm::test {

namespace {

const std::string plain = "some bytes, and some bytes, and more of the same bytes";

struct Releaser {
    void operator()(unsigned char* block) const { PM_Mem_Obj::operator delete(block); }
};
using Block = std::unique_ptr<unsigned char, Releaser>;

template<class Codec>
using Step = bool (Codec::*)(unsigned char*&, std::uint32_t&);

// What a codec's false becomes; takes no memory.
class Refused : public std::exception {
public:
    const char* what() const noexcept override { return "refused"; }
};

// Gives the bytes, or throws.
template<class Codec>
std::string_view convert(Subject& subject, Block& kept, std::string_view from, Step<Codec> step) {
    Codec codec(reinterpret_cast<const unsigned char*>(from.data()), static_cast<std::uint32_t>(from.size()),
                &subject);
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    if (!(codec.*step)(out, size)) throw Refused();
    kept.reset(out);
    return {reinterpret_cast<const char*>(out), size};
}

template<class Codec>
void there_and_back(Subject& subject, Step<Codec> there, Step<Codec> back) {
    Block packed;
    Block unpacked;
    const std::string_view block = convert<Codec>(subject, packed, plain, there);
    subject.note(convert<Codec>(subject, unpacked, block, back));
}

const MemoryOperation operations[] = {
    {"Zlib",
     [](Subject& s) { there_and_back<PM_zlib_Codec>(s, &PM_zlib_Codec::encode, &PM_zlib_Codec::decode); },
     {"refused"}},
    {"CheckedZlib",
     [](Subject& s) {
         there_and_back<PM_zlib_Codec>(s, &PM_zlib_Codec::encodeCRC, &PM_zlib_Codec::decodeCRC);
     },
     {"refused"}},
    {"Huffman",
     [](Subject& s) {
         there_and_back<PM_Huffman_Codec>(s, &PM_Huffman_Codec::encode, &PM_Huffman_Codec::decode);
     },
     {"refused"}},
};

} // namespace

std::span<const MemoryOperation> codec_operations() {
    return operations;
}

} // namespace pm::test

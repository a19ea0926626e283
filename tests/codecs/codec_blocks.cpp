// Runs one operation of a codec on a file: codec_blocks <operation> <from> <to>. Exit 1: it gave false.

#include <fstream>
#include <iterator>
#include <pm/pm.h>
#include <string>
#include <string_view>

namespace {

template<class Codec>
int run(bool (Codec::*operation)(unsigned char*&, std::uint32_t&), const std::string& data, const char* to) {
    Codec codec(reinterpret_cast<const unsigned char*>(data.c_str()), static_cast<std::uint32_t>(data.size()),
                nullptr);
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    if (!(codec.*operation)(out, size)) return 1;
    std::ofstream(to, std::ios::binary).write(reinterpret_cast<const char*>(out), size);
    PM_Mem_Obj::operator delete(out);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const std::string_view operation = argv[1];
    std::ifstream from(argv[2], std::ios::binary);
    const std::string data{std::istreambuf_iterator<char>(from), {}};
    if (operation == "encode") return run(&PM_zlib_Codec::encode, data, argv[3]);
    if (operation == "encodeCRC") return run(&PM_zlib_Codec::encodeCRC, data, argv[3]);
    if (operation == "decode") return run(&PM_zlib_Codec::decode, data, argv[3]);
    if (operation == "decodeCRC") return run(&PM_zlib_Codec::decodeCRC, data, argv[3]);
    if (operation == "huffman-encode") return run(&PM_Huffman_Codec::encode, data, argv[3]);
    if (operation == "huffman-decode") return run(&PM_Huffman_Codec::decode, data, argv[3]);
    return 2;
}

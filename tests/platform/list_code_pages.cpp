#include "platform/code_page.h"

#include <cstdio>
#include <string>

// Writes what each code page makes of its bytes and of each unit, one conversion a line:
//   <page> decode <bytes> <units>
//   <page> encode <unit> <bytes>
// in hexadecimal digits. Units that become "?" aren't listed, and neither are pairs of bytes that are no
// character.

namespace {

constexpr unsigned single_byte_pages[] = {
    437,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,   863,  864,
    865,   866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258, 20127,
    20866, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};
constexpr unsigned double_byte_pages[] = {932, 936, 949, 950};

std::string hexadecimal(const std::string& bytes) {
    std::string digits;
    for (const char byte : bytes) {
        char two[3];
        std::snprintf(two, sizeof two, "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        digits += two;
    }
    return digits;
}

void list_decoding(unsigned page, const std::string& bytes) {
    std::printf("%u decode %s ", page, hexadecimal(bytes).c_str());
    for (const char16_t unit : pm::to_wide(bytes, page)) {
        std::printf("%04X", static_cast<unsigned>(unit));
    }
    std::printf("\n");
}

void list_bytes(unsigned page) {
    for (unsigned byte = 0; byte <= 0xFF; ++byte) {
        list_decoding(page, std::string(1, static_cast<char>(byte)));
    }
}

void list_pairs(unsigned page) {
    for (unsigned lead = 0x80; lead <= 0xFF; ++lead) {
        for (unsigned trail = 0; trail <= 0xFF; ++trail) {
            const std::string pair{static_cast<char>(lead), static_cast<char>(trail)};
            const std::u16string wide = pm::to_wide(pair, page);
            if (wide.size() == 1 && wide != u"\uFFFD") list_decoding(page, pair);
        }
    }
}

void list_units(unsigned page) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const char16_t wide = static_cast<char16_t>(unit);
        const std::string bytes = pm::to_narrow({&wide, 1}, page);
        if (bytes == "?" && wide != u'?') continue;
        std::printf("%u encode %04X %s\n", page, unit, hexadecimal(bytes).c_str());
    }
}

} // namespace

int main() {
    for (const unsigned page : single_byte_pages) {
        list_bytes(page);
        list_units(page);
    }
    for (const unsigned page : double_byte_pages) {
        list_bytes(page);
        list_pairs(page);
        list_units(page);
    }
    return 0;
}

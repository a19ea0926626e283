#include "stream_bytes.h"

#include <istream>

namespace pm::kit {

bool read_to_end(const std::istream& stream, std::string& bytes) {
    if (!stream) return false;
    std::istream source(stream.rdbuf());
    char block[1 << 16];
    while (source.read(block, sizeof block) || source.gcount() > 0) {
        bytes.append(block, static_cast<std::size_t>(source.gcount()));
    }
    return !source.bad();
}

} // namespace pm::kit

#include "filers/memory_stream.h"

namespace pm {

MemoryStream::MemoryStream(std::span<char> block) : std::iostream(nullptr), m_buffer(block) {
    rdbuf(&m_buffer);
}

MemoryStream::Buffer::Buffer(std::span<char> block) {
    setg(block.data(), block.data(), block.data() + block.size());
}

MemoryStream::Buffer::pos_type MemoryStream::Buffer::seekoff(off_type offset, std::ios::seekdir from,
                                                             std::ios::openmode) {
    const off_type start = from == std::ios::beg   ? 0
                           : from == std::ios::cur ? gptr() - eback()
                                                   : egptr() - eback();
    return seekpos(start + offset, std::ios::in);
}

MemoryStream::Buffer::pos_type MemoryStream::Buffer::seekpos(pos_type position, std::ios::openmode) {
    const off_type offset = position;
    if (offset < 0 || offset > egptr() - eback()) return pos_type(off_type(-1));
    setg(eback(), eback() + offset, egptr());
    return position;
}

} // namespace pm

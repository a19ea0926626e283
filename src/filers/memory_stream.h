#pragma once

#include <cstddef>
#include <istream>
#include <span>
#include <streambuf>

namespace pm {

// A block of memory as a stream for reading. The block is borrowed.
class MemoryStream : public std::iostream {
public:
    explicit MemoryStream(std::span<char> block);

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(std::span<char> block);

    protected:
        pos_type seekoff(off_type offset, std::ios::seekdir from, std::ios::openmode mode) override;
        pos_type seekpos(pos_type position, std::ios::openmode mode) override;
    };

    Buffer m_buffer;
};

} // namespace pm

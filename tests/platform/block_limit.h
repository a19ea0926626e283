#pragma once

#include <cstddef>

namespace pm::test {

// While one lives, the test program's operator new has no memory for a block of more than `size` bytes.
class BlockLimit {
public:
    explicit BlockLimit(std::size_t size);
    ~BlockLimit();
    BlockLimit(const BlockLimit&) = delete;
    BlockLimit& operator=(const BlockLimit&) = delete;
};

} // namespace pm::test

#include "platform/block_limit.h"

#include "support/replaced_new.h"
#include <limits>

namespace pm::test {

namespace {

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();
std::size_t largest_block = no_limit;

} // namespace

bool refuses_block(std::size_t size) noexcept {
    return size > largest_block;
}

BlockLimit::BlockLimit(std::size_t size) {
    largest_block = size;
}

BlockLimit::~BlockLimit() {
    largest_block = no_limit;
}

} // namespace pm::test

#include "store/pool.h"

#include <algorithm>
#include <limits>

namespace pm {

namespace {

template<class T>
void release_all(T* first) {
    while (first != nullptr) {
        release(std::exchange(first, first->next));
    }
}

} // namespace

Pool::~Pool() {
    release_all(m_chunks);
    release_all(m_large);
}

void Pool::release(void* block, std::size_t size) noexcept {
    if (block == nullptr) return;
    if (!is_small(size)) return release_large(block);
    Free*& list = m_free[(size + grain - 1) / grain];
    list = ::new (block) Free{list};
}

bool Pool::add_chunk() noexcept {
    const std::size_t bytes = m_next_chunk - malloc_overhead;
    void* block = allocate_unasked(bytes);
    if (block == nullptr) return false;
    if (m_left != 0) release(m_at, m_left);
    m_chunks = ::new (block) Chunk{m_chunks};
    m_at = static_cast<std::byte*>(block) + sizeof(Chunk);
    m_left = bytes - sizeof(Chunk);
    m_next_chunk = std::min(2 * m_next_chunk, last_chunk);
    return true;
}

void* Pool::allocate_large(std::size_t size) noexcept {
    if (size > std::numeric_limits<std::size_t>::max() - sizeof(Large)) return nullptr;
    void* block = allocate_unasked(sizeof(Large) + size);
    if (block == nullptr) return nullptr;
    auto* large = ::new (block) Large{nullptr, m_large};
    if (m_large != nullptr) m_large->previous = large;
    m_large = large;
    return large + 1;
}

void Pool::release_large(void* block) noexcept {
    Large* large = static_cast<Large*>(block) - 1;
    (large->previous != nullptr ? large->previous->next : m_large) = large->next;
    if (large->next != nullptr) large->next->previous = large->previous;
    pm::release(large);
}

} // namespace pm

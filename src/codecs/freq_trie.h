#pragma once

#include "codecs/bit_string.h"
#include <array>
#include <cstdint>
#include <pm/mem_obj.h>
#include <span>

namespace pm {

inline constexpr std::size_t symbol_count = 256;
using Counters = std::span<const std::uint32_t, symbol_count>;
using CodeTable = std::array<BitString, symbol_count>; // an empty entry is not set

struct TrieNode {
    unsigned char symbol = 0; // 0 in an interior node
    std::uint32_t weight = 0; // wraps
    TrieNode* left = nullptr;
    TrieNode* right = nullptr;

    bool is_leaf() const { return left == nullptr && right == nullptr; }
};

// Enters the code of each leaf under `root`: 0 for each step to the left, 1 for each to the right. Raises
// number 91 if a symbol has a code already.
void make_codes(const TrieNode& root, CodeTable& codes);

// The tree of a frequency table. The order in which the heap gives nodes of equal weight decides the codes,
// so it is part of the block's format.
class FreqTrie : public PM_Mem_Obj {
public:
    // Two counters at least are not zero.
    explicit FreqTrie(Counters counters);
    FreqTrie(const FreqTrie&) = delete;
    FreqTrie& operator=(const FreqTrie&) = delete;

    const TrieNode* root() const { return m_root; }
    // To be called once.
    const CodeTable& make_codes();

private:
    TrieNode* make_node(const TrieNode& node);
    void insert(TrieNode* node);
    TrieNode* extract();
    void sink_first(std::uint32_t end);

    std::array<TrieNode*, symbol_count + 1> m_heap{}; // root at index 1, index 0 stays empty
    TrieNode* m_root = nullptr;
    std::uint32_t m_heap_next = 1;
    CodeTable m_codes;
    std::array<TrieNode, 2 * symbol_count - 1> m_nodes;
    std::size_t m_node_count = 0;
};

} // namespace pm

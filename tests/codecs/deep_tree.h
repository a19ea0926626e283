#pragma once

#include "codecs/freq_trie.h"
#include <array>
#include <string>

namespace pm::test {

// A tree with codes of every length there can be: symbol n has n ones and a zero, the last one 255 ones.
class DeepTree {
public:
    DeepTree() {
        for (std::size_t value = 0; value < symbol_count; ++value) {
            m_leaves[value] = {static_cast<unsigned char>(value), 1};
        }
        TrieNode* below = &m_leaves[symbol_count - 1];
        for (std::size_t depth = m_inner.size(); depth-- > 0;) {
            m_inner[depth] = {0, 1, &m_leaves[depth], below};
            below = &m_inner[depth];
        }
    }
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    const TrieNode& root() const { return m_inner[0]; }

    static std::string code(unsigned char symbol) {
        return std::string(symbol, '1') + (symbol == symbol_count - 1 ? "" : "0");
    }

private:
    std::array<TrieNode, symbol_count> m_leaves;
    std::array<TrieNode, symbol_count - 1> m_inner;
};

} // namespace pm::test

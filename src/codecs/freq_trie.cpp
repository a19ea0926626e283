#include "codecs/freq_trie.h"

#include "codecs/codec_failure.h"
#include <pm/error_number.h>
#include <utility>

namespace pm {

namespace {

void walk(const TrieNode& node, BitString& path, CodeTable& codes);

void walk_side(const TrieNode* child, bool bit, BitString& path, CodeTable& codes) {
    if (child == nullptr) return;
    path.append(bit);
    walk(*child, path, codes);
    path.remove_last();
}

// Goes down 255 levels at most: a tree has no more than 256 leaves.
void walk(const TrieNode& node, BitString& path, CodeTable& codes) {
    if (!node.is_leaf()) {
        walk_side(node.left, false, path, codes);
        walk_side(node.right, true, path, codes);
        return;
    }
    BitString& code = codes[node.symbol];
    if (!code.empty()) throw_codec_failure(PM_ERR_HUFFMAN_SYMBOL_TAKEN);
    code.copy(path);
}

} // namespace

void make_codes(const TrieNode& root, CodeTable& codes) {
    BitString path;
    walk(root, path, codes);
}

FreqTrie::FreqTrie(Counters counters) {
    for (std::size_t value = 0; value < symbol_count; ++value) {
        if (counters[value] == 0) continue;
        insert(make_node({static_cast<unsigned char>(value), counters[value]}));
    }
    while (m_heap_next > 2) {
        TrieNode* left = extract();
        TrieNode* right = extract();
        insert(make_node({0, left->weight + right->weight, left, right}));
    }
    m_root = extract();
}

const CodeTable& FreqTrie::make_codes() {
    pm::make_codes(*m_root, m_codes);
    return m_codes;
}

TrieNode* FreqTrie::make_node(const TrieNode& node) {
    TrieNode& made = m_nodes[m_node_count++];
    made = node;
    return &made;
}

void FreqTrie::insert(TrieNode* node) {
    std::uint32_t i = m_heap_next++;
    m_heap[i] = node;
    for (std::uint32_t parent = i / 2; parent != 0 && m_heap[parent]->weight > m_heap[i]->weight;
         parent = i / 2) {
        std::swap(m_heap[parent], m_heap[i]);
        i = parent;
    }
}

TrieNode* FreqTrie::extract() {
    const std::uint32_t last = --m_heap_next;
    TrieNode* first = m_heap[1];
    if (last > 1) {
        m_heap[1] = m_heap[last];
        sink_first(last);
    }
    return first;
}

// Ties stop the node that sinks, and go to the left child: kept.
void FreqTrie::sink_first(std::uint32_t end) {
    const auto weight = [this](std::uint32_t i) { return m_heap[i]->weight; };
    std::uint32_t parent = 1;
    std::uint32_t child = 2;
    while (child + 1 < end) {
        if (weight(parent) <= weight(child) && weight(parent) <= weight(child + 1)) return;
        const std::uint32_t pick = weight(child) > weight(child + 1) ? child + 1 : child;
        std::swap(m_heap[parent], m_heap[pick]);
        parent = pick;
        child = 2 * pick;
    }
    if (child < end && weight(parent) > weight(child)) std::swap(m_heap[parent], m_heap[child]);
}

} // namespace pm

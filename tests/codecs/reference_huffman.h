#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

// A second reading of the Huffman block, written apart from the library's: nodes by number in one list, a
// heap counted from 0 that sifts by recursion, codes as text of '0' and '1'.
class ReferenceHuffman {
public:
    using Counts = std::array<std::uint32_t, 256>;

    static Counts count(std::string_view data) {
        Counts counts{};
        for (const char c : data) {
            ++counts[static_cast<unsigned char>(c)];
        }
        return counts;
    }

    explicit ReferenceHuffman(const Counts& counts) : m_counts(counts) {
        for (int value = 0; value < 256; ++value) {
            if (counts[static_cast<std::size_t>(value)] > 0) {
                push(add({counts[static_cast<std::size_t>(value)], value, -1, -1}));
            }
        }
        while (m_heap.size() > 1) {
            const int zero = pop();
            const int one = pop();
            push(add({node(zero).weight + node(one).weight, -1, zero, one}));
        }
        name(m_heap.front(), "");
    }

    const std::string& code(unsigned char value) const { return m_codes[value]; }

    std::string bits(std::string_view data) const {
        std::string all;
        for (const char c : data) {
            all += code(static_cast<unsigned char>(c));
        }
        return all;
    }

    std::string block(std::string_view data) const {
        const std::string all = bits(data);
        std::string block = "pmhuffcodec";
        for (const std::uint32_t count : m_counts) {
            append_word(block, count);
        }
        append_word(block, static_cast<std::uint32_t>(all.size()));
        std::string packed(all.size() / 8 + 1, '\0');
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i] == '1') packed[i / 8] = static_cast<char>(packed[i / 8] | 1 << (7 - i % 8));
        }
        return block + packed;
    }

    // All that a block holds, the last symbol too.
    static std::string decode(std::string_view block) {
        Counts counts{};
        for (std::size_t value = 0; value < 256; ++value) {
            counts[value] = read_word(block, 11 + 4 * value);
        }
        const ReferenceHuffman reference(counts);
        const std::uint32_t bit_count = read_word(block, 1035);
        const int root = reference.m_heap.front();
        std::string data;
        int at = root;
        for (std::uint32_t i = 0; i < bit_count; ++i) {
            const int byte = static_cast<unsigned char>(block[1039 + i / 8]);
            at = (byte >> (7 - i % 8)) % 2 == 0 ? reference.node(at).zero : reference.node(at).one;
            if (reference.node(at).symbol < 0) continue;
            data.push_back(static_cast<char>(reference.node(at).symbol));
            at = root;
        }
        return data;
    }

private:
    struct Node {
        std::uint32_t weight;
        int symbol; // -1 inside
        int zero;
        int one;
    };

    const Node& node(int number) const { return m_nodes[static_cast<std::size_t>(number)]; }
    int add(const Node& added) {
        m_nodes.push_back(added);
        return static_cast<int>(m_nodes.size()) - 1;
    }
    bool lighter(std::size_t a, std::size_t b) const {
        return node(m_heap[a]).weight < node(m_heap[b]).weight;
    }

    void push(int number) {
        m_heap.push_back(number);
        rise(m_heap.size() - 1);
    }
    void rise(std::size_t at) {
        if (at == 0 || !lighter(at, (at - 1) / 2)) return;
        std::swap(m_heap[at], m_heap[(at - 1) / 2]);
        rise((at - 1) / 2);
    }
    int pop() {
        const int first = m_heap.front();
        m_heap.front() = m_heap.back();
        m_heap.pop_back();
        fall(0);
        return first;
    }
    void fall(std::size_t at) {
        std::size_t least = at;
        for (const std::size_t child : {2 * at + 1, 2 * at + 2}) {
            if (child < m_heap.size() && lighter(child, least)) least = child;
        }
        if (least == at) return;
        std::swap(m_heap[at], m_heap[least]);
        fall(least);
    }
    void name(int number, const std::string& code) {
        if (node(number).symbol >= 0) {
            m_codes[static_cast<std::size_t>(node(number).symbol)] = code;
            return;
        }
        name(node(number).zero, code + '0');
        name(node(number).one, code + '1');
    }

    static void append_word(std::string& out, std::uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            out.push_back(static_cast<char>(value >> 8 * i & 0xFF));
        }
    }
    static std::uint32_t read_word(std::string_view from, std::size_t offset) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            value += std::uint32_t{static_cast<unsigned char>(from[offset + i])} << 8 * i;
        }
        return value;
    }

    Counts m_counts;
    std::vector<Node> m_nodes;
    std::vector<int> m_heap;
    std::array<std::string, 256> m_codes;
};

} // namespace pm::test

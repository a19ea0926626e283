#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

// A chained hash table keyed by the identity of pointers: whoever wants texts as keys interns them first.
// Keys and values are borrowed.
template<class K, class V>
class ZT_Hash_Table {
public:
    static constexpr std::int32_t initial_buckets = 32;

    ZT_Hash_Table() { set_bucket_count(initial_buckets); }
    ZT_Hash_Table(const ZT_Hash_Table&) = delete;
    ZT_Hash_Table& operator=(const ZT_Hash_Table&) = delete;

    // Never looks for a key that is there already: of two entries of one key the later one is found.
    void insert(K key, V value) {
        Entry*& head = m_buckets[bucket_of(key)];
        head = &m_entries.emplace_back(Entry{key, value, head});
        if (++m_count > m_threshold) grow();
    }

    // Null if the key isn't there.
    const V* find(K key) const {
        const Entry* entry = m_buckets[bucket_of(key)];
        while (entry != nullptr && entry->key != key) {
            entry = entry->next;
        }
        return entry != nullptr ? &entry->value : nullptr;
    }

    std::int32_t count() const { return m_count; }
    std::int32_t bucket_count() const { return m_bucket_count; }
    std::int32_t growth_threshold() const { return m_threshold; }

    // The bits of a pointer, folded; the low ones choose the bucket.
    static constexpr std::uint32_t hash(std::uint64_t pointer) {
        const auto x = static_cast<std::uint32_t>(pointer >> 32) ^ static_cast<std::uint32_t>(pointer);
        return ((((x >> 10) ^ x) >> 8) ^ x) >> 2;
    }

private:
    struct Entry {
        K key;
        V value;
        Entry* next;
    };

    std::size_t bucket_of(K key) const {
        return hash(reinterpret_cast<std::uintptr_t>(key)) & static_cast<std::uint32_t>(m_bucket_count - 1);
    }

    void set_bucket_count(std::int32_t count) {
        m_buckets.assign(static_cast<std::size_t>(count), nullptr);
        m_bucket_count = count;
        m_threshold = static_cast<std::int32_t>(m_mean_chain * count * 0.75);
    }

    static void move_to_head(Entry*& entry, Entry*& head) {
        Entry* const following = entry->next;
        entry->next = head;
        head = entry;
        entry = following;
    }

    // Each entry moves to the head of its new chain, old buckets in ascending order and each from its tail:
    // of two entries of one key the later one stays in front.
    void grow() {
        std::vector<Entry*> old;
        old.swap(m_buckets);
        set_bucket_count(static_cast<std::int32_t>(static_cast<float>(m_bucket_count) * m_growth));
        for (Entry* chain : old) {
            Entry* from_tail = nullptr;
            while (chain != nullptr) {
                move_to_head(chain, from_tail);
            }
            while (from_tail != nullptr) {
                move_to_head(from_tail, m_buckets[bucket_of(from_tail->key)]);
            }
        }
    }

    std::int32_t m_count = 0;
    std::int32_t m_bucket_count = 0;
    std::int32_t m_threshold = 0;
    std::int32_t m_mean_chain = 20;
    float m_growth = 2.0F;
    std::vector<Entry*> m_buckets;
    std::deque<Entry> m_entries;
};

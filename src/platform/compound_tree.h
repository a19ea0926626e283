#pragma once

#include "platform/compound_names.h"
#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <memory_resource>
#include <new>
#include <string_view>
#include <vector>

namespace pm {

struct CompoundElement;

// The elements of a storage by the keys of their names.
using CompoundChildren = std::pmr::map<std::u16string_view, CompoundElement*, CompoundNameOrder>;

enum class CompoundKind { storage, stream };

struct CompoundElement {
    CompoundElement() = default;
    // `memory` is what content and the list of children are made in.
    explicit CompoundElement(std::pmr::memory_resource& memory) : data(&memory), children(&memory) {}

    std::u16string_view name; // lives as long as the tree
    CompoundKind kind = CompoundKind::stream;
    bool sound = true;       // false if it can't be taken from the file: by name, type or content
    bool complete = true;    // of a storage: false if a part of its list can't be taken from the file
    bool attached = true;    // false once it was replaced, or the tree was closed
    std::size_t repeats = 0; // further entries of its name in the file, none of which can be opened
    std::pmr::vector<std::byte> data; // of a stream
    CompoundChildren children;        // of a storage
    CompoundElement* given = nullptr; // of a storage: the child that was last enumerated, or null
    // Class identifier and state bits, which belong to other programs: kept as they are in the file.
    std::array<std::byte, 20> class_and_state{};
};

// Memory of which small blocks are cut from large ones and go with all others, as a tree has many of them.
class CompoundMemory final : public std::pmr::memory_resource {
private:
    static constexpr std::size_t small_limit = 1024;

    void* do_allocate(std::size_t size, std::size_t alignment) override {
        return size <= small_limit ? m_small.allocate(size, alignment) : ::operator new(size);
    }
    void do_deallocate(void* block, std::size_t size, std::size_t) override {
        if (size > small_limit) ::operator delete(block);
    }
    bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }

    std::pmr::monotonic_buffer_resource m_small;
};

// The tree of a compound file in memory. It owns all elements that ever were in it, so that an element stays
// readable through a pointer (as detached and empty) until the tree dies.
class CompoundTree {
public:
    CompoundTree();
    CompoundTree(const CompoundTree&) = delete;
    CompoundTree& operator=(const CompoundTree&) = delete;

    CompoundElement& root() { return m_elements.front(); }
    const CompoundElement& root() const { return m_elements.front(); }

    // Null if there is none of that name.
    CompoundElement* find(CompoundElement& storage, std::u16string_view name);
    // A new, empty element in place of one of that name. Null if the name isn't allowed.
    CompoundElement* create(CompoundElement& storage, std::u16string_view name, CompoundKind kind);
    // An element of no storage yet. `name` lives as long as the tree: keep() sees to that.
    CompoundElement& make(std::u16string_view name, CompoundKind kind);
    // The text, copied into the memory of the tree.
    std::u16string_view keep(std::u16string_view text);
    // Detaches an element and all below it, and lets go of their content.
    void detach(CompoundElement& element);

private:
    CompoundMemory m_memory; // names, keys, elements, lists of children and content
    std::pmr::deque<CompoundElement> m_elements{&m_memory};
};

} // namespace pm

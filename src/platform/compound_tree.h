#pragma once

#include "platform/compound_names.h"
#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pm {

struct CompoundElement;

// The elements of a storage by the keys of their names.
using CompoundChildren = std::map<std::u16string, CompoundElement*, CompoundNameOrder>;

enum class CompoundKind { storage, stream };

struct CompoundElement {
    std::u16string name;
    CompoundKind kind = CompoundKind::stream;
    bool sound = true;           // false if it can't be taken from the file: by name, type or content
    bool complete = true;        // of a storage: false if a part of its list can't be taken from the file
    bool attached = true;        // false once it was replaced, or the tree was closed
    std::size_t repeats = 0;     // further entries of its name in the file, none of which can be opened
    std::vector<std::byte> data; // of a stream
    CompoundChildren children;   // of a storage
    CompoundElement* given = nullptr; // of a storage: the child that was last enumerated, or null
    // Class identifier and state bits, which belong to other programs: kept as they are in the file.
    std::array<std::byte, 20> class_and_state{};
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
    // An element of no storage yet.
    CompoundElement& make(std::u16string_view name, CompoundKind kind);
    // Detaches an element and all below it, and lets go of their content.
    void detach(CompoundElement& element);

private:
    std::deque<CompoundElement> m_elements;
};

} // namespace pm

#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pm {

struct CompoundElement;

// The compound format's own order of names: shorter ones first, those of one length by their uppercase units.
struct CompoundNameOrder {
    bool operator()(const std::u16string& a, const std::u16string& b) const {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    }
};
// The elements of a storage by the keys of their names.
using CompoundChildren = std::map<std::u16string, CompoundElement*, CompoundNameOrder>;

enum class CompoundKind { storage, stream };

struct CompoundElement {
    std::u16string name;
    CompoundKind kind = CompoundKind::stream;
    bool sound = true;           // false if its content couldn't be taken from the file
    bool attached = true;        // false once it was replaced, or the tree was closed
    std::vector<std::byte> data; // of a stream
    CompoundChildren children;   // of a storage
};

// 1 to 31 units, none of / \ : ! and no zero, every surrogate one of a pair.
bool compound_name_allowed(std::u16string_view name);
// What names are compared by: each unit in upper case.
std::u16string compound_name_key(std::u16string_view name);

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

#include "platform/compound_tree.h"

#include <algorithm>

namespace pm {

CompoundTree::CompoundTree() {
    make(u"Root Entry", CompoundKind::storage);
}

CompoundElement* CompoundTree::find(CompoundElement& storage, std::u16string_view name) {
    if (storage.given != nullptr && storage.given->name == name) return storage.given;
    if (name.size() > CompoundName::most_units) return nullptr;
    const auto found = storage.children.find(CompoundName::key_of(name));
    return found != storage.children.end() ? found->second : nullptr;
}

CompoundElement* CompoundTree::create(CompoundElement& storage, std::u16string_view name, CompoundKind kind) {
    if (!compound_name_allowed(name)) return nullptr;
    CompoundElement& element = make(keep(name), kind);
    const CompoundName key = CompoundName::key_of(name);
    auto place = storage.children.lower_bound(key);
    if (place == storage.children.end() || place->first != key) {
        place = storage.children.try_emplace(place, keep(key), nullptr);
    } else {
        detach(*place->second);
    }
    storage.given = nullptr;
    return place->second = &element;
}

CompoundElement& CompoundTree::make(std::u16string_view name, CompoundKind kind) {
    CompoundElement& element = m_elements.emplace_back(m_memory);
    element.name = name;
    element.kind = kind;
    return element;
}

std::u16string_view CompoundTree::keep(std::u16string_view text) {
    auto* const units =
        static_cast<char16_t*>(m_memory.allocate(text.size() * sizeof(char16_t), alignof(char16_t)));
    std::copy(text.begin(), text.end(), units);
    return {units, text.size()};
}

void CompoundTree::detach(CompoundElement& element) {
    std::vector<CompoundElement*> pending{&element};
    while (!pending.empty()) {
        CompoundElement& each = *pending.back();
        pending.pop_back();
        for (const auto& child : each.children) {
            pending.push_back(child.second);
        }
        each.attached = false;
        each.children.clear();
        each.given = nullptr;
        each.data.clear();
        each.data.shrink_to_fit();
    }
}

} // namespace pm

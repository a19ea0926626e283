#include "platform/compound_tree.h"

namespace pm {

CompoundTree::CompoundTree() {
    make(u"Root Entry", CompoundKind::storage);
}

CompoundElement* CompoundTree::find(CompoundElement& storage, std::u16string_view name) {
    if (storage.given != nullptr && storage.given->name == name) return storage.given;
    const auto found = storage.children.find(compound_name_key(name));
    return found != storage.children.end() ? found->second : nullptr;
}

CompoundElement* CompoundTree::create(CompoundElement& storage, std::u16string_view name, CompoundKind kind) {
    if (!compound_name_allowed(name)) return nullptr;
    CompoundElement& element = make(name, kind);
    CompoundElement*& place = storage.children[compound_name_key(name)];
    if (place != nullptr) detach(*place);
    storage.given = nullptr;
    return place = &element;
}

CompoundElement& CompoundTree::make(std::u16string_view name, CompoundKind kind) {
    CompoundElement& element = m_elements.emplace_back();
    element.name = name;
    element.kind = kind;
    return element;
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
        each.data = {};
    }
}

} // namespace pm

#include "platform/compound_tree.h"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace pm {

namespace {

constexpr std::size_t name_limit = 31;
constexpr std::u16string_view units_not_allowed(u"/\\:!\0", 5);

bool is_paired(std::u16string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!U16_IS_SURROGATE(text[at])) continue;
        if (!U16_IS_LEAD(text[at]) || at + 1 == text.size() || !U16_IS_TRAIL(text[at + 1])) return false;
        ++at;
    }
    return true;
}

} // namespace

bool compound_name_allowed(std::u16string_view name) {
    return !name.empty() && name.size() <= name_limit &&
           name.find_first_of(units_not_allowed) == std::u16string_view::npos && is_paired(name);
}

std::u16string compound_name_key(std::u16string_view name) {
    std::u16string key(name);
    std::transform(key.begin(), key.end(), key.begin(),
                   [](char16_t unit) { return static_cast<char16_t>(u_toupper(unit)); });
    return key;
}

CompoundTree::CompoundTree() {
    make(u"Root Entry", CompoundKind::storage);
}

CompoundElement* CompoundTree::find(CompoundElement& storage, std::u16string_view name) {
    const auto found = storage.children.find(compound_name_key(name));
    return found != storage.children.end() ? found->second : nullptr;
}

CompoundElement* CompoundTree::create(CompoundElement& storage, std::u16string_view name, CompoundKind kind) {
    if (!compound_name_allowed(name)) return nullptr;
    CompoundElement& element = make(name, kind);
    CompoundElement*& place = storage.children[compound_name_key(name)];
    if (place != nullptr) detach(*place);
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
        each.data = {};
    }
}

} // namespace pm

#pragma once

#include "arguments.h"
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <pm/pm_c.h>
#include <string>
#include <string_view>
#include <vector>

// Blocks that the caller comes to own, released by pm9_free().
namespace pm::c {

struct FreeBlock {
    void operator()(const void* block) const noexcept { pm9_free(block); }
};
using Block = std::unique_ptr<char, FreeBlock>;

inline Block make_block(std::size_t size) {
    return Block(static_cast<char*>(::operator new(size)));
}

// A copy with a zero behind it.
inline Block copy_of(std::string_view bytes) {
    Block block = make_block(bytes.size() + 1);
    bytes.copy(block.get(), bytes.size());
    block.get()[bytes.size()] = '\0';
    return block;
}

// Gives a text or bytes out.
inline void hand_out(std::string_view bytes, char** data, std::size_t* length) {
    char*& result = required(data, u"data");
    std::size_t& result_length = required(length, u"length");
    result = copy_of(bytes).release();
    result_length = bytes.size();
}

// An array of structs with their texts in one block. Texts belong to the struct that was added last.
template<class Item>
class ArrayBlock {
public:
    void add(const Item& item) { m_items.push_back(item); }
    void add_text(const char* Item::*data, std::size_t Item::*length, std::string_view text) {
        m_items.back().*length = text.size();
        m_texts_of_items.push_back({m_items.size() - 1, data, m_texts.size()});
        m_texts.append(text).push_back('\0');
    }

    // Items lie `item_size` bytes apart, as the caller's header has them.
    void hand_out(std::size_t item_size, Item** items, std::size_t* count) const {
        Item*& result = required(items, u"items");
        std::size_t& result_count = required(count, u"count");
        if (item_size < sizeof(Item) || item_size % alignof(Item) != 0) {
            refuse(u"item_size", PM_ERR_INVALID_ARGUMENT);
        }
        const std::size_t texts_at = m_items.size() * item_size;
        Block block = make_block(texts_at + m_texts.size() + 1);
        m_texts.copy(block.get() + texts_at, m_texts.size());
        copy_items(block.get(), item_size, block.get() + texts_at);
        result = reinterpret_cast<Item*>(block.release());
        result_count = m_items.size();
    }

private:
    struct TextPlace {
        std::size_t item;
        const char* Item::*data;
        std::size_t offset;
    };

    void copy_items(char* block, std::size_t item_size, const char* texts) const {
        auto text = m_texts_of_items.begin();
        for (std::size_t at = 0; at < m_items.size(); ++at) {
            Item item = m_items[at];
            item.size = sizeof(Item);
            for (; text != m_texts_of_items.end() && text->item == at; ++text) {
                item.*(text->data) = texts + text->offset;
            }
            std::memset(block + at * item_size, 0, item_size);
            std::memcpy(block + at * item_size, &item, sizeof(Item));
        }
    }

    std::vector<Item> m_items;
    std::vector<TextPlace> m_texts_of_items; // in the order of the items
    std::string m_texts;
};

} // namespace pm::c

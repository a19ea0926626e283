#include "tree_walk.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <pm/error_number.h>
#include <string_view>

namespace pmtool {

namespace {

constexpr char16_t separator = u'\\';

// The value texts of an iterator, which owns them between two calls.
class PropertyReader {
public:
    explicit PropertyReader(PM_Iterator& iterator) : m_iterator(iterator) {}
    ~PropertyReader() { PM_Mem_Obj::operator delete(m_text); }
    PropertyReader(const PropertyReader&) = delete;
    PropertyReader& operator=(const PropertyReader&) = delete;

    std::optional<Property> next() {
        PropType type = PROP_NONE;
        try {
            const char16_t* name = m_iterator.nextProp(m_text, m_size, type);
            if (name == nullptr) return std::nullopt;
            return Property{name, value_of(type)};
        } catch (const ZT_Exception& e) {
            return empty_raw_property(e);
        }
    }

private:
    // Raw data without a byte has no text; one that never held any is told with its name.
    static Property empty_raw_property(const ZT_Exception& e) {
        if (e.m_number == PM_ERR_NO_VALUE) return {e.m_detail, Raw()};
        if (e.m_number == PM_ERR_BAD_RAW_DATA) return {u"", Raw()};
        throw e;
    }

    Value value_of(PropType type) const {
        switch (type) {
        case PROP_LONG:
            return static_cast<std::int32_t>(std::strtol(m_text, nullptr, 10));
        case PROP_DOUBLE:
            return double_value();
        case PROP_BOOL:
            return std::strcmp(m_text, "TRUE") == 0;
        case PROP_VOID:
            return std::get<Raw>(parse_value(m_text, "raw"));
        default:
            return wide_text((m_size - 1) / sizeof(char16_t));
        }
    }

    // Up to a terminator, which a text that was cut on storing hasn't.
    std::u16string wide_text(std::size_t units) const {
        std::u16string text(units, u'\0');
        std::memcpy(text.data(), m_text, units * sizeof(char16_t));
        return text.substr(0, text.find(u'\0'));
    }

    double double_value() const {
        const std::u16string text = wide_text(m_size / sizeof(char16_t));
        const std::size_t exact = text.find(u'(');
        if (exact != std::u16string::npos) {
            return exact_value(text.substr(exact + 1, text.size() - exact - 2));
        }
        const std::string narrow(text.begin(), text.end());
        double value = 0;
        std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
        return value;
    }

    static double exact_value(const std::u16string& armoured) {
        char* bytes = nullptr;
        unsigned size = 0;
        double value = 0;
        if (stringtobinary(armoured.c_str(), &bytes, &size) != 1) return value;
        if (size >= sizeof value) std::memcpy(&value, bytes, sizeof value);
        std::free(bytes);
        return value;
    }

    PM_Iterator& m_iterator;
    char* m_text = nullptr;
    std::size_t m_size = 0;
};

// Null if there is no such node.
std::unique_ptr<PM_Iterator> iterate(const PM_Object& object, const std::u16string& path, int depth) {
    try {
        std::unique_ptr<PM_Iterator> iterator(object.newIterator(path.c_str(), depth));
        if (iterator == nullptr) throw std::bad_alloc();
        return iterator->currentNode() != nullptr ? std::move(iterator) : nullptr;
    } catch (const ZT_Exception& e) {
        if (e.m_number == PM_ERR_BAD_PATH) return nullptr;
        throw;
    }
}

void visit_properties(PM_Iterator& iterator, TreeVisitor& visitor) {
    PropertyReader reader(iterator);
    while (const std::optional<Property> property = reader.next()) {
        visitor.on_property(*property);
    }
}

} // namespace

bool walk_tree(const PM_Object& object, const std::u16string& path, int depth, TreeVisitor& visitor) {
    const std::unique_ptr<PM_Iterator> iterator = iterate(object, path, depth);
    if (iterator == nullptr) return false;
    visit_properties(*iterator, visitor);
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    while (const char16_t* name = iterator->nextNode(step)) {
        if (step != PM_Object::NODE_CHILD) visitor.on_leave();
        if (step == PM_Object::NODE_PARENT) continue;
        visitor.on_enter(name);
        visit_properties(*iterator, visitor);
    }
    return true;
}

bool node_exists(const PM_Object& object, const std::u16string& path) {
    return iterate(object, path, 1) != nullptr;
}

std::optional<Property> find_property(const PM_Object& object, const std::u16string& path) {
    const std::size_t cut = path.rfind(separator);
    const std::u16string node = cut == 0 ? std::u16string(1, separator) : path.substr(0, cut);
    const std::unique_ptr<PM_Iterator> iterator = iterate(object, node, 1);
    if (iterator == nullptr) return std::nullopt;
    PropertyReader reader(*iterator);
    while (std::optional<Property> property = reader.next()) {
        if (property->name == path.substr(cut + 1)) return property;
    }
    return std::nullopt;
}

std::u16string full_path(std::u16string_view path) {
    std::u16string full;
    while (!path.empty()) {
        const std::size_t end = path.find(separator);
        if (const std::u16string_view name = path.substr(0, end); !name.empty()) (full += separator) += name;
        path = end == std::u16string_view::npos ? std::u16string_view() : path.substr(end + 1);
    }
    return full.empty() ? std::u16string(1, separator) : full;
}

std::u16string join_path(const std::u16string& node, std::u16string_view name) {
    std::u16string path = node;
    if (!path.ends_with(separator)) path += separator;
    return path += name;
}

} // namespace pmtool

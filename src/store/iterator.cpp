#include <pm/iterator.h>

#include "base/allocator.h"
#include "base/text.h"
#include "store/pmpmgr.h"
#include "store/value_text.h"
#include <algorithm>
#include <charconv>
#include <cstring>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <utility>

namespace {

constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";
constexpr const char16_t* value_place = u".\\pmobj";

constexpr std::size_t long_size = 12;
constexpr std::size_t double_size = pm::double_text_capacity * sizeof(char16_t);
constexpr std::size_t bool_size = 8;

[[noreturn]] void raise_no_memory(const char16_t* detail) {
    throw PM_Memory_Exception(value_place, detail, source);
}

// A value on its way to the caller.
struct ValueBlock {
    pm::Block<char> bytes;
    std::size_t size = 0;

    ValueBlock(std::size_t told_size, std::size_t block_size)
        : bytes(pm::allocate_block<char>(block_size)), size(told_size) {
        if (!bytes) raise_no_memory(u"value");
    }
};

ValueBlock string_value(const PM_Property& prop) {
    ValueBlock value(prop.size() + 1, prop.size() + 1);
    prop.GetData(value.bytes.get(), prop.size());
    return value;
}

ValueBlock long_value(const PM_Property& prop) {
    std::int32_t number = 0;
    prop.get_number(number);
    ValueBlock value(long_size, long_size + 1);
    *std::to_chars(value.bytes.get(), value.bytes.get() + long_size, number).ptr = '\0';
    return value;
}

ValueBlock double_value(const PM_Property& prop) {
    double number = 0;
    prop.get_number(number);
    ValueBlock value(double_size, double_size);
    pm::format_double(number, reinterpret_cast<char16_t*>(value.bytes.get()));
    return value;
}

ValueBlock bool_value(const PM_Property& prop) {
    unsigned char flag[bool_size] = {};
    prop.GetData(flag, sizeof flag);
    ValueBlock value(bool_size, bool_size);
    const std::string_view text = flag[0] != 0 ? "TRUE" : "FALSE";
    *std::copy(text.begin(), text.end(), value.bytes.get()) = '\0';
    return value;
}

ValueBlock void_value(const PM_Property& prop) {
    auto data = pm::allocate_block<unsigned char>(prop.size());
    if (!data) raise_no_memory(u"data");
    prop.GetData(data.get(), prop.size());
    const std::size_t text_size = 2 * prop.size() + 1;
    ValueBlock value(text_size, text_size);
    if (!pm_bin_to_hex(data.get(), value.bytes.get(), static_cast<int>(prop.size()))) {
        throw PM_Error(PM_ERR_BAD_RAW_DATA, value_place, u"bad raw data value", source);
    }
    return value;
}

ValueBlock make_value(const PM_Property& prop) {
    switch (prop.type()) {
    case PROP_STRING:
        return string_value(prop);
    case PROP_LONG:
        return long_value(prop);
    case PROP_DOUBLE:
        return double_value(prop);
    case PROP_BOOL:
        return bool_value(prop);
    default:
        return void_value(prop);
    }
}

bool has_text_form(PropType type) {
    return type >= PROP_LONG && type <= PROP_VOID;
}

} // namespace

PM_Iterator::PM_Iterator(const PM_Object& object, const char16_t* path, int depth)
    : m_max_depth(depth), m_depth(depth > 0 ? 0 : -1) {
    constexpr const char16_t* place = u"PM_Iterator::PM_Iterator()";
    if (object.m_root == nullptr) throw PM_Severe(PM_ERR_NO_ROOT, place, u"pmobj->m_root", source);
    const PM_Node* node = object.m_root;
    if (pm::view(path) != u"\\") {
        const PM_Path names(*object.m_strings, path, false);
        if (names.count() < 1) throw PM_Warning(PM_ERR_BAD_PATH, place, path, source);
        for (int index = 0; index < names.count() && node != nullptr; ++index) {
            node = node->find_child(*names.component(index));
        }
    }
    m_node = m_start = node;
}

PM_Iterator::~PM_Iterator() = default;

const char16_t* PM_Iterator::getCurrentNodeName() const {
    return m_node != nullptr ? m_node->name() : nullptr;
}

const char16_t* PM_Iterator::nextNode(PM_Object::NodeType& type) {
    if (m_node == nullptr) return nullptr;
    m_prop = nullptr;
    const bool coming_up = m_state == PM_Object::NODE_PARENT;
    if (!coming_up && m_depth < m_max_depth && m_node->first_child() != nullptr) {
        if (m_max_depth != 0) ++m_depth;
        return move_to(m_node->first_child(), PM_Object::NODE_CHILD, type);
    }
    if (m_node == m_start) return end(type);
    if (m_node->next_sibling() != nullptr) {
        m_state = PM_Object::NODE_SIBLING;
        return move_to(m_node->next_sibling(), PM_Object::NODE_SIBLING, type);
    }
    return m_node->parent() != nullptr ? move_up(type) : end(type);
}

const char16_t* PM_Iterator::move_to(const PM_Node* node, PM_Object::NodeType step,
                                     PM_Object::NodeType& type) {
    m_node = node;
    type = step;
    return node->name();
}

const char16_t* PM_Iterator::move_up(PM_Object::NodeType& type) {
    m_state = PM_Object::NODE_PARENT;
    if (m_max_depth != 0) --m_depth;
    return move_to(m_node->parent(), PM_Object::NODE_PARENT, type);
}

const char16_t* PM_Iterator::end(PM_Object::NodeType& type) {
    type = PM_Object::NODE_SIBLING;
    m_prop = nullptr;
    m_node = nullptr;
    return nullptr;
}

const char16_t* PM_Iterator::nextProp(char*& value, std::size_t& size, PropType& type) {
    if (value != nullptr && size != 0) pm::release(value);
    value = nullptr;
    size = 0;

    if (m_prop != nullptr) {
        m_prop = m_prop->next();
    } else if (m_node != nullptr) {
        m_prop = m_node->first_prop();
    }
    if (m_prop == nullptr) return nullptr;
    if (!has_text_form(m_prop->type())) {
        type = PROP_NONE;
        return nullptr;
    }
    type = m_prop->type();
    ValueBlock made = make_value(*m_prop);
    value = made.bytes.release();
    size = made.size;
    return m_prop->name();
}

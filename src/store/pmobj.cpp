#include "base/allocator.h"
#include "base/text.h"
#include "platform/code_page.h"
#include "store/pmpmgr.h"
#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <optional>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/iterator.h>
#include <pm/object.h>
#include <pm/view.h>

namespace {

constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";

constexpr int no_index = -1;
constexpr std::size_t text_limit = 4096;

constexpr const char16_t* duplicate_place = u"PM_Object::duplicate()";

[[noreturn]] void raise_warning(std::uint32_t number, const char16_t* place, const char16_t* detail) {
    throw PM_Warning(number, place, detail, source);
}

[[noreturn]] void raise_no_memory(const char16_t* place, const char16_t* detail) {
    throw PM_Memory_Exception(place, detail, source);
}

void require_root(const PM_Node* root, const char16_t* place) {
    if (root == nullptr) throw PM_Severe(PM_ERR_NO_ROOT, place, u"m_root", source);
}

// A path text with its index worked in, on the stack.
class ResolvedPath {
public:
    static constexpr std::size_t limit = PM_Node::longest_path;

    // Number 51 at `place`, with the path as given, for a result of more than 1023 units.
    ResolvedPath(const char16_t* path, int index, const char16_t* place) {
        const std::u16string_view given = pm::view(path);
        const std::size_t star = given.find(u'*');
        const bool fits = star != std::u16string_view::npos ? replace_star(given, star, index)
                          : index != no_index ? append(given) && append(u"\\") && append_decimal(index)
                                              : given.size() <= limit;
        if (!fits) raise_warning(PM_ERR_BAD_PATH, place, path);
        m_text[m_length] = u'\0';
        m_result = star == std::u16string_view::npos && index == no_index ? path : m_text;
    }
    ResolvedPath(const ResolvedPath&) = delete;
    ResolvedPath& operator=(const ResolvedPath&) = delete;

    const char16_t* text() const { return m_result; }

private:
    bool replace_star(std::u16string_view given, std::size_t star, int index) {
        return append(given.substr(0, star)) && append_decimal(index) && append(given.substr(star + 1));
    }

    bool append(std::u16string_view text) {
        if (text.size() > limit - m_length) return false;
        std::copy(text.begin(), text.end(), m_text + m_length);
        m_length += text.size();
        return true;
    }

    bool append_decimal(int value) {
        char digits[12];
        const char* end = std::to_chars(digits, std::end(digits), value).ptr;
        char16_t wide[12];
        std::copy(static_cast<const char*>(digits), end, wide);
        return append({wide, static_cast<std::size_t>(end - digits)});
    }

    const char16_t* m_result;
    char16_t m_text[limit + 1];
    std::size_t m_length = 0;
};

// The property that a path without index and "*" names, found by a short way; null if there is none, and for
// paths that need the long way.
PM_Property* find_plain(PM_Node& root, const char16_t* path, int index) {
    return index == no_index ? root.find_prop_at(path) : nullptr;
}

void require_type(const PM_Property& prop, PropType type, const char16_t* place) {
    if (prop.strict() && prop.type() != type) raise_warning(PM_ERR_WRONG_TYPE, place, u"");
}

// The node that the first `count` components name, or null.
PM_Node* find_node(PM_Node* root, const PM_Path& path, int count) {
    PM_Node* node = root;
    for (int index = 0; index < count && node != nullptr; ++index) {
        node = node->find_child(*path.component(index));
    }
    return node;
}

// Units to store of a text: with its terminator, or the first 4097 of a longer one.
std::size_t stored_units(const char16_t* text) {
    const char16_t* const end = std::find(text, text + text_limit, u'\0');
    return static_cast<std::size_t>(end - text) + 1;
}

std::size_t stored_bytes(const char* text) {
    const pm::CodePage& page = pm::code_page(pm::default_code_page);
    const char* at = text;
    for (std::size_t character = 0; character < text_limit && *at != '\0'; ++character) {
        at += page.character_length(at);
    }
    return static_cast<std::size_t>(at - text) + 1;
}

bool occurs_in(const PM_Path& path, const PM_PathStrings::Entry& name) {
    for (int index = 0; index < path.count(); ++index) {
        if (path.component(index) == &name) return true;
    }
    return false;
}

// Copies what `to` doesn't have yet. `scratch` is kept between calls.
void copy_properties(const PM_Node& from, PM_Node& to, pm::Pool& pool, pm::Block<unsigned char>& scratch,
                     std::size_t& scratch_size) {
    for (const PM_Property* prop = from.first_prop(); prop != nullptr; prop = prop->next()) {
        PM_Property* copy = to.AddProp(prop->entry());
        if (copy == nullptr) continue;
        copy->set_kind(prop->type(), prop->strict());
        if (!scratch || scratch_size < prop->size()) {
            scratch = pm::allocate_block<unsigned char>(prop->size());
            if (!scratch) raise_no_memory(duplicate_place, u"data");
            scratch_size = prop->size();
        }
        prop->GetData(scratch.get(), prop->size());
        copy->SetData(pool, scratch.get(), prop->size());
    }
}

} // namespace

PM_Object::PM_Object() {
    make_root();
}

PM_Object::PM_Object(ZT_Error_Handler* handler) : m_handler(handler) {
    make_root();
}

void PM_Object::make_root() {
    constexpr const char16_t* place = u"PM_Object::PM_Object";
    std::unique_ptr<PM_PathStrings> strings(new PM_PathStrings);
    if (!strings) raise_no_memory(place, u"m_strings");
    PM_PathStrings::Entry& name = strings->Add(PM_PathStrings::Key(u"Root"));
    m_root = strings->pool().make<PM_Node>(*strings, name, nullptr);
    if (m_root == nullptr) raise_no_memory(place, u"m_root");
    strings->Release(name);
    m_strings = strings.release();
}

// The tree needs no walk: its memory goes with the pool of the names.
PM_Object::~PM_Object() {
    delete m_strings;
    m_root = nullptr;
    m_strings = nullptr;
    m_handler = nullptr;
}

void PM_Object::SetProperty(const char16_t* path, int value, int index, bool strict) {
    const std::int32_t stored = value;
    setData(path, &stored, sizeof stored, PROP_LONG, index, strict);
}

void PM_Object::SetProperty(const char16_t* path, long value, int index, bool strict) {
    SetProperty(path, static_cast<int>(value), index, strict);
}

void PM_Object::SetProperty(const char16_t* path, bool value, int index, bool strict) {
    const unsigned char stored = value ? 1 : 0;
    setData(path, &stored, sizeof stored, PROP_BOOL, index, strict);
}

void PM_Object::SetProperty(const char16_t* path, const double& value, int index, bool strict) {
    setData(path, &value, sizeof value, PROP_DOUBLE, index, strict);
}

void PM_Object::SetProperty(const char16_t* path, const float& value, int index, bool strict) {
    const double stored = value;
    setData(path, &stored, sizeof stored, PROP_DOUBLE, index, strict);
}

void PM_Object::SetProperty(const char16_t* path, const char16_t* const& value, int index, bool strict) {
    const char16_t* text = pm::or_empty(value);
    setData(path, text, stored_units(text) * sizeof(char16_t), PROP_STRING, index, strict);
}

void PM_Object::SetProperty(const char16_t* path, const unsigned char* const& value, int index, bool strict) {
    const char* text = value != nullptr ? reinterpret_cast<const char*>(value) : "";
    setData(path, text, stored_bytes(text), PROP_STRING, index, strict);
}

void PM_Object::setVoidProperty(const char16_t* path, const void* data, unsigned size, int index,
                                bool strict) {
    setData(path, data, data != nullptr ? size : 0, PROP_VOID, index, strict);
}

bool PM_Object::GetProperty(const char16_t* path, double& out, int index) const {
    return getData(path, &out, sizeof out, PROP_DOUBLE, index);
}

bool PM_Object::GetProperty(const char16_t* path, float& out, int index) const {
    double value = 0;
    const bool found = getData(path, &value, sizeof value, PROP_DOUBLE, index);
    out = static_cast<float>(value);
    return found;
}

bool PM_Object::GetProperty(const char16_t* path, long& out, int index) const {
    int value = static_cast<int>(out);
    if (!GetProperty(path, value, index)) return false;
    out = value;
    return true;
}

bool PM_Object::GetProperty(const char16_t* path, int& out, int index) const {
    return getData(path, &out, sizeof out, PROP_LONG, index);
}

bool PM_Object::GetProperty(const char16_t* path, bool& out, int index) const {
    unsigned char value = 0;
    std::memcpy(&value, &out, sizeof value); // for a value of no bytes; `out` needn't be set by then
    if (!getData(path, &value, sizeof value, PROP_BOOL, index)) return false;
    out = value != 0;
    return true;
}

bool PM_Object::GetProperty(const char16_t* path, unsigned char* buffer, std::size_t size, int index) const {
    return size != static_cast<std::size_t>(-1) && getData(path, buffer, size, PROP_STRING, index);
}

bool PM_Object::GetProperty(const char16_t* path, char16_t* buffer, std::size_t size, int index) const {
    return size != static_cast<std::size_t>(-1) && getData(path, buffer, size, PROP_STRING, index);
}

bool PM_Object::getVoidProperty(const char16_t* path, void* buffer, unsigned size, int index) const {
    return getData(path, buffer, size, PROP_VOID, index);
}

void PM_Object::setData(const char16_t* path, const void* data, std::size_t size, PropType type, int index,
                        bool strict) {
    constexpr const char16_t* place = u"PM_Object::SetData()";
    require_root(m_root, place);
    PM_Node::Place plain;
    PM_Property* prop = index == no_index ? m_root->find_prop_at(path, plain) : nullptr;
    bool made = prop == nullptr;
    if (made && plain.node != nullptr) {
        prop = plain.node->append_prop(plain.name);
    } else if (made) {
        const ResolvedPath resolved(path, index, place);
        const PM_Path names(*m_strings, resolved.text(), true);
        if (names.count() < 1) raise_warning(PM_ERR_BAD_PATH, place, path);
        const int last = names.count() - 1;
        PM_Node* node = m_root->make_nodes(names, last);
        prop = last < names.first_new() ? node->find_prop(*names.last()) : nullptr;
        made = prop == nullptr;
        if (made) prop = node->append_prop(*names.last());
    }
    if (!made) require_type(*prop, type, place);
    prop->set_kind(type, strict);
    prop->SetData(m_strings->pool(), data, size);
}

bool PM_Object::getData(const char16_t* path, void* buffer, std::size_t size, PropType type,
                        int index) const {
    constexpr const char16_t* place = u"PM_Object::GetData()";
    require_root(m_root, place);
    const PM_Property* prop = find_plain(*m_root, path, index);
    if (prop == nullptr) {
        const ResolvedPath resolved(path, index, place);
        const PM_Path names(*m_strings, resolved.text(), false);
        if (names.count() < 1) return false;
        const PM_Node* node = find_node(m_root, names, names.count() - 1);
        prop = node != nullptr ? node->find_prop(*names.last()) : nullptr;
    }
    if (prop == nullptr) return false;
    require_type(*prop, type, place);
    prop->GetData(buffer, size);
    return true;
}

std::size_t PM_Object::getPropertySize(const char16_t* path, int index) const {
    constexpr const char16_t* place = u"PM_Object::getPropertySize()";
    require_root(m_root, place);
    if (const PM_Property* known = find_plain(*m_root, path, index)) return known->size();
    const ResolvedPath resolved(path, index, place);
    const PM_Path names(*m_strings, resolved.text(), false);
    if (names.count() < 1) raise_warning(PM_ERR_BAD_PATH, place, path);
    const PM_Node* node = find_node(m_root, names, names.count() - 1);
    if (node == nullptr) raise_warning(PM_ERR_NO_SUCH_NODE, place, resolved.text());
    const PM_Property* prop = node->find_prop(*names.last());
    if (prop == nullptr) raise_warning(PM_ERR_NO_SUCH_PROPERTY, place, resolved.text());
    return prop->size();
}

bool PM_Object::pathExists(const char16_t* path) const {
    if (m_root == nullptr) return false;
    const PM_Path names(*m_strings, path, false);
    return names.count() > 0 && find_node(m_root, names, names.count() - 1) != nullptr;
}

void PM_Object::deletePath(const char16_t* path) {
    constexpr const char16_t* place = u"PM_Object::DeletePath()";
    require_root(m_root, place);
    const PM_Path names(*m_strings, path, false);
    if (names.count() < 1) raise_warning(PM_ERR_BAD_PATH, place, path);
    PM_Node* node = find_node(m_root, names, names.count() - 1);
    if (node == nullptr || (!node->delete_prop(*names.last()) && !node->delete_child(*names.last()))) {
        raise_warning(PM_ERR_NOTHING_THERE, place, path);
    }
}

void PM_Object::duplicate(const char16_t* from, const char16_t* to) {
    require_root(m_root, duplicate_place);
    const PM_Path from_path(*m_strings, from, true);
    PM_Path to_path(*m_strings, to, true);
    // Kept this narrow: only the last name of the source counts, wherever it stands in the destination.
    if (from_path.count() > 0 && occurs_in(to_path, *from_path.last())) {
        throw PM_Severe(PM_ERR_COPY_INTO_ITSELF, duplicate_place, u"", source);
    }
    const std::unique_ptr<PM_Iterator> walk(newIterator(from, 0));
    if (!walk) raise_no_memory(duplicate_place, u"piter");

    pm::Block<unsigned char> scratch;
    std::size_t scratch_size = 0;
    PM_Node* copy = m_root->make_nodes(to_path, to_path.count());
    to_path.mark_known();
    if (walk->currentNode() != nullptr) {
        copy_properties(*walk->currentNode(), *copy, m_strings->pool(), scratch, scratch_size);
    }

    int depth = 0;
    NodeType step = NODE_SIBLING;
    while (walk->nextNode(step) != nullptr) {
        if (step != NODE_CHILD) to_path.pop();
        if (step == NODE_PARENT) {
            if (--depth == 0) break;
            continue;
        }
        if (step == NODE_CHILD) ++depth;
        if (!to_path.push(walk->currentNode()->entry())) raise_warning(PM_ERR_BAD_PATH, duplicate_place, to);
        copy = m_root->make_nodes(to_path, to_path.count());
        copy_properties(*walk->currentNode(), *copy, m_strings->pool(), scratch, scratch_size);
    }
}

PM_Iterator* PM_Object::newIterator(const char16_t* path, int depth) const {
    return new PM_Iterator(*this, path, depth);
}

const PM_Property* pm_find_property(const PM_Object& object, const char16_t* path, int index) {
    constexpr const char16_t* place = u"pm_find_property()";
    require_root(object.m_root, place);
    if (const PM_Property* const prop = find_plain(*object.m_root, path, index)) return prop;
    const ResolvedPath resolved(path, index, place);
    const PM_Path names(*object.m_strings, resolved.text(), false);
    if (names.count() < 1) return nullptr;
    const PM_Node* node = find_node(object.m_root, names, names.count() - 1);
    return node != nullptr ? node->find_prop(*names.last()) : nullptr;
}

const PM_Node* pm_find_node(const PM_Object& object, const char16_t* path) {
    require_root(object.m_root, u"pm_find_node()");
    if (pm::view(path).find_first_not_of(u'\\') == std::u16string_view::npos) return object.m_root;
    const PM_Path names(*object.m_strings, path, false);
    return names.count() > 0 ? find_node(object.m_root, names, names.count()) : nullptr;
}

#include "store/pmpmgr.h"
#include <pm/build.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <string>

namespace pm {

namespace {

constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";
constexpr const char16_t* place = u"pm::TreeBuilder";

[[noreturn]] void refuse(std::uint32_t number, std::u16string_view detail) {
    throw PM_Warning(number, place, std::u16string(detail).c_str(), source);
}

void require_name(std::u16string_view name) {
    constexpr std::u16string_view separators(u"\\\0", 2);
    if (name.empty() || name.find_first_of(separators) != std::u16string_view::npos) {
        refuse(PM_ERR_BAD_PATH, name);
    }
}

int depth_of(const PM_Node& node) {
    int depth = 0;
    for (const PM_Node* above = node.parent(); above != nullptr; above = above->parent()) {
        ++depth;
    }
    return depth;
}

// A handle is of a tree that the caller may change: the object was given for that.
PM_Node& changeable(const PM_Node& node) {
    return const_cast<PM_Node&>(node);
}

// One reference of a name, as long as this lives.
class Name {
public:
    Name(PM_PathStrings& strings, std::u16string_view text)
        : m_strings(strings), m_entry(strings.Add(PM_PathStrings::Key(text))) {}
    ~Name() { m_strings.Release(m_entry); }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    PM_PathStrings::Entry& entry() const { return m_entry; }

private:
    PM_PathStrings& m_strings;
    PM_PathStrings::Entry& m_entry;
};

void fill(PM_Property& property, Pool& pool, const TreeBuilder::Content& content) {
    property.set_kind(content.type, content.strict);
    if (content.data == nullptr) {
        property.drop_value(pool);
        return;
    }
    // A value of no bytes differs from none only behind one that has some.
    if (content.size == 0 && property.data() == nullptr) property.SetData(pool, "", 1);
    property.SetData(pool, content.data, content.size);
}

} // namespace

const PM_Node& TreeBuilder::root() const {
    if (m_object->m_root == nullptr) throw PM_Severe(PM_ERR_NO_ROOT, place, u"m_root", source);
    return *m_object->m_root;
}

const PM_Node& TreeBuilder::child(const PM_Node& parent, std::u16string_view name) const {
    require_name(name);
    const Name wanted(*m_object->m_strings, name);
    if (const PM_Node* const child = parent.find_child(wanted.entry())) return *child;
    if (depth_of(parent) >= PM_Path::max_components) refuse(PM_ERR_BAD_PATH, name);
    return *changeable(parent).AddNode(wanted.entry());
}

const PM_Node* TreeBuilder::find_child(const PM_Node& parent, std::u16string_view name) const noexcept {
    const PM_PathStrings::Entry* const known = m_object->m_strings->Find(PM_PathStrings::Key(name));
    return known != nullptr ? parent.find_child(*known) : nullptr;
}

const PM_Property* TreeBuilder::find_property(const PM_Node& node, std::u16string_view name) const noexcept {
    const PM_PathStrings::Entry* const known = m_object->m_strings->Find(PM_PathStrings::Key(name));
    return known != nullptr ? node.find_prop(*known) : nullptr;
}

const PM_Property& TreeBuilder::put(const PM_Node& node, std::u16string_view name,
                                    const Content& content) const {
    require_name(name);
    if (content.type < PROP_NONE || content.type > PROP_VOID) refuse(PM_ERR_INVALID_ARGUMENT, name);
    const Name wanted(*m_object->m_strings, name);
    PM_Property* property = node.find_prop(wanted.entry());
    if (property == nullptr) property = changeable(node).append_prop(wanted.entry());
    fill(*property, m_object->m_strings->pool(), content);
    return *property;
}

bool TreeBuilder::erase_property(const PM_Node& node, std::u16string_view name) const {
    const PM_PathStrings::Entry* const known = m_object->m_strings->Find(PM_PathStrings::Key(name));
    return known != nullptr && changeable(node).delete_prop(*known);
}

void TreeBuilder::erase(const PM_Node& node) const {
    constexpr std::u16string_view root_path = u"\\";
    if (node.parent() == nullptr) refuse(PM_ERR_BAD_PATH, root_path);
    changeable(*node.parent()).delete_child(node.entry());
}

} // namespace pm

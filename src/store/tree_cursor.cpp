#include "store/tree_cursor.h"

#include "store/pmpmgr.h"
#include <algorithm>
#include <pm/error_number.h>
#include <pm/exception.h>

namespace pm {

namespace {

constexpr std::size_t text_limit = 4096;

bool is_plain(std::u16string_view name) {
    return !name.empty() && std::none_of(name.begin(), name.end(),
                                         [](char16_t unit) { return unit == u'\\' || unit == u'*'; });
}

void require_type(const PM_Property& prop, PropType type) {
    if (!prop.strict() || prop.type() == type) return;
    throw PM_Warning(PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"", u"$Workfile: pmobj $ $Revision: #1 $");
}

PM_Property& property_of(PM_Node& node, PM_PathStrings::Entry& name, PropType type) {
    PM_Property* const prop = node.find_prop(name);
    if (prop == nullptr) return *node.append_prop(name);
    require_type(*prop, type);
    return *prop;
}

} // namespace

bool TreeCursor::always_by_path = false;

// Interned names, each with a reference as long as this lives.
class TreeCursor::Names {
public:
    explicit Names(PM_PathStrings& strings) : m_strings(strings) {}
    ~Names() {
        for (std::size_t i = 0; i < m_count; ++i) {
            m_strings.Release(*m_entries[i]);
        }
    }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    void add(const PM_PathStrings::Key& key) {
        m_entries[m_count] = &m_strings.Add(key);
        ++m_count;
    }
    void add_new(const PM_PathStrings::Key& key) {
        m_entries[m_count] = &m_strings.AddNew(key);
        ++m_count;
    }
    PM_PathStrings::Entry& operator[](std::size_t i) const { return *m_entries[i]; }
    PM_PathStrings::Entry& last() const { return *m_entries[m_count - 1]; }

private:
    PM_PathStrings& m_strings;
    std::size_t m_count = 0;
    std::array<PM_PathStrings::Entry*, most_levels + 1> m_entries; // only the first m_count are set
};

TreeCursor::TreeCursor(PM_Object& object, std::u16string_view base) : m_object(object), m_path(base) {
    m_levels[0] = {0, object.m_root};
    m_by_path = always_by_path || base.find(u'*') != std::u16string_view::npos;
    add_base_levels();
}

void TreeCursor::add_base_levels() {
    const std::u16string_view text(m_path.text(), m_path.length());
    std::size_t at = 0;
    while ((at = text.find_first_not_of(u'\\', at)) != std::u16string_view::npos) {
        if (m_count == most_levels) {
            m_by_path = true;
            return;
        }
        at = std::min(text.find(u'\\', at), text.size());
        m_levels[++m_count] = {at, nullptr};
    }
    m_in_step = stands_at(m_levels[m_count]);
}

bool TreeCursor::stands_at(const Level& level) const {
    return m_path.length() == level.end || (m_path.length() == level.end + 1 && m_path.ends_in_separator());
}

std::u16string_view TreeCursor::name_of(std::size_t level) const {
    const std::size_t start = m_levels[level - 1].end;
    std::u16string_view name(m_path.text() + start, m_levels[level].end - start);
    name.remove_prefix(name.find_first_not_of(u'\\'));
    return name;
}

bool TreeCursor::has_room_for(std::u16string_view name) const {
    const std::size_t separator = m_path.ends_in_separator() ? 0 : 1;
    return m_path.length() + separator + name.size() <= WorkingPath::capacity;
}

bool TreeCursor::push(std::u16string_view name) {
    if (!m_path.push(name)) return false;
    m_in_step = m_in_step && m_count < most_levels && is_plain(name);
    if (m_in_step) m_levels[++m_count] = {m_path.length(), nullptr};
    return true;
}

bool TreeCursor::pop() {
    if (!m_path.pop()) return false;
    while (m_levels[m_count].end > m_path.length()) {
        --m_count;
    }
    m_reached = std::min(m_reached, m_count);
    m_in_step = stands_at(m_levels[m_count]);
    return true;
}

TreeCursor::Name::Name(std::u16string_view name_text) : Name(name_text, is_plain(name_text)) {}

bool TreeCursor::is_moved_by(const Name& name) const {
    return m_path.ends_in_separator() || !name.plain;
}

void TreeCursor::leave(const Name& name) {
    if (is_moved_by(name) && m_path.push(name.text)) pop();
}

void TreeCursor::set_string(const Name& name, std::u16string_view text) {
    const std::size_t units = std::min(text.size(), text_limit) + 1;
    set_data(name, text.data(), units * sizeof(char16_t), PROP_STRING);
}

void TreeCursor::set_data(const Name& name, const void* data, std::size_t size, PropType type) {
    if (!m_in_step || m_by_path || !name.plain) {
        set_by_path(name.text, data, size, type);
        return;
    }
    PM_Property& prop =
        m_reached == m_count ? property_here(name.text, type) : property_below(name.text, type);
    prop.set_kind(type, true);
    prop.SetData(m_object.m_strings->pool(), data, size);
}

void TreeCursor::set_by_path(std::u16string_view name, const void* data, std::size_t size, PropType type) {
    WorkingPath whole = m_path;
    whole.push(name);
    m_object.setData(whole.text(), data, size, type, -1, true);
}

std::u16string_view TreeCursor::expected_name() const {
    if (!m_in_step || m_reached != m_count) return {};
    const PM_Property* const model = m_models[m_turn % most_models];
    return model != nullptr ? model->entry().view() : std::u16string_view();
}

PM_Property& TreeCursor::property_here(std::u16string_view name, PropType type) {
    PM_Node& node = *m_levels[m_count].node;
    const PM_Property*& model = m_models[m_turn++ % most_models];
    const bool follows = model != nullptr && model->entry().is(name);
    PM_Property& prop = follows ? pm::property_of(node, model->entry(), type) : property_of(node, name, type);
    if (!follows) model = &prop;
    return prop;
}

PM_Property& TreeCursor::property_of(PM_Node& node, std::u16string_view name, PropType type) {
    const PM_PathStrings::Key key(name);
    PM_PathStrings::Entry* const known = m_object.m_strings->Find(key);
    if (known != nullptr) return pm::property_of(node, *known, type);
    Names names(*m_object.m_strings);
    names.add_new(key);
    return *node.append_prop(names.last());
}

// The same where nodes of the path haven't been reached. All names are taken in before any node is made.
PM_Property& TreeCursor::property_below(std::u16string_view name, PropType type) {
    Names names(*m_object.m_strings);
    for (std::size_t level = m_reached + 1; level <= m_count; ++level) {
        names.add(PM_PathStrings::Key(name_of(level)));
    }
    names.add(PM_PathStrings::Key(name));
    for (std::size_t i = 0; m_reached < m_count; ++i) {
        PM_Node& node = *m_levels[m_reached].node;
        PM_Node* const child = node.find_child(names[i]);
        m_levels[m_reached + 1].node = child != nullptr ? child : node.AddNode(names[i]);
        ++m_reached;
    }
    m_turn = 0;
    return pm::property_of(*m_levels[m_count].node, names.last(), type);
}

} // namespace pm

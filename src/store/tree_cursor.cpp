#include "store/tree_cursor.h"

#include "store/pmpmgr.h"
#include <algorithm>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <utility>

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
    void add(PM_PathStrings::Entry& known) {
        m_entries[m_count] = &PM_PathStrings::AddReference(known);
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
    m_levels[0].node = object.m_root;
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
        m_levels[++m_count].end = static_cast<std::uint32_t>(at);
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

bool TreeCursor::push(const Name& name) {
    if (!m_path.push(name.text)) return false;
    m_in_step = m_in_step && m_count < most_levels && name.plain;
    if (!m_in_step) return true;
    Level& level = m_levels[++m_count];
    level.end = static_cast<std::uint32_t>(m_path.length());
    level.is_fresh = false;
    if (level.node != nullptr) level.last = std::exchange(level.node, nullptr);
    level.model = level.last != nullptr ? level.last->first_prop() : nullptr;
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

void TreeCursor::leave(const Name& name) {
    if (is_moved_by(name) && m_path.push(name.text)) pop();
}

void TreeCursor::set_string(const Name& name, std::u16string_view text) {
    const std::size_t units = std::min(text.size(), text_limit) + 1;
    set_data(name, text.data(), units * sizeof(char16_t), PROP_STRING);
}

void TreeCursor::look_again() {
    m_reached = 0;
    for (Level& level : m_levels) {
        level = {level.end};
    }
    m_levels[0].node = m_object.m_root;
}

bool TreeCursor::Level::expects(std::u16string_view name) const {
    return model != nullptr && model->entry().is(name);
}

// Null, with nothing done, where the name isn't the model's, or where a property may have it.
inline PM_Property* TreeCursor::append_as_model(std::u16string_view name) {
    Level& here = m_levels[m_count];
    if (!m_in_step || !here.is_fresh || !here.expects(name)) return nullptr;
    PM_PathStrings::Entry& entry = here.model->entry();
    here.model = here.model->next();
    return here.node->append_prop(entry);
}

template<class T>
void TreeCursor::set_value(const Name& name, PropType type, T value) {
    if (PM_Property* const prop = append_as_model(name.text)) return prop->start(type, value);
    set_otherwise(name, &value, sizeof value, type);
}

void TreeCursor::set_long(const Name& name, std::int32_t value) {
    set_value(name, PROP_LONG, value);
}

void TreeCursor::set_double(const Name& name, double value) {
    set_value(name, PROP_DOUBLE, value);
}

void TreeCursor::set_bool(const Name& name, bool value) {
    set_value(name, PROP_BOOL, static_cast<unsigned char>(value ? 1 : 0));
}

void TreeCursor::set_data(const Name& name, const void* data, std::size_t size, PropType type) {
    PM_Property* const prop = append_as_model(name.text);
    if (prop == nullptr) return set_otherwise(name, data, size, type);
    prop->set_kind(type, true);
    prop->SetData(m_object.m_strings->pool(), data, size);
}

void TreeCursor::set_otherwise(const Name& name, const void* data, std::size_t size, PropType type) {
    if (!m_in_step || m_by_path || !name.plain) return set_by_path(name.text, data, size, type);
    PM_Property& prop =
        m_reached == m_count ? property_here(name.text, type) : property_below(name.text, type);
    prop.set_kind(type, true);
    prop.SetData(m_object.m_strings->pool(), data, size);
}

// What is set may stand in any node of the path: a name of separators alone is no component of its own.
void TreeCursor::set_by_path(std::u16string_view name, const void* data, std::size_t size, PropType type) {
    for (std::size_t level = 0; level <= m_count; ++level) {
        m_levels[level].is_fresh = false;
    }
    m_models_are_plain = false;
    WorkingPath whole = m_path;
    whole.push(name);
    m_object.setData(whole.text(), data, size, type, -1, true);
}

PM_Property& TreeCursor::property_here(std::u16string_view name, PropType type) {
    Level& here = m_levels[m_count];
    const PM_Property* const model = here.model;
    const bool as_model = here.expects(name);
    here.is_fresh = false;
    if (model != nullptr) here.model = model->next();
    return as_model ? pm::property_of(*here.node, model->entry(), type) : property_of(*here.node, name, type);
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
    const PM_Property* const model = m_levels[m_count].model;
    const bool as_model = m_levels[m_count].expects(name);
    if (as_model) {
        names.add(model->entry());
    } else {
        names.add(PM_PathStrings::Key(name));
    }
    for (std::size_t i = 0; m_reached < m_count; ++i) {
        PM_Node& node = *m_levels[m_reached].node;
        PM_Node* const child = node.find_child(names[i]);
        m_levels[m_reached + 1].node = child != nullptr ? child : node.AddNode(names[i]);
        ++m_reached;
    }
    Level& here = m_levels[m_count];
    m_models_are_plain = m_models_are_plain && here.node->first_prop() == nullptr;
    here.is_fresh = as_model && m_models_are_plain;
    here.model = model != nullptr && here.last != here.node ? model->next() : nullptr;
    return pm::property_of(*here.node, names.last(), type);
}

} // namespace pm

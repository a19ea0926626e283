#include "store/pmpmgr.h"
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/view.h>

namespace pm {

namespace {

constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";

// What `find` finds, or null if that fails: nothing that a path can't name is there.
template<class Find>
auto found(Find find) noexcept -> decltype(find()) {
    try {
        return find();
    } catch (const ZT_Exception&) {
        return nullptr;
    }
}

} // namespace

bool node_exists(const PM_Object& object, const char16_t* path) noexcept {
    return found([&] { return pm_find_node(object, path); }) != nullptr;
}

std::optional<PropertyInfo> property_at(const PM_Object& object, const char16_t* path, int index) noexcept {
    const PM_Property* const property = found([&] { return pm_find_property(object, path, index); });
    if (property == nullptr) return std::nullopt;
    return PropertyInfo{property->type(), property->size(), property->strict()};
}

void make_node(PM_Object& object, const char16_t* path) {
    if (object.m_root == nullptr) throw PM_Severe(PM_ERR_NO_ROOT, u"pm::make_node()", u"m_root", source);
    const PM_Path names(*object.m_strings, path, true);
    object.m_root->make_nodes(names, names.count());
}

} // namespace pm

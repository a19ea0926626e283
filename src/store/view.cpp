#include <pm/view.h>

#include "store/pmpmgr.h"

PM_Property_View pm_view(const PM_Property& property) noexcept {
    return {property.name(), property.type(), property.strict(),
            property.data(), property.size(), property.next()};
}

PM_Node_View pm_view(const PM_Node& node) noexcept {
    return {node.name(), node.parent(), node.next_sibling(), node.first_child(), node.first_prop()};
}

#include "arguments.h"
#include "block.h"
#include "failure.h"
#include <pm/kit/compatibility.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

constexpr pm9_compatibility_options default_compatibility{
    sizeof(pm9_compatibility_options), nullptr, 0, nullptr, 0, nullptr, 0, -1, 0};

} // namespace

pm9_status pm9_compatibility(const pm9_tree* configuration, const pm9_tree* description,
                             const pm9_compatibility_options* given, char** data, size_t* length,
                             pm9_error* error) {
    return guarded(error, [&] {
        const pm9_compatibility_options how = options(given, default_compatibility, u"options");
        pm::kit::CompatibilityOptions check;
        check.description_base = text(how.description_base, how.description_base_length);
        if (how.configuration_base != nullptr) {
            check.configuration_base = text(how.configuration_base, how.configuration_base_length);
        }
        check.owner = owner(how.owner);
        pm::kit::CompatibilityMap map;
        if (how.map != nullptr) {
            map = pm::kit::load_map(text(how.map, how.map_length));
            check.map = &map;
        }
        pm::kit::ExplainedFindings explained =
            pm::kit::explain_compatibility(required(configuration, u"configuration").tree,
                                           required(description, u"description").tree, check);
        if (how.explain == 0) explained.looks.clear();
        hand_out(pm::kit::findings_to_json(explained), data, length);
    });
}

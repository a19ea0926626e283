#pragma once

#include "value.h"
#include <map>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace pmtool {

// All that a subtree holds, by path from its top. A node and a property may have the same path: that of a
// node ends in a backslash and stands for no value.
using FlatTree = std::map<std::u16string, Value>;

FlatTree flatten(const PM_Object& object, const std::u16string& path = u"\\");

struct Difference {
    std::u16string path;
    const Value* first; // null if it isn't there
    const Value* second;
};

// In the order of the paths. Points into both trees. The order of nodes and properties doesn't count.
std::vector<Difference> compare(const FlatTree& first, const FlatTree& second);

} // namespace pmtool

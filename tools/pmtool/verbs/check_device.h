#pragma once

#include "source.h"
#include <pm/kit/compatibility.h>
#include <string>
#include <vector>

// Configurations against the description of a device.
namespace pmtool {

struct DeviceCheck {
    std::vector<std::string> files; // the configurations; of several trees in a file each is one
    std::string from = {};
    std::string section = {};
    std::string device = {};               // a folder of tables, or a file saved from one
    std::string map = {};                  // JSON; empty for the built-in map
    std::string owner = {};                // 0 to 3; empty if nobody says
    std::vector<std::string> rules = {};   // only these
    std::vector<std::string> without = {}; // not these
    bool explain = false;
    bool strict = false; // notes count too
    bool json = false;
    bool keep_going = false; // behind bad lines
};

// Prints the findings; the exit code, 1 if any counts.
int check_on_device(const DeviceCheck& check);

bool is_device_rule(std::string_view name);

// A finding without its path: the message, what the description has and where, and what the device offers
// instead.
std::string finding_text(const pm::kit::Finding& finding);

} // namespace pmtool

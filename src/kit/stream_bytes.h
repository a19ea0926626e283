#pragma once

#include <iosfwd>
#include <string>

namespace pm::kit {

// Appends to `bytes` what a stream has from where it stands to its end; false if it fails, with what came
// until then. Only the stream's buffer is read: its state stays, and exceptions() don't throw.
[[nodiscard]] bool read_to_end(const std::istream& stream, std::string& bytes);

} // namespace pm::kit

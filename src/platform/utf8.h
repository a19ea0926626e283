#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pm {

// UTF-8 as in RFC 3629, to and from wide text. All append to `out`.

// A broken sequence becomes one U+FFFD: as many bytes as begin a character, at least one.
void decode_utf8(std::string_view narrow, std::u16string& wide);
// An unpaired surrogate becomes "?".
void encode_utf8(std::u16string_view wide, std::string& narrow);

// The same for the names of a system that takes any bytes for a name: a byte of a broken sequence, which is
// one of 80 to FF, is U+DC00 plus the byte, and a unit from U+DC80 to U+DCFF that stands alone is that byte.
void decode_name(std::string_view narrow, std::u16string& wide);
void encode_name(std::u16string_view wide, std::string& narrow);

} // namespace pm

#include "messages.h"

// The one function of the message library: the text of an error number, static, or null for a number that
// has none.
extern "C" __attribute__((visibility("default"))) const char16_t* pmres9_text(std::uint32_t number);

const char16_t* pmres9_text(std::uint32_t number) {
    return pmres::find_message(number);
}

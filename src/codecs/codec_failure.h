#pragma once

#include "base/allocator.h"
#include "base/deliver.h"
#include <cstdint>
#include <pm/exception.h>

namespace pm {

// How the codecs fail: inside an operation by an exception, outside by false and a word to the handler.

// Throws a PM_Severe with this number; place and detail are empty.
[[noreturn]] void throw_codec_failure(std::uint32_t number);
// Throws number 55; `name`, a static text, names what was to be allocated and is place and detail.
[[noreturn]] void throw_codec_memory(const char16_t* name);

template<class T>
Block<T> checked(Block<T> block, const char16_t* name) {
    if (block == nullptr) throw_codec_memory(name);
    return block;
}

template<class Operation>
bool run_guarded(ZT_Error_Handler* handler, Operation operation) {
    try {
        operation();
        return true;
    } catch (const ZT_Exception& e) {
        if (handler != nullptr) deliver(*handler, e);
        return false;
    }
}

} // namespace pm

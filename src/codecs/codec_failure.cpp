#include "codecs/codec_failure.h"

namespace pm {

namespace {

constexpr const char16_t* source = u"$Workfile: pm_compress $ $Revision: #1 $";

} // namespace

void throw_codec_failure(std::uint32_t number) {
    throw PM_Severe(number, u"", u"", source);
}

void throw_codec_memory(const char16_t* name) {
    throw PM_Memory_Exception(name, name, source);
}

} // namespace pm

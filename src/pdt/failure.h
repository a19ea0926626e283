#pragma once

#include <cstdint>
#include <pm/exception.h>

namespace pm {

// Every failure of the reader of device descriptions, of load and of getVersion alike. A null detail counts
// as empty.
[[noreturn]] inline void throw_pdt_failure(std::uint32_t number, const char16_t* detail) {
    throw PM_Severe(number, u"PM_PDTFile::load()", detail, u"$Workfile: pmpdt.cpp $ $Revision: #1 $");
}

} // namespace pm

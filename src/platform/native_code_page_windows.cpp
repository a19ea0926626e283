#include "platform/native_code_page.h"

#include <windows.h>

namespace pm {

unsigned native_code_page() {
    return GetACP();
}

} // namespace pm

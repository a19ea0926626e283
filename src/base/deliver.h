#pragma once

#include <pm/error_handler.h>
#include <pm/exception.h>

namespace pm {

// Hands an exception to the handler by its kind. Nonzero: the work may go on. A cancellation (kind 6) never
// reaches the handler and gives 0.
int deliver(ZT_Error_Handler& handler, const ZT_Exception& exception);

} // namespace pm

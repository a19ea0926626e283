#pragma once

// The whole public interface of the property manager.

#include <pm/code_page.h>
#include <pm/codec.h>
#include <pm/error_handler.h>
#include <pm/error_number.h>
#include <pm/error_text.h>
#include <pm/exception.h>
#include <pm/iterator.h>
#include <pm/mem_obj.h>
#include <pm/object.h>
#include <pm/srcstreambuf.h>
#include <pm/text.h>
#include <pm/tree.h>
#include <pm/value_text.h>
#include <pm/version.h>
#include <pm/view.h>
#include <pm/zt_string.h>

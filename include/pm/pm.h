#pragma once

// The whole public interface of the property manager.
//
//   tree.h           a tree for C++ programs of today; it includes text.h, value.h and node.h
//   object.h         the tree itself, PM_Object: typed access by path, loads and saves
//   iterator.h       PM_Iterator, a walk that gives each value as text
//   view.h           nodes and properties as they are stored
//   build.h          nodes and properties made and removed by their handles, exactly
//   exception.h      how failures are told; error_number.h and error_text.h name the numbers
//   error_handler.h  who hears of what a load passes over
//   code_page.h      what narrow text is taken to be
//   codec.h          the compressed blocks of files, alone
//   value_text.h     text forms of values
//   version.h        which version this is
//
// mem_obj.h, zt_string.h and srcstreambuf.h hold what these stand on. What lies in detail/ is included by the
// headers here and may change with any version.

#include <pm/build.h>
#include <pm/code_page.h>
#include <pm/codec.h>
#include <pm/error_handler.h>
#include <pm/error_number.h>
#include <pm/error_text.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/iterator.h>
#include <pm/mem_obj.h>
#include <pm/node.h>
#include <pm/object.h>
#include <pm/srcstreambuf.h>
#include <pm/text.h>
#include <pm/tree.h>
#include <pm/value.h>
#include <pm/value_text.h>
#include <pm/version.h>
#include <pm/view.h>
#include <pm/zt_string.h>

# Windows of 64 bits, by mingw-w64 with its own threads: Debian's g++-mingw-w64-x86-64-posix.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(pm_host x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${pm_host}-gcc-posix)
set(CMAKE_CXX_COMPILER ${pm_host}-g++-posix)
set(CMAKE_RC_COMPILER ${pm_host}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${pm_host})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# What isn't packaged for Windows is found by modules of our own.
list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/packages)
set(ZLIB_USE_STATIC_LIBS ON)

# Elsewhere its programs run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/run_in_wine ${CMAKE_BINARY_DIR})

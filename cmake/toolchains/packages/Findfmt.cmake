include(${CMAKE_CURRENT_LIST_DIR}/header_package.cmake)
pm_header_package(fmt fmt::fmt fmt)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
set(fmt_FOUND TRUE)

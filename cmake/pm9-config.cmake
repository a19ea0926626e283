# find_package(pm9) gives the target pm::pm9.
include(${CMAKE_CURRENT_LIST_DIR}/pm9-targets.cmake)

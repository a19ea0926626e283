include(${CMAKE_CURRENT_LIST_DIR}/header_package.cmake)
pm_header_package(CLI11 CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)

"""A project of somebody else's that stands on what is installed: a program in C and one with the kit."""

C_PROGRAM = r"""
#include <pm/pm_c.h>
#include <stdio.h>
int main(void) {
    char* text = NULL;
    size_t length = 0;
    if (pm9_error_text(PM9_ERR_BAD_LINE, &text, &length, NULL) != PM9_OK) return 1;
    printf("%d %s\n", pm9_abi_version() >= PM9_ABI_VERSION, text);
    pm9_free(text);
    return 0;
}
"""
KIT_PROGRAM = r"""
#include <cstdio>
#include <pm/kit/difference.h>
int main() {
    pm::Tree one, two;
    two.set("a", 1);
    std::printf("%s\n", pm::kit::difference_text(pm::kit::compare(one, two).at(0)).c_str());
}
"""
CMAKE_PROJECT = """
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C CXX)
find_package(pm9 9 REQUIRED)
add_executable(in_c program.c)
target_link_libraries(in_c PRIVATE pm::pm9c)
add_executable(with_kit program.cpp)
target_link_libraries(with_kit PRIVATE pm::pm9kit)
"""

# What each of its programs prints.
TOLD = {"in_c": "1 The line isn't valid\n", "with_kit": "+ \\a: long 1\n"}


def write_project(folder):
    folder.mkdir()
    (folder / "program.c").write_text(C_PROGRAM)
    (folder / "program.cpp").write_text(KIT_PROGRAM)
    (folder / "CMakeLists.txt").write_text(CMAKE_PROJECT)

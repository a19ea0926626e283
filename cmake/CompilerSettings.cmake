# One interface target that every target of this project links: language, warnings, instrumentation.
add_library(pm_settings INTERFACE)
target_compile_features(pm_settings INTERFACE cxx_std_20)
target_compile_options(pm_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

if(PM_WARNINGS_AS_ERRORS)
    target_compile_options(pm_settings INTERFACE -Werror)
endif()
# Instrumented code is optimised a little. A target with the property PM_COMPILES_FAST isn't: what takes longest to
# compile, and least of the time of a run.
set(pm_optimise $<$<NOT:$<BOOL:$<TARGET_PROPERTY:PM_COMPILES_FAST>>>:-O1>)
if(PM_SANITIZE)
    # The check of virtual tables opens a pipe, and so fails in tests that use up all file descriptors.
    target_compile_options(pm_settings INTERFACE -fsanitize=address,undefined -fno-sanitize=vptr
                                                 -fno-sanitize-recover=all -fno-omit-frame-pointer ${pm_optimise})
    # The sanitizer opens libraries in the program's place, so that only an RPATH, which counts for all that
    # a program loads, leads it to pmres9. The linker's default is a RUNPATH, which doesn't.
    target_link_options(pm_settings INTERFACE -fsanitize=address,undefined -Wl,--disable-new-dtags)
endif()
if(PM_SANITIZE_THREADS)
    target_compile_options(pm_settings INTERFACE -fsanitize=thread -fno-omit-frame-pointer ${pm_optimise})
    target_link_options(pm_settings INTERFACE -fsanitize=thread -Wl,--disable-new-dtags)
endif()
if(PM_COVERAGE)
    target_compile_options(pm_settings INTERFACE --coverage)
    target_link_options(pm_settings INTERFACE --coverage)
endif()
if(PM_LIBFUZZER)
    target_compile_options(pm_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(WIN32)
    set(CMAKE_SHARED_LIBRARY_PREFIX "") # pm9.dll
endif()

set(PM_X86_64 OFF)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
    set(PM_X86_64 ON)
endif()

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
    # Undefined behaviour is what the library is watched for: a target with the property PM_IS_TEST isn't, which takes a
    # third less to compile. The check of virtual tables opens a pipe, and so fails in tests that use up all file
    # descriptors.
    set(pm_watched address$<$<NOT:$<BOOL:$<TARGET_PROPERTY:PM_IS_TEST>>>:,undefined>)
    target_compile_options(pm_settings INTERFACE -fsanitize=${pm_watched} -fno-sanitize=vptr
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

# What is shipped links this too: with it a mistake is harder to make use of. The sanitizers look for mistakes
# themselves, and what isn't optimised has no checked copies. tests/install/hardening_test.py reads the results.
add_library(pm_hardening INTERFACE)
if(NOT WIN32 AND NOT PM_SANITIZE AND NOT PM_SANITIZE_THREADS)
    set(PM_HARDENED ON)
    target_compile_options(pm_hardening INTERFACE
        -fstack-protector-strong
        "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>"
        $<$<BOOL:${PM_X86_64}>:-fcf-protection>)
    target_link_options(pm_hardening INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
# Without any optimisation a text that is put together from parts has branches that no source has: was this part made,
# so that it must go? What would join lines or conditions stays off.
if(PM_COVERAGE)
    target_compile_options(pm_hardening INTERFACE
        -O1 -fno-inline -fno-ssa-phiopt -fno-if-conversion -fno-if-conversion2)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Programs that load anywhere: the option of the compiler alone doesn't make them.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
if(WIN32)
    set(CMAKE_SHARED_LIBRARY_PREFIX "") # pm9.dll
endif()

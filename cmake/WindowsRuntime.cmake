# The DLLs of the compiler's runtime, which the library and what links it share: exceptions go from one to the other.
# PM_RUNTIME_DLLS lists them; copies lie in the folder runtime of the build.
set(PM_RUNTIME_DLLS)
foreach(dll libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE ${path})
        message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${dll}")
    endif()
    list(APPEND PM_RUNTIME_DLLS ${path})
endforeach()
file(COPY ${PM_RUNTIME_DLLS} DESTINATION ${PROJECT_BINARY_DIR}/runtime)

# What is installed where, in the components runtime, development, tools and doc.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/pm9)
set(examples_folder ${CMAKE_INSTALL_DOCDIR}/examples)

# pm_install_runpath(<target> <folder> <folder it needs> <component>): lets what is installed in a folder find its
# libraries wherever the prefix is moved to. Below /usr the system finds them, and there packages want no such path.
function(pm_install_runpath target folder needed component)
    if(WIN32)
        return()
    endif()
    file(RELATIVE_PATH way ${CMAKE_INSTALL_PREFIX}/${folder} ${CMAKE_INSTALL_PREFIX}/${needed})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "\$ORIGIN/${way}")
    install(CODE "
        if(CMAKE_INSTALL_PREFIX MATCHES \"^/(usr/?)?\$\")
            file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/$<TARGET_FILE_NAME:${target}>\")
        endif()" COMPONENT ${component})
endfunction()

install(TARGETS pm9 EXPORT pm9-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET pm9kit)
    install(TARGETS pm9kit EXPORT pm9-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    pm_install_runpath(pm9kit ${CMAKE_INSTALL_LIBDIR} ${CMAKE_INSTALL_LIBDIR} runtime)
endif()
if(TARGET pm9c)
    install(TARGETS pm9c EXPORT pm9-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    pm_install_runpath(pm9c ${CMAKE_INSTALL_LIBDIR} ${CMAKE_INSTALL_LIBDIR} runtime)
endif()
# In a folder of the library's own number, where only that library looks.
install(TARGETS pmres9
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/pm9 COMPONENT runtime
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}/pm9 COMPONENT runtime)

# Programs share the compiler's runtime with the library; see WindowsRuntime.cmake.
install(FILES ${PM_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/pm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT pm9-targets NAMESPACE pm:: DESTINATION ${package_folder} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmake/pm9-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/pm9-config.cmake ${PROJECT_BINARY_DIR}/cmake/pm9-config-version.cmake
    DESTINATION ${package_folder} COMPONENT development)
# It finds its prefix from where it lies, so that the prefix can be moved.
file(RELATIVE_PATH prefix_of_pkgconfig
    ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefix_of_pkgconfig ${prefix_of_pkgconfig})
# pm_install_pkgconfig(<library> <part> <needs>): needs is a line, or nothing.
function(pm_install_pkgconfig PM_LIBRARY PM_LIBRARY_PART PM_LIBRARY_NEEDS)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${PROJECT_BINARY_DIR}/cmake/${PM_LIBRARY}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/cmake/${PM_LIBRARY}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
pm_install_pkgconfig(pm9 "; its headers are C++20" "")
if(TARGET pm9kit)
    pm_install_pkgconfig(pm9kit ": what programs do with trees; C++20" "Requires: pm9\n")
endif()
if(TARGET pm9c)
    pm_install_pkgconfig(pm9c ": its interface for C" "Requires.private: pm9kit\n")
endif()

if(PM_BUILD_TOOLS)
    install(TARGETS pmtool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    pm_install_runpath(pmtool ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR} tools)
    if(TARGET pmtool_pages)
        set(made ${PROJECT_BINARY_DIR}/share/pmtool)
        install(DIRECTORY ${made}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools
            FILES_MATCHING PATTERN "*.1.gz")
        install(FILES ${made}/pmtool.bash RENAME pmtool COMPONENT tools
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
        install(FILES ${made}/pmtool.zsh RENAME _pmtool COMPONENT tools
            DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
        install(FILES ${made}/pmtool.fish COMPONENT tools
            DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
    endif()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${examples_folder} COMPONENT doc)

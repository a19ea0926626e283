# Debian packages by cpack: libpm9-9 from the component runtime, libpm9-dev from development and doc, pmtool from
# tools.
set(runtime_package libpm9-${PM_SOVERSION})

# Each package has its licence and its changes in a folder of its own; both are of no use outside packages.
set(debian_folder ${PROJECT_BINARY_DIR}/debian)
string(TIMESTAMP PM_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
function(pm_add_package component package)
    set(PM_PACKAGE ${package})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in ${debian_folder}/${package}/changelog @ONLY)
    file(ARCHIVE_CREATE OUTPUT ${debian_folder}/${package}/changelog.Debian.gz FORMAT raw COMPRESSION GZip
        COMPRESSION_LEVEL 9 PATHS ${debian_folder}/${package}/changelog)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${debian_folder}/${package}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component}_package EXCLUDE_FROM_ALL)
endfunction()
pm_add_package(runtime ${runtime_package})
pm_add_package(development libpm9-dev)
if(PM_BUILD_TOOLS)
    pm_add_package(tools pmtool)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "pm9 maintainers")
set(CPACK_PACKAGE_CONTACT "pm9 maintainers <maintainers@pm9.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENT_RUNTIME_GROUP runtime)
set(CPACK_COMPONENT_RUNTIME_PACKAGE_GROUP runtime)
set(CPACK_COMPONENT_DEVELOPMENT_GROUP development)
set(CPACK_COMPONENT_DEVELOPMENT_PACKAGE_GROUP development)
set(CPACK_COMPONENT_DOC_GROUP development)
set(CPACK_COMPONENT_TOOLS_GROUP tools)
set(CPACK_COMPONENT_TOOLS_PACKAGE_GROUP tools)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(description "Keeps plot configurations and device descriptions as a tree of named nodes
and typed properties, and loads and saves that tree in the file formats of
the subsystem.")

# Programs that link the library depend on this package, and the loader learns of its file.
set(control_folder ${debian_folder}/${runtime_package}/control)
foreach(library libpm9 libpm9kit libpm9c)
    string(APPEND shlibs "${library} ${PM_SOVERSION} ${runtime_package} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${control_folder}/shlibs ${shlibs})
file(WRITE ${control_folder}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control_folder}/shlibs ${control_folder}/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${description}

This package holds the shared libraries, for C++ and for C, and the texts of
their error numbers.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpm9-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION}-1)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${description}

This package holds the headers, what CMake and pkg-config read, the documents
and example programs with sample files.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pmtool)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${description}

This package holds the command line tool, which shows, changes, converts and
checks such files.")

include(CPack)

# All that is installed in one zip: cpack in the build folder, or the target package.
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR "pm9 maintainers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME pm9-${PROJECT_VERSION}-windows-x64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
include(CPack)

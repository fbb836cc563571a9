# An overlay port: it builds the checkout that it lies in. To publish it, take the sources from an archive instead (vcpkg_from_git).
set(SOURCE_PATH "${CURRENT_PORT_DIR}/../../..")

# One build makes both libraries, and the package file names both: the DLL stays in static triplets too.
set(VCPKG_POLICY_DLLS_IN_STATIC_LIBRARY enabled)

vcpkg_find_acquire_program(FLEX) # its FlexLexer.h is all that is used
get_filename_component(flex_folder "${FLEX}" DIRECTORY)
find_file(FLEX_LEXER_H FlexLexer.h PATHS "${flex_folder}" "${flex_folder}/../include" NO_DEFAULT_PATH REQUIRED)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        -DKELINS_TESTS=OFF
        -DKELINS_EXAMPLES=OFF
        "-DKELINS_FLEX_LEXER_H=${FLEX_LEXER_H}")
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME KelInsInfra CONFIG_PATH lib/cmake/KelInsInfra)
vcpkg_fixup_pkgconfig()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE" "${SOURCE_PATH}/NOTICE")

# What a user takes home: DLL and its debug symbols, import library, static library, headers, runtime DLLs, package files for CMake
# and pkg-config, manifest, licences, bill of materials. cmake/Package.cmake makes the ZIP and the installer of it.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KELINS_SHARE ${CMAKE_INSTALL_DATADIR}/KelInsInfra)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KelInsInfra)
set(generated ${CMAKE_BINARY_DIR}/package-files)

install(TARGETS KelInsInfra KelInsInfraStatic EXPORT KelInsInfra
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES $<TARGET_FILE:KelInsInfra>.debug DESTINATION ${CMAKE_INSTALL_BINDIR})
kelins_runtime_dlls(runtime_dlls)
install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})

install(EXPORT KelInsInfra NAMESPACE KelInsInfra:: DESTINATION ${package_dir} FILE KelInsInfraTargets.cmake)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelInsInfraConfig.cmake.in ${generated}/KelInsInfraConfig.cmake
    INSTALL_DESTINATION ${package_dir} PATH_VARS KELINS_SHARE)
write_basic_package_version_file(${generated}/KelInsInfraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${generated}/KelInsInfraConfig.cmake ${generated}/KelInsInfraConfigVersion.cmake DESTINATION ${package_dir})

function(kelins_pkg_config name libs cflags)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/KelInsInfra.pc.in ${generated}/${name}.pc @ONLY)
    install(FILES ${generated}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
kelins_pkg_config(KelInsInfra "" "")
kelins_pkg_config(KelInsInfraStatic " -static" " -DKELINS_STATIC")

install(FILES ${PROJECT_SOURCE_DIR}/cmake/installer.manifest DESTINATION ${KELINS_SHARE})
install(FILES LICENSE NOTICE CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY licenses DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY build/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL) # where scripts/docs.sh has made the reference

# Last of all: the bill of materials lists, with their digests, the files that were installed before it.
file(STRINGS ${PROJECT_SOURCE_DIR}/KelInsInfra/json/Scanner.cpp flex_version REGEX "define YY_FLEX_(MAJOR|MINOR|SUBMINOR)_VERSION [0-9]")
list(TRANSFORM flex_version REPLACE ".* " "")
list(JOIN flex_version "." flex_version)
file(STRINGS ${PROJECT_SOURCE_DIR}/KelInsInfra/json/Parser.cpp bison_version REGEX "made by GNU Bison" LIMIT_COUNT 1)
string(REGEX REPLACE ".*Bison ([0-9.]+[0-9]).*" "\\1" bison_version "${bison_version}")
file(WRITE ${generated}/version.c "#include <_mingw.h>\nmingw_version __MINGW64_VERSION_MAJOR.__MINGW64_VERSION_MINOR\n")
execute_process(COMMAND ${CMAKE_C_COMPILER} -E -P ${generated}/version.c
    OUTPUT_VARIABLE mingw_version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE ".*mingw_version|[ \n]" "" mingw_version "${mingw_version}")
file(READ ${PROJECT_SOURCE_DIR}/licenses/FLEX.txt flex_license)
string(REPLACE "\"" "\\\"" flex_license "${flex_license}")
string(REPLACE "\n" "\\n" flex_license "${flex_license}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/BillOfMaterials.cmake.in ${generated}/BillOfMaterials.cmake @ONLY)
install(SCRIPT ${generated}/BillOfMaterials.cmake)

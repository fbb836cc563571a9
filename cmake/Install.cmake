# What a user takes home: DLL, import library, static library, headers, runtime DLLs, CMake package, pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KelInsInfra)
install(TARGETS KelInsInfra KelInsInfraStatic EXPORT KelInsInfra
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KelInsInfra NAMESPACE KelInsInfra:: DESTINATION ${package_dir} FILE KelInsInfraTargets.cmake)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelInsInfraConfig.cmake.in
    ${CMAKE_BINARY_DIR}/KelInsInfraConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KelInsInfraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KelInsInfraConfig.cmake ${CMAKE_BINARY_DIR}/KelInsInfraConfigVersion.cmake
    DESTINATION ${package_dir})

configure_file(${CMAKE_CURRENT_LIST_DIR}/KelInsInfra.pc.in ${CMAKE_BINARY_DIR}/KelInsInfra.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/KelInsInfra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})

kelins_runtime_dlls(runtime_dlls)
install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})

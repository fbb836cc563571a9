# The packages of the SDK: a ZIP and a Windows installer, with their SHA-256 sums. scripts/package.sh makes them.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # the library is enough: no need to build the tests first

set(CPACK_GENERATOR ZIP NSIS)
set(CPACK_PACKAGE_NAME KelInsInfra)
set(CPACK_PACKAGE_VENDOR "The KelInsInfra authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_FILE_NAME KelInsInfra-${PROJECT_VERSION}-mingw64)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_INSTALL_DIRECTORY KelInsInfra) # under Program Files, and the entry of the uninstaller
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_MONOLITHIC_INSTALL ON)

# The installer is itself a 64-bit program, and says in its properties what it is.
set(CPACK_NSIS_DISPLAY_NAME "KelInsInfra ${PROJECT_VERSION}")
set(CPACK_NSIS_PACKAGE_NAME "KelInsInfra ${PROJECT_VERSION}")
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
set(CPACK_NSIS_MODIFY_PATH OFF)
set(CPACK_NSIS_DEFINES "
  Target amd64-unicode
  VIProductVersion ${PROJECT_VERSION}.0
  VIAddVersionKey ProductName KelInsInfra
  VIAddVersionKey ProductVersion ${PROJECT_VERSION}
  VIAddVersionKey FileVersion ${PROJECT_VERSION}
  VIAddVersionKey FileDescription \"Installer of the KelInsInfra SDK\"
  VIAddVersionKey CompanyName \"The KelInsInfra authors\"
  VIAddVersionKey LegalCopyright \"Copyright (c) 2026 The KelInsInfra authors\"")
include(CPack)

# `cmake --install BUILD --component NAME` installs `program` (the files for a board), `demo` (the
# board that ./serve serves) or `sdk` (the host platform as a board's SDK); without a component,
# everything except the SDK. `cpack` packs the program as a tarball and as a Debian package.
if(CMAKE_CROSSCOMPILING)
    set(architecture_powerpc powerpc)
    set(architecture_aarch64 arm64)
    set(architecture_arm armhf)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${architecture_${CMAKE_SYSTEM_PROCESSOR}})
endif()

if(BUILD_CLIENT AND TARGET efictl)
    # A separate package, for machines that are not boards:
    #   cpack --config BUILD/CPackClient.cmake
    set(CLIENT_PACKAGE_NAME efictl-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/clientPackage.cmake.in
        ${PROJECT_BINARY_DIR}/CPackClient.cmake @ONLY)
endif()

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME efi-backup-restore)
set(PACKAGE_MAINTAINER "Maintainers of the board's software <maintainers@board.invalid>"
    CACHE STRING "Name and address of the packages' maintainer")
set(CPACK_PACKAGE_CONTACT ${PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "web screen for backup and restore of BIOS configurations")
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "The CGI program of a server management board that saves the EFI configuration
of one partition into a file, and restores such a file onto partitions.
Contains the program, its script and its skeletons; the web server, the
libraries and the back-end are the board's.")
set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_COMPONENTS_ALL program)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(NOT STATIC_PROGRAM)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)

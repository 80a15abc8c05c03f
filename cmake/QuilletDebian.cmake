# SPDX-License-Identifier: Apache-2.0
# Debian packages, one per component of the install. scripts/package has cpack make them.

set(QUILLET_DEBIAN_REVISION 1 CACHE STRING "Revision of the Debian packages")
set(QUILLET_DEBIAN_MAINTAINER "quillet maintainers <maintainers@quillet.example>" CACHE STRING
    "Who answers for the Debian packages: name and mail address")
set(quillet_debian "${PROJECT_SOURCE_DIR}/packaging/debian")
set(quillet_debian_version "${PROJECT_VERSION}-${QUILLET_DEBIAN_REVISION}")

if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    message(FATAL_ERROR "Debian packages are installed to /usr: configure with the preset package")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "${QUILLET_DEBIAN_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL Libraries Development Client Daemon)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE "${QUILLET_DEBIAN_REVISION}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the files are linked to says what they depend on; what they are linked to of this project is in another package.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
# And what is linked to these libraries learns from their package what to depend on.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Each package has a description of its own, and cpack puts this before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

# quillet_debian_package(<component> <package> SECTION <section> SUMMARY <line> TEXT <text> [DEPENDS <dependencies>])
#
# The component as a package. A package depends on the libraries of its own version: below 1.0 another one may differ.
macro(quillet_debian_package component package)
    cmake_parse_arguments(arg "" "SECTION;SUMMARY;TEXT;DEPENDS" "" ${ARGN})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${arg_SECTION})
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${arg_TEXT}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${arg_DEPENDS}")
    install(FILES "${quillet_debian}/copyright" "${PROJECT_BINARY_DIR}/debian/changelog.gz"
        "${PROJECT_BINARY_DIR}/debian/changelog.Debian.gz"
        DESTINATION share/doc/${package} COMPONENT ${component})
endmacro()

quillet_debian_package(Libraries libquillet0 SECTION libs
    SUMMARY "message catalogue of a Z-Wave controller daemon - libraries"
    TEXT "The messages that the daemon zwaved and its clients exchange, one JSON object\nper line, and what carries, serves and answers them. This package has the\nshared libraries.")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${quillet_debian}/libquillet0/triggers")

quillet_debian_package(Development libquillet-dev SECTION libdevel
    DEPENDS "libquillet0 (= ${quillet_debian_version}), libboost-dev (>= ${quillet_least_Boost}), libjsoncpp-dev (>= ${quillet_least_JsonCpp})"
    SUMMARY "message catalogue of a Z-Wave controller daemon - development"
    TEXT "The messages that the daemon zwaved and its clients exchange, one JSON object\nper line, and what carries, serves and answers them. This package has the\nheaders, and what finds the libraries for CMake and pkg-config.")

quillet_debian_package(Client quillet SECTION utils
    DEPENDS "libquillet0 (= ${quillet_debian_version})"
    SUMMARY "command-line client of a Z-Wave controller daemon"
    TEXT "Shows the nodes of a Z-Wave network, includes and excludes them, sends them\ncommands, saves and restores the module's memory and follows what happens, by\nway of the daemon zwaved on this machine or another one.")

# Whoever has the daemon may want the module beside it, simulated, on a pseudo terminal.
quillet_debian_package(Daemon zwaved SECTION net
    DEPENDS "libquillet0 (= ${quillet_debian_version}), systemd | systemd-standalone-sysusers | systemd-sysusers"
    SUMMARY "daemon that serves a Z-Wave controller module to many clients"
    TEXT "Owns the controller module on a serial port, keeps what is known of the nodes,\nand answers its clients over TCP and Unix-domain sockets. A simulated module\nis part of it, and is there as a program of its own, zwavesim.")
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA
    "${quillet_debian}/zwaved/postinst;${quillet_debian}/zwaved/prerm;${quillet_debian}/zwaved/postrm")

# Two changelogs: what changed, and which revision of the packages this is.
execute_process(COMMAND date --utc --rfc-email --date ${quillet_date} OUTPUT_VARIABLE quillet_debian_date
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file("${quillet_debian}/changelog.in" debian/changelog.Debian @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/CHANGELOG.md" debian/changelog COPYONLY)
quillet_gzip("${PROJECT_BINARY_DIR}/debian/changelog.Debian" changelogs)
quillet_gzip("${PROJECT_BINARY_DIR}/debian/changelog" changelog)
add_custom_target(quillet-debian-changelogs ALL DEPENDS "${changelogs}" "${changelog}")

include(CPack)

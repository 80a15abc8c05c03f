# SPDX-License-Identifier: Apache-2.0
# find_package(quillet) and pkg-config, for builds against an installed tree.

include(CMakePackageConfigHelpers)

set(quillet_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/quillet")

install(EXPORT quilletTargets NAMESPACE quillet:: DESTINATION "${quillet_package_dir}" COMPONENT Development)
configure_package_config_file(cmake/quilletConfig.cmake.in "${PROJECT_BINARY_DIR}/quilletConfig.cmake"
    INSTALL_DESTINATION "${quillet_package_dir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/quilletConfig.cmake" "${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake"
    DESTINATION "${quillet_package_dir}"
    COMPONENT Development)

# The prefix is computed from the place of the file itself, so an installed tree can be moved.
file(RELATIVE_PATH quillet_prefix_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
# The catalogue registers its messages as it is loaded. So the linker must keep it, even if the program calls nothing of
# it. Of the other libraries, the linker keeps what the program needs.
set(quillet_pc_libs "-Wl,--push-state,--no-as-needed -lquillet -Wl,--pop-state")
foreach(library IN ITEMS client message_bus io zwaved zorvshared transport zorvcrypto zorvlogger)
    string(APPEND quillet_pc_libs " -l${library}")
endforeach()
configure_file(cmake/quillet.pc.in "${PROJECT_BINARY_DIR}/quillet.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/quillet.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT Development)

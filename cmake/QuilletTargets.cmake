# One function per kind of target, so that a folder's CMakeLists.txt only says what is its own.

include(GoogleTest)

# Sources are found by pattern: a new message is its own two files, one line in the catalogue's list and one
# golden file, and no build file. CONFIGURE_DEPENDS lets the build notice a new file by itself.
function(quillet_find_sources out pattern)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${pattern}")
    set(${out} "${sources}" PARENT_SCOPE)
endfunction()

# quillet_library(<name> [PUBLIC <target>...] [PRIVATE <target>...])
#
# The folder's sources as the shared library lib<name>.so, known as quillet::<name>, with its headers installed
# in the place that they have in this tree. A folder that has only headers is an interface library.
function(quillet_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "PUBLIC;PRIVATE")
    quillet_find_sources(sources "*.cpp")
    if(sources)
        add_library(${name} SHARED ${sources})
        set_target_properties(${name} PROPERTIES
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON
            INSTALL_RPATH "$ORIGIN"
            VERSION ${PROJECT_VERSION}
            SOVERSION ${PROJECT_VERSION_MAJOR})
        target_compile_features(${name} PUBLIC cxx_std_17)
        target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:quillet_build_options>)
        set_property(GLOBAL APPEND PROPERTY quillet_libraries ${name})
        # Without this a library that forgot a dependency is only found out by the program that loads it.
        if(NOT QUILLET_SANITIZE)
            target_link_options(${name} PRIVATE LINKER:--no-undefined)
        endif()
        set(scope PUBLIC)
    else()
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE ${arg_PUBLIC})
        set(scope INTERFACE)
    endif()
    target_include_directories(${name} ${scope}
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quillet>")
    add_library(quillet::${name} ALIAS ${name})
    quillet_install_headers()
    install(TARGETS ${name} EXPORT quilletTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()

# Every header of the folder, but those that only the library's own sources may include (*Impl.h).
function(quillet_install_headers)
    file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
    install(DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/quillet/${folder}"
        FILES_MATCHING PATTERN "*.h"
        PATTERN "*Impl.h" EXCLUDE)
endfunction()

# quillet_program(<name> <target>...)
#
# The folder's sources as the program <name>, linked to the given targets. The CMake target is program-<name>,
# because libraries of the same names exist.
function(quillet_program name)
    quillet_find_sources(sources "*.cpp")
    add_executable(program-${name} ${sources})
    # An installed program finds its libraries wherever the prefix is moved to.
    file(RELATIVE_PATH libraries "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    # ENABLE_EXPORTS lets a stack trace name the program's own functions.
    set_target_properties(program-${name} PROPERTIES
        OUTPUT_NAME ${name}
        INSTALL_RPATH "$ORIGIN/${libraries}"
        ENABLE_EXPORTS ON)
    target_link_libraries(program-${name} PRIVATE ${ARGN} quillet_build_options)
    install(TARGETS program-${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# quillet_tests(<folder> <target>...)
#
# Every <folder>/**/*.test.cpp as one executable, linked to the given targets; each TEST in it is a ctest test with
# the folder's name as its label. One executable per folder, because on a small machine linking, not compiling,
# is what many small ones cost.
function(quillet_tests folder)
    quillet_find_sources(sources "${folder}/*.cpp")
    if(NOT sources)
        message(FATAL_ERROR "tests/${folder} has no test")
    endif()
    add_executable(${folder}-tests ${sources} testPaths.cpp)
    set_target_properties(${folder}-tests PROPERTIES ENABLE_EXPORTS ON)
    target_link_libraries(${folder}-tests PRIVATE ${ARGN} GTest::gmock GTest::gtest_main quillet_build_options)
    add_dependencies(${folder}-tests quillet)
    foreach(program IN ITEMS program-zwaved program-quillet)
        if(TARGET ${program})
            add_dependencies(${folder}-tests ${program})
        endif()
    endforeach()
    gtest_discover_tests(${folder}-tests
        TEST_PREFIX "${folder}/"
        DISCOVERY_TIMEOUT 120
        PROPERTIES LABELS ${folder} TIMEOUT 120)
endfunction()

# quillet_script_test(<folder>/<test> <script> [<argument>...])
#
# The folder's script, with the arguments, as a ctest test with the folder's name as its label.
function(quillet_script_test test script)
    cmake_path(GET test PARENT_PATH folder)
    add_test(NAME ${test} COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/${script}" ${ARGN})
    set_tests_properties(${test} PROPERTIES LABELS ${folder} TIMEOUT 300)
endfunction()

# SPDX-License-Identifier: Apache-2.0
# One function per kind of target, so that a folder's CMakeLists.txt is short.

include(GoogleTest)

# Sources are found by pattern: a new message is its own two files, one line in the catalogue's list and one
# golden file, and no build file. CONFIGURE_DEPENDS lets the build notice a new file by itself.
function(quillet_find_sources out pattern)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${pattern}")
    set(${out} "${sources}" PARENT_SCOPE)
endfunction()

# quillet_library(<name> [PUBLIC <target>...] [PRIVATE <target>...] [HEADERS <file>...])
#
# The folder's sources as the shared library lib<name>.so, known as quillet::<name>, with the folder's headers and
# those of HEADERS installed in the place that they have in this tree. A folder that has only headers is an interface
# library. The CMake target is quillet_<name>, or the bare name where that is the project's.
function(quillet_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "PUBLIC;PRIVATE;HEADERS")
    set(target quillet_${name})
    if(name STREQUAL PROJECT_NAME)
        set(target ${name})
    endif()
    quillet_find_sources(sources "*.cpp")
    if(sources)
        add_library(${target} SHARED ${sources})
        set_target_properties(${target} PROPERTIES
            OUTPUT_NAME ${name}
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON
            INSTALL_RPATH "$ORIGIN"
            LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map"
            VERSION ${PROJECT_VERSION}
            SOVERSION ${PROJECT_VERSION_MAJOR})
        target_compile_features(${target} PUBLIC cxx_std_17)
        target_link_libraries(${target}
            PUBLIC ${arg_PUBLIC}
            PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:quillet_build_options>)
        target_link_options(${target} PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map")
        set_property(GLOBAL APPEND PROPERTY quillet_libraries ${target})
        if(QUILLET_DEBUG_INFO)
            target_compile_options(${target} PRIVATE -g)
        endif()
        # Without this, a missing dependency of a library shows only in the program that loads it.
        if(NOT QUILLET_SANITIZE)
            target_link_options(${target} PRIVATE LINKER:--no-undefined)
        endif()
        set(scope PUBLIC)
    else()
        add_library(${target} INTERFACE)
        target_compile_features(${target} INTERFACE cxx_std_17)
        target_link_libraries(${target} INTERFACE ${arg_PUBLIC})
        set(scope INTERFACE)
    endif()
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    add_library(quillet::${name} ALIAS ${target})

    # Every header of the folder, except those that only the library's own sources include: *Impl.h, and libtransport's
    # json/.
    quillet_find_sources(headers "*.h")
    list(FILTER headers EXCLUDE REGEX "Impl\\.h$|/libtransport/json/")
    target_sources(${target} ${scope}
        FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${headers} ${arg_HEADERS})

    install(TARGETS ${target} EXPORT quilletTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Libraries NAMELINK_COMPONENT Development
        FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/quillet" COMPONENT Development)
endfunction()

# quillet_always_loaded(<name>)
#
# Keeps the library in programs that call nothing of it, also if the linker drops uncalled libraries (--as-needed). Such
# a program finds the library's classes by their names.
function(quillet_always_loaded name)
    target_link_options(${name} INTERFACE
        "$<BUILD_INTERFACE:LINKER:--push-state,--no-as-needed,$<TARGET_FILE:${name}>,--pop-state>"
        "$<INSTALL_INTERFACE:LINKER:--push-state,--no-as-needed,$<TARGET_FILE:quillet::${name}>,--pop-state>")
endfunction()

# quillet_program(<name> COMPONENT <component> LINK <target>...)
#
# The folder's sources as the program <name>, linked to the given targets and installed with the component. The CMake
# target is quillet-program-<name>, because libraries of the same names exist.
function(quillet_program name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COMPONENT" "LINK")
    quillet_find_sources(sources "*.cpp")
    set(target quillet-program-${name})
    add_executable(${target} ${sources})
    # An installed program finds its libraries even if the prefix is moved.
    file(RELATIVE_PATH libraries "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    # ENABLE_EXPORTS lets a stack trace name the program's own functions.
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${name}
        INSTALL_RPATH "$ORIGIN/${libraries}"
        ENABLE_EXPORTS ON)
    target_link_libraries(${target} PRIVATE ${arg_LINK} quillet_build_options)
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${arg_COMPONENT})
    set_property(GLOBAL APPEND PROPERTY quillet_programs ${target})
endfunction()

# quillet_gzip(<file> <out>)
#
# The file as Debian wants documents: compressed, and the same bytes whenever that was done.
function(quillet_gzip file out)
    find_program(QUILLET_GZIP gzip REQUIRED)
    add_custom_command(OUTPUT "${file}.gz" COMMAND "${QUILLET_GZIP}" -9nkf "${file}" DEPENDS "${file}" VERBATIM)
    set(${out} "${file}.gz" PARENT_SCOPE)
endfunction()

# quillet_manual(<name> <section> <program> <argument> COMPONENT <component>)
#
# The manual page <name>(<section>), which the target <program> writes when it is called with the argument.
function(quillet_manual name section program argument)
    cmake_parse_arguments(PARSE_ARGV 4 arg "" "COMPONENT" "")
    set(page "${CMAKE_CURRENT_BINARY_DIR}/${name}.${section}")
    add_custom_command(OUTPUT "${page}" COMMAND ${program} ${argument} > "${page}" DEPENDS ${program} VERBATIM)
    if(QUILLET_DEBIAN)
        quillet_gzip("${page}" page)
    endif()
    add_custom_target(quillet-manual-${name} ALL DEPENDS "${page}")
    install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT ${arg_COMPONENT})
endfunction()

# quillet_own_program(<name> <source>...)
#
# A program for the tree's own use, which is not installed. The CMake target is quillet-<name>, so that no target of a
# project around this one has its name.
function(quillet_own_program name)
    add_executable(quillet-${name} ${ARGN})
    set_target_properties(quillet-${name} PROPERTIES OUTPUT_NAME ${name})
    target_link_libraries(quillet-${name} PRIVATE quillet_build_options)
endfunction()

# quillet_tests(<folder> <target>...)
#
# Every <folder>/**/*.test.cpp as the program <folder>-tests, linked to the given targets; each TEST in it is a ctest
# test with the folder's name as its label. There is one program per folder, because linking many small ones takes long.
# With sanitizers, unit tests run a hundred or so in a process: it takes longer to begin than most of them take.
# A folder of QUILLET_LEAVE_OUT has its program only for who asks for it, and no tests.
function(quillet_tests folder)
    quillet_find_sources(sources "${folder}/*.cpp")
    if(NOT sources)
        message(FATAL_ERROR "tests/${folder} has no test")
    endif()
    set(target quillet-${folder}-tests)
    quillet_own_program(${folder}-tests ${sources} testPaths.cpp)
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
    target_link_libraries(${target} PRIVATE ${ARGN} GTest::gmock GTest::gtest_main)
    # GoogleMock's header takes longer to compile than most tests. The option lets a compiler cache serve them.
    target_precompile_headers(${target} PRIVATE <gmock/gmock.h> <gtest/gtest.h> <string> <vector>)
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    add_dependencies(${target} quillet quillet-program-zwaved quillet-program-zwavesim quillet-program-quillet)
    if(folder IN_LIST QUILLET_LEAVE_OUT)
        set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    if(QUILLET_SANITIZE AND folder STREQUAL "unit")
        set(shards 16)
        foreach(shard RANGE 1 ${shards})
            math(EXPR index "${shard} - 1")
            set(test ${folder}/Shard.${shard}Of${shards})
            add_test(NAME ${test} COMMAND ${target})
            set_tests_properties(${test} PROPERTIES LABELS ${folder} TIMEOUT 600
                ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${index}"
                FAIL_REGULAR_EXPRESSION "0 tests from 0 test suites ran"
                SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]|YOU HAVE [0-9]+ DISABLED TEST")
        endforeach()
        return()
    endif()
    set(longest 120) # seconds
    if(QUILLET_SANITIZE)
        set(longest 600) # a test of many processes comes near the other one, and the machine may have other work
    endif()
    gtest_discover_tests(${target}
        TEST_PREFIX "${folder}/"
        DISCOVERY_TIMEOUT 120
        PROPERTIES LABELS ${folder} TIMEOUT ${longest})
endfunction()

# quillet_script_test(<folder>/<test> <script> [<argument>...])
#
# The folder's script, with the arguments, as a ctest test with the folder's name as its label.
function(quillet_script_test test script)
    cmake_path(GET test PARENT_PATH folder)
    add_test(NAME ${test} COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/${script}" ${ARGN})
    set_tests_properties(${test} PROPERTIES LABELS ${folder} TIMEOUT 300)
endfunction()

# quillet_check_target_names(<directory>)
#
# Fails if the name of a target in the directory, or in one below it, does not begin with quillet. A project that
# includes this one has targets of its own.
function(quillet_check_target_names directory)
    get_property(targets DIRECTORY "${directory}" PROPERTY BUILDSYSTEM_TARGETS)
    list(FILTER targets EXCLUDE REGEX "^quillet")
    if(targets)
        message(FATAL_ERROR "The names of these targets do not begin with quillet: ${targets}")
    endif()
    get_property(subdirectories DIRECTORY "${directory}" PROPERTY SUBDIRECTORIES)
    foreach(subdirectory IN LISTS subdirectories)
        quillet_check_target_names("${subdirectory}")
    endforeach()
endfunction()

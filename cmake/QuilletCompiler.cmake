# SPDX-License-Identifier: Apache-2.0
# How everything in this tree is compiled.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

find_program(QUILLET_CCACHE ccache DOC "Compiler cache, used when found")
if(QUILLET_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # It serves what is compiled with a precompiled header only where it may overlook that header's date and macros. The
    # tests are most of a build.
    set(CMAKE_CXX_COMPILER_LAUNCHER env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${QUILLET_CCACHE}")
endif()

# All targets of this project link to this. It is not installed, so it does not bind consumers.
add_library(quillet_build_options INTERFACE)

# A GNU-unique symbol pins its library in memory: libquillet.so must leave the process on dlclose.
target_compile_options(quillet_build_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# A library's own calls go where they go: nothing replaces its functions, so that the compiler may inline them and the
# linker need not leave them to be looked up by name. A debug build is compiled faster without.
target_compile_options(quillet_build_options INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-fno-semantic-interposition>)
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT QUILLET_SANITIZE)
    target_link_options(quillet_build_options INTERFACE LINKER:-Bsymbolic-functions)
endif()

# Half of a library's relocations only add where it was loaded: written as a bitmap they take a few hundred bytes.
include(CheckLinkerFlag)
check_linker_flag(CXX LINKER:-z,pack-relative-relocs QUILLET_PACKS_RELOCATIONS)
if(QUILLET_PACKS_RELOCATIONS)
    target_link_options(quillet_build_options INTERFACE LINKER:-z,pack-relative-relocs)
elseif(QUILLET_REQUIRE_ALL)
    message(FATAL_ERROR "The linker does not pack relocations, and QUILLET_REQUIRE_ALL wants everything")
endif()

# What is shipped notices a part of its own memory errors and makes the others hard to use: overflown buffers, jumps to where
# no function begins, a stack that grows over its guard, tables of functions that are written to. tests/package/hardening
# reads each of these in the built files.
if(QUILLET_HARDENING AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT QUILLET_SANITIZE)
    include(CheckCXXCompilerFlag)
    include(CheckPIESupported)
    check_pie_supported()
    foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "QUILLET_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known})
        if(${known})
            target_compile_options(quillet_build_options INTERFACE ${flag})
        elseif(QUILLET_REQUIRE_ALL)
            message(FATAL_ERROR "The compiler does not know ${flag}, and QUILLET_REQUIRE_ALL wants everything")
        endif()
    endforeach()
    # The checked functions of the C library need an optimising compiler, and one level of them, whoever set another.
    target_compile_options(quillet_build_options INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    target_link_options(quillet_build_options INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()

# The same sources give the same bytes, wherever they lie. A debug build names the real files, for the debugger.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_options(quillet_build_options INTERFACE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
endif()

if(QUILLET_WARNINGS)
    target_compile_options(quillet_build_options INTERFACE
        -Wall -Wextra -Wpedantic
        -Wcast-align -Wcast-qual -Wconversion -Wextra-semi -Wformat=2 -Wnon-virtual-dtor -Wold-style-cast
        -Woverloaded-virtual -Wshadow -Wsign-conversion -Wswitch-enum -Wundef -Wunused
        $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op -Wsuggest-override>)
endif()
if(QUILLET_WERROR)
    target_compile_options(quillet_build_options INTERFACE -Werror)
endif()

if(QUILLET_SANITIZE)
    set(quillet_sanitizer_flags -fsanitize=${QUILLET_SANITIZE} -fno-sanitize-recover=all)
    target_compile_options(quillet_build_options INTERFACE ${quillet_sanitizer_flags} -fno-omit-frame-pointer)
    target_link_options(quillet_build_options INTERFACE ${quillet_sanitizer_flags})
    # The thread sanitizer does not understand fences; Asio's queues are guarded by locks besides.
    if(QUILLET_SANITIZE MATCHES thread)
        target_compile_definitions(quillet_build_options INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
    endif()
endif()

# The targets' own programs are linked to the fuzzer; everything else only counts where it has been.
if(QUILLET_BUILD_FUZZERS)
    target_compile_options(quillet_build_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

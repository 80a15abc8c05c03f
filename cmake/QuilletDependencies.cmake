# SPDX-License-Identifier: Apache-2.0
# What is found on the system. Nothing is downloaded.

# The oldest versions that are supported: here, and for the reader in docs/dependencies.md, which a test compares.
set(quillet_least_Boost 1.72)
set(quillet_least_JsonCpp 1.9)
set(quillet_least_log4cplus 2.0)
set(quillet_least_SQLite3 3.39)
set(quillet_least_CLI11 2.1)
set(quillet_least_libedit 3.1)
set(quillet_least_libsystemd 247)
set(quillet_least_GoogleTest 1.12)
set(quillet_least_Benchmark 1.7)

find_package(Boost ${quillet_least_Boost} REQUIRED COMPONENTS filesystem)
find_package(jsoncpp ${quillet_least_JsonCpp} REQUIRED)
find_package(log4cplus ${quillet_least_log4cplus} REQUIRED)
find_package(SQLite3 ${quillet_least_SQLite3} REQUIRED)
find_package(Threads REQUIRED)

if(QUILLET_BUILD_PROGRAMS)
    find_package(CLI11 ${quillet_least_CLI11} REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(libsystemd REQUIRED IMPORTED_TARGET libsystemd>=${quillet_least_libsystemd})
    pkg_check_modules(libedit REQUIRED IMPORTED_TARGET libedit>=${quillet_least_libedit})
endif()

if(QUILLET_BUILD_TESTS)
    find_package(GTest ${quillet_least_GoogleTest} REQUIRED)
    find_package(rapidcheck REQUIRED)
endif()

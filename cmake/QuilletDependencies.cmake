# SPDX-License-Identifier: Apache-2.0
# What is found on the system. Nothing is downloaded. The versions are the oldest that are supported.

find_package(Boost 1.72 REQUIRED COMPONENTS filesystem)
find_package(jsoncpp 1.9 REQUIRED)
find_package(log4cplus 2.0 REQUIRED)
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto)
find_package(Threads REQUIRED)

if(QUILLET_BUILD_PROGRAMS)
    find_package(CLI11 2.1 REQUIRED)
endif()

if(QUILLET_BUILD_TESTS)
    find_package(GTest 1.12 REQUIRED)
endif()

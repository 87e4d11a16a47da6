# SPDX-License-Identifier: MIT
# What the tests link: GoogleTest from its sources, and exact numbers by Boost instead of GMP.
add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
file(CREATE_LINK /usr/include/boost ${CMAKE_BINARY_DIR}/headers/boost SYMBOLIC)
add_library(gmp INTERFACE)
add_library(gmpxx INTERFACE)
target_include_directories(gmpxx SYSTEM INTERFACE
	${CMAKE_CURRENT_LIST_DIR}/include ${CMAKE_BINARY_DIR}/headers)

# SPDX-License-Identifier: MIT
# The headers of CLI11 of this machine, and no others from their folder.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
file(CREATE_LINK /usr/include/CLI ${CMAKE_BINARY_DIR}/headers/CLI SYMBOLIC)
if(NOT TARGET CLI11::CLI11)
	add_library(CLI11::CLI11 INTERFACE IMPORTED)
	target_include_directories(CLI11::CLI11 INTERFACE ${CMAKE_BINARY_DIR}/headers)
endif()

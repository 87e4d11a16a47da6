# SPDX-License-Identifier: MIT
# For Windows from Debian: the package g++-mingw-w64-x86-64-posix builds, wine64 runs. The tests also
# take googletest (sources), libboost-dev and libcli11-dev; the last two are only headers, so those of
# this machine serve.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix) # for GoogleTest
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The stack of 64-bit Windows is aligned to 16 bytes, and this compiler spills 32-byte vectors onto it
# with moves that want 32. The assembler turns those into moves that take any address.
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")

# A program finds a library beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# What find_package is to find.
set(CLI11_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(GTest_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(GMP_INCLUDE_DIR ${CMAKE_CURRENT_LIST_DIR}/include CACHE PATH "")

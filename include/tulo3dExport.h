// SPDX-License-Identifier: MIT
// TULO3D_API marks what the shared library shows to its host; everything else stays inside.
#pragma once

/// @file
/// What the shared library shows.

/// @def TULO3D_API
/// Marks what the shared library shows to its host; everything else stays inside. On Windows a host
/// that links the static library has to define `TULO3D_STATIC`; the CMake target does so.

#if defined(TULO3D_STATIC)
#  define TULO3D_API
#elif defined(_WIN32)
#  if defined(TULO3D_BUILDING)
#	define TULO3D_API __declspec(dllexport)
#  else
#	define TULO3D_API __declspec(dllimport)
#  endif
#elif defined(__GNUC__)
#  define TULO3D_API __attribute__((visibility("default")))
#else
#  define TULO3D_API
#endif

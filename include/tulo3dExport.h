// SPDX-License-Identifier: MIT
// TULO3D_API marks what the shared library shows to its host; everything else stays inside.
#pragma once

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

// SPDX-License-Identifier: MIT
// Functions that must become part of their caller.
#pragma once

// A kernel is compiled once for each instruction set, by inlining it into one function for each of them;
// its parts must therefore never be compiled as functions of their own.
#if defined(__GNUC__)
#  pragma GCC diagnostic ignored "-Wpsabi" // so no vector type ever crosses a real call, either
#  define TULO3D_ALWAYS_INLINE inline __attribute__((always_inline))
#  define TULO3D_INLINE_LAMBDA __attribute__((always_inline)) // behind its parameters
#else
#  define TULO3D_ALWAYS_INLINE inline
#  define TULO3D_INLINE_LAMBDA
#endif

// A function for CPUs that have AVX2; its callers must ask cpuHasAvx2.
#if defined(__GNUC__) && defined(__x86_64__)
#  define TULO3D_AVX2 __attribute__((target("avx2"), noinline))
#else
#  define TULO3D_AVX2
#endif

namespace TULO3D {

inline bool cpuHasAvx2()
{
#if defined(__GNUC__) && defined(__x86_64__)
	return __builtin_cpu_supports("avx2") != 0;
#else
	return false;
#endif
}

} // namespace TULO3D

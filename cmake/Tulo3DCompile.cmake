# SPDX-License-Identifier: MIT
# How our own targets are compiled. Nothing of it reaches a project that links the library.

# Needed by everything that includes the predicates or their tests: library, tests, benchmarks.
function(tulo3d_compile_options target)
	target_compile_features(${target} PRIVATE cxx_std_17)
	set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)

	if(MSVC)
		target_compile_options(${target} PRIVATE /fp:precise /utf-8)
		if(TULO3D_WARNINGS)
			target_compile_options(${target} PRIVATE /W4)
		endif()
		return()
	endif()

	# A product fused with a sum is rounded once instead of twice, and the error terms of the exact
	# arithmetic would belong to another sum. Sums in another order have no error terms at all; where
	# they are allowed, compilers also link what makes the whole process flush small numbers to zero.
	target_compile_options(${target} PRIVATE -ffp-contract=off -fno-unsafe-math-optimizations)
	target_link_options(${target} PRIVATE -fno-unsafe-math-optimizations)

	# The paths that failed checks print are those of the source tree, not of one machine.
	target_compile_options(${target} PRIVATE "-fmacro-prefix-map=${Tulo3D_SOURCE_DIR}/=")

	if(TULO3D_ASSERTS)
		target_compile_options(${target} PRIVATE -UNDEBUG)
	endif()
	if(TULO3D_WARNINGS)
		target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
	endif()
endfunction()

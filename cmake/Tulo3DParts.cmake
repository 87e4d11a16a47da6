# SPDX-License-Identifier: MIT
# Parts that need packages which the library does without. AUTO, the default, builds a part where its
# packages are installed and otherwise leaves it out with a line that names them; ON insists.

set(tulo3dDebianName_CLI11 libcli11-dev)
set(tulo3dDebianName_GTest libgtest-dev)
set(tulo3dDebianName_GMP libgmp-dev)

function(tulo3d_leave_out name missing)
	message(STATUS "Left out: ${name} (Debian packages missing: ${missing})")
endfunction()

# Decides on a part, its name as it reads in a sentence, from the packages that it needs: the variable
# `option` becomes ON or OFF, what the user chose stays in the cache.
function(tulo3d_part option name)
	list(JOIN ARGN " and " needs)
	set(default OFF) # as part of another project the library stays alone
	if(PROJECT_IS_TOP_LEVEL)
		set(default AUTO)
	endif()
	set(${option} ${default} CACHE STRING "Build ${name}: ON, OFF, or AUTO (where there is ${needs})")
	set_property(CACHE ${option} PROPERTY STRINGS AUTO ON OFF)
	if(NOT ${option})
		set(${option} OFF PARENT_SCOPE)
		return()
	endif()

	foreach(package IN LISTS ARGN)
		if(package STREQUAL GMP) # has no package for CMake
			find_path(GMP_INCLUDE_DIR gmpxx.h)
			set(GMP_FOUND ${GMP_INCLUDE_DIR})
		else()
			find_package(${package} QUIET)
		endif()
		if(NOT ${package}_FOUND)
			list(APPEND missing ${tulo3dDebianName_${package}})
		endif()
	endforeach()
	list(JOIN missing ", " missing)

	if(NOT missing)
		set(${option} ON PARENT_SCOPE)
	elseif(${option} STREQUAL AUTO)
		tulo3d_leave_out("${name}" "${missing}")
		set(${option} OFF PARENT_SCOPE)
	else()
		message(FATAL_ERROR "${option} asks for ${name} (Debian packages missing: ${missing})")
	endif()
endfunction()

# SPDX-License-Identifier: MIT
# Release unless somebody asks for something else: a mesh library without optimisation misleads.
get_property(isMultiConfig GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT isMultiConfig AND NOT CMAKE_BUILD_TYPE)
	set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Debug, RelWithDebInfo or MinSizeRel" FORCE)
endif()

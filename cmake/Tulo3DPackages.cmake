# SPDX-License-Identifier: MIT
# Debian packages by CPack: the library, what one needs to develop with it, and the program. The
# folders are those of a build for /usr, as the preset `package` configures it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tulo3d)
set(CPACK_PACKAGE_VENDOR "The Tulo3D authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "exact 3D Delaunay tetrahedralization")
# The project has no address of its own; who makes packages for others has one.
set(TULO3D_PACKAGE_CONTACT "The Tulo3D authors <>" CACHE STRING
	"The maintainer of the Debian packages: Name <address>")
set(CPACK_PACKAGE_CONTACT ${TULO3D_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DIRECTORY ${Tulo3D_BINARY_DIR})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${Tulo3D_BINARY_DIR}/dt3Library)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# What Debian wants in place of calls of ldconfig.
file(WRITE ${Tulo3D_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${Tulo3D_BINARY_DIR}/triggers)

# The changelog that every Debian package brings.
set(changelog ${Tulo3D_BINARY_DIR}/changelog.Debian)
string(TIMESTAMP today "%a, %d %b %Y 00:00:00 +0000" UTC)
file(WRITE ${changelog} "tulo3d (${Tulo3D_VERSION}-1) unstable; urgency=medium

  * Version ${Tulo3D_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${today}
")
execute_process(COMMAND ${GZIP} -9nf ${changelog} COMMAND_ERROR_IS_FATAL ANY)

# Further arguments are remarks of lintian that are right and yet no fault here.
function(tulo3d_package component package section contents)
	string(TOUPPER ${component} key)
	set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package} PARENT_SCOPE)
	set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
	set(CPACK_COMPONENT_${key}_DESCRIPTION
"Tulo3D computes the Delaunay tetrahedralization of points in space, one
point at a time or in batches. Its geometric decisions are exact: coplanar,
cospherical and duplicate points are handled like any others.
.
This package contains ${contents}." PARENT_SCOPE)

	set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
	install(FILES ${Tulo3D_SOURCE_DIR}/LICENSE DESTINATION ${documents} RENAME copyright
		COMPONENT ${component})
	install(FILES ${changelog}.gz DESTINATION ${documents} COMPONENT ${component})

	set(overrides "# Made by the project itself: Debian's list of bugs knows nothing of it.\n")
	string(APPEND overrides "initial-upload-closes-no-bugs\n" ${ARGN})
	if(CPACK_PACKAGE_CONTACT MATCHES "<>")
		string(APPEND overrides "# A maintainer without an address.\n"
			"malformed-contact\nbogus-mail-host-in-debian-changelog\n")
	endif()
	file(WRITE ${Tulo3D_BINARY_DIR}/overrides/${package} "${overrides}")
	install(FILES ${Tulo3D_BINARY_DIR}/overrides/${package}
		DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides COMPONENT ${component})
endfunction()

tulo3d_package(Runtime libtulo3d${Tulo3D_VERSION_MAJOR} libs "the shared library"
	"# CPack writes these calls and has no switch for them. Beside the trigger they do no harm.\n"
	"maintscript-calls-ldconfig\n")
tulo3d_package(Development libtulo3d-dev libdevel
	"the headers, the static library, the files\nfor CMake and pkg-config, the guide and its examples")
tulo3d_package(Tool tulo3d science "the program, which triangulates a file of points")

# The guide and what it refers to, in the folders that its links name.
set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/libtulo3d-dev)
install(DIRECTORY ${Tulo3D_SOURCE_DIR}/docs DESTINATION ${documents} COMPONENT Development
	FILES_MATCHING PATTERN *.md PATTERN *.svg PATTERN *.png PATTERN gallery EXCLUDE)
install(DIRECTORY ${Tulo3D_SOURCE_DIR}/examples DESTINATION ${documents} COMPONENT Development
	FILES_MATCHING PATTERN *.cpp PATTERN *.h)

set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)
set(CPACK_COMPONENT_TOOL_DEPENDS Runtime)
set(CPACK_COMPONENTS_ALL Runtime Development Tool)

include(CPack)

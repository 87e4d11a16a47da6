# SPDX-License-Identifier: MIT
# What `cmake --install` puts where, in the components Runtime, Development and Tool. The package
# files find the library relative to themselves, so an installed tree can be moved as a whole.
include(CMakePackageConfigHelpers)

set(headerFolder ${CMAKE_INSTALL_INCLUDEDIR}/Tulo3D)
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/Tulo3D)

install(TARGETS Tulo3D EXPORT Tulo3DTargets
	RUNTIME COMPONENT Runtime
	LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
	ARCHIVE COMPONENT Development
)
install(DIRECTORY ${Tulo3D_SOURCE_DIR}/include/ DESTINATION ${headerFolder}
	COMPONENT Development FILES_MATCHING PATTERN *.h)
install(EXPORT Tulo3DTargets NAMESPACE Tulo3D::
	DESTINATION ${packageFolder} COMPONENT Development)

if(TULO3D_BUILD_STATIC)
	install(TARGETS tulo3d_static EXPORT Tulo3DStaticTargets
		ARCHIVE COMPONENT Development)
	install(EXPORT Tulo3DStaticTargets NAMESPACE Tulo3D::
		DESTINATION ${packageFolder} COMPONENT Development)
endif()

install(TARGETS tulo3d_shapes EXPORT Tulo3DShapesTargets
	ARCHIVE COMPONENT Development
)
install(DIRECTORY ${Tulo3D_SOURCE_DIR}/shapes/include/ DESTINATION ${headerFolder}
	COMPONENT Development FILES_MATCHING PATTERN *.h)
install(EXPORT Tulo3DShapesTargets NAMESPACE Tulo3D::
	DESTINATION ${packageFolder} COMPONENT Development)

configure_package_config_file(
	${CMAKE_CURRENT_LIST_DIR}/Tulo3DConfig.cmake.in ${Tulo3D_BINARY_DIR}/Tulo3DConfig.cmake
	INSTALL_DESTINATION ${packageFolder}
	NO_SET_AND_CHECK_MACRO
)
# Before version 1 a new second number may change the interface.
write_basic_package_version_file(${Tulo3D_BINARY_DIR}/Tulo3DConfigVersion.cmake
	COMPATIBILITY SameMinorVersion)
install(FILES
	${Tulo3D_BINARY_DIR}/Tulo3DConfig.cmake ${Tulo3D_BINARY_DIR}/Tulo3DConfigVersion.cmake
	DESTINATION ${packageFolder} COMPONENT Development)

# pkg-config: relative to the .pc file where the folders are relative, as given where they are
# absolute.
set(pcFolder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
	set(pcPrefix ${CMAKE_INSTALL_PREFIX})
	set(pcLibFolder ${CMAKE_INSTALL_LIBDIR})
else()
	file(RELATIVE_PATH pcToPrefix /${pcFolder} /)
	string(REGEX REPLACE "/$" "" pcToPrefix ${pcToPrefix})
	set(pcPrefix "\${pcfiledir}/${pcToPrefix}")
	set(pcLibFolder "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
	set(pcIncludeFolder ${headerFolder})
else()
	set(pcIncludeFolder "\${prefix}/${headerFolder}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/Tulo3D.pc.in ${Tulo3D_BINARY_DIR}/Tulo3D.pc @ONLY)
install(FILES ${Tulo3D_BINARY_DIR}/Tulo3D.pc DESTINATION ${pcFolder} COMPONENT Development)

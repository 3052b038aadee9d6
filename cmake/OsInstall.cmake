# What `cmake --install` puts down: the library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS VantorOS EXPORT VantorOSTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor-os COMPONENT dev)
install(DIRECTORY Shaders/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vantor/Shaders COMPONENT runtime)
install(EXPORT VantorOSTargets NAMESPACE VantorOS:: COMPONENT dev
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VantorOS)
configure_package_config_file(cmake/VantorOSConfig.cmake.in VantorOSConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VantorOS)
write_basic_package_version_file(VantorOSConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/vantor-os.pc.in vantor-os.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VantorOSConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VantorOSConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VantorOS COMPONENT dev)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vantor-os.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "the maintainers <maintainers@localhost>")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvantoros0)
# Loaded where they are installed: for movies of the screen, of the version that the headers were of; for MIDI by a server.
string(REGEX MATCH "^[0-9]+" movies_version "${OsMovies_libavdevice_VERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "libavdevice${movies_version}, libjack-jackd2-0 | libjack-0.125")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libvantoros-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libvantoros0 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vantoros-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libvantoros0 (= ${PROJECT_VERSION})")
include(CPack)

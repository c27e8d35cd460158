# Where the library, its header and its descriptions for other build systems go. The components are
# the packages of a distribution: Runtime, Development, Tools.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tavu)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Development)

set_target_properties(tavu PROPERTIES PUBLIC_HEADER include/tavu.h)
install(TARGETS tavu tavu_static EXPORT tavu-targets
  LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
  PUBLIC_HEADER)
install(TARGETS tavu_archive)
install(EXPORT tavu-targets NAMESPACE tavu:: FILE tavu-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(tavu-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tavu-config-version.cmake DESTINATION ${package_dir})

file(RELATIVE_PATH TAVU_PREFIX_FROM_PC
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(tavu.pc.in tavu.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tavu.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

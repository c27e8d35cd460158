# Where the library, its header and its descriptions for other build systems go. The components are
# the packages of a distribution: Runtime, Development, Tools.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tavu)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Development)

install(FILES include/tavu.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TAVU_SHARED)
  install(TARGETS tavu EXPORT tavu-shared
    LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development)
  install(EXPORT tavu-shared NAMESPACE tavu:: DESTINATION ${package_dir})
endif()
if(TAVU_STATIC)
  install(TARGETS tavu_archive)
  install(TARGETS tavu_static EXPORT tavu-static)
  install(EXPORT tavu-static NAMESPACE tavu:: DESTINATION ${package_dir})
endif()

configure_package_config_file(cmake/tavu-config.cmake.in tavu-config.cmake
  INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(tavu-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/tavu-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/tavu-config-version.cmake
  DESTINATION ${package_dir})

file(RELATIVE_PATH TAVU_PREFIX_FROM_PC
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(tavu.pc.in tavu.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tavu.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

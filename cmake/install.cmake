# Where the library, its header and its descriptions for other build systems go.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set_target_properties(tavu PROPERTIES PUBLIC_HEADER include/tavu.h)
foreach(library tavu tavu_static)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
set_target_properties(tavu_static PROPERTIES EXPORT_NAME static)

install(TARGETS tavu tavu_static EXPORT tavu-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT tavu-targets NAMESPACE tavu:: FILE tavu-config.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tavu)
write_basic_package_version_file(tavu-config-version.cmake COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH TAVU_PREFIX_FROM_PC
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(tavu.pc.in tavu.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tavu-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tavu)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tavu.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

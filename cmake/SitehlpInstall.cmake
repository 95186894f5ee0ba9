# What `cmake --install` puts in place: libraries, headers, the CMake package, the pkg-config file and
# the tool. The installed tree may be moved as a whole.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/sitehlp)

if(APPLE)
  set(origin @loader_path)
else()
  set(origin $ORIGIN)
endif()
file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(sitehlp sitehlp-host PROPERTIES INSTALL_RPATH ${origin})
set_target_properties(sitehlp-host PROPERTIES EXPORT_NAME host)

install(
  TARGETS sitehlp sitehlp-host
  EXPORT sitehlpTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET sitelist)
  set_target_properties(sitelist PROPERTIES INSTALL_RPATH ${origin}/${bin_to_lib})
  install(TARGETS sitelist RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# All of platform/ is for everybody; of the other folders, the headers listed.
install(
  DIRECTORY platform
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING
  PATTERN *.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/installed-headers.txt)
file(STRINGS cmake/installed-headers.txt installed_headers)
foreach(header IN LISTS installed_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

install(
  EXPORT sitehlpTargets
  NAMESPACE sitehlp::
  DESTINATION ${package_dir})
configure_package_config_file(cmake/sitehlpConfig.cmake.in sitehlpConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(sitehlpConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/sitehlpConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/sitehlpConfigVersion.cmake DESTINATION ${package_dir})

file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/sitehlp.pc.in sitehlp.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/sitehlp.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

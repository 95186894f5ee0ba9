# The installation of `cmake --install`. It has five components: runtime (libsitehlp), host
# (libsitehlp-host), development (headers, links to the libraries, CMake package, pkg-config file),
# tool and documentation. The installed tree can be moved.
include(CMakePackageConfigHelpers)

if(PROJECT_IS_TOP_LEVEL)
  set(doc_dir ${CMAKE_INSTALL_DOCDIR})
else() # CMAKE_INSTALL_DOCDIR has the name of the enclosing project
  set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/sitehlp)
endif()
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
  TARGETS sitehlp
  EXPORT sitehlpTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT runtime
          NAMELINK_COMPONENT development)
install(
  TARGETS sitehlp-host
  EXPORT sitehlpTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT host
          NAMELINK_COMPONENT development)
if(TARGET sitelist)
  set_target_properties(sitelist PROPERTIES INSTALL_RPATH ${origin}/${bin_to_lib})
  install(TARGETS sitelist RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  set(probe_dir ${CMAKE_INSTALL_LIBEXECDIR}/sitelist)
  file(RELATIVE_PATH probe_to_lib ${CMAKE_INSTALL_FULL_LIBEXECDIR}/sitelist
       ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(sitelist-probe PROPERTIES INSTALL_RPATH ${origin}/${probe_to_lib})
  install(TARGETS sitelist-probe RUNTIME DESTINATION ${probe_dir} COMPONENT tool)
  set(generated ${PROJECT_BINARY_DIR}/generated)
  install(
    FILES ${generated}/sitelist.schema.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/sitehlp
    COMPONENT tool)
  install(
    FILES ${generated}/man/sitelist.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT tool)
  install(
    FILES ${generated}/man/sitelist.json.5 ${generated}/man/agent.toml.5
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man5
    COMPONENT tool)
  install(
    FILES tools/sitelist/completion/sitelist.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME sitelist
    COMPONENT tool)
  install(
    FILES tools/sitelist/completion/_sitelist
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    COMPONENT tool)
  install(
    FILES tools/sitelist/completion/sitelist.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT tool)
endif()

# All headers of platform/, the listed headers of the other folders, and the generated header.
install(
  DIRECTORY platform
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development
  FILES_MATCHING
  PATTERN *.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/installed-headers.txt)
file(STRINGS cmake/installed-headers.txt installed_headers)
foreach(header IN LISTS installed_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(
    FILES ${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
    COMPONENT development)
endforeach()
install(
  FILES ${PROJECT_BINARY_DIR}/sitehlp/include/sitehlp/vendor_hosts.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/sitehlp
  COMPONENT development)

install(
  EXPORT sitehlpTargets
  NAMESPACE sitehlp::
  DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(cmake/sitehlpConfig.cmake.in sitehlpConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatible SameMinorVersion)
else()
  set(compatible SameMajorVersion)
endif()
write_basic_package_version_file(sitehlpConfigVersion.cmake COMPATIBILITY ${compatible})
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/sitehlpConfig.cmake
        ${CMAKE_CURRENT_BINARY_DIR}/sitehlpConfigVersion.cmake
  DESTINATION ${package_dir}
  COMPONENT development)

file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/sitehlp.pc.in sitehlp.pc @ONLY)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/sitehlp.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

# Keeps the folders of the source tree, so that the links between documents work.
install(
  FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
  DESTINATION ${doc_dir}
  COMPONENT documentation)
install(
  DIRECTORY docs examples
  DESTINATION ${doc_dir}
  COMPONENT documentation
  PATTERN *.in EXCLUDE)

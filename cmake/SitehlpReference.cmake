# The target `reference`: HTML pages of the public headers in reference/html of the build directory.
find_program(SITEHLP_DOXYGEN doxygen)
mark_as_advanced(SITEHLP_DOXYGEN)
if(NOT SITEHLP_DOXYGEN)
  message(STATUS "No target reference: Doxygen is not installed")
  return()
endif()

set(reference_dir ${CMAKE_CURRENT_BINARY_DIR}/reference)
file(STRINGS cmake/installed-headers.txt reference_input)
list(APPEND reference_input platform docs/reference.md docs/versioning.md docs/site-list-format.md
     docs/guide-first-import.md docs/guide-another-platform.md docs/glossary.md)
list(TRANSFORM reference_input PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
list(APPEND reference_input ${PROJECT_BINARY_DIR}/sitehlp/include/sitehlp/vendor_hosts.h)
list(TRANSFORM reference_input REPLACE "(.+)" "\"\\1\"")
list(JOIN reference_input " \\\n                         " reference_input)
configure_file(docs/Doxyfile.in reference/Doxyfile @ONLY)

add_custom_target(
  reference
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference_dir}/html
  COMMAND ${SITEHLP_DOXYGEN} ${reference_dir}/Doxyfile
  COMMENT "Reference of the public headers"
  VERBATIM)
install(
  DIRECTORY ${reference_dir}/html/
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference
  COMPONENT documentation
  OPTIONAL)

# Debian packages by CPack, one for each component of the installation. scripts/package makes them.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sitehlp)
set(CPACK_PACKAGE_VENDOR "sitehlp developers")
set(CPACK_PACKAGE_CONTACT "sitehlp developers <sitehlp@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime host development tool documentation)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/stage.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/finish.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE sitehlp)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip) # finish.cmake compresses them for good
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Our own packages, by their very version; what they need of others is found out by dpkg-shlibdeps.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(runtime_package libsitehlp${SITEHLP_ABI})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DEPENDS host)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "library that owns an endpoint agent's site list
The site list names every place that an endpoint management agent talks to:
its management server, repositories, other agents, all perhaps through a
proxy. This library reads and writes it for every process of the agent, and
merges, checks, imports, installs and edits lists.")

set(CPACK_DEBIAN_HOST_PACKAGE_NAME libsitehlp-host${SITEHLP_ABI})
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_HOST_DESCRIPTION
    "platform for the site list library without the agent
Files, logs, settings, locks between processes, XML documents and the crypto
service that ${runtime_package} needs, for machines on which the agent's own
libraries are not installed.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsitehlp-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime host)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS sitehlp-doc)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "development files of the site list library
Headers, the links for the linker, the CMake package sitehlp and the
pkg-config file of ${runtime_package}.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME sitelist)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION admin)
set(CPACK_COMPONENT_TOOL_DEPENDS runtime host)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS sitehlp-doc)
set(CPACK_COMPONENT_TOOL_DESCRIPTION
    "show, check and change the site list of an endpoint agent
Tells which management servers, repositories and proxies an endpoint will
use and in which order, compares and checks site lists, imports them with
their key files, and edits them. Prints tables, JSON, CSV and XML; masks
passwords.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME sitehlp-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION
    "documentation of the site list library and its tool
Guides, the format of the document, the threat model, the reference of the
headers, and example lists with their key files.")

# What the scripts need to know: who is the same for every architecture, who may stand beside itself.
set(CPACK_SITEHLP_MULTI_ARCH "same;${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}"
    "same;${CPACK_DEBIAN_HOST_PACKAGE_NAME}" "same;libsitehlp-dev" "foreign;sitelist"
    "foreign;sitehlp-doc")
set(CPACK_SITEHLP_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
include(CPack)

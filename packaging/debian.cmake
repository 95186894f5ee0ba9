# Debian packages from CPack, one for each component of the installation. scripts/package builds them.
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
# The packages depend on each other with the same version. dpkg-shlibdeps finds all other dependencies.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(runtime_package libsitehlp${SITEHLP_ABI})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DEPENDS host)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "library for the site list of an endpoint agent
A site list is an XML document. It tells the agent of an endpoint which
management server, repositories and proxy to use. This library reads, writes,
merges, checks, imports, installs and edits site lists for every process of
the agent.")

set(CPACK_DEBIAN_HOST_PACKAGE_NAME libsitehlp-host${SITEHLP_ABI})
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_HOST_DESCRIPTION
    "platform for the site list library without the agent
This library implements everything that ${runtime_package} needs from the agent:
files, logs, settings, locks between processes, XML documents and the crypto
service. It is for machines without the agent's own libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsitehlp-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime host)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS sitehlp-doc)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "development files of the site list library
This package contains the headers, the links for the linker, the CMake package
sitehlp and the pkg-config file of ${runtime_package}.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME sitelist)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION admin)
set(CPACK_COMPONENT_TOOL_DEPENDS runtime host)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS sitehlp-doc)
set(CPACK_COMPONENT_TOOL_DESCRIPTION
    "show, check and change the site list of an endpoint agent
This tool shows which management servers, repositories and proxies an endpoint
uses, and in which order. It compares, checks, imports and edits site lists.
It prints tables, JSON, CSV and XML, and it masks passwords.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME sitehlp-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION
    "documentation of the site list library and its tool
This package contains guides, the format of the document, the threat model, the
reference of the headers, and example lists with their key files.")

# Settings for the scripts: the Multi-Arch value of each package.
set(CPACK_SITEHLP_MULTI_ARCH "same;${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}"
    "same;${CPACK_DEBIAN_HOST_PACKAGE_NAME}" "same;libsitehlp-dev" "foreign;sitelist"
    "foreign;sitehlp-doc")
set(CPACK_SITEHLP_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
include(CPack)

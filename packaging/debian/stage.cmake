# CPack runs this on the files of each package before it builds the package.
cmake_policy(VERSION 3.25)

if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  string(TIMESTAMP now "%s" UTC)
  set(ENV{SOURCE_DATE_EPOCH} ${now})
endif()
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component})
  string(TOUPPER ${component} name)
  set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})

  # Programs in /usr need no search path for libraries, and a package must not have one.
  file(GLOB binaries ${root}/usr/bin/* ${root}/usr/libexec/sitelist/* ${root}/usr/lib/*.so.* ${root}/usr/lib/*/*.so.*)
  foreach(binary IN LISTS binaries)
    if(NOT IS_SYMLINK ${binary})
      file(RPATH_REMOVE FILE ${binary})
    endif()
  endforeach()

  # Debian's zsh has a separate directory for the completions of packages.
  if(EXISTS ${root}/usr/share/zsh/site-functions)
    file(RENAME ${root}/usr/share/zsh/site-functions ${root}/usr/share/zsh/vendor-completions)
  endif()

  set(doc ${root}/usr/share/doc/${package})
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${doc})
  file(WRITE ${doc}/changelog.Debian
       "sitehlp (${CPACK_SITEHLP_VERSION}) unstable; urgency=medium\n\n"
       "  * See CHANGELOG.md in /usr/share/doc/sitehlp of sitehlp-doc.\n\n"
       " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  file(REMOVE ${root}/usr/share/doc/sitehlp/LICENSE) # it is in every Debian system

  file(GLOB_RECURSE compressed ${root}/usr/share/man/* ${doc}/changelog.Debian)
  list(FILTER compressed EXCLUDE REGEX "\\.gz$")
  if(compressed)
    execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()

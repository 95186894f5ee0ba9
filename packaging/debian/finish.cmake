# CPack runs this on its packages. It adds what CPack does not support.
cmake_policy(VERSION 3.25)

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  get_filename_component(name ${package} NAME)
  string(REGEX REPLACE "_.*" "" name ${name})
  list(FIND CPACK_SITEHLP_MULTI_ARCH ${name} at)
  math(EXPR before "${at} - 1")
  list(GET CPACK_SITEHLP_MULTI_ARCH ${before} multi_arch)

  set(root ${package}.tree)
  file(REMOVE_RECURSE ${root})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${root} COMMAND_ERROR_IS_FATAL ANY)
  file(READ ${root}/DEBIAN/control control)
  string(REGEX REPLACE "\n(Section: [^\n]*)\n" "\n\\1\nMulti-Arch: ${multi_arch}\n" control "${control}")
  file(WRITE ${root}/DEBIAN/control "${control}")
  # CPack's scripts call ldconfig. A trigger does this once for all packages.
  file(REMOVE ${root}/DEBIAN/postinst ${root}/DEBIAN/postrm)
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${root} ${package}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${root})
endforeach()

# The language level, warnings and sanitizers of every target.
function(sitehlp_target_defaults target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON)
  target_compile_options(
    ${target}
    PRIVATE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wno-sign-conversion
            -Wnon-virtual-dtor
            $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
            $<$<BOOL:${SITEHLP_WARNINGS_AS_ERRORS}>:-Werror>)
  if(SITEHLP_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${SITEHLP_SANITIZE}
                                             -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${SITEHLP_SANITIZE})
    if(SITEHLP_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # Some tests have their own operator new. clang++ would link the operator new of the
      # sanitizer, which takes precedence. In gcc mode the driver links neither it nor the C++
      # libraries, so the libraries are named here.
      target_link_options(${target} PRIVATE --driver-mode=gcc -lstdc++ -lm)
    endif()
  endif()
endfunction()

# Exports only the symbols that match the patterns in the file. Hidden visibility alone would still
# export instantiations of the standard library's templates.
function(sitehlp_export_only target patterns_file)
  file(STRINGS ${patterns_file} patterns)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${patterns_file})
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.exports)
  if(APPLE)
    list(TRANSFORM patterns PREPEND _)
    list(JOIN patterns "\n" text)
    set(option -exported_symbols_list)
  else()
    list(JOIN patterns "; " globals)
    set(text "{ global: ${globals}; local: *; };")
    set(option --version-script)
  endif()
  file(CONFIGURE OUTPUT ${script} CONTENT "${text}\n" @ONLY)
  target_link_options(${target} PRIVATE LINKER:${option},${script})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

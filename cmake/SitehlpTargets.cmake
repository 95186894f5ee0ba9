# Language level, warnings and sanitizers, the same for every target of the project.
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
            $<$<BOOL:${SITEHLP_WARNINGS_AS_ERRORS}>:-Werror>)
  if(SITEHLP_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${SITEHLP_SANITIZE}
                                             -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${SITEHLP_SANITIZE})
  endif()
endfunction()

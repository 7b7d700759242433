# Compiler settings shared by every target of the build.

if(KWCORE_SANITIZE)
  list(JOIN KWCORE_SANITIZE "," _kwcore_sanitizers)
  add_compile_options(-fsanitize=${_kwcore_sanitizers} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${_kwcore_sanitizers})
endif()

# Warnings are errors for the project's own targets (not for GoogleTest).
function(kwcore_target_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

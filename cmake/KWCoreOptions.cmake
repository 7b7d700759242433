# Compiler settings shared by every target of the build.

if(KWCORE_SANITIZE)
  list(JOIN KWCORE_SANITIZE "," _kwcore_sanitizers)
  add_compile_options(-fsanitize=${_kwcore_sanitizers} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${_kwcore_sanitizers})
endif()

if(KWCORE_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "KWCORE_COVERAGE needs clang++ (source-based coverage)")
  endif()
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

# Warnings are errors for the project's own targets (not for GoogleTest).
function(kwcore_target_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# MinGW builds: the compiler's runtime DLLs are copied beside the programs so
# they start in place (under Wine too), and a cross-build gets the Wine prefix
# its tests run in.

set(_kwcore_runtime_copies)
foreach(_dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${_dll}
                  OUTPUT_VARIABLE _path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${_path}" OR NOT EXISTS "${_path}")
    message(FATAL_ERROR "${CMAKE_CXX_COMPILER} does not know where ${_dll} is")
  endif()
  file(REAL_PATH "${_path}" _path)
  set(_copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${_dll})
  add_custom_command(OUTPUT ${_copy}
                     COMMAND ${CMAKE_COMMAND} -E copy_if_different ${_path} ${_copy}
                     DEPENDS ${_path} VERBATIM)
  list(APPEND _kwcore_runtime_copies ${_copy})
endforeach()
add_custom_target(kwcore_runtime_dlls ALL DEPENDS ${_kwcore_runtime_copies})
add_dependencies(kwcore kwcore_runtime_dlls)

if(CMAKE_CROSSCOMPILING AND KWCORE_WINEPREFIX AND KWCORE_BUILD_TESTS)
  set(KWCORE_WINE_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/KWCoreWine.cmake)

  # Sets out to the command running an action of KWCoreWine.cmake.
  function(kwcore_wine_command out action)
    set(${out} ${CMAKE_COMMAND} -DACTION=${action} -DWINE=${KWCORE_WINE}
        -DWINESERVER=${KWCORE_WINESERVER} -DPREFIX=${KWCORE_WINEPREFIX}
        -P ${KWCORE_WINE_SCRIPT} PARENT_SCOPE)
  endfunction()

  # The prefix is made once, before any test starts, so parallel tests never
  # race to create it.
  kwcore_wine_command(_create create)
  set(_stamp ${KWCORE_WINEPREFIX}/kwcore-prefix-ready)
  add_custom_command(OUTPUT ${_stamp}
                     COMMAND ${_create}
                     COMMAND ${CMAKE_COMMAND} -E touch ${_stamp}
                     COMMENT "Creating the Wine prefix for the tests" VERBATIM)
  add_custom_target(kwcore_wine_prefix ALL DEPENDS ${_stamp})
endif()
